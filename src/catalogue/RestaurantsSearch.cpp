// Free-text search over the on-device index, the filters, and the sorted, lettered listing.

#include "catalogue/Restaurants.h"

#include "catalogue/CatalogueDates.h"
#include "catalogue/PlaceListing.h"
#include "catalogue/SearchTerms.h"
#include "platform/Database.h"
#include "platform/DatabaseQueue.h"
#include "platform/DerivedKeys.h"
#include "platform/Logging.h"

#include <QDir>
#include <QFile>

#include <algorithm>
#include <chrono>
#ifdef __GLIBC__
#include <malloc.h>
#endif
#ifdef Q_OS_LINUX
#include <sys/resource.h>
#include <unistd.h>
#endif
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

// Sorted, so that equal sets give equal text.
QString joinedIds(const QSet<int> &ids)
{
    QList<int> sorted(ids.begin(), ids.end());
    std::sort(sorted.begin(), sorted.end());
    return joinedIds(sorted);
}

}

namespace {
// Reading and folding the listing makes and frees hundreds of thousands of strings on a thread
// of its own; glibc would keep that thread's freed pages resident for good. Not under a
// sanitizer, whose allocator is its own: there glibc's trim would set up glibc's arenas late,
// from a worker thread, and its accounting of threads that end then trips its own assertion.
void releaseFreedMemory()
{
#if defined(__GLIBC__) && !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
    malloc_trim(0);
#endif
}

// What the calling thread does from here on yields to the rest: work wanted soon but not for
// the next frames (the first frames of a start are the window's). Never starved, though: a
// search may be waiting for it.
void yieldToTheWindow()
{
#ifdef Q_OS_LINUX
    setpriority(PRIO_PROCESS, id_t(gettid()), 10);
#endif
}
}

std::shared_ptr<DatabaseQueue> Restaurants::ftsQueue() const
{
    std::lock_guard lock(m_mutex);
    return m_fts_dbq;
}

namespace {
// The index is a cache: a file SQLite can't read, or whose dated table can't be read, is deleted
// and made anew.
std::optional<QDate> indexDate(Database &db, bool &damaged)
{
    std::optional<QDate> date;
    bool dated = false;
    damaged = !db.forEachRow(QStringLiteral("SELECT 1 FROM sqlite_master WHERE type = 'table' AND name = 'extras'"), {},
                             [&](const ResultSet &) {
                                 dated = true;
                                 return false;
                             });
    if (damaged || !dated)
        return date;
    damaged = !db.forEachRow(QStringLiteral("SELECT val FROM extras WHERE key = ? LIMIT 1"), {versionDateKey},
                             [&](const ResultSet &row) {
                                 date = CatalogueDates::parseCompact(row.stringForColumn(0));
                                 return false;
                             });
    return date;
}

void removeIndexFiles(const QString &path)
{
    QFile::remove(path);
    QFile::remove(path + QStringLiteral("-journal"));
}
}

void Restaurants::openSearchIndex(bool rebuild)
{
    const auto catalogue = dbq();
    const auto version = databaseVersionDate();
    if (!catalogue || !version || m_env.caches.isEmpty())
        return;
    // One build at a time: a new request waits for the one under way.
    {
        std::lock_guard threadLock(m_indexThreadMutex);
        join(m_indexBuild);
    }
    const QString path = m_env.caches + QStringLiteral("/fts.db");
    if (rebuild)
        removeIndexFiles(path);

    auto index = std::make_shared<DatabaseQueue>(path, Database::ReadWrite | Database::Create);
    if (!index->isOpen()) {
        qCDebug(lcSearch) << "Can't open the search index" << path;
        return;
    }
    bool damaged = false;
    std::optional<QDate> date;
    index->inDatabase([&](Database &db) { date = indexDate(db, damaged); });
    if (damaged) {
        qCInfo(lcSearch) << "The search index" << path << "is damaged; making it anew";
        index.reset();
        removeIndexFiles(path);
        index = std::make_shared<DatabaseQueue>(path, Database::ReadWrite | Database::Create);
    }
    if (date == *version && !damaged) {
        std::lock_guard lock(m_mutex);
        m_fts_dbq = index;
        return;
    }

    // Until the new index is ready, free text is matched by a scan of the places in memory.
    quint64 generation;
    {
        std::lock_guard lock(m_mutex);
        m_fts_dbq.reset();
        generation = m_generation;
    }
    const QString cataloguePath = catalogue->path();
    // A thread of its own rather than a pool's: one build at a time, joined before the next.
    std::lock_guard threadLock(m_indexThreadMutex);
    m_indexBuild = std::thread([this, index, cataloguePath, version = *version, generation] {
        // The first list needs the listing more than search needs the index: on a phone's few
        // cores the build waits for it, and for the start to be over, rather than share them;
        // and it gives way to the window after that (until it is done, a search scans the
        // listing in memory for the same places).
        placeListing();
        waitForTheStart();
        yieldToTheWindow();
        if (buildSearchIndex(*index, cataloguePath, version)) {
            std::lock_guard lock(m_mutex);
            if (m_generation == generation)
                m_fts_dbq = index;
        }
        releaseFreedMemory();
    });
}

bool Restaurants::buildSearchIndex(DatabaseQueue &index, const QString &cataloguePath, QDate version)
{
    // A connection of its own, so the screens' reads never wait for the build; keying it costs no
    // derivation, as the load already made this file's key.
    Database source(cataloguePath);
    if (!source.openWithFlags(Database::ReadOnly | Database::OneThread) || !source.setKey(dbkey)) {
        qCDebug(lcSearch).noquote() << "ERROR inserting into fts db: " + source.lastErrorMessage();
        return false;
    }
    // The date goes in with the rows, in one transaction: a build cut short by a crash leaves
    // the old index or none, never a dated empty one.
    bool built = false;
    index.inTransaction([&](Database &db, bool &rollback) {
        rollback = true;
        if (!db.executeStatements(QStringLiteral("DROP TABLE IF EXISTS extras; DROP TABLE IF EXISTS fts;"
                                                 " CREATE TABLE extras(key TEXT, val TEXT)"))
            || !db.executeUpdate(QStringLiteral("INSERT INTO extras VALUES(?, ?)"),
                                 {versionDateKey, CatalogueDates::formatCompact(version)})
            || !db.executeStatements(createIndex)) {
            qCDebug(lcSearch).noquote() << "Error creating tables in fts db: " + db.lastErrorMessage();
            return;
        }
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
        if (!read && failure.isEmpty())
            failure = source.lastErrorMessage();
        if (!failure.isEmpty()) {
            qCDebug(lcSearch).noquote() << "ERROR inserting into fts db: " + failure;
            return;
        }
        rollback = false;
        built = true;
    });
    return built;
}

void Restaurants::startIsOver()
{
    {
        std::lock_guard lock(m_startMutex);
        m_startOver = true;
    }
    m_startChanged.notify_all();
}

void Restaurants::waitForTheStart()
{
    // A start that never shows a list (the first run's steps, the subscription screen) lets
    // the work go on after a while all the same.
    constexpr auto longestStart = std::chrono::seconds(3);
    std::unique_lock lock(m_startMutex);
    m_startChanged.wait_for(lock, longestStart, [this] { return m_startOver; });
}

void Restaurants::join(std::thread &thread)
{
    // Whoever joins background work has no start to leave the cores to: work still waiting for
    // the start to end goes on at once.
    if (!thread.joinable())
        return;
    startIsOver();
    thread.join();
}

void Restaurants::waitForSearchIndex()
{
    std::lock_guard lock(m_indexThreadMutex);
    join(m_indexBuild);
    join(m_listingRead);
}

void Restaurants::readListingAhead(const QString &path)
{
    // The first list asks for the listing at once. Reading it from the newest file while that
    // file is still being checked and loaded, and while the window is being made, lets the list
    // find it ready; if the file is refused the read is simply not used. A start on the same
    // catalogue as the one before takes the listing that start kept.
    std::lock_guard lock(m_indexThreadMutex);
    join(m_listingRead);
    std::promise<std::shared_ptr<const PlaceListing>> read;
    {
        std::lock_guard listLock(m_listMutex);
        m_aheadListing = {path, read.get_future().share()};
    }
    m_listingRead = std::thread([this, path, read = std::move(read)]() mutable {
        const QString kept = m_env.caches.isEmpty() ? QString() : m_env.caches + QStringLiteral("/listing.bin");
        const QByteArray stamp = kept.isEmpty() ? QByteArray() : listingStamp(path);
        std::shared_ptr<const PlaceListing> listing;
        bool keptBefore = false;
        if (!stamp.isEmpty())
            keptBefore = bool(listing = PlaceListing::load(kept, stamp));
        QString error;
        if (!listing)
            listing = readListing(path, error);
        read.set_value(listing);
        // Folding is for the first search; a search asked before it ends folds at its own pace.
        yieldToTheWindow();
        waitForTheStart();
        // Kept before folding lets the addresses go.
        if (listing && !keptBefore && !stamp.isEmpty() && QDir().mkpath(m_env.caches) && !listing->save(kept, stamp))
            qCInfo(lcSearch) << "The listing could not be kept in" << kept;
        if (listing)
            listing->fold();
        releaseFreedMemory();
    });
}

QByteArray Restaurants::listingStamp(const QString &path)
{
    // Its size, its time to the nanosecond and the random salt it begins with tell one
    // catalogue file from any other, and from itself once changed.
    const FileStamp file = stampOf(path);
    const std::optional<QByteArray> salt = DerivedKeys::saltOf(path);
    if (file.size < 0 || !salt)
        return {};
    QByteArray stamp = *salt;
    const qint64 modified = qint64(file.modified.time_since_epoch().count());
    stamp.append(reinterpret_cast<const char *>(&file.size), sizeof file.size);
    stamp.append(reinterpret_cast<const char *>(&modified), sizeof modified);
    return stamp;
}

std::shared_ptr<const PlaceListing> Restaurants::readListing(const QString &path, QString &error)
{
    // A connection of its own (keyed from the derived key), so that screens' reads don't wait.
    // Used by this thread alone. The read passes over each page once: a page cache of a few
    // pages stays in the processor's own cache, where SQLite's usual 2 MB would only be filled.
    Database source(path);
    if (source.openWithFlags(Database::ReadOnly | Database::OneThread) && source.setKey(dbkey)
        && source.executeStatements(QStringLiteral("PRAGMA cache_size=16"))) {
        return PlaceListing::read(source, error);
    }
    error = source.lastErrorMessage();
    return nullptr;
}

std::shared_ptr<const PlaceListing> Restaurants::placeListing() const
{
    const auto catalogue = dbq();
    if (!catalogue)
        return nullptr;
    std::lock_guard lock(m_listMutex);
    quint64 generation;
    {
        std::lock_guard fieldsLock(m_mutex);
        generation = m_generation;
    }
    if (m_listing && m_listingGeneration == generation)
        return m_listing;
    std::shared_ptr<const PlaceListing> listing;
    QString error;
    // A listing read ahead from a file that was then refused is let go here.
    auto ahead = std::exchange(m_aheadListing, {});
    if (ahead.first == catalogue->path() && ahead.second.valid())
        listing = ahead.second.get();
    if (!listing)
        listing = readListing(catalogue->path(), error);
    if (!listing) {
        qCCritical(lcCatalogue) << "Damaged catalogue: reading sort names failed:" << error;
        return nullptr;
    }
    m_listing = listing;
    m_listingGeneration = generation;
    return listing;
}

QSet<int> Restaurants::searchIds(const QString &text) const
{
    QSet<int> ids;
    const auto index = ftsQueue();
    if (!index) {
        // No index yet (it is being built): the same answer from the places in memory.
        if (const auto listing = dbq() ? placeListing() : nullptr)
            return listing->matching(text);
        return ids;
    }
    QStringList terms = wordsOf(text);
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

QSet<int> Restaurants::searchIds(const QString &text, const QList<int> &within) const
{
    const auto listing = dbq() ? placeListing() : nullptr;
    return listing ? listing->matching(text, &within) : QSet<int>();
}

namespace {
// The statement that reads the places passing `filters`.
QString filterStatement(const Filters &filters, bool hideClosed)
{
    QString sql = QStringLiteral("SELECT id FROM restaurants");
    if (!filters.municipalities.isEmpty())
        sql += QStringLiteral(" WHERE (county_id IN (") + joinedIds(filters.municipalities) + QStringLiteral("))");
    if (!filters.prices.isEmpty())
        sql += QStringLiteral(" AND (price_rank_id IN (") + joinedIds(filters.prices) + QStringLiteral("))");
    if (hideClosed)
        sql += QStringLiteral(" AND oof != 1");
    return sql;
}

QString filterCacheKey(const QString &sql, const Filters &filters)
{
    return sql + QLatin1Char('|') + joinedIds(filters.cuisines);
}
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
    const QString sql = filterStatement(filters, hideClosed);
    const QString cacheKey = filterCacheKey(sql, filters);

    // Typing asks for the same filters at every key: answered from memory within one catalogue.
    std::shared_ptr<const PlaceCuisines> placeCuisines;
    {
        std::lock_guard lock(m_mutex);
        if (m_filteredGeneration == m_generation)
            if (const auto cached = m_filteredCache.constFind(cacheKey); cached != m_filteredCache.constEnd())
                return *cached;
        if (!filters.cuisines.isEmpty())
            placeCuisines = m_rest_cuisines;
    }
    bool read = false;
    catalogue->inDatabase([&](Database &db) {
        read = db.forEachRow(sql, {}, [&](const ResultSet &row) {
            const int id = row.intForColumn(0);
            if (filters.cuisines.isEmpty() || placeCuisines->sharesAny(id, filters.cuisines))
                ids.insert(id);
            return true;
        });
        if (!read) {
            ids.clear();
            qCCritical(lcCatalogue) << "Damaged catalogue: filtering places failed:" << db.lastErrorMessage();
        }
    });
    if (read) {
        std::lock_guard lock(m_mutex);
        if (m_filteredGeneration != m_generation || m_filteredCache.size() >= 16) {
            m_filteredCache.clear();
            m_filteredGeneration = m_generation;
        }
        m_filteredCache.insert(cacheKey, ids);
    }
    return ids;
}

QList<SortedEntry> Restaurants::sortedEntries(const QSet<int> &ids, const QString &text)
{
    const auto listing = placeListing();
    return listing ? listing->sorted(ids, text) : QList<SortedEntry>();
}

QList<SortedEntry> Restaurants::searchListing(const Filters &filters, bool hideClosed, const QString &text) const
{
    if (!dbq())
        return {};
    // Typing asks for the same filters at every key: their places are made bits once.
    const QString key = filterCacheKey(filterStatement(filters, hideClosed), filters);
    // The filters' places come from the catalogue (or filteredIds' memory), not the listing: at
    // start they are read while the listing is still being read.
    const QSet<int> ids = filteredIds(filters, hideClosed);
    const auto listing = placeListing();
    if (!listing)
        return {};
    std::shared_ptr<const PlaceBits> places;
    {
        std::lock_guard lock(m_mutex);
        const auto &[cachedKey, cachedListing, cachedBits] = m_filteredBits;
        if (cachedKey == key && cachedListing == listing)
            places = cachedBits;
    }
    if (!places) {
        places = std::make_shared<const PlaceBits>(listing->bitsOf(ids));
        std::lock_guard lock(m_mutex);
        m_filteredBits = {key, listing, places};
    }
    return listing->listed(*places, text);
}
