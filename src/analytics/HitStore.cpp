#include "analytics/HitStore.h"

#include "platform/Database.h"
#include "platform/Logging.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>

namespace {
QString encodeParameters(const HitParameters &parameters)
{
    QJsonObject object;
    for (auto it = parameters.constBegin(); it != parameters.constEnd(); ++it)
        object.insert(it.key(), it.value());
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
}

HitParameters decodeParameters(const QString &text)
{
    HitParameters parameters;
    const QJsonObject object = QJsonDocument::fromJson(text.toUtf8()).object();
    for (auto it = object.constBegin(); it != object.constEnd(); ++it)
        parameters.insert(it.key(), it.value().toString());
    return parameters;
}

QString idList(const HitList &hits)
{
    QStringList ids;
    for (const Hit &hit : hits)
        ids.append(QString::number(hit.id));
    return ids.join(QLatin1Char(','));
}
}

HitStore::HitStore(QString path)
    : m_path(std::move(path))
{
}

HitStore::~HitStore() = default;

bool HitStore::isOpen() const { return m_db && m_db->isOpen(); }

qint64 HitStore::currentTime() const { return now ? now() : QDateTime::currentMSecsSinceEpoch(); }

bool HitStore::open()
{
    QDir().mkpath(QFileInfo(m_path).absolutePath());
    if (createSchema())
        return true;
    // Not a store we can read: keep the bytes for whoever wants to look, start afresh.
    qCWarning(lcAnalytics) << "The hit store" << m_path << "is damaged (" << (m_db ? m_db->lastErrorMessage() : QString())
                           << "); moved aside and made anew";
    m_db.reset();
    const QString aside = m_path + QStringLiteral(".damaged");
    QFile::remove(aside);
    QFile::rename(m_path, aside);
    QFile::remove(m_path + QStringLiteral("-wal"));
    QFile::remove(m_path + QStringLiteral("-shm"));
    return createSchema();
}

bool HitStore::createSchema()
{
    m_db = std::make_unique<Database>(m_path);
    if (!m_db->open())
        return false;
    // WAL: a commit is one append, and a committed hit survives the process being killed.
    const bool made = m_db->executeStatements(QStringLiteral(
                          "PRAGMA journal_mode=WAL; PRAGMA synchronous=NORMAL;"
                          "CREATE TABLE IF NOT EXISTS hits (id INTEGER PRIMARY KEY AUTOINCREMENT, parameters TEXT NOT NULL,"
                          " timestamp INTEGER NOT NULL);"
                          "CREATE TABLE IF NOT EXISTS hit_numbers (tracking_id TEXT NOT NULL, client_id TEXT NOT NULL,"
                          " next INTEGER NOT NULL, PRIMARY KEY (tracking_id, client_id));"))
                      && m_db->executeQuery(QStringLiteral("SELECT count(*) FROM hits")).next();
    if (!made)
        m_db->close();
    return made;
}

bool HitStore::addHit(const HitParameters &parameters, qint64 timestampMs)
{
    if (!isOpen())
        return false;
    const bool added = m_db->executeUpdate(QStringLiteral("INSERT INTO hits (parameters, timestamp) VALUES (?, ?)"),
                                           {encodeParameters(parameters), timestampMs >= 0 ? timestampMs : currentTime()});
    if (!added)
        qCWarning(lcAnalytics) << "A hit could not be stored:" << m_db->lastErrorMessage();
    else
        deleteExcessHits();
    return added;
}

int HitStore::hitCount()
{
    if (!isOpen())
        return 0;
    ResultSet rows = m_db->executeQuery(QStringLiteral("SELECT count(*) FROM hits"));
    return rows.next() ? rows.intForColumn(0) : 0;
}

HitList HitStore::fetchHits(int limit)
{
    HitList hits;
    if (!isOpen())
        return hits;
    m_db->forEachRow(QStringLiteral("SELECT id, parameters, timestamp FROM hits ORDER BY id LIMIT ?"), {limit},
                     [&hits](const ResultSet &row) {
                         hits.append({row.longForColumn(0), decodeParameters(row.stringForColumn(1)), row.longForColumn(2)});
                         return true;
                     });
    return hits;
}

void HitStore::deleteHits(const HitList &hits)
{
    if (isOpen() && !hits.isEmpty())
        m_db->executeStatements(QStringLiteral("DELETE FROM hits WHERE id IN (%1)").arg(idList(hits)));
}

void HitStore::deleteAllHits()
{
    if (isOpen())
        m_db->executeStatements(QStringLiteral("DELETE FROM hits"));
}

void HitStore::deleteExcessHits()
{
    if (!isOpen() || maxHitCount <= 0)
        return;
    const int excess = hitCount() - maxHitCount;
    if (excess > 0)
        m_db->executeUpdate(QStringLiteral("DELETE FROM hits WHERE id IN (SELECT id FROM hits ORDER BY id LIMIT ?)"), {excess});
}

void HitStore::removeStaleHits(qint64 cutoffMs)
{
    if (isOpen())
        m_db->executeUpdate(QStringLiteral("DELETE FROM hits WHERE timestamp < ?"), {cutoffMs});
}

QString HitStore::nextHitNumberForTrackingId(const QString &trackingId, const QString &clientId)
{
    if (!isOpen())
        return {};
    const bool counted = m_db->executeUpdate(QStringLiteral("INSERT OR IGNORE INTO hit_numbers (tracking_id, client_id, next) VALUES (?, ?, 0)"),
                                             {trackingId, clientId})
                         && m_db->executeUpdate(QStringLiteral("UPDATE hit_numbers SET next = next + 1 WHERE tracking_id = ? AND client_id = ?"),
                                                {trackingId, clientId});
    ResultSet rows = m_db->executeQuery(QStringLiteral("SELECT next FROM hit_numbers WHERE tracking_id = ? AND client_id = ?"),
                                        {trackingId, clientId});
    return counted && rows.next() ? QString::number(rows.longForColumn(0)) : QString();
}
