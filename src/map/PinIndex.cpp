#include "map/PinIndex.h"

#include <QHash>
#include <algorithm>
#include <cmath>

PinIndex::PinIndex(QSizeF pinSize)
    : m_pinSize(pinSize)
{
}

void PinIndex::add(int identifier, const QPointF &world)
{
    m_pins.push_back({identifier, world});
    m_gridDirty = true;
}

int PinIndex::indexOf(int identifier) const
{
    const auto found = std::find_if(m_pins.cbegin(), m_pins.cend(), [identifier](const Pin &pin) { return pin.identifier == identifier; });
    return found == m_pins.cend() ? -1 : int(found - m_pins.cbegin());
}

namespace {
int cellOf(double value, int cells) { return std::clamp(int(std::floor(value * cells)), 0, cells - 1); }
}

void PinIndex::rebuildGrid() const
{
    // Counting sort into one array: a few bytes per pin and per cell, whatever the count.
    const size_t cells = size_t(gridCells) * gridCells;
    std::vector<int> cellOfPin(m_pins.size());
    m_cellStart.assign(cells + 1, 0);
    for (size_t i = 0; i < m_pins.size(); ++i) {
        const QPointF &world = m_pins[i].world;
        cellOfPin[i] = cellOf(world.y(), gridCells) * gridCells + cellOf(world.x(), gridCells);
        ++m_cellStart[size_t(cellOfPin[i]) + 1];
    }
    for (size_t c = 0; c < cells; ++c)
        m_cellStart[c + 1] += m_cellStart[c];
    std::vector<int> fill(m_cellStart.begin(), m_cellStart.end() - 1);
    m_cellPins.resize(m_pins.size());
    for (size_t i = 0; i < m_pins.size(); ++i)
        m_cellPins[size_t(fill[size_t(cellOfPin[i])]++)] = int(i);
    m_gridDirty = false;
}

int PinIndex::hitTest(const QPointF &screen, const MapCamera &camera, double slop) const
{
    if (m_pins.empty())
        return -1;
    if (m_gridDirty)
        rebuildGrid();
    // A pin's picture stands above its point, so the pins that can hold the tap have their
    // points below it, by up to the picture's height.
    const double reachX = m_pinSize.width() / 2 + slop;
    const QPointF low = camera.toWorld(screen + QPointF(-reachX, -slop));
    const QPointF high = camera.toWorld(screen + QPointF(reachX, m_pinSize.height() + slop));
    int covering = -1;
    int nearest = -1;
    double nearestDistance = slop * slop;
    for (int y = cellOf(low.y(), gridCells); y <= cellOf(high.y(), gridCells); ++y) {
        for (int x = cellOf(low.x(), gridCells); x <= cellOf(high.x(), gridCells); ++x) {
            const size_t c = size_t(y) * gridCells + size_t(x);
            for (int k = m_cellStart[c]; k < m_cellStart[c + 1]; ++k) {
                const int i = m_cellPins[size_t(k)];
                const QPointF point = camera.toScreen(m_pins[size_t(i)].world);
                const QRectF picture(point.x() - m_pinSize.width() / 2, point.y() - m_pinSize.height(), m_pinSize.width(), m_pinSize.height());
                if (picture.contains(screen)) {
                    covering = std::max(covering, i);
                } else if (covering < 0) {
                    const QPointF delta = point - screen;
                    const double distance = delta.x() * delta.x() + delta.y() * delta.y();
                    if (distance <= nearestDistance) {
                        nearestDistance = distance;
                        nearest = i;
                    }
                }
            }
        }
    }
    return covering >= 0 ? covering : nearest;
}
