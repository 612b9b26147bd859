#include "PictureZoom.h"

#include <algorithm>

PictureZoom PictureZoom::forSize(QSizeF view, QSizeF picture)
{
    if (picture.isEmpty() || view.isEmpty())
        return {};
    const qreal a = view.height() / picture.height();
    const qreal b = view.width() / picture.width();
    return {std::min(a, b), std::max(a, b)};
}

QSizeF PictureZoom::insets(qreal zoom, QSizeF view, QSizeF picture) const
{
    if (zoom >= fill)
        return {0, 0};
    return {std::max(0.0, (view.width() - zoom * picture.width()) * 0.5), std::max(0.0, (view.height() - zoom * picture.height()) * 0.5)};
}

qreal PictureZoom::doubleTapZoom(qreal zoom) const
{
    if (!qFuzzyCompare(zoom, minimum()))
        return minimum();
    return std::clamp(1 / 0.75, minimum(), std::max(minimum(), maximum()));
}
