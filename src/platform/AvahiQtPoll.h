#pragma once

struct AvahiPoll;

// Avahi's event loop interface served by the Qt event loop of the calling thread: file watches
// become socket notifiers, time-outs single-shot timers. One per thread, made on first use.
const AvahiPoll *avahiQtPoll();
