#include "update/UpdateService.h"

#include <QStringDecoder>

namespace {
std::optional<QString> utf8(const QByteArray &bytes)
{
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = decoder.decode(bytes);
    if (decoder.hasError())
        return std::nullopt;
    return text;
}
}

UpdateService UpdateService::found(const QString &domain, const QString &type, const QString &name)
{
    UpdateService service;
    service.domain = domain;
    service.type = type;
    service.name = name;
    return service;
}

UpdateService UpdateService::resolved(const QString &domain, const QString &type, const QString &name, const QString &host, int port,
                                      const QByteArray &txt, const QString &address)
{
    UpdateService service = found(domain, type, name);
    if (host.isEmpty())
        return service;
    service.host = host;
    service.port = port;
    service.txtdata = txt;
    const QMap<QString, QByteArray> entries = parseTXTRecord(txt);
    QString path = defaultPath;
    if (const auto value = entries.find(QStringLiteral("iospath")); value != entries.end())
        path = utf8(*value).value_or(defaultPath);
    service.priority = defaultPriority;
    if (const auto value = entries.find(QStringLiteral("priority")); value != entries.end()) {
        bool ok = false;
        const int number = utf8(*value).value_or(QString()).toInt(&ok);
        if (ok)
            service.priority = number;
    }
    if (!path.startsWith(QLatin1Char('/')))
        path.prepend(QLatin1Char('/'));
    QString where = address.isEmpty() ? host : address;
    if (where.contains(QLatin1Char(':')))
        where = QLatin1Char('[') + where + QLatin1Char(']'); // IPv6
    const QUrl url(QStringLiteral("http://%1:%2%3").arg(where).arg(port).arg(path), QUrl::StrictMode);
    if (url.isValid() && !url.host().isEmpty())
        service.url = url;
    return service;
}

QMap<QString, QByteArray> UpdateService::parseTXTRecord(const QByteArray &txt)
{
    QMap<QString, QByteArray> entries;
    qsizetype offset = 0;
    while (offset < txt.size()) {
        const int length = quint8(txt.at(offset));
        if (length > txt.size() - offset - 1)
            return {};
        const QByteArray entry = txt.mid(offset + 1, length);
        const auto decoded = utf8(entry);
        if (!decoded || !decoded->contains(QLatin1Char('=')))
            return {};
        offset += length + 1;
        const qsizetype equals = entry.indexOf('=');
        const QString key = QString::fromUtf8(entry.left(equals));
        if (!entries.contains(key)) // the first of a repeated key counts, as DNS-SD says
            entries.insert(key, entry.mid(equals + 1));
    }
    return entries;
}

QString UpdateService::description() const
{
    if (host.isEmpty())
        return QStringLiteral("UpdateService(%1 %2 \"%3\" unresolved)").arg(domain, type, name);
    return QStringLiteral("UpdateService(%1 %2 \"%3\" resolved:%4:%5)").arg(domain, type, name, host).arg(port);
}
