#include "app/AppDelegate.h"
#include "presentation/Globals.h"
#include "app/Scenes.h"
#include "platform/Notifications.h"
#include "browse/BuscarViewController.h"
#include "fixtures/TestHome.h"
#include "platform/NotificationCenter.h"
#include "platform/OperationQueue.h"
#include "platform/UserDefaults.h"
#include "presentation/NavigationController.h"

#include <QTest>

#include <gtest/gtest.h>

namespace {
// The search screen over the small catalogue: the capital has places 100, 101 and 102 (closed)
// in municipalities 10 and 11, a promotion and no offers; Matanzas has 200 and an offer.
struct SearchScreen {
    explicit SearchScreen(int province = 1)
    {
        registerApplicationScenes();
        home.defaults().setInteger(province, QStringLiteral("Province"));
        restaurants = home.openCatalogue(CatalogueFixture::small());
        screen = std::make_unique<BuscarViewController>(*restaurants);
        navigation.setViewControllers({screen.get()}, false);
        waitForList();
    }
    QSet<int> listed()
    {
        QSet<int> ids;
        for (const Section &section : screen->lugaresVC()->sections())
            for (int id : section.ids)
                ids.insert(id);
        return ids;
    }
    void waitForList()
    {
        QTest::qWait(50);
        Globals::backgroundQueue().waitUntilAllOperationsAreFinished();
        QCoreApplication::processEvents();
    }
    void type(const QString &before, const QString &after)
    {
        screen->textFieldShouldChange(before, after);
        screen->textFieldChanged(after);
    }

    TestHome home;
    std::unique_ptr<Restaurants> restaurants;
    NavigationController navigation;
    std::unique_ptr<BuscarViewController> screen;
};
}

// Catches: a search per keystroke instead of one running and one pending, a stale result
// narrowing the list after the text was cleared, and results applied to the wrong text.
TEST(SearchScreen, TypingRunsAtMostOneSearchAndOnePending)
{
    SearchScreen ui;
    ui.screen->searchTapped();
    ui.type(QString(), QStringLiteral("b"));      // the first character of an empty field starts nothing
    EXPECT_EQ(ui.screen->searchesStarted(), 0);
    ui.type(QStringLiteral("b"), QStringLiteral("bo"));
    ui.type(QStringLiteral("bo"), QStringLiteral("bod"));
    ui.type(QStringLiteral("bod"), QStringLiteral("bode"));
    QCoreApplication::processEvents(); // the three scheduled steps: one search starts, two wait in turn
    EXPECT_TRUE(QTest::qWaitFor([&] { return !ui.screen->searchRunning(); }, 3000));
    ui.waitForList();
    EXPECT_EQ(ui.screen->searchesStarted(), 2) << "the first and the last text only";
    EXPECT_EQ(ui.listed(), QSet<int>{100});

    // Clearing the text while a search runs: the late result must not narrow the list.
    ui.type(QStringLiteral("bode"), QStringLiteral("bodeg"));
    QCoreApplication::processEvents();
    ASSERT_TRUE(ui.screen->searchRunning() || ui.screen->searchesStarted() == 3);
    ui.type(QStringLiteral("bodeg"), QString());
    EXPECT_TRUE(QTest::qWaitFor([&] { return !ui.screen->searchRunning(); }, 3000));
    ui.waitForList();
    EXPECT_EQ(ui.listed(), (QSet<int>{100, 101}));

    // FTS syntax and a very long text give an empty list, not a crash.
    ui.type(QStringLiteral("x"), QStringLiteral("\"(( OR NEAR *"));
    ui.type(QStringLiteral("x"), QString(4000, QLatin1Char('z')));
    EXPECT_TRUE(QTest::qWaitFor([&] { return !ui.screen->searchRunning(); }, 3000));
    ui.waitForList();
    EXPECT_TRUE(ui.listed().isEmpty());
    EXPECT_FALSE(ui.screen->lugaresVC()->fewerFiltersVisible()) << "no filters: the list stays blank";
}

// Catches: filters applied while browsing, the whole province not back after closing the bar,
// fewerFilters judged by the argument instead of the saved filters, and a province change
// dropping cuisines or prices.
TEST(SearchScreen, FiltersApplyOnlyInSearchMode)
{
    SearchScreen ui;
    EXPECT_EQ(ui.listed(), (QSet<int>{100, 101}));
    Filters onlySeafood;
    onlySeafood.cuisines = {3};
    onlySeafood.prices = {4};
    ui.home.defaults().setObject(onlySeafood.dictionary(), QStringLiteral("filters"));
    EXPECT_EQ(ui.screen->filterButton()->tintColor(), QColor(Qt::white));

    ui.screen->searchTapped();
    ui.waitForList();
    EXPECT_TRUE(ui.screen->searchVisible());
    EXPECT_TRUE(ui.listed().isEmpty());
    EXPECT_TRUE(ui.screen->lugaresVC()->fewerFiltersVisible());
    EXPECT_EQ(ui.screen->filterButton()->tintColor(), QColor(QStringLiteral("#94cf3c")));
    EXPECT_EQ(ui.screen->leftItems().first()->objectName(), QStringLiteral("cancel"));
    ui.screen->filterButton()->trigger();
    EXPECT_TRUE(ui.navigation.presentedViewController()) << "the filter button opens the panel";

    ui.screen->cancelSearch();
    ui.waitForList();
    EXPECT_EQ(ui.listed(), (QSet<int>{100, 101})) << "the whole province while browsing";
    EXPECT_EQ(ui.screen->leftItems().first()->objectName(), QStringLiteral("menu"));

    ui.home.defaults().setBool(true, QStringLiteral("show-closed-places"));
    NotificationCenter::defaultCenter().post(Notifications::VelmoraReloadRestaurants);
    ui.waitForList();
    EXPECT_EQ(ui.listed(), (QSet<int>{100, 101, 102}));

    Filters chosen;
    chosen.municipalities = {10};
    chosen.cuisines = {1};
    ui.screen->filtersChanged(chosen);
    ui.screen->provinceSelected(2, false);
    QCoreApplication::processEvents();
    EXPECT_FALSE(ui.navigation.presentedViewController()) << "choosing a province closes what was presented";
    Filters saved;
    saved.load(ui.home.defaults().dictionaryForKey(QStringLiteral("filters")));
    EXPECT_TRUE(saved.municipalities.isEmpty());
    EXPECT_EQ(saved.cuisines, QSet<int>{1});
}

// Catches: a tab shown for a province with nothing to show in it, a tab bar over a single tab,
// and an unknown province without its marker title.
TEST(SearchScreen, TabsFollowTheProvince)
{
    SearchScreen capital(1);
    EXPECT_EQ(capital.screen->tabs(), (QStringList{QStringLiteral("discover"), QStringLiteral("places")}));
    EXPECT_EQ(capital.screen->tabs().at(capital.screen->selectedTab()), QStringLiteral("places"));
    NotificationCenter::defaultCenter().post(Notifications::MyPlacesExplore);
    EXPECT_EQ(capital.screen->selectedTab(), 0);
    EXPECT_EQ(capital.screen->provinceName(), QStringLiteral("La Habana"));

    // No catalogue at all: empty lists, no crash.
    TestHome empty;
    Restaurants none(empty.environment());
    BuscarViewController bare(none);
    bare.loadViewIfNeeded();
    bare.searchTapped();
    bare.textFieldShouldChange(QStringLiteral("a"), QStringLiteral("ab"));
    QTest::qWait(100);
    Globals::backgroundQueue().waitUntilAllOperationsAreFinished();
    QCoreApplication::processEvents();
    EXPECT_TRUE(bare.lugaresVC()->sections().isEmpty());
    EXPECT_EQ(bare.provinceName(), QStringLiteral("(invalid province)"));

    SearchScreen nowhere(42);
    EXPECT_EQ(nowhere.screen->tabs(), QStringList{QStringLiteral("places")});
    EXPECT_TRUE(nowhere.screen->tabBarHidden());
    EXPECT_EQ(nowhere.screen->provinceName(), QStringLiteral("(invalid province)"));
    EXPECT_TRUE(nowhere.listed().isEmpty());
}

// Catches: a saved filter naming ids the catalogue or the province no longer has narrowing the
// list to nothing, or throwing the whole saved filter away for one stale id.
TEST(SearchScreen, StaleSavedFiltersAreDroppedEntryByEntry)
{
    SearchScreen ui;
    Filters stale;
    stale.municipalities = {10, 999, 20};
    stale.cuisines = {3, 77};
    stale.prices = {4, 42};
    ui.home.defaults().setObject(stale.dictionary(), QStringLiteral("filters"));
    ui.screen->searchTapped();
    ui.waitForList();
    EXPECT_EQ(ui.screen->lastFilters().municipalities, QSet<int>{10}) << "20 is Matanzas's, 999 no one's";
    EXPECT_EQ(ui.screen->lastFilters().cuisines, QSet<int>{3});
    EXPECT_EQ(ui.screen->lastFilters().prices, QSet<int>{4});
}
