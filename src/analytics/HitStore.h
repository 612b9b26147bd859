#pragma once

#include "analytics/Hit.h"

#include <QString>

#include <memory>

class Database;

// The hits waiting to be sent: an SQLite file under the application's own directory. Every hit
// is committed as it is added, so a hit outlives the process from the moment addHit returns and
// there is nothing left to save when the app goes to the background or ends. A hit leaves only
// through deleteHits (after the service answered), the count cap or the age limit, or opt-out.
// Used on one thread only: the measurement thread.
class HitStore
{
public:
    static constexpr int defaultMaxHitCount = 2000;
    static constexpr qint64 maxHitAgeMs = 2592000LL * 1000; // 30 days

    explicit HitStore(QString path);
    ~HitStore();

    // Opens or creates the file. A file that isn't a readable store is moved aside (its name +
    // ".damaged") and a fresh one made, with one log line. False only when no store can be made.
    bool open();
    bool isOpen() const;
    const QString &path() const { return m_path; }

    int maxHitCount = defaultMaxHitCount; // 0: no cap

    // Stores one hit; a hit without a time gets the present one. False if it couldn't be written.
    bool addHit(const HitParameters &parameters, qint64 timestampMs);
    int hitCount();
    // Up to `limit` hits, oldest first.
    HitList fetchHits(int limit);
    void deleteHits(const HitList &hits);
    void deleteAllHits();
    // Over the cap, the oldest excess hits go.
    void deleteExcessHits();
    // Hits stamped before `cutoffMs` go; a hit from the future (a clock set back) stays.
    void removeStaleHits(qint64 cutoffMs);

    // The next number of the hits sent under this tracking id by this client, from 1; empty when
    // it can't be kept.
    QString nextHitNumberForTrackingId(const QString &trackingId, const QString &clientId);

    // The present time the store stamps hits with; tests set a clock of their own.
    qint64 (*now)() = nullptr;

private:
    bool createSchema();
    qint64 currentTime() const;

    QString m_path;
    std::unique_ptr<Database> m_db;
};
