#include "presentation/UiDump.h"

#include <QAccessible>
#include <QFont>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMetaEnum>
#include <QQuickItem>
#include <QQuickWindow>

#include <algorithm>

namespace {

// The object QML attaches for `Accessible.*`; read through its properties, it needs no private
// header.
QObject *accessibleAttached(const QQuickItem *item)
{
    for (QObject *child : item->children())
        if (qstrcmp(child->metaObject()->className(), "QQuickAccessibleAttached") == 0)
            return child;
    return nullptr;
}

QString roleName(int role)
{
    const char *key = QMetaEnum::fromType<QAccessible::Role>().valueToKey(role);
    return key ? QString::fromLatin1(key) : QString::number(role);
}

// Icon-font glyphs sit in the private use area: they show, but say nothing.
bool isGlyphsOnly(const QString &text)
{
    return std::all_of(text.begin(), text.end(), [](QChar c) { return c.category() == QChar::Other_PrivateUse || c.isSpace(); });
}

// A text in the icon font draws pictures, whatever its characters.
bool drawsIcons(const QQuickItem *item)
{
    const QVariant font = item->property("font");
    return font.canConvert<QFont>() && font.value<QFont>().family().contains(QLatin1String("Icons"));
}

// The text an item shows on its own, if it is a text item.
QString shownText(const QQuickItem *item)
{
    if (item->inherits("QQuickText") || item->inherits("QQuickTextInput") || item->inherits("QQuickTextEdit"))
        return item->property("text").toString();
    const QVariant plain = item->property("plainText"); // the rich label's
    return plain.isValid() ? plain.toString() : QString();
}

bool takesTaps(const QQuickItem *item)
{
    return item->isEnabled() && (item->acceptedMouseButtons() != Qt::NoButton || item->acceptTouchEvents());
}

struct Walker {
    QList<UiNode> nodes;
    QRectF window;

    void walk(QQuickItem *item, QRectF clip, bool named)
    {
        if (!item->isVisible() || item->opacity() <= 0.01)
            return;
        const QRectF rect = item->mapRectToScene(QRectF(0, 0, item->width(), item->height()));
        if (item->clip())
            clip = clip.intersected(rect);
        const QRectF shown = rect.intersected(clip);
        const bool onScreen = !shown.isEmpty();

        bool ignored = false;
        QString role;
        QString name;
        if (QObject *attached = accessibleAttached(item)) {
            ignored = attached->property("ignored").toBool();
            const int accessibleRole = attached->property("role").toInt();
            if (accessibleRole != QAccessible::NoRole) {
                role = roleName(accessibleRole);
                name = attached->property("name").toString();
            }
        }
        if (!ignored && onScreen) {
            const QString text = shownText(item);
            if (!role.isEmpty()) {
                if (name.isEmpty() && !text.isEmpty() && !isGlyphsOnly(text) && !drawsIcons(item))
                    name = text;
                nodes.append({role, name, shown});
                named = named || !name.isEmpty();
            } else if (!text.trimmed().isEmpty() && !named) {
                nodes.append({roleName(QAccessible::StaticText), isGlyphsOnly(text) || drawsIcons(item) ? QString() : text, shown});
            } else if (takesTaps(item) && !named) {
                nodes.append({roleName(QAccessible::Button), QString(), shown});
            }
        }
        // A stack of screens shows only its top one; those below stay visible, covered by it.
        if (item->inherits("QQuickStackView")) {
            if (auto *top = item->property("currentItem").value<QQuickItem *>())
                walk(top, clip, named);
            return;
        }
        for (QQuickItem *child : item->childItems())
            walk(child, clip, named);
    }
};

}

QList<UiNode> dumpUi(QQuickWindow *window)
{
    Walker walker;
    if (!window)
        return walker.nodes;
    walker.window = QRectF(0, 0, window->width(), window->height());
    walker.walk(window->contentItem(), walker.window, false);
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
