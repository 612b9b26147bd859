// Free-text search over the on-device index, the filters, and the sorted, lettered listing.

#include "catalogue/Restaurants.h"

#include "catalogue/CatalogueDates.h"
#include "catalogue/EditDistance.h"
#include "catalogue/SearchTerms.h"
#include "platform/Database.h"
#include "platform/DatabaseQueue.h"
#include "platform/Logging.h"

#include <QFile>
#include <QRegularExpression>

#include <algorithm>
#include <limits>
#include <vector>

namespace {

const QString createIndex = QStringLiteral(
    "CREATE VIRTUAL TABLE IF NOT EXISTS fts USING fts4(terms, tokenize=unicode61, prefix=\"1,2,3\", content=\"\")");
const QString versionDateKey = QStringLiteral("version_date");

QString joinedIds(const QList<int> &ids)
{
    QStringList parts;
    parts.reserve(ids.size());
    for (int id : ids)
        parts.append(QString::number(id));
    return parts.join(QLatin1Char(','));
}

QString joinedIds(const QSet<int> &ids)
{
    return joinedIds(QList<int>(ids.begin(), ids.end()));
}

// The first character of a sort name, upper-cased: the letter of its section.
QString sectionLetter(const QString &searchName)
{
    const int length = searchName.size() > 1 && searchName.at(0).isHighSurrogate() ? 2 : 1;
    return searchName.left(length).toUpper();
}

}

std::shared_ptr<DatabaseQueue> Restaurants::ftsQueue() const
{
    std::lock_guard lock(m_mutex);
    return m_fts_dbq;
}

void Restaurants::openSearchIndex(bool rebuild)
{
    const auto catalogue = dbq();
    const auto version = databaseVersionDate();
    if (!catalogue || !version || m_env.caches.isEmpty())
        return;
    const QString path = m_env.caches + QStringLiteral("/fts.db");
    if (rebuild)
        QFile::remove(path);
    {
        Database creator(path);
        if (!creator.openWithFlags(Database::ReadWrite | Database::Create)) {
            qCDebug(lcSearch) << "Can't open the search index" << path << creator.lastErrorMessage();
            return;
        }
    }
    const auto index = std::make_shared<DatabaseQueue>(path, Database::ReadWrite | Database::Create);
    {
        std::lock_guard lock(m_mutex);
        m_fts_dbq = index;
    }

    // An index without a date never matches a catalogue.
    QDate indexDate(1970, 1, 1);
    index->inDatabase([&](Database &db) {
        if (!db.tableExists(QStringLiteral("extras")))
            return;
        db.forEachRow(QStringLiteral("SELECT val FROM extras WHERE key = ? LIMIT 1"), {versionDateKey}, [&](const ResultSet &row) {
            indexDate = CatalogueDates::parseCompact(row.stringForColumn(0)).value_or(indexDate);
            return false;
        });
    });
    if (indexDate == *version)
        return;

    bool created = false;
    index->inDatabase([&](Database &db) {
        db.executeStatements(QStringLiteral("DROP TABLE IF EXISTS extras; DROP TABLE IF EXISTS fts;"
                                            " CREATE TABLE extras(key TEXT, val TEXT)"));
        if (!db.executeUpdate(QStringLiteral("INSERT INTO extras VALUES(?, ?)"),
                              {versionDateKey, CatalogueDates::formatCompact(*version)})) {
            qCDebug(lcSearch).noquote() << "Error creating tables in fts db: " + db.lastErrorMessage();
            return;
        }
        created = db.executeStatements(createIndex);
        if (!created)
            qCDebug(lcSearch).noquote() << "Error creating tables in fts db: " + db.lastErrorMessage();
    });
    if (!created)
        return;

    // The catalogue's queue outside, the index's transaction inside: the only place taking both.
    // A failure stops the filling but the transaction commits, so a partial index stays current
    // until the next catalogue or an explicit rebuild.
    catalogue->inDatabase([&](Database &source) {
        index->inTransaction([&](Database &db, bool &) {
            Statement insert = db.prepare(QStringLiteral("INSERT INTO fts(docid, terms) VALUES(?, ?)"));
            QString failure;
            const bool read = source.forEachRow(QStringLiteral("SELECT id,name,address FROM restaurants"), {},
                                                [&](const ResultSet &row) {
                                                    if (insert.run({row.intForColumn(0),
                                                                    searchTerms(row.stringForColumn(1), row.stringForColumn(2))}))
                                                        return true;
                                                    failure = db.lastErrorMessage();
                                                    return false;
                                                });
            if (!read)
                failure = source.lastErrorMessage();
            if (!failure.isEmpty())
                qCDebug(lcSearch).noquote() << "ERROR inserting into fts db: " + failure;
        });
    });
}

QSet<int> Restaurants::searchIds(const QString &text) const
{
    QSet<int> ids;
    const auto index = ftsQueue();
    if (!index)
        return ids;
    static const QRegularExpression blanks(QStringLiteral("\\s+"));
    QStringList terms = text.trimmed().split(blanks, Qt::SkipEmptyParts);
    for (QString &term : terms)
        term += QLatin1Char('*');
    const QString query = terms.join(QLatin1Char(' '));
    index->inDatabase([&](Database &db) {
        // What the user typed goes to FTS as it stands: its own syntax may not parse, and then
        // the answer is simply empty.
        const bool read = db.forEachRow(QStringLiteral("SELECT docid FROM fts WHERE terms MATCH (?)"), {query},
                                        [&](const ResultSet &row) {
                                            ids.insert(row.intForColumn(0));
                                            return true;
                                        });
        if (!read) {
            ids.clear();
            qCDebug(lcSearch) << "No matches for" << query << "-" << db.lastErrorMessage();
        }
    });
    return ids;
}

QSet<int> Restaurants::filteredIds(const Filters &filters, bool hideClosed) const
{
    QSet<int> ids;
    const auto catalogue = dbq();
    if (!catalogue)
        return ids;
    // Every condition after the first is appended with AND, so the municipalities must lead;
    // the search screen always names them.
    if (filters.municipalities.isEmpty() && (!filters.prices.isEmpty() || hideClosed)) {
        qCWarning(lcSearch) << "Filtering by price or by closed places needs municipalities; no places";
        return ids;
    }
    QString sql = QStringLiteral("SELECT id FROM restaurants");
    if (!filters.municipalities.isEmpty())
        sql += QStringLiteral(" WHERE (county_id IN (") + joinedIds(filters.municipalities) + QStringLiteral("))");
    if (!filters.prices.isEmpty())
        sql += QStringLiteral(" AND (price_rank_id IN (") + joinedIds(filters.prices) + QStringLiteral("))");
    if (hideClosed)
        sql += QStringLiteral(" AND oof != 1");

    QHash<int, QSet<int>> placeCuisines;
    if (!filters.cuisines.isEmpty()) {
        std::lock_guard lock(m_mutex);
        placeCuisines = m_rest_cuisines;
    }
    catalogue->inDatabase([&](Database &db) {
        const bool read = db.forEachRow(sql, {}, [&](const ResultSet &row) {
            const int id = row.intForColumn(0);
            if (filters.cuisines.isEmpty() || placeCuisines.value(id).intersects(filters.cuisines))
                ids.insert(id);
            return true;
        });
        if (!read) {
            ids.clear();
            qCCritical(lcCatalogue) << "Damaged catalogue: filtering places failed:" << db.lastErrorMessage();
        }
    });
    return ids;
}

QList<SortedEntry> Restaurants::sortedEntries(const QSet<int> &ids, const QString &text)
{
    const auto catalogue = dbq();
    if (!catalogue)
        return {};

    struct Row {
        SortedEntry entry;
        QString searchName;
        double distance = 0;
    };
    std::vector<Row> rows;
    rows.reserve(ids.size());
    QList<int> missing;
    {
        std::lock_guard lock(m_listMutex);
        for (int id : ids) {
            const auto cached = m_search_name_cache.constFind(id);
            if (cached == m_search_name_cache.constEnd())
                missing.append(id);
            else if (!cached->isEmpty())
                rows.push_back({{id, sectionLetter(*cached)}, *cached});
        }
    }

    // Only places never listed before are read; the ids are ours, so they go into the text.
    // Batches keep each statement well below SQLite's length limit on the largest provinces.
    constexpr qsizetype batch = 20000;
    for (qsizetype start = 0; start < missing.size(); start += batch) {
        const QString sql = QStringLiteral("SELECT id,search_name,name FROM restaurants WHERE (id IN (")
            + joinedIds(missing.mid(start, batch)) + QStringLiteral("))");
        catalogue->inDatabase([&](Database &db) {
            std::lock_guard lock(m_listMutex);
            const bool read = db.forEachRow(sql, {}, [&](const ResultSet &row) {
                const int id = row.intForColumn(0);
                const QString name = row.stringForColumn(2);
                if (name.isNull())
                    m_name_cache.remove(id);
                else
                    m_name_cache.insert(id, name);
                // A place without a sort name drops out of every list; remembering that keeps a
                // second listing free of statements.
                const QString searchName = row.stringForColumn(1);
                m_search_name_cache.insert(id, searchName.isNull() ? QStringLiteral("") : searchName);
                if (!searchName.isEmpty())
                    rows.push_back({{id, sectionLetter(searchName)}, searchName});
                return true;
            });
            if (!read)
                qCCritical(lcCatalogue) << "Damaged catalogue: reading sort names failed:" << db.lastErrorMessage();
        });
    }

    if (text.isEmpty()) {
        std::sort(rows.begin(), rows.end(), [](const Row &a, const Row &b) { return a.searchName < b.searchName; });
    } else {
        const QString lowered = text.toLower();
        {
            std::lock_guard lock(m_listMutex);
            for (Row &row : rows) {
                const auto name = m_name_cache.constFind(row.entry.id);
                if (name == m_name_cache.constEnd())
                    row.distance = std::numeric_limits<double>::infinity();
                else
                    row.distance = name->toLower().contains(lowered) ? 0.0 : double(editDistance(text, *name));
            }
        }
        std::sort(rows.begin(), rows.end(), [](const Row &a, const Row &b) {
            if (a.entry.letter != b.entry.letter)
                return a.entry.letter < b.entry.letter;
            if (a.distance != b.distance)
                return a.distance < b.distance;
            return a.searchName < b.searchName;
        });
    }
    QList<SortedEntry> entries;
    entries.reserve(qsizetype(rows.size()));
    for (const Row &row : rows)
        entries.append(row.entry);
    return entries;
}
