#include "platform/OperationQueue.h"

#include <QMutex>
#include <QThread>

#include <gtest/gtest.h>

// Catches: a serial queue running two blocks at once or out of order.
TEST(OperationQueue, SerialQueueRunsInOrderOneAtATime)
{
    OperationQueue queue(1);
    QMutex mutex;
    QList<int> order;
    std::atomic<int> running{0};
    std::atomic<int> overlap{0};
    for (int i = 0; i < 8; ++i) {
        queue.addOperation([&, i] {
            if (++running > 1)
                ++overlap;
            QThread::msleep(2);
            QMutexLocker lock(&mutex);
            order.append(i);
            --running;
        });
    }
    queue.waitUntilAllOperationsAreFinished();
    EXPECT_EQ(order, (QList<int>{0, 1, 2, 3, 4, 5, 6, 7}));
    EXPECT_EQ(overlap.load(), 0);
    EXPECT_EQ(queue.operationCount(), 0);
}

// Catches: a cancelled operation that had not started still running its work.
TEST(OperationQueue, CancelledBeforeStartNeverRuns)
{
    OperationQueue queue(1);
    std::atomic<bool> release{false};
    std::atomic<int> ran{0};
    queue.addOperation([&] {
        while (!release)
            QThread::msleep(1);
    });
    auto second = queue.addOperation([&] { ++ran; });
    queue.cancelAllOperations();
    release = true;
    queue.waitUntilAllOperationsAreFinished();
    EXPECT_TRUE(second->isCancelled());
    EXPECT_TRUE(second->isFinished());
    EXPECT_EQ(ran.load(), 0);
}
