#pragma once

#include <QHash>
#include <QMutex>
#include <mutex>
#include <QObject>
#include <QPointer>
#include <QVariant>

#include <functional>
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
    std::mutex m_mutex;
    std::vector<Observer> m_observers;
    quint64 m_nextSerial = 0;
};
