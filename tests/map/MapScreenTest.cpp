#include "catalogue/Restaurants.h"
#include "fixtures/TestHome.h"
#include "map/MapCalloutView.h"
#include "map/MapViewController.h"
#include "map/NmeaLog.h"
#include "platform/Localize.h"
#include "platform/PositionerService.h"
#include "presentation/BarButtonItem.h"

#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

namespace {

// The small guide with positions: two places in Havana, one in Varadero, and one whose
// latitude no map can draw.
CatalogueFixture located()
{
    CatalogueFixture fixture = CatalogueFixture::small();
    fixture.sql = {QStringLiteral("UPDATE restaurants SET latitud = 23.1407, longitud = -82.3519 WHERE id = 100"),
                   QStringLiteral("UPDATE restaurants SET latitud = 23.1167, longitud = -82.4167 WHERE id = 101"),
                   QStringLiteral("UPDATE restaurants SET latitud = 123.0, longitud = -82.0 WHERE id = 102"),
                   QStringLiteral("UPDATE restaurants SET latitud = 23.1550, longitud = -81.2444 WHERE id = 200")};
    return fixture;
}

struct MapScreens {
    // `log`: the position log the process replays, if any.
    explicit MapScreens(const QList<QByteArray> &log = {})
    {
        Localize::loadCurrentLanguage();
        MapViewWrapper::reset();
        if (!log.isEmpty()) {
            NmeaLog::write(logDir.filePath(QStringLiteral("drive.nmea")), log);
            PositionerService::useLog(logDir.filePath(QStringLiteral("drive.nmea")));
        } else {
            PositionerService::useLog(logDir.filePath(QStringLiteral("none.nmea")));
        }
        restaurants = home.openCatalogue(located());
    }
    ~MapScreens()
    {
        MapViewWrapper::reset();
        PositionerService::useLog(QString());
    }
    // A map screen, as the menu (-1) or a card (a place id) opens it, once it has appeared.
    std::unique_ptr<MapViewController> open(int rid)
    {
        auto screen = std::make_unique<MapViewController>(*restaurants, home.documents());
        screen->setRid(rid);
        screen->loadViewIfNeeded();
        screen->viewWillAppear();
        EXPECT_TRUE(QTest::qWaitFor([&] { return !screen->loading() && screen->mapView(); }, 3000));
        return screen;
    }

    QTemporaryDir logDir;
    TestHome home;
    std::unique_ptr<Restaurants> restaurants;
};

LocationState stateOf(const MapViewController &) { return MapViewWrapper::shared().locationState; }

}

// Catches: pins for places without a drawable position, pins not in latitude order, identifiers
// off by the 1000, and a shared view built again for a second screen.
TEST(MapScreen, OneSharedViewHoldsAPinForEveryLocatedPlace)
{
    MapScreens screens;
    auto global = screens.open(-1);
    MapView *view = global->mapView();
    ASSERT_TRUE(view);
    EXPECT_EQ(QList<int>(MapViewWrapper::shared().annotations.keyBegin(), MapViewWrapper::shared().annotations.keyEnd()).size(), 3);
    std::vector<int> order;
    for (const PinIndex::Pin &pin : view->pinIndex().pins())
        order.push_back(pin.identifier);
    EXPECT_EQ(order, (std::vector<int>{1101, 1100, 1200}));
    EXPECT_EQ(MapViewWrapper::shared().annotations.value(200).annotationType, 39);
    EXPECT_FALSE(screens.restaurants->restaurantInfo(102)->location.has_value()) << "the card offers no map for it";
    EXPECT_TRUE(screens.restaurants->restaurantInfo(100)->location.has_value());
    auto card = screens.open(100);
    EXPECT_EQ(card->mapView(), view);
    EXPECT_EQ(view->delegate(), card.get()) << "the view answers the screen that borrowed it last";
}

// Catches: a single-place map that doesn't open on its place with the callout, a place without
// a pin that opens anywhere but the country's middle, a global map that forgets where the user
// left it, and a second card's map that starts where the first was left.
TEST(MapScreen, RegionsStartFromThePlaceOrTheCountryAndAreRemembered)
{
    MapScreens screens;
    auto global = screens.open(-1);
    CoordinateRegion region = global->mapView()->visibleRegion();
    EXPECT_NEAR(region.latitude, 21.35, 1e-6);
    EXPECT_NEAR(region.longitude, -79.37, 1e-6);
    EXPECT_FLOAT_EQ(region.zoomLevel, 5.1f);
    EXPECT_FALSE(global->mapView()->calloutVisible());

    const CoordinateRegion moved{22.4, -83.7, 8.0f};
    global->mapView()->setVisibleRegion(moved);
    auto card = screens.open(100);
    region = card->mapView()->visibleRegion();
    EXPECT_NEAR(region.latitude, 23.1407, 1e-6);
    EXPECT_FLOAT_EQ(region.zoomLevel, 16.0f);
    EXPECT_TRUE(card->mapView()->calloutVisible());
    EXPECT_EQ(card->selectedPinId(), 100);
    EXPECT_EQ(card->mapView()->calloutView()->spokenTitle(), QStringLiteral("La Bodeguita del Medio"));

    card->mapView()->setVisibleRegion({23.0, -82.0, 12.0f});
    global->viewWillAppear(); // back to the menu's map
    region = global->mapView()->visibleRegion();
    EXPECT_NEAR(region.latitude, 22.4, 1e-6);
    EXPECT_FLOAT_EQ(region.zoomLevel, 8.0f);

    auto again = screens.open(100);
    EXPECT_NEAR(again->mapView()->visibleRegion().latitude, 23.1407, 1e-6);
    EXPECT_FLOAT_EQ(again->mapView()->visibleRegion().zoomLevel, 16.0f);

    again->mapViewDidTapAtCoordinate(23.0, -82.0);
    EXPECT_FALSE(again->mapView()->calloutVisible());
    EXPECT_FALSE(again->selectedPinId());

    auto unlocated = screens.open(102);
    region = unlocated->mapView()->visibleRegion();
    EXPECT_NEAR(region.latitude, 21.35, 1e-6);
    EXPECT_FLOAT_EQ(region.zoomLevel, 16.0f);
    EXPECT_FALSE(unlocated->mapView()->calloutVisible());
}

// Catches: a wrong row of the location table: the spinner not cancelling, a fix at (0, 0)
// taken, a moved map still claiming to be centred, a callout that doesn't uncentre, turning
// off that leaves the positioner running, and a state that dies with its screen.
TEST(MapScreen, TheLocationButtonWalksTheStateTable)
{
    const QTime start(12, 0, 0);
    MapScreens screens({NmeaLog::rmc(start, 0, 0), "this line is not NMEA\r\n", "$GPRMC,garbled*7F\r\n",
                        NmeaLog::rmc(start.addSecs(1), 23.1300, -82.3800), NmeaLog::rmc(start.addSecs(2), 23.1310, -82.3810)});
    auto global = screens.open(-1);
    PositionerService &positioner = PositionerService::sharedInstance();
    EXPECT_EQ(stateOf(*global), LocationState::off);
    EXPECT_EQ(global->locationButton()->objectName(), QStringLiteral("location_off"));

    global->locationButtonTouched();
    EXPECT_EQ(stateOf(*global), LocationState::waiting);
    EXPECT_TRUE(global->locationButton()->busy());
    global->locationButtonTouched(); // a tap on the spinner gives up
    EXPECT_EQ(stateOf(*global), LocationState::off);
    EXPECT_FALSE(positioner.isUpdating());

    global->locationButtonTouched();
    ASSERT_TRUE(positioner.isUpdating());
    global->positionerServiceUpdatedCurrentLocation({0, 0, 5});
    EXPECT_EQ(stateOf(*global), LocationState::waiting) << "a fix at (0, 0) is an artefact";
    ASSERT_TRUE(QTest::qWaitFor([&] { return stateOf(*global) == LocationState::onAndCentered; }, 5000));
    CoordinateRegion region = global->mapView()->visibleRegion();
    EXPECT_NEAR(region.latitude, 23.13, 1e-3);
    EXPECT_NEAR(region.longitude, -82.38, 1e-3);
    EXPECT_FLOAT_EQ(region.zoomLevel, 15.0f);
    EXPECT_TRUE(global->mapView()->settings().showCurrentPosition);
    EXPECT_EQ(global->locationButton()->objectName(), QStringLiteral("location_centered"));

    global->mapViewDidStartRegionChange();
    EXPECT_EQ(stateOf(*global), LocationState::onButNotCentered);
    global->mapView()->setVisibleRegion({21.0, -78.0, 9.0f});
    global->locationButtonTouched();
    EXPECT_EQ(stateOf(*global), LocationState::onAndCentered);
    EXPECT_NEAR(global->mapView()->visibleRegion().latitude, global->mapView()->currentPosition()->y(), 1e-9);

    global->selectAnnotation(1100);
    EXPECT_EQ(stateOf(*global), LocationState::onButNotCentered) << "opening a callout moves the eye off the user";
    global->locationButtonTouched();
    global->locationButtonTouched();
    EXPECT_EQ(stateOf(*global), LocationState::off);
    EXPECT_FALSE(positioner.isUpdating());
    EXPECT_FALSE(global->mapView()->settings().showCurrentPosition);

    global->locationButtonTouched(); // a known position centres at once
    EXPECT_EQ(stateOf(*global), LocationState::onAndCentered);
    EXPECT_FLOAT_EQ(global->mapView()->visibleRegion().zoomLevel, 15.0f);
    global.reset();
    auto card = screens.open(200);
    EXPECT_EQ(stateOf(*card), LocationState::onButNotCentered) << "the card's pin is selected, so no longer centred";
    EXPECT_EQ(card->locationButton()->objectName(), QStringLiteral("location_not_centered"));
}
