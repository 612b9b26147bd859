// What analytics costs the app: the main thread's part of sending one event (the tracker's
// metering and the hand-over to the measurement thread, which stores it meanwhile), and building
// one full batch of 20 events, encoded and gzipped, as the dispatcher does before each request.
//   analytics_bench [sends]
// Prints one table row: the medians and 95th percentiles in microseconds.

#include "analytics/BatchChoice.h"
#include "analytics/BatchingDispatcher.h"
#include "analytics/HitBuilder.h"
#include "analytics/HitEncoding.h"
#include "analytics/Measurement.h"
#include "analytics/RequestBuilder.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QSemaphore>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>

namespace {
double percentile(QList<double> values, int percent)
{
    std::sort(values.begin(), values.end());
    return values.isEmpty() ? 0 : values.at(std::min(values.size() - 1, values.size() * percent / 100));
}

// A clock two seconds on at every reading: the rate limit never throttles, so every send takes
// the whole path.
double seconds = 1e9;
double generousClock() { return seconds += 2; }
}

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const int sends = argc > 1 ? std::max(100, atoi(argv[1])) : 5000;
    QTemporaryDir dir;

    // send: on the main thread, with the measurement thread storing what it is handed.
    Measurement measurement;
    QString error;
    if (!measurement.start({QUrl(QStringLiteral("http://127.0.0.1:9/")), QStringLiteral("VM-BENCH"), QStringLiteral("bench-client"),
                            dir.filePath(QStringLiteral("hits.sqlite")), 0},
                           &error)) {
        std::fprintf(stderr, "analytics_bench: %s\n", qPrintable(error));
        return 1;
    }
    measurement.dispatcher()->store().maxHitCount = 0;
    TrackerImpl &tracker = measurement.defaultTracker();
    tracker.now = generousClock;
    QList<double> sendMicros;
    QElapsedTimer timer;
    for (int i = 0; i < sends; ++i) {
        const HitParameters hit = HitBuilder::createEventWithCategory(QStringLiteral("Navigation"), QStringLiteral("Tapped"),
                                                                      QStringLiteral("Place"), 1).build();
        timer.start();
        tracker.send(hit);
        sendMicros.append(double(timer.nsecsElapsed()) / 1000.0);
    }

    // A batch of 20: chosen, encoded, joined and gzipped.
    HitList pending;
    for (int i = 0; i < 20; ++i) {
        HitParameters parameters = HitBuilder::createEventWithCategory(QStringLiteral("ADV Campaigns"), QStringLiteral("Show"),
                                                                       QStringLiteral("Promo"), 1000 + i).build();
        parameters.insert({{QStringLiteral("&tid"), QStringLiteral("VM-APP-1")}, {QStringLiteral("&cid"), QStringLiteral("0b6f1c9e-6b7d-4a55-9f0e-3d1c2b4a5e6f")},
                           {QStringLiteral("&an"), QStringLiteral("Velmora")}, {QStringLiteral("&av"), QStringLiteral("1.0.0")},
                           {QStringLiteral("&_u"), QString::number(i)}, {QStringLiteral("&_s"), QString::number(i + 1)},
                           {QStringLiteral("&z"), QString::number(8'000'000'000'000'000'000ULL + i)}});
        pending.append({i + 1, parameters, 1'764'000'000'000 + i * 1500});
    }
    QList<double> batchMicros;
    qsizetype bodyBytes = 0;
    for (int i = 0; i < 2000; ++i) {
        timer.start();
        const HitList batch = BatchChoice::hitsForDispatch(pending, {BatchChoice::LargestTimeGap, 8192, false, 1'764'000'100'000});
        QList<QByteArray> lines;
        for (const Hit &hit : batch)
            lines.append(HitEncoding::parametersForHit(hit, 1'764'000'100'000));
        const auto request = RequestBuilder::requestPostUrl(QUrl(QStringLiteral("https://collect.velmora.app/batch")),
                                                            HitEncoding::buildPayload(lines), RequestBuilder::Gzip);
        batchMicros.append(double(timer.nsecsElapsed()) / 1000.0);
        bodyBytes = request.request.body.size();
        if (batch.size() != 20)
            std::fprintf(stderr, "analytics_bench: the batch had %lld hits\n", qlonglong(batch.size()));
    }
    std::printf("| %6d | %8.2f | %7.2f | %9.1f | %8.1f | %10lld |\n", sends, percentile(sendMicros, 50), percentile(sendMicros, 95),
                percentile(batchMicros, 50), percentile(batchMicros, 95), qlonglong(bodyBytes));
    return 0;
}
