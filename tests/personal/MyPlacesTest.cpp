#include "browse/LugaresTableViewController.h"
#include "fixtures/TestHome.h"
#include "personal/MyPlacesViewController.h"
#include "platform/DefaultKeys.h"
#include "platform/Localize.h"
#include "platform/NotificationCenter.h"
#include "platform/Notifications.h"
#include "platform/UserDefaults.h"
#include "presentation/SideMenuPresenter.h"

#include <QTest>

#include <gtest/gtest.h>

namespace {
QSet<int> shownIds(const LugaresTableViewController &list)
{
    QSet<int> ids;
    for (const Section &section : list.sections())
        ids.unite(QSet<int>(section.ids.begin(), section.ids.end()));
    return ids;
}

bool waitForShown(const LugaresTableViewController &list, const QSet<int> &ids)
{
    return QTest::qWaitFor([&] { return shownIds(list) == ids; }, 3000);
}

struct MenuEntries : SideMenuPresenter {
    QStringList shown;
    void showSideMenu(bool) override {}
    void showMenuEntry(const QString &key) override { shown.append(key); }
};
}

// Catches: a list that shows ids the catalogue has lost (or hides the empty view because of
// them), lists bound to the current province, a delete taken from the list selected after the
// swipe instead of at it, an editing flag lost on a segment change, a screen that doesn't follow
// a new catalogue, and an explore button that leads nowhere.
TEST(MyPlaces, ListsFollowTheStoreTheSwipeAndTheCatalogue)
{
    TestHome home;
    Localize::setCurrentLanguage(QStringLiteral("en"));
    home.defaults().setInteger(1, DefaultKeys::province);
    auto restaurants = home.openCatalogue(CatalogueFixture::small(), QStringLiteral("en"));
    home.defaults().setIntArray({100, 101, 999}, DefaultKeys::favoritos);
    home.defaults().setIntArray({200}, DefaultKeys::porVisitar);

    MyPlacesViewController screen(*restaurants, home.defaults());
    screen.loadViewIfNeeded();
    LugaresTableViewController &list = *screen.lugares();
    EXPECT_FALSE(screen.showingEmpty());
    ASSERT_TRUE(waitForShown(list, {100, 101})) << "the unknown 999 is skipped";
    EXPECT_EQ(screen.segmentTitles(), (QStringList{QStringLiteral("Favourites"), QStringLiteral("Visited"), QStringLiteral("To visit")}));

    screen.setSelectedSegment(1);
    EXPECT_TRUE(screen.showingEmpty());
    EXPECT_EQ(screen.emptyIcon(), QStringLiteral("W"));
    EXPECT_FALSE(screen.emptySpoken().contains(QLatin1Char('<')));
    screen.setSelectedSegment(2);
    EXPECT_FALSE(screen.showingEmpty());
    ASSERT_TRUE(waitForShown(list, {200})) << "another province's place is listed too";

    // A delete belongs to the list selected at the swipe, even if the segment changes before
    // the reload; the ids the catalogue lost stay in the store.
    screen.setSelectedSegment(0);
    screen.setEditing(true);
    ASSERT_TRUE(waitForShown(list, {100, 101}));
    EXPECT_TRUE(screen.deleteCallback(101));
    screen.setSelectedSegment(2);
    EXPECT_TRUE(list.customEditing()) << "editing outlives a segment change";
    QTest::qWait(400);
    const QList<int> favourites = home.defaults().intArrayForKey(DefaultKeys::favoritos);
    EXPECT_EQ(QSet<int>(favourites.begin(), favourites.end()), (QSet<int>{100, 999}));
    EXPECT_EQ(home.defaults().intArrayForKey(DefaultKeys::porVisitar), QList<int>{200});
    ASSERT_TRUE(waitForShown(list, {200}));

    // A newer catalogue without 100: favourites hold only unknown ids now, and say so.
    screen.setSelectedSegment(0);
    ASSERT_TRUE(waitForShown(list, {100}));
    CatalogueFixture newer = CatalogueFixture::small();
    newer.places.removeFirst();
    newer.restaurantCuisines.removeIf([](const CatalogueFixture::Pair &pair) { return pair.restaurant_id == 100; });
    newer.promotedPlaces.clear();
    newer.versionDate = QStringLiteral("20170301");
    home.addCatalogue(newer, QStringLiteral("velmora-20170301.db"));
    restaurants->reload();
    ASSERT_TRUE(QTest::qWaitFor([&] { return screen.showingEmpty(); }, 3000));
    EXPECT_EQ(screen.emptyIcon(), QStringLiteral("U"));

    MenuEntries menu;
    SideMenuPresenter::setShared(&menu);
    int explored = 0;
    QObject observer;
    NotificationCenter::defaultCenter().addObserver(&observer, Notifications::MyPlacesExplore, [&](const QVariant &) { ++explored; });
    screen.explore();
    SideMenuPresenter::setShared(nullptr);
    EXPECT_EQ(explored, 1);
    EXPECT_EQ(menu.shown, QStringList{QStringLiteral("browse")});
}
