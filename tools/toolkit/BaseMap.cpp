#include "BaseMap.h"

#include "DemoGeography.h"
#include "GmtShapes.h"
#include "ShapeClipping.h"
#include "map/TileMath.h"
#include "platform/Database.h"

#include <QBuffer>
#include <QCryptographicHash>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QFontMetricsF>
#include <QHash>
#include <QImage>
#include <QPainter>
#include <QPainterPath>

#include <QSet>

#include <algorithm>

namespace {

// The lands that show around the country in its surroundings (Digital Chart of the World codes).
const char neighbourCodes[] = "US.FL,MX,BZ,GT,HN,JM,HT,DO,BS,KY,TC";

const QColor seaColor(0xa8, 0xd0, 0xdc);
const QColor countryColor(0xf7, 0xf0, 0xdc);
const QColor neighbourColor(0xdd, 0xda, 0xd2);
const QColor shoreColor(0x7f, 0xa9, 0xb8);
const QColor labelColor(0x6b, 0x5f, 0x4e);
const QColor capitalColor(0xd9, 0x5b, 0x43);

// The zooms that name the provinces, and the text size at each. Closer in, a province's name
// says little, and a view zoomed past the pack's last level would blow the letters up.
constexpr int firstLabelZoom = 6;
constexpr int lastLabelZoom = 9;
double labelPixelSize(int zoom) { return zoom <= 6 ? 10.0 : zoom == 7 ? 12.0 : 13.0; }

struct Shapes {
    QList<QPolygonF> country, neighbours, lines;
};

QPolygonF toWorld(const QPolygonF &shape)
{
    QPolygonF world;
    world.reserve(shape.size());
    for (const QPointF &point : shape)
        world.append(TileMath::worldFromCoordinate(point.y(), point.x()));
    return world;
}

QRectF worldRect(const QRectF &region)
{
    return QRectF(TileMath::worldFromCoordinate(region.bottom(), region.left()), TileMath::worldFromCoordinate(region.top(), region.right()))
        .normalized();
}

Shapes clipped(const Shapes &shapes, const QRectF &rect)
{
    Shapes out;
    for (const QPolygonF &polygon : shapes.country)
        if (QPolygonF part = ShapeClipping::clipPolygon(polygon, rect); !part.isEmpty())
            out.country.append(part);
    for (const QPolygonF &polygon : shapes.neighbours)
        if (QPolygonF part = ShapeClipping::clipPolygon(polygon, rect); !part.isEmpty())
            out.neighbours.append(part);
    for (const QPolygonF &line : shapes.lines)
        ShapeClipping::clipPolyline(line, rect, out.lines);
    return out;
}

// A label placed at one zoom: where its text goes, in world pixels of that zoom.
struct PlacedLabel {
    QString text;
    QPointF capital;
    QRectF textRect;
};

QFont labelFont(int zoom)
{
    QFont font(QStringLiteral("Open Sans"));
    font.setPixelSize(int(labelPixelSize(zoom)));
    font.setWeight(QFont::DemiBold);
    return font;
}

// Places the names at one zoom, right of the capital or else left of it, and drops a name that
// would cover one placed before: the same decision for every tile, so names never break at a
// tile's edge.
QList<PlacedLabel> placeLabels(const QList<BaseMapLabel> &labels, int zoom)
{
    QList<PlacedLabel> placed;
    if (zoom < firstLabelZoom || zoom > lastLabelZoom)
        return placed;
    const QFontMetricsF metrics(labelFont(zoom));
    const double scale = TileMath::worldPixels(zoom);
    for (const BaseMapLabel &label : labels) {
        const QPointF capital = TileMath::worldFromCoordinate(label.latitude, label.longitude) * scale;
        const QSizeF size(metrics.horizontalAdvance(label.text) + 2, metrics.height());
        const QRectF right(QPointF(capital.x() + 5, capital.y() - size.height() / 2), size);
        const QRectF left(QPointF(capital.x() - 5 - size.width(), capital.y() - size.height() / 2), size);
        const auto free = [&](const QRectF &rect) {
            return std::none_of(placed.cbegin(), placed.cend(), [&](const PlacedLabel &other) { return other.textRect.intersects(rect); });
        };
        if (free(right))
            placed.append({label.text, capital, right});
        else if (free(left))
            placed.append({label.text, capital, left});
    }
    return placed;
}

QImage renderTile(const Shapes &shapes, const QList<PlacedLabel> &labels, int zoom, const QRectF &tile)
{
    const int size = int(TileMath::tileSize);
    QImage image(size, size, QImage::Format_RGB32);
    image.fill(seaColor);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    const double scale = TileMath::worldPixels(zoom);
    painter.scale(scale, scale);
    painter.translate(-tile.topLeft());
    painter.setPen(Qt::NoPen);
    painter.setBrush(neighbourColor);
    for (const QPolygonF &polygon : shapes.neighbours)
        painter.drawPolygon(polygon);
    painter.setBrush(countryColor);
    for (const QPolygonF &polygon : shapes.country)
        painter.drawPolygon(polygon);
    QPen shore(shoreColor, zoom >= 8 ? 1.2 : 0.8);
    shore.setCosmetic(true);
    painter.setPen(shore);
    painter.setBrush(Qt::NoBrush);
    for (const QPolygonF &line : shapes.lines)
        painter.drawPolyline(line);

    painter.resetTransform();
    const QPointF origin = tile.topLeft() * scale;
    const QRectF pixels(origin, QSizeF(size, size));
    painter.setFont(labelFont(zoom));
    for (const PlacedLabel &label : labels) {
        const QRectF reach = label.textRect.united(QRectF(label.capital - QPointF(4, 4), QSizeF(8, 8))).adjusted(-3, -3, 3, 3);
        if (!reach.intersects(pixels))
            continue;
        painter.setPen(QPen(Qt::white, 1.2));
        painter.setBrush(capitalColor);
        painter.drawEllipse(label.capital - origin, 3, 3);
        // A white halo keeps the name legible over the coast and the sea.
        QPainterPath text;
        const QRectF rect = label.textRect.translated(-origin);
        text.addText(rect.left() + 1, rect.top() + QFontMetricsF(painter.font()).ascent(), painter.font(), label.text);
        painter.strokePath(text, QPen(QColor(255, 255, 255, 220), 3, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.fillPath(text, labelColor);
    }
    return image;
}

class TileWriter
{
public:
    explicit TileWriter(Database &database)
        : m_database(database)
        , m_image(database.prepare(QStringLiteral("INSERT INTO images (tile_id, tile_data) VALUES (?, ?)")))
        , m_tile(database.prepare(QStringLiteral("INSERT INTO map (zoom_level, tile_column, tile_row, tile_id) VALUES (?, ?, ?, ?)")))
    {
    }
    bool isValid() const { return m_image.isValid() && m_tile.isValid(); }

    bool add(int zoom, int column, int row, const QImage &image, BaseMapStats &stats)
    {
        // Identical pictures (open sea, plain inland) are recognised by their pixels before
        // any PNG is made of them, and stored once.
        const QByteArray pixels(reinterpret_cast<const char *>(image.constBits()), image.sizeInBytes());
        const QString key = QString::fromLatin1(QCryptographicHash::hash(pixels, QCryptographicHash::Sha1).toHex());
        if (!m_known.contains(key)) {
            QByteArray png;
            QBuffer buffer(&png);
            buffer.open(QIODevice::WriteOnly);
            image.save(&buffer, "PNG");
            if (!m_image.run({key, png}))
                return false;
            m_known.insert(key);
            ++stats.images;
        }
        ++stats.tiles;
        ++stats.tilesPerZoom[zoom];
        return m_tile.run({zoom, column, TileMath::tmsRow(zoom, row), key});
    }

private:
    Database &m_database;
    Statement m_image;
    Statement m_tile;
    QSet<QString> m_known;
};

struct Renderer {
    const BaseMapOptions &options;
    QRectF surroundings, country;
    QHash<int, QList<PlacedLabel>> labels;
    TileWriter &writer;
    BaseMapStats &stats;
    bool ok = true;

    void visit(int zoom, int column, int row, const Shapes &parent)
    {
        const QRectF tile = TileMath::tileRect(zoom, column, row);
        const QRectF &region = zoom <= options.surroundingsMaxZoom ? surroundings : country;
        if (!ok || !tile.intersects(region))
            return;
        // Shapes are cut a few pixels outside the tile: the cut edges fall outside the picture.
        const double margin = 4.0 / TileMath::worldPixels(zoom);
        const Shapes shapes = clipped(parent, tile.adjusted(-margin, -margin, margin, margin));
        ok = writer.add(zoom, column, row, renderTile(shapes, labels.value(zoom), zoom, tile), stats);
        if (zoom >= options.maxZoom)
            return;
        for (int dy = 0; dy < 2; ++dy)
            for (int dx = 0; dx < 2; ++dx)
                visit(zoom + 1, column * 2 + dx, row * 2 + dy, shapes);
    }
};

QString boundsText(const QRectF &region)
{
    return QStringLiteral("%1,%2,%3,%4").arg(region.left()).arg(region.top()).arg(region.right()).arg(region.bottom());
}

}

bool loadBaseMapData(const BaseMapOptions &options, BaseMapData &data, QString *error)
{
    QByteArray dump;
    if (!runGmt({QStringLiteral("coast"), QStringLiteral("-ECU"), QStringLiteral("-M")}, dump, error))
        return false;
    for (const GmtSegment &segment : parseGmtDump(dump))
        data.country.append(segment.points);
    if (!runGmt({QStringLiteral("coast"), QStringLiteral("-E") + QString::fromLatin1(neighbourCodes), QStringLiteral("-M")}, dump, error))
        return false;
    for (const GmtSegment &segment : parseGmtDump(dump))
        if (QPolygonF part = ShapeClipping::clipPolygon(segment.points, options.surroundings); !part.isEmpty())
            data.neighbours.append(part);
    const QRectF &r = options.surroundings;
    const QString region = QStringLiteral("-R%1/%2/%3/%4").arg(r.left()).arg(r.right()).arg(r.top()).arg(r.bottom());
    if (!runGmt({QStringLiteral("coast"), region, QStringLiteral("-D") + options.resolution, QStringLiteral("-W"), QStringLiteral("-M")}, dump,
                error))
        return false;
    for (const GmtSegment &segment : parseGmtDump(dump))
        data.shorelines.append(segment.points);
    if (data.country.isEmpty() || data.shorelines.isEmpty()) {
        *error = QStringLiteral("gmt gave no shapes for the country");
        return false;
    }
    for (const DemoProvince &province : demoProvinces())
        data.labels.append({province.name, province.latitude, province.longitude});
    return true;
}

bool writeBaseMap(const BaseMapData &data, const BaseMapOptions &options, const QString &path, BaseMapStats &stats, QString *error)
{
    if (options.maxZoom < 0 || options.maxZoom > 16) {
        *error = QStringLiteral("--max-zoom takes a zoom from 0 to 16");
        return false;
    }
    QElapsedTimer timer;
    timer.start();
    const QString temporary = path + QStringLiteral(".part");
    QFile::remove(temporary);
    bool written = false;
    {
        Database database(temporary);
        if (!database.open()
            || !database.executeStatements(QStringLiteral(
                "PRAGMA journal_mode = OFF; PRAGMA synchronous = OFF; BEGIN;"
                "CREATE TABLE metadata (name TEXT, value TEXT);"
                "CREATE TABLE images (tile_id TEXT PRIMARY KEY, tile_data BLOB);"
                "CREATE TABLE map (zoom_level INTEGER, tile_column INTEGER, tile_row INTEGER, tile_id TEXT);"
                "CREATE UNIQUE INDEX map_index ON map (zoom_level, tile_column, tile_row);"
                "CREATE VIEW tiles AS SELECT map.zoom_level AS zoom_level, map.tile_column AS tile_column, map.tile_row AS tile_row,"
                " images.tile_data AS tile_data FROM map JOIN images ON images.tile_id = map.tile_id;"))) {
            *error = QStringLiteral("cannot write %1: %2").arg(temporary, database.lastErrorMessage());
            return false;
        }
        Shapes world;
        for (const QPolygonF &polygon : data.country)
            world.country.append(toWorld(polygon));
        for (const QPolygonF &polygon : data.neighbours)
            world.neighbours.append(toWorld(polygon));
        for (const QPolygonF &line : data.shorelines)
            world.lines.append(toWorld(line));
        TileWriter writer(database);
        Renderer renderer{options, worldRect(options.surroundings), worldRect(options.country), {}, writer, stats};
        for (int zoom = firstLabelZoom; zoom <= options.maxZoom; ++zoom)
            renderer.labels.insert(zoom, placeLabels(data.labels, zoom));
        renderer.ok = writer.isValid();
        renderer.visit(0, 0, 0, world);
        const QPointF centre = options.country.center();
        const QList<std::pair<QString, QString>> metadata = {
            {QStringLiteral("name"), QStringLiteral("Velmora base map")},
            {QStringLiteral("format"), QStringLiteral("png")},
            {QStringLiteral("type"), QStringLiteral("baselayer")},
            {QStringLiteral("version"), QStringLiteral("1.3")},
            {QStringLiteral("minzoom"), QStringLiteral("0")},
            {QStringLiteral("maxzoom"), QString::number(options.maxZoom)},
            {QStringLiteral("bounds"), boundsText(options.surroundings)},
            {QStringLiteral("center"), QStringLiteral("%1,%2,5").arg(centre.x()).arg(centre.y())},
            {QStringLiteral("description"), QStringLiteral("Land, sea, coast and province capitals")},
            {QStringLiteral("attribution"), QStringLiteral("Shorelines: GSHHG (LGPL); land: Digital Chart of the World, via GMT")},
        };
        Statement insert = database.prepare(QStringLiteral("INSERT INTO metadata (name, value) VALUES (?, ?)"));
        for (const auto &[name, value] : metadata)
            renderer.ok = renderer.ok && insert.run({name, value});
        insert = Statement();
        written = renderer.ok && database.executeStatements(QStringLiteral("COMMIT"));
        if (!written)
            *error = QStringLiteral("cannot write %1: %2").arg(temporary, database.lastErrorMessage());
    }
    if (!written) {
        QFile::remove(temporary);
        return false;
    }
    QFile::remove(path);
    if (!QFile::rename(temporary, path)) {
        *error = QStringLiteral("cannot move %1 to %2").arg(temporary, path);
        QFile::remove(temporary);
        return false;
    }
    stats.bytes = QFileInfo(path).size();
    stats.milliseconds = timer.elapsed();
    return true;
}
