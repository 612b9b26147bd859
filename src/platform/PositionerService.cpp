#include "platform/PositionerService.h"

#include <QFile>
#include <QGeoPositionInfoSource>
#include <QLoggingCategory>
#include <QNmeaPositionInfoSource>

Q_LOGGING_CATEGORY(lcPosition, "velmora.position")

namespace {
QString &logPath()
{
    static QString path;
    return path;
}
std::unique_ptr<PositionerService> &instance()
{
    static std::unique_ptr<PositionerService> shared;
    return shared;
}
}

PositionerService &PositionerService::sharedInstance()
{
    if (!instance())
        instance().reset(new PositionerService(logPath()));
    return *instance();
}

void PositionerService::useLog(const QString &nmeaPath)
{
    logPath() = nmeaPath;
    instance().reset();
}

PositionerService *PositionerService::existingInstance() { return instance().get(); }

PositionerService::PositionerService(const QString &path)
{
    if (!path.isEmpty()) {
        auto *file = new QFile(path, this);
        if (file->open(QIODevice::ReadOnly)) {
            auto *nmea = new QNmeaPositionInfoSource(QNmeaPositionInfoSource::SimulationMode, this);
            nmea->setDevice(file);
            m_source = nmea;
        } else {
            qCWarning(lcPosition) << "cannot read the position log" << path << ":" << file->errorString();
        }
    } else {
        m_source = QGeoPositionInfoSource::createDefaultSource(this);
        if (!m_source)
            qCInfo(lcPosition) << "this device has no position source";
    }
    if (m_source)
        connect(m_source, &QGeoPositionInfoSource::positionUpdated, this, &PositionerService::received);
}

PositionerService::~PositionerService() = default;

void PositionerService::startLocationUpdate()
{
    m_updating = true;
    if (m_source)
        m_source->startUpdates();
}

void PositionerService::cancelLocationUpdate()
{
    m_updating = false;
    if (m_source)
        m_source->stopUpdates();
}

void PositionerService::received(const QGeoPositionInfo &info)
{
    if (!m_updating || !info.isValid())
        return;
    GeoLocation location{info.coordinate().latitude(), info.coordinate().longitude(), 0};
    if (info.hasAttribute(QGeoPositionInfo::HorizontalAccuracy))
        location.horizontalAccuracy = info.attribute(QGeoPositionInfo::HorizontalAccuracy);
    if (!location.isArtefact())
        m_last = location;
    if (m_delegate)
        m_delegate->positionerServiceUpdatedCurrentLocation(location);
}
