#include "app/AppDelegate.h"
#include "app/AppWindow.h"
#include "app/SideMenuViewController.h"
#include "browse/BuscarViewController.h"
#include "browse/OfertasTableViewController.h"
#include "placecard/LugarTableViewController.h"
#include "fixtures/DemoWindow.h"
#include "fixtures/QuickItems.h"
#include "fixtures/TestHome.h"
#include "catalogue/Restaurants.h"
#include "platform/Localize.h"
#include "platform/UserDefaults.h"
#include "presentation/NavigationController.h"
#include "toolkit/CatalogueWriter.h"
#include "toolkit/DemoGenerator.h"

#include <QAccessible>
#include <QDir>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTest>

#include <gtest/gtest.h>


// Drives the main interface offscreen and saves what a user sees: the capital's list, the open
// drawer, a search typed into the bar, and the phone sheet opened by swiping a card and tapping
// its call button. Catches screens that don't show their controller's state: no cards, no index,
// a drawer that doesn't open, typing that doesn't narrow the list, a swipe button a finger can't
// tap.
TEST(MainInterface, ListDrawerSearchAndPhoneSheet)
{
    DemoWindow ui;
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.listShown(); }, 5000));
    LugaresTableViewController *list = ui.search()->lugaresVC();
    EXPECT_GT(list->sectionIndexTitles().size(), 5);
    EXPECT_TRUE(ui.item("provinceButton"));
    ui.save("main-list");

    ui.delegate->showSideMenu(false);
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("sideMenu") != nullptr; }, 2000));
    EXPECT_TRUE(ui.item("menuRow-browse") && ui.item("menuRow-settings"));
    ui.save("main-drawer");
    ui.delegate->drawer()->hideMenuAnimated(false);

    const int all = list->rows()->rowCount();
    ui.search()->searchTapped();
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("searchField") != nullptr; }, 2000));
    QQuickItem *field = ui.item("searchField");
    ASSERT_TRUE(QTest::qWaitFor([&] { return field->hasActiveFocus(); }, 2000));
    for (const char key : {'c', 'a', 's', 'a'})
        QTest::keyClick(ui.window->window(), key);
    // Each keystroke's search, then the last list, settle.
    ASSERT_TRUE(QTest::qWaitFor([&] { return !ui.search()->searchRunning() && !ui.search()->pendingSearch(); }, 5000));
    QTest::qWait(200);
    ASSERT_TRUE(QTest::qWaitFor([&] { return list->rows()->rowCount() > 0 && list->rows()->rowCount() < all; }, 5000));
    const QSet<int> matches = Restaurants::shared().searchIds(QStringLiteral("casa"));
    for (int row = 0; row < list->rows()->rowCount(); ++row)
        EXPECT_TRUE(matches.contains(list->idAtRow(row))) << list->idAtRow(row);
    EXPECT_EQ(field->property("text").toString(), QStringLiteral("casa"));
    ui.save("main-search");

    // The first listed place with a phone opens the sheet of its numbers.
    int withPhone = -1;
    for (int row = 0; row < list->rows()->rowCount() && withPhone < 0; ++row)
        if (list->rows()->index(row).data(list->rows()->roleNames().key("hasPhone")).toBool())
            withPhone = list->idAtRow(row);
    ASSERT_GE(withPhone, 0);
    // A finger drags the card to the left; the call button it uncovers opens the sheet.
    QQuickItem *card = ui.item(qPrintable(QStringLiteral("placeCard-%1").arg(withPhone)));
    ASSERT_TRUE(card);
    EXPECT_EQ(ui.item("swipeButton-call"), nullptr) << "swipe buttons are made before any swipe";
    const QPointF middle = card->mapToScene(QPointF(card->width() - 40, card->height() / 2));
    QQuickWindow *window = ui.window->window();
    QTest::mousePress(window, Qt::LeftButton, {}, middle.toPoint());
    for (int step = 1; step <= 10; ++step)
        QTest::mouseMove(window, (middle - QPointF(25.0 * step, 0)).toPoint(), 16);
    QTest::mouseRelease(window, Qt::LeftButton, {}, (middle - QPointF(250, 0)).toPoint());
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("swipeButton-call") && ui.item("swipeButton-call")->isVisible(); }, 2000));
    QTest::qWait(400); // the card settles open
    EXPECT_FALSE(ui.item("sectionIndexArea")->property("enabled").toBool()) << "the letter index would take the buttons' taps";
    QQuickItem *call = ui.item("swipeButton-call");
    QTest::mouseClick(window, Qt::LeftButton, {}, call->mapToScene(QPointF(call->width() / 2, call->height() / 2)).toPoint());
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("phoneNumbersView") != nullptr; }, 2000));
    ui.save("phone-sheet");
}

namespace {
// Drags a card of the window to the left by most of its width, as a finger would.
void swipeOpen(QQuickWindow *window, QQuickItem *card)
{
    const QPointF start = card->mapToScene(QPointF(card->width() - 40, card->height() / 2));
    QTest::mousePress(window, Qt::LeftButton, {}, start.toPoint());
    for (int step = 1; step <= 10; ++step)
        QTest::mouseMove(window, (start - QPointF(25.0 * step, 0)).toPoint(), 16);
    QTest::mouseRelease(window, Qt::LeftButton, {}, (start - QPointF(250, 0)).toPoint());
}

qreal swipePosition(QQuickItem *card)
{
    return card->property("swipe").value<QObject *>()->property("position").toReal();
}
}

// Catches: a card scrolled away while open coming back open for another place, and the letter
// index staying hidden once no card is open.
TEST(MainInterface, AnOpenSwipeDoesNotOutliveItsRow)
{
    DemoWindow ui;
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.listShown(); }, 5000));
    QQuickItem *list = ui.item("placeList");
    QQuickItem *card = ui.itemWhere([](QQuickItem *item) {
        return item->objectName().startsWith(QLatin1String("placeCard-")) && item->isVisible() && item->y() > 100;
    });
    ASSERT_TRUE(card);
    swipeOpen(ui.window->window(), card);
    ASSERT_TRUE(QTest::qWaitFor([&] { return swipePosition(card) < -0.9; }, 2000));
    // A tap where the dimmed letters lie over the open card's buttons leaves the list where it is.
    QQuickItem *index = ui.item("sectionIndexArea");
    const qreal before = list->property("contentY").toReal();
    const QPointF letters = index->mapToScene(QPointF(index->width() / 2, index->height() - 2));
    QTest::mouseClick(ui.window->window(), Qt::LeftButton, {}, letters.toPoint());
    QTest::qWait(100);
    EXPECT_EQ(list->property("contentY").toReal(), before) << "the dimmed index jumped the list";
    for (int screen = 0; screen < 6; ++screen) {
        list->setProperty("contentY", list->property("contentY").toReal() + list->height());
        QTest::qWait(30);
    }
    for (int screen = 0; screen < 6; ++screen) {
        list->setProperty("contentY", list->property("contentY").toReal() - list->height());
        QTest::qWait(30);
    }
    QTest::qWait(500);
    findItemIf(ui.window->window()->contentItem(), [](QQuickItem *item) {
        if (item->objectName().startsWith(QLatin1String("placeCard-")) && item->isVisible()) {
            EXPECT_EQ(swipePosition(item), 0.0) << item->objectName().toStdString();
        }
        return false;
    });
    EXPECT_TRUE(ui.item("sectionIndexArea")->property("enabled").toBool());
}

// Catches: a title that doesn't open the picker when tapped, a picker that doesn't drop from the
// top, a picked row that doesn't reach the search screen (title, list), and a picker title that
// changes anything when it closes the picker.
TEST(MainInterface, TheTitleDropsTheProvincePicker)
{
    DemoWindow ui;
    QQuickWindow *window = ui.window->window();
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.listShown(); }, 5000));
    const QString capital = ui.search()->provinceName();

    tap(window, ui.item("provinceButton"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("provincesView") != nullptr; }, 2000));
    QQuickItem *sheet = ui.item("presentedSheet");
    EXPECT_LT(sheet->y(), 0.5) << "the picker comes from the top";
    QTest::qWait(500);
    EXPECT_EQ(sheet->y(), 0.0);
    ui.save("provinces");
    tap(window, ui.item("provincesTitle"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("provincesView") == nullptr; }, 2000));
    EXPECT_EQ(ui.search()->provinceName(), capital);

    tap(window, ui.item("provinceButton"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("provincesView") != nullptr; }, 2000));
    QTest::qWait(500);
    const int lastProvince = Restaurants::shared().provinces().lastKey();
    const auto target = Restaurants::shared().province(lastProvince);
    QQuickItem *row = ui.item(qPrintable(QStringLiteral("provinceRow-%1").arg(lastProvince)));
    ASSERT_TRUE(row);
    QQuickItem *provinceList = ui.item("provinceList");
    // The row may lie below the fold: scroll it into view as a finger would.
    while (row->mapToItem(provinceList, QPointF(0, row->height())).y() > provinceList->height()) {
        provinceList->setProperty("contentY", provinceList->property("contentY").toReal() + 100);
        QTest::qWait(20);
    }
    tap(window, row);
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("provincesView") == nullptr; }, 2000));
    EXPECT_EQ(ui.search()->provinceName(), target->name);
    LugaresTableViewController *list = ui.search()->lugaresVC();
    ASSERT_TRUE(QTest::qWaitFor([&] { return list->rows()->rowCount() == target->restaurants.size(); }, 5000))
        << list->rows()->rowCount() << " of " << target->restaurants.size();
    ui.save("provinces-picked");
}

// Catches: a filter button that doesn't open the panel when tapped, a panel that doesn't slide
// in from the right with its width, a tick that doesn't narrow the list at once, a tap on the
// dimmed list that doesn't close the panel, and a filter button left white with filters on.
TEST(MainInterface, TheFilterButtonSlidesInThePanel)
{
    DemoWindow ui;
    QQuickWindow *window = ui.window->window();
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.listShown(); }, 5000));
    LugaresTableViewController *list = ui.search()->lugaresVC();
    const int all = list->rows()->rowCount();

    tap(window, ui.item("barButton-search"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("barButton-filter") != nullptr; }, 2000));
    tap(window, ui.item("barButton-filter"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("filtersView") != nullptr; }, 2000));
    QTest::qWait(500);
    QQuickItem *sheet = ui.item("presentedSheet");
    EXPECT_EQ(sheet->width(), 185.0);
    EXPECT_EQ(sheet->x(), window->width() - 185.0);

    // The cuisines page, then its first cuisine.
    tap(window, ui.item("filtersPage-1"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.search()->lastFilters().cuisines.isEmpty() && ui.item("filterRow-1"); }, 2000));
    tap(window, ui.item("filterRow-1"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.search()->lastFilters().cuisines.size() == 1; }, 2000));
    ASSERT_TRUE(QTest::qWaitFor([&] { return list->rows()->rowCount() > 0 && list->rows()->rowCount() < all; }, 5000))
        << list->rows()->rowCount() << " of " << all;
    EXPECT_TRUE(ui.item("filtersDot-1")->isVisible());
    ui.save("filters");

    // A tap on the dimmed list closes the panel and keeps the filter.
    QTest::mouseClick(window, Qt::LeftButton, {}, QPoint(40, 400));
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("filtersView") == nullptr; }, 2000));
    EXPECT_EQ(ui.search()->lastFilters().cuisines.size(), 1);
    const QObject *button = ui.item("barButton-filter")->property("item").value<QObject *>();
    EXPECT_NE(button->property("tintColor").value<QColor>(), QColor(Qt::white)) << "the filter button shows filters are on";
}

// Catches: an offers tab that doesn't show when tapped, offers that a tap doesn't open, and a
// back button that doesn't return to the tab.
TEST(MainInterface, TheOffersTabListsTodaysOffers)
{
    DemoWindow ui;
    QQuickWindow *window = ui.window->window();
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.listShown(); }, 5000));
    const qsizetype offersIndex = ui.search()->tabs().indexOf(QStringLiteral("offers"));
    ASSERT_GE(offersIndex, 0) << "the capital of the demo has offers";
    QQuickItem *offersTab = ui.item(qPrintable(QStringLiteral("tab-%1").arg(offersIndex)));
    ASSERT_TRUE(offersTab);
    tap(window, offersTab);
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("offerRow-1") && ui.item("offerRow-1")->isVisible(); }, 3000));
    // Each offer's styled text is laid out as its row shows: the first row reads its offer.
    auto *offers = qobject_cast<OfertasTableViewController *>(ui.search()->tabControllers().at(offersIndex));
    ASSERT_TRUE(offers && !offers->ofertas().isEmpty());
    const QString firstOffer = offers->ofertas().first().second.first().name;
    QQuickItem *offerText = findItem(ui.item("offerRow-1"), QStringLiteral("offerText"));
    ASSERT_TRUE(offerText);
    EXPECT_TRUE(offerText->property("plainText").toString().startsWith(firstOffer)) << offerText->property("plainText").toString().toStdString();
    ui.save("offers");
    tap(window, ui.item("offerRow-1"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.delegate->mainNavigation()->viewControllers().size() == 2; }, 2000));
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("offersPlaceCard") && ui.item("offersPlaceCard")->isVisible(); }, 2000));
    QTest::qWait(400);
    // The place's card on top is the place list's, with its cuisines line.
    const int rid = ui.item("offersPlaceCard")->property("rid").toInt();
    QQuickItem *cuisines = findItem(ui.item("offersPlaceCard"), QStringLiteral("cardCuisines"));
    ASSERT_TRUE(cuisines && cuisines->isVisible() && Restaurants::shared().brief(rid));
    EXPECT_TRUE(cuisines->property("plainText").toString().contains(Restaurants::shared().brief(rid)->cuisines.value(0)));
    ui.save("offers-place");
    tap(window, ui.item("barButton-back"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.delegate->mainNavigation()->viewControllers().size() == 1; }, 2000));
}

// Catches: a discover tab that a tap doesn't show, a feed without pictures or ads, and a promoted
// place that a tap doesn't open.
TEST(MainInterface, TheDiscoverTabShowsThePromotedPlaces)
{
    DemoWindow ui;
    QQuickWindow *window = ui.window->window();
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.listShown(); }, 5000));
    ASSERT_EQ(ui.search()->tabs().first(), QStringLiteral("discover")) << "the demo's capital has promotions";
    QQuickItem *tabBar = ui.item("tabBar");
    QTest::mouseClick(window, Qt::LeftButton, {}, tabBar->mapToScene(QPointF(tabBar->width() / 6, tabBar->height() / 2)).toPoint());
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("promoRow-0") && ui.item("promoRow-0")->isVisible(); }, 3000));
    QTest::qWait(600); // pictures load in the background
    ui.save("discover");
    EXPECT_TRUE(ui.itemWhere([](QQuickItem *item) { return item->objectName().startsWith(QLatin1String("adRow-")); }))
        << "an ad follows the second promotion";
    // An ad of another shape than its card is shown whole, not cut at the sides.
    QQuickItem *ad = ui.itemWhere([](QQuickItem *item) {
        return item->objectName() == QLatin1String("adPicture") && item->isVisible() && item->property("status").toInt() == 1;
    });
    ASSERT_TRUE(ad);
    EXPECT_NEAR(ad->property("paintedWidth").toDouble(), ad->width(), 1.0);
    EXPECT_LE(ad->property("paintedHeight").toDouble(), ad->height() + 0.5);
    tap(window, ui.item("promoRow-0"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.delegate->mainNavigation()->viewControllers().size() == 2; }, 2000));
}

// Catches: the opinions switch not showing the cards' score, and the subscription sheet opened
// inside the content the open drawer has pushed aside instead of over the whole window.
TEST(MainInterface, DeveloperSwitchesReachTheList)
{
    DemoWindow ui({QStringLiteral("dev-enable-opinions"), QStringLiteral("dev-enable-subscribe"), QStringLiteral("subscription-screen-seen")});
    QQuickWindow *window = ui.window->window();
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.listShown(); }, 5000));
    QQuickItem *points = ui.itemWhere([](QQuickItem *item) { return item->objectName() == QLatin1String("pointsLabel") && item->isVisible(); });
    ASSERT_TRUE(points);
    EXPECT_EQ(points->property("text").toString(), QStringLiteral("4.5"));

    tap(window, ui.item("barButton-menu"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("moreInfoButton") && ui.item("moreInfoButton")->isVisible(); }, 2000));
    QTest::qWait(400);
    tap(window, ui.item("moreInfoButton"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.delegate->mainNavigation()->presentedViewController() != nullptr; }, 2000));
    QTest::qWait(500);
    QQuickItem *sheet = ui.item("presentedSheet");
    EXPECT_EQ(sheet->mapToScene(QPointF(0, 0)).x(), 0.0) << "the sheet sits in the content pushed aside";
    EXPECT_EQ(sheet->width(), window->width());
}

// Catches: the separator of a card staying put while editing slides the card's texts aside.
TEST(MainInterface, EditingMovesTheSeparatorWithTheTexts)
{
    DemoWindow ui;
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.listShown(); }, 5000));
    QQuickItem *separator = ui.itemWhere([](QQuickItem *item) { return item->objectName() == QLatin1String("cardSeparator") && item->isVisible(); });
    ASSERT_TRUE(separator);
    const qreal before = separator->mapToScene(QPointF(0, 0)).x();
    ui.search()->lugaresVC()->setEditing(true);
    QTest::qWait(500);
    EXPECT_GT(separator->mapToScene(QPointF(0, 0)).x(), before + 20);
    ui.search()->lugaresVC()->setEditing(false);
    QTest::qWait(500);
    EXPECT_EQ(separator->mapToScene(QPointF(0, 0)).x(), before);
}

// Catches: a clear button or a back button in the search bar that a finger's tap doesn't reach.
TEST(MainInterface, TheSearchBarClearsAndCloses)
{
    DemoWindow ui;
    QQuickWindow *window = ui.window->window();
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.listShown(); }, 5000));
    LugaresTableViewController *list = ui.search()->lugaresVC();
    const int all = list->rows()->rowCount();
    tap(window, ui.item("barButton-search"));
    // Generous waits: on a loaded machine the searches and lists land late, not wrong.
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("searchField") && ui.item("searchField")->hasActiveFocus(); }, 5000));
    for (const char key : {'c', 'a', 's', 'a'})
        QTest::keyClick(window, key);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !ui.search()->searchRunning() && !ui.search()->pendingSearch(); }, 10000));
    ASSERT_TRUE(QTest::qWaitFor([&] { return list->rows()->rowCount() > 0 && list->rows()->rowCount() < all; }, 10000))
        << list->rows()->rowCount() << " of " << all;
    // The cards on screen, rewritten and added a few a turn, end up showing the list's first
    // places in order.
    const auto firstRows = [&] {
        QList<int> places;
        for (int row = 0; row < std::min(list->rows()->rowCount(), int(ui.placesOnScreen().size())); ++row)
            places.append(list->idAtRow(row));
        return places;
    };
    EXPECT_TRUE(QTest::qWaitFor([&] { return !ui.placesOnScreen().isEmpty() && ui.placesOnScreen() == firstRows(); }, 5000))
        << ui.placesOnScreen().size() << " cards";
    tap(window, ui.item("clearSearchButton"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("searchField")->property("text").toString().isEmpty(); }, 5000));
    tap(window, ui.item("barButton-cancel"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return !ui.search()->searchVisible(); }, 5000));
    ASSERT_TRUE(QTest::qWaitFor([&] { return list->rows()->rowCount() == all; }, 10000)) << list->rows()->rowCount() << " of " << all << " search " << ui.search()->searchVisible();
}

// Catches an Escape key that does nothing, and one that goes back past what is on top: it closes
// the filters panel, then the search bar, the drawer, and only then leaves a place's card.
TEST(MainInterface, EscapeClosesWhatIsOnTopThenGoesBack)
{
    DemoWindow ui;
    QQuickWindow *window = ui.window->window();
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.listShown(); }, 5000));
    NavigationController &navigation = *ui.delegate->mainNavigation();

    tap(window, ui.item("barButton-search"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("barButton-filter") != nullptr; }, 2000));
    tap(window, ui.item("barButton-filter"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return navigation.presentedViewController() != nullptr && ui.item("filterRow-1"); }, 2000));
    // A screen reader's toggle on a filter's row ticks it, as the tap does.
    QAccessibleInterface *filter = QAccessible::queryAccessibleInterface(ui.item("filterRow-1"));
    ASSERT_TRUE(filter && filter->actionInterface());
    const bool ticked = filter->state().checked;
    filter->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
    EXPECT_TRUE(QTest::qWaitFor([&] { return QAccessible::queryAccessibleInterface(ui.item("filterRow-1"))->state().checked != ticked; }, 2000));
    QTest::keyClick(window, Qt::Key_Escape);
    ASSERT_TRUE(QTest::qWaitFor([&] { return navigation.presentedViewController() == nullptr; }, 2000));
    EXPECT_TRUE(ui.search()->searchVisible());
    QTest::keyClick(window, Qt::Key_Escape);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !ui.search()->searchVisible(); }, 2000));

    tap(window, ui.item("barButton-menu"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.delegate->drawer()->isMenuVisible(); }, 2000));
    QTest::keyClick(window, Qt::Key_Escape);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !ui.delegate->drawer()->isMenuVisible(); }, 2000));

    // A finger taps the list once it has slid back, not while it moves under the finger.
    ASSERT_TRUE(QTest::qWaitFor([&] { return !ui.delegate->drawer()->menuViewPresent(); }, 3000));
    QQuickItem *card = ui.cardOnScreen();
    ASSERT_TRUE(card);
    tap(window, card);
    ASSERT_TRUE(QTest::qWaitFor([&] { return navigation.viewControllers().size() == 2; }, 2000));
    QTest::qWait(400);
    QTest::keyClick(window, Qt::Key_Escape);
    ASSERT_TRUE(QTest::qWaitFor([&] { return navigation.viewControllers().size() == 1; }, 2000));
    QTest::keyClick(window, Qt::Key_Escape); // nothing left to close: the guide stays
    QTest::qWait(200);
    EXPECT_EQ(navigation.viewControllers().size(), 1);
    EXPECT_FALSE(ui.delegate->drawer()->isMenuVisible());

    // A screen reader's press on a place's row opens it, as the tap did.
    QTest::qWait(400);
    card = ui.cardOnScreen();
    ASSERT_TRUE(card);
    QAccessibleInterface *row = QAccessible::queryAccessibleInterface(card);
    ASSERT_TRUE(row && row->actionInterface());
    EXPECT_TRUE(row->actionInterface()->actionNames().contains(QAccessibleActionInterface::pressAction()));
    row->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_TRUE(QTest::qWaitFor([&] { return navigation.viewControllers().size() == 2; }, 2000));
}

// Catches a search a keyboard can't reach: Ctrl+F from another screen of the menu opens the
// browse screen's search with its field taking keys, where "/" is typed, not taken as a shortcut.
TEST(MainInterface, CtrlFReachesSearchFromAnotherScreen)
{
    DemoWindow ui;
    QQuickWindow *window = ui.window->window();
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.listShown(); }, 5000));
    ui.delegate->openLink(QStringLiteral("velmora://myplaces"), false);
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("myPlacesView") && ui.item("myPlacesView")->isVisible(); }, 3000));

    QTest::keyClick(window, Qt::Key_F, Qt::ControlModifier);
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("searchField") && ui.item("searchField")->hasActiveFocus(); }, 3000));
    EXPECT_TRUE(ui.search()->searchVisible());
    QTest::keyClick(window, 'a');
    QTest::keyClick(window, '/');
    EXPECT_EQ(ui.item("searchField")->property("text").toString(), QStringLiteral("a/"));
}

// Catches a guide a keyboard can't walk: Tab stops on the bar's buttons and on the place cards in
// reading order, with a ring on the one that has the keys; Return opens the drawer or the place,
// and Escape comes back.
TEST(MainInterface, TabAndReturnOpenTheMenuAndAPlace)
{
    DemoWindow ui;
    QQuickWindow *window = ui.window->window();
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.listShown(); }, 5000));
    const auto focused = [&] { return focusedName(window); };

    QTest::keyClick(window, Qt::Key_Tab);
    ASSERT_EQ(focused(), QStringLiteral("barButton-menu"));
    EXPECT_TRUE(ringOnFocus(window));
    QTest::keyClick(window, Qt::Key_Return);
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.delegate->drawer()->isMenuVisible(); }, 2000));
    QTest::keyClick(window, Qt::Key_Escape);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !ui.delegate->drawer()->isMenuVisible(); }, 2000));

    // Reading order: the bar from left to right (menu, province, search), then the first card.
    QTest::keyClick(window, Qt::Key_Tab);
    QTest::keyClick(window, Qt::Key_Tab);
    EXPECT_EQ(focused(), QStringLiteral("barButton-search"));
    QTest::keyClick(window, Qt::Key_Tab);
    ASSERT_TRUE(focused().startsWith(QLatin1String("placeCard-"))) << focused().toStdString();
    EXPECT_TRUE(ringOnFocus(window));
    ui.save("keyboard-ring");
    QQuickItem *first = ui.cardOnScreen();
    EXPECT_EQ(window->activeFocusItem(), first) << "the first card in reading order";
    // Down walks the list past the cards on screen, which scrolls along; Up comes back a card.
    for (int i = 0; i < 12; ++i)
        QTest::keyClick(window, Qt::Key_Down);
    ASSERT_EQ(window->activeFocusItem()->property("index").toInt(), 12);
    const QRectF shown = window->activeFocusItem()->mapRectToScene(window->activeFocusItem()->boundingRect());
    EXPECT_TRUE(QRectF(0, 0, window->width(), window->height()).contains(shown)) << "the card with the keys is in view";
    QTest::keyClick(window, Qt::Key_Up);
    ASSERT_EQ(window->activeFocusItem()->property("index").toInt(), 11);
    const int placeId = focused().mid(int(qstrlen("placeCard-"))).toInt();
    QTest::keyClick(window, Qt::Key_Return);
    ASSERT_TRUE(QTest::qWaitFor([&] {
        auto *card = qobject_cast<LugarTableViewController *>(ui.delegate->mainNavigation()->topViewController());
        return card && card->restInfo && card->restInfo->id == placeId;
    }, 3000));
    QTest::qWait(400);
    QTest::keyClick(window, Qt::Key_Escape);
    EXPECT_TRUE(QTest::qWaitFor([&] { return ui.delegate->mainNavigation()->viewControllers().size() == 1; }, 2000));
}

// Catches a filters panel or side menu a keyboard can't work: Tab reaches a filter's row and
// Space ticks it, Return on "Show places" closes the panel; in the open menu Tab reaches My places
// and Return opens it.
TEST(MainInterface, TheKeysTickAFilterAndPickAMenuRow)
{
    DemoWindow ui;
    QQuickWindow *window = ui.window->window();
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.listShown(); }, 5000));
    NavigationController &navigation = *ui.delegate->mainNavigation();
    const auto focused = [&] { return focusedName(window); };

    tap(window, ui.item("barButton-search"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("barButton-filter") != nullptr; }, 2000));
    tap(window, ui.item("barButton-filter"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return navigation.presentedViewController() != nullptr && ui.item("filterRow-1"); }, 2000));
    QTest::qWait(400);
    ASSERT_TRUE(tabTo(window, QStringLiteral("filterRow-")));
    const QString row = focused();
    const auto checked = [&] { return QAccessible::queryAccessibleInterface(ui.item(qPrintable(row)))->state().checked; };
    const bool ticked = checked();
    EXPECT_TRUE(ringOnFocus(window));
    QTest::keyClick(window, Qt::Key_Space);
    EXPECT_TRUE(QTest::qWaitFor([&] { return checked() != ticked; }, 2000));
    EXPECT_EQ(focused(), row) << "the ticked row keeps the keys";
    ASSERT_TRUE(tabTo(window, QStringLiteral("filterButton")));
    QTest::keyClick(window, Qt::Key_Return);
    ASSERT_TRUE(QTest::qWaitFor([&] { return navigation.presentedViewController() == nullptr; }, 2000));
    QTest::keyClick(window, Qt::Key_Escape); // leaves search

    tap(window, ui.item("barButton-menu"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.delegate->drawer()->isMenuVisible(); }, 2000));
    QTest::qWait(400);
    ASSERT_TRUE(tabTo(window, QStringLiteral("menuRow-myplaces")));
    QTest::keyClick(window, Qt::Key_Return);
    EXPECT_TRUE(QTest::qWaitFor([&] { return ui.item("myPlacesView") && ui.item("myPlacesView")->isVisible(); }, 3000));
}
