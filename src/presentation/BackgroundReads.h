#pragma once

#include "platform/Dispatch.h"
#include "platform/OperationQueue.h"
#include "presentation/Globals.h"

#include <QObject>
#include <QPointer>

#include <condition_variable>
#include <memory>
#include <mutex>
#include <utility>

// A screen's reads of the catalogue off the main thread: each read runs on the background
// queue and its result is shown on the main thread, unless a later read (or a show made in
// between) has taken its place or the screen is gone. The screen keeps its old rows meanwhile.
// Owned by the screen; its end waits for its own reads still running (they may use what the
// screen handed them), never for the queue's other work.
class BackgroundReads
{
public:
    BackgroundReads() = default;
    BackgroundReads(const BackgroundReads &) = delete;
    BackgroundReads &operator=(const BackgroundReads &) = delete;
    ~BackgroundReads()
    {
        std::unique_lock lock(m_mutex);
        m_idle.wait(lock, [this] { return m_running == 0; });
    }

    // `read` runs on the queue and returns a copyable value; `show(value)` runs on the main thread.
    template <typename Read, typename Show>
    void start(QObject *owner, Read read, Show show)
    {
        const quint64 request = ++m_latest;
        {
            std::lock_guard lock(m_mutex);
            ++m_running;
        }
        // Counted out when the queue lets go of the read, whether it ran or not.
        std::shared_ptr<void> done(nullptr, [this](void *) {
            std::lock_guard lock(m_mutex);
            if (--m_running == 0)
                m_idle.notify_all();
        });
        Globals::backgroundQueue().addOperation(
            [owner = QPointer(owner), this, request, read = std::move(read), show = std::move(show), done = std::move(done)] {
                dispatchMain([owner, this, request, result = read(), show] {
                    if (owner && request == m_latest)
                        show(result);
                });
            });
    }

    // A result shown at once: reads started before it are no longer wanted.
    void supersede() { ++m_latest; }

private:
    quint64 m_latest = 0; // main thread only
    std::mutex m_mutex;
    std::condition_variable m_idle;
    int m_running = 0;
};
