#pragma once

#include "map/MapCamera.h"
#include "map/PinIndex.h"

#include <QList>
#include <QPointF>

// The pins a screen reader is offered: those on screen nearest the map's middle, at most `limit`
// of them (a country holds tens of thousands; a reader pans or zooms to reach the others).
struct ReadablePin {
    int identifier = 0;
    QPointF point; // where the pin stands, in the view's coordinates
};

QList<ReadablePin> readablePins(const PinIndex &pins, const MapCamera &camera, int limit);
