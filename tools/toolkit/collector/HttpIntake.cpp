#include "HttpIntake.h"

#include <QPointer>
#include <QTcpSocket>
#include <QTimer>

#include <memory>

namespace {
QByteArray reason(int status)
{
    switch (status) {
    case 200: return "OK";
    case 400: return "Bad Request";
    case 404: return "Not Found";
    case 405: return "Method Not Allowed";
    case 411: return "Length Required";
    case 413: return "Payload Too Large";
    case 415: return "Unsupported Media Type";
    case 431: return "Request Header Fields Too Large";
    case 503: return "Service Unavailable";
    default: return "Status";
    }
}

void answer(QTcpSocket *socket, const HttpIntake::Answer &answer)
{
    socket->write("HTTP/1.1 " + QByteArray::number(answer.status) + ' ' + reason(answer.status) + "\r\nContent-Type: " + answer.contentType
                  + "\r\nContent-Length: " + QByteArray::number(answer.body.size()) + "\r\nConnection: close\r\n\r\n" + answer.body);
    socket->disconnectFromHost();
}

// What one connection has read so far.
struct Exchange {
    QByteArray buffer;
    bool headRead = false;
    qint64 bodyLength = 0;
    HttpIntake::Request request;
    bool done = false;
};

// The head's request line and the two headers that matter; false for anything else than HTTP/1.x.
bool parseHead(const QByteArray &head, HttpIntake::Request &request, qint64 &length, bool &chunked, bool &lengthGiven)
{
    const QList<QByteArray> lines = head.split('\n');
    const QList<QByteArray> first = lines.first().trimmed().split(' ');
    if (first.size() != 3 || !first.at(2).startsWith("HTTP/1."))
        return false;
    request.method = first.at(0);
    const QByteArray target = first.at(1);
    const qsizetype question = target.indexOf('?');
    request.path = question < 0 ? target : target.left(question);
    request.query = question < 0 ? QByteArray() : target.mid(question + 1);
    for (qsizetype i = 1; i < lines.size(); ++i) {
        const QByteArray line = lines.at(i).trimmed();
        const qsizetype colon = line.indexOf(':');
        if (colon <= 0)
            continue;
        const QByteArray name = line.left(colon).trimmed().toLower();
        const QByteArray value = line.mid(colon + 1).trimmed();
        if (name == "content-length") {
            bool ok = false;
            length = value.toLongLong(&ok);
            if (!ok || length < 0)
                return false;
            lengthGiven = true;
        } else if (name == "transfer-encoding") {
            chunked = value.toLower() != "identity";
        } else if (name == "content-encoding") {
            request.contentEncoding = value.toLower();
        }
    }
    return true;
}
}

HttpIntake::HttpIntake(qsizetype maxBodyBytes, Handler handler, QObject *parent)
    : QObject(parent)
    , m_maxBodyBytes(maxBodyBytes)
    , m_handler(std::move(handler))
{
    connect(&m_server, &QTcpServer::newConnection, this, [this] {
        while (QTcpSocket *socket = m_server.nextPendingConnection())
            serve(socket);
    });
}

quint16 HttpIntake::listen(const QHostAddress &address, quint16 port)
{
    return m_server.listen(address, port) ? m_server.serverPort() : 0;
}

void HttpIntake::serve(QTcpSocket *socket)
{
    auto exchange = std::make_shared<Exchange>();
    connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
    // A client that sends nothing more is let go; it holds no answer.
    auto *idle = new QTimer(socket);
    idle->setSingleShot(true);
    connect(idle, &QTimer::timeout, socket, [socket] { socket->abort(); });
    idle->start(idleTimeoutMs);
    // What the socket holds unread is bounded too: a sender of a huge body is not buffered.
    socket->setReadBufferSize(256 * 1024);
    connect(socket, &QTcpSocket::readyRead, this, [this, socket, exchange, idle] {
        if (exchange->done)
            return (void)socket->readAll();
        idle->start(idleTimeoutMs);
        if (!exchange->headRead) {
            exchange->buffer += socket->read(maxHeadBytes + 4 - exchange->buffer.size());
            const qsizetype end = exchange->buffer.indexOf("\r\n\r\n");
            if (end < 0) {
                if (exchange->buffer.size() > maxHeadBytes) {
                    exchange->done = true;
                    answer(socket, {431, "request head too large\n"});
                }
                return;
            }
            bool chunked = false, lengthGiven = false;
            if (!parseHead(exchange->buffer.left(end), exchange->request, exchange->bodyLength, chunked, lengthGiven)) {
                exchange->done = true;
                return answer(socket, {400, "not an HTTP request\n"});
            }
            if (chunked || (exchange->request.method == "POST" && !lengthGiven)) {
                exchange->done = true;
                return answer(socket, {411, "a body needs its Content-Length\n"});
            }
            // Refused on its announced size: not a byte of the body is read.
            if (exchange->bodyLength > m_maxBodyBytes) {
                exchange->done = true;
                return answer(socket, {413, "body too large\n"});
            }
            exchange->headRead = true;
            exchange->buffer.remove(0, end + 4);
        }
        if (exchange->buffer.size() < exchange->bodyLength)
            exchange->buffer += socket->read(exchange->bodyLength - exchange->buffer.size());
        if (exchange->buffer.size() > exchange->bodyLength) {
            exchange->done = true;
            return answer(socket, {400, "more bytes than the Content-Length\n"});
        }
        if (exchange->buffer.size() < exchange->bodyLength)
            return;
        exchange->done = true;
        exchange->request.body = std::exchange(exchange->buffer, QByteArray());
        m_handler(exchange->request, [socket = QPointer<QTcpSocket>(socket)](std::optional<Answer> reply) {
            if (!socket)
                return;
            if (reply)
                answer(socket, *reply);
            else
                socket->abort(); // nothing stored: no answer the client would take as final
        });
    });
}
