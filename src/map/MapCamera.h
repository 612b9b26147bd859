#pragma once

#include "map/TileMath.h"

#include <QSizeF>

// What the view shows: the world point at the middle of the viewport and the zoom. Screen
// points are the view's logical pixels from its top-left corner.
struct MapCamera {
    QPointF center{0.5, 0.5};
    double zoom = 2.0;
    QSizeF viewport;

    double scale() const { return TileMath::worldPixels(zoom); }
    QPointF toScreen(const QPointF &world) const
    {
        return (world - center) * scale() + QPointF(viewport.width() / 2.0, viewport.height() / 2.0);
    }
    QPointF toWorld(const QPointF &screen) const
    {
        return (screen - QPointF(viewport.width() / 2.0, viewport.height() / 2.0)) / scale() + center;
    }
    // The world rectangle on screen.
    QRectF visibleWorld() const { return QRectF(toWorld(QPointF(0, 0)), toWorld(QPointF(viewport.width(), viewport.height()))); }
};
