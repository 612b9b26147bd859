#include "platform/Notifications.h"
#include "fixtures/TestHome.h"
#include "platform/Database.h"
#include "platform/DerivedKeys.h"
#include "platform/NotificationCenter.h"

#include <QFile>

#include <gtest/gtest.h>

#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

namespace {
// The small catalogue with its restaurants table rebuilt under other column names, as a
// producer's mistake would leave it: the geography still reads, the screens' reads would not.
CatalogueFixture renamedColumn(const QString &date)
{
    CatalogueFixture fixture = CatalogueFixture::small();
    fixture.versionDate = date;
    fixture.sql = {QStringLiteral("ALTER TABLE restaurants RENAME TO old_restaurants"),
                   QStringLiteral("CREATE TABLE restaurants(id INTEGER PRIMARY KEY, name TEXT, search_name TEXT, addr TEXT,"
                                  " phone TEXT, county_id INTEGER, price_rank_id INTEGER, oof INTEGER)"),
                   QStringLiteral("INSERT INTO restaurants SELECT id,name,search_name,address,phone,county_id,price_rank_id,oof"
                                  " FROM old_restaurants"),
                   QStringLiteral("DROP TABLE old_restaurants")};
    return fixture;
}

QString damagedInside(TestHome &home, const QString &date)
{
    CatalogueFixture big = CatalogueFixture::generated(3000);
    big.versionDate = date;
    const QString path = home.addCatalogue(big, QStringLiteral("velmora-%1.db").arg(date));
    BrokenFiles::overwriteMiddle(path, 200 * 1024);
    return path;
}
}

// Catches: a newer file with garbage inside or a renamed column being taken into use and the
// good older catalogue being deleted for it; the user must land on the older one, with both
// files kept.
TEST(CatalogueRecovery, DamagedNewerFilesFallBackToTheOlderGoodOne)
{
    for (int damage = 0; damage < 2; ++damage) {
        TestHome home;
        const QString older = home.addCatalogue(QStringLiteral("20170101"));
        const QString newer = damage == 0 ? damagedInside(home, QStringLiteral("20170301"))
                                          : home.addCatalogue(renamedColumn(QStringLiteral("20170301")),
                                                              QStringLiteral("velmora-20170301.db"));
        Restaurants restaurants(home.environment());
        EXPECT_TRUE(restaurants.ready()) << damage;
        EXPECT_EQ(restaurants.databasePath(), older) << damage;
        EXPECT_EQ(restaurants.databaseVersionDate(), QDate(2017, 1, 1)) << damage;
        EXPECT_TRUE(QFile::exists(older)) << damage;
        EXPECT_TRUE(QFile::exists(newer)) << damage;
        EXPECT_EQ(restaurants.brief(100)->name, QStringLiteral("La Bodeguita del Medio")) << damage;
        EXPECT_FALSE(restaurants.catalogueFault(newer).isEmpty()) << damage;
        EXPECT_TRUE(restaurants.catalogueFault(older).isEmpty()) << damage;
    }
}

// Catches: a reload onto a damaged newer file dropping the working catalogue mid-session, or
// leaving the provinces of one file beside the queue of another.
TEST(CatalogueRecovery, ReloadOntoADamagedFileKeepsServingTheWorkingOne)
{
    TestHome home;
    const QString working = home.addCatalogue(QStringLiteral("20170101"));
    Restaurants restaurants(home.environment());
    ASSERT_TRUE(restaurants.ready());
    ASSERT_TRUE(restaurants.brief(100));
    const QList<int> capital = restaurants.province(1)->restaurants;

    home.addCatalogue(renamedColumn(QStringLiteral("20170301")), QStringLiteral("velmora-20170301.db"));
    restaurants.reload();
    EXPECT_TRUE(restaurants.ready());
    EXPECT_EQ(restaurants.databasePath(), working);
    EXPECT_EQ(restaurants.databaseVersionString(), QStringLiteral("1.20170101"));
    EXPECT_EQ(restaurants.province(1)->restaurants, capital);
    EXPECT_EQ(restaurants.restaurantInfo(100)->name, QStringLiteral("La Bodeguita del Medio"));
    EXPECT_FALSE(restaurants.sortedEntries({100, 101}, QString()).isEmpty());
}

// Catches: the path and date naming a file that failed to load (a repair download of that date
// would be judged outdated), and cached reads answering while every other read is empty.
TEST(CatalogueRecovery, AFailedLoadNamesNoFileAndEveryReadIsEmpty)
{
    TestHome home;
    const QString path = home.addCatalogue(renamedColumn(QStringLiteral("20170301")), QStringLiteral("velmora-20170301.db"));
    Restaurants restaurants(home.environment());
    EXPECT_FALSE(restaurants.ready());
    EXPECT_TRUE(restaurants.databasePath().isEmpty());
    EXPECT_FALSE(restaurants.databaseVersionDate());
    EXPECT_EQ(restaurants.verifyDatabase(path).kind, VerificationResult::ok);
    EXPECT_FALSE(restaurants.brief(100));
    EXPECT_TRUE(restaurants.profileImage(100).isEmpty());
    EXPECT_TRUE(restaurants.searchIds(QStringLiteral("bode")).isEmpty());
    EXPECT_TRUE(QFile::exists(path));
}

// Catches: the first-run watch opening, checking and logging a refused file again every
// second, and never looking at it again once it has been replaced by a good copy.
TEST(CatalogueRecovery, ARefusedFileIsReadAgainOnlyOnceItChanges)
{
    TestHome home;
    const QString path = home.addCatalogue(renamedColumn(QStringLiteral("20170301")), QStringLiteral("velmora-20170301.db"));
    Restaurants restaurants(home.environment());
    ASSERT_FALSE(restaurants.ready());
    // The count is the process's: the first load's read-ahead of the listing must be over.
    restaurants.waitForSearchIndex();
    EXPECT_EQ(preparedStatementsDuring([&] { restaurants.loadDatabase(); }), 0);
    EXPECT_FALSE(restaurants.ready());

    home.addCatalogue(QStringLiteral("20170301")); // the good file, under the same name
    restaurants.loadDatabase();
    EXPECT_TRUE(restaurants.ready());
    EXPECT_EQ(restaurants.databasePath(), path);
}

// Catches: every new connection to a catalogue paying the key derivation again (the watch,
// availableDatabases, reload and verify open the same file many times).
TEST(CatalogueRecovery, EachFileIsKeyedFromOneDerivation)
{
    TestHome home;
    const QString path = home.addCatalogue(QStringLiteral("20170101"));
    const int before = DerivedKeys::derivationCount();
    Restaurants restaurants(home.environment());
    ASSERT_TRUE(restaurants.ready());
    restaurants.availableDatabases();
    restaurants.reload();
    restaurants.verifyDatabase(path);
    EXPECT_EQ(DerivedKeys::derivationCount() - before, 1);
    EXPECT_GT(Database::keyedConnectionCount(), 1);
}

// Catches: a build of the search index killed early leaving an index dated for the catalogue
// but without its rows, so that free text finds nothing until the next catalogue.
TEST(CatalogueRecovery, AKilledIndexBuildLeavesNoDatedPartialIndex)
{
    TestHome home;
    CatalogueFixture big = CatalogueFixture::generated(20000);
    home.addCatalogue(big, QStringLiteral("velmora-20170101.db"));
    const QString index = home.caches() + QStringLiteral("/fts.db");
    for (int delayMs : {30, 120}) {
        QFile::remove(index);
        const pid_t child = fork();
        if (child == 0) {
            // The child starts a build and dies in the middle of it, as a killed app would.
            Restaurants restaurants(home.environment());
            usleep(useconds_t(delayMs) * 1000);
            kill(getpid(), SIGKILL);
        }
        ASSERT_GT(child, 0);
        int status = 0;
        waitpid(child, &status, 0);
        ASSERT_TRUE(WIFSIGNALED(status));

        Database db(index);
        ASSERT_TRUE(db.openWithFlags(Database::ReadWrite));
        QString date;
        db.forEachRow(QStringLiteral("SELECT val FROM extras WHERE key = 'version_date'"), {}, [&](const ResultSet &row) {
            date = row.stringForColumn(0);
            return false;
        });
        if (date.isEmpty())
            continue; // no dated index: the next start builds it
        qint64 rows = 0;
        db.forEachRow(QStringLiteral("SELECT count(*) FROM fts_docsize"), {}, [&](const ResultSet &row) {
            rows = row.longForColumn(0);
            return false;
        });
        EXPECT_EQ(rows, 20000) << "dated index with missing rows after a kill at " << delayMs << " ms";
    }
}

// Catches: a damaged index file disabling free-text search for good: it is a cache, so it is
// deleted and made anew.
TEST(CatalogueRecovery, ADamagedIndexIsMadeAnew)
{
    TestHome home;
    home.addCatalogue(QStringLiteral("20170101"));
    QDir().mkpath(home.caches());
    BrokenFiles::writeGarbage(home.caches() + QStringLiteral("/fts.db"));
    Restaurants restaurants(home.environment());
    restaurants.waitForSearchIndex();
    ASSERT_TRUE(restaurants.ftsQueue());
    EXPECT_EQ(restaurants.searchIds(QStringLiteral("bodeg")), QSet<int>{100});
}
