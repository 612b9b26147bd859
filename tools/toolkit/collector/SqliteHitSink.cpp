#include "SqliteHitSink.h"

#include "platform/Database.h"

#include <QDateTime>
#include <QFileInfo>

SqliteHitSink::SqliteHitSink(QString path)
    : m_path(std::move(path))
{
}

SqliteHitSink::~SqliteHitSink() = default;

QString SqliteHitSink::describe() const
{
    return QFileInfo(m_path).absoluteFilePath();
}

bool SqliteHitSink::open(QString *error)
{
    m_db = std::make_unique<Database>(m_path);
    if (!m_db->open()) {
        *error = QStringLiteral("can't keep hits in %1: %2").arg(m_path, m_db->lastErrorMessage());
        return false;
    }
    if (m_db->tableExists(QStringLiteral("hits")) && !m_db->columnExists(QStringLiteral("hit_identity"), QStringLiteral("hits"))) {
        *error = QStringLiteral("%1 was written by an earlier collect, which kept copies of a hit apart; give a new file").arg(m_path);
        return false;
    }
    if (!m_db->executeStatements(QStringLiteral("PRAGMA journal_mode=WAL; PRAGMA busy_timeout=%1;").arg(busyTimeoutMs)
                                 + QStringLiteral(
            "CREATE TABLE IF NOT EXISTS hits (id INTEGER PRIMARY KEY, received INTEGER NOT NULL, hit_type TEXT NOT NULL,"
            " tracking_id TEXT NOT NULL, client_id TEXT NOT NULL, hit_identity TEXT NOT NULL, category TEXT, action TEXT, label TEXT,"
            " value TEXT, screen TEXT, hit_time INTEGER, cache_buster TEXT, payload TEXT NOT NULL, copies INTEGER NOT NULL DEFAULT 1,"
            " UNIQUE (tracking_id, client_id, hit_identity));"
            "CREATE TABLE IF NOT EXISTS rejected (reason TEXT PRIMARY KEY, count INTEGER NOT NULL);"))) {
        *error = QStringLiteral("can't keep hits in %1: %2").arg(m_path, m_db->lastErrorMessage());
        return false;
    }
    return true;
}

bool SqliteHitSink::store(const QList<CollectedHit> &hits, const QMap<QString, int> &rejections, QString *error)
{
    const qint64 received = QDateTime::currentMSecsSinceEpoch();
    bool stored = m_db->executeStatements(QStringLiteral("BEGIN IMMEDIATE"));
    // SQLCipher's SQLite predates upserts: a hit seen before gets its copies added, and the
    // insert that follows leaves it alone.
    if (stored && !hits.isEmpty()) {
        Statement counted = m_db->prepare(QStringLiteral(
            "UPDATE hits SET copies = copies + ? WHERE tracking_id = ? AND client_id = ? AND hit_identity = ?"));
        Statement insert = m_db->prepare(QStringLiteral(
            "INSERT OR IGNORE INTO hits (received, hit_type, tracking_id, client_id, hit_identity, category, action, label, value, screen,"
            " hit_time, cache_buster, payload, copies) VALUES (?,?,?,?,?,?,?,?,?,?,?,?,?,?)"));
        stored = counted.isValid() && insert.isValid();
        for (const CollectedHit &hit : hits)
            stored = stored && counted.run({hit.copies, hit.trackingId, hit.clientId, hit.identity})
                     && insert.run({received, hit.type, hit.trackingId, hit.clientId, hit.identity, hit.category, hit.action, hit.label,
                                    hit.value, hit.screen, hit.hitTime >= 0 ? QVariant(hit.hitTime) : QVariant(), hit.cacheBuster,
                                    QString::fromUtf8(hit.payload), hit.copies});
    }
    for (auto it = rejections.cbegin(); stored && it != rejections.cend(); ++it)
        stored = m_db->executeUpdate(QStringLiteral("UPDATE rejected SET count = count + ? WHERE reason = ?"), {it.value(), it.key()})
                 && m_db->executeUpdate(QStringLiteral("INSERT OR IGNORE INTO rejected (reason, count) VALUES (?, ?)"), {it.key(), it.value()});
    if (stored && m_db->executeStatements(QStringLiteral("COMMIT")))
        return true;
    *error = m_db->lastErrorMessage();
    m_db->executeStatements(QStringLiteral("ROLLBACK"));
    return false;
}

bool SqliteHitSink::summary(QJsonObject &out, QString *error)
{
    Database db(m_path);
    if (!db.openWithFlags(Database::ReadOnly) || !db.tableExists(QStringLiteral("hits"))
        || !db.columnExists(QStringLiteral("copies"), QStringLiteral("hits"))) {
        *error = QStringLiteral("%1 is not a file of collected hits").arg(m_path);
        return false;
    }
    const Rows rows = [&db](const QString &sql) -> std::optional<QList<std::pair<QString, qint64>>> {
        QList<std::pair<QString, qint64>> result;
        if (!db.forEachRow(sql, {}, [&result](const ResultSet &row) {
                result.append({row.stringForColumn(0), row.longForColumn(1)});
                return true;
            }))
            return std::nullopt;
        return result;
    };
    return summarise(rows, [](const QString &ms) { return QStringLiteral("date(%1 / 1000, 'unixepoch')").arg(ms); }, out, error);
}
