#include "map/VectorTileRenderer.h"

#include "map/LabelPlacer.h"
#include "map/VectorStyle.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>
#include <functional>

namespace {

using Type = VectorFeature::Type;

class TilePainter
{
public:
    TilePainter(QImage &image, const VectorTileRendering &rendering)
        : m_painter(&image)
        , m_rendering(rendering)
        , m_size(rendering.logicalSize)
        , m_labels(QRectF(0, 0, rendering.logicalSize, rendering.logicalSize))
    {
        m_painter.setRenderHint(QPainter::Antialiasing);
        m_painter.scale(rendering.devicePixelRatio, rendering.devicePixelRatio);
        m_painter.setClipRect(QRectF(0, 0, m_size, m_size));
    }

    // Layer coordinates to this tile's pixels.
    QTransform transformFor(const VectorLayer &layer) const
    {
        const QRectF &source = m_rendering.source;
        const double scale = m_size / (source.width() * layer.extent);
        return QTransform::fromScale(scale, scale).translate(-source.left() * layer.extent, -source.top() * layer.extent);
    }

    QPainterPath path(const VectorFeature &feature, const QTransform &transform) const
    {
        QPainterPath path;
        path.setFillRule(Qt::OddEvenFill);
        for (const QPolygonF &part : feature.parts) {
            const QPolygonF mapped = transform.map(part);
            if (feature.type == Type::Polygon)
                path.addPolygon(mapped);
            else {
                path.moveTo(mapped.first());
                for (qsizetype i = 1; i < mapped.size(); ++i)
                    path.lineTo(mapped[i]);
            }
        }
        return path;
    }

    void fill(const VectorLayer *layer, const std::function<QColor(const VectorFeature &)> &colour, const QColor &outline = {})
    {
        if (!layer)
            return;
        const QTransform transform = transformFor(*layer);
        m_painter.setPen(outline.isValid() ? QPen(outline, 0.8) : Qt::NoPen);
        for (const VectorFeature &feature : layer->features) {
            if (feature.type != Type::Polygon)
                continue;
            const QColor color = colour(feature);
            if (!color.isValid())
                continue;
            m_painter.setBrush(color);
            m_painter.drawPath(path(feature, transform));
        }
    }

    struct Line {
        QPainterPath path;
        VectorStyle::Stroke stroke;
    };

    void stroke(std::vector<Line> &lines)
    {
        std::stable_sort(lines.begin(), lines.end(), [](const Line &a, const Line &b) { return a.stroke.order < b.stroke.order; });
        m_painter.setBrush(Qt::NoBrush);
        for (const Line &line : lines)
            if (line.stroke.casing.isValid()) {
                m_painter.setPen(QPen(line.stroke.casing, line.stroke.casingWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
                m_painter.drawPath(line.path);
            }
        for (const Line &line : lines) {
            QPen pen(line.stroke.color, line.stroke.width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
            if (line.stroke.dashed)
                pen.setDashPattern({2.0, 2.0});
            m_painter.setPen(pen);
            m_painter.drawPath(line.path);
        }
    }

    void drawText(const QString &text, const QPointF &centre, double angle, const QFont &font, const QColor &color)
    {
        QPainterPath glyphs;
        const QFontMetricsF metrics(font);
        glyphs.addText(-metrics.horizontalAdvance(text) / 2, (metrics.ascent() - metrics.descent()) / 2, font, text);
        m_painter.save();
        m_painter.translate(centre);
        m_painter.rotate(angle);
        m_painter.strokePath(glyphs, QPen(VectorStyle::haloColor(), 3, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        m_painter.fillPath(glyphs, color);
        m_painter.restore();
    }

    // A name along the straightest stretch of its line that has room for it.
    void lineLabel(const QString &text, const QPolygonF &line, const QFont &font, const QColor &color)
    {
        const QFontMetricsF metrics(font);
        const QSizeF size(metrics.horizontalAdvance(text), metrics.height());
        const std::optional<QLineF> run = longestStraightRun(line, QRectF(0, 0, m_size, m_size));
        if (!run || run->length() < size.width() + 8)
            return;
        const double angle = readableAngle(*run);
        const QPointF centre = run->center();
        if (m_labels.place(LabelPlacer::box(centre, size, angle)))
            drawText(text, centre, angle, font, color);
    }

    void pointLabel(const QString &text, const QPointF &point, const QFont &font, const QColor &color)
    {
        const QFontMetricsF metrics(font);
        const QSizeF size(metrics.horizontalAdvance(text), metrics.height());
        if (m_labels.place(LabelPlacer::box(point, size, 0)))
            drawText(text, point, 0, font, color);
    }

    QPainter m_painter;
    const VectorTileRendering &m_rendering;
    double m_size;
    LabelPlacer m_labels;
};

QFont labelFont(double pixelSize, bool bold)
{
    QFont font(QStringLiteral("Open Sans"));
    font.setPixelSize(int(pixelSize));
    font.setBold(bold);
    return font;
}

void paintTile(QImage &image, const VectorTile &tile, const VectorTileRendering &rendering)
{
    TilePainter painter(image, rendering);
    const double zoom = rendering.zoom;

    painter.fill(tile.layer(QLatin1StringView("landuse")), [](const VectorFeature &feature) {
        return VectorStyle::landuseFill(feature.attribute(QLatin1StringView("class")));
    });
    const VectorLayer *water = tile.layer(QLatin1StringView("water"));
    painter.fill(water, [](const VectorFeature &) { return VectorStyle::waterFill(); });
    if (zoom >= 14)
        painter.fill(tile.layer(QLatin1StringView("building")), [](const VectorFeature &) { return VectorStyle::buildingFill(); },
                     zoom >= 15 ? VectorStyle::buildingOutline() : QColor());

    std::vector<TilePainter::Line> lines;
    const VectorLayer *roads = tile.layer(QLatin1StringView("road"));
    for (const VectorLayer *layer : {water, roads, tile.layer(QLatin1StringView("railway"))}) {
        if (!layer)
            continue;
        const QTransform transform = painter.transformFor(*layer);
        for (const VectorFeature &feature : layer->features) {
            if (feature.type != Type::Line)
                continue;
            const QString kind = feature.attribute(QLatin1StringView("class"));
            const std::optional<VectorStyle::Stroke> stroke = layer == roads  ? VectorStyle::road(kind, zoom)
                                                              : layer == water ? VectorStyle::waterway(kind, zoom)
                                                                               : VectorStyle::railway(zoom);
            if (stroke)
                lines.push_back({painter.path(feature, transform), *stroke});
        }
    }
    painter.stroke(lines);

    // Labels, the most important first: they keep their place when two would meet.
    if (const VectorLayer *places = tile.layer(QLatin1StringView("place"))) {
        const QTransform transform = painter.transformFor(*places);
        for (const VectorFeature &feature : places->features) {
            const QString name = feature.attribute(QLatin1StringView("name"));
            if (feature.type != Type::Point || name.isEmpty() || feature.parts.isEmpty())
                continue;
            const bool big = feature.attribute(QLatin1StringView("class")) == QLatin1String("city")
                             || feature.attribute(QLatin1StringView("class")) == QLatin1String("town");
            painter.pointLabel(name, transform.map(feature.parts.first().first()), labelFont(big ? 14 : 12, true),
                               VectorStyle::placeLabelColor());
        }
    }
    if (roads) {
        const QTransform transform = painter.transformFor(*roads);
        std::vector<const VectorFeature *> named;
        for (const VectorFeature &feature : roads->features) {
            const std::optional<double> from = VectorStyle::roadLabelZoom(feature.attribute(QLatin1StringView("class")));
            if (feature.type == Type::Line && from && zoom >= *from && !feature.attribute(QLatin1StringView("name")).isEmpty())
                named.push_back(&feature);
        }
        std::stable_sort(named.begin(), named.end(), [](const VectorFeature *a, const VectorFeature *b) {
            return VectorStyle::road(a->attribute(QLatin1StringView("class")), 20)->order
                   > VectorStyle::road(b->attribute(QLatin1StringView("class")), 20)->order;
        });
        const QFont font = labelFont(zoom >= 17 ? 12 : 11, false);
        for (const VectorFeature *feature : named)
            for (const QPolygonF &part : feature->parts)
                painter.lineLabel(feature->attribute(QLatin1StringView("name")), transform.map(part), font, VectorStyle::labelColor());
    }
    // House numbers where the door is, once a building is big enough to carry one.
    if (const VectorLayer *numbers = tile.layer(QLatin1StringView("housenumber")); numbers && zoom >= VectorStyle::houseNumberZoom) {
        const QTransform transform = painter.transformFor(*numbers);
        for (const VectorFeature &feature : numbers->features) {
            const QString number = feature.attribute(QLatin1StringView("number"));
            if (feature.type == Type::Point && !number.isEmpty() && !feature.parts.isEmpty())
                painter.pointLabel(number, transform.map(feature.parts.first().first()), labelFont(10, false), VectorStyle::houseNumberColor());
        }
    }
    if (const VectorLayer *landuse = tile.layer(QLatin1StringView("landuse")); landuse && zoom >= 15) {
        const QTransform transform = painter.transformFor(*landuse);
        for (const VectorFeature &feature : landuse->features) {
            const QString name = feature.attribute(QLatin1StringView("name"));
            if (feature.type == Type::Polygon && !name.isEmpty() && !feature.parts.isEmpty())
                painter.pointLabel(name, transform.map(feature.parts.first()).boundingRect().center(), labelFont(11, false),
                                   VectorStyle::parkLabelColor());
        }
    }
}

}

QImage renderVectorTile(const VectorTile &tile, const VectorTileRendering &rendering)
{
    const int pixels = int(std::ceil(rendering.logicalSize * rendering.devicePixelRatio));
    QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    paintTile(image, tile, rendering);
    image.setDevicePixelRatio(rendering.devicePixelRatio);
    return image;
}
