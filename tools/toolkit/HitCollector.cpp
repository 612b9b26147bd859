#include "HitCollector.h"

#include "platform/Compression.h"
#include "platform/Database.h"

#include <QDateTime>
#include <QDebug>
#include <QJsonArray>

namespace {
const QStringList hitTypes = {QStringLiteral("event"), QStringLiteral("screenview"), QStringLiteral("appview"),
                              QStringLiteral("pageview"), QStringLiteral("exception"), QStringLiteral("transaction"),
                              QStringLiteral("item"), QStringLiteral("timing"), QStringLiteral("social")};

// The smallest transparent GIF: what a measurement service answers a single hit with.
const QByteArray pixel = QByteArray::fromBase64("R0lGODlhAQABAIAAAAAAAP///yH5BAEAAAAALAAAAAABAAEAAAIBRAA7");
}

HitCollector::HitCollector(const QString &databasePath)
    : m_path(databasePath)
    , m_intake(maxBodyBytes, [this](const HttpIntake::Request &request) { return collect(request); })
{
}

HitCollector::~HitCollector() = default;

bool HitCollector::open(QString *error)
{
    m_db = std::make_unique<Database>(m_path);
    if (!m_db->open()
        || !m_db->executeStatements(QStringLiteral("PRAGMA journal_mode=WAL; PRAGMA busy_timeout=%1;").arg(busyTimeoutMs)
                                    + QStringLiteral(
            "CREATE TABLE IF NOT EXISTS hits (id INTEGER PRIMARY KEY, received INTEGER NOT NULL, hit_type TEXT NOT NULL,"
            " tracking_id TEXT, client_id TEXT, category TEXT, action TEXT, label TEXT, value TEXT, screen TEXT,"
            " hit_time INTEGER, cache_buster TEXT, payload TEXT NOT NULL);"
            "CREATE TABLE IF NOT EXISTS rejected (id INTEGER PRIMARY KEY, received INTEGER NOT NULL, reason TEXT NOT NULL);"))) {
        *error = QStringLiteral("can't keep hits in %1: %2").arg(m_path, m_db->lastErrorMessage());
        return false;
    }
    return true;
}

quint16 HitCollector::listen(const QHostAddress &address, quint16 port, QString *error)
{
    const quint16 listening = m_intake.listen(address, port);
    if (!listening)
        *error = QStringLiteral("can't listen on port %1").arg(port);
    return listening;
}

std::optional<CollectedHit> HitCollector::parseHit(const QByteArray &line, QString *why)
{
    if (line.size() > maxHitBytes) {
        *why = QStringLiteral("hit larger than %1 bytes").arg(maxHitBytes);
        return std::nullopt;
    }
    const QUrlQuery query(QString::fromUtf8(line));
    const auto value = [&query](const char *key) { return query.queryItemValue(QLatin1String(key), QUrl::FullyDecoded); };
    CollectedHit hit{value("t"), value("tid"), value("cid"), value("ec"), value("ea"), value("el"), value("ev"), value("cd"), -1,
                     value("z"), line};
    if (!hitTypes.contains(hit.type))
        *why = QStringLiteral("unknown hit type \"%1\"").arg(hit.type.left(40));
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
    return hit;
}

std::optional<HitCollector::Answer> HitCollector::collect(const HttpIntake::Request &request)
{
    const QByteArray &path = request.path, &method = request.method, &query = request.query, &body = request.body,
                     &encoding = request.contentEncoding;
    const bool single = path == "/collect";
    if (!single && path != "/batch")
        return Answer{404, "not found\n"};
    if (method != "POST" && !(single && method == "GET"))
        return Answer{405, "method not allowed\n"};
    if (const int status = single ? collectStatusOverride : batchStatusOverride)
        return Answer{status, "unavailable\n"};
    if (body.size() > maxBodyBytes)
        return Answer{413, "body too large\n"};

    QByteArray payload = single && method == "GET" ? query : body;
    if (encoding == "gzip" || encoding == "deflate") {
        QByteArray inflated;
        if (!Compression::decompress(body, encoding == "gzip" ? Compression::Format::Gzip : Compression::Format::Deflate,
                                     maxInflatedBytes, inflated))
            return Answer{400, "body does not decompress\n"};
        payload = inflated;
    } else if (!encoding.isEmpty() && encoding != "identity") {
        return Answer{415, "unknown content encoding\n"};
    }

    QList<CollectedHit> hits;
    QStringList rejections;
    const QList<QByteArray> lines = payload.split('\n');
    if (single && lines.size() > 2)
        return Answer{400, "one hit only; use /batch\n"};
    for (const QByteArray &line : lines) {
        if (line.trimmed().isEmpty())
            continue;
        QString why;
        if (auto hit = parseHit(line.trimmed(), &why))
            hits.append(*hit);
        else
            rejections.append(why);
    }
    if (!store(hits, rejections))
        return std::nullopt;
    if (single)
        return hits.isEmpty() ? Answer{400, (rejections.value(0, QStringLiteral("no hit")) + QLatin1Char('\n')).toUtf8()}
                              : Answer{200, pixel, "image/gif"};
    return Answer{200, QStringLiteral("%1 stored, %2 rejected\n").arg(hits.size()).arg(rejections.size()).toUtf8()};
}

bool HitCollector::store(const QList<CollectedHit> &hits, const QStringList &rejections)
{
    const qint64 received = QDateTime::currentMSecsSinceEpoch();
    // All of a request or nothing: a hit is answered only once it is stored.
    bool stored = m_db->executeStatements(QStringLiteral("BEGIN IMMEDIATE"));
    for (const CollectedHit &hit : hits)
        stored = stored && m_db->executeUpdate(QStringLiteral("INSERT INTO hits (received, hit_type, tracking_id, client_id, category, action, label, value,"
                                           " screen, hit_time, cache_buster, payload) VALUES (?,?,?,?,?,?,?,?,?,?,?,?)"),
                            {received, hit.type, hit.trackingId, hit.clientId, hit.category, hit.action, hit.label, hit.value, hit.screen,
                             hit.hitTime >= 0 ? QVariant(hit.hitTime) : QVariant(), hit.cacheBuster, QString::fromUtf8(hit.payload)});
    for (const QString &why : rejections)
        stored = stored && m_db->executeUpdate(QStringLiteral("INSERT INTO rejected (received, reason) VALUES (?, ?)"), {received, why});
    if (stored && m_db->executeStatements(QStringLiteral("COMMIT")))
        return true;
    qWarning().noquote() << "velmora-catalogue collect: hits not stored, the request goes unanswered:" << m_db->lastErrorMessage();
    m_db->executeStatements(QStringLiteral("ROLLBACK"));
    return false;
}

bool HitCollector::summary(const QString &databasePath, QJsonObject &out, QString *error)
{
    Database db(databasePath);
    if (!db.openWithFlags(Database::ReadOnly) || !db.tableExists(QStringLiteral("hits"))) {
        *error = QStringLiteral("%1 is not a file of collected hits").arg(databasePath);
        return false;
    }
    const auto counts = [&db](const QString &sql) {
        QJsonObject object;
        db.forEachRow(sql, {}, [&object](const ResultSet &row) {
            object.insert(row.stringForColumn(0), row.longForColumn(1));
            return true;
        });
        return object;
    };
    const auto number = [&db](const QString &sql) {
        ResultSet row = db.executeQuery(sql);
        return row.next() ? row.longForColumn(0) : 0;
    };
    out = {
        {QStringLiteral("total"), number(QStringLiteral("SELECT count(*) FROM hits"))},
        {QStringLiteral("rejected"), number(QStringLiteral("SELECT count(*) FROM rejected"))},
        {QStringLiteral("duplicates"), number(QStringLiteral("SELECT count(*) - count(DISTINCT cache_buster) FROM hits WHERE cache_buster <> ''"))},
        {QStringLiteral("types"), counts(QStringLiteral("SELECT hit_type, count(*) FROM hits GROUP BY 1 ORDER BY 1"))},
        {QStringLiteral("events"), counts(QStringLiteral("SELECT category || ' / ' || action || ' / ' || ifnull(label, ''), count(*)"
                                                         " FROM hits WHERE hit_type = 'event' GROUP BY 1 ORDER BY 1"))},
        {QStringLiteral("screens"), counts(QStringLiteral("SELECT screen, count(*) FROM hits WHERE hit_type IN ('screenview', 'appview')"
                                                          " GROUP BY 1 ORDER BY 1"))},
        {QStringLiteral("days"), counts(QStringLiteral("SELECT date(coalesce(hit_time, received) / 1000, 'unixepoch'), count(*)"
                                                       " FROM hits GROUP BY 1 ORDER BY 1"))},
    };
    return true;
}
