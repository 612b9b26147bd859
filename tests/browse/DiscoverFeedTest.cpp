#include "app/Scenes.h"
#include "fixtures/TestHome.h"
#include "platform/UserDefaults.h"
#include "presentation/AdActions.h"
#include "presentation/NavigationController.h"
#include "presentation/UrlOpener.h"
#include "browse/DescubreTableViewController.h"

#include <gtest/gtest.h>

namespace {
QString shape(const QList<DescubreTableViewController::DiscoverRow> &rows)
{
    QStringList parts;
    for (const auto &row : rows)
        parts.append((row.kind == DescubreTableViewController::DiscoverRow::Kind::promo ? QStringLiteral("P") : QStringLiteral("A"))
                     + QString::number(row.index));
    return parts.join(QLatin1Char(' '));
}

Ad ad(const char *type, const QString &value)
{
    Ad result;
    result.ad_id = 7;
    result.type = QString::fromLatin1(type);
    result.value = value;
    return result;
}
}

// Catches: ads placed after every promo or none, ads dropped when promos run out, and an empty
// feed without its ads.
TEST(DiscoverFeed, AnAdAfterEverySecondPromo)
{
    using D = DescubreTableViewController;
    EXPECT_EQ(shape(D::mix(5, 4)), QStringLiteral("P0 P1 A0 P2 P3 A1 P4 A2 A3"));
    EXPECT_EQ(shape(D::mix(1, 3)), QStringLiteral("P0 A0 A1 A2"));
    EXPECT_EQ(shape(D::mix(2, 1)), QStringLiteral("P0 P1 A0"));
    EXPECT_EQ(shape(D::mix(3, 1)), QStringLiteral("P0 P1 A0 P2"));
    EXPECT_EQ(shape(D::mix(0, 2)), QStringLiteral("A0 A1"));
    EXPECT_EQ(shape(D::mix(0, 0)), QString());

    EXPECT_EQ(D::parallaxFactor(100, 800, 600), -0.5) << "a feed shorter than the screen";
    EXPECT_EQ(D::parallaxFactor(0, 800, 1600), -0.5);
    EXPECT_EQ(D::parallaxFactor(400, 800, 1600), 0.0);
    EXPECT_EQ(D::parallaxFactor(2000, 800, 1600), 0.5);
}

// Catches: an action read from anything but its exact type, a subject with raw blanks, a bad
// value opening something, and a tip opening a URL instead of the sheet.
TEST(DiscoverFeed, AdActionsOpenWhatTheirTypeSays)
{
    using AdActions::urlFor;
    EXPECT_EQ(urlFor(ad("url", QStringLiteral("https://velmora.example/menu")), {}), QUrl(QStringLiteral("https://velmora.example/menu")));
    EXPECT_EQ(urlFor(ad("call", QStringLiteral("+5378671374")), {}), QUrl(QStringLiteral("tel:+5378671374")));
    EXPECT_EQ(urlFor(ad("email", QStringLiteral("hola@velmora.example")), QStringLiteral("About your ad")),
              QUrl(QStringLiteral("mailto:hola@velmora.example?subject=About%20your%20ad")));
    EXPECT_FALSE(urlFor(ad("URL", QStringLiteral("https://velmora.example")), {}));
    EXPECT_FALSE(urlFor(ad("url", QStringLiteral("not a url")), {}));
    EXPECT_FALSE(urlFor(ad("url", QString()), {}));
    EXPECT_FALSE(urlFor(ad("banner", QStringLiteral("https://velmora.example")), {}));
    EXPECT_FALSE(urlFor(ad("tip", QStringLiteral("Try the flan")), {}));

    // The platform's URL handler stands in for the phone's: what it was asked to open.
    QList<QUrl> opened;
    UrlOpener::setUrlOpener([&](const QUrl &url) {
        opened.append(url);
        return true;
    });
    QStringList tips;
    const auto showTip = [&](const QString &tip) { tips.append(tip); };
    EXPECT_TRUE(AdActions::performAdAction(ad("call", QStringLiteral("78671374")), showTip));
    EXPECT_TRUE(AdActions::performAdAction(ad("tip", QStringLiteral("Try the flan")), showTip));
    EXPECT_FALSE(AdActions::performAdAction(ad("video", QStringLiteral("x")), showTip));
    EXPECT_FALSE(AdActions::performAdAction(ad("tip", QStringLiteral("Try the flan")), nullptr));
    EXPECT_EQ(opened, QList<QUrl>{QUrl(QStringLiteral("tel:78671374"))});
    EXPECT_EQ(tips, QStringList{QStringLiteral("Try the flan")});
    UrlOpener::setUrlOpener([](const QUrl &) { return false; });
}

// Catches: an ad's showing counted once instead of at each making of its cell, a promotion
// counted as an ad, the feed reporting the picture's id instead of the ad's, and a tap reported
// after its action.
TEST(DiscoverFeed, ReportsEveryShowingAndTap)
{
    TestHome home;
    CatalogueFixture fixture = CatalogueFixture::small();
    fixture.sql << QStringLiteral("INSERT INTO app_campaigns VALUES(7, 'url', 'https://es.example', 'https://en.example', '2099-01-01', 1)")
                << QStringLiteral("INSERT INTO app_campaign_images VALUES(70, 7, 'en', CAST('ad' AS BLOB))");
    auto restaurants = home.openCatalogue(fixture, QStringLiteral("en"));
    home.defaults().setInteger(1, QStringLiteral("Province"));
    home.startAnalytics();
    registerApplicationScenes();
    NavigationController navigation;
    DescubreTableViewController feed(*restaurants);
    navigation.setViewControllers({&feed}, false);
    feed.reload();
    const auto &rows = feed.discoverRows();
    const int ad = int(std::find_if(rows.begin(), rows.end(), [](const auto &row) { return row.kind == DescubreTableViewController::DiscoverRow::Kind::ad; }) - rows.begin());
    ASSERT_LT(ad, rows.size()) << "the feed has an ad";
    ASSERT_EQ(rows.first().kind, DescubreTableViewController::DiscoverRow::Kind::promo);

    feed.rowConfigured(0);
    feed.rowConfigured(ad);
    feed.rowConfigured(ad); // scrolled out and back
    QStringList reportedBeforeOpening;
    UrlOpener::setUrlOpener([&](const QUrl &) {
        reportedBeforeOpening = home.storedEvents();
        return true;
    });
    feed.didSelectRow(ad);
    UrlOpener::setUrlOpener([](const QUrl &) { return false; });
    feed.didSelectRow(0);
    ASSERT_EQ(navigation.viewControllers().size(), 2) << "the promotion opened its place";
    const QStringList expected{QStringLiteral("ADV Campaigns/Show/Promo/7"), QStringLiteral("ADV Campaigns/Show/Promo/7"),
                               QStringLiteral("ADV Campaigns/Action/Promo/7"), QStringLiteral("Navigation/Tapped/Promo/1"),
                               QStringLiteral("screen:RestaurantView")};
    EXPECT_EQ(home.storedEvents(), expected);
    EXPECT_EQ(reportedBeforeOpening, expected.mid(0, 3));
}
