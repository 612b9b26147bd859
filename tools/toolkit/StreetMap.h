#pragma once

#include <QMap>
#include <QString>

struct StreetMapOptions {
    int maxZoom = 14;
    int minZoom = 8;
};

struct StreetMapStats {
    int tiles = 0;
    qint64 bytes = 0;
    qint64 milliseconds = 0;
    QMap<int, int> tilesPerZoom;
};

// Turns an OpenStreetMap extract (.osm.pbf, or .osm XML, which osmium sorts into PBF first) into
// a street map: gzipped Mapbox Vector Tiles in an MBTiles file, made by tilemaker with our layer
// config and tag script. The file is written through a temporary name and checked before it
// replaces anything, so a refused or empty extract leaves a good file where it stood.
bool writeStreetMap(const QString &extract, const QString &path, const StreetMapOptions &options, StreetMapStats &stats,
                    QString *error);
