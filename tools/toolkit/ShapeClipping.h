#pragma once

#include <QList>
#include <QPolygonF>
#include <QRectF>

// Cutting shapes down to a rectangle, so each deeper tile handles only what it can show.
namespace ShapeClipping {
// A closed polygon cut to the rectangle (Sutherland-Hodgman). Parts outside become runs along
// the rectangle's edge, which a tile keeps outside the pixels it draws. Empty when nothing is left.
QPolygonF clipPolygon(const QPolygonF &polygon, const QRectF &rect);
// The runs of an open line whose segments touch the rectangle, appended to `into`.
void clipPolyline(const QPolygonF &line, const QRectF &rect, QList<QPolygonF> &into);
}
