#include "map/MapViewController.h"

#include "catalogue/Restaurants.h"
#include "map/MapCalloutView.h"
#include "placecard/PlaceCards.h"
#include "platform/Dispatch.h"
#include "platform/Localize.h"
#include "platform/NotificationCenter.h"
#include "presentation/BarButtonItem.h"
#include "presentation/SideMenuPresenter.h"
#include "richtext/IconFont.h"

namespace {
// The middle of the country, for a map with no place to show.
constexpr double countryLatitude = 21.35;
constexpr double countryLongitude = -79.37;
constexpr float globalZoom = 5.1f;
constexpr float placeZoom = 16.0f;
constexpr float locationZoom = 15.0f;
// The callout opens this far above the pin's point.
const QPointF calloutOffset(0, 35);
const QColor markColor(0xd9, 0x5b, 0x43);
}

MapViewController::MapViewController(Restaurants &restaurants, const QString &documentsDirectory, QObject *parent)
    : ViewController(parent)
    , m_restaurants(restaurants)
    , m_documentsDirectory(documentsDirectory)
    , R({QStringLiteral("i { font-name: Velmora-Icons; font-size: 25; color: rgba(0,0,0,128); }"),
         QStringLiteral("j { font-name: Velmora-Icons; font-size: 20; color: white; }"),
         QStringLiteral("t { font-name: OpenSans-Extrabold; font-size: 13; color: rgb(147, 135, 114); line-height: 0.9; }"),
         QStringLiteral("s { font-name: OpenSans; font-size: 11; color: rgb(147, 135, 114); line-height: 0.8; }")})
{
}

MapViewController::~MapViewController()
{
    // The shared view and the positioner outlive this screen: they must not call it any more.
    if (m_mapView && m_mapView->delegate() == this)
        m_mapView->setDelegate(nullptr);
    if (m_mapView && m_mapView->calloutView()->delegate() == this)
        m_mapView->calloutView()->setDelegate(nullptr);
    if (PositionerService *positioner = PositionerService::existingInstance(); positioner && positioner->delegate() == this)
        positioner->setDelegate(nullptr);
}

void MapViewController::setRid(int rid)
{
    if (rid == m_rid)
        return;
    m_rid = rid;
    emit ridChanged();
}

QQuickItem *MapViewController::mapViewItem() const { return m_mapView.data(); }

void MapViewController::viewDidLoad()
{
    if (globalMap()) {
        auto *menu = new BarButtonItem(QStringLiteral("menu"), IconFont::drawer, BarButtonItem::iconFont(18), this);
        connect(menu, &BarButtonItem::triggered, this, &MapViewController::showMenu);
        setLeftItems({menu});
    } else {
        showBackButton();
    }

    // One item per state, as the bar shows them: the plain glyph, the glyph on a white plate,
    // the white glyph, and the spinner that a tap also turns off.
    const auto locationItem = [this](const QString &name, const QString &glyph) {
        auto *item = new BarButtonItem(name, glyph, BarButtonItem::iconFont(20), this);
        connect(item, &BarButtonItem::triggered, this, &MapViewController::locationButtonTouched);
        return item;
    };
    m_locOffButton = locationItem(QStringLiteral("location_off"), IconFont::mapLocate);
    m_locOnAndCenteredButton = locationItem(QStringLiteral("location_centered"), IconFont::mapMark);
    m_locOnAndCenteredButton->setTintColor(markColor);
    m_locOnAndCenteredButton->setBackgroundColor(Qt::white);
    m_locOnNotCenteredButton = locationItem(QStringLiteral("location_not_centered"), IconFont::mapMark);
    m_locActivityIndicator = locationItem(QStringLiteral("location_waiting"), QString());
    m_locActivityIndicator->setBusy(true);

    NotificationCenter::defaultCenter().addObserver(this, Localize::changeNotification, [this](const QVariant &) { localize(); });
    localize();
}

void MapViewController::localize() { setTitle(qtTrId("map_title")); }

void MapViewController::viewWillAppear()
{
    if (!MapViewWrapper::shared().mapView())
        loadMapAsync();
    else
        setupMap();
}

void MapViewController::setLoading(bool loading)
{
    if (loading == m_loading)
        return;
    m_loading = loading;
    emit loadingChanged();
}

void MapViewController::loadMapAsync()
{
    // Queued, so the screen and its spinner show before the pins are made.
    setLoading(true);
    QPointer<MapViewController> self(this);
    dispatchMain([self] {
        if (!self)
            return;
        self->setupMap();
        self->setLoading(false);
    });
}

void MapViewController::setupMap()
{
    m_mapView = MapViewWrapper::shared().buildMapView(m_restaurants, m_documentsDirectory);
    m_mapView->setDelegate(this);
    m_mapView->calloutView()->setDelegate(this);
    PositionerService::sharedInstance().setDelegate(this);
    // The view leaves whichever screen showed it before.
    emit mapViewGrabbed();
    adjustRegion();
    updateLocationButton(false);
}

void MapViewController::adjustRegion()
{
    if (!m_mapView)
        return;
    if (m_lastRegion) {
        m_mapView->setVisibleRegion(*m_lastRegion);
        return;
    }
    const MapViewWrapper &wrapper = MapViewWrapper::shared();
    const auto found = wrapper.annotations.constFind(m_rid);
    const bool located = found != wrapper.annotations.constEnd();
    const CoordinateRegion region{located ? found->latitude : countryLatitude, located ? found->longitude : countryLongitude,
                                  globalMap() ? globalZoom : placeZoom};
    m_mapView->setVisibleRegion(region);
    if (located)
        selectAnnotation(found->identifier);
}

BarButtonItem *MapViewController::locationButton() const { return m_shownRightItems.value(0); }

void MapViewController::updateLocationButton(bool animated)
{
    Q_UNUSED(animated) // the bar swaps its items in place
    BarButtonItem *item = nullptr;
    switch (locationState()) {
    case LocationState::off: item = m_locOffButton; break;
    case LocationState::waiting: item = m_locActivityIndicator; break;
    case LocationState::onAndCentered: item = m_locOnAndCenteredButton; break;
    case LocationState::onButNotCentered: item = m_locOnNotCenteredButton; break;
    case LocationState::following: break;
    }
    m_shownRightItems = item ? QList<BarButtonItem *>{item} : QList<BarButtonItem *>{};
    setRightItems(m_shownRightItems);
    emit locationStateChanged();
}

void MapViewController::setLocationState(LocationState state) { MapViewWrapper::shared().locationState = state; }

void MapViewController::locationButtonTouched()
{
    PositionerService &positioner = PositionerService::sharedInstance();
    switch (locationState()) {
    case LocationState::off:
        if (const std::optional<GeoLocation> known = positioner.lastKnownLocation()) {
            centerAndZoomTo(known);
        } else {
            setLocationState(LocationState::waiting);
            positioner.startLocationUpdate();
        }
        break;
    case LocationState::waiting:
    case LocationState::onAndCentered:
    case LocationState::following: turnOffLocation(); break;
    case LocationState::onButNotCentered:
        setLocationState(LocationState::onAndCentered);
        if (m_mapView)
            m_mapView->centerOnCurrentPosition();
        break;
    }
    updateLocationButton(true);
}

void MapViewController::turnOffLocation()
{
    setLocationState(LocationState::off);
    PositionerService::sharedInstance().cancelLocationUpdate();
    if (m_mapView)
        m_mapView->setShowCurrentPosition(false);
    updateLocationButton(true);
}

void MapViewController::centerAndZoomTo(const std::optional<GeoLocation> &location)
{
    setLocationState(LocationState::onAndCentered);
    // The dot follows the user from here on, also when the position came from memory.
    PositionerService &positioner = PositionerService::sharedInstance();
    if (!positioner.isUpdating())
        positioner.startLocationUpdate();
    if (!m_mapView)
        return;
    m_mapView->setShowCurrentPosition(true);
    if (location) {
        m_mapView->setCurrentPosition(location->latitude, location->longitude, location->horizontalAccuracy);
        m_mapView->setVisibleRegion({location->latitude, location->longitude, locationZoom});
    }
}

void MapViewController::positionerServiceUpdatedCurrentLocation(const GeoLocation &location)
{
    if (location.isArtefact())
        return;
    if (m_mapView)
        m_mapView->setCurrentPosition(location.latitude, location.longitude, location.horizontalAccuracy);
    if (locationState() != LocationState::waiting)
        return;
    centerAndZoomTo(location);
    updateLocationButton(true);
}

void MapViewController::selectAnnotation(std::optional<int> identifier)
{
    if (!identifier || !m_mapView)
        return;
    m_selectedPinId = MapViewWrapper::placeForIdentifier(*identifier);
    if (const std::optional<Brief> brief = m_restaurants.brief(*m_selectedPinId)) {
        MapCalloutView *callout = m_mapView->calloutView();
        // A place without a picture leaves the picture's place empty, and costs no request.
        callout->setLeftImage(m_restaurants.profileImage(*m_selectedPinId).isEmpty()
                                  ? QString()
                                  : QStringLiteral("image://places/profile/%1").arg(*m_selectedPinId));
        const auto cdata = [](const QString &text) { return QString(text).replace(QLatin1String("]]>"), QLatin1String("]]&gt;")); };
        callout->setTitle(QVariant::fromValue(R.render(QStringLiteral("<body><t><![CDATA[") + cdata(brief->name) + QStringLiteral("]]></t></body>"))),
                          brief->name);
        callout->setSubtitle(
            QVariant::fromValue(R.render(QStringLiteral("<body><s><![CDATA[") + cdata(brief->address) + QStringLiteral("]]></s></body>"))));
    }
    m_mapView->showCalloutForAnnotation(*identifier, calloutOffset, true);
    if (locationState() == LocationState::onAndCentered) {
        setLocationState(LocationState::onButNotCentered);
        updateLocationButton(true);
    }
}

void MapViewController::mapViewDidSelectAnnotation(int identifier) { selectAnnotation(identifier); }

QString MapViewController::mapViewTitleForAnnotation(int identifier)
{
    const std::optional<Brief> brief = m_restaurants.brief(MapViewWrapper::placeForIdentifier(identifier));
    return brief ? brief->name : QString();
}

void MapViewController::mapViewDidTapAtCoordinate(double, double)
{
    m_selectedPinId.reset();
    if (m_mapView)
        m_mapView->hideCallout();
}

void MapViewController::mapViewDidStartRegionChange()
{
    if (locationState() != LocationState::onAndCentered)
        return;
    setLocationState(LocationState::onButNotCentered);
    updateLocationButton(true);
}

void MapViewController::mapViewDidChangeToRegion(const CoordinateRegion &region) { m_lastRegion = region; }

void MapViewController::calloutViewDidTapRightButton()
{
    if (!m_selectedPinId)
        return;
    showPlaceCard(navigationController(), m_restaurants, *m_selectedPinId, this, true);
}

void MapViewController::showMenu()
{
    if (SideMenuPresenter *presenter = SideMenuPresenter::shared())
        presenter->showSideMenu(true);
}
