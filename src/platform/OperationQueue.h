#pragma once

#include <QMutex>
#include <mutex>
#include <QThreadPool>

#include <atomic>
#include <functional>
#include <memory>
#include <vector>

// A unit of background work that can be cancelled. An operation cancelled before it starts never
// runs; one that is running sees isCancelled() and ends itself.
class Operation
{
public:
    virtual ~Operation() = default;
    virtual void main() = 0;

    void cancel() { m_cancelled = true; }
    bool isCancelled() const { return m_cancelled; }
    bool isFinished() const { return m_finished; }

private:
    friend class OperationQueue;
    std::atomic<bool> m_cancelled{false};
    std::atomic<bool> m_finished{false};
};

class BlockOperation : public Operation
{
public:
    explicit BlockOperation(std::function<void()> block) : m_block(std::move(block)) {}
    void main() override { m_block(); }

private:
    std::function<void()> m_block;
};

// Runs operations on threads of its own pool. With a maximum of 1 it is a serial queue.
class OperationQueue
{
public:
    // `maxConcurrent` <= 0 lets the pool choose, as a default queue does.
    explicit OperationQueue(int maxConcurrent = 0);
    ~OperationQueue();
    OperationQueue(const OperationQueue &) = delete;
    OperationQueue &operator=(const OperationQueue &) = delete;

    void addOperation(std::shared_ptr<Operation> operation);
    std::shared_ptr<Operation> addOperation(std::function<void()> block);

    void cancelAllOperations();
    void waitUntilAllOperationsAreFinished();
    int operationCount();

private:
    QThreadPool m_pool;
    std::mutex m_mutex;
    std::vector<std::weak_ptr<Operation>> m_operations;
};
