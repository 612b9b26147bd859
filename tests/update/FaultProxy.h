#pragma once

#include <QHostAddress>
#include <QList>
#include <QPointer>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>

#include <functional>
#include <memory>

// A TCP proxy on 127.0.0.1 in front of a real server, for the faults a phone's connection has:
// answers cut after some bytes, answers trickling in, and a log of the requests that came by.
class FaultProxy
{
public:
    explicit FaultProxy(quint16 upstreamPort)
        : m_upstream(upstreamPort)
    {
        m_server.listen(QHostAddress::LocalHost);
        QObject::connect(&m_server, &QTcpServer::newConnection, &m_server, [this] {
            while (QTcpSocket *client = m_server.nextPendingConnection())
                relay(client);
        });
    }

    quint16 port() const { return m_server.serverPort(); }

    // The next `connections` answers end after `bytes` bytes, the connection torn down.
    void cutAfter(qint64 bytes, int connections = 1) { m_cutBytes = bytes, m_cutsLeft = connections; }
    // Answers go out `bytes` at a time every 20 ms; 0 lets them flow.
    void trickle(qint64 bytes) { m_trickle = bytes; }

    // Called once an answer has been cut.
    std::function<void()> onCut;

    // The request heads seen, in order.
    QList<QByteArray> requests;

    bool sawRequestWith(const QByteArray &text) const
    {
        for (const QByteArray &head : requests)
            if (head.contains(text))
                return true;
        return false;
    }

private:
    struct Link {
        QPointer<QTcpSocket> client;
        QTcpSocket upstream;
        QByteArray pending;
        QTimer pace;
        qint64 sent = 0;
        qint64 limit = -1;
    };

    void relay(QTcpSocket *client)
    {
        auto *link = new Link;
        link->client = client;
        if (m_cutsLeft > 0) {
            link->limit = m_cutBytes;
            --m_cutsLeft;
        }
        link->upstream.connectToHost(QHostAddress::LocalHost, m_upstream);
        QObject::connect(client, &QTcpSocket::readyRead, client, [this, link] {
            const QByteArray bytes = link->client->readAll();
            if (bytes.contains(" HTTP/1."))
                requests.append(bytes.left(bytes.indexOf("\r\n\r\n")));
            link->upstream.write(bytes);
        });
        QObject::connect(&link->upstream, &QTcpSocket::readyRead, client, [this, link] {
            link->pending += link->upstream.readAll();
            if (m_trickle == 0)
                forward(link, link->pending.size());
            else if (!link->pace.isActive())
                link->pace.start(20);
        });
        QObject::connect(&link->pace, &QTimer::timeout, client, [this, link] { forward(link, m_trickle ? m_trickle : link->pending.size()); });
        QObject::connect(&link->upstream, &QTcpSocket::disconnected, client, [link] {
            if (link->pending.isEmpty() && link->client)
                link->client->disconnectFromHost();
        });
        QObject::connect(client, &QTcpSocket::disconnected, client, &QObject::deleteLater);
        QObject::connect(client, &QObject::destroyed, [link] { delete link; });
    }

    void forward(Link *link, qint64 count)
    {
        if (!link->client)
            return;
        qint64 n = qMin<qint64>(count, link->pending.size());
        if (link->limit >= 0)
            n = qMin(n, link->limit - link->sent);
        link->client->write(link->pending.left(n));
        link->pending.remove(0, n);
        link->sent += n;
        if (link->limit >= 0 && link->sent >= link->limit) {
            link->client->flush();
            link->client->abort();
            if (onCut)
                onCut();
            return;
        }
        if (link->pending.isEmpty()) {
            link->pace.stop();
            if (link->upstream.state() != QAbstractSocket::ConnectedState)
                link->client->disconnectFromHost();
        }
    }

    QTcpServer m_server;
    quint16 m_upstream;
    qint64 m_cutBytes = -1;
    int m_cutsLeft = 0;
    qint64 m_trickle = 0;
};
