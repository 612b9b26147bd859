#include "HitSink.h"

#include "PostgresHitSink.h"
#include "SqliteHitSink.h"

#include <QHash>

std::unique_ptr<HitSink> HitSink::forLocation(const QString &location)
{
    if (location.startsWith(QLatin1String("postgresql://")) || location.startsWith(QLatin1String("postgres://")))
        return std::make_unique<PostgresHitSink>(location);
    if (location.startsWith(QLatin1String("sqlite:")))
        return std::make_unique<SqliteHitSink>(location.mid(7));
    return std::make_unique<SqliteHitSink>(location);
}

QList<CollectedHit> HitSink::mergeCopies(const QList<CollectedHit> &hits)
{
    QList<CollectedHit> merged;
    QHash<QString, qsizetype> seen;
    merged.reserve(hits.size());
    for (const CollectedHit &hit : hits) {
        const QString key = hit.trackingId + QChar(0) + hit.clientId + QChar(0) + hit.identity;
        if (const auto it = seen.constFind(key); it != seen.cend()) {
            merged[*it].copies += hit.copies;
            continue;
        }
        seen.insert(key, merged.size());
        merged.append(hit);
    }
    return merged;
}

bool HitSink::summarise(const Rows &rows, const std::function<QString(const QString &)> &dayOf, QJsonObject &out, QString *error)
{
    // A number each, then a count per key each.
    const std::pair<const char *, QString> numbers[] = {
        {"total", QStringLiteral("SELECT '', count(*) FROM hits")},
        {"rejected", QStringLiteral("SELECT '', coalesce(sum(count), 0) FROM rejected")},
        {"duplicates", QStringLiteral("SELECT '', coalesce(sum(copies - 1), 0) FROM hits")},
    };
    const std::pair<const char *, QString> counts[] = {
        {"types", QStringLiteral("SELECT hit_type, count(*) FROM hits GROUP BY 1 ORDER BY 1")},
        {"events", QStringLiteral("SELECT category || ' / ' || action || ' / ' || coalesce(label, ''), count(*)"
                                  " FROM hits WHERE hit_type = 'event' GROUP BY 1 ORDER BY 1")},
        {"screens", QStringLiteral("SELECT screen, count(*) FROM hits WHERE hit_type IN ('screenview', 'appview') GROUP BY 1 ORDER BY 1")},
        {"days", QStringLiteral("SELECT %1, count(*) FROM hits GROUP BY 1 ORDER BY 1").arg(dayOf(QStringLiteral("coalesce(hit_time, received)")))},
    };
    QJsonObject summary;
    for (const auto &[name, sql] : numbers) {
        const auto result = rows(sql);
        if (!result)
            break;
        summary.insert(QLatin1String(name), result->isEmpty() ? 0 : result->first().second);
    }
    for (const auto &[name, sql] : counts) {
        const auto result = rows(sql);
        if (!result)
            break;
        QJsonObject perKey;
        for (const auto &[key, count] : *result)
            perKey.insert(key, count);
        summary.insert(QLatin1String(name), perKey);
    }
    if (summary.size() != int(std::size(numbers) + std::size(counts))) {
        *error = QStringLiteral("can't summarise the hits");
        return false;
    }
    out = summary;
    return true;
}
