#include "presentation/BackgroundReads.h"
#include "presentation/Globals.h"

#include <QTest>

#include <future>

#include <gtest/gtest.h>

// Catches rows from a read that a later one replaced, rows shown on a screen that is gone, and a
// screen's end that waits for the background queue's other work (a download's check can take
// seconds): that end would block here for good, as the queue's other job waits for the test.
TEST(BackgroundReads, OnlyTheLatestReadIsShownAndAnEndWaitsForItsOwnReadsAlone)
{
    QObject screen;
    auto reads = std::make_unique<BackgroundReads>();
    QList<int> shown;
    for (int value : {1, 2, 3})
        reads->start(&screen, [value] { return value; }, [&](int got) { shown.append(got); });
    ASSERT_TRUE(QTest::qWaitFor([&] { return !shown.isEmpty(); }, 3000));
    QTest::qWait(50);
    EXPECT_EQ(shown, QList<int>{3}) << "the earlier reads are replaced, whatever order they end in";

    shown.clear();
    reads->start(&screen, [] { return 4; }, [&](int got) { shown.append(got); });
    reads->supersede(); // rows shown at once meanwhile
    auto gone = std::make_unique<QObject>();
    BackgroundReads goneReads;
    goneReads.start(gone.get(), [] { return 5; }, [&](int got) { shown.append(got); });
    gone.reset();
    QTest::qWait(100);
    EXPECT_TRUE(shown.isEmpty()) << "neither a superseded read nor one for a screen gone is shown";

    std::promise<void> release;
    Globals::backgroundQueue().addOperation([waiting = release.get_future().share()] { waiting.wait(); });
    reads->start(&screen, [] { return 6; }, [](int) {});
    reads.reset(); // returns once its own read is done, with the other job still waiting
    release.set_value();
    Globals::backgroundQueue().waitUntilAllOperationsAreFinished();
}
