#include "map/ReadablePins.h"

#include <QLineF>

#include <algorithm>

QList<ReadablePin> readablePins(const PinIndex &pins, const MapCamera &camera, int limit)
{
    const QRectF screen(QPointF(0, 0), camera.viewport);
    const QPointF middle = screen.center();
    QList<ReadablePin> shown;
    for (const PinIndex::Pin &pin : pins.pins()) {
        const QPointF point = camera.toScreen(pin.world);
        if (screen.contains(point))
            shown.append({pin.identifier, point});
    }
    const auto nearer = [&middle](const ReadablePin &a, const ReadablePin &b) {
        return QLineF(a.point, middle).length() < QLineF(b.point, middle).length();
    };
    if (shown.size() > limit) {
        std::nth_element(shown.begin(), shown.begin() + limit, shown.end(), nearer);
        shown.resize(limit);
    }
    std::sort(shown.begin(), shown.end(), nearer);
    return shown;
}
