#include "presentation/UiDump.h"

#include <QAccessible>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMetaEnum>
#include <QQuickWindow>

#include <algorithm>

namespace {

QString roleName(QAccessible::Role role)
{
    const char *key = QMetaEnum::fromType<QAccessible::Role>().valueToKey(role);
    return key ? QString::fromLatin1(key) : QString::number(role);
}

// Containers a reader passes through without a word when they have no name of their own.
bool isSilentContainer(QAccessible::Role role)
{
    switch (role) {
    case QAccessible::NoRole:
    case QAccessible::Client:
    case QAccessible::Pane:
    case QAccessible::Window:
    case QAccessible::Application:
    case QAccessible::LayeredPane:
    case QAccessible::Grouping:
    case QAccessible::Section:
        return true;
    default:
        return false;
    }
}

struct Walker {
    QList<UiNode> nodes;
    QRect window; // in screen coordinates

    void walk(QAccessibleInterface *node, int depth)
    {
        if (!node || !node->isValid() || depth > 200)
            return;
        // What isn't shown isn't read, and neither is anything inside it.
        if (node->state().invisible)
            return;
        const QRect rect = node->rect();
        const QString name = node->text(QAccessible::Name);
        const QAccessible::Role role = node->role();
        if (rect.intersects(window) && !(isSilentContainer(role) && name.isEmpty()))
            nodes.append({roleName(role), name, QRectF(rect.translated(-window.topLeft()).intersected(QRect(QPoint(), window.size())))});
        for (int i = 0; i < node->childCount(); ++i)
            walk(node->child(i), depth + 1);
    }
};

}

void prepareUiDump() { QAccessible::setActive(true); }

QList<UiNode> dumpUi(QQuickWindow *window)
{
    Walker walker;
    if (!window)
        return walker.nodes;
    walker.window = QRect(window->mapToGlobal(QPoint(0, 0)), window->size());
    walker.walk(QAccessible::queryAccessibleInterface(window), 0);
    // Reading order: top to bottom, then left to right within a line.
    std::stable_sort(walker.nodes.begin(), walker.nodes.end(), [](const UiNode &a, const UiNode &b) {
        const int ay = qRound(a.rect.y()), by = qRound(b.rect.y());
        return ay != by ? ay < by : a.rect.x() < b.rect.x();
    });
    return walker.nodes;
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
