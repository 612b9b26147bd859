#include "catalogue/Restaurants.h"

#include "platform/DefaultKeys.h"
#include "platform/Notifications.h"
#include "catalogue/CatalogueChecks.h"
#include "catalogue/CatalogueDates.h"
#include "catalogue/CatalogueFiles.h"
#include "catalogue/PlaceListing.h"
#include "platform/DatabaseQueue.h"
#include "platform/Dispatch.h"
#include "platform/Localize.h"
#include "platform/Logging.h"
#include "platform/NotificationCenter.h"
#include "platform/OperationQueue.h"
#include "platform/Paths.h"
#include "platform/UserDefaults.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <array>
#include <filesystem>

const QString Restaurants::dbkey = QStringLiteral("Kr4{]%Tgpw");

namespace {
std::unique_ptr<Restaurants> sharedInstance;
std::mutex sharedMutex;

const QString versionDateQuery = QStringLiteral("SELECT val FROM extras WHERE key = 'version_date'");
const QString probeQuery = QStringLiteral("SELECT id FROM price_ranks LIMIT 1");

// Built-in province names; "ejemplo" is a test language no user can pick.
QMap<QString, QMap<int, QString>> builtInProvinceNames()
{
    return {
        {QStringLiteral("en"), {{1, QStringLiteral("Havana")}}},
        {QStringLiteral("fr"), {{1, QStringLiteral("La Havane")}}},
        {QStringLiteral("it"), {{1, QStringLiteral("Avana")}}},
        {QStringLiteral("ejemplo"), {{1, QStringLiteral("Habanorum")}, {19, QStringLiteral("Provinciorum Ficticiourum")}}},
    };
}

// Opens `path` read-only and keys it. Null when either step fails. The connection is used by
// one thread at a time (the load, then its DatabaseQueue's lock), so SQLite needn't lock too.
std::unique_ptr<Database> openKeyed(const QString &path, QString *error = nullptr)
{
    auto db = std::make_unique<Database>(path);
    if (!db->openWithFlags(Database::ReadOnly | Database::OneThread) || !db->setKey(Restaurants::dbkey)) {
        if (error)
            *error = db->lastErrorMessage();
        return nullptr;
    }
    return db;
}
}

// A candidate with, for the newest one, the keyed connection that read its date: handing it on
// spares the load one key derivation.
struct Restaurants::OpenedCandidate {
    QString path;
    QDate date;
    std::unique_ptr<Database> connection;
    FileStamp stamp; // as it was before the file was read
};

struct Restaurants::Geography {
    QMap<int, std::shared_ptr<Province>> provinces;
    QHash<int, int> munToProv;
    std::vector<PlaceMunicipalities::Entry> placesInOrder; // in table order
    QList<int> offerPlaces;
    QList<int> promoPlaces;
};

struct Restaurants::Staged {
    std::shared_ptr<DatabaseQueue> queue;
    Geography geography;
    PlaceCuisines cuisines;
    std::optional<QDate> version;
    QString versionString;
    QString subscriptionNumber;
    std::optional<QDate> expiry;
};

Restaurants::Environment Restaurants::standardEnvironment()
{
    return {Paths::documents(), Paths::caches(), &UserDefaults::standard(), Localize::currentLanguage(), Paths::applicationSupport()};
}

Restaurants &Restaurants::shared()
{
    QMutexLocker lock(&sharedMutex);
    if (!sharedInstance)
        sharedInstance = std::make_unique<Restaurants>(standardEnvironment());
    return *sharedInstance;
}

void Restaurants::setShared(std::unique_ptr<Restaurants> instance)
{
    QMutexLocker lock(&sharedMutex);
    sharedInstance = std::move(instance);
}

Restaurants::Restaurants(Environment environment)
    : m_env(std::move(environment))
    , m_localizedProvinceNames(builtInProvinceNames())
    , m_lang(m_env.language.isEmpty() ? QStringLiteral("en") : m_env.language)
    , m_reloads(std::make_unique<OperationQueue>(1))
{
    loadDatabase();
}

Restaurants::~Restaurants()
{
    m_reloads->waitUntilAllOperationsAreFinished();
    waitForSearchIndex();
}

bool Restaurants::ready() const
{
    QMutexLocker lock(&m_mutex);
    return m_ready;
}

QString Restaurants::databasePath() const
{
    QMutexLocker lock(&m_mutex);
    return m_databasePath;
}

std::optional<QDate> Restaurants::databaseVersionDate() const
{
    QMutexLocker lock(&m_mutex);
    return m_databaseVersionDate;
}

std::shared_ptr<DatabaseQueue> Restaurants::dbq() const
{
    QMutexLocker lock(&m_mutex);
    return m_dbq;
}

QString Restaurants::language() const
{
    QMutexLocker lock(&m_mutex);
    return m_lang;
}

Restaurants::FileStamp Restaurants::stampOf(const QString &path)
{
    // A file being written by SQLite can be unreadable while its journal is there and unchanged
    // once it is gone, so the journal is part of the stamp.
    // Times to the nanosecond: a file written statement by statement changes within a millisecond.
    std::error_code error;
    const std::filesystem::path file(path.toStdString());
    const auto size = std::filesystem::file_size(file, error);
    const auto modified = std::filesystem::last_write_time(file, error);
    return {error ? -1 : qint64(size), modified, QFileInfo::exists(path + QStringLiteral("-journal"))};
}

bool Restaurants::isRefused(const QString &path, const FileStamp &stamp) const
{
    QMutexLocker lock(&m_mutex);
    const auto it = m_refused.constFind(path);
    return it != m_refused.constEnd() && *it == stamp;
}

void Restaurants::refuse(const QString &path, const FileStamp &stamp, const QString &reason) const
{
    // Remembered with the file's stamp from before it was read: a file still being written is
    // looked at again once it changes, and an unchanged bad file is neither re-read nor logged
    // every second.
    {
        QMutexLocker lock(&m_mutex);
        m_refused.insert(path, stamp);
    }
    qCWarning(lcCatalogue).noquote() << "Not using" << path << "-" << reason << "- the file is kept";
}

QStringList Restaurants::refusedFiles() const
{
    QHash<QString, FileStamp> refused;
    {
        QMutexLocker lock(&m_mutex);
        refused = m_refused;
    }
    QStringList names;
    for (auto it = refused.cbegin(); it != refused.cend(); ++it)
        if (stampOf(it.key()) == it.value())
            names.append(QFileInfo(it.key()).fileName());
    names.sort();
    return names;
}

std::vector<Restaurants::OpenedCandidate> Restaurants::scanCandidates(bool keepConnections) const
{
    std::vector<OpenedCandidate> found;
    if (m_env.documents.isEmpty())
        return found;
    const QDir documents(m_env.documents);
    if (!documents.exists())
        return found;
    for (const QString &name : documents.entryList(QDir::Files | QDir::Hidden)) {
        if (!CatalogueFiles::isCandidateName(name))
            continue;
        const QString path = documents.filePath(name);
        const FileStamp stamp = stampOf(path);
        if (isRefused(path, stamp))
            continue;
        QString error;
        std::unique_ptr<Database> db = openKeyed(path, &error);
        if (!db) {
            refuse(path, stamp, QStringLiteral("can't open: ") + error);
            continue;
        }
        ResultSet rows = db->executeQuery(versionDateQuery);
        std::optional<QDate> date;
        if (rows.isValid() && rows.next())
            date = CatalogueDates::parseCompact(rows.stringForColumn(0));
        rows.close();
        if (!date) {
            refuse(path, stamp, QStringLiteral("not a catalogue with this key, or no version date"));
            continue;
        }
        found.push_back({path, *date, keepConnections ? std::move(db) : nullptr, stamp});
    }
    std::stable_sort(found.begin(), found.end(), [](const OpenedCandidate &a, const OpenedCandidate &b) {
        return a.date > b.date;
    });
    return found;
}

QList<Restaurants::Candidate> Restaurants::availableDatabases() const
{
    QList<Candidate> result;
    for (const OpenedCandidate &candidate : scanCandidates(false))
        result.append({candidate.path, candidate.date});
    return result;
}

Restaurants::StageOutcome Restaurants::stage(OpenedCandidate &candidate, bool deepCheck, Staged &staged, QString &reason) const
{
    std::unique_ptr<Database> probe = std::move(candidate.connection);
    if (!probe || !probe->isOpen()) {
        probe = openKeyed(candidate.path, &reason);
        if (!probe)
            return StageOutcome::Refused;
    }
    bool hasRow = false;
    {
        ResultSet rows = probe->executeQuery(probeQuery);
        if (!rows.isValid()) {
            reason = QStringLiteral("the key probe failed: ") + probe->lastErrorMessage();
            return StageOutcome::Refused;
        }
        hasRow = rows.next();
        if (rows.failed()) {
            reason = QStringLiteral("the key probe failed: ") + rows.errorMessage();
            return StageOutcome::Refused;
        }
    }
    // A keyed file with an empty price_ranks is not an error: the catalogue in use, if any, stays.
    if (!hasRow)
        return StageOutcome::EmptyPrices;
    if (deepCheck && !(reason = CatalogueChecks::integrityFault(*probe)).isEmpty())
        return StageOutcome::Refused;
    if (!readGeography(*probe, staged.geography, reason) || !readCuisinesAndExtras(*probe, staged, reason))
        return StageOutcome::Refused;
    if (!(reason = CatalogueChecks::readsFault(*probe)).isEmpty())
        return StageOutcome::Refused;
    staged.queue = std::make_shared<DatabaseQueue>(std::move(probe));
    return StageOutcome::Loaded;
}

QString Restaurants::catalogueFault(const QString &path) const
{
    OpenedCandidate candidate{path, QDate(), nullptr, stampOf(path)};
    Staged staged;
    QString reason;
    switch (stage(candidate, true, staged, reason)) {
    case StageOutcome::Loaded: return QString();
    case StageOutcome::EmptyPrices: return QStringLiteral("price_ranks is empty");
    case StageOutcome::Refused: break;
    }
    return reason;
}

bool Restaurants::isInUse(const OpenedCandidate &candidate) const
{
    QMutexLocker lock(&m_mutex);
    return m_dbq && m_databasePath == candidate.path && m_databaseVersionDate == candidate.date;
}

void Restaurants::loadDatabase()
{
    QMutexLocker loadLock(&m_loadMutex);

    std::vector<OpenedCandidate> candidates = scanCandidates(true);
    if (candidates.empty()) {
        qCDebug(lcCatalogue) << "No catalogue in" << m_env.documents;
        return;
    }
    // A patched catalogue is taken into use by this same load, not by a second one queued after
    // it: the app is never left without a ready catalogue in between.
    if (applyPendingPatch(candidates.front().path, candidates.front().date)) {
        candidates = scanCandidates(true);
        if (candidates.empty())
            return;
    }

    // Newest first; a candidate that can't be used is kept on disk and the next one is tried, so
    // a damaged or half-copied new file never strands the user. A file that passes its open and
    // first reads may still be damaged further in: before it replaces another catalogue (and so
    // before older files go) every page is checked.
    const bool replacing = candidates.size() > 1 || dbq();
    const bool readingAhead = !isInUse(candidates.front());
    if (readingAhead)
        readListingAhead(candidates.front().path);
    std::optional<size_t> used;
    bool committed = false; // a file newly taken into use, not the one already serving
    bool emptyPrices = false;
    for (size_t i = 0; i < candidates.size() && !used; ++i) {
        OpenedCandidate &candidate = candidates[i];
        if (isInUse(candidate)) {
            used = i;
            break;
        }
        QString reason;
        Staged staged;
        switch (stage(candidate, replacing, staged, reason)) {
        case StageOutcome::Loaded:
            used = i;
            committed = true;
            commitStaged(candidate, std::move(staged));
            break;
        case StageOutcome::EmptyPrices:
            emptyPrices = true;
            break;
        case StageOutcome::Refused:
            refuse(candidate.path, candidate.stamp, reason);
            break;
        }
    }

    if (!used) {
        // Nothing usable. The catalogue in use, if there is one, goes on serving as it was.
        QMutexLocker lock(&m_mutex);
        if (emptyPrices) {
            m_ready = true; // reads answer from the catalogue that stays, or empty
        } else if (!m_dbq) {
            m_databasePath.clear();
            m_databaseVersionDate.reset();
            m_subscriptionNumber.clear();
            m_versionString.clear();
            m_expiry.reset();
        }
        return;
    }

    applyTablesLanguage();
    // A fallback to an older file reads its listing now; the newest one's is under way already,
    // and the catalogue that stays in use keeps the listing it has.
    if (committed && !(readingAhead && *used == 0))
        readListingAhead(candidates[*used].path);
    openSearchIndex(false);
    {
        QMutexLocker lock(&m_mutex);
        m_ready = true;
    }

    // Older catalogues go only once a newer one has proved good; newer files that were refused
    // stay, as they may still be being copied in.
    if (!m_env.defaults || !m_env.defaults->boolForKey(DefaultKeys::devKeepOldDbs)) {
        for (size_t i = *used + 1; i < candidates.size(); ++i) {
            if (candidates[i].path == candidates[*used].path)
                continue;
            if (QFile::remove(candidates[i].path))
                qCInfo(lcCatalogue) << "Deleted older catalogue" << candidates[i].path;
        }
    }
}

void Restaurants::commitStaged(const OpenedCandidate &candidate, Staged staged)
{
    commitGeography(staged.geography);
    QMutexLocker lock(&m_mutex);
    // A place the new catalogue doesn't name keeps the cuisines an earlier one gave it.
    m_rest_cuisines = std::make_shared<const PlaceCuisines>(staged.cuisines.overlaying(*m_rest_cuisines));
    m_dbq = std::move(staged.queue);
    m_databasePath = candidate.path;
    m_databaseVersionDate = staged.version;
    m_subscriptionNumber = staged.subscriptionNumber;
    m_versionString = staged.versionString;
    m_expiry = staged.expiry;
    ++m_generation;
}

bool Restaurants::readGeography(Database &db, Geography &geography, QString &reason) const
{
    // A statement that fails once the key probe passed means a damaged file.
    const auto read = [&](const QString &sql, const std::function<bool(const ResultSet &)> &onRow) {
        if (db.forEachRow(sql, {}, onRow))
            return reason.isEmpty();
        reason = QStringLiteral("\"%1\" failed: %2").arg(sql, db.lastErrorMessage());
        return false;
    };

    QHash<int, QMap<int, QString>> municipalitiesByProvince;
    const bool counties = read(QStringLiteral("SELECT * FROM counties"), [&](const ResultSet &row) {
        const int id = row.intForColumn(QStringLiteral("id"));
        const int province = row.intForColumn(QStringLiteral("state_id"));
        geography.munToProv.insert(id, province);
        QMap<int, QString> &municipalities = municipalitiesByProvince[province];
        if (const QString name = row.stringForColumn(QStringLiteral("name")); !name.isNull())
            municipalities.insert(id, name);
        return true;
    });
    if (!counties)
        return false;

    const bool states = read(QStringLiteral("SELECT id FROM states"), [&](const ResultSet &row) {
        const int id = row.intForColumn(0);
        auto province = std::make_shared<Province>();
        province->municipalities = municipalitiesByProvince.value(id);
        if (province->municipalities.isEmpty()) {
            reason = QStringLiteral("province %1 has no municipalities").arg(id);
            return false;
        }
        geography.provinces.insert(id, province);
        return true;
    });
    if (!states)
        return false;

    // Table order, which is rowid order. Read without an order, SQLite takes the rows from the
    // covering filter index, a fraction of the table's pages (each one decrypted), and the
    // order is then made here: rowids are nearly always dense, so each place goes to its
    // rowid's slot; otherwise they are sorted.
    std::vector<std::array<qint64, 3>> places;
    const bool placesRead = read(QStringLiteral("SELECT rowid,id,county_id FROM restaurants"), [&](const ResultSet &row) {
        places.push_back({row.longForColumn(0), row.intForColumn(1), row.intForColumn(2)});
        return true;
    });
    if (!placesRead)
        return false;
    geography.placesInOrder.reserve(places.size());
    qint64 largest = 0;
    bool dense = true;
    for (const auto &place : places) {
        largest = std::max(largest, place[0]);
        dense = dense && place[0] >= 0;
    }
    dense = dense && largest < 4 * qint64(places.size()) + 1024;
    if (dense) {
        std::vector<int> atRowid(size_t(largest) + 1, -1);
        for (size_t i = 0; i < places.size(); ++i)
            atRowid[size_t(places[i][0])] = int(i);
        for (const int i : atRowid)
            if (i >= 0)
                geography.placesInOrder.emplace_back(int(places[size_t(i)][1]), int(places[size_t(i)][2]));
    } else {
        std::sort(places.begin(), places.end());
        for (const auto &[rowid, id, municipality] : places)
            geography.placesInOrder.emplace_back(int(id), int(municipality));
    }

    // Offers and promotions are optional tables; once a table is there, a failed read is damage.
    const auto readPlaceColumn = [&](const QString &table, QList<int> &into) {
        return !db.tableExists(table)
            || read(QStringLiteral("SELECT restaurant_id FROM ") + table, [&](const ResultSet &row) {
                   into.append(row.intForColumn(0));
                   return true;
               });
    };
    return readPlaceColumn(QStringLiteral("offers"), geography.offerPlaces)
        && readPlaceColumn(QStringLiteral("restaurants_promoted"), geography.promoPlaces);
}

void Restaurants::commitGeography(const Geography &geography)
{
    QMutexLocker lock(&m_mutex);
    // The id maps are only added to: ids are stable between catalogue versions.
    for (auto it = geography.munToProv.begin(); it != geography.munToProv.end(); ++it)
        m_mun_to_prov.insert(it.key(), it.value());
    for (auto it = geography.provinces.begin(); it != geography.provinces.end(); ++it)
        m_provinces.insert(it.key(), it.value());
    // Each municipality's province is looked up once, not at every place; null when the
    // catalogue names no such province.
    QHash<int, Province *> provinceOf;
    provinceOf.reserve(geography.munToProv.size());
    for (auto it = geography.munToProv.begin(); it != geography.munToProv.end(); ++it)
        provinceOf.insert(it.key(), geography.provinces.value(it.value()).get());
    std::vector<PlaceMunicipalities::Entry> placed;
    placed.reserve(geography.placesInOrder.size());
    for (const auto &[placeId, municipalityId] : geography.placesInOrder) {
        const auto province = provinceOf.constFind(municipalityId);
        if (province == provinceOf.constEnd())
            continue; // a place in an unknown municipality is left out
        if (*province)
            (*province)->restaurants.append(placeId);
        placed.emplace_back(placeId, municipalityId);
    }
    m_rid_to_mun.overlay(std::move(placed));
    const auto flag = [this](const QList<int> &places, bool Province::*field) {
        for (int placeId : places)
            if (const auto provinceId = provinceOfRestaurantLocked(placeId))
                if (const auto province = m_provinces.value(*provinceId))
                    province.get()->*field = true;
    };
    flag(geography.offerPlaces, &Province::has_offers);
    flag(geography.promoPlaces, &Province::has_promos);
}

bool Restaurants::readCuisinesAndExtras(Database &db, Staged &staged, QString &reason) const
{
    int placeColumn = -1;
    int cuisineColumn = -1;
    const bool read = db.forEachRow(QStringLiteral("SELECT * FROM restaurants_cuisines"), {}, [&](const ResultSet &row) {
        if (placeColumn < 0) {
            placeColumn = row.columnIndex(QStringLiteral("restaurant_id"));
            cuisineColumn = row.columnIndex(QStringLiteral("cuisine_id"));
        }
        staged.cuisines.add(row.intForColumn(placeColumn), row.intForColumn(cuisineColumn));
        return true;
    });
    staged.cuisines.finish();
    if (!read) {
        reason = QStringLiteral("reading restaurants_cuisines failed: ") + db.lastErrorMessage();
        return false;
    }
    // What screens ask on every reload is read here, with the rest, so they never wait on the
    // database behind the background reads.
    QString label;
    std::optional<QString> date;
    const bool extrasRead = db.forEachRow(
        QStringLiteral("SELECT key,val FROM extras WHERE key IN ('db_version','version_date','phone_number','expire_date')"), {},
        [&](const ResultSet &row) {
            const QString key = row.stringForColumn(0);
            const QString value = row.stringForColumn(1);
            if (key == QLatin1String("version_date")) {
                if (!date) // the first is the version
                    date = value;
            } else if (key == QLatin1String("db_version")) {
                label = value;
            } else if (key == QLatin1String("phone_number")) {
                staged.subscriptionNumber = value;
            } else if (const auto expiry = CatalogueDates::parseCompact(value); expiry && !(staged.expiry && *staged.expiry > *expiry)) {
                staged.expiry = expiry; // the latest of them
            }
            return true;
        });
    if (!extrasRead) {
        reason = QStringLiteral("reading the catalogue's extras failed: ") + db.lastErrorMessage();
        return false;
    }
    if (date)
        staged.version = CatalogueDates::parseCompact(*date);
    staged.versionString = label + QLatin1Char('.') + date.value_or(QString());
    return true;
}

void Restaurants::reload()
{
    if (loadAgain())
        NotificationCenter::defaultCenter().post(Notifications::RestaurantsDidReload);
}

bool Restaurants::loadAgain()
{
    {
        QMutexLocker lock(&m_mutex);
        m_ready = false;
    }
    // Campaigns and promotions change between catalogues; places, pictures and briefs keep their ids.
    m_adImageCache.clear();
    m_promoImageCache.clear();
    loadDatabase();
    return ready();
}

void Restaurants::reloadInBackground(std::function<void(bool ready)> done)
{
    m_reloads->addOperation([this, done = std::move(done)] {
        const bool loaded = loadAgain();
        dispatchMain([loaded, done] {
            if (!loaded) {
                if (done)
                    done(false);
                return;
            }
            // Every screen refreshes on this news while the app is in use: one screen a turn.
            NotificationCenter::defaultCenter().postOverTurns(Notifications::RestaurantsDidReload, QVariant(), [done] {
                if (done)
                    done(true);
            });
        });
    });
}

QString Restaurants::databaseVersionString() const
{
    QMutexLocker lock(&m_mutex);
    return m_versionString;
}

void Restaurants::deleteDatabaseFile()
{
    const QString path = databasePath();
    if (!path.isEmpty())
        QFile::remove(path);
}

bool Restaurants::isExpired() const
{
    // The expiry date counts as expired from its first moment.
    QMutexLocker lock(&m_mutex);
    return !m_dbq || !m_expiry || !(QDate::currentDate() < *m_expiry);
}

VerificationResult Restaurants::verifyDatabase(const QString &path) const
{
    Database db(path);
    if (!db.openWithFlags(Database::ReadOnly))
        return VerificationResult::make(VerificationResult::openError);
    if (!db.executeStatements(QStringLiteral("PRAGMA KEY='") + dbkey + QStringLiteral("';")))
        return VerificationResult::make(VerificationResult::cipherError);
    {
        ResultSet rows = db.executeQuery(probeQuery);
        if (!rows.isValid() || !rows.next())
            return VerificationResult::make(VerificationResult::cipherError);
    }
    ResultSet rows = db.executeQuery(versionDateQuery);
    if (!rows.isValid())
        return VerificationResult::make(VerificationResult::noVersionDate);
    std::optional<QDate> date;
    if (rows.next())
        date = CatalogueDates::parseCompact(rows.stringForColumn(0));
    if (!date) {
        // A keyed catalogue with no usable date is unusable; say so rather than stop.
        qCWarning(lcCatalogue) << "Catalogue" << path << "has no readable version_date";
        return VerificationResult::make(VerificationResult::noVersionDate);
    }
    const std::optional<QDate> current = databaseVersionDate();
    if (!current || *date > *current)
        return VerificationResult::makeOk(*date);
    return VerificationResult::makeOutdated(*date);
}

QString Restaurants::databasePathForVersionDate(QDate date) const
{
    if (m_env.documents.isEmpty())
        return QString();
    return m_env.documents + QLatin1Char('/') + CatalogueFiles::catalogueFileName(date);
}

QMap<int, std::shared_ptr<Province>> Restaurants::provinces() const
{
    QMutexLocker lock(&m_mutex);
    return m_provinces;
}

std::shared_ptr<Province> Restaurants::province(int id) const
{
    QMutexLocker lock(&m_mutex);
    return m_provinces.value(id);
}

std::optional<int> Restaurants::provinceOfMunicipality(int municipalityId) const
{
    QMutexLocker lock(&m_mutex);
    const auto it = m_mun_to_prov.constFind(municipalityId);
    return it == m_mun_to_prov.constEnd() ? std::nullopt : std::optional<int>(*it);
}

std::optional<int> Restaurants::provinceOfRestaurant(int placeId) const
{
    QMutexLocker lock(&m_mutex);
    return provinceOfRestaurantLocked(placeId);
}

std::optional<int> Restaurants::provinceOfRestaurantLocked(int placeId) const
{
    const std::optional<int> municipality = m_rid_to_mun.of(placeId);
    if (!municipality)
        return std::nullopt;
    const auto province = m_mun_to_prov.constFind(*municipality);
    return province == m_mun_to_prov.constEnd() ? std::nullopt : std::optional<int>(*province);
}

bool Restaurants::provinceHasOffers(int provinceId) const
{
    const auto p = province(provinceId);
    return p && p->has_offers;
}

bool Restaurants::provinceHasPromos(int provinceId) const
{
    const auto p = province(provinceId);
    return p && p->has_promos;
}

QList<int> Restaurants::cuisinesOfRestaurant(int placeId) const
{
    QMutexLocker lock(&m_mutex);
    return m_rest_cuisines->of(placeId);
}

void Restaurants::setLanguage(const QString &language)
{
    {
        QMutexLocker lock(&m_mutex);
        m_lang = language;
    }
    // Briefs keep their cuisines' names in the language they were read in: after a switch
    // nothing on screen may stay in the old one.
    m_briefCache.clear();
    applyTablesLanguage();
}

void Restaurants::applyTablesLanguage()
{
    const auto queue = dbq();
    if (!queue)
        return;
    const QString lang = language();
    for (LocalizableTable *table : {&m_price_ranks, &m_cuisines, &m_restaurant_groups, &m_service_types,
                                    &m_place_options, &m_payment_options}) {
        table->setLanguage(lang);
        table->setQueue(queue);
    }
    QList<QPair<int, QString>> names;
    queue->inDatabase([&](Database &db) {
        ResultSet rows = db.executeQuery(QStringLiteral("SELECT * FROM states"));
        if (!rows.isValid()) {
            qCCritical(lcCatalogue) << "Damaged catalogue: reading states failed:" << db.lastErrorMessage();
            return;
        }
        const QMap<int, QString> translations = m_localizedProvinceNames.value(lang);
        while (rows.next()) {
            const int id = rows.intForColumn(QStringLiteral("id"));
            names.append({id, translations.contains(id) ? translations.value(id)
                                                        : rows.stringForColumn(QStringLiteral("name"))});
        }
    });
    QMutexLocker lock(&m_mutex);
    for (const auto &[id, name] : names)
        if (const auto province = m_provinces.value(id))
            province->name = name;
}

