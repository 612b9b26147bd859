#pragma once

#include <functional>

// Queues `block` on the main (GUI) thread's event loop; it runs after the caller returns.
void dispatchMain(std::function<void()> block);
// Runs `block` on the main thread once, `milliseconds` from now.
void dispatchAfter(int milliseconds, std::function<void()> block);
