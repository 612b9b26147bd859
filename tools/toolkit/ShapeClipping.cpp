#include "ShapeClipping.h"

namespace ShapeClipping {

namespace {

enum class Edge { Left, Right, Top, Bottom };

bool inside(const QPointF &point, Edge edge, const QRectF &rect)
{
    switch (edge) {
    case Edge::Left: return point.x() >= rect.left();
    case Edge::Right: return point.x() <= rect.right();
    case Edge::Top: return point.y() >= rect.top();
    case Edge::Bottom: return point.y() <= rect.bottom();
    }
    return true;
}

QPointF crossing(const QPointF &a, const QPointF &b, Edge edge, const QRectF &rect)
{
    const auto atX = [&](double x) {
        const double t = (x - a.x()) / (b.x() - a.x());
        return QPointF(x, a.y() + t * (b.y() - a.y()));
    };
    const auto atY = [&](double y) {
        const double t = (y - a.y()) / (b.y() - a.y());
        return QPointF(a.x() + t * (b.x() - a.x()), y);
    };
    switch (edge) {
    case Edge::Left: return atX(rect.left());
    case Edge::Right: return atX(rect.right());
    case Edge::Top: return atY(rect.top());
    case Edge::Bottom: return atY(rect.bottom());
    }
    return a;
}

QRectF boundsOf(const QPolygonF &points) { return points.boundingRect(); }

}

QPolygonF clipPolygon(const QPolygonF &polygon, const QRectF &rect)
{
    const QRectF bounds = boundsOf(polygon);
    if (!bounds.intersects(rect))
        return {};
    if (rect.contains(bounds))
        return polygon;
    QPolygonF output = polygon;
    for (Edge edge : {Edge::Left, Edge::Right, Edge::Top, Edge::Bottom}) {
        const QPolygonF input = output;
        output.clear();
        if (input.isEmpty())
            break;
        QPointF previous = input.last();
        for (const QPointF &current : input) {
            const bool currentIn = inside(current, edge, rect);
            const bool previousIn = inside(previous, edge, rect);
            if (currentIn) {
                if (!previousIn)
                    output.append(crossing(previous, current, edge, rect));
                output.append(current);
            } else if (previousIn) {
                output.append(crossing(previous, current, edge, rect));
            }
            previous = current;
        }
    }
    return output.size() >= 3 ? output : QPolygonF();
}

void clipPolyline(const QPolygonF &line, const QRectF &rect, QList<QPolygonF> &into)
{
    if (line.size() < 2 || !boundsOf(line).intersects(rect))
        return;
    QPolygonF run;
    for (qsizetype i = 1; i < line.size(); ++i) {
        const QPointF &a = line.at(i - 1);
        const QPointF &b = line.at(i);
        // The segment's own bounds against the rectangle: a segment that only passes near a
        // corner is kept, which costs a few points outside and never loses one inside.
        const QRectF segment = QRectF(a, b).normalized();
        const bool touches = segment.right() >= rect.left() && segment.left() <= rect.right() && segment.bottom() >= rect.top()
                             && segment.top() <= rect.bottom();
        if (touches) {
            if (run.isEmpty())
                run.append(a);
            run.append(b);
        } else if (!run.isEmpty()) {
            into.append(run);
            run.clear();
        }
    }
    if (!run.isEmpty())
        into.append(run);
}

}
