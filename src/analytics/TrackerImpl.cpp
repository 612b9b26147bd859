#include "analytics/TrackerImpl.h"

#include "platform/Logging.h"

#include <QDateTime>
#include <QRandomGenerator>

TrackerImpl::TrackerImpl(std::function<void(const HitParameters &)> queueModel)
    : m_queueModel(std::move(queueModel))
{
}

void TrackerImpl::set(const QString &key, const QString &value)
{
    QMutexLocker lock(&m_lock);
    m_model.insert(key, value);
}

QString TrackerImpl::get(const QString &key) const
{
    QMutexLocker lock(&m_lock);
    return m_model.value(key);
}

bool TrackerImpl::shouldRateLimit(double nowSeconds)
{
    if (m_lastTrackTime != 0 && m_trackingCredits < maxTrackingCredits && nowSeconds - m_lastTrackTime > 0)
        m_trackingCredits = std::min(maxTrackingCredits, m_trackingCredits + (nowSeconds - m_lastTrackTime) / 2);
    m_lastTrackTime = nowSeconds;
    if (m_trackingCredits >= 1.0) {
        m_trackingCredits -= 1.0;
        return false;
    }
    return true;
}

bool TrackerImpl::willSendScreenView()
{
    // The first screen of the process opens the session, which batching by session cuts at.
    return !std::exchange(m_sessionStarted, true);
}

void TrackerImpl::send(const HitParameters &parameters)
{
    QMutexLocker lock(&m_lock);
    const QString type = parameters.value(QStringLiteral("&t"));
    if (type.isEmpty())
        qCWarning(lcAnalytics) << "Bad or missing hit type.";
    if (type != QLatin1String("transaction") && type != QLatin1String("item")) {
        const double nowSeconds = now ? now() : double(QDateTime::currentMSecsSinceEpoch()) / 1000.0;
        if (shouldRateLimit(nowSeconds)) {
            qCWarning(lcAnalytics) << "Excessive tracking detected and throttled.";
            return;
        }
    }
    const QString effectiveType = type.isEmpty() ? m_model.value(QStringLiteral("&t")) : type;
    const bool opensSession = (effectiveType.isEmpty() || effectiveType == QLatin1String("appview")
                               || effectiveType == QLatin1String("screenview"))
                              && willSendScreenView();
    m_model.insert(QStringLiteral("&_u"), QString::number(++m_usageSequence));
    HitParameters hit = m_model;
    if (opensSession)
        hit.insert(QStringLiteral("&sc"), QStringLiteral("start"));
    hit.insert(parameters);
    // Tells one hit from another at the service, so a hit sent twice shows as such.
    hit.insert(QStringLiteral("&z"), QString::number(QRandomGenerator::global()->generate64()));
    if (m_queueModel)
        m_queueModel(hit);
}
