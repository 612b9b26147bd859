#pragma once

#include <QSizeF>

// How a gallery page fits and zooms its picture in a view of a given size.
struct PictureZoom {
    qreal fit = 1;  // the whole picture shows
    qreal fill = 1; // the picture covers the view
    qreal minimum() const { return fit; }
    qreal maximum() const { return 2 * fill; }

    static PictureZoom forSize(QSizeF view, QSizeF picture);
    // Margins that keep a picture smaller than the view in its middle (zero once it fills it).
    QSizeF insets(qreal zoom, QSizeF view, QSizeF picture) const;
    // The zoom a double tap goes to: from the fit, to where a rectangle of three quarters of the
    // view (in picture points) fills the view, centred on the tap; from anywhere else, back to
    // the fit.
    qreal doubleTapZoom(qreal zoom) const;
};
