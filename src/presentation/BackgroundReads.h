#pragma once

#include "platform/Dispatch.h"
#include "platform/OperationQueue.h"
#include "presentation/Globals.h"

#include <QObject>
#include <QPointer>

#include <utility>

// A screen's reads of the catalogue off the main thread: each read runs on the background
// queue and its result is shown on the main thread, unless a later read (or a show made in
// between) has taken its place or the screen is gone. The screen keeps its old rows meanwhile.
// Owned by the screen; its end waits for reads still running, which may use what the screen
// handed them.
class BackgroundReads
{
public:
    BackgroundReads() = default;
    BackgroundReads(const BackgroundReads &) = delete;
    BackgroundReads &operator=(const BackgroundReads &) = delete;
    ~BackgroundReads() { Globals::backgroundQueue().waitUntilAllOperationsAreFinished(); }

    // `read` runs on the queue and returns a copyable value; `show(value)` runs on the main thread.
    template <typename Read, typename Show>
    void start(QObject *owner, Read read, Show show)
    {
        const quint64 request = ++m_latest;
        Globals::backgroundQueue().addOperation([owner = QPointer(owner), this, request, read = std::move(read), show = std::move(show)] {
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
};
