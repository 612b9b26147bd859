#pragma once

#include <QList>
#include <QLineF>
#include <QPolygonF>
#include <QRectF>

#include <optional>

// Places a tile's labels: each wholly inside the tile (a label cut at a tile's edge would show
// half a name), and none over another.
class LabelPlacer
{
public:
    explicit LabelPlacer(const QRectF &area, double padding = 2.0);

    // The box a label of `size` centred on `centre` and turned by `angle` degrees would cover.
    static QPolygonF box(const QPointF &centre, const QSizeF &size, double angle);
    // Takes the label if its box (grown by the padding) is inside the area and clear of every
    // label taken so far.
    bool place(const QPolygonF &labelBox);
    const QList<QPolygonF> &placed() const { return m_placed; }

private:
    QRectF m_area;
    double m_padding;
    QList<QPolygonF> m_placed;
};

// The longest straight stretch of a polyline inside `clip`: consecutive segments that turn by
// less than `maxTurn` degrees count as one, so a street made of many short segments between its
// crossings still offers the room its name needs.
std::optional<QLineF> longestStraightRun(const QPolygonF &line, const QRectF &clip, double maxTurn = 8.0);

// The angle, in degrees, text along `run` is turned by so it reads left to right, never upside
// down; a vertical name reads upwards.
double readableAngle(const QLineF &run);
