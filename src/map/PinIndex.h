#pragma once

#include "map/MapCamera.h"

#include <QList>
#include <QPointF>
#include <QSizeF>

#include <vector>

// Every pin of the map in the order it was added (the drawing order: a later pin covers an
// earlier one), with a grid over the world that finds the pins near a point without looking at
// the others.
class PinIndex
{
public:
    struct Pin {
        int identifier = 0;
        QPointF world;
    };

    // A pin's picture: `size` logical pixels, its point at the middle of the bottom edge.
    explicit PinIndex(QSizeF pinSize = QSizeF(22, 30));

    void add(int identifier, const QPointF &world);
    const std::vector<Pin> &pins() const { return m_pins; }
    int count() const { return int(m_pins.size()); }
    QSizeF pinSize() const { return m_pinSize; }
    // The pin with this identifier, or -1.
    int indexOf(int identifier) const;

    // The pin a tap at a screen point means: the topmost whose picture holds the point, or
    // failing that the nearest whose point is within `slop` logical pixels of it. -1 for none.
    int hitTest(const QPointF &screen, const MapCamera &camera, double slop = 12.0) const;

private:
    void rebuildGrid() const;

    QSizeF m_pinSize;
    std::vector<Pin> m_pins;
    // Cells of 1/gridCells of the world on a side. The pins of cell c are
    // m_cellPins[m_cellStart[c] .. m_cellStart[c + 1]), by their position in m_pins.
    static constexpr int gridCells = 512;
    mutable std::vector<int> m_cellStart;
    mutable std::vector<int> m_cellPins;
    mutable bool m_gridDirty = true;
};
