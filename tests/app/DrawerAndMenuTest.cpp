#include "app/AppDelegate.h"
#include "platform/Notifications.h"
#include "app/SideDrawer.h"
#include "app/SideMenuViewController.h"
#include "fixtures/TestHome.h"
#include "platform/Localize.h"
#include "platform/NotificationCenter.h"
#include "platform/UserDefaults.h"
#include "presentation/NavigationController.h"
#include "richtext/AttributedString.h"

#include <QAbstractItemModelTester>
#include <QTest>

#include <gtest/gtest.h>

namespace {
// The main interface on the small catalogue, with the drawer's animations finished at once.
struct MainInterface {
    explicit MainInterface(const std::function<void(TestHome &)> &prepare = {})
    {
        home.addCatalogue(QStringLiteral("20170101"));
        if (prepare)
            prepare(home);
        delegate.didFinishLaunching();
        delegate.loadMainUI();
    }
    SideDrawer &drawer() { return *delegate.drawer(); }
    SideMenuTableViewController &table() { return *delegate.sideMenu()->tableVC(); }
    NavigationController &navigation() { return *delegate.mainNavigation(); }
    void settle() { QCoreApplication::processEvents(); }

    TestHome home;
    AppDelegate delegate;
};
}

// Catches: the one-third rule made inclusive, a leftward flick ignored, a closed drawer reacting
// to drags, and the menu's view staying after the drawer has closed.
TEST(Drawer, GestureRules)
{
    MainInterface ui;
    SideDrawer &drawer = ui.drawer();
    drawer.panBegan();
    drawer.panChanged(150);
    EXPECT_EQ(drawer.offset(), 0) << "a closed drawer has no pan recognizer";
    drawer.tapRecognized();
    EXPECT_FALSE(drawer.isMenuVisible());

    const qreal third = SideDrawer::defaultMenuWidth * 0.33;
    const auto dragFromOpen = [&](qreal to, qreal velocity) {
        drawer.showMenuAnimated(false);
        drawer.panBegan();
        drawer.panChanged(to);
        drawer.panEnded(to, velocity);
        return drawer.isMenuVisible();
    };
    EXPECT_FALSE(dragFromOpen(third, 0)) << "exactly a third closes";
    EXPECT_TRUE(dragFromOpen(third + 1, 0));
    EXPECT_FALSE(dragFromOpen(200, -2)) << "a leftward flick closes however far";
    EXPECT_TRUE(dragFromOpen(20, 6)) << "a rightward flick opens";
    EXPECT_TRUE(dragFromOpen(third + 1, -1));
    EXPECT_EQ(drawer.animationDuration(), 165);

    drawer.panBegan();
    drawer.panChanged(-500);
    EXPECT_EQ(drawer.offset(), 0) << "the content never goes left of its place";
    drawer.panEnded(-500, 0);
    drawer.hideAnimationFinished();
    EXPECT_FALSE(drawer.menuViewPresent());
    EXPECT_TRUE(drawer.contentInteractive());

    drawer.showMenuAnimated(true);
    EXPECT_FALSE(drawer.contentInteractive());
    drawer.tapRecognized();
    EXPECT_FALSE(drawer.isMenuVisible());
}

// Catches: the logo moving the selection, a reselected row not reloading its screen, and
// screens rebuilt on each visit.
TEST(SideMenu, SelectionRules)
{
    MainInterface ui;
    SideMenuTableViewController &table = ui.table();
    QAbstractItemModelTester tester(&table, QAbstractItemModelTester::FailureReportingMode::Fatal);
    NavigationController &navigation = ui.navigation();
    ViewController *search = navigation.topViewController();
    EXPECT_EQ(table.selectedRow(), 1);

    table.didSelectRow(2); // map
    ui.drawer().showMenuAnimated(false);
    ui.settle();
    ASSERT_EQ(navigation.viewControllers().size(), 2);
    ViewController *map = navigation.topViewController();
    EXPECT_EQ(map, ui.delegate.sideMenu()->mapViewController());
    EXPECT_FALSE(ui.drawer().isMenuVisible());

    int explored = 0;
    QObject observer;
    NotificationCenter::defaultCenter().addObserver(&observer, Notifications::MyPlacesExplore, [&](const QVariant &) { ++explored; });
    table.didSelectRow(0); // the logo
    EXPECT_EQ(explored, 1);
    EXPECT_EQ(navigation.topViewController(), search);
    EXPECT_EQ(table.selectedRow(), 2) << "the logo leaves the selection as it was";

    table.didSelectRow(2); // the selected row again: pop, push, close
    ui.settle();
    EXPECT_EQ(navigation.topViewController(), map) << "screens are kept for good";
}

// Catches: the notifications row opening a screen or closing the drawer, and titles not
// following a language change while the selected row stays bold.
TEST(SideMenu, NotificationsRowAndLanguage)
{
    MainInterface withNotifications([](TestHome &home) { home.defaults().setBool(true, QStringLiteral("dev-enable-notifications")); });
    SideMenuTableViewController &full = withNotifications.table();
    ASSERT_EQ(full.rows().indexOf(QStringLiteral("notifications")), 4);
    withNotifications.drawer().showMenuAnimated(false);
    full.didSelectRow(4);
    withNotifications.settle();
    EXPECT_EQ(full.selectedRow(), 4);
    EXPECT_TRUE(withNotifications.drawer().isMenuVisible());
    EXPECT_EQ(withNotifications.navigation().viewControllers().size(), 1);

    const auto titleOf = [&](int row) {
        return full.data(full.index(row), SideMenuTableViewController::TitleRole).value<AttributedString>();
    };
    Localize::setCurrentLanguage(QStringLiteral("es"));
    EXPECT_EQ(titleOf(1).string(), QStringLiteral("Buscar"));
    EXPECT_EQ(titleOf(4).runs.first().font->name, QStringLiteral("OpenSans-Semibold"));
    EXPECT_EQ(titleOf(1).runs.first().font->name, QStringLiteral("OpenSans-Light"));
    Localize::setCurrentLanguage(QStringLiteral("en"));
    EXPECT_EQ(titleOf(1).string(), QStringLiteral("Search"));
}

// Catches: the invitation shown to a subscriber or to a device that can't subscribe.
TEST(SideMenu, MoreInfoButtonInvitesOnlyWhoCanSubscribe)
{
    MainInterface ui;
    SideMenuViewController &menu = *ui.delegate.sideMenu();
    EXPECT_TRUE(menu.moreInfoButtonHidden());
    ui.home.defaults().setBool(true, QStringLiteral("dev-enable-subscribe"));
    EXPECT_FALSE(menu.moreInfoButtonHidden());
    ui.home.defaults().setIntArray({3}, QStringLiteral("subscription-provinces"));
    EXPECT_TRUE(menu.moreInfoButtonHidden());
}
