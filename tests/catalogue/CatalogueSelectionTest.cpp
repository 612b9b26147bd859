#include "platform/DefaultKeys.h"
#include "fixtures/TestHome.h"
#include "platform/DerivedKeys.h"
#include "platform/Database.h"
#include "platform/UserDefaults.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

// Catches: the older of two good catalogues being used, or being kept when the rules delete it.
TEST(CatalogueSelection, NewestGoodFileWinsAndOlderOnesAreDeleted)
{
    TestHome home;
    const QString older = home.addCatalogue(QStringLiteral("20170101"));
    const QString newer = home.addCatalogue(QStringLiteral("20170301"));

    Restaurants restaurants(home.environment());
    EXPECT_TRUE(restaurants.ready());
    EXPECT_EQ(restaurants.databasePath(), newer);
    EXPECT_EQ(restaurants.databaseVersionDate(), QDate(2017, 3, 1));
    EXPECT_FALSE(QFile::exists(older));
    EXPECT_TRUE(QFile::exists(newer));
}

TEST(CatalogueSelection, KeepOldDatabasesSettingKeepsEveryFile)
{
    TestHome home;
    const QString older = home.addCatalogue(QStringLiteral("20170101"));
    const QString newer = home.addCatalogue(QStringLiteral("20170301"));
    home.defaults().setBool(true, DefaultKeys::devKeepOldDbs);

    Restaurants restaurants(home.environment());
    EXPECT_EQ(restaurants.databasePath(), newer);
    EXPECT_TRUE(QFile::exists(older));
    const auto candidates = restaurants.availableDatabases();
    ASSERT_EQ(candidates.size(), 2);
    EXPECT_EQ(candidates.at(0).path, newer);
    EXPECT_EQ(candidates.at(1).date, QDate(2017, 1, 1));
}

// Catches: a file that fails the key (or isn't SQLite, or is cut short) being used, deleted,
// or crashing the load. A file copied in with any .vmr name, in any case, counts; its name's
// date is never trusted.
TEST(CatalogueSelection, UnreadableFilesAreNeitherUsedNorDeleted)
{
    TestHome home;
    CatalogueFixture otherKey = CatalogueFixture::small();
    otherKey.key = QStringLiteral("0123456789");
    otherKey.versionDate = QStringLiteral("20991231");
    const QString foreign = home.addCatalogue(otherKey, QStringLiteral("velmora-20991231.db"));
    const QString garbage = home.documents() + QStringLiteral("/velmora-20990101.db");
    BrokenFiles::writeGarbage(garbage);
    const QString truncated = home.documents() + QStringLiteral("/Truncated.VMR");
    BrokenFiles::writeTruncatedCopy(foreign, truncated, 1500);
    CatalogueFixture copiedIn = CatalogueFixture::small();
    copiedIn.versionDate = QStringLiteral("20170401");
    const QString copiedInPath = home.addCatalogue(copiedIn, QStringLiteral("MY GUIDE.VMR"));
    const QString newest = home.addCatalogue(QStringLiteral("20170501"));

    Restaurants restaurants(home.environment());
    EXPECT_TRUE(restaurants.ready());
    EXPECT_EQ(restaurants.databasePath(), newest);
    for (const QString &kept : {foreign, garbage, truncated})
        EXPECT_TRUE(QFile::exists(kept)) << qPrintable(kept);
    EXPECT_FALSE(QFile::exists(copiedInPath)); // a good but older catalogue goes, whatever its name
}

// Catches: a file whose version date is missing or malformed being ranked as a catalogue.
TEST(CatalogueSelection, FilesWithoutAReadableVersionAreSkipped)
{
    TestHome home;
    CatalogueFixture undated = CatalogueFixture::small();
    undated.versionDate.reset();
    home.addCatalogue(undated, QStringLiteral("velmora-a.db"));
    CatalogueFixture malformed = CatalogueFixture::small();
    malformed.versionDate = QStringLiteral("2017-03-01");
    home.addCatalogue(malformed, QStringLiteral("velmora-b.db"));
    CatalogueFixture noExtras = CatalogueFixture::small();
    noExtras.omitTables = {QStringLiteral("extras")};
    home.addCatalogue(noExtras, QStringLiteral("velmora-c.db"));

    Restaurants restaurants(home.environment());
    EXPECT_TRUE(restaurants.availableDatabases().isEmpty());
    EXPECT_FALSE(restaurants.ready());
    EXPECT_EQ(QDir(home.documents()).entryList(QDir::Files).size(), 3);
}

// Catches: extra key derivations at start (about 60 ms each). The load, the listing and the
// index build each key a connection of their own, from one derivation.
TEST(CatalogueSelection, AStartDerivesTheKeyOnce)
{
    TestHome home;
    home.addCatalogue(QStringLiteral("20170301"));
    const int before = DerivedKeys::derivationCount();
    Restaurants restaurants(home.environment());
    restaurants.waitForSearchIndex();
    ASSERT_TRUE(restaurants.ready());
    EXPECT_EQ(DerivedKeys::derivationCount() - before, 1);
}
