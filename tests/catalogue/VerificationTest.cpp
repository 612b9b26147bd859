#include "fixtures/TestHome.h"

#include <QFile>

#include <gtest/gtest.h>

namespace {
QString compactDate(QDate date) { return date.toString(QStringLiteral("yyyyMMdd")); }
}

// Catches: a download of the same or an older version being accepted, and any broken file
// being taken for a good one.
TEST(Verification, JudgesAFileAgainstTheCatalogueInUse)
{
    TestHome home;
    const QString scratch = home.root() + QStringLiteral("/download.db");
    const auto verifyFixture = [&](Restaurants &r, const CatalogueFixture &fixture) {
        EXPECT_TRUE(fixture.write(scratch));
        return r.verifyDatabase(scratch);
    };
    CatalogueFixture dated = CatalogueFixture::small();

    Restaurants empty(home.environment());
    dated.versionDate = QStringLiteral("20170101");
    EXPECT_EQ(verifyFixture(empty, dated), VerificationResult::makeOk(QDate(2017, 1, 1)));

    home.addCatalogue(QStringLiteral("20170301"));
    Restaurants restaurants(home.environment());
    ASSERT_TRUE(restaurants.ready());
    dated.versionDate = QStringLiteral("20170301");
    EXPECT_EQ(verifyFixture(restaurants, dated), VerificationResult::makeOutdated(QDate(2017, 3, 1)));
    dated.versionDate = QStringLiteral("20170201");
    EXPECT_EQ(verifyFixture(restaurants, dated), VerificationResult::makeOutdated(QDate(2017, 2, 1)));
    dated.versionDate = QStringLiteral("20170302");
    EXPECT_EQ(verifyFixture(restaurants, dated), VerificationResult::makeOk(QDate(2017, 3, 2)));

    CatalogueFixture otherKey = CatalogueFixture::small();
    otherKey.key = QStringLiteral("0123456789");
    EXPECT_EQ(verifyFixture(restaurants, otherKey).kind, VerificationResult::cipherError);
    CatalogueFixture noPrices = CatalogueFixture::small();
    noPrices.priceRanks.clear();
    EXPECT_EQ(verifyFixture(restaurants, noPrices).kind, VerificationResult::cipherError);
    CatalogueFixture undated = CatalogueFixture::small();
    undated.versionDate = QStringLiteral("soon");
    EXPECT_EQ(verifyFixture(restaurants, undated).kind, VerificationResult::noVersionDate);
    CatalogueFixture noExtras = CatalogueFixture::small();
    noExtras.omitTables = {QStringLiteral("extras")};
    EXPECT_EQ(verifyFixture(restaurants, noExtras).kind, VerificationResult::noVersionDate);

    BrokenFiles::writeGarbage(scratch);
    EXPECT_EQ(restaurants.verifyDatabase(scratch).kind, VerificationResult::cipherError);
    EXPECT_EQ(restaurants.verifyDatabase(home.root() + QStringLiteral("/nothing.db")).kind, VerificationResult::openError);
    EXPECT_EQ(restaurants.databaseVersionDate(), QDate(2017, 3, 1)); // the catalogue in use is untouched
}

// Catches: an off-by-one at the expiry date, which counts as expired from its first moment, and
// a catalogue without the date counting as fresh.
TEST(Verification, ExpiryIsTheFirstMomentOfTheExpireDate)
{
    const QDate today = QDate::currentDate();
    const auto expiredWith = [](std::optional<QString> expireDate) {
        TestHome home;
        CatalogueFixture fixture = CatalogueFixture::small();
        fixture.expireDate = expireDate;
        home.addCatalogue(fixture, QStringLiteral("velmora-20170101.db"));
        Restaurants restaurants(home.environment());
        EXPECT_TRUE(restaurants.ready());
        return restaurants.isExpired();
    };
    EXPECT_TRUE(expiredWith(compactDate(today)));
    EXPECT_FALSE(expiredWith(compactDate(today.addDays(1))));
    EXPECT_TRUE(expiredWith(compactDate(today.addDays(-1))));
    EXPECT_TRUE(expiredWith(std::nullopt));
    EXPECT_TRUE(expiredWith(QStringLiteral("tomorrow")));
}
