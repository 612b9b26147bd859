#pragma once

#include "map/MBTilesPack.h"
#include "map/MapCamera.h"
#include "map/PinIndex.h"
#include "map/PinRenderer.h"
#include "map/StreetTiles.h"
#include "map/TileDecoder.h"

#include <QElapsedTimer>
#include <QImage>
#include <QPointer>
#include <QQuickItem>
#include <QTimer>
#include <QVariant>

#include <optional>

class MapCalloutView;
class MapViewDelegate;

// Where the camera looks: centre and a fractional zoom level.
struct CoordinateRegion {
    double latitude = 0;
    double longitude = 0;
    float zoomLevel = 0;
    bool operator==(const CoordinateRegion &) const = default;
};

// One pin. Its identifier is what a selection reports.
struct Annotation {
    int identifier = 0;
    int annotationType = 0;
    double latitude = 0;
    double longitude = 0;
};

// The map engine's view: the base map's tiles (or a plain grid without one), every pin in one
// scene-graph node, the user's position, and the one shared callout's place. A finger drags
// and pinches, a wheel zooms at the pointer, a tap selects a pin or reports the coordinate.
class MapView : public QQuickItem
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(double latitude READ latitude NOTIFY cameraChanged)
    Q_PROPERTY(double longitude READ longitude NOTIFY cameraChanged)
    Q_PROPERTY(double zoomLevel READ zoomLevel NOTIFY cameraChanged)
    Q_PROPERTY(bool hasBaseMap READ hasBaseMap NOTIFY baseMapChanged)
    Q_PROPERTY(bool hasStreetMap READ hasStreetMap NOTIFY baseMapChanged)
    Q_PROPERTY(int annotationCount READ annotationCount NOTIFY annotationsChanged)
    Q_PROPERTY(MapCalloutView *calloutView READ calloutView CONSTANT)
    Q_PROPERTY(bool calloutVisible READ calloutVisible NOTIFY calloutChanged)
    // Where the callout's arrow points, in this item's coordinates: above the selected pin by
    // the offset it was opened with.
    Q_PROPERTY(QPointF calloutPoint READ calloutPoint NOTIFY calloutPointChanged)
    // The callout's box: its body and its arrow, which stands on the callout point.
    Q_PROPERTY(QSizeF calloutSize READ calloutSize CONSTANT)
    // The pins a screen reader is offered, once the camera rests: {identifier, name, x, y}.
    Q_PROPERTY(QVariantList readablePins READ readablePins NOTIFY readablePinsChanged)

public:
    struct Settings {
        bool rotationEnabled = false;
        bool showCurrentPosition = false;
        bool showAccuracyCircle = true;
    };

    static constexpr double minimumZoom = 2.0;
    static constexpr double maximumZoom = 19.0;

    explicit MapView(QQuickItem *parent = nullptr);
    ~MapView() override;

    MapViewDelegate *delegate() const { return m_delegate; }
    void setDelegate(MapViewDelegate *delegate) { m_delegate = delegate; }

    // Base map: a pack must have tiles around `region` (longitude x, latitude y) to be taken.
    // The first raster pack draws the land and the sea, the first street map (vector tiles)
    // draws over it. A refused pack is logged once; with none the view draws its plain grid.
    bool setTilePacks(const QStringList &paths, const QRectF &region);
    bool setTilePack(const QString &path, const QRectF &region) { return setTilePacks({path}, region); }
    bool hasBaseMap() const { return m_pack.isOpen() || m_streets.isOpen(); }
    bool hasStreetMap() const { return m_streets.isOpen(); }
    QString tilePackPath() const { return m_pack.isOpen() ? m_pack.path() : QString(); }
    StreetTiles &streetTiles() { return m_streets; }

    // Pins
    void addAnnotation(const Annotation &annotation);
    int annotationCount() const { return m_pins.count(); }
    const PinIndex &pinIndex() const { return m_pins; }
    // The identifier of the pin a tap at this item's point would select.
    std::optional<int> annotationAt(const QPointF &point) const;
    // What a tap on the pin does: a reader's press on it comes here too.
    Q_INVOKABLE void selectAnnotation(int identifier);
    QVariantList readablePins() const { return m_readablePins; }

    // Camera
    void setVisibleRegion(const CoordinateRegion &region);
    CoordinateRegion visibleRegion() const;
    double latitude() const { return visibleRegion().latitude; }
    double longitude() const { return visibleRegion().longitude; }
    double zoomLevel() const { return m_camera.zoom; }
    const MapCamera &camera() const { return m_camera; }
    QPointF pointForCoordinate(double latitude, double longitude) const;

    // Callout
    MapCalloutView *calloutView() const { return m_callout; }
    void showCalloutForAnnotation(int identifier, const QPointF &offset, bool animated);
    void hideCallout();
    bool calloutVisible() const { return m_calloutPin.has_value(); }
    static QSizeF calloutSize() { return {270, 53}; }
    // How far from the view's edges an opened callout is kept.
    static constexpr double calloutMargin = 8;
    QPointF calloutPoint() const;

    // Position
    Settings &settings() { return m_settings; }
    const Settings &settings() const { return m_settings; }
    void setShowCurrentPosition(bool show);
    void setCurrentPosition(double latitude, double longitude, double accuracyMeters);
    std::optional<QPointF> currentPosition() const; // x longitude, y latitude
    void centerOnCurrentPosition();

    // The last frame's cost on this thread, for the benchmark.
    qint64 lastFrameNanoseconds() const { return m_lastFrameNanoseconds; }
    // Renders what the next frame shows into a picture, without a window (benchmarks, tests).
    QImage renderPins(qreal devicePixelRatio = 1.0);

    // Zooms by `zoomDelta` levels keeping the world point under `point` where it is (the wheel's
    // and the pinch's zoom).
    void zoomAt(const QPointF &point, double zoomDelta);

signals:
    void cameraChanged();
    void baseMapChanged();
    void annotationsChanged();
    void calloutChanged();
    void calloutPointChanged();
    void readablePinsChanged();

protected:
    QSGNode *updatePaintNode(QSGNode *oldNode, UpdatePaintNodeData *data) override;
    void geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseUngrabEvent() override;
    void wheelEvent(QWheelEvent *event) override;
    // The keyboard's map: arrows pan by a fifth of the view, + and - zoom by one level.
    void keyPressEvent(QKeyEvent *event) override;
    void touchEvent(QTouchEvent *event) override;

private:
    void setCamera(const QPointF &center, double zoom);
    void updateStreets(QSGNode *root, QQuickWindow *window);
    void bringCalloutIntoView();
    void beginRegionChange();
    void endRegionChange();
    void tap(const QPointF &point);

    MapViewDelegate *m_delegate = nullptr;
    MBTilesPack m_pack;
    TileDecoder m_tileDecoder; // the same pack's tiles, decoded off the main thread
    StreetTiles m_streets;
    int m_packGeneration = 0;
    MapCamera m_camera;
    PinIndex m_pins;
    PinRenderer m_pinRenderer;
    QImage m_pinsImage;
    Settings m_settings;
    std::optional<QPointF> m_position; // world
    double m_accuracyMeters = 0;
    MapCalloutView *m_callout = nullptr;
    std::optional<int> m_calloutPin;
    QPointF m_calloutOffset;

    // Gestures
    QPointF m_pressPoint;
    QPointF m_lastPoint;
    bool m_pressed = false;
    bool m_dragging = false;
    bool m_regionChanging = false;
    double m_pinchStartDistance = 0;
    double m_pinchStartZoom = 0;
    QPointF m_pinchLastCenter;
    bool m_pinching = false;
    qint64 m_lastFrameNanoseconds = 0;
    QVariantList m_readablePins;
    // The reader's pins are found anew once a move or a batch of pins has settled, never in a frame.
    QTimer m_readablePinsTimer;
    void refreshReadablePinsSoon();
    void refreshReadablePins();
};
