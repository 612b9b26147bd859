#pragma once

#include <QByteArray>
#include <QList>
#include <QPolygonF>
#include <QString>

#include <vector>

// One Mapbox Vector Tile, decoded: layers of features whose geometry is in the layer's own
// coordinates (0..extent across the tile, y downwards; a little beyond for the tile's buffer).
struct VectorFeature {
    enum class Type { Unknown = 0, Point = 1, Line = 2, Polygon = 3 };
    Type type = Type::Unknown;
    // Points: one part per point. Lines: one part per line. Polygons: rings, each closed, an
    // outer ring first and its holes after it, as the format orders them.
    QList<QPolygonF> parts;
    // The feature's attributes as text (numbers written out), by key.
    QList<std::pair<QString, QString>> attributes;

    QString attribute(QLatin1StringView key) const;
};

struct VectorLayer {
    QString name;
    int extent = 4096;
    std::vector<VectorFeature> features;
};

struct VectorTile {
    std::vector<VectorLayer> layers;
    const VectorLayer *layer(QLatin1StringView name) const;
};

// Work a single tile may cost: a damaged or hostile one is refused, never followed.
struct VectorTileLimits {
    qsizetype maxInflatedBytes = 4 * 1024 * 1024;
    qsizetype maxPoints = 250000;
    qsizetype maxFeatures = 50000;
};

// Decodes a tile as a pack stores it, gzipped or not. False with the reason when the bytes are
// not a vector tile: bad gzip, a truncated or malformed protobuf, a geometry command running past
// its data, an attribute index out of range, or more work than the limits allow.
bool decodeVectorTile(const QByteArray &data, VectorTile &tile, QString *error, const VectorTileLimits &limits = {});
