#include "fixtures/DemoWindow.h"
#include "map/MapCalloutView.h"
#include "map/MapViewController.h"
#include "map/MapViewWrapper.h"
#include "map/MBTilesPack.h"
#include "map/NmeaLog.h"
#include "map/VectorTile.h"
#include "map/TileMath.h"
#include "map/VectorStyle.h"
#include "placecard/LugarTableViewController.h"
#include "platform/PositionerService.h"

#include <QAccessible>
#include <QFile>
#include <QLineF>
#include <QPainter>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {
// The demo's base map in the home's documents, and a replayed drive through Havana that
// starts with a receiver's (0, 0).
struct MapDemo {
    MapDemo()
    {
        MapViewWrapper::reset();
        const QTime start(12, 0, 0);
        NmeaLog::write(logDir.filePath(QStringLiteral("drive.nmea")),
                       {NmeaLog::rmc(start, 0, 0), NmeaLog::rmc(start.addSecs(1), 23.1380, -82.3590),
                        NmeaLog::rmc(start.addSecs(2), 23.1385, -82.3595), NmeaLog::rmc(start.addSecs(3), 23.1390, -82.3600)});
        PositionerService::useLog(logDir.filePath(QStringLiteral("drive.nmea")));
        QFile::copy(QStringLiteral(VELMORA_DEMO_BASEMAP), ui.home.documents() + QStringLiteral("/velmora-demo.mbtiles"));
        QFile::copy(QStringLiteral(VELMORA_DEMO_STREETMAP), ui.home.documents() + QStringLiteral("/velmora-demo-streets.mbtiles"));
    }
    ~MapDemo()
    {
        MapViewWrapper::reset();
        PositionerService::useLog(QString());
    }
    MapView *view() const { return MapViewWrapper::shared().mapView(); }
    // Where a pin's picture shows, in the window.
    QPoint pinHead(int id) const
    {
        const Annotation &pin = MapViewWrapper::shared().annotations.value(id);
        return view()->mapToScene(view()->pointForCoordinate(pin.latitude, pin.longitude) - QPointF(0, 18)).toPoint();
    }

    // Waits until the street tiles in view are drawn and shown.
    void streetsDrawn() const
    {
        ASSERT_TRUE(QTest::qWaitFor([&] {
            view()->streetTiles().waitForDone();
            return view()->streetTiles().pendingCount() == 0;
        }, 3000));
        QTest::qWait(100);
        ASSERT_EQ(view()->streetTiles().pendingCount(), 0) << "every tile in view was asked for in the last frame";
    }

    QTemporaryDir logDir;
    DemoWindow ui;
};
}

// Catches: a map entry, pin, callout button or location button that works only when its
// controller is called: each is reached here by a finger at the place it shows.
TEST(MapInterface, AFingerPansTapsAPinOpensItsCardAndLocates)
{
    MapDemo demo;
    DemoWindow &ui = demo.ui;
    QQuickWindow *window = ui.window->window();
    tap(window, ui.item("barButton-menu"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("menuRow-map") && ui.item("menuRow-map")->isVisible(); }, 2000));
    QTest::qWait(400); // the drawer's slide
    tap(window, ui.item("menuRow-map"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return demo.view() && demo.view()->isVisible() && demo.view()->window(); }, 5000));
    EXPECT_TRUE(demo.view()->hasBaseMap());
    EXPECT_GT(demo.view()->annotationCount(), 300);
    ui.save("map-country");

    // A drag moves the map by as much as the finger.
    const CoordinateRegion before = demo.view()->visibleRegion();
    drag(window, QPoint(200, 500), QPoint(-120, 0));
    const CoordinateRegion after = demo.view()->visibleRegion();
    EXPECT_GT(after.longitude, before.longitude + 1.0);
    EXPECT_NEAR(after.latitude, before.latitude, 0.05);

    // Two fingers moving apart to twice their distance zoom in by one level about their middle.
    static QPointingDevice *touchscreen = QTest::createTouchDevice();
    const CoordinateRegion beforePinch = demo.view()->visibleRegion();
    const QPointF middle = demo.view()->mapToScene(QPointF(demo.view()->width() / 2, demo.view()->height() / 2));
    QTest::touchEvent(window, touchscreen).press(0, (middle - QPointF(40, 0)).toPoint()).press(1, (middle + QPointF(40, 0)).toPoint());
    for (int step = 1; step <= 8; ++step)
        QTest::touchEvent(window, touchscreen)
            .move(0, (middle - QPointF(40 + 5 * step, 0)).toPoint())
            .move(1, (middle + QPointF(40 + 5 * step, 0)).toPoint());
    QTest::touchEvent(window, touchscreen).release(0, (middle - QPointF(80, 0)).toPoint()).release(1, (middle + QPointF(80, 0)).toPoint());
    EXPECT_NEAR(demo.view()->visibleRegion().zoomLevel, beforePinch.zoomLevel + 1.0, 0.05);
    EXPECT_NEAR(demo.view()->visibleRegion().longitude, beforePinch.longitude, 0.05);

    // The keyboard: the map has the keys as it shows; an arrow pans, + and - zoom by a level.
    const CoordinateRegion beforeKeys = demo.view()->visibleRegion();
    QTest::keyClick(window, Qt::Key_Right);
    EXPECT_GT(demo.view()->visibleRegion().longitude, beforeKeys.longitude + 0.1);
    QTest::keyClick(window, Qt::Key_Plus);
    EXPECT_NEAR(demo.view()->visibleRegion().zoomLevel, beforeKeys.zoomLevel + 1.0, 0.01);
    QTest::keyClick(window, Qt::Key_Minus);
    EXPECT_NEAR(demo.view()->visibleRegion().zoomLevel, beforeKeys.zoomLevel, 0.01);

    // Two wheel steps closer, the provinces are named at their capitals.
    QWheelEvent wheel(QPointF(195, 400), window->mapToGlobal(QPointF(195, 400)), {}, QPoint(0, 240), Qt::NoButton, {}, Qt::NoScrollPhase, false);
    demo.view()->setVisibleRegion({22.3, -80.6, 6.0f});
    QGuiApplication::sendEvent(window, &wheel);
    EXPECT_FLOAT_EQ(demo.view()->visibleRegion().zoomLevel, 7.0f);
    ui.save("map-provinces");

    // Close to Havana, a tap on a pin dragged near the left edge opens its callout with its
    // name, and the map moves so the callout stands whole in the view.
    const int id = MapViewWrapper::shared().annotations.keys().first();
    const Annotation pin = MapViewWrapper::shared().annotations.value(id);
    demo.view()->setVisibleRegion({pin.latitude, pin.longitude, 18.5f});
    QTest::qWait(50);
    drag(window, QPoint(300, 650), QPoint(20 - demo.pinHead(id).x(), 0));
    ASSERT_LT(demo.pinHead(id).x(), 40);
    QTest::mouseClick(window, Qt::LeftButton, {}, demo.pinHead(id));
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("mapCallout") && ui.item("mapCallout")->isVisible(); }, 2000));
    const QRectF calloutBox = ui.item("mapCallout")->mapRectToScene(ui.item("mapCallout")->boundingRect());
    const QRectF mapBox = demo.view()->mapRectToScene(demo.view()->boundingRect());
    EXPECT_TRUE(mapBox.contains(calloutBox)) << "callout at x " << calloutBox.x() << ", y " << calloutBox.y();
    const int selected = MapViewWrapper::placeForIdentifier(*demo.view()->annotationAt(demo.view()->mapFromScene(demo.pinHead(id))));
    EXPECT_EQ(demo.view()->calloutView()->spokenTitle(), Restaurants::shared().brief(selected)->name);
    demo.view()->setVisibleRegion({pin.latitude, pin.longitude, 16.0f});
    ui.save("map-callout");

    tap(window, ui.item("mapCalloutButton"));
    ASSERT_TRUE(QTest::qWaitFor([&] {
        auto *card = qobject_cast<LugarTableViewController *>(ui.delegate->mainNavigation()->topViewController());
        return card && card->restInfo && card->restInfo->id == selected;
    }, 3000));

    // The card's address row leads back to the map, zoomed on the place with its callout.
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("lugarRow-address") && ui.item("lugarRow-address")->isVisible(); }, 2000));
    // Taps during the card's slide belong to the stack: the map beneath hides once it is over.
    ASSERT_TRUE(QTest::qWaitFor([&] { return !ui.item("mapScreen")->isVisible(); }, 3000));
    tap(window, ui.item("lugarRow-address"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return qobject_cast<MapViewController *>(ui.delegate->mainNavigation()->topViewController()); }, 3000));
    // Each map screen has its callout; the one shown is the new screen's.
    ASSERT_TRUE(QTest::qWaitFor([&] {
        return demo.view()->calloutVisible()
               && ui.itemWhere([](QQuickItem *item) { return item->objectName() == QLatin1String("mapCallout") && item->isVisible(); });
    }, 2000));
    EXPECT_FLOAT_EQ(demo.view()->visibleRegion().zoomLevel, 16.0f);
    ui.save("map-place");

    // The place stands on its own street, drawn where the pin points, at the card's zoom and
    // again after zooming out to the town and back.
    ASSERT_TRUE(demo.view()->hasStreetMap());
    const Annotation &place = MapViewWrapper::shared().annotations.value(selected);
    const auto onItsStreet = [&](const char *when) {
        demo.streetsDrawn();
        const auto road = [](const QColor &here) {
            const auto near = [&](const QColor &fill) {
                return std::abs(here.red() - fill.red()) + std::abs(here.green() - fill.green()) + std::abs(here.blue() - fill.blue()) <= 12;
            };
            return near(VectorStyle::road(QStringLiteral("street"), 16)->color) || near(VectorStyle::road(QStringLiteral("secondary"), 16)->color);
        };
        // The street its address names runs through the place, in the street map's own data.
        const QString street = Restaurants::shared().brief(selected)->address.section(QStringLiteral(" No. "), 0, 0);
        const QPointF world = TileMath::worldFromCoordinate(place.latitude, place.longitude);
        const QPoint tile = TileMath::tileAt(world, 14);
        MBTilesPack pack;
        QString error;
        ASSERT_TRUE(pack.open(QStringLiteral(VELMORA_DEMO_STREETMAP), {}, &error)) << error.toStdString();
        VectorTile data;
        ASSERT_TRUE(decodeVectorTile(pack.tileData(14, tile.x(), tile.y()), data, &error)) << error.toStdString();
        ASSERT_TRUE(data.layer(QLatin1StringView("road")));
        const QPointF at = (world - TileMath::tileRect(14, tile.x(), tile.y()).topLeft()) * double(1 << 14) * 4096;
        double nearest = 1e9;
        for (const VectorFeature &road : data.layer(QLatin1StringView("road"))->features)
            if (road.attribute(QLatin1StringView("name")) == street)
                for (const QPolygonF &line : road.parts)
                    for (qsizetype i = 1; i < line.size(); ++i) {
                        const QLineF segment(line[i - 1], line[i]);
                        const double t = std::clamp(QPointF::dotProduct(at - segment.p1(), segment.p2() - segment.p1())
                                                        / std::max(1e-9, segment.length() * segment.length()), 0.0, 1.0);
                        nearest = std::min(nearest, QLineF(at, segment.pointAt(t)).length());
                    }
        EXPECT_LT(nearest, 4.0) << when << ": " << street.toStdString() << " passes " << nearest << " units away (4096 a tile)";
        // And the window shows the streets around the pin.
        const QImage shot = ui.window->grab();
        const QPoint tip = demo.view()->mapToScene(demo.view()->pointForCoordinate(place.latitude, place.longitude)).toPoint();
        int shown = 0;
        for (int y = tip.y() - 80; y <= tip.y() + 80; y += 2)
            for (int x = tip.x() - 80; x <= tip.x() + 80; x += 2)
                shown += shot.rect().contains(x, y) && road(shot.pixelColor(x, y));
        EXPECT_GT(shown, 300) << when << ": street pixels around the pin";
    };
    onItsStreet("the card's map");
    ui.save("map-place-street");
    // The map's own area below its bar, where the callout isn't: what zooming away and back must
    // draw again exactly.
    const QRect mapArea = demo.view()->mapRectToScene(demo.view()->boundingRect()).toAlignedRect();
    const auto mapOnly = [&] {
        QImage shot = ui.window->grab().copy(mapArea);
        QQuickItem *callout = ui.itemWhere([](QQuickItem *item) { return item->objectName() == QLatin1String("mapCallout") && item->isVisible(); });
        if (callout) {
            QPainter painter(&shot);
            painter.fillRect(callout->mapRectToScene(callout->boundingRect()).toAlignedRect().translated(-mapArea.topLeft()).adjusted(-2, -2, 2, 12),
                             Qt::black);
        }
        return shot;
    };
    const QImage cardMap = mapOnly();
    // The street map at the town's zoom and at a street's, around the same place.
    demo.view()->setVisibleRegion({place.latitude, place.longitude, 14});
    demo.streetsDrawn();
    ui.save("map-streets-z14");
    demo.view()->setVisibleRegion({place.latitude, place.longitude, 16});
    onItsStreet("back at zoom 16");
    ui.save("map-streets-z16");
    const QImage backMap = mapOnly();
    QRect differs;
    int count = 0;
    for (int y = 0; y < std::min(backMap.height(), cardMap.height()); ++y)
        for (int x = 0; x < std::min(backMap.width(), cardMap.width()); ++x)
            if (backMap.pixel(x, y) != cardMap.pixel(x, y)) {
                differs |= QRect(x, y, 1, 1);
                ++count;
            }
    EXPECT_EQ(count, 0) << "zooming away and back draws the same map; " << count << " pixels differ within " << differs.x() << ","
                        << differs.y() << " " << differs.width() << "x" << differs.height();

    // The location button: the spinner, then the replayed position centred.
    tap(window, ui.item("barButton-location_not_centered") ? ui.item("barButton-location_not_centered") : ui.item("barButton-location_off"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("barButton-location_waiting") != nullptr; }, 500));
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("barButton-location_centered") != nullptr; }, 5000));
    EXPECT_NEAR(demo.view()->visibleRegion().latitude, 23.138, 0.01);
    ui.save("map-locating");
    tap(window, ui.item("barButton-location_centered"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("barButton-location_off") != nullptr; }, 2000));
    EXPECT_FALSE(PositionerService::sharedInstance().isUpdating());

    // Back through the card to the menu's map: the shared view comes back to it.
    tap(window, ui.item("barButton-back"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return qobject_cast<LugarTableViewController *>(ui.delegate->mainNavigation()->topViewController()); }, 3000));
    QTest::qWait(500);
    tap(window, ui.item("barButton-back"));
    ASSERT_TRUE(QTest::qWaitFor([&] {
        QQuickItem *holder = demo.view()->parentItem();
        return qobject_cast<MapViewController *>(ui.delegate->mainNavigation()->topViewController()) && holder && holder->isVisible()
               && demo.view()->isVisible();
    }, 3000));
}

// Catches pins a reader can't find or press, and a pin and callout the keys can't reach: the
// pins near the middle are offered by name where they stand, a reader's press opens a pin's
// callout as a tap does, and the keys alone go from a pin to its callout's button to the card.
TEST(MapInterface, AReaderAndTheKeysOpenAPinAndItsCard)
{
    MapDemo demo;
    DemoWindow &ui = demo.ui;
    QQuickWindow *window = ui.window->window();
    ui.delegate->openLink(QStringLiteral("velmora://map"), false);
    ASSERT_TRUE(QTest::qWaitFor([&] { return demo.view() && demo.view()->isVisible() && demo.view()->annotationCount() > 300; }, 5000));
    const Annotation pin = *MapViewWrapper::shared().annotations.cbegin();
    demo.view()->setVisibleRegion({pin.latitude, pin.longitude, 17.0f});
    const auto readable = [&] {
        return ui.itemWhere([](QQuickItem *item) { return item->objectName().startsWith(QLatin1String("readablePin-")); });
    };
    const auto identifierOf = [](QQuickItem *item) { return item->objectName().mid(int(qstrlen("readablePin-"))).toInt(); };
    // The view reaches the new zoom over a few frames, the readable pins with it: once it has,
    // the reader's pin stands where its pin is drawn (a misplaced one never would). Its point,
    // not a hit test: another place's pin may be drawn over it at the same address.
    ASSERT_TRUE(QTest::qWaitFor([&] {
        QQuickItem *item = readable();
        if (!item)
            return false;
        const Annotation drawn = MapViewWrapper::shared().annotations.value(MapViewWrapper::placeForIdentifier(identifierOf(item)));
        const QPointF point = demo.view()->pointForCoordinate(drawn.latitude, drawn.longitude);
        const QPointF standing = demo.view()->mapFromScene(item->mapToScene(QPointF(11, 30)));
        return QLineF(point, standing).length() < 1.0;
    }, 3000)) << "the reader's pin stands where the pin is drawn";
    QQuickItem *first = readable();
    QAccessibleInterface *node = QAccessible::queryAccessibleInterface(first);
    const int identifier = identifierOf(first);
    const QString name = Restaurants::shared().brief(MapViewWrapper::placeForIdentifier(identifier))->name;
    EXPECT_EQ(node->text(QAccessible::Name), name);

    node->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    ASSERT_TRUE(QTest::qWaitFor([&] { return demo.view()->calloutVisible(); }, 2000));
    EXPECT_EQ(demo.view()->calloutView()->spokenTitle(), name);
    demo.view()->hideCallout();

    // The keys: Tab to a pin, Return opens its callout, Tab to the callout's button, Return opens the card.
    ASSERT_TRUE(QTest::qWaitFor([&] { return readable() != nullptr; }, 2000));
    ASSERT_TRUE(tabTo(window, QStringLiteral("readablePin-")));
    EXPECT_TRUE(ringOnFocus(window));
    const int chosen = MapViewWrapper::placeForIdentifier(focusedName(window).mid(int(qstrlen("readablePin-"))).toInt());
    QTest::keyClick(window, Qt::Key_Return);
    ASSERT_TRUE(QTest::qWaitFor([&] { return demo.view()->calloutVisible(); }, 2000));
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("mapCalloutButton") && ui.item("mapCalloutButton")->isVisible(); }, 2000));
    ASSERT_TRUE(tabTo(window, QStringLiteral("mapCalloutButton")));
    QTest::keyClick(window, Qt::Key_Return);
    EXPECT_TRUE(QTest::qWaitFor([&] {
        auto *card = qobject_cast<LugarTableViewController *>(ui.delegate->mainNavigation()->topViewController());
        return card && card->restInfo && card->restInfo->id == chosen;
    }, 3000));
}
