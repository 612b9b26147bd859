#include "presentation/UiDump.h"

#include "presentation/AccessibleTree.h"

#include <QAccessible>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMetaEnum>
#include <QQuickWindow>

void prepareUiDump() { QAccessible::setActive(true); }

QList<UiNode> dumpUi(QQuickWindow *window)
{
    QList<UiNode> nodes;
    const QMetaEnum roles = QMetaEnum::fromType<QAccessible::Role>();
    for (const ShownAccessible &shown : shownAccessibles(window)) {
        const char *role = roles.valueToKey(shown.node->role());
        nodes.append({role ? QString::fromLatin1(role) : QString::number(shown.node->role()),
                      shown.node->text(QAccessible::Name), QRectF(shown.rect)});
    }
    return nodes;
}

QByteArray uiDumpJson(const QList<UiNode> &nodes)
{
    QJsonArray array;
    for (const UiNode &node : nodes)
        array.append(QJsonObject{{QStringLiteral("role"), node.role},
                                 {QStringLiteral("name"), node.name},
                                 {QStringLiteral("x"), qRound(node.rect.x())},
                                 {QStringLiteral("y"), qRound(node.rect.y())},
                                 {QStringLiteral("w"), qRound(node.rect.width())},
                                 {QStringLiteral("h"), qRound(node.rect.height())}});
    return QJsonDocument(array).toJson(QJsonDocument::Compact);
}
