#include "analytics/HitEncoding.h"

#include <QUrl>

namespace HitEncoding {

namespace {
QByteArray encoded(const QString &text) { return QUrl::toPercentEncoding(text); }
}

QByteArray parametersForHit(const Hit &hit, qint64 nowMs)
{
    QList<QByteArray> fields;
    for (auto it = hit.parameters.constBegin(); it != hit.parameters.constEnd(); ++it) {
        if (!it.key().startsWith(QLatin1Char('&')) || it.key() == QLatin1String("&z"))
            continue;
        const QByteArray key = encoded(it.key().mid(1));
        fields.append(it.value().isEmpty() ? key : key + '=' + encoded(it.value()));
    }
    if (hit.hasTimestamp()) {
        fields.append("ht=" + QByteArray::number(quint64(hit.timestamp)));
        // A clock set back since the hit was made gives no age rather than a negative one.
        if (nowMs - hit.timestamp >= 1)
            fields.append("qt=" + QByteArray::number(nowMs - hit.timestamp));
    }
    const auto cacheBuster = hit.parameters.constFind(QStringLiteral("&z"));
    if (cacheBuster != hit.parameters.constEnd())
        fields.append("z=" + encoded(cacheBuster.value()));
    return fields.join('&');
}

QByteArray buildPayload(const QList<QByteArray> &encodedHits)
{
    QByteArray payload;
    for (const QByteArray &line : encodedHits)
        payload += line + '\n';
    return payload;
}

bool usesSecureTransport(const Hit &hit) { return hit.parameters.value(QStringLiteral("useSecure")) != QLatin1String("0"); }

quint32 clientHash(const QString &clientId)
{
    // FNV-1a over the UTF-8 bytes: the same client lands in the same bucket on every run.
    quint32 hash = 2166136261u;
    for (const char byte : clientId.toUtf8()) {
        hash ^= quint8(byte);
        hash *= 16777619u;
    }
    return hash;
}

bool passesSampling(const HitParameters &parameters)
{
    const auto rate = parameters.constFind(QStringLiteral("&sf"));
    if (rate == parameters.constEnd())
        return true;
    bool ok = false;
    const double percent = rate.value().toDouble(&ok);
    if (!ok)
        return true;
    return double(clientHash(parameters.value(QStringLiteral("&cid"))) % 10000) < percent * 100.0;
}

}
