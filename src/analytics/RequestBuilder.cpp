#include "analytics/RequestBuilder.h"

#include "platform/Compression.h"

#include <QCoreApplication>
#include <QSysInfo>

namespace RequestBuilder {

namespace {
HttpExchange::Request baseRequest(const QByteArray &method, const QUrl &url)
{
    HttpExchange::Request request;
    request.method = method;
    request.url = url;
    request.headers = {{"Content-Type", "text/plain; charset=utf-8"}, {"User-Agent", userAgent()}, {"Cache-Control", "no-cache"}};
    return request;
}
}

QByteArray userAgent()
{
    const QString version = QCoreApplication::applicationVersion().isEmpty() ? QStringLiteral("1") : QCoreApplication::applicationVersion();
    return QStringLiteral("Velmora/%1 (%2 %3)").arg(version, QSysInfo::productType(), QSysInfo::productVersion()).toUtf8();
}

HitRequest requestGetUrl(const QUrl &url, const QByteArray &payload)
{
    QUrl withQuery = url;
    // The payload is already percent-encoded; a trailing newline isn't part of a query.
    withQuery.setQuery(QString::fromLatin1(payload.trimmed()), QUrl::StrictMode);
    return {baseRequest("GET", withQuery), withQuery.isValid()};
}

HitRequest requestPostUrl(const QUrl &url, const QByteArray &payload, Compression compression)
{
    HitRequest post{baseRequest("POST", url), true};
    post.request.body = payload;
    if (compression == Deflate || compression == Gzip) {
        post.request.body = ::Compression::compress(payload, compression == Gzip ? ::Compression::Format::Gzip : ::Compression::Format::Deflate);
        post.valid = !post.request.body.isEmpty();
        post.request.headers.append({QByteArrayLiteral("Content-Encoding"), compression == Gzip ? QByteArrayLiteral("gzip") : QByteArrayLiteral("deflate")});
    }
    return post;
}

}
