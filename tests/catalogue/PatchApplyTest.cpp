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

    // A plain patch file in Application Support, noted as waiting; NULL scripts as given.
    QString addPatch(const QList<std::optional<QString>> &scripts, const QString &name = QStringLiteral("velmora-20170101-20170201.db"))
    {
        const QString path = QDir(supportDir).filePath(name);
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
    Restaurants *reloadWithLog(qint64 steps = 50'000'000)
    {
        restaurants->setPatchDelegate(&log);
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
        files.removeAll(QStringLiteral("UserDefaults.ini"));
        return files;
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

// Catches: the two failures that keep the catalogue and tell the user, and the one that asks
// for the whole file, swapped: an empty patch leaves the version as it was (its file already
// stands in Documents), a script that drops the version leaves none to read.
TEST(PatchApply, PatchesThatLeaveNoNewVersionEndInTheirOwnMessages)
{
    {
        PatchHome h;
        h.addPatch({});
        Restaurants *restaurants = h.reloadWithLog();
        EXPECT_EQ(h.log.failure, QStringLiteral("Couldn't move new db to Documents"));
        EXPECT_EQ(h.log.action, PatchFailedAction::doNothing);
        EXPECT_EQ(h.log.progress, (QList<QPair<int, int>>{{0, 0}}));
        EXPECT_TRUE(restaurants->ready());
        EXPECT_EQ(h.documents(), QStringList{QStringLiteral("velmora-20170101.db")});
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
