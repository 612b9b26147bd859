#include "catalogue/Restaurants.h"

#include "app/DefaultKeys.h"
#include "app/Notifications.h"
#include "catalogue/CatalogueDates.h"
#include "catalogue/CatalogueFiles.h"
#include "platform/DatabaseQueue.h"
#include "platform/Localize.h"
#include "platform/Logging.h"
#include "platform/NotificationCenter.h"
#include "platform/Paths.h"
#include "platform/UserDefaults.h"

#include <QDir>
#include <QFile>

#include <algorithm>

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

// Opens `path` read-only and keys it. Null when either step fails.
std::unique_ptr<Database> openKeyed(const QString &path, QString *error = nullptr)
{
    auto db = std::make_unique<Database>(path);
    if (!db->openWithFlags(Database::ReadOnly) || !db->setKey(Restaurants::dbkey)) {
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
};

struct Restaurants::Geography {
    QMap<int, std::shared_ptr<Province>> provinces;
    QHash<int, int> munToProv;
    QList<QPair<int, int>> placesInOrder; // (place id, municipality id)
    QList<int> offerPlaces;
    QList<int> promoPlaces;
};

Restaurants::Environment Restaurants::standardEnvironment()
{
    return {Paths::documents(), Paths::caches(), &UserDefaults::standard(), Localize::currentLanguage()};
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
{
    loadDatabase();
}

Restaurants::~Restaurants() = default;

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

std::vector<Restaurants::OpenedCandidate> Restaurants::scanCandidates(bool keepNewestConnection) const
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
        QString error;
        std::unique_ptr<Database> db = openKeyed(path, &error);
        if (!db) {
            qCInfo(lcCatalogue) << "Skipping" << name << "- can't open:" << error;
            continue;
        }
        ResultSet rows = db->executeQuery(versionDateQuery);
        std::optional<QDate> date;
        if (rows.isValid() && rows.next())
            date = CatalogueDates::parseCompact(rows.stringForColumn(0));
        rows.close();
        if (!date) {
            qCInfo(lcCatalogue) << "Skipping" << name << "- not a catalogue with this key or no version date";
            continue;
        }
        found.push_back({path, *date, std::move(db)});
    }
    std::stable_sort(found.begin(), found.end(), [](const OpenedCandidate &a, const OpenedCandidate &b) {
        return a.date > b.date;
    });
    for (size_t i = keepNewestConnection ? 1 : 0; i < found.size(); ++i)
        found[i].connection.reset();
    return found;
}

QList<Restaurants::Candidate> Restaurants::availableDatabases() const
{
    QList<Candidate> result;
    for (const OpenedCandidate &candidate : scanCandidates(false))
        result.append({candidate.path, candidate.date});
    return result;
}

void Restaurants::loadDatabase()
{
    QMutexLocker loadLock(&m_loadMutex);

    std::vector<OpenedCandidate> candidates = scanCandidates(true);
    if (candidates.empty()) {
        qCInfo(lcCatalogue) << "No catalogue in" << m_env.documents;
        return;
    }
    OpenedCandidate &newest = candidates.front();
    {
        QMutexLocker lock(&m_mutex);
        m_databasePath = newest.path;
        m_databaseVersionDate = newest.date;
    }

    if (applyPendingPatch(newest.path, newest.date))
        return;

    // The probe: the newest candidate's connection is already open read-only and keyed.
    std::unique_ptr<Database> probe = std::move(newest.connection);
    if (!probe || !probe->isOpen()) {
        QString error;
        probe = openKeyed(newest.path, &error);
        if (!probe) {
            qCWarning(lcCatalogue) << "Can't open" << newest.path << error;
            return;
        }
    }
    bool hasRow = false;
    {
        ResultSet rows = probe->executeQuery(probeQuery);
        if (!rows.isValid()) {
            qCWarning(lcCatalogue) << "Key probe failed on" << newest.path << probe->lastErrorMessage();
            return;
        }
        hasRow = rows.next();
        if (rows.failed()) {
            qCWarning(lcCatalogue) << "Key probe failed on" << newest.path << rows.errorMessage();
            return;
        }
    }
    // An empty price_ranks is not an error here: the earlier queue, if any, stays in use.
    if (hasRow) {
        auto queue = std::make_shared<DatabaseQueue>(std::move(probe));
        QMutexLocker lock(&m_mutex);
        m_dbq = std::move(queue);
    }

    const std::shared_ptr<DatabaseQueue> queue = dbq();
    if (queue) {
        Geography geography;
        QString reason;
        bool ok = false;
        queue->inDatabase([&](Database &db) { ok = readGeography(db, geography, reason); });
        if (!ok) {
            failLoad(reason);
            return;
        }
        commitGeography(geography);
    }

    applyTablesLanguage();

    if (queue && !loadCuisinesAndVersion(*queue))
        return;

    openSearchIndex(false);

    {
        QMutexLocker lock(&m_mutex);
        m_ready = true;
    }

    // Older catalogues go only once the newest has proved good, so a damaged new file never
    // costs the user a working one.
    if (!m_env.defaults || !m_env.defaults->boolForKey(DefaultKeys::devKeepOldDbs)) {
        for (size_t i = 1; i < candidates.size(); ++i) {
            if (candidates[i].path == newest.path)
                continue;
            if (QFile::remove(candidates[i].path))
                qCInfo(lcCatalogue) << "Deleted older catalogue" << candidates[i].path;
        }
    }
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

    // Table order, said explicitly: a covering index on county_id would otherwise hand the rows
    // over in index order.
    const bool places = read(QStringLiteral("SELECT id,county_id FROM restaurants ORDER BY rowid"), [&](const ResultSet &row) {
        geography.placesInOrder.append({row.intForColumn(0), row.intForColumn(1)});
        return true;
    });
    if (!places)
        return false;

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
    for (const auto &[placeId, municipalityId] : geography.placesInOrder) {
        const auto province = geography.munToProv.constFind(municipalityId);
        if (province == geography.munToProv.constEnd())
            continue; // a place in an unknown municipality is left out
        if (const auto target = geography.provinces.value(*province))
            target->restaurants.append(placeId);
        m_rid_to_mun.insert(placeId, municipalityId);
    }
    const auto flag = [this](const QList<int> &places, bool Province::*field) {
        for (int placeId : places)
            if (const auto provinceId = provinceOfRestaurantLocked(placeId))
                if (const auto province = m_provinces.value(*provinceId))
                    province.get()->*field = true;
    };
    flag(geography.offerPlaces, &Province::has_offers);
    flag(geography.promoPlaces, &Province::has_promos);
}

bool Restaurants::loadCuisinesAndVersion(DatabaseQueue &queue)
{
    QHash<int, QSet<int>> cuisinesByPlace;
    QString failure;
    std::optional<QDate> version;
    bool versionQueryFailed = false;
    queue.inDatabase([&](Database &db) {
        // Rows come grouped by place: each change of id starts that place's set anew.
        std::optional<int> previous;
        const bool read = db.forEachRow(QStringLiteral("SELECT * FROM restaurants_cuisines"), {}, [&](const ResultSet &row) {
            const int placeId = row.intForColumn(QStringLiteral("restaurant_id"));
            if (!previous || *previous != placeId)
                cuisinesByPlace[placeId].clear();
            cuisinesByPlace[placeId].insert(row.intForColumn(QStringLiteral("cuisine_id")));
            previous = placeId;
            return true;
        });
        if (!read) {
            failure = QStringLiteral("reading restaurants_cuisines failed: ") + db.lastErrorMessage();
            return;
        }
        versionQueryFailed = !db.forEachRow(versionDateQuery, {}, [&](const ResultSet &row) {
            version = CatalogueDates::parseCompact(row.stringForColumn(0));
            return false; // the first row is the version
        });
    });
    if (!failure.isEmpty()) {
        failLoad(failure);
        return false;
    }
    QMutexLocker lock(&m_mutex);
    for (auto it = cuisinesByPlace.begin(); it != cuisinesByPlace.end(); ++it)
        m_rest_cuisines.insert(it.key(), it.value());
    if (versionQueryFailed) {
        qCWarning(lcCatalogue) << "Reading the version date of" << m_databasePath << "failed";
        return false;
    }
    m_databaseVersionDate = version;
    return true;
}

void Restaurants::failLoad(const QString &reason)
{
    QMutexLocker lock(&m_mutex);
    qCCritical(lcCatalogue).noquote() << "Damaged catalogue" << m_databasePath << "-" << reason
                                      << "- it is not used and is kept on disk";
    m_dbq.reset();
    m_ready = false;
}

void Restaurants::reload()
{
    {
        QMutexLocker lock(&m_mutex);
        m_ready = false;
    }
    // Campaigns and promotions change between catalogues; places, pictures and briefs keep their ids.
    m_adImageCache.clear();
    m_promoImageCache.clear();
    loadDatabase();
    if (ready())
        NotificationCenter::defaultCenter().post(Notifications::RestaurantsDidReload);
}

QString Restaurants::databaseVersionString() const
{
    const auto queue = dbq();
    if (!queue)
        return QString();
    QString label;
    QString date;
    bool ok = false;
    queue->inDatabase([&](Database &db) {
        ResultSet rows = db.executeQuery(
            QStringLiteral("SELECT key,val FROM extras WHERE key = 'db_version' OR key = 'version_date'"));
        if (!rows.isValid())
            return;
        while (rows.next()) {
            const QString key = rows.stringForColumn(0);
            (key == QLatin1String("db_version") ? label : date) = rows.stringForColumn(1);
        }
        ok = !rows.failed();
    });
    return ok ? label + QLatin1Char('.') + date : QString();
}

void Restaurants::deleteDatabaseFile()
{
    const QString path = databasePath();
    if (!path.isEmpty())
        QFile::remove(path);
}

bool Restaurants::isExpired() const
{
    const auto queue = dbq();
    if (!queue)
        return true;
    // The expiry date counts as expired from its first moment.
    const QDate today = QDate::currentDate();
    bool expired = true;
    queue->inDatabase([&](Database &db) {
        ResultSet rows = db.executeQuery(QStringLiteral("SELECT val FROM extras WHERE key = 'expire_date'"));
        while (rows.next())
            if (const auto date = CatalogueDates::parseCompact(rows.stringForColumn(0)); date && today < *date)
                expired = false;
    });
    return expired;
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
    const auto municipality = m_rid_to_mun.constFind(placeId);
    if (municipality == m_rid_to_mun.constEnd())
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

QSet<int> Restaurants::cuisinesOfRestaurant(int placeId) const
{
    QMutexLocker lock(&m_mutex);
    return m_rest_cuisines.value(placeId);
}

void Restaurants::setLanguage(const QString &language)
{
    {
        QMutexLocker lock(&m_mutex);
        m_lang = language;
    }
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

bool Restaurants::applyPendingPatch(const QString &, QDate) { return false; }
