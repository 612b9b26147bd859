#include "platform/AvahiQtPoll.h"

#include <avahi-common/timeval.h>
#include <avahi-common/watch.h>

#include <QSocketNotifier>
#include <QTimer>

#include <algorithm>
#include <memory>

// The watch and the time-out whose callback is running: freeing one of them from inside its own
// callback must leave its notifier or timer to the event loop; any other is deleted at once, so
// that nothing is left for a loop that may never run again.
thread_local const void *firing = nullptr;

struct AvahiWatch {
    int fd;
    AvahiWatchEvent wanted;
    AvahiWatchEvent last = AvahiWatchEvent(0);
    AvahiWatchCallback callback;
    void *userdata;
    std::unique_ptr<QSocketNotifier> readable;
    std::unique_ptr<QSocketNotifier> writable;

    void apply()
    {
        readable->setEnabled(wanted & AVAHI_WATCH_IN);
        writable->setEnabled(wanted & AVAHI_WATCH_OUT);
    }
    void fire(AvahiWatchEvent event)
    {
        last = event;
        firing = this;
        callback(this, fd, event, userdata);
        firing = nullptr;
        // The callback may have freed the watch: nothing may touch it here.
    }
};

struct AvahiTimeout {
    std::unique_ptr<QTimer> timer = std::make_unique<QTimer>();
    AvahiTimeoutCallback callback;
    void *userdata;

    void arm(const struct timeval *tv)
    {
        timer->stop();
        if (!tv)
            return; // no time given: disabled until updated
        const AvahiUsec wait = -avahi_age(tv); // microseconds until `tv`, negative when past
        timer->start(int(std::max<AvahiUsec>(0, wait / 1000)));
    }
};

namespace {
AvahiWatch *watchNew(const AvahiPoll *, int fd, AvahiWatchEvent event, AvahiWatchCallback callback, void *userdata)
{
    auto *watch = new AvahiWatch{fd, event, AvahiWatchEvent(0), callback, userdata, nullptr, nullptr};
    watch->readable = std::make_unique<QSocketNotifier>(fd, QSocketNotifier::Read);
    watch->writable = std::make_unique<QSocketNotifier>(fd, QSocketNotifier::Write);
    QObject::connect(watch->readable.get(), &QSocketNotifier::activated, [watch] { watch->fire(AVAHI_WATCH_IN); });
    QObject::connect(watch->writable.get(), &QSocketNotifier::activated, [watch] { watch->fire(AVAHI_WATCH_OUT); });
    watch->apply();
    return watch;
}

void watchUpdate(AvahiWatch *watch, AvahiWatchEvent event)
{
    watch->wanted = event;
    watch->apply();
}

AvahiWatchEvent watchGetEvents(AvahiWatch *watch) { return watch->last; }

void watchFree(AvahiWatch *watch)
{
    if (firing == watch) {
        watch->readable->setEnabled(false);
        watch->writable->setEnabled(false);
        watch->readable.release()->deleteLater();
        watch->writable.release()->deleteLater();
    }
    delete watch;
}

AvahiTimeout *timeoutNew(const AvahiPoll *, const struct timeval *tv, AvahiTimeoutCallback callback, void *userdata)
{
    auto *timeout = new AvahiTimeout{std::make_unique<QTimer>(), callback, userdata};
    timeout->timer->setSingleShot(true);
    QObject::connect(timeout->timer.get(), &QTimer::timeout, [timeout] {
        firing = timeout;
        timeout->callback(timeout, timeout->userdata);
        firing = nullptr;
    });
    timeout->arm(tv);
    return timeout;
}

void timeoutUpdate(AvahiTimeout *timeout, const struct timeval *tv) { timeout->arm(tv); }

void timeoutFree(AvahiTimeout *timeout)
{
    timeout->timer->stop();
    if (firing == timeout)
        timeout->timer.release()->deleteLater();
    delete timeout;
}
}

const AvahiPoll *avahiQtPoll()
{
    static const AvahiPoll poll{nullptr, watchNew, watchUpdate, watchGetEvents, watchFree, timeoutNew, timeoutUpdate, timeoutFree};
    return &poll;
}
