#include "map/MBTilesPack.h"

#include "map/TileMath.h"
#include "platform/Database.h"

#include <QDir>
#include <QFileInfo>
#include <QLoggingCategory>

Q_LOGGING_CATEGORY(lcMapTiles, "velmora.map")

MBTilesPack::MBTilesPack() = default;
MBTilesPack::~MBTilesPack() = default;
MBTilesPack::MBTilesPack(MBTilesPack &&) noexcept = default;
MBTilesPack &MBTilesPack::operator=(MBTilesPack &&) noexcept = default;

namespace {

// "left,bottom,right,top" in degrees, as the metadata writes bounds.
QRectF parseBounds(const QString &text)
{
    const QStringList parts = text.split(QLatin1Char(','));
    if (parts.size() != 4)
        return {};
    double values[4];
    for (int i = 0; i < 4; ++i) {
        bool ok = false;
        values[i] = parts.at(i).trimmed().toDouble(&ok);
        if (!ok)
            return {};
    }
    return QRectF(QPointF(values[0], values[1]), QPointF(values[2], values[3])).normalized();
}

}

bool MBTilesPack::open(const QString &path, const QRectF &expectedRegion, QString *error)
{
    m_database.reset();
    const auto refuse = [&](const QString &why) {
        *error = QStringLiteral("%1: %2").arg(QFileInfo(path).fileName(), why);
        return false;
    };
    if (!QFileInfo(path).isFile() || QFileInfo(path).size() == 0)
        return refuse(QStringLiteral("no such file, or empty"));
    auto database = std::make_unique<Database>(path);
    if (!database->openWithFlags(Database::ReadOnly))
        return refuse(database->lastErrorMessage());
    // Whether "tiles" is a table or a view over deduplicated pictures doesn't matter; its columns do.
    if (!database->columnExists(QStringLiteral("name"), QStringLiteral("metadata"))
        || !database->columnExists(QStringLiteral("value"), QStringLiteral("metadata")))
        return refuse(QStringLiteral("not an MBTiles file (no metadata)"));
    for (const char *column : {"zoom_level", "tile_column", "tile_row", "tile_data"})
        if (!database->columnExists(QString::fromLatin1(column), QStringLiteral("tiles")))
            return refuse(QStringLiteral("not an MBTiles file (tiles has no %1)").arg(QString::fromLatin1(column)));
    QHash<QString, QString> metadata;
    const bool read = database->forEachRow(QStringLiteral("SELECT name, value FROM metadata"), {}, [&](const ResultSet &row) {
        metadata.insert(row.stringForColumn(0), row.stringForColumn(1));
        return metadata.size() < 1000;
    });
    if (!read)
        return refuse(database->lastErrorMessage());
    const QString format = metadata.value(QStringLiteral("format"), QStringLiteral("png"));
    const bool vector = format == QLatin1String("pbf");
    if (!vector && format != QLatin1String("png") && format != QLatin1String("jpg") && format != QLatin1String("jpeg")
        && format != QLatin1String("webp"))
        return refuse(QStringLiteral("tiles of format \"%1\" are neither pictures nor vector tiles").arg(format));
    int minZoom = -1, maxZoom = -1;
    database->forEachRow(QStringLiteral("SELECT MIN(zoom_level), MAX(zoom_level) FROM tiles"), {}, [&](const ResultSet &row) {
        if (!row.columnIsNull(0)) {
            minZoom = row.intForColumn(0);
            maxZoom = row.intForColumn(1);
        }
        return false;
    });
    if (database->hadError())
        return refuse(database->lastErrorMessage());
    if (minZoom < 0 || maxZoom > 22 || minZoom > maxZoom)
        return refuse(QStringLiteral("no tiles"));
    const QRectF bounds = parseBounds(metadata.value(QStringLiteral("bounds")));
    if (!expectedRegion.isEmpty() && bounds.isValid() && !bounds.intersects(expectedRegion))
        return refuse(QStringLiteral("its tiles are for another region (%1)").arg(metadata.value(QStringLiteral("bounds"))));
    m_database = std::move(database);
    m_path = path;
    m_minZoom = minZoom;
    m_maxZoom = maxZoom;
    m_vector = vector;
    m_loggedBadTile = false;
    return true;
}

QByteArray MBTilesPack::tileData(int zoom, int column, int row)
{
    if (!m_database || zoom < m_minZoom || zoom > m_maxZoom || column < 0 || row < 0 || column >= (1 << zoom) || row >= (1 << zoom))
        return {};
    QByteArray data;
    m_database->forEachRow(QStringLiteral("SELECT tile_data FROM tiles WHERE zoom_level = ? AND tile_column = ? AND tile_row = ?"),
                           {zoom, column, TileMath::tmsRow(zoom, row)}, [&](const ResultSet &result) {
                               data = result.dataForColumn(0);
                               return false;
                           });
    return data;
}

QImage MBTilesPack::tile(int zoom, int column, int row)
{
    const QByteArray data = tileData(zoom, column, row);
    if (data.isEmpty())
        return {};
    QImage image = QImage::fromData(data);
    if (image.isNull() && !m_loggedBadTile) {
        m_loggedBadTile = true;
        qCWarning(lcMapTiles) << "base map" << m_path << "holds a tile that is not a picture, at zoom" << zoom << "column" << column
                              << "row" << row << "; such tiles show the background";
    }
    return image;
}

QStringList MBTilesPack::findIn(const QString &directory)
{
    QStringList paths;
    for (const QString &name : QDir(directory).entryList({QStringLiteral("*.mbtiles")}, QDir::Files | QDir::Readable, QDir::Name))
        paths.append(QDir(directory).filePath(name));
    return paths;
}
