#pragma once

#include <QQuickItem>

#include <functional>

// Finds the first item below `item` (itself included) that `matches`, in the visual tree: Loader,
// Repeater and ListView children hang there, not among the QObject children that findChild walks.
inline QQuickItem *findItemIf(QQuickItem *item, const std::function<bool(QQuickItem *)> &matches)
{
    if (matches(item))
        return item;
    for (QQuickItem *child : item->childItems())
        if (QQuickItem *found = findItemIf(child, matches))
            return found;
    return nullptr;
}

// Finds an item by objectName.
template <typename T = QQuickItem>
T *findItem(QQuickItem *item, const QString &name)
{
    return qobject_cast<T *>(
        findItemIf(item, [&](QQuickItem *candidate) { return candidate->objectName() == name && qobject_cast<T *>(candidate); }));
}
