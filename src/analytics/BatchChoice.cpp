#include "analytics/BatchChoice.h"

#include "analytics/HitEncoding.h"
#include "platform/Logging.h"

namespace BatchChoice {

int batchByTimeGap(const HitList &hits, int maxHits)
{
    const int n = int(std::min<qsizetype>(hits.size(), maxHits));
    if (n <= 1)
        return std::max(n, 0);
    int answer = n;
    qint64 bestGap = 0;
    for (int i = 1; i < n; ++i) {
        const Hit &earlier = hits.at(i - 1), &later = hits.at(i);
        if (!earlier.hasTimestamp() || !later.hasTimestamp() || later.timestamp < earlier.timestamp)
            continue;
        const qint64 gap = later.timestamp - earlier.timestamp;
        if (gap >= bestGap) {
            bestGap = gap;
            answer = i;
        }
    }
    return answer;
}

int batchBySessionSplit(const HitList &hits, int maxHits)
{
    for (int i = std::min<int>(maxHits, int(hits.size())) - 1; i >= 1; --i) {
        const QString control = hits.at(i).parameters.value(QStringLiteral("&sc"));
        if (control == QLatin1String("start"))
            return i;
        if (control == QLatin1String("end"))
            return i + 1;
    }
    return maxHits;
}

HitList hitsForDispatch(const HitList &pending, const Settings &settings)
{
    if (pending.isEmpty())
        return {};
    if (settings.strategy == NoBatching || settings.serverBatchingDisabled)
        return {pending.first()};

    // Secure and plain hits never share a request.
    const bool secure = HitEncoding::usesSecureTransport(pending.first());
    HitList hits;
    for (const Hit &hit : pending)
        if (HitEncoding::usesSecureTransport(hit) == secure)
            hits.append(hit);

    // Running totals of the payload: each line is the encoded hit and its "\n".
    QList<qint64> runningTotals;
    qint64 total = 0;
    for (const Hit &hit : std::as_const(hits)) {
        total += HitEncoding::parametersForHit(hit, settings.nowMs).size() + 1;
        runningTotals.append(total);
    }
    const qint64 limit = settings.maxBodySize;
    if (limit == 0 || total <= limit)
        return hits;
    int fit = 0;
    while (fit < runningTotals.size() && runningTotals.at(fit) <= limit)
        ++fit;

    int count = 0;
    switch (settings.strategy) {
    case AsMuchAsFits:
        count = fit;
        break;
    case LargestTimeGap:
        count = batchByTimeGap(hits, fit);
        break;
    case NearHalfTheBody:
        if (total < 2 * limit) {
            // The highest index whose running total isn't above half, looked for from the end.
            int index = int(runningTotals.size()) - 1;
            while (index > 0 && 2 * runningTotals.at(index) > total)
                --index;
            count = index;
        } else {
            count = fit;
        }
        break;
    case HalfTheHits:
        count = std::min<int>(fit, int(hits.size()) / 2);
        break;
    case SessionBoundary:
        count = batchBySessionSplit(hits, fit);
        break;
    default:
        qCWarning(lcAnalytics) << "Unknown batching strategy" << settings.strategy;
        count = 1;
    }
    return hits.mid(0, std::max(count, 1));
}

}
