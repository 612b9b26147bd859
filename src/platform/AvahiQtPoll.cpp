#include "platform/AvahiQtPoll.h"

#include <avahi-common/timeval.h>
#include <avahi-common/watch.h>

#include <QSocketNotifier>
#include <QTimer>

#include <algorithm>
#include <memory>

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
        callback(this, fd, event, userdata);
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
    // Freed from inside its own callback at times: the notifiers go once control is back.
    watch->readable.release()->deleteLater();
    watch->writable.release()->deleteLater();
    delete watch;
}

AvahiTimeout *timeoutNew(const AvahiPoll *, const struct timeval *tv, AvahiTimeoutCallback callback, void *userdata)
{
    auto *timeout = new AvahiTimeout{std::make_unique<QTimer>(), callback, userdata};
    timeout->timer->setSingleShot(true);
    QObject::connect(timeout->timer.get(), &QTimer::timeout, [timeout] { timeout->callback(timeout, timeout->userdata); });
    timeout->arm(tv);
    return timeout;
}

void timeoutUpdate(AvahiTimeout *timeout, const struct timeval *tv) { timeout->arm(tv); }

void timeoutFree(AvahiTimeout *timeout)
{
    // Also freed from inside its own callback: the timer goes once control is back.
    timeout->timer->stop();
    timeout->timer.release()->deleteLater();
    delete timeout;
}
}

const AvahiPoll *avahiQtPoll()
{
    static const AvahiPoll poll{nullptr, watchNew, watchUpdate, watchGetEvents, watchFree, timeoutNew, timeoutUpdate, timeoutFree};
    return &poll;
}
