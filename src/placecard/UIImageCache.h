#pragma once

#include <QHash>
#include <QImage>
#include <QMutex>
#include <QString>
#include <QStringList>

// Pictures by key, first in first out, for the card's header ("prof<id>", "blur<id>"). The
// size check comes before the insertion, so the cache holds up to capacity + 1 pictures, and a
// key stored twice stands twice in the queue: its first expiry takes the picture. Reads don't
// change the order. Pictures are made on worker threads and read on the main one, hence the lock.
class UIImageCache
{
public:
    explicit UIImageCache(int capacity) : m_capacity(capacity) {}

    // The process-wide cache of six.
    static UIImageCache &shared();

    QImage get(const QString &key) const;
    void set(const QString &key, const QImage &picture);
    void clear();

    QStringList queue() const;
    int count() const;

private:
    mutable QMutex m_mutex;
    QHash<QString, QImage> m_cache;
    QStringList m_queue;
    int m_capacity;
};
