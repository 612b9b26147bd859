#include "presentation/ReadingOrder.h"

#include <QQuickItem>
#include <QTimer>

#include <algorithm>

ReadingOrder::ReadingOrder(QObject *parent)
    : QObject(parent)
{
}

void ReadingOrder::sortSoon(QQuickItem *container)
{
    if (!container)
        return;
    if (m_pending.isEmpty())
        QTimer::singleShot(0, this, [this] {
            const auto pending = std::exchange(m_pending, {});
            for (const QPointer<QQuickItem> &container : pending)
                if (container)
                    sort(container);
        });
    if (!m_pending.contains(container))
        m_pending.append(container);
}

void ReadingOrder::sort(QQuickItem *container)
{
    QList<QQuickItem *> children = container->childItems();
    const auto above = [](const QQuickItem *a, const QQuickItem *b) {
        return a->y() != b->y() ? a->y() < b->y() : a->x() < b->x();
    };
    if (std::is_sorted(children.begin(), children.end(), above))
        return;
    std::stable_sort(children.begin(), children.end(), above);
    for (qsizetype i = 1; i < children.size(); ++i)
        children[i]->stackAfter(children[i - 1]);
}
