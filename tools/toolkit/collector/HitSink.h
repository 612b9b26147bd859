#pragma once

#include "CollectedHit.h"

#include <QJsonObject>
#include <QList>
#include <QMap>
#include <QString>

#include <functional>
#include <memory>
#include <optional>
#include <utility>

// Where a collector keeps its hits: an SQLite file (one machine) or a PostgreSQL database
// (several collectors, a publisher's analysts). Both keep the same tables: `hits`, one row per
// hit, unique on (tracking_id, client_id, hit_identity), with `copies` counting how often it
// arrived; and `rejected`, invalid hits counted per reason.
class HitSink
{
public:
    virtual ~HitSink() = default;

    // "FILE" or "sqlite:FILE", or a "postgresql://" (or "postgres://") connection URL.
    static std::unique_ptr<HitSink> forLocation(const QString &location);

    // Opens the store and makes its tables when they are missing.
    virtual bool open(QString *error) = 0;
    // All or nothing in one transaction: true once committed. A hit stored before, by this
    // collector or another, is not stored again; its copies are counted. `hits` must not hold
    // two hits of one identity (see mergeCopies).
    virtual bool store(const QList<CollectedHit> &hits, const QMap<QString, int> &rejections, QString *error) = 0;
    // The summary `velmora-catalogue hits` prints: the total, hits per type, event, screen and day,
    // the rejected and the copies received beyond the first.
    virtual bool summary(QJsonObject &out, QString *error) = 0;
    // Where the hits go, for the collector's start line (no password).
    virtual QString describe() const = 0;

    // Folds hits of one identity into one, adding their copies; the order of first arrival stays.
    static QList<CollectedHit> mergeCopies(const QList<CollectedHit> &hits);

protected:
    // Rows of (text, number) from one query.
    using Rows = std::function<std::optional<QList<std::pair<QString, qint64>>>(const QString &sql)>;
    // The summary from queries both dialects understand; `dayOf` turns a column of milliseconds
    // since 1970 into "YYYY-MM-DD" (UTC), which each dialect writes its own way.
    static bool summarise(const Rows &rows, const std::function<QString(const QString &)> &dayOf, QJsonObject &out, QString *error);
};
