#pragma once

#include "analytics/TrackerImpl.h"

#include <QObject>
#include <QUrl>

#include <memory>

class BatchingDispatcher;
class QThread;

// Where and how hits are sent: a deployment's values, or a test's.
struct MeasurementConfiguration {
    QUrl endpoint;                  // the service; hits go to its /collect and /batch
    QString trackingId;
    QString clientId;
    QString storePath;              // the hit store's file
    double dispatchInterval = 120.0;
};

// The analytics facility: the one tracker, the opt-out, and the measurement thread with the
// dispatcher and its store. Until started, hits go nowhere.
class Measurement : public QObject
{
    Q_OBJECT
public:
    static Measurement &sharedInstance();
    // Tests install a fresh facility; null puts the app's own back.
    static void setShared(Measurement *measurement);

    Measurement();
    ~Measurement() override;

    // Starts the measurement thread with its dispatcher. Once only; false with `error` set when
    // the configuration can't work (the tracker then drops what it is given).
    bool start(const MeasurementConfiguration &configuration, QString *error);
    bool isStarted() const { return m_dispatcher != nullptr; }
    // Holds the dispatcher's sending while the network is down. Apart from start(): the
    // reachability backend's plugins and bus connection are worth keeping off the first frame,
    // and until then the dispatcher takes the network to be there.
    void watchReachability();

    TrackerImpl &defaultTracker() { return m_tracker; }
    BatchingDispatcher *dispatcher() const { return m_dispatcher; }

    bool optOut() const { return m_optOut; }
    // Opting out throws the waiting hits away; opting in again doesn't bring them back.
    void setOptOut(bool optOut);

    // A C++ exception that nothing caught is sent as an "exception" hit before the process ends.
    void setTrackUncaughtExceptions(bool track);

    // Sends what waits and returns when the service answered or `timeoutMs` passed, whichever is
    // first: what an ending app does so that its last minutes aren't held until the next start.
    void dispatchAndWait(int timeoutMs);

signals:
    void optOutChanged(bool optOut);

private:
    void queueModel(const HitParameters &hit);

    TrackerImpl m_tracker;
    bool m_watchingReachability = false;
    bool m_optOut = false;
    QThread *m_thread = nullptr;
    BatchingDispatcher *m_dispatcher = nullptr;
};

// Reads the deployment's values (the settings "analytics-url", "analytics-tracking-id",
// "analytics-dispatch-interval"), makes the client id once and starts the shared facility.
class MeasurementContext
{
public:
    static MeasurementContext &sharedInstance();
    // --analytics-url: a collector of one's own instead of the deployment's.
    static void setEndpointOverride(const QUrl &endpoint);
    bool configureWithError(QString *error);
};
