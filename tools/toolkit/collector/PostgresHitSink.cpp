#include "PostgresHitSink.h"

#include <QDateTime>

#include <algorithm>

namespace {
const QByteArray insertHead = "INSERT INTO hits (received, hit_type, tracking_id, client_id, hit_identity, category, action, label, value,"
                              " screen, hit_time, cache_buster, payload, copies) VALUES ";
const QByteArray insertTail = " ON CONFLICT (tracking_id, client_id, hit_identity) DO UPDATE SET copies = hits.copies + EXCLUDED.copies";
constexpr int columns = 14;

QByteArray text(const QString &value)
{
    return value.isNull() ? QByteArray("") : value.toUtf8();
}
}

PostgresHitSink::PostgresHitSink(QString url)
    : m_connection(std::move(url))
{
}

bool PostgresHitSink::open(QString *error)
{
    if (!m_connection.connect(error) || !createTables(error)) {
        *error = QStringLiteral("can't keep hits in %1: %2").arg(describe(), *error);
        return false;
    }
    return true;
}

bool PostgresHitSink::createTables(QString *error)
{
    // Collectors started together would race to make the tables: one at a time, under a lock
    // that ends with the transaction.
    const bool made = m_connection.run("BEGIN", error) && m_connection.run("SELECT pg_advisory_xact_lock(72631)", error)
                      && m_connection.run("CREATE TABLE IF NOT EXISTS hits (id bigserial PRIMARY KEY, received bigint NOT NULL,"
                                          " hit_type text NOT NULL, tracking_id text NOT NULL, client_id text NOT NULL,"
                                          " hit_identity text NOT NULL, category text, action text, label text, value text, screen text,"
                                          " hit_time bigint, cache_buster text, payload text NOT NULL, copies integer NOT NULL DEFAULT 1,"
                                          " UNIQUE (tracking_id, client_id, hit_identity))",
                                          error)
                      && m_connection.run("CREATE TABLE IF NOT EXISTS rejected (reason text PRIMARY KEY, count bigint NOT NULL)", error)
                      && m_connection.run("COMMIT", error);
    if (!made) {
        QString ignored;
        m_connection.run("ROLLBACK", &ignored);
    }
    return made;
}

bool PostgresHitSink::ensureConnected(QString *error)
{
    if (m_connection.isConnected())
        return true;
    if (m_sinceFailedConnect.isValid() && m_sinceFailedConnect.elapsed() < reconnectIntervalMs) {
        *error = QStringLiteral("the database is unreachable; trying again shortly");
        return false;
    }
    if (m_connection.connect(error)) {
        m_sinceFailedConnect.invalidate();
        return true;
    }
    m_sinceFailedConnect.start();
    return false;
}

bool PostgresHitSink::store(const QList<CollectedHit> &hits, const QMap<QString, int> &rejections, QString *error)
{
    if (!ensureConnected(error))
        return false;
    if (write(hits, rejections, error))
        return true;
    QString ignored;
    if (m_connection.isConnected())
        m_connection.run("ROLLBACK", &ignored);
    else
        m_connection.disconnect();
    return false;
}

bool PostgresHitSink::write(const QList<CollectedHit> &hits, const QMap<QString, int> &rejections, QString *error)
{
    // One order of keys for every collector: two transactions taking the same keys in opposite
    // orders would deadlock, and one of them would fail.
    QList<const CollectedHit *> ordered;
    ordered.reserve(hits.size());
    for (const CollectedHit &hit : hits)
        ordered.append(&hit);
    std::sort(ordered.begin(), ordered.end(), [](const CollectedHit *a, const CollectedHit *b) {
        return std::tie(a->trackingId, a->clientId, a->identity) < std::tie(b->trackingId, b->clientId, b->identity);
    });
    if (!m_connection.run("BEGIN", error))
        return false;
    const QByteArray received = QByteArray::number(QDateTime::currentMSecsSinceEpoch());
    for (qsizetype from = 0; from < ordered.size(); from += rowsPerStatement) {
        const qsizetype count = std::min<qsizetype>(rowsPerStatement, ordered.size() - from);
        QByteArray sql = insertHead;
        QList<QByteArray> parameters;
        parameters.reserve(count * columns);
        for (qsizetype i = 0; i < count; ++i) {
            const CollectedHit &hit = *ordered.at(from + i);
            sql += i ? ",(" : "(";
            for (int c = 1; c <= columns; ++c)
                sql += (c > 1 ? ",$" : "$") + QByteArray::number(i * columns + c);
            sql += ')';
            parameters << received << text(hit.type) << text(hit.trackingId) << text(hit.clientId) << text(hit.identity) << text(hit.category)
                       << text(hit.action) << text(hit.label) << text(hit.value) << text(hit.screen)
                       << (hit.hitTime >= 0 ? QByteArray::number(hit.hitTime) : QByteArray()) << text(hit.cacheBuster) << hit.payload
                       << QByteArray::number(hit.copies);
        }
        if (!m_connection.run(sql + insertTail, parameters, error))
            return false;
    }
    for (auto it = rejections.cbegin(); it != rejections.cend(); ++it)
        if (!m_connection.run("INSERT INTO rejected (reason, count) VALUES ($1, $2)"
                              " ON CONFLICT (reason) DO UPDATE SET count = rejected.count + EXCLUDED.count",
                              {it.key().toUtf8(), QByteArray::number(it.value())}, error))
            return false;
    return m_connection.run("COMMIT", error);
}

bool PostgresHitSink::summary(QJsonObject &out, QString *error)
{
    if (!m_connection.connect(error)) {
        *error = QStringLiteral("can't read hits from %1: %2").arg(describe(), *error);
        return false;
    }
    const auto tables = m_connection.run("SELECT count(*) FROM information_schema.columns WHERE table_schema = current_schema()"
                                         " AND table_name = 'hits' AND column_name = 'copies'",
                                         {}, error);
    if (!tables || tables->value(0).value(0) != "1") {
        *error = QStringLiteral("%1 holds no collected hits").arg(describe());
        return false;
    }
    const Rows rows = [this](const QString &sql) -> std::optional<QList<std::pair<QString, qint64>>> {
        QString ignored;
        const auto result = m_connection.run(sql.toUtf8(), {}, &ignored);
        if (!result)
            return std::nullopt;
        QList<std::pair<QString, qint64>> pairs;
        for (const PgConnection::Row &row : *result)
            pairs.append({QString::fromUtf8(row.value(0)), row.value(1).toLongLong()});
        return pairs;
    };
    return summarise(rows, [](const QString &ms) { return QStringLiteral("to_char(to_timestamp(%1 / 1000.0) AT TIME ZONE 'UTC', 'YYYY-MM-DD')").arg(ms); },
                     out, error);
}
