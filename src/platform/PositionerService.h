#pragma once

#include <QObject>
#include <QString>

#include <memory>
#include <optional>

class QGeoPositionInfoSource;
class QGeoPositionInfo;

struct GeoLocation {
    double latitude = 0;
    double longitude = 0;
    double horizontalAccuracy = 0; // metres, 0 when unknown

    // A fix at exactly (0, 0) is what a receiver reports before it knows anything, not a place
    // in the Gulf of Guinea.
    bool isArtefact() const { return latitude == 0 && longitude == 0; }
};

// Told of the user's position while updates run.
class PositionerServiceDelegate
{
public:
    virtual ~PositionerServiceDelegate() = default;
    virtual void positionerServiceUpdatedCurrentLocation(const GeoLocation &location) = 0;
};

// The one source of the user's position: the platform's (satellite, network) where there is
// one, or a recorded NMEA log replayed at its own pace (`--position-log`), for demos and tests.
// Nothing runs until startLocationUpdate(). Without a source, or without the user's permission,
// no update ever comes.
class PositionerService : public QObject
{
    Q_OBJECT

public:
    static PositionerService &sharedInstance();
    // From now on the shared instance replays this log instead of asking the platform. Lines
    // that aren't NMEA sentences are skipped one by one.
    static void useLog(const QString &nmeaPath);
    // The shared instance if one was made, else null: for letting go of it without making one.
    static PositionerService *existingInstance();

    ~PositionerService() override;

    PositionerServiceDelegate *delegate() const { return m_delegate; }
    void setDelegate(PositionerServiceDelegate *delegate) { m_delegate = delegate; }

    void startLocationUpdate();
    void cancelLocationUpdate();
    bool isUpdating() const { return m_updating; }
    bool hasSource() const { return m_source != nullptr; }
    // The last real position any update gave, as a location manager keeps it.
    std::optional<GeoLocation> lastKnownLocation() const { return m_last; }

private:
    explicit PositionerService(const QString &logPath);
    void received(const QGeoPositionInfo &info);

    QGeoPositionInfoSource *m_source = nullptr;
    PositionerServiceDelegate *m_delegate = nullptr;
    std::optional<GeoLocation> m_last;
    bool m_updating = false;
};
