#include "map/MapViewWrapper.h"

#include "catalogue/Restaurants.h"
#include "map/MBTilesPack.h"
#include "map/MapCalloutView.h"
#include "richtext/IconFont.h"

#include <memory>

namespace {
std::unique_ptr<MapViewWrapper> &instance()
{
    static std::unique_ptr<MapViewWrapper> wrapper;
    return wrapper;
}
}

MapViewWrapper::MapViewWrapper()
    : calloutStyle({QStringLiteral("i { font-name: Velmora-Icons; font-size: 25; color: rgba(0,0,0,128); baseline-offset: 1; }")})
{
}

MapViewWrapper &MapViewWrapper::shared()
{
    if (!instance())
        instance().reset(new MapViewWrapper);
    return *instance();
}

void MapViewWrapper::reset()
{
    if (instance())
        delete instance()->m_mapView.data();
    instance().reset();
}

MapView *MapViewWrapper::buildMapView(Restaurants &restaurants, const QString &documentsDirectory)
{
    if (m_mapView)
        return m_mapView;
    auto *view = new MapView;
    // In latitude order, south first, as the pins are added.
    const QList<PlaceLocation> locations = restaurants.allLocations();
    for (const PlaceLocation &location : locations) {
        const Annotation annotation{identifierForPlace(location.id), annotationType, location.latitude, location.longitude};
        annotations.insert(location.id, annotation);
        view->addAnnotation(annotation);
    }
    view->settings() = MapView::Settings{false, false, true};
    view->calloutView()->setRightButtonTitle(
        QVariant::fromValue(calloutStyle.render(QStringLiteral("<body><i>") + IconFont::callout + QStringLiteral("</i></body>"))));
    view->setTilePacks(MBTilesPack::findIn(documentsDirectory), countryRegion());
    locationState = LocationState::off;
    m_mapView = view;
    return view;
}
