#include "map/LabelPlacer.h"

#include <QTransform>

#include <cmath>

LabelPlacer::LabelPlacer(const QRectF &area, double padding)
    : m_area(area)
    , m_padding(padding)
{
}

QPolygonF LabelPlacer::box(const QPointF &centre, const QSizeF &size, double angle)
{
    const QRectF rect(-size.width() / 2, -size.height() / 2, size.width(), size.height());
    return QTransform().translate(centre.x(), centre.y()).rotate(angle).map(QPolygonF(rect));
}

bool LabelPlacer::place(const QPolygonF &labelBox)
{
    const QRectF bounds = labelBox.boundingRect().adjusted(-m_padding, -m_padding, m_padding, m_padding);
    if (!m_area.contains(bounds))
        return false;
    // Grow the box about its centre by the padding before testing the others.
    const QPointF centre = bounds.center();
    QPolygonF grown;
    for (const QPointF &corner : labelBox) {
        const QPointF away = corner - centre;
        const double length = std::hypot(away.x(), away.y());
        grown.append(length > 0 ? corner + away * (m_padding / length) : corner);
    }
    for (const QPolygonF &other : m_placed)
        if (other.boundingRect().intersects(grown.boundingRect()) && other.intersects(grown))
            return false;
    m_placed.append(grown);
    return true;
}

namespace {

// Liang-Barsky: the part of a segment inside a rectangle.
std::optional<QLineF> clipSegment(const QLineF &segment, const QRectF &clip)
{
    double t0 = 0, t1 = 1;
    const double dx = segment.dx(), dy = segment.dy();
    const double p[4] = {-dx, dx, -dy, dy};
    const double q[4] = {segment.x1() - clip.left(), clip.right() - segment.x1(), segment.y1() - clip.top(), clip.bottom() - segment.y1()};
    for (int i = 0; i < 4; ++i) {
        if (p[i] == 0) {
            if (q[i] < 0)
                return std::nullopt;
            continue;
        }
        const double t = q[i] / p[i];
        if (p[i] < 0)
            t0 = std::max(t0, t);
        else
            t1 = std::min(t1, t);
        if (t0 > t1)
            return std::nullopt;
    }
    return QLineF(segment.pointAt(t0), segment.pointAt(t1));
}

}

std::optional<QLineF> longestStraightRun(const QPolygonF &line, const QRectF &clip, double maxTurn)
{
    std::optional<QLineF> best;
    const auto consider = [&](const QLineF &run) {
        if (const std::optional<QLineF> inside = clipSegment(run, clip); inside && (!best || inside->length() > best->length()))
            best = inside;
    };
    qsizetype start = 0;
    for (qsizetype i = 1; i < line.size(); ++i) {
        const bool last = i + 1 == line.size();
        if (!last) {
            const QLineF here(line[i - 1], line[i]), next(line[i], line[i + 1]);
            if (here.length() > 0 && next.length() > 0) {
                double turn = std::abs(here.angleTo(next));
                turn = std::min(turn, 360 - turn);
                if (turn < maxTurn)
                    continue;
            }
        }
        // The run from `start` to `i` is straight enough: measure it as one segment.
        consider(QLineF(line[start], line[i]));
        start = i;
    }
    return best;
}

double readableAngle(const QLineF &run)
{
    double angle = std::atan2(run.dy(), run.dx()) * 180.0 / M_PI;
    // Within [-90, 90): a vertical name always reads upwards, whichever way its street was drawn.
    if (angle >= 90)
        angle -= 180;
    else if (angle < -90)
        angle += 180;
    return angle;
}
