#pragma once

#include "map/MapViewDelegate.h"
#include "map/MapViewWrapper.h"
#include "platform/PositionerService.h"
#include "presentation/ViewController.h"
#include "richtext/RichString.h"

#include <QPointer>
#include <optional>

class BarButtonItem;
class Restaurants;

// The map screen. From the side menu it is the global map (rid -1); pushed from a card it shows
// that place zoomed in with its callout open. Both borrow the process's one map view, and both
// drive the one location state with the button on the right of the bar.
class MapViewController : public ViewController, public MapViewDelegate, public MapCalloutDelegate, public PositionerServiceDelegate
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made through the Storyboard registry")
    Q_PROPERTY(int rid READ rid WRITE setRid NOTIFY ridChanged)
    Q_PROPERTY(QQuickItem *mapView READ mapViewItem NOTIFY mapViewGrabbed)
    Q_PROPERTY(bool loading READ loading NOTIFY loadingChanged)
    Q_PROPERTY(int locationState READ locationStateValue NOTIFY locationStateChanged)

public:
    MapViewController(Restaurants &restaurants, const QString &documentsDirectory, QObject *parent = nullptr);
    ~MapViewController() override;

    QUrl viewUrl() const override { return QUrl(QStringLiteral("qrc:/Velmora/map/MapScreen.qml")); }

    int rid() const { return m_rid; }
    void setRid(int rid);
    bool globalMap() const { return m_rid == -1; }
    MapView *mapView() const { return m_mapView; }
    bool loading() const { return m_loading; }
    LocationState locationState() const { return MapViewWrapper::shared().locationState; }
    std::optional<int> selectedPinId() const { return m_selectedPinId; }
    BarButtonItem *locationButton() const;

    void viewWillAppear() override;
    void loadMapAsync();
    void setupMap();
    void adjustRegion();
    void updateLocationButton(bool animated);
    Q_INVOKABLE void locationButtonTouched();
    void turnOffLocation();
    void centerAndZoomTo(const std::optional<GeoLocation> &location);
    void selectAnnotation(std::optional<int> identifier);
    void showMenu();

    void mapViewDidSelectAnnotation(int identifier) override;
    void mapViewDidTapAtCoordinate(double latitude, double longitude) override;
    void mapViewDidStartRegionChange() override;
    void mapViewDidChangeToRegion(const CoordinateRegion &region) override;
    QString mapViewTitleForAnnotation(int identifier) override;
    void calloutViewDidTapRightButton() override;
    void positionerServiceUpdatedCurrentLocation(const GeoLocation &location) override;

signals:
    void ridChanged();
    void mapViewGrabbed();
    void loadingChanged();
    void locationStateChanged();

protected:
    void viewDidLoad() override;

private:
    QQuickItem *mapViewItem() const;
    int locationStateValue() const { return int(locationState()); }
    void setLocationState(LocationState state);
    void setLoading(bool loading);
    void localize();

    Restaurants &m_restaurants;
    QString m_documentsDirectory;
    RichString R;
    int m_rid = -1;
    QPointer<MapView> m_mapView;
    std::optional<CoordinateRegion> m_lastRegion;
    std::optional<int> m_selectedPinId;
    bool m_loading = false;
    BarButtonItem *m_locOffButton = nullptr;
    BarButtonItem *m_locOnAndCenteredButton = nullptr;
    BarButtonItem *m_locOnNotCenteredButton = nullptr;
    BarButtonItem *m_locActivityIndicator = nullptr;
    QList<BarButtonItem *> m_shownRightItems;
};
