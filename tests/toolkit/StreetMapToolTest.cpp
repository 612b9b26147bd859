#include "catalogue/Records.h"
#include "map/MBTilesPack.h"
#include "map/TileMath.h"
#include "map/VectorTile.h"
#include "platform/Database.h"
#include "toolkit/DemoGenerator.h"
#include "toolkit/DemoTowns.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

// Two named streets crossing, a park and a river, in Havana: what a publisher's extract holds.
const char smallExtract[] = R"(<?xml version="1.0" encoding="UTF-8"?>
<osm version="0.6" generator="hand">
 <node id="1" version="1" lat="23.1300" lon="-82.3900"/>
 <node id="2" version="1" lat="23.1300" lon="-82.3800"/>
 <node id="3" version="1" lat="23.1250" lon="-82.3850"/>
 <node id="4" version="1" lat="23.1350" lon="-82.3850"/>
 <node id="5" version="1" lat="23.1310" lon="-82.3890"/>
 <node id="6" version="1" lat="23.1310" lon="-82.3860"/>
 <node id="7" version="1" lat="23.1340" lon="-82.3860"/>
 <node id="8" version="1" lat="23.1340" lon="-82.3890"/>
 <node id="9" version="1" lat="23.1200" lon="-82.3950"/>
 <node id="10" version="1" lat="23.1400" lon="-82.3750"/>
 <node id="11" version="1" lat="23.1290" lon="-82.3840"><tag k="place" v="suburb"/><tag k="name" v="Vedado"/></node>
 <way id="1" version="1"><nd ref="1"/><nd ref="2"/><tag k="highway" v="residential"/><tag k="name" v="Línea"/></way>
 <way id="2" version="1"><nd ref="3"/><nd ref="4"/><tag k="highway" v="primary"/><tag k="name" v="Calle 23"/></way>
 <way id="3" version="1"><nd ref="5"/><nd ref="6"/><nd ref="7"/><nd ref="8"/><nd ref="5"/><tag k="leisure" v="park"/><tag k="name" v="Parque Central"/></way>
 <way id="4" version="1"><nd ref="9"/><nd ref="10"/><tag k="waterway" v="river"/><tag k="name" v="Almendares"/></way>
</osm>
)";

void writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

struct ToolRun {
    int exitCode = -1;
    QByteArray out, err;
};

ToolRun basemap(const QStringList &arguments)
{
    QProcess tool;
    tool.start(QStringLiteral(VELMORA_CATALOGUE_TOOL), QStringList{QStringLiteral("basemap")} + arguments);
    EXPECT_TRUE(tool.waitForFinished(120000));
    return {tool.exitCode(), tool.readAllStandardOutput(), tool.readAllStandardError()};
}

bool haveTools()
{
    return !QStandardPaths::findExecutable(QStringLiteral("tilemaker")).isEmpty()
           && !QStandardPaths::findExecutable(QStringLiteral("osmium")).isEmpty();
}

}

// Catches: a street map written as pictures or not gzipped, streets without their names, a
// layer lost on the way (parks, rivers, place names), and tiles the app's decoder can't read.
TEST(StreetMapTool, AnExtractBecomesVectorTilesWithNamedStreets)
{
    if (!haveTools())
        GTEST_SKIP() << "tilemaker or osmium is not installed (scripts/setup installs them)";
    QTemporaryDir dir;
    const QString extract = dir.filePath(QStringLiteral("havana.osm"));
    writeFile(extract, smallExtract);
    const QString pack = dir.filePath(QStringLiteral("streets.mbtiles"));
    const ToolRun run = basemap({QStringLiteral("--osm"), extract, QStringLiteral("-o"), pack});
    ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();
    const QJsonObject report = QJsonDocument::fromJson(run.out).object();
    EXPECT_EQ(report.value(QStringLiteral("maxZoom")).toInt(), 14);
    EXPECT_GT(report.value(QStringLiteral("tiles")).toInt(), 6);

    MBTilesPack reader;
    QString error;
    ASSERT_TRUE(reader.open(pack, QRectF(-85.2, 19.6, 11.2, 3.8), &error)) << error.toStdString();
    EXPECT_TRUE(reader.isVector());
    EXPECT_EQ(reader.maxZoom(), 14);
    const QPoint where = TileMath::tileAt(TileMath::worldFromCoordinate(23.13, -82.385), 14);
    const QByteArray stored = reader.tileData(14, where.x(), where.y());
    EXPECT_TRUE(stored.startsWith("\x1f\x8b")) << "tiles are gzipped";
    VectorTile tile;
    ASSERT_TRUE(decodeVectorTile(stored, tile, &error)) << error.toStdString();
    QMultiMap<QString, QString> found; // layer -> name or class
    for (const VectorLayer &layer : tile.layers)
        for (const VectorFeature &feature : layer.features)
            found.insert(layer.name, feature.attribute(QLatin1StringView("name")) + QLatin1Char('/') + feature.attribute(QLatin1StringView("class")));
    EXPECT_TRUE(found.contains(QStringLiteral("road"), QStringLiteral("Línea/street"))) << found.values().join(u' ').toStdString();
    EXPECT_TRUE(found.contains(QStringLiteral("road"), QStringLiteral("Calle 23/primary")));
    EXPECT_TRUE(found.contains(QStringLiteral("landuse"), QStringLiteral("Parque Central/park")));
    EXPECT_TRUE(found.contains(QStringLiteral("water"), QStringLiteral("Almendares/river")));
    EXPECT_TRUE(found.contains(QStringLiteral("place"), QStringLiteral("Vedado/suburb")));
}

// Catches a refused, empty or garbage extract that leaves a broken file, or none, where a good
// street map stood, and a failure that doesn't say why.
TEST(StreetMapTool, ABadExtractIsRefusedAndTheGoodFileStays)
{
    if (!haveTools())
        GTEST_SKIP() << "tilemaker or osmium is not installed (scripts/setup installs them)";
    QTemporaryDir dir;
    const QString pack = dir.filePath(QStringLiteral("streets.mbtiles"));
    writeFile(dir.filePath(QStringLiteral("good.osm")), smallExtract);
    ASSERT_EQ(basemap({QStringLiteral("--osm"), dir.filePath(QStringLiteral("good.osm")), QStringLiteral("-o"), pack}).exitCode, 0);
    const QByteArray before = readFile(pack);
    writeFile(dir.filePath(QStringLiteral("empty.osm")), R"(<?xml version="1.0"?><osm version="0.6"></osm>)");
    writeFile(dir.filePath(QStringLiteral("garbage.osm")), "this is not OpenStreetMap data\n");
    writeFile(dir.filePath(QStringLiteral("garbage.osm.pbf")), QByteArray(3000, '\x07'));
    for (const char *name : {"empty.osm", "garbage.osm", "garbage.osm.pbf", "missing.osm.pbf"}) {
        const ToolRun run = basemap({QStringLiteral("--osm"), dir.filePath(QString::fromLatin1(name)), QStringLiteral("-o"), pack});
        EXPECT_NE(run.exitCode, 0) << name;
        EXPECT_TRUE(run.err.startsWith("velmora-catalogue: ")) << name << ": " << run.err.toStdString();
        EXPECT_EQ(readFile(pack), before) << name;
    }
    EXPECT_TRUE(QDir(dir.path()).entryList({QStringLiteral(".streetmap-*")}, QDir::Dirs | QDir::Hidden).isEmpty()) << "scratch left behind";
    EXPECT_NE(basemap({QStringLiteral("--osm"), dir.filePath(QStringLiteral("good.osm")), QStringLiteral("-o"), pack, QStringLiteral("--resolution"),
                       QStringLiteral("h")})
                  .exitCode,
              0);
}

// Catches a demo place whose pin is off the street its address names, or outside the block
// between the two streets the address gives.
TEST(DemoStreets, EveryPlaceLiesOnItsStreetBetweenItsCrossStreets)
{
    DemoOptions options;
    options.places = 600;
    const CatalogueData data = makeDemo(options);
    const QList<DemoTown> towns = demoTowns(options.onLand);
    const QStringList &eastWest = demoEastWestStreets();
    const QStringList &northSouth = demoNorthSouthStreets();
    const QRegularExpression address(QStringLiteral("^(.+) No\\. (\\d+) e/ (.+) y (.+)$"));
    int checked = 0;
    for (const QVariantMap &place : data.rows(QStringLiteral("restaurants"))) {
        const QRegularExpressionMatch match = address.match(place.value(QStringLiteral("address")).toString());
        ASSERT_TRUE(match.hasMatch()) << place.value(QStringLiteral("address")).toString().toStdString();
        const int county = place.value(QStringLiteral("county_id")).toInt();
        const auto town = std::find_if(towns.cbegin(), towns.cend(),
                                       [&](const DemoTown &t) { return (t.province + 1) * 100 + t.municipality + 1 == county; });
        ASSERT_NE(town, towns.cend());
        const double latitude = place.value(QStringLiteral("latitud")).toDouble();
        const double longitude = place.value(QStringLiteral("longitud")).toDouble();
        const QString street = match.captured(1);
        const bool runsEastWest = eastWest.contains(street);
        const QStringList &crossing = runsEastWest ? northSouth : eastWest;
        const int a = int(crossing.indexOf(match.captured(3))), b = int(crossing.indexOf(match.captured(4)));
        ASSERT_TRUE(a >= 0 && b == a + 1) << "the cross streets are neighbours";
        if (runsEastWest) {
            EXPECT_DOUBLE_EQ(latitude, town->latitudeOf(int(eastWest.indexOf(street))));
            EXPECT_GT(longitude, town->longitudeOf(a));
            EXPECT_LT(longitude, town->longitudeOf(b));
        } else {
            ASSERT_TRUE(northSouth.contains(street));
            EXPECT_DOUBLE_EQ(longitude, town->longitudeOf(int(northSouth.indexOf(street))));
            EXPECT_GT(latitude, town->latitudeOf(a));
            EXPECT_LT(latitude, town->latitudeOf(b));
        }
        ++checked;
    }
    EXPECT_EQ(checked, 600);
}
