#include "UpdateServer.h"

#include "platform/ServiceBrowser.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QHttpServerRequest>
#include <QHttpServerResponder>
#include <QLocale>
#include <QMimeDatabase>

std::optional<std::pair<qint64, qint64>> parseByteRange(const QByteArray &header, qint64 size)
{
    const QByteArray value = header.trimmed();
    if (!value.startsWith("bytes=") || value.contains(',') || size <= 0)
        return std::nullopt;
    const QByteArray range = value.mid(6).trimmed();
    const qsizetype dash = range.indexOf('-');
    if (dash < 0)
        return std::nullopt;
    bool firstOk = false, lastOk = false;
    const QByteArray first = range.left(dash).trimmed(), last = range.mid(dash + 1).trimmed();
    if (first.isEmpty()) { // the last n bytes
        const qint64 count = last.toLongLong(&lastOk);
        if (!lastOk || count <= 0)
            return std::nullopt;
        return std::pair{std::max<qint64>(0, size - count), size - 1};
    }
    const qint64 from = first.toLongLong(&firstOk);
    const qint64 to = last.isEmpty() ? size - 1 : std::min(last.toLongLong(&lastOk), size - 1);
    if (!firstOk || (!last.isEmpty() && !lastOk) || from < 0 || from >= size || to < from)
        return std::nullopt;
    return std::pair{from, to};
}

namespace {
// HTTP dates, as validators: "Sun, 06 Nov 1994 08:49:37 GMT".
QByteArray httpDate(const QDateTime &time)
{
    return QLocale::c().toString(time.toUTC(), QStringLiteral("ddd, dd MMM yyyy hh:mm:ss 'GMT'")).toLatin1();
}
}

UpdateServer::UpdateServer(const QString &directory)
    : m_root(QDir(directory).canonicalPath())
{
    m_server.setMissingHandler([this](const QHttpServerRequest &request, QHttpServerResponder &&responder) {
        using Status = QHttpServerResponder::StatusCode;
        const bool head = request.method() == QHttpServerRequest::Method::Head;
        if (request.method() != QHttpServerRequest::Method::Get && !head) {
            responder.write(Status::MethodNotAllowed);
            return;
        }
        // Only files inside the tree: the path is resolved and must stay under the root.
        const QString relative = request.url().path().mid(1);
        const QFileInfo file(m_root.filePath(relative));
        const QString canonical = file.canonicalFilePath();
        if (relative.contains(QLatin1String("..")) || canonical.isEmpty() || !canonical.startsWith(m_root.path() + QLatin1Char('/'))
            || !file.isFile()) {
            responder.write(QByteArrayLiteral("not found\n"), "text/plain", Status::NotFound);
            return;
        }
        QFile content(canonical);
        if (!content.open(QIODevice::ReadOnly)) {
            responder.write(Status::Forbidden);
            return;
        }
        const qint64 size = content.size();
        const QByteArray etag = '"' + QByteArray::number(size, 16) + '-' + QByteArray::number(file.lastModified().toMSecsSinceEpoch(), 16) + '"';
        const QByteArray type = file.suffix() == QLatin1String("txt") ? QByteArrayLiteral("text/plain; charset=utf-8")
                                                                      : QMimeDatabase().mimeTypeForFile(file).name().toLatin1();
        // A range is honoured unless If-Range names another version of the file.
        const QByteArray ifRange = request.value("If-Range");
        const bool sameVersion = ifRange.isEmpty() || ifRange == etag || ifRange == httpDate(file.lastModified());
        const QByteArray rangeHeader = request.value("Range");
        std::optional<std::pair<qint64, qint64>> range;
        if (!rangeHeader.isEmpty() && sameVersion) {
            range = parseByteRange(rangeHeader, size);
            if (!range) {
                responder.writeStatusLine(Status::RequestRangeNotSatisfiable);
                responder.writeHeader("Content-Range", "bytes */" + QByteArray::number(size));
                responder.writeHeader("Content-Length", "0");
                responder.writeBody(QByteArray());
                return;
            }
        }
        const qint64 from = range ? range->first : 0;
        const qint64 length = range ? range->second - range->first + 1 : size;
        responder.writeStatusLine(range ? Status::PartialContent : Status::Ok);
        responder.writeHeader("Content-Type", type);
        responder.writeHeader("Content-Length", QByteArray::number(length));
        responder.writeHeader("Accept-Ranges", "bytes");
        responder.writeHeader("ETag", etag);
        responder.writeHeader("Last-Modified", httpDate(file.lastModified()));
        if (range)
            responder.writeHeader("Content-Range", "bytes " + QByteArray::number(range->first) + '-' + QByteArray::number(range->second) + '/'
                                                      + QByteArray::number(size));
        if (head) {
            responder.writeBody(QByteArray());
            return;
        }
        content.seek(from);
        responder.writeBody(content.read(length));
    });
}

UpdateServer::~UpdateServer() = default;

quint16 UpdateServer::listen(const QHostAddress &address, quint16 port, QString *error)
{
    if (!m_root.exists()) {
        *error = QStringLiteral("no directory %1").arg(m_root.path());
        return 0;
    }
    m_port = m_server.listen(address, port);
    if (!m_port)
        *error = QStringLiteral("can't listen on port %1").arg(port);
    return m_port;
}

bool UpdateServer::advertise(const QString &name, int priority, QString *error)
{
    m_advertiser = std::make_unique<ServiceAdvertiser>();
    return m_advertiser->advertise(name, QStringLiteral("_velmoraupdates._tcp"), m_port,
                                   {QStringLiteral("iospath=/ios/last.txt"), QStringLiteral("priority=%1").arg(priority)}, error);
}
