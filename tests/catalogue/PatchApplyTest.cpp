#include "catalogue/Restaurants.h"
#include "fixtures/TestHome.h"
#include "platform/Database.h"
#include "platform/DefaultKeys.h"
#include "platform/UserDefaults.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {
const QString renamePlace = QStringLiteral("UPDATE restaurants SET name = 'El Aljibe Nuevo' WHERE id = 101");
const QString nextVersion = QStringLiteral("UPDATE extras SET val = '20170201' WHERE key = 'version_date'");

// Records what the patch step tells, in order.
struct PatchLog : PatchDelegate {
    QList<QPair<int, int>> progress;
    bool succeeded = false;
    QString failure;
    std::optional<PatchFailedAction> action;
    void patchProgress(int done, int total) override { progress.append({done, total}); }
    void patchSuceeded() override { succeeded = true; }
    void patchFailed(const QString &message, PatchFailedAction how) override { failure = message, action = how; }
};

struct PatchHome {
    TestHome home;
    PatchLog log;

    QString supportDir;
    std::unique_ptr<Restaurants> restaurants;

    // The catalogue of 20170101 in use, as before a download.
    PatchHome()
    {
        home.addCatalogue(QStringLiteral("20170101"));
        supportDir = home.environment().applicationSupport;
        restaurants = std::make_unique<Restaurants>(home.environment());
    }

    // A plain patch file in Application Support's patch folder, noted as waiting; NULL scripts
    // as given.
    QString addPatch(const QList<std::optional<QString>> &scripts, const QString &name = QStringLiteral("velmora-20170101-20170201.db"))
    {
        QDir(supportDir).mkpath(QStringLiteral("patch"));
        const QString path = QDir(supportDir).filePath(QStringLiteral("patch/") + name);
        Database db(path);
        EXPECT_TRUE(db.open() && db.executeStatements(QStringLiteral("CREATE TABLE updates(number INTEGER, patch TEXT)")));
        // Stored out of order: the step sorts by number.
        for (int i = int(scripts.size()) - 1; i >= 0; --i)
            EXPECT_TRUE(db.executeUpdate(QStringLiteral("INSERT INTO updates VALUES(?, ?)"),
                                         {i + 1, scripts.at(i) ? QVariant(*scripts.at(i)) : QVariant()}));
        home.defaults().setString(path, DefaultKeys::patchAvailable);
        return path;
    }

    // A reload, as the Downloader starts one, with the log listening and an SQL budget small
    // enough for a test to meet.
    Restaurants *reloadWithLog(qint64 steps = 50'000'000, bool followed = true)
    {
        restaurants->setPatchDelegate(followed ? &log : nullptr);
        SqlSandbox sandbox;
        sandbox.maxStepsPerRun = steps;
        restaurants->setPatchSandbox(sandbox);
        restaurants->reload();
        restaurants->waitForSearchIndex();
        return restaurants.get();
    }

    QStringList documents() const { return QDir(home.documents()).entryList(QDir::Files | QDir::Hidden); }
    QStringList support() const
    {
        QStringList files = QDir(supportDir).entryList(QDir::Files | QDir::Hidden);
        files += QDir(supportDir + QStringLiteral("/patch")).entryList(QDir::Files | QDir::Hidden);
        files.removeAll(QStringLiteral("UserDefaults.ini"));
        return files;
    }

    // What a refused patch must leave as it was: the catalogue in use, the user's settings.
    void expectNothingLost(Restaurants *restaurants)
    {
        ASSERT_TRUE(restaurants->ready());
        EXPECT_EQ(restaurants->databaseVersionDate(), QDate(2017, 1, 1));
        EXPECT_EQ(restaurants->brief(101)->name, QStringLiteral("El Aljibe"));
        EXPECT_EQ(documents(), QStringList{QStringLiteral("velmora-20170101.db")});
        EXPECT_EQ(support(), QStringList());
        // Read back from the file, as the next start will.
        EXPECT_EQ(UserDefaults(QDir(supportDir).filePath(QStringLiteral("UserDefaults.ini"))).intArrayForKey(DefaultKeys::favoritos),
                  (QList<int>{101}));
        // A later start reads the catalogue as ever, and fast: nothing of the patch is left.
        Restaurants later(home.environment());
        EXPECT_TRUE(later.ready());
        EXPECT_EQ(later.databaseVersionDate(), QDate(2017, 1, 1));
        later.waitForSearchIndex();
    }
};
}

// Catches: scripts run out of order or outside one transaction, progress reported for every
// script (or never for the last), the patched file left out of Documents, the old one kept, or
// the patched catalogue not taken into use by the same load.
TEST(PatchApply, PatchedCatalogueReplacesTheOldOneInTheSameLoad)
{
    PatchHome h;
    const QString patch = h.addPatch({renamePlace, std::nullopt, nextVersion});
    Restaurants *restaurants = h.reloadWithLog();

    ASSERT_TRUE(restaurants->ready());
    EXPECT_EQ(restaurants->databaseVersionDate(), QDate(2017, 2, 1));
    EXPECT_EQ(restaurants->brief(101)->name, QStringLiteral("El Aljibe Nuevo"));
    EXPECT_EQ(h.documents(), QStringList{QStringLiteral("velmora-20170201.db")});
    EXPECT_TRUE(h.log.succeeded);
    EXPECT_EQ(h.log.progress.first(), qMakePair(1, 3)); // the first script always reports
    EXPECT_EQ(h.log.progress.last(), qMakePair(3, 3));  // and the display ends on the full count
    EXPECT_LE(h.log.progress.size(), 3);
    EXPECT_FALSE(QFile::exists(patch));
    EXPECT_TRUE(h.home.defaults().stringForKey(DefaultKeys::patchAvailable).isEmpty());
    EXPECT_EQ(h.support(), QStringList());
}

// Catches: a patch of another catalogue applied, or kept to be tried at every start.
TEST(PatchApply, PatchForAnotherDateIsDeletedAndTheLoadGoesOn)
{
    PatchHome h;
    const QString patch = h.addPatch({renamePlace, nextVersion}, QStringLiteral("velmora-20161201-20170201.db"));
    Restaurants *restaurants = h.reloadWithLog();
    ASSERT_TRUE(restaurants->ready());
    EXPECT_EQ(restaurants->databaseVersionDate(), QDate(2017, 1, 1));
    EXPECT_FALSE(QFile::exists(patch));
    EXPECT_TRUE(h.home.defaults().stringForKey(DefaultKeys::patchAvailable).isEmpty());
    EXPECT_TRUE(h.log.progress.isEmpty());
    EXPECT_TRUE(h.log.failure.isEmpty());
}

// Catches: a script failing half-way leaving the first script's change in a catalogue, a patch
// that reaches beyond its own file (another file attached, a pragma, an extension, a VACUUM
// out of the transaction), and a script that never ends holding the load forever. Each ends in
// the whole file being asked for, with the catalogue in use untouched and no patch left behind.
TEST(PatchApply, FailingOrOverreachingScriptsAreRolledBackAndLeadToTheWholeFile)
{
    QTemporaryDir outside;
    const QString planted = QDir(outside.path()).filePath(QStringLiteral("planted.db"));
    const QList<QString> scripts = {
        QStringLiteral("SELECT no_such_column FROM restaurants"),
        QStringLiteral("ATTACH DATABASE '%1' AS planted; CREATE TABLE planted.t(x)").arg(planted),
        QStringLiteral("PRAGMA writable_schema = 1"),
        QStringLiteral("PRAGMA key = 'other'"),
        QStringLiteral("SELECT load_extension('/tmp/evil.so')"),
        QStringLiteral("COMMIT; VACUUM"),
        QStringLiteral("WITH RECURSIVE n(x) AS (SELECT 1 UNION ALL SELECT x + 1 FROM n) SELECT count(*) FROM n"),
    };
    for (const QString &bad : scripts) {
        PatchHome h;
        const QString patch = h.addPatch({renamePlace, bad, nextVersion});
        Restaurants *restaurants = h.reloadWithLog(5'000'000);
        SCOPED_TRACE(bad.toStdString());
        ASSERT_TRUE(restaurants->ready());
        EXPECT_EQ(restaurants->databaseVersionDate(), QDate(2017, 1, 1));
        EXPECT_EQ(restaurants->brief(101)->name, QStringLiteral("El Aljibe"));
        EXPECT_EQ(h.log.failure, QStringLiteral("failed to apply patches"));
        EXPECT_EQ(h.log.action, PatchFailedAction::downloadFullDB);
        EXPECT_FALSE(h.log.succeeded);
        EXPECT_EQ(h.documents(), QStringList{QStringLiteral("velmora-20170101.db")});
        EXPECT_FALSE(QFile::exists(patch));
        EXPECT_EQ(h.support(), QStringList());
        EXPECT_FALSE(QFile::exists(planted));
    }
}

// Catches: a patch that leaves no newer catalogue taken as done, or stuck at every update: an
// empty patch leaves the version as it was, a script that drops the version leaves none to
// read; both give the patch up and ask for the whole file.
TEST(PatchApply, PatchesThatLeaveNoNewVersionEndInTheirOwnMessages)
{
    {
        PatchHome h;
        h.addPatch({});
        Restaurants *restaurants = h.reloadWithLog();
        EXPECT_EQ(h.log.failure, QStringLiteral("the patched catalogue fails its checks"));
        EXPECT_EQ(h.log.action, PatchFailedAction::downloadFullDB);
        EXPECT_EQ(h.log.progress, (QList<QPair<int, int>>{{0, 0}}));
        EXPECT_TRUE(restaurants->ready());
        EXPECT_EQ(h.documents(), QStringList{QStringLiteral("velmora-20170101.db")});
        EXPECT_EQ(h.support(), QStringList());
    }
    {
        PatchHome h;
        h.addPatch({QStringLiteral("DELETE FROM extras WHERE key = 'version_date'")});
        Restaurants *restaurants = h.reloadWithLog();
        EXPECT_EQ(h.log.failure, QStringLiteral("Couldn't read version from new db"));
        EXPECT_EQ(h.log.action, PatchFailedAction::downloadFullDB);
        EXPECT_EQ(restaurants->databaseVersionDate(), QDate(2017, 1, 1));
    }
}

// Catches a patch from the network that changes more than rows, or more than a patch may: a
// view over an endless query in place of a table every start reads (which hung each later
// start), a dropped table of places, triggers, new tables, a catalogue blown up with blobs, and
// more scripts than a patch holds. Each is refused before the result replaces anything, the
// whole file is asked for, and nothing of the user's is lost.
TEST(PatchApply, PatchesChangeRowsOnlyWithinBounds)
{
    const QString endlessView = QStringLiteral(
        "DROP TABLE price_ranks; CREATE VIEW price_ranks AS WITH RECURSIVE n(x) AS (SELECT 1 UNION ALL SELECT x + 1 FROM n)"
        " SELECT x AS id, 'a' AS name, 'a' AS name_en FROM n");
    const QList<QList<std::optional<QString>>> attacks = {
        {renamePlace, endlessView, nextVersion},
        {QStringLiteral("DROP TABLE restaurants"), nextVersion},
        {QStringLiteral("CREATE TRIGGER t AFTER INSERT ON cuisines BEGIN DELETE FROM restaurants; END"), nextVersion},
        {QStringLiteral("CREATE TABLE extra_table(x)"), nextVersion},
        {QStringLiteral("ALTER TABLE restaurants RENAME TO r2"), nextVersion},
        {QStringLiteral("CREATE TEMP TABLE t(x); INSERT INTO t VALUES (1)"), nextVersion},
        {QStringLiteral("WITH RECURSIVE n(x) AS (SELECT 1 UNION ALL SELECT x + 1 FROM n LIMIT 100)"
                        " INSERT INTO gallery (id, restaurant_id, data) SELECT 5000 + x, 101, zeroblob(10000000) FROM n"),
         nextVersion},
    };
    for (const auto &attack : attacks) {
        SCOPED_TRACE(attack.first()->toStdString());
        PatchHome h;
        h.home.defaults().setIntArray({101}, DefaultKeys::favoritos);
        h.addPatch(attack);
        Restaurants *restaurants = h.reloadWithLog();
        EXPECT_EQ(h.log.failure, QStringLiteral("failed to apply patches"));
        EXPECT_EQ(h.log.action, PatchFailedAction::downloadFullDB);
        h.expectNothingLost(restaurants);
    }

    PatchHome many;
    many.home.defaults().setIntArray({101}, DefaultKeys::favoritos);
    QList<std::optional<QString>> nulls(Restaurants::maximumPatchScripts + 1, std::nullopt);
    nulls.last() = nextVersion;
    many.addPatch(nulls);
    many.expectNothingLost(many.reloadWithLog());
    EXPECT_EQ(many.log.action, PatchFailedAction::downloadFullDB);
}

// Catches a pending patch holding up a start (six slow scripts made the first frame wait half a
// minute), and one abandoned with nobody told to fetch the whole file.
TEST(PatchApply, APendingPatchAtAStartIsBoundedAndLeadsToTheWholeFile)
{
    const QString slow = QStringLiteral("WITH RECURSIVE n(x) AS (SELECT 1 UNION ALL SELECT x + 1 FROM n LIMIT 200000000)"
                                        " UPDATE restaurants SET name = name WHERE id = (SELECT count(*) FROM n)");
    PatchHome h;
    h.home.defaults().setIntArray({101}, DefaultKeys::favoritos);
    h.addPatch({slow, slow, slow, slow, slow, slow, nextVersion});
    // As at a start after the process was killed mid-patch: nobody follows, no step budget.
    Restaurants *restaurants = h.reloadWithLog(SqlSandbox().maxStepsPerRun, false);
    h.expectNothingLost(restaurants);
    EXPECT_TRUE(h.home.defaults().boolForKey(DefaultKeys::fullDownloadWanted)) << "the next Downloader fetches the whole file";
}

// Catches the patch step deleting what "patch-available" names outside its own folder: the
// settings store named there was deleted, and with it every list, note and choice.
TEST(PatchApply, APatchPathOutsideItsFolderIsNeverTouched)
{
    PatchHome h;
    h.home.defaults().setIntArray({101}, DefaultKeys::favoritos);
    const QString store = QDir(h.supportDir).filePath(QStringLiteral("UserDefaults.ini"));
    ASSERT_TRUE(QFile::exists(store));
    h.home.defaults().setString(store, DefaultKeys::patchAvailable);
    Restaurants *restaurants = h.reloadWithLog();
    EXPECT_TRUE(QFile::exists(store));
    EXPECT_TRUE(h.home.defaults().stringForKey(DefaultKeys::patchAvailable).isEmpty());
    h.expectNothingLost(restaurants);
}
