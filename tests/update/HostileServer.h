#pragma once

#include <QHostAddress>
#include <QPointer>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>
#include <QUrl>

#include <functional>
#include <memory>

// A scripted server on 127.0.0.1 that serves one catalogue path the way a broken or hostile
// server would; its behaviour is the test's input. The catalogue's signature (PATH.sig) is
// served as given, a patch (any path under u2/) is not there, and everything else is a 404.
class HostileServer
{
public:
    enum class Behaviour {
        ShortBody,   // announces `claimed` bytes, sends `sent`, closes; ignores Range
        Endless,     // 200 with no length, bytes for ever until the client goes
        Trickle,     // announces `claimed`, one byte every 100 ms
        StallAfter,  // announces `claimed`, sends `sent`, then nothing, the connection held open
        Whole,       // the bytes of `body`, honest
    };

    explicit HostileServer(Behaviour behaviour)
        : behaviour(behaviour)
    {
        m_server.listen(QHostAddress::LocalHost);
        QObject::connect(&m_server, &QTcpServer::newConnection, &m_server, [this] {
            while (QTcpSocket *socket = m_server.nextPendingConnection())
                QObject::connect(socket, &QTcpSocket::readyRead, socket, [this, socket] { answer(socket); });
        });
    }

    QUrl url(const QString &path) const { return QUrl(QStringLiteral("http://127.0.0.1:%1/%2").arg(m_server.serverPort()).arg(path)); }

    Behaviour behaviour;
    qint64 claimed = 1024 * 1024;
    qint64 sent = 256 * 1024;
    QByteArray body;
    QByteArray signature; // served as the catalogue's PATH.db.sig when not empty
    int catalogueRequests = 0;
    qint64 bytesSent = 0;

private:
    void answer(QTcpSocket *socket)
    {
        const QByteArray head = socket->readAll();
        const QByteArray path = head.split(' ').value(1);
        if (path.endsWith(".db.sig") && !signature.isEmpty())
            return reply(socket, "200 OK", signature);
        if (path.contains("/u2/") || !path.endsWith(".db"))
            return reply(socket, "404 Not Found", "not here\n");
        ++catalogueRequests;
        QPointer<QTcpSocket> client(socket);
        switch (behaviour) {
        case Behaviour::Whole: return reply(socket, "200 OK", body);
        case Behaviour::ShortBody:
        case Behaviour::StallAfter:
            socket->write("HTTP/1.1 200 OK\r\nContent-Length: " + QByteArray::number(claimed) + "\r\n\r\n");
            send(socket, sent);
            if (behaviour == Behaviour::ShortBody)
                socket->disconnectFromHost();
            return;
        case Behaviour::Endless:
        case Behaviour::Trickle: {
            socket->write(behaviour == Behaviour::Endless ? QByteArray("HTTP/1.1 200 OK\r\nConnection: close\r\n\r\n")
                                                          : "HTTP/1.1 200 OK\r\nContent-Length: " + QByteArray::number(claimed) + "\r\n\r\n");
            auto *pace = new QTimer(socket);
            QObject::connect(pace, &QTimer::timeout, socket, [this, client] {
                // Keeps no more than a little waiting in the socket: the client sets the pace.
                if (client && client->bytesToWrite() < 256 * 1024)
                    send(client, behaviour == Behaviour::Endless ? 64 * 1024 : 1);
            });
            pace->start(behaviour == Behaviour::Endless ? 1 : 100);
            return;
        }
        }
    }
    void send(QTcpSocket *socket, qint64 count)
    {
        socket->write(QByteArray(count, 'x'));
        bytesSent += count;
    }
    static void reply(QTcpSocket *socket, const QByteArray &status, const QByteArray &body)
    {
        socket->write("HTTP/1.1 " + status + "\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\nConnection: close\r\n\r\n" + body);
        socket->disconnectFromHost();
    }

    QTcpServer m_server;
};
