#include "analytics/BatchChoice.h"
#include "analytics/HitEncoding.h"
#include "analytics/HitStore.h"
#include "analytics/TrackerImpl.h"
#include "toolkit/collector/HitCollector.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {
Hit hitAt(qint64 timestamp, const QString &label = QString(), qint64 bytes = 0)
{
    return {0,
            {{QStringLiteral("&t"), QStringLiteral("event")},
             {QStringLiteral("&el"), label},
             {QStringLiteral("&pad"), QString(bytes, QLatin1Char('x'))},
             {QStringLiteral("useSecure"), QStringLiteral("0")}},
            timestamp};
}

HitList hitsOneSecondApart(int count, qint64 bytes = 0)
{
    HitList hits;
    for (int i = 0; i < count; ++i)
        hits.append(hitAt(1'000'000 + i * 1000, QString::number(i), bytes));
    return hits;
}

QStringList labels(const HitList &hits)
{
    QStringList out;
    for (const Hit &hit : hits)
        out.append(hit.parameters.value(QStringLiteral("&el")));
    return out;
}

double clockSeconds = 0;
double testClock() { return clockSeconds; }
qint64 storeClockMs = 0;
qint64 storeClock() { return storeClockMs; }
}

// Catches: credits that don't run out at 60, that come back faster or slower than one per two
// seconds or beyond 60, and money hits that are throttled or cost a credit.
TEST(HitPipeline, TheRateLimitAllowsSixtyThenOneEveryTwoSeconds)
{
    QList<HitParameters> queued;
    TrackerImpl tracker([&](const HitParameters &hit) { queued.append(hit); });
    tracker.now = testClock;
    clockSeconds = 1000;
    for (int i = 0; i < 61; ++i)
        tracker.send({{QStringLiteral("&t"), QStringLiteral("event")}});
    EXPECT_EQ(queued.size(), 60) << "the sixty-first is throttled";
    tracker.send({{QStringLiteral("&t"), QStringLiteral("transaction")}});
    tracker.send({{QStringLiteral("&t"), QStringLiteral("item")}});
    EXPECT_EQ(queued.size(), 62) << "money hits are never throttled";
    clockSeconds += 1.0;
    tracker.send({{QStringLiteral("&t"), QStringLiteral("event")}});
    EXPECT_EQ(queued.size(), 62) << "half a credit isn't enough";
    clockSeconds += 1.0;
    tracker.send({{QStringLiteral("&t"), QStringLiteral("event")}});
    EXPECT_EQ(queued.size(), 63) << "two seconds give one back";
    clockSeconds += 1000;
    for (int i = 0; i < 70; ++i)
        tracker.send({{QStringLiteral("&t"), QStringLiteral("event")}});
    EXPECT_EQ(queued.size(), 63 + 60) << "credits stop at sixty however long the pause";
    clockSeconds -= 500; // the clock set back: no credits from a negative interval
    tracker.send({{QStringLiteral("&t"), QStringLiteral("event")}});
    EXPECT_EQ(queued.size(), 123);

    // The tracker's model goes with every hit; the first screen view opens the session.
    tracker.set(QStringLiteral("&cid"), QStringLiteral("c"));
    clockSeconds += 100000;
    tracker.send({{QStringLiteral("&t"), QStringLiteral("screenview")}});
    tracker.send({{QStringLiteral("&t"), QStringLiteral("screenview")}});
    ASSERT_EQ(queued.size(), 125);
    EXPECT_EQ(queued.at(123).value(QStringLiteral("&cid")), QStringLiteral("c"));
    EXPECT_EQ(queued.at(123).value(QStringLiteral("&sc")), QStringLiteral("start"));
    EXPECT_FALSE(queued.at(124).contains(QStringLiteral("&sc")));
    EXPECT_NE(queued.at(123).value(QStringLiteral("&z")), queued.at(124).value(QStringLiteral("&z")));
}

// Catches: sampling that drops everything at 100 %, keeps everything at 0, or trips on a value
// that isn't a number; a hash that changes between calls.
TEST(HitPipeline, SamplingByClientHash)
{
    const auto with = [](const QString &rate, const QString &client) {
        return HitParameters{{QStringLiteral("&sf"), rate}, {QStringLiteral("&cid"), client}};
    };
    int kept = 0;
    for (int i = 0; i < 1000; ++i) {
        const QString client = QStringLiteral("client-%1").arg(i);
        EXPECT_TRUE(HitEncoding::passesSampling(with(QStringLiteral("100"), client)));
        EXPECT_FALSE(HitEncoding::passesSampling(with(QStringLiteral("0"), client)));
        EXPECT_TRUE(HitEncoding::passesSampling(with(QStringLiteral("half"), client)));
        kept += HitEncoding::passesSampling(with(QStringLiteral("25"), client));
    }
    EXPECT_GT(kept, 180);
    EXPECT_LT(kept, 320);
    EXPECT_EQ(HitEncoding::clientHash(QStringLiteral("abc")), HitEncoding::clientHash(QStringLiteral("abc")));
    EXPECT_TRUE(HitEncoding::passesSampling({}));
}

// Catches: values that don't survive the wire (any bytes, "&", "=", "+", newlines, accents),
// "&z" not last, an age for a hit from the future, and an empty value written as "key=".
TEST(HitPipeline, EncodingRoundTripsThroughTheCollector)
{
    QString anyBytes;
    for (char16_t c = 1; c < 256; ++c)
        anyBytes.append(QChar(c));
    anyBytes += QStringLiteral("ñ€😀 a+b=c&d\n%41");
    Hit hit{0,
            {{QStringLiteral("&t"), QStringLiteral("event")}, {QStringLiteral("&tid"), QStringLiteral("T")},
             {QStringLiteral("&cid"), QStringLiteral("C")}, {QStringLiteral("&ec"), anyBytes}, {QStringLiteral("&ea"), QStringLiteral("a")},
             {QStringLiteral("&z"), QStringLiteral("99")}, {QStringLiteral("&ni"), QString()}, {QStringLiteral("useSecure"), QStringLiteral("0")}},
            5000};
    const QByteArray line = HitEncoding::parametersForHit(hit, 7500);
    EXPECT_FALSE(line.contains('\n'));
    EXPECT_TRUE(line.endsWith("&qt=2500&z=99")) << line.constData();
    EXPECT_TRUE(line.contains("&ni&")) << "an empty value is its key alone";
    EXPECT_FALSE(line.contains("useSecure"));
    QString why;
    const auto parsed = CollectedHit::parse(line, &why);
    ASSERT_TRUE(parsed) << why.toStdString();
    EXPECT_EQ(parsed->category, anyBytes);
    EXPECT_EQ(parsed->hitTime, 5000);
    EXPECT_EQ(parsed->cacheBuster, QStringLiteral("99"));

    EXPECT_FALSE(HitEncoding::parametersForHit(hit, 4000).contains("qt=")) << "a clock set back gives no age";
    EXPECT_FALSE(HitEncoding::parametersForHit(hit, 5000).contains("qt=")) << "under a millisecond old";
    EXPECT_EQ(HitEncoding::buildPayload({"a=1", "b=2"}), QByteArray("a=1\nb=2\n"));
}

// Catches: a batch cut anywhere but at the largest gap (or not at the later of two equal ones),
// strategies that send more than fits, a batch of nothing, secure and plain hits mixed, and an
// unknown strategy that sends more than one hit.
TEST(HitPipeline, EachStrategyChoosesItsBatch)
{
    using namespace BatchChoice;
    // Twenty hits a second apart with ten minutes between the fifth and sixth.
    HitList gap = hitsOneSecondApart(20, 600);
    for (int i = 5; i < 20; ++i)
        gap[i].timestamp += 600'000;
    EXPECT_EQ(batchByTimeGap(gap, 20), 5);
    EXPECT_EQ(batchByTimeGap(gap, 4), 3) << "equal gaps: the later one";
    EXPECT_EQ(batchByTimeGap(gap, 1), 1);
    EXPECT_EQ(batchByTimeGap({}, 5), 0);
    Settings settings{LargestTimeGap, 8192, false, 2'000'000};
    EXPECT_EQ(hitsForDispatch(gap, settings).size(), 5) << "doesn't fit, so cut at the gap";
    EXPECT_EQ(hitsForDispatch(hitsOneSecondApart(20), settings).size(), 20) << "everything fits";

    const HitList even = hitsOneSecondApart(20, 600); // ~ 13 fit in 8192 bytes
    const qsizetype fit = hitsForDispatch(even, {AsMuchAsFits, 8192, false, 2'000'000}).size();
    EXPECT_GT(fit, 8);
    EXPECT_LT(fit, 20);
    EXPECT_EQ(hitsForDispatch(even, {HalfTheHits, 8192, false, 2'000'000}).size(), std::min<qsizetype>(fit, 10));
    const qsizetype half = hitsForDispatch(even, {NearHalfTheBody, 8192, false, 2'000'000}).size();
    EXPECT_GE(half, 8);
    EXPECT_LE(half, 10) << "about half of the body";
    EXPECT_EQ(hitsForDispatch(even, {NoBatching, 8192, false, 0}).size(), 1);
    EXPECT_EQ(hitsForDispatch(even, {LargestTimeGap, 8192, true, 0}).size(), 1) << "the service refused batches lately";
    EXPECT_EQ(hitsForDispatch(even, {42, 8192, false, 0}).size(), 1);
    EXPECT_EQ(hitsForDispatch(even, {AsMuchAsFits, 0, false, 0}).size(), 20) << "no body limit";

    // Sessions: the batch ends before a start or behind an end, looked for from the back.
    HitList sessions = hitsOneSecondApart(8);
    sessions[3].parameters.insert(QStringLiteral("&sc"), QStringLiteral("start"));
    EXPECT_EQ(batchBySessionSplit(sessions, 8), 3);
    sessions[5].parameters.insert(QStringLiteral("&sc"), QStringLiteral("end"));
    EXPECT_EQ(batchBySessionSplit(sessions, 8), 6);
    EXPECT_EQ(batchBySessionSplit(hitsOneSecondApart(8), 8), 8);

    // Hits of 9000 bytes: each goes alone, as a batch has at least one hit.
    EXPECT_EQ(hitsForDispatch(hitsOneSecondApart(3, 9000), {LargestTimeGap, 8192, false, 0}).size(), 1);

    // A secure hit first: the plain ones wait for a request of their own.
    HitList mixed = hitsOneSecondApart(4);
    mixed[0].parameters.remove(QStringLiteral("useSecure"));
    mixed[2].parameters.insert(QStringLiteral("useSecure"), QStringLiteral("1"));
    EXPECT_EQ(labels(hitsForDispatch(mixed, settings)), (QStringList{QStringLiteral("0"), QStringLiteral("2")}));
}

// Catches: a cap that keeps the newest out or the oldest in, stale hits that stay, hits from a
// clock set back thrown away, hit numbers that restart, and a damaged store that stops analytics
// or is deleted rather than kept aside.
TEST(HitPipeline, TheStoreKeepsItsLimitsAndSurvivesDamage)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("hits.sqlite"));
    {
        HitStore store(path);
        ASSERT_TRUE(store.open());
        store.maxHitCount = 3;
        for (int i = 0; i < 5; ++i)
            store.addHit({{QStringLiteral("&el"), QString::number(i)}}, 1000 + i);
        EXPECT_EQ(labels(store.fetchHits(10)), (QStringList{QStringLiteral("2"), QStringLiteral("3"), QStringLiteral("4")}));
        store.removeStaleHits(1003);
        EXPECT_EQ(labels(store.fetchHits(10)), (QStringList{QStringLiteral("3"), QStringLiteral("4")}));
        store.now = storeClock;
        storeClockMs = 777;
        store.addHit({}, -1);
        EXPECT_EQ(store.fetchHits(10).last().timestamp, 777) << "a hit without a time gets the present one";
        EXPECT_EQ(store.nextHitNumberForTrackingId(QStringLiteral("T"), QStringLiteral("C")), QStringLiteral("1"));
        EXPECT_EQ(store.nextHitNumberForTrackingId(QStringLiteral("T"), QStringLiteral("C")), QStringLiteral("2"));
        EXPECT_EQ(store.nextHitNumberForTrackingId(QStringLiteral("T"), QStringLiteral("D")), QStringLiteral("1"));
    }
    {
        HitStore reopened(path);
        ASSERT_TRUE(reopened.open());
        EXPECT_EQ(reopened.hitCount(), 3) << "hits outlive the store object";
        EXPECT_EQ(reopened.nextHitNumberForTrackingId(QStringLiteral("T"), QStringLiteral("C")), QStringLiteral("3"));
    }
    QFile damaged(path);
    ASSERT_TRUE(damaged.open(QIODevice::WriteOnly | QIODevice::Truncate));
    damaged.write(QByteArray(8192, '\x5a'));
    damaged.close();
    HitStore fresh(path);
    ASSERT_TRUE(fresh.open());
    EXPECT_EQ(fresh.hitCount(), 0);
    EXPECT_TRUE(fresh.addHit({{QStringLiteral("&el"), QStringLiteral("after")}}, 1));
    QFile aside(path + QStringLiteral(".damaged"));
    ASSERT_TRUE(aside.open(QIODevice::ReadOnly)) << "the damaged bytes are kept aside";
    EXPECT_EQ(aside.readAll(), QByteArray(8192, '\x5a'));
}
