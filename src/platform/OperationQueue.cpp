#include "platform/OperationQueue.h"

OperationQueue::OperationQueue(int maxConcurrent)
{
    if (maxConcurrent > 0)
        m_pool.setMaxThreadCount(maxConcurrent);
}

OperationQueue::~OperationQueue()
{
    cancelAllOperations();
    m_pool.waitForDone();
}

void OperationQueue::addOperation(std::shared_ptr<Operation> operation)
{
    {
        QMutexLocker lock(&m_mutex);
        std::erase_if(m_operations, [](const std::weak_ptr<Operation> &op) {
            auto strong = op.lock();
            return !strong || strong->isFinished();
        });
        m_operations.push_back(operation);
    }
    m_pool.start([operation] {
        if (!operation->isCancelled())
            operation->main();
        operation->m_finished = true;
    });
}

std::shared_ptr<Operation> OperationQueue::addOperation(std::function<void()> block)
{
    auto operation = std::make_shared<BlockOperation>(std::move(block));
    addOperation(operation);
    return operation;
}

void OperationQueue::cancelAllOperations()
{
    QMutexLocker lock(&m_mutex);
    for (const auto &weak : m_operations)
        if (auto operation = weak.lock())
            operation->cancel();
}

void OperationQueue::waitUntilAllOperationsAreFinished() { m_pool.waitForDone(); }

int OperationQueue::operationCount()
{
    QMutexLocker lock(&m_mutex);
    int count = 0;
    for (const auto &weak : m_operations)
        if (auto operation = weak.lock(); operation && !operation->isFinished())
            ++count;
    return count;
}
