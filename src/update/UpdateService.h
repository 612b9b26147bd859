#pragma once

#include <QByteArray>
#include <QDate>
#include <QHash>
#include <QMap>
#include <QString>
#include <QUrl>

#include <optional>

// One update server on the local network, as DNS-SD names it. Two are the same server when their
// domain, type and name agree, resolved or not.
struct UpdateService {
    QString domain;
    QString type;
    QString name;
    QString host;           // empty until resolved
    int port = -1;          // -1 until resolved
    QByteArray txtdata;     // the TXT record as received
    std::optional<QUrl> url; // where its update information is
    int priority = 0;
    QDate date;             // its catalogue's date, once it answered
    std::optional<QUrl> dburl;

    static constexpr int defaultPriority = 500;
    static inline const QString defaultPath = QStringLiteral("/ios/last.txt");

    // A service just found: no host yet, so no URL.
    static UpdateService found(const QString &domain, const QString &type, const QString &name);
    // A resolved service: its URL from the host, the port and the TXT record's "iospath" and
    // "priority", with their defaults for anything missing or unreadable. With a numeric
    // `address` the URL uses it: a Linux without mDNS name lookup can't reach "host.local".
    static UpdateService resolved(const QString &domain, const QString &type, const QString &name, const QString &host, int port,
                                  const QByteArray &txt, const QString &address = QString());

    // The record's entries, walked first: a length byte past the end, an entry that isn't UTF-8
    // or has no "=", and the whole record counts as empty.
    static QMap<QString, QByteArray> parseTXTRecord(const QByteArray &txt);

    QString description() const;
    bool operator==(const UpdateService &other) const { return domain == other.domain && type == other.type && name == other.name; }
};

inline size_t qHash(const UpdateService &service, size_t seed = 0)
{
    return qHash(service.domain + QLatin1Char('\n') + service.type + QLatin1Char('\n') + service.name, seed);
}
