#pragma once

#include "HitSink.h"

class Database;

// Hits in an SQLite file: the embedded default for one collector on one machine. Another
// process holding the file makes a store wait up to `busyTimeoutMs`, then fail.
class SqliteHitSink final : public HitSink
{
public:
    static constexpr int busyTimeoutMs = 2000;

    explicit SqliteHitSink(QString path);
    ~SqliteHitSink() override;

    bool open(QString *error) override;
    bool store(const QList<CollectedHit> &hits, const QMap<QString, int> &rejections, QString *error) override;
    bool summary(QJsonObject &out, QString *error) override;
    QString describe() const override;

private:
    QString m_path;
    std::unique_ptr<Database> m_db;
};
