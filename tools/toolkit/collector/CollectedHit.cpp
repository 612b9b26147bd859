#include "CollectedHit.h"

#include <QCryptographicHash>
#include <QStringList>
#include <QUrlQuery>

namespace {
const QStringList hitTypes = {QStringLiteral("event"), QStringLiteral("screenview"), QStringLiteral("appview"),
                              QStringLiteral("pageview"), QStringLiteral("exception"), QStringLiteral("transaction"),
                              QStringLiteral("item"), QStringLiteral("timing"), QStringLiteral("social")};

QString identityOf(QUrlQuery query)
{
    if (const QString z = query.queryItemValue(QStringLiteral("z"), QUrl::FullyDecoded); !z.isEmpty())
        return QLatin1String("z:") + z;
    if (const QString number = query.queryItemValue(QStringLiteral("_s"), QUrl::FullyDecoded); !number.isEmpty())
        return QLatin1String("s:") + number;
    query.removeAllQueryItems(QStringLiteral("qt"));
    return QLatin1String("p:")
           + QString::fromLatin1(QCryptographicHash::hash(query.query(QUrl::FullyEncoded).toUtf8(), QCryptographicHash::Sha256).toHex());
}
}

std::optional<CollectedHit> CollectedHit::parse(const QByteArray &line, QString *why)
{
    why->clear();
    if (line.size() > maxBytes) {
        *why = QStringLiteral("hit larger than %1 bytes").arg(maxBytes);
        return std::nullopt;
    }
    const QUrlQuery query(QString::fromUtf8(line));
    const auto value = [&query](const char *key) { return query.queryItemValue(QLatin1String(key), QUrl::FullyDecoded); };
    CollectedHit hit{value("t"), value("tid"), value("cid"), value("ec"), value("ea"), value("el"), value("ev"), value("cd"), -1,
                     value("z"), line, {}, 1};
    if (!hitTypes.contains(hit.type))
        *why = QStringLiteral("unknown hit type");
    else if (hit.trackingId.isEmpty() || hit.clientId.isEmpty())
        *why = QStringLiteral("no tracking or client id");
    else if (hit.type == QLatin1String("event") && (hit.category.isEmpty() || hit.action.isEmpty()))
        *why = QStringLiteral("an event needs a category and an action");
    if (query.hasQueryItem(QStringLiteral("ht"))) {
        bool ok = false;
        hit.hitTime = value("ht").toLongLong(&ok);
        if (!ok || hit.hitTime < 0)
            *why = QStringLiteral("hit time is not a number");
    }
    if (!why->isEmpty())
        return std::nullopt;
    hit.identity = identityOf(query);
    return hit;
}
