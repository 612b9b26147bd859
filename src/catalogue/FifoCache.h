#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QMutex>
#include <mutex>

#include <optional>
#include <type_traits>

// A map from id to value that forgets in first-in, first-out order once it holds more than
// `limit` entries, or, for bytes, more than `byteLimit` bytes in all (0: no limit). A hit does not move an id. Every call takes the cache's own
// lock, so a reader on one thread and a writer on another never see it half-changed; a second
// store of an id already held is ignored, which keeps the order honest when two threads both
// missed and both read the same row.
template <typename Value>
class FifoCache
{
public:
    explicit FifoCache(int limit = 0, qint64 byteLimit = 0)
        : m_limit(limit)
        , m_byteLimit(byteLimit)
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
        if (m_limit <= 0 && m_byteLimit <= 0)
            return;
        m_order.append(id);
        m_bytes += bytesOf(value);
        while ((m_limit > 0 && m_order.size() > m_limit) || (m_byteLimit > 0 && m_bytes > m_byteLimit && m_order.size() > 1)) {
            const auto oldest = m_values.constFind(m_order.takeFirst());
            m_bytes -= bytesOf(*oldest);
            m_values.erase(oldest);
        }
    }

    void clear()
    {
        QMutexLocker lock(&m_mutex);
        m_values.clear();
        m_order.clear();
        m_bytes = 0;
    }

    // The ids held, oldest first (bounded caches only).
    QList<int> order() const
    {
        QMutexLocker lock(&m_mutex);
        return m_order;
    }

private:
    static qint64 bytesOf(const Value &value)
    {
        if constexpr (std::is_same_v<Value, QByteArray>)
            return value.size();
        else
            return 0;
    }

    const int m_limit;
    const qint64 m_byteLimit;
    qint64 m_bytes = 0;
    mutable std::mutex m_mutex;
    QHash<int, Value> m_values;
    QList<int> m_order;
};
