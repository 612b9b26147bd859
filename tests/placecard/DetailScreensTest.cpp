#include "fixtures/TestHome.h"
#include "placecard/GalleryViewController.h"
#include "placecard/MenuTableViewController.h"
#include "placecard/MoreInfoTableViewController.h"
#include "placecard/PictureZoom.h"
#include "platform/Database.h"
#include "richtext/IconFont.h"
#include "platform/Localize.h"
#include "presentation/UrlOpener.h"

#include <QBuffer>
#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

namespace {
QByteArray png(int width, int height)
{
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(Qt::darkGreen);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes;
}

// Place 100 with a menu (a dish without price, one below zero, a very long one), the extended
// data and three gallery pictures, the second of them unreadable; one running campaign.
std::unique_ptr<Restaurants> detailCatalogue(TestHome &home)
{
    CatalogueFixture f = CatalogueFixture::small();
    f.sql << QStringLiteral("UPDATE restaurants SET email = 'a@x.cu, b@x.cu', rest_group_id = 1, profile_url = 'habana/bodeguita',"
                            " has_menu = 1, has_gallery = 1 WHERE id = 100")
          << QStringLiteral("INSERT INTO restaurant_groups VALUES(1, 'Grupo Habana', 'Havana Group')")
          << QStringLiteral("INSERT INTO service_types VALUES(1, 'Delivery', 'Delivery')")
          << QStringLiteral("INSERT INTO restaurants_service_types VALUES(100, 1)")
          << QStringLiteral("INSERT INTO menu VALUES(2, 100, 'Carta', 'Menu')")
          << QStringLiteral("INSERT INTO menu_entries VALUES(2, 'Mojito', 'Mojito', 'Bebidas', 'Drinks', 4),"
                            " (2, 'Agua', 'Water', 'Bebidas', 'Drinks', NULL), (2, 'Ropa vieja', 'Shredded beef', 'Platos', 'Mains', 12.5),"
                            " (2, 'Sorpresa', 'Surprise', 'Platos', 'Mains', -1)")
          << QStringLiteral("INSERT INTO app_campaigns VALUES(7, 'url', 'https://es.example', 'https://en.example', '2099-01-01', 1)")
          << QStringLiteral("INSERT INTO app_campaign_images VALUES(70, 7, 'en', CAST('ad' AS BLOB))");
    const QByteArray picture = png(40, 30);
    Localize::setCurrentLanguage(QStringLiteral("en"));
    auto restaurants = home.openCatalogue(f, QStringLiteral("en"));
    Database db(restaurants->databasePath());
    EXPECT_TRUE(db.open() && db.setKey(Restaurants::dbkey));
    for (int id = 1; id <= 3; ++id)
        EXPECT_TRUE(db.executeUpdate(QStringLiteral("INSERT INTO gallery VALUES(?, 100, ?, 'foto', ?)"),
                                     {id, id == 2 ? QByteArray("not a picture") : picture, id == 3 ? QString() : QStringLiteral("Dish %1").arg(id)}));
    return restaurants;
}

QStringList kinds(const QVariantList &rows)
{
    QStringList result;
    for (const QVariant &row : rows) {
        const QVariantMap map = row.toMap();
        result.append(map.value(QStringLiteral("dish"), map.value(QStringLiteral("name"), map.value(QStringLiteral("kind")))).toString());
    }
    return result;
}
}

// Catches: an accordion that opens more than it was asked or closes another section, a header
// whose arrow doesn't turn, taps on dishes that do something, prices shown for dishes without
// one or in another format than two decimals, and no scroll to an opened section.
TEST(DetailScreens, MenuOpensAndClosesItsSections)
{
    TestHome home;
    auto restaurants = detailCatalogue(home);
    MenuTableViewController menu(*restaurants);
    menu.rid = 100;
    menu.loadViewIfNeeded();
    // Sections in their order, the first open: drinks by price (no price first), mains closed.
    EXPECT_EQ(kinds(menu.rows()), (QStringList{QStringLiteral("menu-desc-cell"), QStringLiteral("DRINKS"), QStringLiteral("Water"),
                                              QStringLiteral("Mojito"), QStringLiteral("MAINS")}));
    EXPECT_EQ(menu.rows().at(0).toMap().value(QStringLiteral("text")), QStringLiteral("* Menu"));
    EXPECT_EQ(menu.rows().at(2).toMap().value(QStringLiteral("price")), QString());
    EXPECT_EQ(menu.rows().at(3).toMap().value(QStringLiteral("price")), QStringLiteral("4.00"));

    QSignalSpy scrolls(&menu, &MenuTableViewController::scrollToRow);
    menu.didSelectRow(2); // a dish: nothing
    menu.didSelectRow(4);
    EXPECT_EQ(menu.openSections(), (QSet<int>{0, 1})) << "opening one doesn't close another";
    EXPECT_EQ(menu.rows().at(4).toMap().value(QStringLiteral("arrow")), IconFont::chevronOpen);
    EXPECT_EQ(menu.rows().size(), 7);
    EXPECT_EQ(menu.rows().at(5).toMap().value(QStringLiteral("price")), QString()) << "a negative price is no price";
    EXPECT_EQ(menu.rows().at(6).toMap().value(QStringLiteral("price")), QStringLiteral("12.50"));
    EXPECT_EQ(scrolls.count(), 0);
    ASSERT_TRUE(scrolls.wait(1000));
    EXPECT_EQ(scrolls.first().first().toInt(), 4);
    menu.didSelectRow(1);
    EXPECT_EQ(menu.openSections(), QSet<int>{1});
    EXPECT_EQ(menu.rows().at(1).toMap().value(QStringLiteral("arrow")), IconFont::chevronClosed);

    QLocale::setDefault(QLocale(QStringLiteral("es_ES")));
    EXPECT_EQ(MenuTableViewController::priceText(1234.5), QStringLiteral("1234,50"));
    QLocale::setDefault(QLocale(QStringLiteral("en_US")));
    EXPECT_EQ(MenuTableViewController::priceText(0), QString());
}

// Catches: empty rows shown, a website path not turned into the place's page, a mail to more
// than the first address or a subject with its accents and blanks left raw, and an ad missing
// where the card had none.
TEST(DetailScreens, MoreInfoShowsOnlyWhatThePlaceHas)
{
    TestHome home;
    auto restaurants = detailCatalogue(home);
    using T = MoreInfoCellType;
    MoreInfoTableViewController rich(*restaurants);
    rich.rid = 100;
    rich.loadViewIfNeeded();
    EXPECT_EQ(rich.cells(), (QList<T>{T::separator, T::website, T::email, T::serviceTypes, T::separator, T::restGroup, T::separator,
                                      T::advertising}));
    EXPECT_EQ(rich.rows().at(2).toMap().value(QStringLiteral("text")), QStringLiteral("a@x.cu, b@x.cu"));
    EXPECT_TRUE(rich.rows().at(3).toMap().value(QStringLiteral("last")).toBool());
    EXPECT_FALSE(rich.rows().at(2).toMap().value(QStringLiteral("last")).toBool());
    MoreInfoTableViewController bare(*restaurants);
    bare.rid = 101;
    bare.loadViewIfNeeded();
    EXPECT_EQ(bare.cells(), (QList<T>{T::separator, T::separator, T::advertising}));

    EXPECT_EQ(MoreInfoTableViewController::websiteURL(QStringLiteral("habana/bodeguita"), QStringLiteral("https://v.example/"), QStringLiteral("es")),
              QUrl(QStringLiteral("https://v.example/es/habana/restaurant/bodeguita/")));
    EXPECT_EQ(MoreInfoTableViewController::websiteURL(QStringLiteral("bodeguita"), QStringLiteral("https://v.example/"), QStringLiteral("en")),
              QUrl(QStringLiteral("https://v.example/en/bodeguita/")));
    EXPECT_EQ(MoreInfoTableViewController::websiteURL(QStringLiteral("a/b/c"), QStringLiteral("https://v.example/"), QStringLiteral("en")),
              QUrl(QStringLiteral("https://v.example/en/a/b/c/")));
    EXPECT_EQ(MoreInfoTableViewController::emailURL({QStringLiteral("a@x.cu"), QStringLiteral("b@x.cu")}, QStringLiteral("Café & Ñandú")).toString(QUrl::FullyEncoded),
              QStringLiteral("mailto:a@x.cu?subject=Caf%C3%A9%20&%20%C3%91and%C3%BA"));

    QList<QUrl> opened;
    UrlOpener::setUrlOpener([&](const QUrl &url) {
        opened.append(url);
        return true;
    });
    home.startAnalytics();
    rich.didSelectRow(2);
    rich.didSelectRow(3); // service types: nothing
    rich.advertisingCellBuilt();
    rich.didSelectRow(int(rich.cells().indexOf(T::advertising)));
    UrlOpener::setUrlOpener([](const QUrl &) { return false; });
    EXPECT_EQ(home.storedEvents(), (QStringList{QStringLiteral("ADV Campaigns/Show/+Info/70"), QStringLiteral("ADV Campaigns/Action/+Info/70")}))
        << "only the ad reports, by its picture's id";
    ASSERT_EQ(opened.size(), 2);
    EXPECT_EQ(opened.first().toString(QUrl::FullyEncoded), QStringLiteral("mailto:a@x.cu?subject=La%20Bodeguita%20del%20Medio"));
}

// Catches: pages that wrap or run past the last picture, a page count shown for one picture,
// captions or pictures from the wrong page, zoom limits taken from the wrong side of a panorama,
// a double tap that doesn't come back, and a share of a page whose picture can't be read.
TEST(DetailScreens, GalleryPagesZoomsAndShares)
{
    TestHome home;
    auto restaurants = detailCatalogue(home);
    auto provider = std::make_shared<RestaurantPicturesProvider>(*restaurants);
    provider->imageIds = restaurants->galleryImageIds(100);
    ASSERT_EQ(provider->pageCount(), 3);
    EXPECT_EQ(provider->textForPage(1), QStringLiteral("Dish 1"));
    EXPECT_EQ(provider->textForPage(3), QString());
    EXPECT_TRUE(provider->imageForPage(2).isNull());
    EXPECT_EQ(provider->imageForPage(1).size(), QSize(40, 30));
    EXPECT_TRUE(provider->sourceForPage(4).isEmpty());

    GalleryViewController gallery;
    gallery.setProvider(provider);
    gallery.setRestaurantName(QStringLiteral("La Bodeguita del Medio"));
    EXPECT_EQ(gallery.pageAfter(1), 2);
    EXPECT_EQ(gallery.pageAfter(3), 0);
    EXPECT_EQ(gallery.pageBefore(1), 0);
    EXPECT_TRUE(gallery.pageIndicatorVisible());
    gallery.setCurrentPage(3);
    EXPECT_EQ(gallery.pageIndicator(), QStringLiteral("3 / 3"));
    auto single = std::make_shared<RestaurantPicturesProvider>(*restaurants);
    single->imageIds = {1};
    GalleryViewController one;
    one.setProvider(single);
    EXPECT_FALSE(one.pageIndicatorVisible());
    EXPECT_EQ(one.pageAfter(1), 0);

    // A panorama in a phone's portrait: fitted by its width, filling by its height.
    const PictureZoom zoom = PictureZoom::forSize({390, 844}, {4000, 1000});
    EXPECT_DOUBLE_EQ(zoom.fit, 390.0 / 4000);
    EXPECT_DOUBLE_EQ(zoom.fill, 0.844);
    EXPECT_DOUBLE_EQ(zoom.maximum(), 1.688);
    EXPECT_EQ(zoom.insets(zoom.fit, {390, 844}, {4000, 1000}), QSizeF(0, (844 - 97.5) / 2));
    EXPECT_EQ(zoom.insets(zoom.fill, {390, 844}, {4000, 1000}), QSizeF(0, 0));
    EXPECT_DOUBLE_EQ(zoom.doubleTapZoom(zoom.fit), 1 / 0.75);
    EXPECT_DOUBLE_EQ(zoom.doubleTapZoom(1 / 0.75), zoom.fit);
    // A small picture can't be zoomed past twice its filling size.
    const PictureZoom small = PictureZoom::forSize({390, 844}, {400, 300});
    EXPECT_DOUBLE_EQ(small.doubleTapZoom(small.fit), 1 / 0.75);

    QGuiApplication::clipboard()->clear();
    gallery.setCurrentPage(2);
    gallery.shareButtonTouched();
    const QMimeData *nothing = QGuiApplication::clipboard()->mimeData();
    EXPECT_TRUE(!nothing || !nothing->hasImage()) << "an unreadable page shares nothing";
    QSignalSpy shared(&gallery, &GalleryViewController::shared);
    gallery.setCurrentPage(1);
    gallery.shareButtonTouched();
    EXPECT_EQ(shared.count(), 1);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("La Bodeguita del Medio\nDish 1"));
    const QMimeData *sharedData = QGuiApplication::clipboard()->mimeData();
    ASSERT_TRUE(sharedData);
    EXPECT_TRUE(sharedData->hasImage());

    EXPECT_FALSE(gallery.uihidden());
    gallery.singleTap();
    EXPECT_TRUE(gallery.uihidden());
}
