#include "GradientView.h"

#include <QLinearGradient>
#include <QPainter>
#include <QQuickWindow>
#include <QRadialGradient>

GradientView::GradientView(QQuickItem *parent)
    : QQuickPaintedItem(parent)
{
}

void GradientView::setColors(const QList<QColor> &colors)
{
    m_colors = colors;
    rebuildGradient();
}

void GradientView::setDimmedColors(const QList<QColor> &colors)
{
    m_dimmedColors = colors;
    rebuildGradient();
}

void GradientView::setAutomaticallyDims(bool dims)
{
    m_automaticallyDims = dims;
    emit gradientChanged();
}

void GradientView::setLocations(const QList<qreal> &locations)
{
    m_locations = locations;
    rebuildGradient();
}

#define VELMORA_REDRAWING_SETTER(setter, member, type)                                                            \
    void GradientView::setter(type value)                                                                        \
    {                                                                                                            \
        member = value;                                                                                          \
        emit appearanceChanged();                                                                                \
        update();                                                                                                \
    }
VELMORA_REDRAWING_SETTER(setMode, m_mode, Mode)
VELMORA_REDRAWING_SETTER(setDirection, m_direction, Direction)
VELMORA_REDRAWING_SETTER(setDrawsThinBorders, m_thinBorders, bool)
VELMORA_REDRAWING_SETTER(setTopBorderColor, m_topBorder, const QColor &)
VELMORA_REDRAWING_SETTER(setRightBorderColor, m_rightBorder, const QColor &)
VELMORA_REDRAWING_SETTER(setBottomBorderColor, m_bottomBorder, const QColor &)
VELMORA_REDRAWING_SETTER(setLeftBorderColor, m_leftBorder, const QColor &)
#undef VELMORA_REDRAWING_SETTER

void GradientView::setDimmed(bool dimmed)
{
    m_dimmed = dimmed;
    if (m_automaticallyDims)
        rebuildGradient();
    else
        emit gradientChanged();
}

QList<QColor> GradientView::effectiveColors() const
{
    if (!m_dimmed)
        return m_colors;
    if (!m_dimmedColors.isEmpty())
        return m_dimmedColors;
    if (!m_automaticallyDims)
        return m_colors;
    QList<QColor> grey;
    for (const QColor &color : m_colors)
        grey.append(QColor::fromHsvF(color.hsvHueF(), 0, color.valueF(), color.alphaF()));
    return grey;
}

void GradientView::rebuildGradient()
{
    m_gradientColors = effectiveColors();
    emit gradientChanged();
    update();
}

QList<std::pair<QColor, QRectF>> GradientView::borderRects(QSizeF size, qreal scale) const
{
    const qreal w = size.width();
    const qreal h = size.height();
    const qreal b = m_thinBorders ? 1.0 / scale : 1.0;
    const qreal t = m_topBorder.isValid() ? b : 0;
    const qreal u = m_bottomBorder.isValid() ? b : 0;
    // The corners belong to the top and bottom borders.
    QList<std::pair<QColor, QRectF>> rects;
    if (m_topBorder.isValid())
        rects.append({m_topBorder, QRectF(0, 0, w, b)});
    if (m_rightBorder.isValid())
        rects.append({m_rightBorder, QRectF(w - b, t, b, h - t - u)});
    if (m_bottomBorder.isValid())
        rects.append({m_bottomBorder, QRectF(0, h - b, w, b)});
    if (m_leftBorder.isValid())
        rects.append({m_leftBorder, QRectF(0, t, b, h - t - u)});
    return rects;
}

void GradientView::paint(QPainter *painter)
{
    const QRectF bounds = boundingRect();
    if (!m_gradientColors.isEmpty()) {
        QGradient gradient = m_mode == Radial
            ? QGradient(QRadialGradient(bounds.center(), std::min(bounds.width(), bounds.height()) * 0.5))
            : QGradient(QLinearGradient(QPointF(0, 0), m_direction == Vertical ? QPointF(0, bounds.height())
                                                                             : QPointF(bounds.width(), 0)));
        gradient.setSpread(QGradient::PadSpread); // colours go on past the last stop
        const qsizetype n = m_gradientColors.size();
        for (qsizetype i = 0; i < n; ++i) {
            const qreal at = i < m_locations.size() ? m_locations.at(i) : (n == 1 ? 0.0 : qreal(i) / qreal(n - 1));
            gradient.setColorAt(std::clamp<qreal>(at, 0, 1), m_gradientColors.at(i));
        }
        painter->fillRect(bounds, gradient);
    }
    const qreal scale = window() ? window()->effectiveDevicePixelRatio() : 1.0;
    for (const auto &[color, rect] : borderRects(bounds.size(), scale))
        painter->fillRect(rect, color);
}
