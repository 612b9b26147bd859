#include "map/MBTilesPack.h"
#include "map/MapView.h"
#include "map/PinIndex.h"
#include "map/PinRenderer.h"
#include "map/TileMath.h"
#include "map/TilePacks.h"
#include "platform/Database.h"

#include <QBuffer>
#include <QFile>
#include <QImage>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cmath>

namespace {

const QRectF country(-85.2, 19.6, 11.2, 3.8);

MapCamera cameraAt(double latitude, double longitude, double zoom)
{
    return MapCamera{TileMath::worldFromCoordinate(latitude, longitude), zoom, QSizeF(390, 780)};
}

}

// Catches: rows counted from the wrong pole (every tile upside down in its column), a projection
// that drifts on the way back, and tiles asked for outside the grid at the map's edges.
TEST(MapEngine, TileAddressingFollowsTheTmsRowsAndStaysInTheGrid)
{
    EXPECT_EQ(TileMath::tmsRow(0, 0), 0);
    EXPECT_EQ(TileMath::tmsRow(9, 0), 511);
    EXPECT_EQ(TileMath::tmsRow(9, 511), 0);
    // Havana's tile at zoom 9, as any slippy map numbers it: column 138, row 222.
    const QPointF havana = TileMath::worldFromCoordinate(23.13, -82.38);
    EXPECT_EQ(TileMath::tileAt(havana, 9), QPoint(138, 222));
    EXPECT_TRUE(TileMath::tileRect(9, 138, 222).contains(havana));
    const QPointF back = TileMath::coordinateFromWorld(havana);
    EXPECT_NEAR(back.x(), -82.38, 1e-9);
    EXPECT_NEAR(back.y(), 23.13, 1e-9);
    EXPECT_EQ(TileMath::tileAt(QPointF(-0.2, 1.7), 4), QPoint(0, 15));
    EXPECT_EQ(TileMath::tileAt(QPointF(1.0, 0.0), 4), QPoint(15, 0));
    EXPECT_FALSE(TileMath::isValidCoordinate(std::nan(""), -80));
    EXPECT_FALSE(TileMath::isValidCoordinate(91, -80));
    EXPECT_FALSE(TileMath::isValidCoordinate(22, -181));
    EXPECT_TRUE(TileMath::isValidCoordinate(0, 0));
}

// Catches: a pack read with the rows flipped, zoom limits not taken from the file, and a
// broken, foreign or empty pack that is taken anyway (or crashes) instead of giving the grid.
TEST(MapEngine, PacksAreReadByTmsRowAndBadOnesAreRefused)
{
    QTemporaryDir dir;
    const QString good = writePack(dir.filePath(QStringLiteral("a.mbtiles")),
                                   {{3, 2, TileMath::tmsRow(3, 3), png(Qt::red)}, {5, 8, TileMath::tmsRow(5, 13), png(Qt::blue)},
                                    {5, 9, TileMath::tmsRow(5, 13), QByteArray("not a picture")}});
    MBTilesPack pack;
    QString error;
    ASSERT_TRUE(pack.open(good, country, &error)) << error.toStdString();
    EXPECT_EQ(pack.minZoom(), 3);
    EXPECT_EQ(pack.maxZoom(), 5);
    EXPECT_EQ(pack.tile(3, 2, 3).pixelColor(10, 10), QColor(Qt::red));
    EXPECT_TRUE(pack.tile(3, 2, TileMath::tmsRow(3, 3)).isNull());
    EXPECT_EQ(pack.tile(5, 8, 13).pixelColor(10, 10), QColor(Qt::blue));
    EXPECT_TRUE(pack.tile(5, 9, 13).isNull()); // undecodable: background, no crash
    EXPECT_TRUE(pack.tile(6, 16, 26).isNull());
    EXPECT_TRUE(pack.tile(5, -1, 3).isNull());
    EXPECT_EQ(MBTilesPack::findIn(dir.path()), QStringList{good});

    QFile(dir.filePath(QStringLiteral("empty.mbtiles"))).open(QIODevice::WriteOnly);
    QFile garbage(dir.filePath(QStringLiteral("garbage.mbtiles")));
    garbage.open(QIODevice::WriteOnly);
    garbage.write(QByteArray(4096, 'x'));
    garbage.close();
    {
        Database other(dir.filePath(QStringLiteral("schema.mbtiles")));
        other.open();
        other.executeStatements(QStringLiteral("CREATE TABLE metadata (name TEXT, value TEXT); CREATE TABLE pictures (id INTEGER);"));
    }
    writePack(dir.filePath(QStringLiteral("alps.mbtiles")), {{3, 4, 5, png(Qt::green)}}, QStringLiteral("5.9,45.8,10.5,47.8"));
    writePack(dir.filePath(QStringLiteral("none.mbtiles")), {});
    for (const char *name : {"missing.mbtiles", "empty.mbtiles", "garbage.mbtiles", "schema.mbtiles", "alps.mbtiles", "none.mbtiles"}) {
        MBTilesPack bad;
        EXPECT_FALSE(bad.open(dir.filePath(QString::fromLatin1(name)), country, &error)) << name;
        EXPECT_TRUE(error.startsWith(QString::fromLatin1(name))) << error.toStdString();
        MapView view;
        EXPECT_FALSE(view.setTilePack(dir.filePath(QString::fromLatin1(name)), country)) << name;
        EXPECT_FALSE(view.hasBaseMap());
    }
}

// Catches: a tap that selects a pin under another (the later pin is drawn on top), a pin's
// picture that answers below its point instead of above, and a hit area that grows or
// shrinks with the zoom.
TEST(MapEngine, HitTestingFindsThePinDrawnOnTopAtEveryZoom)
{
    PinIndex pins(QSizeF(22, 30));
    pins.add(1001, TileMath::worldFromCoordinate(23.1300, -82.3800));
    pins.add(1002, TileMath::worldFromCoordinate(23.1302, -82.3802)); // 30 metres away: one spot until zoom 15
    pins.add(1003, TileMath::worldFromCoordinate(20.0200, -75.8200));
    const auto idAt = [&](const MapCamera &camera, const QPointF &screen) {
        const int index = pins.hitTest(screen, camera);
        return index < 0 ? -1 : pins.pins()[size_t(index)].identifier;
    };
    for (double zoom : {5.1, 9.0, 12.5}) {
        const MapCamera camera = cameraAt(22.0, -79.0, zoom);
        const QPointF point = camera.toScreen(pins.pins()[0].world);
        EXPECT_EQ(idAt(camera, point - QPointF(0, 20)), 1002) << zoom; // the head of the pin on top
        EXPECT_EQ(idAt(camera, point + QPointF(0, 40)), -1) << zoom;   // well below the point
        EXPECT_EQ(idAt(camera, point + QPointF(60, 0)), -1) << zoom;
    }
    const MapCamera close = cameraAt(23.13, -82.38, 19);
    const QPointF first = close.toScreen(pins.pins()[0].world);
    const QPointF second = close.toScreen(pins.pins()[1].world);
    ASSERT_GT(std::hypot(first.x() - second.x(), first.y() - second.y()), 60);
    EXPECT_EQ(idAt(close, first - QPointF(0, 15)), 1001);
    EXPECT_EQ(idAt(close, second - QPointF(0, 15)), 1002);
    const MapCamera east = cameraAt(20.02, -75.82, 7);
    EXPECT_EQ(idAt(east, east.toScreen(pins.pins()[2].world) + QPointF(8, 4)), 1003); // near, within the slop
}

// Catches: pins drawn at the wrong place or not at all, pins off screen that still cost a
// copy, and stacked pins on one pixel each drawn again.
TEST(MapEngine, PinsAreDrawnOnceEachWhereTheirPointIs)
{
    PinIndex pins(QSizeF(22, 30));
    const QPointF havana = TileMath::worldFromCoordinate(23.13, -82.38);
    for (int i = 0; i < 50; ++i)
        pins.add(1000 + i, havana);
    pins.add(2000, TileMath::worldFromCoordinate(20.02, -75.82));
    pins.add(3000, TileMath::worldFromCoordinate(40.0, 3.0)); // far off screen
    const MapCamera camera = cameraAt(22.0, -79.0, 6);
    PinRenderer renderer;
    QImage image;
    renderer.render(pins, camera, 1.0, image);
    EXPECT_EQ(renderer.drawnCount(), 2);
    const QPointF point = camera.toScreen(havana);
    const QColor head = image.pixelColor(int(point.x()) + 5, int(point.y()) - 22);
    EXPECT_GT(head.red(), 200);
    EXPECT_LT(head.blue(), 100);
    EXPECT_EQ(image.pixelColor(int(point.x()), int(point.y()) + 6).alpha(), 0);
    renderer.render(pins, camera, 2.0, image);
    EXPECT_EQ(image.size(), QSize(780, 1560));
    EXPECT_GT(image.pixelColor(int(point.x() * 2) + 10, int(point.y() * 2) - 44).red(), 200);
}
