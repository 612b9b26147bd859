#include "app/Scenes.h"
#include "browse/OfertasTableViewController.h"
#include "fixtures/TestHome.h"
#include "platform/Database.h"
#include "platform/Localize.h"
#include "platform/UserDefaults.h"
#include "presentation/NavigationController.h"

#include <QDateTime>
#include <QTest>

#include <gtest/gtest.h>

namespace {
// The small catalogue's capital with offers of three places: 100 has a current one and an
// expired one, 101 only one that starts tomorrow, 102 two current ones; 100 and 102 share a name.
std::unique_ptr<Restaurants> offersCatalogue(TestHome &home)
{
    CatalogueFixture fixture = CatalogueFixture::small();
    fixture.offerPlaces = {};
    fixture.places[2].name = fixture.places[0].name;
    const QString path = home.addCatalogue(fixture, QStringLiteral("velmora-20170101.db"));
    Database db(path);
    EXPECT_TRUE(db.open() && db.setKey(Restaurants::dbkey));
    const QString day = QStringLiteral("yyyy-MM-dd");
    const QString yesterday = QDate::currentDate().addDays(-1).toString(day);
    const QString tomorrow = QDate::currentDate().addDays(1).toString(day);
    const QString later = QDate::currentDate().addDays(30).toString(day);
    const auto offer = [&](int place, const char *name, double price, const QString &from, const QString &to) {
        EXPECT_TRUE(db.executeUpdate(QStringLiteral("INSERT INTO offers VALUES(?, ?, ?, 'desc', 'desc', ?, ?, ?)"),
                                     {place, QString::fromLatin1(name), QString::fromLatin1(name), price, from, to}))
            << db.lastErrorMessage().toStdString();
    };
    offer(102, "Late", 7.5, yesterday, later);
    offer(100, "Now", 0, yesterday, later);
    offer(100, "Gone", 3, QStringLiteral("2017-01-01"), yesterday);
    offer(101, "Soon", 3, tomorrow, later);
    offer(102, "Also", 12, yesterday, later);
    db.close();
    return std::make_unique<Restaurants>(home.environment(QStringLiteral("en")));
}

QStringList titles(const OfertasTableViewController &offers)
{
    QStringList result;
    for (const auto &[title, list] : offers.ofertas())
        for (const Oferta &offer : list)
            result.append(title + QLatin1Char(':') + offer.name);
    return result;
}
}

// Catches: offers shown before they start or after they end, sections grouped by name instead
// of place (two places of one name merged), sections out of the places' order, and prices drawn
// without their two-digit cents.
TEST(OffersList, ValidTodayOneSectionPerPlace)
{
    TestHome home;
    Localize::setCurrentLanguage(QStringLiteral("en"));
    home.defaults().setInteger(1, QStringLiteral("Province"));
    auto restaurants = offersCatalogue(home);
    ASSERT_TRUE(restaurants->ready());
    OfertasTableViewController province(*restaurants);
    province.loadViewIfNeeded();
    // The offers are read off the main thread; the screen shows them once they are.
    ASSERT_TRUE(QTest::qWaitFor([&] { return !province.rows().isEmpty(); }, 3000));
    const QString shared = restaurants->brief(100)->name;
    EXPECT_EQ(titles(province), (QStringList{shared + QStringLiteral(":Now"), shared + QStringLiteral(":Late"),
                                             shared + QStringLiteral(":Also")}));
    ASSERT_EQ(province.ofertas().size(), 2) << "two places of one name are two sections";

    OfertasTableViewController place(*restaurants);
    place.rid = 101;
    place.loadViewIfNeeded();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !place.rows().isEmpty(); }, 3000));
    EXPECT_TRUE(place.ofertas().isEmpty());
    ASSERT_EQ(place.rows().size(), 1) << "a place without offers today shows its card alone";
    EXPECT_EQ(place.rows().first().toMap().value(QStringLiteral("kind")), QStringLiteral("card"));

    using P = std::pair<QString, QString>;
    EXPECT_EQ(OfertasTableViewController::priceParts(7.5), P(QStringLiteral("7."), QStringLiteral("50")));
    EXPECT_EQ(OfertasTableViewController::priceParts(12), P(QStringLiteral("12."), QStringLiteral("00")));
    EXPECT_EQ(OfertasTableViewController::priceParts(0.07), P(QStringLiteral("0."), QStringLiteral("07")));
    EXPECT_EQ(OfertasTableViewController::priceParts(0), P());
    EXPECT_EQ(OfertasTableViewController::priceParts(-2), P());
}

// Catches: a tapped offer not opening its place's offers, and a card that opens the place
// although the user came from that place's card.
TEST(OffersList, TapsOpenThePlace)
{
    TestHome home;
    Localize::setCurrentLanguage(QStringLiteral("en"));
    home.defaults().setInteger(1, QStringLiteral("Province"));
    auto restaurants = offersCatalogue(home);
    home.startAnalytics();
    registerApplicationScenes();
    NavigationController navigation;
    OfertasTableViewController province(*restaurants);
    navigation.setViewControllers({&province}, false);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !province.rows().isEmpty(); }, 3000));
    province.didSelectRow(1); // the first offer, under the first header
    ASSERT_EQ(navigation.viewControllers().size(), 2);
    EXPECT_EQ(home.storedEvents(), QStringList{QStringLiteral("Navigation/Tapped/Offer/1")});
    auto *place = qobject_cast<OfertasTableViewController *>(navigation.topViewController());
    ASSERT_TRUE(place);
    EXPECT_EQ(place->rid, 100);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !place->rows().isEmpty(); }, 3000));
    place->inertRestCard = true;
    place->didSelectRow(0);
    EXPECT_EQ(navigation.viewControllers().size(), 2);
    place->inertRestCard = false;
    place->didSelectRow(0);
    EXPECT_EQ(navigation.viewControllers().size(), 3) << "the card opens the place";
    EXPECT_EQ(home.storedEvents(), (QStringList{QStringLiteral("Navigation/Tapped/Offer/1"), QStringLiteral("screen:RestaurantView")}))
        << "the place's own offers report no tap of their own";
}
