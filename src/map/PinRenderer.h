#pragma once

#include "map/MapCamera.h"
#include "map/PinIndex.h"

#include <QColor>
#include <QImage>

#include <vector>

// Draws the pins that show on screen into one picture the size of the view, so a single
// scene-graph node carries all of them on every backend (the software one included). Each pin is
// the same small picture, copied and blended by hand: a copy per pin, no painter call. A pin that
// lands on the very pixel of a later one would be covered by it, and is not drawn.
class PinRenderer
{
public:
    PinRenderer() = default;

    // Clears `target` (device pixels: viewport * ratio) and draws the pins into it.
    void render(const PinIndex &pins, const MapCamera &camera, qreal devicePixelRatio, QImage &target);
    // The user's position: a blue dot, and around it the accuracy when it is asked for.
    static void drawPosition(QImage &target, const MapCamera &camera, qreal devicePixelRatio, const QPointF &world,
                             double accuracyPixels, bool showAccuracy);
    // The picture of one pin at a ratio, with its point at the middle of the bottom edge.
    static QImage pinPicture(const QSizeF &size, qreal devicePixelRatio);

    // How many pins the last render copied (after skipping covered and off-screen ones).
    int drawnCount() const { return m_drawn; }

private:
    void prepareSprite(const QSizeF &size, qreal devicePixelRatio);

    QImage m_sprite;
    QSizeF m_spriteSize;
    qreal m_spriteRatio = 0;
    // Per sprite row, the first and one-past-last column that isn't transparent.
    std::vector<std::pair<int, int>> m_rowSpans;
    std::vector<int> m_occupant;
    std::vector<int> m_pixelOfPin;
    int m_drawn = 0;
};
