#pragma once

#include <QByteArray>
#include <QHostAddress>
#include <QObject>
#include <QTcpServer>

#include <functional>
#include <optional>

// A small HTTP/1.1 server for endpoints that take bodies from anyone: the head is read first and
// a body announced as larger than the limit is refused with 413 before a byte of it is read; a
// body is read only up to its Content-Length; and the handler answers when it is ready (later,
// from the event loop, if it likes) or gives no answer at all, which closes the connection
// unanswered (what a client takes as "not received, send again").
// One request per connection ("Connection: close").
class HttpIntake : public QObject
{
    Q_OBJECT
public:
    struct Request {
        QByteArray method;
        QByteArray path;
        QByteArray query;
        QByteArray body;
        QByteArray contentEncoding; // lower-cased, trimmed
    };
    struct Answer {
        int status = 200;
        QByteArray body;
        QByteArray contentType = "text/plain; charset=utf-8";
    };
    // Called once with the answer; nullopt closes the connection without one. Harmless after the
    // client went away.
    using Responder = std::function<void(std::optional<Answer>)>;
    using Handler = std::function<void(const Request &, Responder)>;

    static constexpr qsizetype maxHeadBytes = 16 * 1024;
    static constexpr int idleTimeoutMs = 30'000;

    HttpIntake(qsizetype maxBodyBytes, Handler handler, QObject *parent = nullptr);

    // The port listened on (a free one for 0), or 0.
    quint16 listen(const QHostAddress &address, quint16 port);

private:
    void serve(class QTcpSocket *socket);

    qsizetype m_maxBodyBytes;
    Handler m_handler;
    QTcpServer m_server;
};
