#include "platform/HttpExchange.h"

#include <QRegularExpression>
#include <QSslSocket>
#include <QTcpSocket>

namespace {
// An answer's head longer than this isn't one we want to read.
constexpr qsizetype maxHeadBytes = 64 * 1024;
}

HttpExchange::HttpExchange(Request request, QObject *parent)
    : QObject(parent)
    , m_request(std::move(request))
{
    m_deadline.setSingleShot(true);
    connect(&m_deadline, &QTimer::timeout, this, [this] { fail(QStringLiteral("no answer within %1 ms").arg(m_request.timeoutMs)); });
}

HttpExchange::~HttpExchange()
{
    if (m_socket)
        m_socket->abort();
}

void HttpExchange::start()
{
    const bool secure = m_request.url.scheme() == QLatin1String("https");
    if (!m_request.url.isValid() || m_request.url.host().isEmpty() || (!secure && m_request.url.scheme() != QLatin1String("http"))) {
        // Reported after the caller returns, as every other outcome is.
        QMetaObject::invokeMethod(this, [this] { fail(QStringLiteral("not an http or https URL")); }, Qt::QueuedConnection);
        return;
    }
    m_deadline.start(m_request.timeoutMs);
    const quint16 port = quint16(m_request.url.port(secure ? 443 : 80));
    if (secure) {
        auto *socket = new QSslSocket(this);
        m_socket = socket;
        connect(socket, &QSslSocket::encrypted, this, &HttpExchange::send);
        socket->connectToHostEncrypted(m_request.url.host(), port);
    } else {
        m_socket = new QTcpSocket(this);
        connect(m_socket, &QTcpSocket::connected, this, &HttpExchange::send);
        m_socket->connectToHost(m_request.url.host(), port);
    }
    connect(m_socket, &QTcpSocket::readyRead, this, &HttpExchange::read);
    connect(m_socket, &QTcpSocket::errorOccurred, this, [this] { fail(m_socket->errorString()); });
    connect(m_socket, &QTcpSocket::disconnected, this, [this] { fail(QStringLiteral("the connection closed before an answer")); });
}

void HttpExchange::send()
{
    const QUrl &url = m_request.url;
    QByteArray target = url.path(QUrl::FullyEncoded).toLatin1();
    if (target.isEmpty())
        target = "/";
    if (url.hasQuery())
        target += '?' + url.query(QUrl::FullyEncoded).toLatin1();
    QByteArray host = url.host(QUrl::FullyEncoded).toLatin1();
    if (host.contains(':'))
        host = '[' + host + ']'; // an IPv6 literal
    QByteArray head = m_request.method + ' ' + target + " HTTP/1.1\r\nHost: " + host;
    if (url.port() != -1)
        head += ':' + QByteArray::number(url.port());
    head += "\r\nConnection: close\r\n";
    for (const auto &[name, value] : std::as_const(m_request.headers))
        head += name + ": " + value + "\r\n";
    if (m_request.method != "GET")
        head += "Content-Length: " + QByteArray::number(m_request.body.size()) + "\r\n";
    m_socket->write(head + "\r\n" + m_request.body);
}

void HttpExchange::read()
{
    m_head += m_socket->readAll();
    const qsizetype end = m_head.indexOf("\r\n\r\n");
    if (end < 0) {
        if (m_head.size() > maxHeadBytes)
            fail(QStringLiteral("an answer head without end"));
        return;
    }
    // "HTTP/1.1 200 OK": the status is all the sender needs; the body isn't read.
    static const QRegularExpression statusLine(QStringLiteral("^HTTP/1\\.[01] ([1-5][0-9][0-9])( |\\r|$)"));
    const QRegularExpressionMatch match = statusLine.match(QString::fromLatin1(m_head.left(m_head.indexOf("\r\n"))));
    if (!match.hasMatch())
        return fail(QStringLiteral("an answer that isn't HTTP"));
    m_status = match.captured(1).toInt();
    finish();
}

void HttpExchange::fail(const QString &why)
{
    if (m_finished)
        return;
    m_error = why;
    m_status = 0;
    finish();
}

void HttpExchange::finish()
{
    if (m_finished)
        return;
    m_finished = true;
    m_deadline.stop();
    if (m_socket) {
        m_socket->disconnect(this);
        m_socket->abort();
    }
    emit finished();
}
