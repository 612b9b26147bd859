#pragma once

#include "map/VectorTile.h"

#include <QImage>
#include <QRectF>

// Draws a decoded vector tile into a picture of one display tile. `source` is the part of the
// vector tile the display tile shows, as fractions of it: the whole tile (0,0,1,1) at the pack's
// own zooms, a quarter of it one zoom deeper, and so on, so zooming past the pack's last zoom
// draws the same vectors sharp instead of stretching pixels. The picture is transparent where
// the street map has nothing, so the base map under it shows through.
struct VectorTileRendering {
    double zoom = 14;             // the display zoom: widths, classes and labels follow it
    QRectF source{0, 0, 1, 1};
    int logicalSize = 256;
    qreal devicePixelRatio = 1;
};

QImage renderVectorTile(const VectorTile &tile, const VectorTileRendering &rendering);
