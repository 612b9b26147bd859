#pragma once

#include <QList>
#include <QMap>
#include <QPolygonF>
#include <QRectF>
#include <QString>

// The base map the app draws under its pins: raster tiles of the country and the sea around it
// in an MBTiles 1.3 file. Shapes are in longitude (x) and latitude (y).
struct BaseMapLabel {
    QString text;
    double latitude = 0;
    double longitude = 0;
};

struct BaseMapData {
    QList<QPolygonF> country;    // closed land polygons of the country the guide covers
    QList<QPolygonF> neighbours; // closed land polygons of the lands around it
    QList<QPolygonF> shorelines; // open lines, drawn over the land's edge
    QList<BaseMapLabel> labels;  // the provinces' names at their capitals
};

struct BaseMapOptions {
    int maxZoom = 9;
    // The surroundings get tiles up to this zoom, enough for the country seen whole on a phone;
    // deeper zooms cover the country's own rectangle only.
    int surroundingsMaxZoom = 7;
    QRectF surroundings = QRectF(-88.0, 13.5, 18.0, 16.5);
    QRectF country = QRectF(-85.4, 19.3, 11.8, 4.4);
    QString resolution = QStringLiteral("h"); // GSHHG: c, l, i, h or f
};

struct BaseMapStats {
    int tiles = 0;
    int images = 0; // distinct tile pictures: identical sea (and inland) tiles are stored once
    qint64 bytes = 0;
    qint64 milliseconds = 0;
    QMap<int, int> tilesPerZoom;
};

// Reads the shapes with GMT: the country's polygons and its neighbours' from the Digital Chart
// of the World, shorelines from GSHHG at the options' resolution, labels from the demo geography.
bool loadBaseMapData(const BaseMapOptions &options, BaseMapData &data, QString *error);

// Renders every tile and writes the file through a temporary name, so a failed run leaves no
// half file where a good one stood.
bool writeBaseMap(const BaseMapData &data, const BaseMapOptions &options, const QString &path, BaseMapStats &stats,
                  QString *error);
