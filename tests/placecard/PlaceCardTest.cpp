#include "analytics/Measurement.h"
#include "app/Scenes.h"
#include "catalogue/MyPlacesLists.h"
#include "fixtures/TestHome.h"
#include "placecard/BarColorPicture.h"
#include "placecard/HeaderPictures.h"
#include "placecard/LugarTableViewController.h"
#include "placecard/PhoneNumbersViewController.h"
#include "placecard/SaveToMyPlacesViewController.h"
#include "placecard/UIImageCache.h"
#include "platform/DefaultKeys.h"
#include "platform/Localize.h"
#include "platform/UserDefaults.h"
#include "presentation/NavigationController.h"
#include "presentation/UrlOpener.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QSignalSpy>

#include <gtest/gtest.h>

namespace {
using T = LugaresCellType;

// The small catalogue where 100 has two pictures, a description and a menu, and one running
// campaign, so that a place without pictures gets an ad.
std::unique_ptr<Restaurants> cardCatalogue(TestHome &home)
{
    CatalogueFixture f = CatalogueFixture::small();
    f.sql << QStringLiteral("INSERT INTO gallery VALUES(1, 100, CAST('not a picture' AS BLOB), 'foto', 'photo'),"
                            " (2, 100, CAST('x' AS BLOB), 'foto', 'photo')")
          << QStringLiteral("UPDATE restaurants SET description = 'Mojitos', description_en = 'Mojitos and more', latitud = 23.14,"
                            " longitud = -82.35, has_menu = 1, has_gallery = 1 WHERE id = 100")
          << QStringLiteral("INSERT INTO app_campaigns VALUES(7, 'url', 'https://es.example', 'https://en.example', '2099-01-01', 1)")
          << QStringLiteral("INSERT INTO app_campaign_images VALUES(70, 7, 'en', CAST('ad' AS BLOB))");
    Localize::setCurrentLanguage(QStringLiteral("en"));
    return home.openCatalogue(f, QStringLiteral("en"));
}

std::unique_ptr<LugarTableViewController> card(Restaurants &restaurants, UserDefaults &defaults, const RestaurantInfo &info)
{
    auto controller = std::make_unique<LugarTableViewController>(restaurants, defaults);
    controller->restInfo = info;
    controller->loadViewIfNeeded();
    return controller;
}

QString hex(const QColor &color) { return color.name(QColor::HexArgb); }
}

// Catches: rows that don't follow the place's data (a gallery row without pictures, an ad on a
// place with pictures, a missing separator for an empty description, developer rows shown to
// everyone), and actions that go where their data says they can't (a map for a place without
// coordinates, a phone sheet for a place without numbers).
TEST(PlaceCard, RowKindsFollowThePlacesData)
{
    TestHome home;
    auto restaurants = cardCatalogue(home);
    const RestaurantInfo bodeguita = *restaurants->restaurantInfo(100);

    auto withPictures = card(*restaurants, home.defaults(), bodeguita);
    EXPECT_EQ(withPictures->cells(), (QList<T>{T::picture, T::address, T::prices, T::cuisines, T::horario, T::call, T::description,
                                               T::gallery, T::menu, T::moreInfo, T::separator, T::notes, T::separator, T::myPlaces}));
    EXPECT_FALSE(withPictures->ad());
    EXPECT_TRUE(withPictures->rows().first().toMap().contains(QStringLiteral("source"))) << "the header shows the first picture";
    EXPECT_EQ(withPictures->rows().at(7).toMap().value(QStringLiteral("count")), QStringLiteral("2"));

    // The record says it has pictures, the catalogue has none: no gallery row, no ad either,
    // and the header falls back to the profile picture over its blur.
    RestaurantInfo aljibe = *restaurants->restaurantInfo(101);
    aljibe.hasGallery = true;
    auto noPictures = card(*restaurants, home.defaults(), aljibe);
    EXPECT_FALSE(noPictures->cells().contains(T::gallery));
    EXPECT_FALSE(noPictures->ad());
    EXPECT_TRUE(noPictures->rows().first().toMap().contains(QStringLiteral("blur")));

    // Without pictures, description, coordinates or phone; out of service; developer rows on.
    aljibe.hasGallery = false;
    aljibe.outOfService = true;
    aljibe.outOfServiceReason = QStringLiteral(" x\n");
    home.defaults().setBool(true, DefaultKeys::devEnableOpinions);
    home.defaults().setBool(true, DefaultKeys::showReservations);
    auto plain = card(*restaurants, home.defaults(), aljibe);
    EXPECT_EQ(plain->cells(), (QList<T>{T::picture, T::opinions, T::outOfService, T::address, T::prices, T::cuisines, T::horario, T::call,
                                        T::separator, T::advertising, T::comments, T::moreInfo, T::separator, T::notes,
                                        T::giftsAndReservations, T::separator, T::myPlaces}));
    ASSERT_TRUE(plain->ad());
    EXPECT_EQ(plain->rows().at(2).toMap().value(QStringLiteral("text")), qtTrId("lugar_place_out_of_service_reason_unknown"));
    EXPECT_FALSE(plain->rows().at(3).toMap().value(QStringLiteral("selectable")).toBool());
    EXPECT_FALSE(plain->rows().at(7).toMap().value(QStringLiteral("enabled")).toBool());
    EXPECT_EQ(plain->rows().at(7).toMap().value(QStringLiteral("title")), qtTrId("lugar_no_phone_numbers"));
    EXPECT_FALSE(plain->shouldPerformSegue(QStringLiteral("lugar-show-map")));
    EXPECT_FALSE(plain->shouldPerformSegue(QStringLiteral("show-phone-numbers")));
    EXPECT_TRUE(withPictures->shouldPerformSegue(QStringLiteral("lugar-show-map")));
    EXPECT_TRUE(withPictures->shouldPerformSegue(QStringLiteral("show-phone-numbers")));

    // One two-byte character is a reason; one ASCII character is not.
    EXPECT_EQ(LugarTableViewController::outOfServiceReasonText(QStringLiteral("ñ")), QStringLiteral("Reason: ñ"));
    EXPECT_EQ(LugarTableViewController::outOfServiceReasonText(QStringLiteral(" y ")), qtTrId("lugar_place_out_of_service_reason_unknown"));

    // The hidden id: six swipes on the title show it, the seventh brings the name back; once
    // another screen has covered the card, the swipe does nothing.
    for (int swipe = 0; swipe < 6; ++swipe)
        withPictures->navbarSwiped();
    EXPECT_EQ(withPictures->titleText(), QStringLiteral("100"));
    withPictures->navbarSwiped();
    EXPECT_EQ(withPictures->titleText(), bodeguita.name);
    withPictures->viewWillDisappear();
    for (int swipe = 0; swipe < 6; ++swipe)
        withPictures->navbarSwiped();
    EXPECT_EQ(withPictures->titleText(), bodeguita.name);
}

// Catches: a fade that starts or ends at the wrong place, a colour that doesn't survive the
// one-pixel bitmap (wrong byte order, a header that doesn't decode), translucency left on under
// an opaque bar, a picture that doesn't follow the pull, and a last row moved before it exists.
// Catches: an ad counted once rather than at every making of its cell, the tap reported after
// the action (or by the feed's ad_id), and a screen view missing on a second appearance.
TEST(PlaceCard, ReportsItsScreenAndItsAdEachTime)
{
    TestHome home;
    home.startAnalytics();
    auto restaurants = cardCatalogue(home);
    RestaurantInfo aljibe = *restaurants->restaurantInfo(101);
    auto controller = card(*restaurants, home.defaults(), aljibe);
    ASSERT_TRUE(controller->ad());
    controller->viewWillAppear();
    controller->advertisingCellBuilt();
    controller->advertisingCellBuilt(); // scrolled away and back
    QStringList reportedBeforeOpening;
    UrlOpener::setUrlOpener([&](const QUrl &) {
        reportedBeforeOpening = home.storedEvents();
        return true;
    });
    controller->didSelectRow(int(controller->cells().indexOf(T::advertising)));
    UrlOpener::setUrlOpener([](const QUrl &) { return false; });
    controller->viewWillAppear();
    const QStringList expected{QStringLiteral("screen:RestaurantView"), QStringLiteral("ADV Campaigns/Show/Profile/70"),
                               QStringLiteral("ADV Campaigns/Show/Profile/70"), QStringLiteral("ADV Campaigns/Action/Profile/70"),
                               QStringLiteral("screen:RestaurantView")};
    EXPECT_EQ(home.storedEvents(), expected);
    EXPECT_EQ(reportedBeforeOpening, expected.mid(0, 4)) << "the tap is reported before its action runs";

    // Opted out, the same calls leave nothing behind, and what waited is gone.
    home.measurement().setOptOut(true);
    controller->viewWillAppear();
    controller->advertisingCellBuilt();
    EXPECT_EQ(home.storedEvents(), QStringList());
}

TEST(PlaceCard, BarColourPictureStretchAndLastRowFollowTheScroll)
{
    TestHome home;
    auto restaurants = cardCatalogue(home);
    auto controller = card(*restaurants, home.defaults(), *restaurants->restaurantInfo(100));

    // The bitmap: 138 header bytes in 184 base64 characters, then the pixel as A, B, G, R.
    EXPECT_EQ(BarColorPicture::bmphdr.size(), 184);
    const QByteArray file = BarColorPicture::picture(QColor(0x12, 0x34, 0x56, 0x78));
    ASSERT_EQ(file.size(), 142);
    EXPECT_EQ(file.left(2), QByteArray("BM"));
    EXPECT_EQ(file.right(4), QByteArray("\x78\x56\x34\x12"));
    EXPECT_EQ(hex(QImage::fromData(file, "BMP").pixelColor(0, 0)), QStringLiteral("#78123456"));

    // No height known for the picture yet: it counts as 200, so the fade runs from 44 to 144.
    controller->viewWillAppear();
    EXPECT_EQ(controller->barColor().alpha(), int(0.3 * 255));
    EXPECT_EQ(controller->barColor().value(), 0);
    EXPECT_TRUE(controller->barTranslucent());
    controller->scrollViewDidScroll(144, 2000, 800);
    EXPECT_EQ(hex(controller->barColor()), QStringLiteral("#ffd95b43"));
    EXPECT_FALSE(controller->barTranslucent());

    // With the row's real height (250) and the bar's edge at 56 the fade ends at 194.
    controller->willDisplayRow(0, 250);
    controller->scrollViewDidScroll(144, 2000, 800);
    const QColor halfway = controller->barColor();
    EXPECT_NEAR(halfway.alphaF(), 0.65, 0.01);
    EXPECT_TRUE(controller->barTranslucent());
    QSignalSpy repaints(controller.get(), &LugarTableViewController::barColorChanged);
    controller->scrollViewDidScroll(144, 2000, 800);
    EXPECT_EQ(repaints.count(), 0) << "the same colour is not built again";
    controller->scrollViewDidScroll(400, 2000, 800);
    EXPECT_EQ(hex(controller->barColor()), QStringLiteral("#ffd95b43"));

    // A pull of 50: the picture's top follows it, the profile moves down by as much.
    controller->scrollViewDidScroll(-50, 2000, 800);
    EXPECT_EQ(controller->galleryImageTop(), -50);
    EXPECT_EQ(controller->profilePicY(), 50);
    controller->scrollViewDidScroll(30, 2000, 800);
    EXPECT_EQ(controller->galleryImageTop(), 0);
    EXPECT_EQ(controller->profilePicY(), 0);

    // The last row moves only once it has been built, and only past the end.
    controller->scrollViewDidScroll(1260, 2000, 800);
    EXPECT_EQ(controller->lastCellTop(), 0);
    controller->willDisplayRow(int(controller->cells().size()) - 1, 72);
    controller->scrollViewDidScroll(1260, 2000, 800);
    EXPECT_EQ(controller->lastCellTop(), 60);
    EXPECT_EQ(controller->lastCellBottom(), -60);
    controller->scrollViewDidScroll(1100, 2000, 800);
    EXPECT_EQ(controller->lastCellTop(), 0);
}

// Catches: a cache that evicts after inserting (six, not seven), one that reorders on reads,
// a repeated key counted once, a blur that darkens the edges or changes the size, and a place
// with a broken or missing profile picture without a header.
TEST(PlaceCard, HeaderPicturesAreMadeOnceAndKept)
{
    UIImageCache cache(6);
    QImage red(2, 2, QImage::Format_ARGB32);
    red.fill(Qt::red);
    for (int n = 0; n < 7; ++n)
        cache.set(QStringLiteral("k%1").arg(n), red);
    EXPECT_EQ(cache.count(), 7);
    EXPECT_FALSE(cache.get(QStringLiteral("k0")).isNull());
    cache.set(QStringLiteral("k7"), red);
    EXPECT_TRUE(cache.get(QStringLiteral("k0")).isNull());
    EXPECT_EQ(cache.count(), 7);
    cache.set(QStringLiteral("k5"), red); // k5 now stands twice; its first expiry takes it
    EXPECT_EQ(cache.queue().count(QStringLiteral("k5")), 2);
    for (int n = 8; n <= 11; ++n)
        cache.set(QStringLiteral("k%1").arg(n), red);
    EXPECT_TRUE(cache.get(QStringLiteral("k5")).isNull());
    EXPECT_EQ(cache.queue().count(QStringLiteral("k5")), 1);

    QImage flat(40, 30, QImage::Format_ARGB32_Premultiplied);
    flat.fill(QColor(200, 100, 50));
    const QImage blurredFlat = HeaderPictures::gaussianBlur(flat, 3);
    EXPECT_EQ(blurredFlat.size(), flat.size());
    EXPECT_EQ(blurredFlat.pixelColor(0, 0), QColor(200, 100, 50)) << "clamped edges keep their colour";
    QImage dot(21, 21, QImage::Format_ARGB32_Premultiplied);
    dot.fill(Qt::black);
    dot.setPixelColor(10, 10, Qt::white);
    const QImage spread = HeaderPictures::gaussianBlur(dot, 3);
    EXPECT_GT(spread.pixelColor(13, 10).red(), 0);
    EXPECT_LT(spread.pixelColor(10, 10).red(), 255);

    TestHome home;
    auto restaurants = cardCatalogue(home);
    UIImageCache::shared().clear();
    // 101 has no profile picture; 100's gallery bytes aren't a picture at all.
    const QImage profile = HeaderPictures::profilePicture(*restaurants, 101);
    EXPECT_EQ(profile.size(), HeaderPictures::noImagePicture().size());
    EXPECT_EQ(HeaderPictures::blurredPicture(*restaurants, 101).size(), profile.size());
    EXPECT_EQ(UIImageCache::shared().queue(), (QStringList{QStringLiteral("prof101"), QStringLiteral("blur101")}));
}

// Catches: a note changed on its way to the store (cut, trimmed, escaped), a return key that
// breaks the line instead of ending the note, a placeholder that stays over a note, and an
// empty note that isn't stored.
TEST(PlaceCard, NoteIsKeptExactly)
{
    TestHome home;
    auto restaurants = cardCatalogue(home);
    const RestaurantInfo info = *restaurants->restaurantInfo(100);
    const QString note = QStringLiteral("  Pedir «la mesa del patio» ]]> <b>&amp;</b>\t😀 ") + QString(3000, QLatin1Char('x'));
    {
        auto controller = card(*restaurants, home.defaults(), info);
        EXPECT_TRUE(controller->notePlaceholderVisible());
        EXPECT_EQ(controller->rows().at(controller->cells().indexOf(T::notes)).toMap().value(QStringLiteral("placeholder")),
                  QStringLiteral("YOUR NOTES ON LA BODEGUITA DEL MEDIO"));
        controller->textViewDidBeginEditing();
        EXPECT_FALSE(controller->notePlaceholderVisible());
        QSignalSpy ends(controller.get(), &LugarTableViewController::noteEditingShouldEnd);
        EXPECT_FALSE(controller->textViewShouldChangeText(QStringLiteral("\n")));
        EXPECT_EQ(ends.count(), 1);
        EXPECT_TRUE(controller->textViewShouldChangeText(QStringLiteral("\n\n")));
        controller->textViewDidEndEditing(note);
    }
    EXPECT_EQ(home.defaults().stringForKey(QStringLiteral("notes_100")), note);
    auto reopened = card(*restaurants, home.defaults(), info);
    EXPECT_EQ(reopened->noteText(), note);
    EXPECT_FALSE(reopened->notePlaceholderVisible());
    reopened->textViewDidEndEditing(QString());
    EXPECT_TRUE(reopened->notePlaceholderVisible());
    EXPECT_TRUE(home.defaults().objectForKey(QStringLiteral("notes_100")).isValid());
    EXPECT_EQ(home.defaults().stringForKey(QStringLiteral("notes_100")), QString());
}

// Catches: a number dialled with its blanks or copied without them, a sheet that doesn't open
// for a place with numbers, and lists written before the done button, lost after a restart, or
// not repaired when the store held something else under their key.
TEST(PlaceCard, SheetsDialCopyAndFileThePlace)
{
    TestHome home;
    registerApplicationScenes();
    auto restaurants = cardCatalogue(home);

    EXPECT_EQ(PhoneNumbersViewController::dialURL(QStringLiteral("+53 7 867 1374")), QUrl(QStringLiteral("tel:/+5378671374")));
    EXPECT_TRUE(PhoneNumbersViewController::dialURL(QStringLiteral("  ")).isEmpty());
    PhoneNumbersViewController phones;
    phones.setNumbers({QStringLiteral("7 867 1374"), QStringLiteral("bad number ^")});
    EXPECT_EQ(phones.tableHeight(), 150);
    QList<QUrl> dialled;
    UrlOpener::setUrlOpener([&](const QUrl &url) {
        dialled.append(url);
        return true;
    });
    phones.didSelectRow(0);
    phones.didSelectRow(1);
    EXPECT_EQ(dialled, (QList<QUrl>{QUrl(QStringLiteral("tel:/78671374"))}));
    phones.cellLongPress(0);
    phones.copyPhone();
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("7 867 1374"));
    UrlOpener::setUrlOpener([](const QUrl &) { return false; });

    // The card's call row opens the sheet with the place's numbers, sized to them.
    NavigationController navigation;
    auto controller = card(*restaurants, home.defaults(), *restaurants->restaurantInfo(100));
    navigation.setViewControllers({controller.get()}, false);
    controller->didSelectRow(int(controller->cells().indexOf(T::call)));
    auto *sheet = qobject_cast<PhoneNumbersViewController *>(navigation.presentedViewController());
    ASSERT_TRUE(sheet);
    EXPECT_EQ(sheet->numbers(), restaurants->phones(100));
    EXPECT_EQ(navigation.presentedExtent(), 75 * 2 + 50);
    navigation.dismissViewController(false);

    // A damaged list reads as empty; two touches on one toggle leave it as it was, but the
    // button reads done; share doesn't save; done does, and the lists survive a restart.
    home.defaults().setString(QStringLiteral("not a list"), DefaultKeys::favoritos);
    controller->didSelectRow(int(controller->cells().indexOf(T::myPlaces)));
    auto *save = qobject_cast<SaveToMyPlacesViewController *>(navigation.presentedViewController());
    ASSERT_TRUE(save);
    EXPECT_EQ(navigation.presentedExtent(), SaveToMyPlacesViewController::sheetHeight);
    EXPECT_EQ(save->actionTitle(), qtTrId("save_myplaces_cancel"));
    save->favoriteButtonTouched();
    save->favoriteButtonTouched();
    EXPECT_EQ(save->actionTitle(), qtTrId("save_myplaces_done"));
    EXPECT_EQ(save->actionColor(), QStringLiteral("#9acb22"));
    save->visitedButtonTouched();
    EXPECT_TRUE(save->buttons().at(1).toMap().value(QStringLiteral("on")).toBool());
    save->shareButtonTouched();
    EXPECT_EQ(navigation.presentedViewController(), nullptr) << "sharing closes the sheet";
    EXPECT_TRUE(home.defaults().intArrayForKey(DefaultKeys::visitados).isEmpty());
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("La Bodeguita del Medio\nEmpedrado 207"));

    controller->didSelectRow(int(controller->cells().indexOf(T::myPlaces)));
    save = qobject_cast<SaveToMyPlacesViewController *>(navigation.presentedViewController());
    ASSERT_TRUE(save);
    save->favoriteButtonTouched();
    save->toVisitButtonTouched();
    save->actionButtonTouched();
    EXPECT_EQ(navigation.presentedViewController(), nullptr);
    EXPECT_EQ(home.defaults().objectForKey(DefaultKeys::favoritos).typeId(), QMetaType::QVariantList) << "repaired as a list";
    controller.reset();
    UserDefaults::setStandard(nullptr); // the next reader opens the file afresh, as after a restart
    MyPlacesLists lists;
    lists.load(home.defaults());
    EXPECT_TRUE(lists.contains(MyPlacesLists::favoritos, 100));
    EXPECT_TRUE(lists.contains(MyPlacesLists::porVisitar, 100));
    EXPECT_FALSE(lists.contains(MyPlacesLists::visitados, 100));
}
