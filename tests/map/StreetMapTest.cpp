#include "map/LabelPlacer.h"
#include "map/MapView.h"
#include "map/StreetTiles.h"
#include "map/TilePacks.h"
#include "map/VectorStyle.h"
#include "map/VectorTile.h"
#include "map/VectorTileRenderer.h"
#include "platform/Compression.h"

#include <QDir>
#include <QQuickWindow>
#include <QTest>
#include <QTemporaryDir>

#include <protozero/pbf_writer.hpp>

#include <gtest/gtest.h>

namespace {

// A vector tile written field by field, as tilemaker writes one.
struct Feature {
    int type;
    std::vector<uint32_t> geometry;
    std::vector<uint32_t> tags;
};

struct Layer {
    std::string name;
    std::vector<Feature> features;
    std::vector<std::string> keys;
    std::vector<std::string> values;
    std::vector<uint64_t> numbers; // uint values, after the strings
};

QByteArray mvt(const std::vector<Layer> &layers)
{
    std::string data;
    protozero::pbf_writer tile(data);
    for (const Layer &layer : layers) {
        protozero::pbf_writer out(tile, 3);
        out.add_uint32(15, 2);
        out.add_string(1, layer.name);
        for (const Feature &feature : layer.features) {
            protozero::pbf_writer f(out, 2);
            f.add_packed_uint32(2, feature.tags.begin(), feature.tags.end());
            f.add_enum(3, feature.type);
            f.add_packed_uint32(4, feature.geometry.begin(), feature.geometry.end());
        }
        for (const std::string &key : layer.keys)
            out.add_string(3, key);
        for (const std::string &value : layer.values) {
            protozero::pbf_writer v(out, 4);
            v.add_string(1, value);
        }
        for (uint64_t number : layer.numbers) {
            protozero::pbf_writer v(out, 4);
            v.add_uint64(5, number);
        }
        out.add_uint32(5, 4096);
    }
    return QByteArray::fromStdString(data);
}

uint32_t command(uint32_t id, uint32_t count) { return id | (count << 3); }
uint32_t zz(int32_t n) { return uint32_t((n << 1) ^ (n >> 31)); }

// A line through the points, in the format's deltas.
std::vector<uint32_t> line(const std::vector<QPoint> &points)
{
    std::vector<uint32_t> out{command(1, 1), zz(points[0].x()), zz(points[0].y()), command(2, uint32_t(points.size() - 1))};
    for (size_t i = 1; i < points.size(); ++i)
        out.insert(out.end(), {zz(points[i].x() - points[i - 1].x()), zz(points[i].y() - points[i - 1].y())});
    return out;
}

// A closed ring: MoveTo, LineTo the rest, ClosePath; `from` is where the cursor stands.
std::vector<uint32_t> ring(const std::vector<QPoint> &points, QPoint from = {})
{
    std::vector<uint32_t> out{command(1, 1), zz(points[0].x() - from.x()), zz(points[0].y() - from.y()), command(2, uint32_t(points.size() - 1))};
    for (size_t i = 1; i < points.size(); ++i)
        out.insert(out.end(), {zz(points[i].x() - points[i - 1].x()), zz(points[i].y() - points[i - 1].y())});
    out.push_back(command(7, 1));
    return out;
}

// One tertiary street across the middle of the tile, named.
QByteArray streetTile(const std::string &name = "Línea")
{
    return mvt({{"road", {{2, line({{-64, 2048}, {4160, 2048}}), {0, 0, 1, 1}}}, {"class", "name"}, {"tertiary", name}, {}}});
}

int pixelsLike(const QImage &image, const QColor &color, int tolerance = 6)
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            const QColor here = image.pixelColor(x, y);
            count += here.alpha() == 255 && std::abs(here.red() - color.red()) <= tolerance
                     && std::abs(here.green() - color.green()) <= tolerance && std::abs(here.blue() - color.blue()) <= tolerance;
        }
    return count;
}

bool isRoad(const QImage &image, int x, int y) { return image.pixelColor(x, y) == VectorStyle::road(QStringLiteral("tertiary"), 16)->color; }

}

// Catches: deltas summed from zero per command instead of per feature, zig-zag decoded as
// plain numbers, rings left open, holes lost, several points read as one, numbers among the
// attributes dropped, and a gzipped tile read differently from a plain one.
TEST(VectorTiles, GeometryCommandsRingsHolesAndAttributesDecode)
{
    const std::vector<uint32_t> outer = ring({{0, 0}, {100, 0}, {100, 100}, {0, 100}});
    std::vector<uint32_t> twoAreas = outer;
    const std::vector<uint32_t> second = ring({{200, 200}, {400, 200}, {400, 400}, {200, 400}}, {0, 100});
    const std::vector<uint32_t> hole = ring({{250, 250}, {250, 350}, {350, 350}, {350, 250}}, {200, 400});
    twoAreas.insert(twoAreas.end(), second.begin(), second.end());
    twoAreas.insert(twoAreas.end(), hole.begin(), hole.end());
    const QByteArray bytes = mvt({
        {"road", {{2, line({{10, 20}, {15, 17}, {20, 20}}), {0, 0, 1, 1, 2, 2}}}, {"class", "name", "lanes"}, {"street", "Línea"}, {2}},
        {"water", {{3, twoAreas, {}}}, {}, {}, {}},
        {"place", {{1, {command(1, 2), zz(5), zz(6), zz(-2), zz(4)}, {}}}, {}, {}, {}},
    });
    for (const QByteArray &stored : {bytes, Compression::compress(bytes, Compression::Format::Gzip)}) {
        VectorTile tile;
        QString error;
        ASSERT_TRUE(decodeVectorTile(stored, tile, &error)) << error.toStdString();
        ASSERT_EQ(tile.layers.size(), 3u);
        const VectorFeature &road = tile.layer(QLatin1StringView("road"))->features.at(0);
        EXPECT_EQ(road.type, VectorFeature::Type::Line);
        EXPECT_EQ(road.parts, QList<QPolygonF>{QPolygonF({QPointF(10, 20), QPointF(15, 17), QPointF(20, 20)})});
        EXPECT_EQ(road.attribute(QLatin1StringView("name")), QStringLiteral("Línea"));
        EXPECT_EQ(road.attribute(QLatin1StringView("lanes")), QStringLiteral("2"));
        const VectorFeature &water = tile.layer(QLatin1StringView("water"))->features.at(0);
        ASSERT_EQ(water.parts.size(), 3);
        for (const QPolygonF &part : water.parts)
            EXPECT_EQ(part.first(), part.last());
        EXPECT_EQ(water.parts.at(1).first(), QPointF(200, 200));
        EXPECT_EQ(water.parts.at(2).at(1), QPointF(250, 350));
        const VectorFeature &places = tile.layer(QLatin1StringView("place"))->features.at(0);
        EXPECT_EQ(places.parts, (QList<QPolygonF>{QPolygonF({QPointF(5, 6)}), QPolygonF({QPointF(3, 10)})}));
    }
}

// Catches a damaged or hostile tile that crashes, hangs or is half taken: each is refused whole
// with its reason, and a layer nobody draws is no fault.
TEST(VectorTiles, DamagedAndHostileTilesAreRefusedWithAReason)
{
    const QDir corpus(QStringLiteral(VELMORA_FUZZ_CORPUS "/vector-tile"));
    const QStringList names = corpus.entryList(QDir::Files);
    ASSERT_GE(names.size(), 10);
    for (const QString &name : names) {
        QFile file(corpus.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        VectorTile tile;
        QString error;
        const bool good = name.startsWith(QLatin1String("good")) || name.startsWith(QLatin1String("unknown-layer"));
        EXPECT_EQ(decodeVectorTile(file.readAll(), tile, &error), good) << name.toStdString() << ": " << error.toStdString();
        EXPECT_EQ(error.isEmpty(), good) << name.toStdString();
        EXPECT_EQ(tile.layers.empty(), !good) << name.toStdString();
    }
    // Fewer points than the budget pass; one more than it is refused.
    std::vector<uint32_t> many{command(1, 1), 0, 0, command(2, 99)};
    for (int i = 0; i < 99; ++i)
        many.insert(many.end(), {2, 2});
    const QByteArray bytes = mvt({{"road", {{2, many, {}}}, {}, {}, {}}});
    VectorTile tile;
    QString error;
    EXPECT_TRUE(decodeVectorTile(bytes, tile, &error, {1 << 20, 100, 10}));
    EXPECT_FALSE(decodeVectorTile(bytes, tile, &error, {1 << 20, 99, 10}));
}

// Catches streets shown at the country's zoom, widths that don't grow, minor roads drawn over
// major ones, casing on a footpath, and labels for streets too small to read.
TEST(VectorStyle, ClassesAppearAtTheirZoomsAndWidenWithIt)
{
    EXPECT_FALSE(VectorStyle::road(QStringLiteral("street"), 12.4));
    ASSERT_TRUE(VectorStyle::road(QStringLiteral("street"), 13));
    EXPECT_TRUE(VectorStyle::road(QStringLiteral("motorway"), 8));
    EXPECT_FALSE(VectorStyle::road(QStringLiteral("runway"), 16));
    EXPECT_GT(VectorStyle::road(QStringLiteral("street"), 16)->width, 2 * VectorStyle::road(QStringLiteral("street"), 14)->width);
    EXPECT_GT(VectorStyle::road(QStringLiteral("primary"), 15)->width, VectorStyle::road(QStringLiteral("street"), 15)->width);
    EXPECT_GT(VectorStyle::road(QStringLiteral("motorway"), 15)->order, VectorStyle::road(QStringLiteral("street"), 15)->order);
    const auto street = VectorStyle::road(QStringLiteral("street"), 16);
    EXPECT_TRUE(street->casing.isValid());
    EXPECT_GT(street->casingWidth, street->width);
    EXPECT_FALSE(VectorStyle::road(QStringLiteral("street"), 12.9 + 0.1)->dashed);
    const auto path = VectorStyle::road(QStringLiteral("path"), 16);
    EXPECT_TRUE(path->dashed);
    EXPECT_FALSE(path->casing.isValid());
    EXPECT_FALSE(VectorStyle::waterway(QStringLiteral("stream"), 12));
    EXPECT_TRUE(VectorStyle::waterway(QStringLiteral("river"), 9));
    EXPECT_TRUE(VectorStyle::landuseFill(QStringLiteral("park")).isValid());
    EXPECT_FALSE(VectorStyle::landuseFill(QStringLiteral("quarry")).isValid());
    EXPECT_EQ(VectorStyle::roadLabelZoom(QStringLiteral("street")), 15.0);
    EXPECT_LT(*VectorStyle::roadLabelZoom(QStringLiteral("primary")), *VectorStyle::roadLabelZoom(QStringLiteral("street")));
}

// Catches labels drawn over each other, a label cut by the tile's edge, a name that never finds
// room on a street made of short segments, and names upside down.
TEST(Labels, NeverOverlapNorCrossTheTileEdgeAndReadLeftToRight)
{
    LabelPlacer placer(QRectF(0, 0, 256, 256));
    EXPECT_TRUE(placer.place(LabelPlacer::box(QPointF(128, 128), QSizeF(80, 14), 0)));
    EXPECT_FALSE(placer.place(LabelPlacer::box(QPointF(150, 132), QSizeF(80, 14), 0)));
    EXPECT_FALSE(placer.place(LabelPlacer::box(QPointF(128, 128), QSizeF(80, 14), 90)));
    EXPECT_TRUE(placer.place(LabelPlacer::box(QPointF(128, 60), QSizeF(80, 14), 0)));
    EXPECT_FALSE(placer.place(LabelPlacer::box(QPointF(240, 200), QSizeF(80, 14), 0)));  // past the right edge
    EXPECT_FALSE(placer.place(LabelPlacer::box(QPointF(128, 250), QSizeF(20, 14), 30))); // its turned box crosses the bottom
    EXPECT_TRUE(placer.place(LabelPlacer::box(QPointF(40, 200), QSizeF(60, 14), 45)));
    EXPECT_EQ(placer.placed().size(), 3);

    // Six short collinear segments and a turn: the straight part counts whole, cut by the tile.
    const QPolygonF street({QPointF(-40, 100), QPointF(0, 100), QPointF(40, 100), QPointF(80, 100), QPointF(120, 100),
                            QPointF(160, 100), QPointF(160, 180)});
    const std::optional<QLineF> run = longestStraightRun(street, QRectF(0, 0, 256, 256));
    ASSERT_TRUE(run);
    EXPECT_DOUBLE_EQ(run->length(), 160);
    EXPECT_EQ(run->p1(), QPointF(0, 100));
    EXPECT_FALSE(longestStraightRun(QPolygonF({QPointF(300, 0), QPointF(400, 10)}), QRectF(0, 0, 256, 256)));
    EXPECT_DOUBLE_EQ(readableAngle(QLineF(100, 0, 0, 0)), 0);
    EXPECT_DOUBLE_EQ(readableAngle(QLineF(0, 100, 0, 0)), -90);
    EXPECT_DOUBLE_EQ(readableAngle(QLineF(0, 0, 0, 100)), -90);
    EXPECT_DOUBLE_EQ(readableAngle(QLineF(0, 0, 10, 10)), 45);
}

// Catches a street drawn off its line, a tile zoomed past the pack's last zoom by stretching
// pixels instead of drawing the vectors at the new scale, and a name that doesn't show.
TEST(StreetRendering, AStreetIsDrawnWhereItRunsNamedAndSharpPastTheLastZoom)
{
    VectorTile tile;
    QString error;
    ASSERT_TRUE(decodeVectorTile(streetTile("Independencia"), tile, &error));
    const QImage whole = renderVectorTile(tile, {13, QRectF(0, 0, 1, 1), 256, 1});
    EXPECT_TRUE(isRoad(whole, 20, 128));
    EXPECT_EQ(whole.pixelColor(20, 100).alpha(), 0); // off the street: the base map shows through
    EXPECT_EQ(pixelsLike(whole, VectorStyle::labelColor(), 40), 0) << "no names of tertiary roads at zoom 13";

    // Zoom 16 shows a quarter of the zoom-14 tile: the street runs at y 128 of the quarter that
    // starts at three eighths down.
    const QImage deeper = renderVectorTile(tile, {16, QRectF(0.25, 0.375, 0.25, 0.25), 256, 1});
    const double width = VectorStyle::road(QStringLiteral("tertiary"), 16)->width;
    for (int x : {5, 250}) {
        EXPECT_TRUE(isRoad(deeper, x, 128)) << x;
        EXPECT_TRUE(isRoad(deeper, x, 128 + int(width / 2) - 1)) << x;
        // Stretched pixels from zoom 14 would be four times as wide as they were drawn there.
        EXPECT_FALSE(isRoad(deeper, x, 128 + int(width / 2) + 3)) << x;
    }
    EXPECT_GT(pixelsLike(deeper, VectorStyle::labelColor(), 40), 20) << "the street's name along it";
    const QImage hiDpi = renderVectorTile(tile, {16, QRectF(0.25, 0.375, 0.25, 0.25), 256, 2});
    EXPECT_EQ(hiDpi.width(), 512);
    EXPECT_EQ(hiDpi.devicePixelRatio(), 2);

    // A house number shows where its door is, from zoom 18 only.
    VectorTile numbered;
    ASSERT_TRUE(decodeVectorTile(mvt({{"housenumber", {{1, {command(1, 1), zz(1024), zz(1024)}, {0, 0}}}, {"number"}, {"193"}, {}}}),
                                 numbered, &error));
    const auto numberPixels = [&](double zoom) {
        const QImage image = renderVectorTile(numbered, {zoom, QRectF(0, 0, 1, 1), 256, 1});
        int ink = 0;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                ink += qAlpha(image.pixel(x, y)) > 200 && qGray(image.pixel(x, y)) < 200;
        return ink;
    };
    EXPECT_EQ(numberPixels(17), 0);
    EXPECT_GT(numberPixels(18), 10);
}

// Catches a damaged tile that stops the map (or is asked for again and again), a tile past the
// pack's last zoom that stays empty, and a picture pack taken for a street map or the reverse.
TEST(StreetTiles, ABadTileIsSkippedTheRestDrawAndDeeperZoomsComeFromTheLastOne)
{
    QTemporaryDir dir;
    const QRectF country(-85.2, 19.6, 11.2, 3.8);
    const QByteArray good = Compression::compress(streetTile(), Compression::Format::Gzip);
    const QString path = writePack(dir.filePath(QStringLiteral("streets.mbtiles")),
                                   {{14, 4440, 16383 - 7150, good},
                                    {14, 4441, 16383 - 7150, good.left(good.size() / 2)},
                                    {14, 4442, 16383 - 7150, QByteArray("\x1f\x8b not gzip")}},
                                   QStringLiteral("-85,19,-74,24"), QStringLiteral("pbf"));
    StreetTiles streets;
    QString error;
    ASSERT_TRUE(streets.open(path, country, &error)) << error.toStdString();
    EXPECT_EQ(streets.maxZoom(), 14);
    for (int column : {4440, 4441, 4442, 4443})
        EXPECT_TRUE(streets.tile(14, column, 7150, 1).isNull()) << "asked, not waited for";
    EXPECT_TRUE(streets.tile(16, 4440 * 4 + 1, 7150 * 4 + 2, 1).isNull());
    streets.waitForDone();
    EXPECT_EQ(streets.pendingCount(), 0);
    EXPECT_EQ(streets.badTileCount(), 2);
    EXPECT_TRUE(isRoad(streets.tile(14, 4440, 7150, 1), 20, 128));
    for (int column : {4441, 4442, 4443})
        EXPECT_EQ(streets.tile(14, column, 7150, 1).width(), 1) << "known empty: not asked for again";
    EXPECT_EQ(streets.pendingCount(), 0);
    const QImage deeper = streets.tile(16, 4440 * 4 + 1, 7150 * 4 + 2, 1);
    ASSERT_EQ(deeper.width(), 256);
    EXPECT_TRUE(isRoad(deeper, 10, 0) || isRoad(deeper, 10, 1)) << "the street runs along this tile's top edge";

    // A dense screen's view of sixteen tiles outweighs the pictures' budget; they all stay, or the
    // view would have them drawn again every frame.
    for (int pass = 0; pass < 2; ++pass) {
        int kept = 0;
        for (int column = 4440 * 4; column < 4440 * 4 + 4; ++column)
            for (int row = 7150 * 4; row < 7150 * 4 + 4; ++row)
                kept += !streets.tile(16, column, row, 3).isNull();
        streets.waitForDone();
        EXPECT_EQ(kept, pass == 0 ? 0 : 16) << "pass " << pass;
    }
    EXPECT_GT(streets.pictureBytes(), StreetTiles::pictureBudgetBytes);

    // A burst of asks, as a fast pinch through the zooms makes: the queue drains and the latest
    // asked are all drawn (the first may be dropped as off screen by then).
    const auto burst = [](int i) { return QPoint(4440 * 32 + i % 32, 7150 * 32 + i / 32); };
    for (int i = 0; i < 300; ++i)
        streets.tile(19, burst(i).x(), burst(i).y(), 0.25);
    streets.waitForDone();
    EXPECT_EQ(streets.pendingCount(), 0);
    int latest = 0;
    for (int i = 100; i < 300; ++i)
        latest += !streets.peek(19, burst(i).x(), burst(i).y(), 0.25).isNull();
    EXPECT_EQ(latest, 200);

    const QString pictures = writePack(dir.filePath(QStringLiteral("land.mbtiles")), {{5, 8, 18, png(Qt::blue)}});
    StreetTiles wrong;
    EXPECT_FALSE(wrong.open(pictures, country, &error));
    MapView view;
    EXPECT_TRUE(view.setTilePacks({path, pictures}, country));
    EXPECT_TRUE(view.hasStreetMap());
    EXPECT_EQ(view.tilePackPath(), pictures);
    EXPECT_TRUE(view.setTilePacks({path}, country));
    EXPECT_TRUE(view.hasStreetMap());
    EXPECT_TRUE(view.tilePackPath().isEmpty());
}

// Catches street pictures placed where another zoom's picture stood: zooming out and back in
// shows the same streets in the same places.
TEST(StreetTiles, ZoomingAwayAndBackDrawsTheSameStreets)
{
    QQuickWindow window;
    window.resize(390, 844);
    MapView view(window.contentItem());
    view.setY(56);
    view.setSize(QSizeF(390, 788));
    ASSERT_TRUE(view.setTilePacks({QStringLiteral(VELMORA_DEMO_STREETMAP)}, QRectF(-85.2, 19.6, 11.2, 3.8)));
    window.show();
    const auto shown = [&](double zoom) {
        view.setVisibleRegion({21.830815, -78.8230, float(zoom)});
        for (int i = 0; i < 3; ++i) {
            QTest::qWait(50);
            view.streetTiles().waitForDone();
        }
        QTest::qWait(100);
        return window.grabWindow();
    };
    const QImage first = shown(16);
    shown(14);
    const QImage again = shown(16);
    EXPECT_EQ(first, again);
}
