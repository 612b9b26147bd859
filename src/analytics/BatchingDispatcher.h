#pragma once

#include "analytics/BatchChoice.h"
#include "analytics/Hit.h"
#include "analytics/HitStore.h"
#include "analytics/RequestBuilder.h"

#include <QMutex>
#include <QObject>
#include <QPointer>
#include <QUrl>

#include <functional>
#include <memory>

class HttpExchange;
class QTimer;

// Takes hits from the tracker, keeps them in the HitStore and sends them later, in batches, to
// the measurement service. Everything here runs on the thread the dispatcher lives on (the
// measurement thread in the app); a call from another thread hands itself over to that thread
// and says so by returning true from rescheduleIfNeeded. One request at a time.
class BatchingDispatcher : public QObject
{
    Q_OBJECT
public:
    // What a dispatch did: nothing to send (or no way to send it), the hits were dealt with (sent,
    // or dropped as unsendable), or no answer came and they wait for the next time.
    enum DispatchResult { NoData = 0, Good = 1, Error = 2 };
    using CompletionHandler = std::function<void(DispatchResult)>;

    // `endpoint` is the service's base URL; hits go to its /collect and batches to its /batch.
    BatchingDispatcher(const QString &storePath, const QUrl &endpoint, QObject *parent = nullptr);
    ~BatchingDispatcher() override;

    // Opens the store on the dispatcher's thread and starts the timer if there is something to send.
    // Once; later calls do nothing.
    void setUp();

    // The settings, each with the value a fresh dispatcher has. Change them before setUp or on
    // the dispatcher's thread.
    double dispatchInterval() const { return m_dispatchInterval; }
    int maxHitsPerDispatch = 20;
    double maxHitAge = 2592000.0;
    qint64 maxBodySize = 8192;
    qint64 maxHitSize = 8192;
    int compressionStrategy = RequestBuilder::Gzip;
    int batchingStrategy = BatchChoice::LargestTimeGap;
    double batchRetryInterval = 3600.0;
    int requestTimeoutMs = 30000;

    QUrl httpURL, httpsURL, httpBatchURL, httpsBatchURL;

    // The present time in milliseconds since 1970; tests set a clock of their own.
    qint64 (*now)() = nullptr;

    // From any thread: hands the hit to the dispatcher's thread and returns.
    void queueDispatch(const HitParameters &parameters);
    void setOptOut(bool optOut);
    void setDispatchInterval(double seconds);
    void setHostReachable(bool reachable);
    void dispatch() { dispatchWithCompletionHandler(nullptr); }
    // With a handler the periodic timer stops: the caller takes over dispatching.
    void dispatchWithCompletionHandler(CompletionHandler handler);

    bool hasHits() const;
    void setHasHits(bool hasHits);
    bool serverBatchingDisabled() const { return m_serverBatchingDisabled; }
    bool timerRunning() const;

    // The store, on the dispatcher's thread only.
    HitStore &store() { return m_store; }

signals:
    // A hit was committed to the store (its "&z"); the measurement thread emits it.
    void hitPersisted(const QString &cacheBuster);
    void willDispatch();

private:
    bool rescheduleIfNeeded(std::function<void()> work);
    qint64 currentTime() const;
    bool canDispatch() const { return m_hostReachable && hasHits(); }
    bool canScheduleDispatch() const { return m_dispatchInterval > 0 && canDispatch(); }
    void rescheduleDispatch();
    void cancelDispatch();
    void timerFired();
    HitList nextPendingHits();
    HitList hitsForDispatch();
    void sendRequest(const HitList &hits);
    void didSendHits(const HitList &hits, const HttpExchange &exchange);
    void deleteHits(const HitList &hits);
    void finish(DispatchResult result);

    HitStore m_store;
    double m_dispatchInterval = 120.0;
    bool m_hostReachable = true;
    bool m_optOut = false;
    bool m_serverBatchingDisabled = false;
    qint64 m_batchFailedTime = 0;
    mutable QMutex m_hasHitsLock;
    bool m_hasHits = true;
    QPointer<HttpExchange> m_connection;
    QTimer *m_timer = nullptr;
    CompletionHandler m_currentCompletionHandler;
};
