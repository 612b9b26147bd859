#include "analytics/RequestBuilder.h"

#include "platform/Compression.h"

#include <QCoreApplication>
#include <QSysInfo>

namespace RequestBuilder {

namespace {
QNetworkRequest baseRequest(const QUrl &url)
{
    QNetworkRequest request(url);
    request.setHeader(QNetworkRequest::ContentTypeHeader, QByteArrayLiteral("text/plain; charset=utf-8"));
    request.setRawHeader("User-Agent", userAgent());
    // Neither a cached answer nor a cached copy: every hit must reach the service.
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
    request.setAttribute(QNetworkRequest::CacheSaveControlAttribute, false);
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
    HitRequest get{baseRequest(withQuery), {}, false, withQuery.isValid()};
    return get;
}

HitRequest requestPostUrl(const QUrl &url, const QByteArray &payload, Compression compression)
{
    HitRequest post{baseRequest(url), payload, true, true};
    if (compression == Deflate || compression == Gzip) {
        post.body = ::Compression::compress(payload, compression == Gzip ? ::Compression::Format::Gzip : ::Compression::Format::Deflate);
        post.valid = !post.body.isEmpty();
        post.request.setRawHeader("Content-Encoding", compression == Gzip ? "gzip" : "deflate");
    }
    post.request.setHeader(QNetworkRequest::ContentLengthHeader, post.body.size());
    return post;
}

}
