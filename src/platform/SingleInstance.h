#pragma once

#include <QLocalServer>
#include <QObject>
#include <QString>

// One running app per home: a link the desktop opens with a second `velmora velmora://...` goes
// to the app already running on that home, which follows it, and the second process ends. The
// first process of a home listens on a local socket named after the user and the home.
class SingleInstance : public QObject
{
    Q_OBJECT
public:
    // `home`: the folder the app keeps its data in (Paths::root()).
    explicit SingleInstance(const QString &home, QObject *parent = nullptr);

    // Hands `message` (a link, or nothing: "show yourself") to an instance already running on
    // the home; true when one took it, and this process should end.
    bool handOver(const QString &message, int timeoutMs = 2000);
    // Becomes the home's running instance; false (with a log line) when the socket can't be made,
    // in which case the app runs on alone.
    bool listen();

    QString socketName() const { return m_name; }

    // The longest message taken: a link, never a file.
    static constexpr qsizetype maxMessageBytes = 8192;

signals:
    // Another start on this home asked for `message` (empty: just show the window).
    void messageReceived(const QString &message);

private:
    QString m_name;
    QLocalServer m_server;
};
