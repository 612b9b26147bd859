#pragma once

#include <QImage>
#include <QRectF>
#include <QString>

#include <memory>

class Database;

// A base map in an MBTiles 1.3 file: PNG or JPEG tiles (a raster pack) or gzipped vector
// tiles (a street map, format "pbf") by zoom, column and TMS row, read with the plain (unkeyed)
// SQL API. A file that is missing, empty, damaged, of another
// schema or for another part of the world is refused once, with the reason, and the view then
// draws its plain background.
class MBTilesPack
{
public:
    MBTilesPack();
    ~MBTilesPack();
    MBTilesPack(MBTilesPack &&) noexcept;
    MBTilesPack &operator=(MBTilesPack &&) noexcept;

    // Opens the file and checks it can serve tiles around `expectedRegion` (longitude x,
    // latitude y; an empty rectangle accepts any region). False with `error` set otherwise.
    bool open(const QString &path, const QRectF &expectedRegion, QString *error);
    bool isOpen() const { return m_database != nullptr; }
    const QString &path() const { return m_path; }
    int minZoom() const { return m_minZoom; }
    int maxZoom() const { return m_maxZoom; }
    bool isVector() const { return m_vector; }

    // The tile at zoom, column and row (rows counted from the north, as the view counts them).
    // Null when the pack has none or its picture doesn't decode; the first undecodable one is
    // logged.
    QImage tile(int zoom, int column, int row);
    // The tile's stored bytes, whatever they are; empty when the pack has none there.
    QByteArray tileData(int zoom, int column, int row);

    // The packs in `directory` ("*.mbtiles"), by name.
    static QStringList findIn(const QString &directory);

private:
    std::unique_ptr<Database> m_database;
    QString m_path;
    int m_minZoom = 0;
    int m_maxZoom = 0;
    bool m_vector = false;
    bool m_loggedBadTile = false;
};
