#include "UIImageCache.h"

UIImageCache &UIImageCache::shared()
{
    static UIImageCache cache(6);
    return cache;
}

QImage UIImageCache::get(const QString &key) const
{
    QMutexLocker lock(&m_mutex);
    return m_cache.value(key);
}

void UIImageCache::set(const QString &key, const QImage &picture)
{
    QMutexLocker lock(&m_mutex);
    if (m_queue.size() > m_capacity)
        m_cache.remove(m_queue.takeFirst());
    m_cache.insert(key, picture);
    m_queue.append(key);
}

void UIImageCache::clear()
{
    QMutexLocker lock(&m_mutex);
    m_cache.clear();
    m_queue.clear();
}

QStringList UIImageCache::queue() const
{
    QMutexLocker lock(&m_mutex);
    return m_queue;
}

int UIImageCache::count() const
{
    QMutexLocker lock(&m_mutex);
    return int(m_cache.size());
}
