#include "catalogue/MyPlacesLists.h"
#include "fixtures/DemoWindow.h"
#include "personal/MyPlacesViewController.h"
#include "placecard/GalleryViewController.h"
#include "placecard/LugarTableViewController.h"
#include "placecard/MenuTableViewController.h"
#include "platform/Database.h"
#include "platform/DefaultKeys.h"
#include "platform/Localize.h"
#include "presentation/UrlOpener.h"

#include <QClipboard>
#include <QSignalSpy>
#include <QGuiApplication>

namespace {
QPoint centreOf(QQuickItem *item) { return item->mapToScene(QPointF(item->width() / 2, item->height() / 2)).toPoint(); }

// The first place of the capital's list that `wanted` accepts, or -1.
int firstListedPlace(DemoWindow &ui, const std::function<bool(const RestaurantInfo &)> &wanted)
{
    LugaresTableViewController *list = ui.search()->lugaresVC();
    for (int row = 0; row < list->rows()->rowCount(); ++row)
        if (const auto info = Restaurants::shared().restaurantInfo(list->idAtRow(row)); info && wanted(*info))
            return info->id;
    return -1;
}

LugarTableViewController *openCard(DemoWindow &ui) { return qobject_cast<LugarTableViewController *>(ui.delegate->mainNavigation()->topViewController()); }

// Brings a row of the card on screen by dragging the table up, as a thumb would.
QQuickItem *scrollTo(DemoWindow &ui, const char *name)
{
    QQuickWindow *window = ui.window->window();
    for (int attempt = 0; attempt < 8; ++attempt) {
        QQuickItem *row = ui.item(name);
        if (row && row->isVisible()) {
            const QRectF shown = row->mapRectToScene(QRectF(0, 0, row->width(), row->height()));
            if (shown.top() >= 56 && shown.bottom() <= window->height() + 1)
                return row;
        }
        drag(window, QPoint(200, 600), QPoint(0, -250));
        // A tap on a table still in motion only stops it.
        (void)QTest::qWaitFor([&] { return !ui.item("lugarTable")->property("moving").toBool(); }, 3000);
    }
    return nullptr;
}
}

// Catches: a card that a tapped row doesn't open, a header that doesn't stretch under a pull,
// a bar that doesn't turn red as the picture scrolls away, a call row or phone row that taps
// don't reach, a copy menu that copies nothing, a save sheet whose toggles and button don't
// file the place, and My places that doesn't show the saved place or lose it to a swipe.
TEST(PlaceCardInterface, OpenScrollRingSaveAndFindInMyPlaces)
{
    DemoWindow ui;
    QQuickWindow *window = ui.window->window();
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.listShown(); }, 5000));
    // The first listed place on screen with a phone, a description and no pictures: its card
    // has a call row to tap, its profile picture over its blur, and an ad, so it is long enough
    // to scroll.
    const int placeId = firstListedPlace(ui, [&](const RestaurantInfo &info) {
        QQuickItem *shown = ui.item(qPrintable(QStringLiteral("placeCard-%1").arg(info.id)));
        return shown && shown->isVisible() && shown->mapToScene(QPointF(0, shown->height())).y() < window->height() && info.hasPhone
            && !info.hasGallery && !info.description.isEmpty() && !Restaurants::shared().profileImage(info.id).isEmpty();
    });
    ASSERT_GE(placeId, 0);
    QQuickItem *listCard = ui.item(qPrintable(QStringLiteral("placeCard-%1").arg(placeId)));
    ASSERT_TRUE(listCard && listCard->isVisible());
    tap(window, listCard);
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("lugarView") && openCard(ui); }, 3000));
    LugarTableViewController *card = openCard(ui);
    EXPECT_EQ(card->rid(), placeId);
    QTest::qWait(600);
    EXPECT_TRUE(card->barTranslucent()) << "the bar starts as a grey veil over the picture";
    ui.save("card-top");

    // Pulled down, the picture grows with the pull; let go, it settles back.
    drag(window, QPoint(200, 300), QPoint(0, 120), false);
    EXPECT_LT(card->galleryImageTop(), -20);
    QTest::mouseRelease(window, Qt::LeftButton, {}, QPoint(200, 420));
    ASSERT_TRUE(QTest::qWaitFor([&] { return card->galleryImageTop() == 0; }, 3000));

    // Scrolled up past the picture, the bar is the brand's red.
    drag(window, QPoint(200, 600), QPoint(0, -320));
    ASSERT_TRUE(QTest::qWaitFor([&] { return card->barColor() == QColor(QStringLiteral("#d95b43")); }, 3000));
    EXPECT_FALSE(card->barTranslucent());
    ui.save("card-scrolled");

    // The call row opens the sheet; a tap on a number dials it, holding it copies it.
    QList<QUrl> dialled;
    UrlOpener::setUrlOpener([&](const QUrl &url) {
        dialled.append(url);
        return true;
    });
    QQuickItem *call = scrollTo(ui, "lugarCallButton");
    ASSERT_TRUE(call);
    tap(window, call);
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("phoneRow-0") != nullptr; }, 2000));
    QTest::qWait(400);
    tap(window, ui.item("phoneRow-0"));
    ASSERT_EQ(dialled.size(), 1);
    EXPECT_TRUE(dialled.first().toString().startsWith(QStringLiteral("tel:/")));
    QTest::mousePress(window, Qt::LeftButton, {}, centreOf(ui.item("phoneRow-0")));
    QTest::qWait(700);
    QTest::mouseRelease(window, Qt::LeftButton, {}, centreOf(ui.item("phoneRow-0")));
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("phoneCopyMenu")->isVisible(); }, 1000));
    tap(window, ui.item("phoneCopyMenu"));
    EXPECT_EQ(QGuiApplication::clipboard()->text(), Restaurants::shared().phones(placeId).first());
    EXPECT_EQ(dialled.size(), 1) << "holding a number doesn't dial it";
    tap(window, ui.item("phonesCancel"));
    // The dim fades out after the sheet has gone, and takes taps until it has.
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("phoneNumbersView") == nullptr && !ui.item("dimming")->isVisible(); }, 2000));

    // The ad under the description: a tap acts on it, opening its address or asking for its tip.
    QSignalSpy tips(card, &LugarTableViewController::tipRequested);
    QQuickItem *ad = scrollTo(ui, "adPicture");
    ASSERT_TRUE(ad);
    tap(window, ad);
    EXPECT_EQ(dialled.size() - 1 + tips.count(), 1) << "the ad's tap did nothing";
    // An ad whose action is a tip shows it in the fortune sheet; a tap anywhere puts it away.
    if (tips.count() == 1) {
        ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("fortunesView") != nullptr; }, 2000));
        QTest::qWait(400);
        QTest::mouseClick(window, Qt::LeftButton, {}, QPoint(window->width() / 2, 20));
        ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("fortunesView") == nullptr && !ui.item("dimming")->isVisible(); }, 2000));
    }
    UrlOpener::setUrlOpener([](const QUrl &) { return false; });

    // The note's whole box takes a tap, not only its first line.
    QQuickItem *notes = scrollTo(ui, "lugarNotesCell");
    ASSERT_TRUE(notes);
    QTest::mouseClick(window, Qt::LeftButton, {}, notes->mapToScene(QPointF(notes->width() - 40, notes->height() - 14)).toPoint());
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("lugarNotes")->hasActiveFocus(); }, 1000)) << "a tap low in the box edits the note";
    QTest::sendKeyEvent(QTest::KeyAction::Click, window, Qt::Key_unknown, QStringLiteral("Pedir mesa"), Qt::NoModifier);
    QTest::keyClick(window, Qt::Key_Return); // ends the editing, which keeps the note
    ASSERT_TRUE(QTest::qWaitFor([&] { return !ui.item("lugarNotes")->hasActiveFocus(); }, 1000));
    EXPECT_EQ(ui.home.defaults().stringForKey(DefaultKeys::notesKey(placeId)), QStringLiteral("Pedir mesa"));
    // Tab leaves the note, and types nothing into it.
    tap(window, ui.item("lugarNotes"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("lugarNotes")->hasActiveFocus(); }, 1000));
    QTest::keyClick(window, Qt::Key_Tab);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !ui.item("lugarNotes")->hasActiveFocus(); }, 1000));
    EXPECT_EQ(ui.home.defaults().stringForKey(DefaultKeys::notesKey(placeId)), QStringLiteral("Pedir mesa"));

    // "Save to my places" opens the sheet. A toggle then a tap on the dim outside it keeps
    // nothing; the action button is the one way to keep changes, and says so once there are some.
    QQuickItem *save = scrollTo(ui, "lugarMyPlacesRow");
    ASSERT_TRUE(save);
    const auto openSheet = [&] {
        tap(window, save);
        const bool shown = QTest::qWaitFor([&] { return ui.item("saveToggle-favorite") != nullptr; }, 2000);
        QTest::qWait(400);
        return shown;
    };
    ASSERT_TRUE(openSheet());
    tap(window, ui.item("saveToggle-visited"));
    QTest::mouseClick(window, Qt::LeftButton, {}, QPoint(window->width() / 2, 80));
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("saveToMyPlacesView") == nullptr && !ui.item("dimming")->isVisible(); }, 2000));
    EXPECT_TRUE(ui.home.defaults().intArrayForKey(DefaultKeys::visitados).isEmpty());
    ASSERT_TRUE(openSheet());
    EXPECT_EQ(ui.item("saveSheetActionText")->property("text").toString(), qtTrId("save_myplaces_cancel"));
    tap(window, ui.item("saveToggle-favorite"));
    EXPECT_EQ(ui.item("saveSheetActionText")->property("text").toString(), qtTrId("save_myplaces_done"));
    EXPECT_TRUE(ui.home.defaults().intArrayForKey(DefaultKeys::favoritos).isEmpty()) << "nothing is kept before the button";
    ui.save("save-sheet");
    tap(window, ui.item("saveSheetAction"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("saveToMyPlacesView") == nullptr && !ui.item("dimming")->isVisible(); }, 2000));
    EXPECT_EQ(ui.home.defaults().intArrayForKey(DefaultKeys::favoritos), QList<int>{placeId});

    // Back to the list, and through the side menu to My places, where the place stands.
    tap(window, ui.item("barButton-back"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("lugarView") == nullptr; }, 3000));
    tap(window, ui.item("barButton-menu"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("menuRow-myplaces") && ui.item("menuRow-myplaces")->isVisible(); }, 2000));
    QTest::qWait(400);
    tap(window, ui.item("menuRow-myplaces"));
    const QString savedCard = QStringLiteral("placeCard-%1").arg(placeId);
    // The search screen's own card of the place stays beneath, hidden: the one shown is My places'.
    const auto shownCard = [&] {
        return ui.itemWhere([&](QQuickItem *item) { return item->objectName() == savedCard && item->isVisible(); });
    };
    ASSERT_TRUE(QTest::qWaitFor([&] { return shownCard() != nullptr; }, 3000));
    QTest::qWait(400);
    ui.save("myplaces");

    // In editing, a swipe uncovers delete; the place leaves the list and the store, and the
    // empty view, whose button leads to the discover feed, comes up with no Done left in the bar.
    tap(window, ui.item("barButton-edit"));
    QTest::qWait(500); // the minus buttons slide in
    QQuickItem *saved = shownCard();
    drag(window, saved->mapToScene(QPointF(saved->width() - 40, saved->height() / 2)).toPoint(), QPoint(-250, 0));
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("swipeButton-delete") && ui.item("swipeButton-delete")->isVisible(); }, 2000));
    QTest::qWait(400);
    tap(window, ui.item("swipeButton-delete"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("myPlacesEmpty") && ui.item("myPlacesEmpty")->isVisible(); }, 3000));
    EXPECT_TRUE(ui.home.defaults().intArrayForKey(DefaultKeys::favoritos).isEmpty());
    EXPECT_FALSE(ui.itemWhere([](QQuickItem *item) { return item->objectName() == QLatin1String("barButton-edit") && item->isVisible(); }));
    ui.save("myplaces-empty");
    tap(window, ui.item("myPlacesExplore"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("myPlacesView") == nullptr; }, 3000));
    EXPECT_EQ(ui.search()->tabs().value(ui.search()->selectedTab()), QStringLiteral("discover"));
}

// Catches: card rows that don't reach their screens, a section header a tap doesn't open, a
// gallery that a swipe doesn't page or that makes every page at once, zoom that a double tap,
// the wheel or a turn of the window doesn't change, and a close button that doesn't close.
TEST(PlaceCardInterface, MenuMoreInfoAndGallery)
{
    DemoWindow ui;
    QQuickWindow *window = ui.window->window();
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.listShown(); }, 5000));
    const int placeId = firstListedPlace(ui, [](const RestaurantInfo &info) {
        return info.hasMenu && Restaurants::shared().galleryImageIds(info.id).size() >= 5;
    });
    ASSERT_GE(placeId, 0);
    ASSERT_TRUE(ui.search()->openPlace(placeId, false));
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("lugarView") != nullptr; }, 3000));
    QTest::qWait(400);
    const auto back = [&](const char *screen) {
        tap(window, ui.item("barButton-back"));
        ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item(screen) == nullptr; }, 3000));
        QTest::qWait(400);
    };

    QQuickItem *menuRow = scrollTo(ui, "lugarRow-menu");
    ASSERT_TRUE(menuRow);
    tap(window, menuRow);
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("menuSection-1") != nullptr; }, 3000));
    QTest::qWait(400);
    ui.save("menu");
    auto *menu = qobject_cast<MenuTableViewController *>(ui.delegate->mainNavigation()->topViewController());
    ASSERT_TRUE(menu);
    tap(window, ui.item("menuSection-1"));
    EXPECT_TRUE(menu->openSections().contains(1));
    ui.save("menu-open");
    back("menuView");

    QQuickItem *moreInfoRow = scrollTo(ui, "lugarRow-moreInfo");
    ASSERT_TRUE(moreInfoRow);
    tap(window, moreInfoRow);
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("moreInfoView") != nullptr; }, 3000));
    QTest::qWait(600);
    ui.save("moreinfo");
    back("moreInfoView");

    QQuickItem *galleryRow = scrollTo(ui, "lugarRow-gallery");
    ASSERT_TRUE(galleryRow);
    tap(window, galleryRow);
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("galleryView") != nullptr; }, 3000));
    auto *gallery = qobject_cast<GalleryViewController *>(ui.delegate->mainNavigation()->presentedViewController());
    ASSERT_TRUE(gallery);
    const auto page = [&](int number) {
        return ui.itemWhere([&](QQuickItem *item) { return item->objectName() == QStringLiteral("galleryPage-%1").arg(number); });
    };
    ASSERT_TRUE(QTest::qWaitFor([&] { return page(1) && page(1)->property("limits").toMap().value(QStringLiteral("minimum")).toReal() > 0
                                             && ui.itemWhere([](QQuickItem *item) { return item->objectName() == QLatin1String("galleryPicture")
                                                                                            && item->property("status").toInt() == 1; }); },
                                3000));
    QTest::qWait(400);
    ui.save("gallery");
    EXPECT_EQ(page(gallery->pageCount()), nullptr) << "pages far from the shown one are not made";

    // A swipe to the left shows the next page.
    QTest::mousePress(window, Qt::LeftButton, {}, QPoint(320, 420));
    for (int step = 1; step <= 10; ++step)
        QTest::mouseMove(window, QPoint(320 - 26 * step, 420), 16);
    QTest::mouseRelease(window, Qt::LeftButton, {}, QPoint(60, 420));
    ASSERT_TRUE(QTest::qWaitFor([&] { return gallery->currentPage() == 2; }, 3000));
    QTest::qWait(600);
    // The keys turn the pictures too: Left goes back one, Right forward again.
    QTest::keyClick(window, Qt::Key_Left);
    ASSERT_TRUE(QTest::qWaitFor([&] { return gallery->currentPage() == 1; }, 2000));
    QTest::keyClick(window, Qt::Key_Right);
    ASSERT_TRUE(QTest::qWaitFor([&] { return gallery->currentPage() == 2; }, 2000));
    // A finger on a touch screen pages on, and back.
    QTest::qWait(400);
    touchDrag(window, QPoint(320, 420), QPoint(-260, 0));
    ASSERT_TRUE(QTest::qWaitFor([&] { return gallery->currentPage() == 3; }, 3000)) << "a touch swipe to the left";
    QTest::qWait(600);
    touchDrag(window, QPoint(60, 420), QPoint(260, 0));
    ASSERT_TRUE(QTest::qWaitFor([&] { return gallery->currentPage() == 2; }, 3000)) << "a touch swipe to the right";
    QTest::qWait(600);

    // A double tap zooms in and another comes back; the wheel zooms too.
    QQuickItem *second = page(2);
    ASSERT_TRUE(second);
    (void)QTest::qWaitFor([&] { return second->property("limits").toMap().value(QStringLiteral("minimum")).toReal() > 0; }, 2000);
    const QPoint middle(195, 420);
    QTest::mouseDClick(window, Qt::LeftButton, {}, middle);
    ASSERT_TRUE(QTest::qWaitFor([&] { return second->property("zoomed").toBool(); }, 1000));
    QTest::qWait(500);
    QTest::mouseDClick(window, Qt::LeftButton, {}, middle);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !second->property("zoomed").toBool(); }, 1000));
    QTest::qWait(500);
    EXPECT_FALSE(gallery->uihidden()) << "the taps of a double tap don't also toggle the bars";
    // A single tap on the black margin around the picture hides the bars as one on it does.
    const QRectF shownPicture = second->findChild<QQuickItem *>(QStringLiteral("galleryPicture"))->mapRectToScene(
        QRectF(0, 0, second->findChild<QQuickItem *>(QStringLiteral("galleryPicture"))->width(),
               second->findChild<QQuickItem *>(QStringLiteral("galleryPicture"))->height()));
    ASSERT_GT(shownPicture.top(), 120) << "the picture leaves a margin above it";
    const QPoint margin(195, int(shownPicture.top()) - 30);
    QTest::mouseClick(window, Qt::LeftButton, {}, margin);
    EXPECT_TRUE(QTest::qWaitFor([&] { return gallery->uihidden(); }, 1500)) << "a tap on the margin hides the bars";
    QTest::mouseClick(window, Qt::LeftButton, {}, margin);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !gallery->uihidden(); }, 1500)) << "and another shows them";
    QTest::qWait(400);
    const QPointF at(middle);
    QWheelEvent wheel{at, at, QPoint(), QPoint(0, 240), Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false};
    QGuiApplication::sendEvent(window, &wheel);
    EXPECT_TRUE(second->property("zoomed").toBool());
    // Zoomed in a little, the margin is still there and still takes the tap.
    QQuickItem *zoomedPicture = second->findChild<QQuickItem *>(QStringLiteral("galleryPicture"));
    const QRectF zoomedRect = zoomedPicture->mapRectToScene(QRectF(0, 0, zoomedPicture->width(), zoomedPicture->height()));
    if (zoomedRect.top() > 100) {
        QTest::mouseClick(window, Qt::LeftButton, {}, QPoint(195, int(zoomedRect.top()) - 20));
        EXPECT_TRUE(QTest::qWaitFor([&] { return gallery->uihidden(); }, 1500)) << "a tap on the zoomed picture's margin hides the bars";
        QTest::mouseClick(window, Qt::LeftButton, {}, QPoint(195, int(zoomedRect.top()) - 20));
        EXPECT_TRUE(QTest::qWaitFor([&] { return !gallery->uihidden(); }, 1500));
        QTest::qWait(400);
    } else {
        ADD_FAILURE() << "the zoomed picture should leave a margin for this check: top " << zoomedRect.top();
    }

    // Turned to landscape, the page fits its picture to the new shape.
    window->resize(844, 390);
    ASSERT_TRUE(QTest::qWaitFor([&] { return second->width() == 844; }, 2000));
    QTest::qWait(500);
    EXPECT_FALSE(second->property("zoomed").toBool());
    EXPECT_EQ(gallery->currentPage(), 2);
    ui.save("gallery-landscape");
    window->resize(390, 844);
    QTest::qWait(300);

    tap(window, ui.item("galleryClose"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("galleryView") == nullptr; }, 3000));
}

// Catches "tip" ads that did nothing (the request reached no one): a tap on such an ad, on the
// place card and in the discover feed, shows its text in the fortune sheet over the reddish dim,
// and a tap closes it.
TEST(PlaceCardInterface, ATipAdShowsItsTextInTheFortuneSheet)
{
    DemoWindow ui({}, DemoWindow::Start::WithCatalogue, [](TestHome &home) {
        Database db(home.documents() + QStringLiteral("/velmora-20261101.db"));
        ASSERT_TRUE(db.openWithFlags(Database::ReadWrite) && db.setKey(Restaurants::dbkey));
        ASSERT_TRUE(db.executeStatements(QStringLiteral(
            "UPDATE app_campaigns SET action = 'tip', action_value = 'Pide el flan', action_value_en = 'Ask for the flan'")));
    });
    QQuickWindow *window = ui.window->window();
    const QString tip = Localize::currentLanguage() == QLatin1String("es") ? QStringLiteral("Pide el flan") : QStringLiteral("Ask for the flan");
    const auto sheetShowsTip = [&] {
        QQuickItem *text = ui.item("fortuneText");
        return text && text->isVisible() && text->property("text").toString() == tip && ui.item("dimming")->isVisible();
    };
    const auto closeSheet = [&] {
        tap(window, ui.item("fortuneFrame"));
        return QTest::qWaitFor([&] { return ui.item("fortunesView") == nullptr && !ui.item("dimming")->isVisible(); }, 3000);
    };

    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.listShown(); }, 5000));
    // A card with an ad: a place with a description and its picture, and no gallery.
    const int placeId = firstListedPlace(ui, [](const RestaurantInfo &info) {
        return !info.hasGallery && !info.description.isEmpty() && !Restaurants::shared().profileImage(info.id).isEmpty();
    });
    ASSERT_GT(placeId, 0);
    ui.delegate->openLink(QStringLiteral("velmora://place/%1").arg(placeId), false);
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("lugarView") != nullptr; }, 3000));
    QQuickItem *ad = scrollTo(ui, "adPicture");
    ASSERT_TRUE(ad);
    tap(window, ad);
    ASSERT_TRUE(QTest::qWaitFor(sheetShowsTip, 3000)) << "the card's tip ad shows its sheet";
    ui.save("tip-sheet");
    ASSERT_TRUE(closeSheet());

    ui.delegate->openLink(QStringLiteral("velmora://discover"), false);
    QQuickItem *feedAd = nullptr;
    ASSERT_TRUE(QTest::qWaitFor([&] {
        feedAd = ui.itemWhere([](QQuickItem *item) { return item->objectName().startsWith(QLatin1String("adRow-")) && item->isVisible(); });
        return feedAd != nullptr;
    }, 3000));
    QTest::qWait(400);
    tap(window, feedAd);
    ASSERT_TRUE(QTest::qWaitFor(sheetShowsTip, 3000)) << "the feed's tip ad shows its sheet";
    EXPECT_TRUE(closeSheet());
}
