#include "map/MapView.h"

#include "map/MapCalloutView.h"
#include "map/MapViewDelegate.h"
#include "map/ReadablePins.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QLoggingCategory>
#include <QQuickWindow>
#include <QStyleHints>

#include <algorithm>
#include <cmath>

Q_DECLARE_LOGGING_CATEGORY(lcMapTiles)

MapView::MapView(QQuickItem *parent)
    : QQuickItem(parent)
    , m_callout(new MapCalloutView(this))
{
    setFlag(ItemHasContents);
    setAcceptedMouseButtons(Qt::LeftButton);
    setAcceptTouchEvents(true);
    setClip(true);
    setActiveFocusOnTab(true);
    // A street tile drawn on a worker shows in the next frame.
    connect(&m_streets, &StreetTiles::tileReady, this, &QQuickItem::update, Qt::QueuedConnection);
    connect(&m_tileDecoder, &TileDecoder::tileReady, this, &QQuickItem::update, Qt::QueuedConnection);
    m_readablePinsTimer.setSingleShot(true);
    m_readablePinsTimer.setInterval(150);
    connect(&m_readablePinsTimer, &QTimer::timeout, this, &MapView::refreshReadablePins);
}

MapView::~MapView() = default;

bool MapView::setTilePacks(const QStringList &paths, const QRectF &region)
{
    m_pack = MBTilesPack();
    m_streets.close();
    for (const QString &path : paths) {
        if (path.isEmpty())
            continue;
        QString error;
        MBTilesPack pack;
        if (!pack.open(path, region, &error))
            qCWarning(lcMapTiles).noquote() << error << "; the pack is not used";
        else if (pack.isVector() && !m_streets.isOpen())
            m_streets.open(std::move(pack), region, &error);
        else if (!pack.isVector() && !m_pack.isOpen())
            m_pack = std::move(pack);
    }
    m_tileDecoder.setPack(m_pack.isOpen() ? m_pack.path() : QString());
    if (!hasBaseMap())
        qCWarning(lcMapTiles).noquote() << "no base map in the documents folder; the map shows its plain background";
    ++m_packGeneration;
    emit baseMapChanged();
    update();
    return hasBaseMap();
}

void MapView::addAnnotation(const Annotation &annotation)
{
    if (!TileMath::isValidCoordinate(annotation.latitude, annotation.longitude))
        return;
    m_pins.add(annotation.identifier, TileMath::worldFromCoordinate(annotation.latitude, annotation.longitude));
    emit annotationsChanged();
    refreshReadablePinsSoon();
    update();
}

void MapView::selectAnnotation(int identifier)
{
    if (m_delegate)
        m_delegate->mapViewDidSelectAnnotation(identifier);
}

void MapView::refreshReadablePinsSoon()
{
    if (!m_readablePinsTimer.isActive())
        m_readablePinsTimer.start();
}

void MapView::refreshReadablePins()
{
    // Enough to read around the middle; the rest is a pan or a zoom away.
    constexpr int readableLimit = 20;
    QVariantList pins;
    for (const ReadablePin &pin : ::readablePins(m_pins, m_camera, readableLimit))
        pins.append(QVariantMap{{QStringLiteral("identifier"), pin.identifier},
                                {QStringLiteral("name"), m_delegate ? m_delegate->mapViewTitleForAnnotation(pin.identifier) : QString()},
                                {QStringLiteral("x"), pin.point.x()},
                                {QStringLiteral("y"), pin.point.y()}});
    m_readablePins = pins;
    emit readablePinsChanged();
}

std::optional<int> MapView::annotationAt(const QPointF &point) const
{
    const int index = m_pins.hitTest(point, m_camera);
    if (index < 0)
        return std::nullopt;
    return m_pins.pins()[size_t(index)].identifier;
}

void MapView::setVisibleRegion(const CoordinateRegion &region)
{
    if (!TileMath::isValidCoordinate(region.latitude, region.longitude))
        return;
    setCamera(TileMath::worldFromCoordinate(region.latitude, region.longitude), region.zoomLevel);
    if (m_delegate)
        m_delegate->mapViewDidChangeToRegion(visibleRegion());
    refreshReadablePinsSoon();
}

CoordinateRegion MapView::visibleRegion() const
{
    const QPointF coordinate = TileMath::coordinateFromWorld(m_camera.center);
    return {coordinate.y(), coordinate.x(), float(m_camera.zoom)};
}

QPointF MapView::pointForCoordinate(double latitude, double longitude) const
{
    return m_camera.toScreen(TileMath::worldFromCoordinate(latitude, longitude));
}

void MapView::setCamera(const QPointF &center, double zoom)
{
    m_camera.zoom = std::clamp(zoom, minimumZoom, maximumZoom);
    m_camera.center = QPointF(std::clamp(center.x(), 0.0, 1.0), std::clamp(center.y(), 0.0, 1.0));
    emit cameraChanged();
    if (m_calloutPin)
        emit calloutPointChanged();
    update();
}

void MapView::zoomAt(const QPointF &point, double zoomDelta)
{
    // The world point under the fingers stays under them.
    const QPointF anchor = m_camera.toWorld(point);
    const double zoom = std::clamp(m_camera.zoom + zoomDelta, minimumZoom, maximumZoom);
    const QPointF fromMiddle = point - QPointF(m_camera.viewport.width() / 2.0, m_camera.viewport.height() / 2.0);
    setCamera(anchor - fromMiddle / TileMath::worldPixels(zoom), zoom);
}

void MapView::showCalloutForAnnotation(int identifier, const QPointF &offset, bool animated)
{
    Q_UNUSED(animated) // the callout appears at once: it must never hide what a tap just chose
    if (m_pins.indexOf(identifier) < 0)
        return;
    m_calloutPin = identifier;
    m_calloutOffset = offset;
    emit calloutChanged();
    emit calloutPointChanged();
    bringCalloutIntoView();
}

void MapView::bringCalloutIntoView()
{
    // A callout cut at an edge hides its own button: the map moves by what is cut.
    const QSizeF size = calloutSize();
    const QSizeF view = m_camera.viewport;
    if (view.width() < size.width() + 2 * calloutMargin || view.height() < size.height() + 2 * calloutMargin)
        return;
    const QPointF point = calloutPoint();
    const QRectF box(point.x() - size.width() / 2, point.y() - size.height(), size.width(), size.height());
    const auto shift = [](double low, double high, double limit) {
        if (low < calloutMargin)
            return calloutMargin - low;
        if (high > limit - calloutMargin)
            return limit - calloutMargin - high;
        return 0.0;
    };
    const QPointF by(shift(box.left(), box.right(), view.width()), shift(box.top(), box.bottom(), view.height()));
    if (!by.isNull())
        setCamera(m_camera.center - by / m_camera.scale(), m_camera.zoom);
}

void MapView::hideCallout()
{
    if (!m_calloutPin)
        return;
    m_calloutPin.reset();
    emit calloutChanged();
}

QPointF MapView::calloutPoint() const
{
    const int index = m_calloutPin ? m_pins.indexOf(*m_calloutPin) : -1;
    if (index < 0)
        return {};
    return m_camera.toScreen(m_pins.pins()[size_t(index)].world) - m_calloutOffset;
}

void MapView::setShowCurrentPosition(bool show)
{
    m_settings.showCurrentPosition = show;
    update();
}

void MapView::setCurrentPosition(double latitude, double longitude, double accuracyMeters)
{
    if (!TileMath::isValidCoordinate(latitude, longitude))
        return;
    m_position = TileMath::worldFromCoordinate(latitude, longitude);
    m_accuracyMeters = accuracyMeters;
    update();
}

std::optional<QPointF> MapView::currentPosition() const
{
    if (!m_position)
        return std::nullopt;
    return TileMath::coordinateFromWorld(*m_position);
}

void MapView::centerOnCurrentPosition()
{
    if (m_position)
        setCamera(*m_position, m_camera.zoom);
}

QImage MapView::renderPins(qreal devicePixelRatio)
{
    m_pinRenderer.render(m_pins, m_camera, devicePixelRatio, m_pinsImage);
    if (m_settings.showCurrentPosition && m_position) {
        const double latitude = TileMath::coordinateFromWorld(*m_position).y();
        const double metersPerPixel = 40075016.686 * std::cos(latitude * M_PI / 180.0) / m_camera.scale();
        PinRenderer::drawPosition(m_pinsImage, m_camera, devicePixelRatio, *m_position, m_accuracyMeters / metersPerPixel,
                                  m_settings.showAccuracyCircle);
    }
    return m_pinsImage;
}

void MapView::geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry)
{
    QQuickItem::geometryChange(newGeometry, oldGeometry);
    m_camera.viewport = newGeometry.size();
    refreshReadablePinsSoon();
    if (m_calloutPin)
        emit calloutPointChanged();
    update();
}

void MapView::beginRegionChange()
{
    if (m_regionChanging)
        return;
    m_regionChanging = true;
    if (m_delegate)
        m_delegate->mapViewDidStartRegionChange();
}

void MapView::endRegionChange()
{
    if (!m_regionChanging)
        return;
    m_regionChanging = false;
    if (m_delegate)
        m_delegate->mapViewDidChangeToRegion(visibleRegion());
    refreshReadablePinsSoon();
}

void MapView::tap(const QPointF &point)
{
    if (const std::optional<int> identifier = annotationAt(point)) {
        selectAnnotation(*identifier);
        return;
    }
    const QPointF coordinate = TileMath::coordinateFromWorld(m_camera.toWorld(point));
    if (m_delegate)
        m_delegate->mapViewDidTapAtCoordinate(coordinate.y(), coordinate.x());
}

void MapView::mousePressEvent(QMouseEvent *event)
{
    m_pressed = true;
    m_dragging = false;
    m_pressPoint = m_lastPoint = event->position();
    event->accept();
}

void MapView::mouseMoveEvent(QMouseEvent *event)
{
    if (!m_pressed)
        return;
    const QPointF point = event->position();
    if (!m_dragging && (point - m_pressPoint).manhattanLength() >= QGuiApplication::styleHints()->startDragDistance()) {
        m_dragging = true;
        setKeepMouseGrab(true);
        beginRegionChange();
    }
    if (m_dragging) {
        setCamera(m_camera.center - (point - m_lastPoint) / m_camera.scale(), m_camera.zoom);
        m_lastPoint = point;
    }
    event->accept();
}

void MapView::mouseReleaseEvent(QMouseEvent *event)
{
    if (!m_pressed)
        return;
    m_pressed = false;
    setKeepMouseGrab(false);
    if (m_dragging) {
        m_dragging = false;
        endRegionChange();
    } else {
        tap(event->position());
    }
    event->accept();
}

void MapView::mouseUngrabEvent()
{
    m_pressed = false;
    if (m_dragging) {
        m_dragging = false;
        endRegionChange();
    }
}

void MapView::keyPressEvent(QKeyEvent *event)
{
    const QPointF middle(width() / 2, height() / 2);
    const QPointF step(width() / 5, height() / 5);
    QPointF by; // how far the map's content moves on screen
    double zoom = 0;
    switch (event->key()) {
    case Qt::Key_Left: by = QPointF(step.x(), 0); break;
    case Qt::Key_Right: by = QPointF(-step.x(), 0); break;
    case Qt::Key_Up: by = QPointF(0, step.y()); break;
    case Qt::Key_Down: by = QPointF(0, -step.y()); break;
    case Qt::Key_Plus:
    case Qt::Key_Equal: zoom = 1; break;
    case Qt::Key_Minus: zoom = -1; break;
    default: event->ignore(); return;
    }
    beginRegionChange();
    if (zoom != 0)
        zoomAt(middle, zoom);
    else
        setCamera(m_camera.center - by / m_camera.scale(), m_camera.zoom);
    endRegionChange();
    event->accept();
}

void MapView::wheelEvent(QWheelEvent *event)
{
    const double steps = event->angleDelta().y() / 120.0;
    if (steps == 0) {
        event->ignore();
        return;
    }
    beginRegionChange();
    zoomAt(event->position(), steps * 0.5);
    endRegionChange();
    event->accept();
}

void MapView::touchEvent(QTouchEvent *event)
{
    const QList<QEventPoint> &points = event->points();
    if (points.size() < 2) {
        if (m_pinching) {
            m_pinching = false;
            endRegionChange();
            event->accept();
            return;
        }
        // One finger drags and taps as the mouse does: let Qt make mouse events of it.
        event->ignore();
        return;
    }
    const QPointF a = points.at(0).position(), b = points.at(1).position();
    const double distance = std::hypot(a.x() - b.x(), a.y() - b.y());
    const QPointF center = (a + b) / 2;
    if (!m_pinching || event->type() == QEvent::TouchBegin) {
        m_pinching = true;
        m_pressed = false;
        m_pinchStartDistance = std::max(distance, 1.0);
        m_pinchStartZoom = m_camera.zoom;
        m_pinchLastCenter = center;
        beginRegionChange();
    } else {
        // Follow the fingers' middle, then scale about it.
        setCamera(m_camera.center - (center - m_pinchLastCenter) / m_camera.scale(), m_camera.zoom);
        m_pinchLastCenter = center;
        zoomAt(center, m_pinchStartZoom + std::log2(std::max(distance, 1.0) / m_pinchStartDistance) - m_camera.zoom);
    }
    if (event->type() == QEvent::TouchEnd) {
        m_pinching = false;
        endRegionChange();
    }
    event->accept();
}
