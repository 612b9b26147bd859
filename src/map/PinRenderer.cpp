#include "map/PinRenderer.h"

#include <QPainter>
#include <QPainterPath>

#include <cmath>
#include <cstring>

namespace {

const QColor pinColor(0xd9, 0x5b, 0x43);

// Source-over for premultiplied pixels, two channels at a time.
inline quint32 blend(quint32 source, quint32 destination)
{
    const quint32 alpha = source >> 24;
    if (alpha == 255)
        return source;
    const quint32 inverse = 255 - alpha;
    quint32 redBlue = (destination & 0xff00ff) * inverse;
    redBlue = ((redBlue + ((redBlue >> 8) & 0xff00ff) + 0x800080) >> 8) & 0xff00ff;
    quint32 alphaGreen = ((destination >> 8) & 0xff00ff) * inverse;
    alphaGreen = (alphaGreen + ((alphaGreen >> 8) & 0xff00ff) + 0x800080) & 0xff00ff00;
    return source + (alphaGreen | redBlue);
}

}

QImage PinRenderer::pinPicture(const QSizeF &size, qreal devicePixelRatio)
{
    const QSize pixels((size * devicePixelRatio).toSize());
    QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(devicePixelRatio, devicePixelRatio);
    // A drop: a round head over a point at the bottom middle.
    const double w = size.width(), h = size.height();
    const double radius = w / 2 - 1.5;
    const QPointF head(w / 2, radius + 1.5);
    QPainterPath drop;
    drop.moveTo(w / 2, h - 0.5);
    drop.cubicTo(w / 2 - radius * 0.35, h - radius * 0.9, head.x() - radius, head.y() + radius * 0.75, head.x() - radius, head.y());
    drop.arcTo(QRectF(head.x() - radius, head.y() - radius, 2 * radius, 2 * radius), 180, -180);
    drop.cubicTo(head.x() + radius, head.y() + radius * 0.75, w / 2 + radius * 0.35, h - radius * 0.9, w / 2, h - 0.5);
    painter.setPen(QPen(Qt::white, 1.5));
    painter.setBrush(pinColor);
    painter.drawPath(drop);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::white);
    painter.drawEllipse(head, radius * 0.38, radius * 0.38);
    return image;
}

void PinRenderer::prepareSprite(const QSizeF &size, qreal devicePixelRatio)
{
    if (size == m_spriteSize && devicePixelRatio == m_spriteRatio)
        return;
    m_sprite = pinPicture(size, devicePixelRatio);
    m_spriteSize = size;
    m_spriteRatio = devicePixelRatio;
    m_rowSpans.assign(size_t(m_sprite.height()), {0, 0});
    for (int y = 0; y < m_sprite.height(); ++y) {
        const auto *row = reinterpret_cast<const quint32 *>(m_sprite.constScanLine(y));
        int first = m_sprite.width(), last = 0;
        for (int x = 0; x < m_sprite.width(); ++x)
            if (row[x] >> 24) {
                first = std::min(first, x);
                last = x + 1;
            }
        m_rowSpans[size_t(y)] = {first, std::max(first, last)};
    }
}

void PinRenderer::render(const PinIndex &pins, const MapCamera &camera, qreal devicePixelRatio, QImage &target)
{
    const QSize pixels((camera.viewport * devicePixelRatio).toSize());
    if (target.size() != pixels || target.format() != QImage::Format_ARGB32_Premultiplied)
        target = QImage(pixels, QImage::Format_ARGB32_Premultiplied);
    target.fill(Qt::transparent);
    target.setDevicePixelRatio(devicePixelRatio);
    m_drawn = 0;
    if (pixels.isEmpty() || pins.count() == 0)
        return;
    prepareSprite(pins.pinSize(), devicePixelRatio);
    const int width = pixels.width(), height = pixels.height();
    const int spriteWidth = m_sprite.width(), spriteHeight = m_sprite.height();

    // First pass: where each pin's point falls, and for each pixel the last pin there.
    const double scale = camera.scale() * devicePixelRatio;
    const double originX = camera.center.x() * scale - width / 2.0;
    const double originY = camera.center.y() * scale - height / 2.0;
    m_occupant.assign(size_t(width) * size_t(height), -1);
    m_pixelOfPin.assign(pins.pins().size(), -1);
    const auto &all = pins.pins();
    for (size_t i = 0; i < all.size(); ++i) {
        const double x = std::floor(all[i].world.x() * scale - originX);
        const double y = std::floor(all[i].world.y() * scale - originY);
        // Points a little off screen still show the top of their picture.
        if (x < -spriteWidth || x >= width + spriteWidth || y < 0 || y >= height + spriteHeight)
            continue;
        if (x < 0 || x >= width || y >= height) {
            m_pixelOfPin[i] = -2; // drawn, never merged with another
            continue;
        }
        const int pixel = int(y) * width + int(x);
        m_pixelOfPin[i] = pixel;
        m_occupant[size_t(pixel)] = int(i);
    }

    // Second pass, in the pins' order: copy the picture for every pin not covered exactly.
    for (size_t i = 0; i < all.size(); ++i) {
        const int pixel = m_pixelOfPin[i];
        if (pixel == -1 || (pixel >= 0 && m_occupant[size_t(pixel)] != int(i)))
            continue;
        const int pointX = int(std::floor(all[i].world.x() * scale - originX));
        const int pointY = int(std::floor(all[i].world.y() * scale - originY));
        const int left = pointX - spriteWidth / 2;
        const int top = pointY - spriteHeight + 1;
        ++m_drawn;
        for (int sy = std::max(0, -top); sy < spriteHeight && top + sy < height; ++sy) {
            const auto [first, last] = m_rowSpans[size_t(sy)];
            const int from = std::max(first, -left);
            const int to = std::min(last, width - left);
            if (from >= to)
                continue;
            const auto *source = reinterpret_cast<const quint32 *>(m_sprite.constScanLine(sy));
            auto *destination = reinterpret_cast<quint32 *>(target.scanLine(top + sy)) + left;
            for (int sx = from; sx < to; ++sx)
                destination[sx] = blend(source[sx], destination[sx]);
        }
    }
}

void PinRenderer::drawPosition(QImage &target, const MapCamera &camera, qreal devicePixelRatio, const QPointF &world,
                               double accuracyPixels, bool showAccuracy)
{
    QPainter painter(&target);
    painter.setRenderHint(QPainter::Antialiasing);
    const QPointF point = camera.toScreen(world);
    if (showAccuracy && accuracyPixels > 8) {
        painter.setPen(QPen(QColor(0x2f, 0x80, 0xed, 140), 1));
        painter.setBrush(QColor(0x2f, 0x80, 0xed, 40));
        painter.drawEllipse(point, accuracyPixels, accuracyPixels);
    }
    painter.setPen(QPen(Qt::white, 2.5));
    painter.setBrush(QColor(0x2f, 0x80, 0xed));
    painter.drawEllipse(point, 7, 7);
    Q_UNUSED(devicePixelRatio) // the painter follows the picture's own ratio
}
