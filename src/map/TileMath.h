#pragma once

#include <QPointF>
#include <QRectF>

// Web Mercator as raster tile packs use it. "World" coordinates run from 0 to 1 across the
// whole map, x eastwards from longitude -180 and y southwards from the top row of tiles (about
// latitude 85.05); at zoom z the world is 256 * 2^z pixels wide and holds 2^z x 2^z tiles.
namespace TileMath {

constexpr double tileSize = 256.0;
// The latitude the projection stops at: beyond it the world would not be square.
constexpr double maxLatitude = 85.05112878;

QPointF worldFromCoordinate(double latitude, double longitude);
// The inverse: x() is the longitude, y() the latitude.
QPointF coordinateFromWorld(const QPointF &world);
// World pixels across the map at a (fractional) zoom.
double worldPixels(double zoom);
// Packs number rows from the south (TMS); the tile grid counts them from the north.
int tmsRow(int zoom, int row);
// The tile that holds a world point at an integer zoom, clamped to the grid.
QPoint tileAt(const QPointF &world, int zoom);
// The world rectangle a tile covers.
QRectF tileRect(int zoom, int column, int row);
// Whether a coordinate can be drawn at all (the catalogue's own rule for a place's position).
bool isValidCoordinate(double latitude, double longitude);

}
