#pragma once

#include "map/MapView.h"
#include "richtext/RichString.h"

#include <QHash>
#include <QPointer>

class Restaurants;

// The one location state of the process: it outlives every map screen.
enum class LocationState { off = 0, waiting = 1, onAndCentered = 2, onButNotCentered = 3, following = 4 };

// The process's one map view, built once with a pin for every located place, and what goes
// with it: the pins by place id and the location state. Every map screen borrows the view.
class MapViewWrapper
{
public:
    static MapViewWrapper &shared();
    // Drops the shared view and state (tests; the running app never does).
    static void reset();

    // The view once built, else null.
    MapView *mapView() const { return m_mapView; }
    // Builds the view from the catalogue on first use: pins sorted by latitude, the callout's
    // look, the base map found in the documents folder.
    MapView *buildMapView(Restaurants &restaurants, const QString &documentsDirectory);

    // Place id to its pin.
    QHash<int, Annotation> annotations;
    LocationState locationState = LocationState::off;
    const RichString calloutStyle;

    // Identifiers of pins: the place id plus 1000, and back.
    static int identifierForPlace(int id) { return id + 1000; }
    static int placeForIdentifier(int identifier) { return identifier - 1000; }
    static constexpr int annotationType = 39;
    // The country the guide covers (longitude x, latitude y): a base map must cover it.
    static QRectF countryRegion() { return QRectF(-85.2, 19.6, 11.2, 3.8); }

private:
    MapViewWrapper();
    QPointer<MapView> m_mapView;
};
