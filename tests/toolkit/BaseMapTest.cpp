#include "map/MBTilesPack.h"
#include "map/TileMath.h"
#include "platform/Database.h"
#include "toolkit/BaseMap.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {
// The colour at a coordinate in the tile of `zoom` that holds it.
QColor colourAt(MBTilesPack &pack, int zoom, double latitude, double longitude)
{
    const QPointF world = TileMath::worldFromCoordinate(latitude, longitude);
    const QPoint tile = TileMath::tileAt(world, zoom);
    const QImage image = pack.tile(zoom, tile.x(), tile.y());
    if (image.isNull())
        return {};
    const QPointF inside = (world - TileMath::tileRect(zoom, tile.x(), tile.y()).topLeft()) * TileMath::worldPixels(zoom);
    return image.pixelColor(inside.toPoint());
}

bool isSea(const QColor &colour) { return colour.blue() > colour.red() + 30; }
}

// Catches: tiles written with rows from the wrong pole (land where the sea is), a coastline cut
// at a tile's edge, open sea stored once per tile, and a file the app's reader refuses.
TEST(BaseMap, ASmallIslandRendersAndReadsBackWithTheAppsReader)
{
    QTemporaryDir dir;
    BaseMapData data;
    // A square island south-west of Havana, a lake-free coast drawn around it.
    const QPolygonF island({{-82.0, 22.0}, {-81.0, 22.0}, {-81.0, 23.0}, {-82.0, 23.0}});
    data.country = {island};
    data.shorelines = {QPolygonF(island) << island.first()};
    data.labels = {{QStringLiteral("Isla"), 22.5, -81.5}};
    BaseMapOptions options;
    options.maxZoom = 8;
    options.surroundingsMaxZoom = 6;
    BaseMapStats stats;
    QString error;
    const QString path = dir.filePath(QStringLiteral("island.mbtiles"));
    ASSERT_TRUE(writeBaseMap(data, options, path, stats, &error)) << error.toStdString();
    EXPECT_EQ(stats.tilesPerZoom.value(0), 1);
    EXPECT_GT(stats.tilesPerZoom.value(8), stats.tilesPerZoom.value(6));
    EXPECT_LT(stats.images * 2, stats.tiles) << "identical sea tiles are stored once";

    MBTilesPack pack;
    ASSERT_TRUE(pack.open(path, QRectF(-85.2, 19.6, 11.2, 3.8), &error)) << error.toStdString();
    EXPECT_EQ(pack.maxZoom(), 8);
    for (int zoom : {5, 7, 8}) {
        EXPECT_FALSE(isSea(colourAt(pack, zoom, 22.3, -81.8))) << "land inside the island at zoom " << zoom;
        EXPECT_TRUE(isSea(colourAt(pack, zoom, 21.5, -81.5))) << "sea south of it at zoom " << zoom;
        EXPECT_TRUE(isSea(colourAt(pack, zoom, 22.5, -80.7))) << "sea east of it at zoom " << zoom;
    }
    // The island's edge crosses tiles at zoom 8: land on both sides of a tile boundary near it.
    const double edgeLongitude = TileMath::coordinateFromWorld(TileMath::tileRect(8, 70, 0).topLeft()).x();
    ASSERT_GT(edgeLongitude, -82.0);
    ASSERT_LT(edgeLongitude, -81.0);
    EXPECT_FALSE(isSea(colourAt(pack, 8, 22.02, edgeLongitude - 0.01)));
    EXPECT_FALSE(isSea(colourAt(pack, 8, 22.02, edgeLongitude + 0.01)));
    EXPECT_TRUE(isSea(colourAt(pack, 8, 21.97, edgeLongitude + 0.01)));

    // A failed write leaves no file, and a good one already there stays.
    options.maxZoom = 40;
    EXPECT_FALSE(writeBaseMap(data, options, path, stats, &error));
    EXPECT_TRUE(pack.open(path, QRectF(), &error));
}

// Catches: the command not running GMT, or the country's real shape not reaching the tiles
// (Havana's bay on land, the Gulf on the sea side). Skipped where GMT is not installed.
TEST(BaseMap, TheCommandDrawsTheRealCoastFromGmt)
{
    if (QStandardPaths::findExecutable(QStringLiteral("gmt")).isEmpty())
        GTEST_SKIP() << "gmt is not installed";
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("cuba.mbtiles"));
    QProcess tool;
    tool.start(QStringLiteral(VELMORA_CATALOGUE_TOOL), {QStringLiteral("basemap"), QStringLiteral("-o"), path, QStringLiteral("--max-zoom"),
                                                        QStringLiteral("7"), QStringLiteral("--resolution"), QStringLiteral("i")});
    ASSERT_TRUE(tool.waitForFinished(120000));
    ASSERT_EQ(tool.exitCode(), 0) << tool.readAllStandardError().toStdString();
    const QJsonObject report = QJsonDocument::fromJson(tool.readAllStandardOutput()).object();
    EXPECT_EQ(report.value(QStringLiteral("maxZoom")).toInt(), 7);
    EXPECT_GT(report.value(QStringLiteral("tiles")).toInt(), report.value(QStringLiteral("images")).toInt());
    MBTilesPack pack;
    QString error;
    ASSERT_TRUE(pack.open(path, QRectF(-85.2, 19.6, 11.2, 3.8), &error)) << error.toStdString();
    EXPECT_FALSE(isSea(colourAt(pack, 7, 22.0, -79.5))) << "the middle of the island";
    EXPECT_FALSE(isSea(colourAt(pack, 7, 20.3, -76.0))) << "the Sierra Maestra";
    EXPECT_TRUE(isSea(colourAt(pack, 7, 24.0, -82.0))) << "the Florida Straits";
    EXPECT_TRUE(isSea(colourAt(pack, 7, 19.0, -79.0))) << "the Caribbean";

    QProcess refused;
    refused.start(QStringLiteral(VELMORA_CATALOGUE_TOOL), {QStringLiteral("basemap"), QStringLiteral("-o"), path, QStringLiteral("--resolution"),
                                                           QStringLiteral("z")});
    ASSERT_TRUE(refused.waitForFinished(10000));
    EXPECT_NE(refused.exitCode(), 0);
    EXPECT_TRUE(pack.open(path, QRectF(), &error)) << "a refused run leaves the earlier file alone";
}
