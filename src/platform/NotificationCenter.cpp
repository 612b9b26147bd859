#include "platform/NotificationCenter.h"

#include <QThread>
#include <QTimer>

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

std::vector<NotificationCenter::Observer> NotificationCenter::observersOf(const QString &name)
{
    std::vector<Observer> matching;
    QMutexLocker lock(&m_mutex);
    for (const Observer &observer : m_observers)
        if (observer.name == name && !observer.owner.isNull())
            matching.push_back(observer);
    return matching;
}

void NotificationCenter::deliver(const Observer &observer, const QVariant &object)
{
    bool stillRegistered = false;
    {
        QMutexLocker lock(&m_mutex);
        stillRegistered = std::any_of(m_observers.begin(), m_observers.end(),
                                      [&](const Observer &o) { return o.serial == observer.serial; });
    }
    if (stillRegistered && !observer.owner.isNull())
        observer.handler(object);
}

void NotificationCenter::post(const QString &name, const QVariant &object)
{
    // Handlers run without the lock, so they may add or remove observers themselves.
    for (const Observer &observer : observersOf(name))
        deliver(observer, object);
    emit posted(name, object);
}

void NotificationCenter::postOverTurns(const QString &name, const QVariant &object, std::function<void()> delivered)
{
    Q_ASSERT(thread() == QThread::currentThread());
    deliverFrom(std::make_shared<Delivery>(Delivery{name, object, observersOf(name), std::move(delivered)}), 0);
}

void NotificationCenter::deliverFrom(std::shared_ptr<Delivery> delivery, size_t next)
{
    if (next < delivery->observers.size()) {
        deliver(delivery->observers[next], delivery->object);
        // The next observer waits for the next turn: what is due by then, a frame or a timer,
        // goes first.
        QTimer::singleShot(0, this, [this, delivery, next] { deliverFrom(delivery, next + 1); });
        return;
    }
    if (delivery->delivered)
        delivery->delivered();
    emit posted(delivery->name, delivery->object);
}
