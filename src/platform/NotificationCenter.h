#pragma once

#include <QHash>
#include <QMutex>
#include <mutex>
#include <QObject>
#include <QPointer>
#include <QVariant>

#include <functional>
#include <memory>
#include <vector>

// Named notifications, delivered synchronously on the posting thread to every observer that
// registered for the name. An observer belongs to an owner object and goes away with it.
class NotificationCenter : public QObject
{
    Q_OBJECT
public:
    using Handler = std::function<void(const QVariant &object)>;

    static NotificationCenter &defaultCenter();

    void addObserver(QObject *owner, const QString &name, Handler handler);
    // Removes the owner's observers of `name`, or all of them when `name` is empty.
    void removeObserver(QObject *owner, const QString &name = QString());
    void post(const QString &name, const QVariant &object = QVariant());
    // The same, from the main thread, one observer an event-loop turn: for news every screen
    // refreshes on, so the screens' work and the frames in between take turns instead of one
    // long stall. `delivered` runs after the last observer.
    void postOverTurns(const QString &name, const QVariant &object = QVariant(), std::function<void()> delivered = {});

signals:
    // For QML, which can't hold a std::function observer.
    void posted(const QString &name, const QVariant &object);

private:
    struct Observer {
        QPointer<QObject> owner;
        QString name;
        Handler handler;
        quint64 serial;
    };
    std::vector<Observer> observersOf(const QString &name);
    // Runs the observer's handler unless it was removed since it was picked.
    void deliver(const Observer &observer, const QVariant &object);
    struct Delivery {
        QString name;
        QVariant object;
        std::vector<Observer> observers;
        std::function<void()> delivered;
    };
    void deliverFrom(std::shared_ptr<Delivery> delivery, size_t next);
    std::mutex m_mutex;
    std::vector<Observer> m_observers;
    quint64 m_nextSerial = 0;
};
