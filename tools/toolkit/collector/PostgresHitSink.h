#pragma once

#include "HitSink.h"
#include "PgConnection.h"

#include <QElapsedTimer>

// Hits in a PostgreSQL database, for a publisher past one machine: any number of collectors
// write into it at once, and a hit two of them received is stored once (the unique key decides,
// inside the database). A connection lost is made again on the next store, at most once a
// `reconnectIntervalMs`; until then a store fails at once, so a collector whose database is
// down turns clients away quickly instead of holding them.
class PostgresHitSink final : public HitSink
{
public:
    static constexpr int reconnectIntervalMs = 500;
    // Rows of one INSERT: 14 parameters each, well under the protocol's 65,535.
    static constexpr int rowsPerStatement = 500;

    explicit PostgresHitSink(QString url);

    bool open(QString *error) override;
    bool store(const QList<CollectedHit> &hits, const QMap<QString, int> &rejections, QString *error) override;
    bool summary(QJsonObject &out, QString *error) override;
    QString describe() const override { return m_connection.redactedUrl(); }

private:
    bool ensureConnected(QString *error);
    bool createTables(QString *error);
    bool write(const QList<CollectedHit> &hits, const QMap<QString, int> &rejections, QString *error);

    PgConnection m_connection;
    QElapsedTimer m_sinceFailedConnect;
};
