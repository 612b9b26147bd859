#pragma once

#include "catalogue/FifoCache.h"
#include "catalogue/Filters.h"
#include "catalogue/LocalizableTable.h"
#include "catalogue/PatchDelegate.h"
#include "catalogue/PlaceCuisines.h"
#include "catalogue/PlaceMunicipalities.h"
#include "catalogue/Province.h"
#include "catalogue/Records.h"
#include "catalogue/VerificationResult.h"

#include <QByteArray>
#include <QDate>
#include <QHash>
#include <QList>
#include <QMap>
#include <QMutex>
#include <QSet>
#include <QString>

#include <condition_variable>
#include <filesystem>
#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <tuple>
#include <optional>
#include <thread>
#include <vector>

class Database;
struct SqlSandbox;
class OperationQueue;
class PlaceBits;
class PlaceListing;
class DatabaseQueue;
class UserDefaults;

// The one object through which the app sees the catalogue. Creating it finds the newest
// readable catalogue in Documents and loads it synchronously. With no catalogue every read
// answers its empty form; a damaged catalogue ends the load with ready() false and a logged
// reason, and its file is kept.
class Restaurants
{
public:
    // Where the catalogue store looks, and what it reads at construction.
    struct Environment {
        QString documents; // empty: Documents can't be found
        QString caches;
        UserDefaults *defaults = nullptr;
        QString language; // the interface language at construction
        QString applicationSupport; // where a patch is applied; empty: nowhere
    };
    struct Candidate {
        QString path;
        QDate date;
    };

    static const QString dbkey;

    // Paths, the standard settings store and the current interface language.
    static Environment standardEnvironment();
    // The shared instance, created on first use from the standard environment.
    static Restaurants &shared();
    static void setShared(std::unique_ptr<Restaurants> instance);

    explicit Restaurants(Environment environment);
    virtual ~Restaurants();
    Restaurants(const Restaurants &) = delete;
    Restaurants &operator=(const Restaurants &) = delete;

    bool ready() const;
    QString databasePath() const;
    std::optional<QDate> databaseVersionDate() const;

    void loadDatabase();
    // Loads anew and posts RestaurantsDidReload when that left a catalogue ready.
    void reload();
    // The same on a thread of its own, for a new file whose every page the load reads: the
    // notice is posted, and `done` told whether a catalogue is ready, on the main thread.
    void reloadInBackground(std::function<void(bool ready)> done);
    // The readable candidates of Documents, newest first.
    QList<Candidate> availableDatabases() const;
    // The files of Documents the load looked at and refused, as they still are (a file changed
    // since is looked at again and leaves this list), by name.
    QStringList refusedFiles() const;
    // "db_version.version_date" of the catalogue in use, as read when it was loaded; empty with none.
    QString databaseVersionString() const;
    void deleteDatabaseFile();
    bool isExpired() const;
    VerificationResult verifyDatabase(const QString &path) const;
    // Why the load would refuse the catalogue at `path` (every check the load makes, the page
    // check included); empty when it would use it.
    QString catalogueFault(const QString &path) const;
    QString databasePathForVersionDate(QDate date) const;

    // Geography.
    QMap<int, std::shared_ptr<Province>> provinces() const;
    std::shared_ptr<Province> province(int id) const;
    std::optional<int> provinceOfMunicipality(int municipalityId) const;
    std::optional<int> provinceOfRestaurant(int placeId) const;
    bool provinceHasOffers(int provinceId) const;
    bool provinceHasPromos(int provinceId) const;
    QList<int> cuisinesOfRestaurant(int placeId) const; // ascending

    // Language of the catalogue's columns.
    QString language() const;
    void setLanguage(const QString &language);
    void applyTablesLanguage();
    const QMap<QString, QMap<int, QString>> &localizedProvinceNames() const { return m_localizedProvinceNames; }

    LocalizableTable &price_ranks() { return m_price_ranks; }
    LocalizableTable &cuisines() { return m_cuisines; }
    LocalizableTable &restaurant_groups() { return m_restaurant_groups; }
    LocalizableTable &service_types() { return m_service_types; }
    LocalizableTable &place_options() { return m_place_options; }
    LocalizableTable &payment_options() { return m_payment_options; }

    // Reads for the screens. Each answers its empty form when no catalogue is open, and when a
    // statement fails on a catalogue that passed its probe (a damaged file, logged as such).
    std::optional<Brief> brief(int id);
    // Every place with a position a map can draw, in latitude order (south first).
    QList<PlaceLocation> allLocations() const;
    QStringList phones(int id) const;
    std::optional<RestaurantInfo> restaurantInfo(int id);
    MoreInfo moreInfo(int id);
    QByteArray profileImage(int id);
    QList<int> galleryImageIds(int placeId) const;
    QByteArray galleryImage(int id);
    QString galleryImageCaption(int id) const;
    // The offers of one place, or with `restaurant` -1 of every place of the province.
    QList<Oferta> offers(int provinceId, int restaurant = -1) const;
    QList<Promo> promos(int provinceId) const;
    QByteArray promoImage(int promoId);
    QList<Ad> ads() const;
    std::optional<Ad> randomAd() const;
    QByteArray adImage(int imageId);
    std::optional<Menu> menu(int id) const;
    // The number subscriptions are sent to, as read when the catalogue was loaded.
    QString subscriptionPhoneNumber() const;

    // The picture caches, oldest first, for checks of their order.
    QList<int> galleryImageCacheFIFO() const { return m_galleryImageCache.order(); }
    QList<int> adImageCacheFIFO() const { return m_adImageCache.order(); }
    QList<int> promoImageCacheFIFO() const { return m_promoImageCache.order(); }

    // Written by the price filter panel; no query depends on it.
    int pricePolicy = 0;

    // Bounds of a patch's scripts (see applyPendingPatch).
    static constexpr int maximumPatchScripts = 5000;
    static constexpr qint64 patchTimeBudgetMs = 60'000;       // followed by the Downloader
    static constexpr qint64 patchTimeBudgetAtStartMs = 3'000; // at a start, which waits for it
    static constexpr int maximumPatchGrowth = 2;              // times the catalogue it starts from
    static constexpr qint64 minimumPatchedFileBytes = 16 * 1024 * 1024;
    // Progress crosses to the main thread; scripts can be many and short.
    static constexpr qint64 patchProgressIntervalMs = 50;

    // Applies the patch noted under "patch-available" to a copy of the catalogue at `path`
    // (version `date`) and moves the result into Documents under its new date. True when it did
    // and a reload is queued; false for every failure, the catalogue at `path` untouched. The
    // patch must lie in Application Support/patch; its scripts may only change rows, within the
    // bounds above, and the result must pass the checks of a new catalogue. A patch that fails
    // asks for the whole file (at a start, through the setting "full-db-wanted").
    bool applyPendingPatch(const QString &path, QDate date);
    // Who hears of a patch's progress and end; may be null. Not owned.
    void setPatchDelegate(PatchDelegate *delegate);
    // How far a patch's SQL may reach; tests shrink the step budget to meet a runaway script sooner.
    void setPatchSandbox(const SqlSandbox &limits);
    // Opens Caches/fts.db, building it when its date differs from the catalogue's (always, when
    // `rebuild`). The build runs in the background; until it is done, searchIds answers from a
    // scan of the places in memory, with the same results. Failures only cost the index.
    virtual void openSearchIndex(bool rebuild);
    // Returns once no build of the index, nor reading of the listing, is under way.
    void waitForSearchIndex();
    // The start is over: the first list is on screen. Background work that can wait (folding the
    // listing for search, keeping it for the next start, building the search index) waits for
    // this, or for a few seconds at most, so that the start has the cores.
    void startIsOver();
    std::shared_ptr<DatabaseQueue> ftsQueue() const;

    // The search screen's three steps, safe from any thread: places matching free text (each
    // word a prefix of a word of the address or of any part of a word of the name), places
    // passing the filters, and any set of places in list order with their section letters.
    QSet<int> searchIds(const QString &text) const;
    // The same matches among `within` alone, found in memory: what a keystroke in one province
    // needs, without asking the index for every place of the country.
    QSet<int> searchIds(const QString &text, const QList<int> &within) const;
    QSet<int> filteredIds(const Filters &filters, bool hideClosed) const;
    QList<SortedEntry> sortedEntries(const QSet<int> &ids, const QString &text);
    // All three at once, as one keystroke of the search screen needs them: the places passing
    // the filters that match `text` (every one of them when it is empty), in list order. The
    // same entries as the three steps give, without a set of ids between them.
    QList<SortedEntry> searchListing(const Filters &filters, bool hideClosed, const QString &text) const;

    // The open catalogue, for the readers of the other catalogue operations.
    std::shared_ptr<DatabaseQueue> dbq() const;

protected:
    const Environment &environment() const { return m_env; }

private:
    struct Geography;

    struct Staged;
    enum class StageOutcome { Loaded, EmptyPrices, Refused };
    struct FileStamp {
        qint64 size = 0;
        std::filesystem::file_time_type modified;
        bool journal = false;
        bool operator==(const FileStamp &) const = default;
    };
    static FileStamp stampOf(const QString &path);
    // What tells the listing kept for a catalogue file from one kept for any other; empty when
    // the file can't be read.
    static QByteArray listingStamp(const QString &path);
    struct OpenedCandidate;

    std::vector<OpenedCandidate> scanCandidates(bool keepConnections) const;
    bool isRefused(const QString &path, const FileStamp &stamp) const;
    void refuse(const QString &path, const FileStamp &stamp, const QString &reason) const;
    bool isInUse(const OpenedCandidate &candidate) const;
    // Opens and reads a candidate completely aside from the catalogue in use.
    StageOutcome stage(OpenedCandidate &candidate, bool deepCheck, Staged &staged, QString &reason) const;
    void commitStaged(const OpenedCandidate &candidate, Staged staged);
    bool readGeography(Database &db, Geography &geography, QString &reason) const;
    bool readCuisinesAndExtras(Database &db, Staged &staged, QString &reason) const;
    void commitGeography(const Geography &geography);
    bool buildSearchIndex(DatabaseQueue &index, const QString &cataloguePath, QDate version);
    // The places' sort names, names and addresses of the catalogue in use, read on first need.
    std::shared_ptr<const PlaceListing> placeListing() const;
    void readListingAhead(const QString &path);
    static std::shared_ptr<const PlaceListing> readListing(const QString &path, QString &error);
    // Background work waits here for the start to be over.
    void waitForTheStart();
    // Joins one of the background threads, if it runs, letting its wait for the start go first.
    void join(std::thread &thread);
    std::optional<int> provinceOfRestaurantLocked(int placeId) const;
    enum class OnFailure { Damage, Quiet };
    QByteArray cachedImage(FifoCache<QByteArray> &cache, int id, const QString &sql, OnFailure onFailure);
    QStringList namesThroughLink(Database &db, const QString &sql, int placeId, LocalizableTable &table, bool &ok);

    const Environment m_env;
    const QMap<QString, QMap<int, QString>> m_localizedProvinceNames;

    mutable std::mutex m_mutex;     // guards the fields below
    std::mutex m_loadMutex;         // one load at a time, whichever thread asks
    std::shared_ptr<DatabaseQueue> m_dbq;
    QMap<int, std::shared_ptr<Province>> m_provinces;
    QHash<int, int> m_mun_to_prov;
    PlaceMunicipalities m_rid_to_mun;
    // Shared, so a filter can read it outside the lock while a load replaces it.
    std::shared_ptr<const PlaceCuisines> m_rest_cuisines = std::make_shared<PlaceCuisines>();
    QString m_databasePath;
    std::optional<QDate> m_databaseVersionDate;
    QString m_subscriptionNumber;
    QString m_versionString; // "db_version.version_date"
    std::optional<QDate> m_expiry;
    bool m_ready = false;
    QString m_lang;
    quint64 m_generation = 0; // counts the catalogues taken into use
    mutable QHash<QString, FileStamp> m_refused;
    PatchDelegate *m_patchDelegate = nullptr; // guarded by m_mutex
    std::unique_ptr<SqlSandbox> m_patchSandbox; // guarded by m_mutex

    LocalizableTable m_price_ranks{QStringLiteral("price_ranks")};
    LocalizableTable m_cuisines{QStringLiteral("cuisines")};
    LocalizableTable m_restaurant_groups{QStringLiteral("restaurant_groups")};
    LocalizableTable m_service_types{QStringLiteral("service_types")};
    LocalizableTable m_place_options{QStringLiteral("place_options")};
    LocalizableTable m_payment_options{QStringLiteral("payment_options")};

    // Language-free or first-language caches; each check-and-store is safe across threads.
    std::shared_ptr<DatabaseQueue> m_fts_dbq; // guarded by m_mutex
    mutable QHash<QString, QSet<int>> m_filteredCache; // filteredIds by statement and cuisines
    mutable quint64 m_filteredGeneration = 0;
    // The last filters' places as bits of the listing they were made for.
    mutable std::tuple<QString, std::shared_ptr<const PlaceListing>, std::shared_ptr<const PlaceBits>> m_filteredBits;
    mutable std::mutex m_listMutex; // one reader of the listing at a time
    mutable std::shared_ptr<const PlaceListing> m_listing;
    mutable quint64 m_listingGeneration = 0;
    // Read from a file before it was taken into use: the listing of that path, once it is. Set
    // before the read starts, so that whoever asks for the listing meanwhile waits for that read
    // rather than making one of its own.
    mutable std::pair<QString, std::shared_future<std::shared_ptr<const PlaceListing>>> m_aheadListing;

    FifoCache<Brief> m_briefCache;
    // Bounded by bytes: scrolling a province of 35,000 places would otherwise keep every picture.
    FifoCache<QByteArray> m_profileImageCache{0, 4 * 1024 * 1024};
    FifoCache<QByteArray> m_galleryImageCache{11};
    FifoCache<QByteArray> m_adImageCache{10};
    FifoCache<QByteArray> m_promoImageCache{12};

    // The background work above waits on these for the start to be over.
    std::mutex m_startMutex;
    std::condition_variable m_startChanged;
    bool m_startOver = false;

    std::mutex m_indexThreadMutex;
    std::thread m_indexBuild; // the index being built; reads the fields above
    std::thread m_listingRead; // the listing read and folded ahead of the first list
    // Loads asked for by reloadInBackground(), one at a time; last, so it goes (waiting for them)
    // before the fields they use.
    std::unique_ptr<OperationQueue> m_reloads;

    // reload() without its notice: whether a catalogue is ready after it.
    bool loadAgain();
};
