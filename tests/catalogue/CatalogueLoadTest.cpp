#include "platform/Notifications.h"
#include "catalogue/LoadRestaurantsOperation.h"
#include "catalogue/PlaceMunicipalities.h"
#include "fixtures/TestHome.h"
#include "platform/NotificationCenter.h"

#include <QFile>
#include <QTest>

#include <gtest/gtest.h>

namespace {
int countPosts(const QString &name, const std::function<void()> &action)
{
    QObject observer;
    int posts = 0;
    NotificationCenter::defaultCenter().addObserver(&observer, name, [&](const QVariant &) { ++posts; });
    action();
    return posts;
}
}

// Catches: places landing in the wrong province or out of table order, a place of an unknown
// municipality being kept, a NULL municipality name being shown, and the offer and promotion
// flags going to the wrong province.
TEST(CatalogueLoad, GeographyIsLoadedIntoProvinces)
{
    TestHome home;
    CatalogueFixture fixture = CatalogueFixture::small();
    fixture.counties.append({12, 1, std::nullopt});
    fixture.places.append({103, QStringLiteral("Lost"), QStringLiteral("lost"), 999, 2, 0, QString(), std::nullopt});
    fixture.places.append({104, QStringLiteral("Nameless Street"), QStringLiteral("nameless street"), 12, 2, 0, QString(), std::nullopt});
    home.addCatalogue(fixture, QStringLiteral("velmora-20170101.db"));

    Restaurants restaurants(home.environment(QStringLiteral("es")));
    ASSERT_TRUE(restaurants.ready());
    const auto havana = restaurants.province(1);
    const auto matanzas = restaurants.province(2);
    ASSERT_TRUE(havana && matanzas);
    EXPECT_EQ(havana->name, QStringLiteral("La Habana"));
    EXPECT_EQ(havana->restaurants, (QList<int>{100, 101, 102, 104}));
    EXPECT_EQ(havana->municipalities.keys(), (QList<int>{10, 11}));
    EXPECT_EQ(matanzas->restaurants, QList<int>{200});
    EXPECT_FALSE(havana->has_offers);
    EXPECT_TRUE(havana->has_promos);
    EXPECT_TRUE(restaurants.provinceHasOffers(2));
    EXPECT_FALSE(restaurants.provinceHasPromos(2));
    EXPECT_FALSE(restaurants.provinceHasOffers(77));
    EXPECT_EQ(restaurants.provinceOfRestaurant(104), 1);
    EXPECT_EQ(restaurants.provinceOfMunicipality(20), 2);
    EXPECT_FALSE(restaurants.provinceOfRestaurant(103));
    EXPECT_EQ(restaurants.databaseVersionString(), QStringLiteral("1.20170101"));
}

// Catches: a place named twice keeping its first municipality, a newer catalogue's word not
// replacing an older one's, the places only an older catalogue named being lost, and places
// given out of order being looked up as if they were in order.
TEST(CatalogueLoad, PlaceMunicipalitiesTakeTheLaterWord)
{
    PlaceMunicipalities places;
    EXPECT_FALSE(places.of(1));
    places.overlay({{9, 90}, {3, 30}, {7, 70}, {3, 31}, {1, 10}});
    places.overlay({{7, 71}, {2, 20}, {11, 110}, {2, 21}});
    const std::vector<std::pair<int, std::optional<int>>> expected{
        {1, 10}, {2, 21}, {3, 31}, {4, std::nullopt}, {7, 71}, {9, 90}, {11, 110}, {12, std::nullopt}, {0, std::nullopt}};
    for (const auto &[place, municipality] : expected)
        EXPECT_EQ(places.of(place), municipality) << place;
    EXPECT_EQ(places.size(), 6u) << "one entry a place";
}

// Catches: cuisines being merged across non-adjacent rows; each new run of a place's rows starts
// its set afresh, so only the last run counts.
TEST(CatalogueLoad, CuisineRowsAreGroupedByRunsOfAPlace)
{
    TestHome home;
    CatalogueFixture fixture = CatalogueFixture::small();
    fixture.restaurantCuisines = {{100, 1}, {100, 2}, {101, 3}, {100, 3}};
    fixture.offerPlaces.clear();
    fixture.promotedPlaces.clear();
    fixture.omitTables = {QStringLiteral("offers"), QStringLiteral("restaurants_promoted")};
    fixture.withProfileUrl = false;
    fixture.dbVersion.reset();
    home.addCatalogue(fixture, QStringLiteral("velmora-20170101.db"));

    Restaurants restaurants(home.environment());
    ASSERT_TRUE(restaurants.ready()); // optional tables and columns may be missing
    EXPECT_EQ(restaurants.cuisinesOfRestaurant(100), QList<int>{3});
    EXPECT_EQ(restaurants.cuisinesOfRestaurant(101), QList<int>{3});
    EXPECT_TRUE(restaurants.cuisinesOfRestaurant(200).isEmpty());
    EXPECT_FALSE(restaurants.provinceHasOffers(2));
    EXPECT_EQ(restaurants.databaseVersionString(), QStringLiteral(".20170101"));
}

// Catches: a keyed file with an empty price_ranks being treated as an error. It is accepted:
// ready, but with no open catalogue, so every read answers empty.
TEST(CatalogueLoad, EmptyPriceRanksLeavesReadyOverNoCatalogue)
{
    TestHome home;
    CatalogueFixture fixture = CatalogueFixture::small();
    fixture.priceRanks.clear();
    home.addCatalogue(fixture, QStringLiteral("velmora-20170101.db"));

    Restaurants restaurants(home.environment());
    EXPECT_TRUE(restaurants.ready());
    EXPECT_FALSE(restaurants.dbq());
    EXPECT_TRUE(restaurants.provinces().isEmpty());
    EXPECT_TRUE(restaurants.databaseVersionString().isEmpty());
    EXPECT_TRUE(restaurants.isExpired());
}

// Catches: a damaged catalogue aborting the process, being used, or costing the user the older
// good catalogue beside it, which is used instead.
TEST(CatalogueLoad, ProvinceWithoutMunicipalitiesFailsTheLoadAndKeepsFiles)
{
    TestHome home;
    const QString older = home.addCatalogue(QStringLiteral("20170101"));
    CatalogueFixture damaged = CatalogueFixture::small();
    damaged.versionDate = QStringLiteral("20170301");
    damaged.states.append({3, QStringLiteral("Provincia vacía"), std::nullopt});
    const QString newer = home.addCatalogue(damaged, QStringLiteral("velmora-20170301.db"));

    Restaurants restaurants(home.environment());
    EXPECT_TRUE(restaurants.ready());
    EXPECT_EQ(restaurants.databasePath(), older);
    EXPECT_FALSE(restaurants.province(3));
    EXPECT_TRUE(QFile::exists(older));
    EXPECT_TRUE(QFile::exists(newer));

    QFile::remove(older);
    Restaurants alone(home.environment());
    EXPECT_FALSE(alone.ready());
    EXPECT_FALSE(alone.dbq());
    EXPECT_TRUE(alone.provinces().isEmpty());
    EXPECT_TRUE(QFile::exists(newer));
}

// Catches: a catalogue missing a required table passing as loaded.
TEST(CatalogueLoad, MissingRequiredTableFailsTheLoad)
{
    TestHome home;
    CatalogueFixture fixture = CatalogueFixture::small();
    fixture.omitTables = {QStringLiteral("restaurants_cuisines")};
    const QString path = home.addCatalogue(fixture, QStringLiteral("velmora-20170101.db"));
    Restaurants restaurants(home.environment());
    EXPECT_FALSE(restaurants.ready());
    EXPECT_TRUE(QFile::exists(path));
}

// Catches: the reload notification being posted without a catalogue, the old queue being closed
// when the file vanished, and a new catalogue not replacing the old one.
TEST(CatalogueLoad, ReloadFollowsTheFilesInDocuments)
{
    TestHome home;
    const QString first = home.addCatalogue(QStringLiteral("20170101"));
    Restaurants restaurants(home.environment());
    ASSERT_TRUE(restaurants.ready());

    EXPECT_EQ(countPosts(Notifications::RestaurantsDidReload, [&] { restaurants.reload(); }), 1);

    QFile::remove(first);
    EXPECT_EQ(countPosts(Notifications::RestaurantsDidReload, [&] { restaurants.reload(); }), 0);
    EXPECT_FALSE(restaurants.ready());
    EXPECT_EQ(restaurants.databaseVersionString(), QStringLiteral("1.20170101")); // old file still answers

    home.addCatalogue(QStringLiteral("20170301"));
    EXPECT_EQ(countPosts(Notifications::RestaurantsDidReload, [&] { restaurants.reload(); }), 1);
    EXPECT_EQ(restaurants.databaseVersionString(), QStringLiteral("1.20170301"));
}

// Catches: a missing Documents or no candidates giving anything but the empty state.
TEST(CatalogueLoad, NoCatalogueAnswersEmpty)
{
    TestHome home;
    Restaurants::Environment environment = home.environment();
    environment.documents.clear();
    Restaurants nowhere(environment);
    EXPECT_FALSE(nowhere.ready());
    EXPECT_TRUE(nowhere.databasePathForVersionDate(QDate(2017, 1, 1)).isEmpty());

    Restaurants restaurants(home.environment());
    EXPECT_FALSE(restaurants.ready());
    EXPECT_TRUE(restaurants.provinces().isEmpty());
    EXPECT_TRUE(restaurants.isExpired());
    EXPECT_EQ(restaurants.databasePathForVersionDate(QDate(2017, 3, 1)), home.documents() + QStringLiteral("/velmora-20170301.db"));
}

// Catches: a built-in translation not reaching its province, other provinces losing their
// catalogue name, and a language set before any catalogue being lost.
TEST(CatalogueLoad, ProvinceNamesFollowTheCatalogueLanguage)
{
    TestHome home;
    Restaurants restaurants(home.environment(QStringLiteral("fr")));
    restaurants.applyTablesLanguage(); // no catalogue yet: nothing happens, the language stays
    EXPECT_EQ(restaurants.language(), QStringLiteral("fr"));

    home.addCatalogue(QStringLiteral("20170101"));
    restaurants.reload();
    EXPECT_EQ(restaurants.province(1)->name, QStringLiteral("La Havane"));
    EXPECT_EQ(restaurants.province(2)->name, QStringLiteral("Matanzas"));
    EXPECT_EQ(restaurants.price_ranks().name(2), QStringLiteral("Budget"));

    restaurants.setLanguage(QStringLiteral("es"));
    EXPECT_EQ(restaurants.province(1)->name, QStringLiteral("La Habana"));
    EXPECT_EQ(restaurants.price_ranks().name(2), QStringLiteral("Económico"));

    // The test language names a province that no catalogue has; it must not create one.
    restaurants.setLanguage(QStringLiteral("ejemplo"));
    EXPECT_EQ(restaurants.province(1)->name, QStringLiteral("Habanorum"));
    EXPECT_EQ(restaurants.province(2)->name, QStringLiteral("Matanzas"));
    EXPECT_FALSE(restaurants.province(19));
    EXPECT_EQ(restaurants.provinces().size(), 2);
}

// Catches: the first-run poller missing a file dropped into Documents, or never announcing it.
TEST(CatalogueLoad, BackgroundLoaderPicksUpACopiedInFile)
{
    TestHome home;
    Restaurants restaurants(home.environment());
    ASSERT_FALSE(restaurants.ready());

    QObject observer;
    std::atomic<int> loaded{0};
    NotificationCenter::defaultCenter().addObserver(&observer, Notifications::RestaurantsLoaded,
                                                    [&](const QVariant &) { ++loaded; });
    OperationQueue queue(1);
    auto operation = std::make_shared<LoadRestaurantsOperation>(restaurants, 100);
    queue.addOperation(operation);
    QTest::qWait(250);
    EXPECT_EQ(loaded.load(), 0);

    home.addCatalogue(QStringLiteral("20170101"));
    queue.waitUntilAllOperationsAreFinished();
    EXPECT_EQ(loaded.load(), 1);
    EXPECT_TRUE(restaurants.ready());
}
