#pragma once

#include "analytics/Hit.h"

#include <QMutex>

#include <functional>

// The one tracker: keeps the parameters every hit carries (its model), meters hits so that a
// runaway caller can't flood the service, and hands each hit to the dispatcher. Called from the
// main thread; the lock keeps a call from another thread safe.
class TrackerImpl
{
public:
    static constexpr double maxTrackingCredits = 60.0;

    // `queueModel` takes the finished hit (the dispatcher's queueDispatch); may be empty, then
    // hits go nowhere.
    explicit TrackerImpl(std::function<void(const HitParameters &)> queueModel);

    void set(const QString &key, const QString &value);
    QString get(const QString &key) const;
    // Sends a hit built by HitBuilder.
    void send(const HitParameters &parameters);

    // True when the hit must be dropped; otherwise spends a credit. Credits grow back by one
    // every two seconds, up to 60. `nowSeconds` is the present time.
    bool shouldRateLimit(double nowSeconds);

    // The present time in seconds; tests set a clock of their own.
    double (*now)() = nullptr;
    bool allowIDFACollection = false;

    double trackingCredits() const { return m_trackingCredits; }

private:
    // True for the first screen view of the process: it opens the session.
    bool willSendScreenView();

    mutable QMutex m_lock;
    std::function<void(const HitParameters &)> m_queueModel;
    HitParameters m_model;
    double m_trackingCredits = maxTrackingCredits;
    double m_lastTrackTime = 0;
    qint64 m_usageSequence = 0;
    bool m_sessionStarted = false;
};
