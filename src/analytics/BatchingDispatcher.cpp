#include "analytics/BatchingDispatcher.h"

#include "analytics/HitEncoding.h"
#include "platform/Logging.h"

#include <QDateTime>
#include "platform/HttpExchange.h"

#include <QThread>
#include <QTimer>

namespace {
QUrl withPath(QUrl url, const QString &scheme, const QString &path)
{
    url.setScheme(scheme);
    QString base = url.path();
    if (base.endsWith(QLatin1Char('/')))
        base.chop(1);
    url.setPath(base + path);
    return url;
}
}

BatchingDispatcher::BatchingDispatcher(const QString &storePath, const QUrl &endpoint, QObject *parent)
    : QObject(parent)
    , httpURL(withPath(endpoint, QStringLiteral("http"), QStringLiteral("/collect")))
    , httpsURL(withPath(endpoint, QStringLiteral("https"), QStringLiteral("/collect")))
    , httpBatchURL(withPath(endpoint, QStringLiteral("http"), QStringLiteral("/batch")))
    , httpsBatchURL(withPath(endpoint, QStringLiteral("https"), QStringLiteral("/batch")))
    , m_store(storePath)
{
}

BatchingDispatcher::~BatchingDispatcher() = default;

bool BatchingDispatcher::rescheduleIfNeeded(std::function<void()> work)
{
    if (QThread::currentThread() == thread())
        return false;
    QMetaObject::invokeMethod(this, std::move(work), Qt::QueuedConnection);
    return true;
}

qint64 BatchingDispatcher::currentTime() const { return now ? now() : QDateTime::currentMSecsSinceEpoch(); }

void BatchingDispatcher::setUp()
{
    if (rescheduleIfNeeded([this] { setUp(); }))
        return;
    if (m_timer)
        return; // set up already
    m_store.open();
    m_timer = new QTimer(this);
    connect(m_timer, &QTimer::timeout, this, &BatchingDispatcher::timerFired);
    m_store.removeStaleHits(currentTime() - qint64(maxHitAge * 1000));
    {
        QMutexLocker lock(&m_hasHitsLock);
        m_hasHits = m_store.hitCount() > 0;
    }
    rescheduleDispatch();
}

void BatchingDispatcher::queueDispatch(const HitParameters &parameters)
{
    if (rescheduleIfNeeded([this, parameters] { queueDispatch(parameters); }))
        return;
    if (m_optOut)
        return;
    if (!HitEncoding::passesSampling(parameters))
        return;
    const qint64 timestamp = currentTime();
    // Checked before numbering, so a dropped hit leaves no gap in the numbers.
    if (maxHitSize > 0 && HitEncoding::parametersForHit({0, parameters, timestamp}, timestamp).size() > maxHitSize) {
        qCWarning(lcAnalytics) << "A hit larger than" << maxHitSize << "bytes was dropped";
        return;
    }
    HitParameters hit = parameters;
    const QString trackingId = hit.value(QStringLiteral("&tid"));
    if (!trackingId.isEmpty()) {
        const QString number = m_store.nextHitNumberForTrackingId(trackingId, hit.value(QStringLiteral("&cid")));
        if (!number.isEmpty())
            hit.insert(QStringLiteral("&_s"), number);
    }
    if (!m_store.addHit(hit, timestamp))
        return;
    emit hitPersisted(hit.value(QStringLiteral("&z")));
    setHasHits(true);
}

void BatchingDispatcher::setOptOut(bool optOut)
{
    if (rescheduleIfNeeded([this, optOut] { setOptOut(optOut); }))
        return;
    const bool turnedOff = optOut && !m_optOut;
    m_optOut = optOut;
    // What waits unsent is thrown away, not held back for a later opt-in.
    if (turnedOff) {
        m_store.deleteAllHits();
        setHasHits(false);
    }
}

void BatchingDispatcher::setDispatchInterval(double seconds)
{
    if (rescheduleIfNeeded([this, seconds] { setDispatchInterval(seconds); }))
        return;
    m_dispatchInterval = seconds;
    rescheduleDispatch();
}

void BatchingDispatcher::setHostReachable(bool reachable)
{
    if (rescheduleIfNeeded([this, reachable] { setHostReachable(reachable); }))
        return;
    m_hostReachable = reachable;
    rescheduleDispatch();
}

bool BatchingDispatcher::hasHits() const
{
    QMutexLocker lock(&m_hasHitsLock);
    return m_hasHits;
}

void BatchingDispatcher::setHasHits(bool hasHits)
{
    {
        // Only a change restarts the timer: hits arriving steadily must not keep postponing it.
        QMutexLocker lock(&m_hasHitsLock);
        if (m_hasHits == hasHits)
            return;
        m_hasHits = hasHits;
    }
    if (!rescheduleIfNeeded([this] { rescheduleDispatch(); }))
        rescheduleDispatch();
}

bool BatchingDispatcher::timerRunning() const { return m_timer && m_timer->isActive(); }

void BatchingDispatcher::cancelDispatch()
{
    if (m_timer)
        m_timer->stop();
}

void BatchingDispatcher::rescheduleDispatch()
{
    cancelDispatch();
    if (m_timer && canScheduleDispatch())
        m_timer->start(int(m_dispatchInterval * 1000));
}

void BatchingDispatcher::timerFired()
{
    if (canScheduleDispatch())
        dispatch();
}

HitList BatchingDispatcher::nextPendingHits()
{
    const qint64 cutoff = currentTime() - qint64(maxHitAge * 1000);
    for (;;) {
        const HitList fetched = m_store.fetchHits(maxHitsPerDispatch);
        if (fetched.isEmpty())
            return {};
        HitList stale;
        for (const Hit &hit : fetched)
            if (hit.timestamp <= cutoff)
                stale.append(hit);
        if (stale.isEmpty())
            return fetched;
        m_store.deleteHits(stale);
    }
}

HitList BatchingDispatcher::hitsForDispatch()
{
    return BatchChoice::hitsForDispatch(nextPendingHits(),
                                        {batchingStrategy, maxBodySize, m_serverBatchingDisabled, currentTime()});
}

void BatchingDispatcher::dispatchWithCompletionHandler(CompletionHandler handler)
{
    if (rescheduleIfNeeded([this, handler] { dispatchWithCompletionHandler(handler); }))
        return;
    if (handler)
        setDispatchInterval(-1.0);
    // A dispatch under way keeps its own handler; this one hears only that nothing more went.
    if (m_connection) {
        if (handler)
            handler(NoData);
        return;
    }
    m_currentCompletionHandler = handler;
    if (!canDispatch())
        return finish(NoData);
    if (m_serverBatchingDisabled && currentTime() - m_batchFailedTime > qint64(batchRetryInterval * 1000))
        m_serverBatchingDisabled = false;
    const HitList hits = hitsForDispatch();
    if (hits.isEmpty()) {
        setHasHits(false);
        return finish(NoData);
    }
    emit willDispatch();
    sendRequest(hits);
}

void BatchingDispatcher::sendRequest(const HitList &hits)
{
    const bool secure = HitEncoding::usesSecureTransport(hits.first());
    const bool single = hits.size() == 1;
    const QUrl url = single ? (secure ? httpsURL : httpURL) : (secure ? httpsBatchURL : httpBatchURL);
    const qint64 nowMs = currentTime();
    QList<QByteArray> lines;
    for (const Hit &hit : hits)
        lines.append(HitEncoding::parametersForHit(hit, nowMs));
    const QByteArray payload = HitEncoding::buildPayload(lines);

    RequestBuilder::HitRequest request;
    if (maxBodySize == 0 || payload.size() <= maxBodySize) {
        if (single && payload.size() < RequestBuilder::maxGetPayload)
            request = RequestBuilder::requestGetUrl(url, payload);
        else
            request = RequestBuilder::requestPostUrl(url, payload,
                                                     single ? RequestBuilder::None : RequestBuilder::Compression(compressionStrategy));
        if (maxBodySize != 0 && request.request.body.size() > maxBodySize)
            request.valid = false;
    }
    if (!request.valid) {
        qCWarning(lcAnalytics) << "Failed to generate request for hit(s).";
        deleteHits(hits);
        return finish(Good);
    }
    request.request.timeoutMs = requestTimeoutMs;
    auto *exchange = new HttpExchange(request.request, this);
    m_connection = exchange;
    connect(exchange, &HttpExchange::finished, this, [this, hits, exchange] {
        exchange->deleteLater();
        didSendHits(hits, *exchange);
    });
    exchange->start();
}

void BatchingDispatcher::didSendHits(const HitList &hits, const HttpExchange &exchange)
{
    m_connection.clear();
    const int code = exchange.status();
    if (code == 0) {
        qCInfo(lcAnalytics) << "No answer from the measurement service:" << exchange.errorString();
        return finish(Error);
    }
    if (hits.size() > 1 && !m_serverBatchingDisabled && (code == 302 || code == 404 || code == 502)) {
        // The service doesn't take batches now: the same hits go out one by one for a while.
        m_serverBatchingDisabled = true;
        m_batchFailedTime = currentTime();
        return finish(Error);
    }
    deleteHits(hits);
    finish(Good);
}

void BatchingDispatcher::deleteHits(const HitList &hits)
{
    m_store.deleteHits(hits);
    setHasHits(m_store.hitCount() > 0);
}

void BatchingDispatcher::finish(DispatchResult result)
{
    CompletionHandler handler = std::exchange(m_currentCompletionHandler, nullptr);
    if (handler)
        handler(result);
}
