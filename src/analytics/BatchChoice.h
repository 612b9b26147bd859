#pragma once

#include "analytics/Hit.h"

// Which of the pending hits travel together in one request. Pure: the dispatcher gives the
// hits (oldest first) and its settings, and sends what comes back.
namespace BatchChoice {

enum Strategy {
    NoBatching = 0,
    AsMuchAsFits = 1,
    LargestTimeGap = 2,
    NearHalfTheBody = 3,
    HalfTheHits = 4,
    SessionBoundary = 5,
};

struct Settings {
    int strategy = LargestTimeGap;
    qint64 maxBodySize = 8192;        // 0: no limit
    bool serverBatchingDisabled = false;
    qint64 nowMs = 0;                 // for the encoded length ("qt" depends on it)
};

// The count cut at the largest gap in time among the first min(size, maxHits) hits; a tie goes
// to the later gap.
int batchByTimeGap(const HitList &hits, int maxHits);
// The count that ends before a session start or behind a session end, looked for from hit
// maxHits - 1 down to 1; maxHits when there is neither.
int batchBySessionSplit(const HitList &hits, int maxHits);

// The hits of the next request: the first hit and those of its transport that the strategy
// keeps; never empty when `pending` isn't, since a single hit goes out whatever its size.
HitList hitsForDispatch(const HitList &pending, const Settings &settings);

}
