#include "platform/NotificationCenter.h"

#include <algorithm>

NotificationCenter &NotificationCenter::defaultCenter()
{
    static NotificationCenter center;
    return center;
}

void NotificationCenter::addObserver(QObject *owner, const QString &name, Handler handler)
{
    Q_ASSERT(owner);
    {
        QMutexLocker lock(&m_mutex);
        m_observers.push_back({owner, name, std::move(handler), m_nextSerial++});
    }
    connect(owner, &QObject::destroyed, this, [this, owner] { removeObserver(owner); }, Qt::DirectConnection);
}

void NotificationCenter::removeObserver(QObject *owner, const QString &name)
{
    QMutexLocker lock(&m_mutex);
    std::erase_if(m_observers, [&](const Observer &observer) {
        return observer.owner.isNull() || (observer.owner == owner && (name.isEmpty() || observer.name == name));
    });
}

void NotificationCenter::post(const QString &name, const QVariant &object)
{
    // Handlers run without the lock, so they may add or remove observers themselves.
    std::vector<Observer> matching;
    {
        QMutexLocker lock(&m_mutex);
        for (const Observer &observer : m_observers)
            if (observer.name == name && !observer.owner.isNull())
                matching.push_back(observer);
    }
    for (const Observer &observer : matching) {
        bool stillRegistered = false;
        {
            QMutexLocker lock(&m_mutex);
            stillRegistered = std::any_of(m_observers.begin(), m_observers.end(),
                                          [&](const Observer &o) { return o.serial == observer.serial; });
        }
        if (stillRegistered && !observer.owner.isNull())
            observer.handler(object);
    }
    emit posted(name, object);
}
