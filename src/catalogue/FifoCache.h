#pragma once

#include <QHash>
#include <QList>
#include <QMutex>
#include <mutex>

#include <optional>

// A map from id to value that forgets in first-in, first-out order once it holds more than
// `limit` entries (0: no limit). A hit does not move an id. Every call takes the cache's own
// lock, so a reader on one thread and a writer on another never see it half-changed; a second
// store of an id already held is ignored, which keeps the order honest when two threads both
// missed and both read the same row.
template <typename Value>
class FifoCache
{
public:
    explicit FifoCache(int limit = 0)
        : m_limit(limit)
    {
    }

    std::optional<Value> find(int id) const
    {
        QMutexLocker lock(&m_mutex);
        const auto it = m_values.constFind(id);
        return it == m_values.constEnd() ? std::nullopt : std::optional<Value>(*it);
    }

    void store(int id, const Value &value)
    {
        QMutexLocker lock(&m_mutex);
        if (m_values.contains(id))
            return;
        m_values.insert(id, value);
        if (m_limit <= 0)
            return;
        m_order.append(id);
        if (m_order.size() > m_limit)
            m_values.remove(m_order.takeFirst());
    }

    void clear()
    {
        QMutexLocker lock(&m_mutex);
        m_values.clear();
        m_order.clear();
    }

    // The ids held, oldest first (bounded caches only).
    QList<int> order() const
    {
        QMutexLocker lock(&m_mutex);
        return m_order;
    }

private:
    const int m_limit;
    mutable std::mutex m_mutex;
    QHash<int, Value> m_values;
    QList<int> m_order;
};
