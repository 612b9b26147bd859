#include "map/TileMath.h"

#include "catalogue/Records.h"

#include <QPoint>
#include <algorithm>
#include <cmath>

namespace TileMath {

QPointF worldFromCoordinate(double latitude, double longitude)
{
    const double lat = std::clamp(latitude, -maxLatitude, maxLatitude) * M_PI / 180.0;
    return {(longitude + 180.0) / 360.0, (1.0 - std::asinh(std::tan(lat)) / M_PI) / 2.0};
}

QPointF coordinateFromWorld(const QPointF &world)
{
    const double longitude = world.x() * 360.0 - 180.0;
    const double latitude = std::atan(std::sinh(M_PI * (1.0 - 2.0 * world.y()))) * 180.0 / M_PI;
    return {longitude, latitude};
}

double worldPixels(double zoom) { return tileSize * std::exp2(zoom); }

int tmsRow(int zoom, int row) { return (1 << zoom) - 1 - row; }

QPoint tileAt(const QPointF &world, int zoom)
{
    const int count = 1 << zoom;
    const auto index = [count](double value) { return std::clamp(int(std::floor(value * count)), 0, count - 1); };
    return {index(world.x()), index(world.y())};
}

QRectF tileRect(int zoom, int column, int row)
{
    const double size = 1.0 / double(1 << zoom);
    return {column * size, row * size, size, size};
}

bool isValidCoordinate(double latitude, double longitude) { return Location::isMappable(latitude, longitude); }

}
