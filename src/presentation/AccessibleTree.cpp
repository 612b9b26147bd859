#include "presentation/AccessibleTree.h"

#include <QAccessible>
#include <QQuickWindow>

#include <algorithm>

namespace {

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
    QList<ShownAccessible> shown;
    QRect window; // in screen coordinates

    // `viewport`: what the lists around the node show of their content, in screen coordinates.
    void walk(QAccessibleInterface *node, QRect viewport, int depth)
    {
        if (!node || !node->isValid() || depth > 200)
            return;
        // What isn't shown isn't read, and neither is anything inside it: hidden objects, and
        // rows a list keeps made beyond its edges (under the bar, below the fold).
        const QRect rect = node->rect();
        if (node->state().invisible || !viewport.contains(rect.center()))
            return;
        if (rect.intersects(window) && !(isSilentContainer(node->role()) && node->text(QAccessible::Name).isEmpty()))
            shown.append({node, rect.translated(-window.topLeft()).intersected(QRect(QPoint(), window.size()))});
        if (const QObject *object = node->object(); object && object->inherits("QQuickFlickable"))
            viewport &= rect;
        for (int i = 0; i < node->childCount(); ++i)
            walk(node->child(i), viewport, depth + 1);
    }
};

// Reading order: lines from top to bottom, left to right within a line. Two objects stand on one
// line when each one's middle lies within the other's height: a bar's buttons and its taller
// title read left to right, while a list and its first row, which share a top, do not.
void sortIntoReadingOrder(QList<ShownAccessible> &shown)
{
    std::stable_sort(shown.begin(), shown.end(), [](const ShownAccessible &a, const ShownAccessible &b) {
        return a.rect.top() < b.rect.top();
    });
    QList<ShownAccessible> ordered;
    ordered.reserve(shown.size());
    qsizetype lineStart = 0;
    while (lineStart < shown.size()) {
        const QRect first = shown[lineStart].rect;
        qsizetype lineEnd = lineStart + 1;
        const auto onLine = [&first](const QRect &rect) {
            return rect.center().y() <= first.bottom() && first.center().y() >= rect.top() && first.center().y() <= rect.bottom();
        };
        while (lineEnd < shown.size() && onLine(shown[lineEnd].rect))
            ++lineEnd;
        QList<ShownAccessible> line(shown.begin() + lineStart, shown.begin() + lineEnd);
        std::stable_sort(line.begin(), line.end(), [](const ShownAccessible &a, const ShownAccessible &b) {
            return a.rect.left() < b.rect.left();
        });
        ordered.append(line);
        lineStart = lineEnd;
    }
    shown = std::move(ordered);
}

}

QList<ShownAccessible> shownAccessibles(QQuickWindow *window)
{
    Walker walker;
    if (!window)
        return walker.shown;
    walker.window = QRect(window->mapToGlobal(QPoint(0, 0)), window->size());
    walker.walk(QAccessible::queryAccessibleInterface(window), walker.window, 0);
    sortIntoReadingOrder(walker.shown);
    return walker.shown;
}

bool isKeyboardStop(QAccessibleInterface *node)
{
    if (!node || node->state().disabled || node->state().invisible)
        return false;
    if (node->role() == QAccessible::EditableText)
        return true;
    QAccessibleActionInterface *actions = node->actionInterface();
    if (!actions)
        return false;
    const QStringList names = actions->actionNames();
    return names.contains(QAccessibleActionInterface::pressAction())
        || names.contains(QAccessibleActionInterface::toggleAction());
}
