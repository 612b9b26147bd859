#include "platform/FaultInjection.h"

#include <QByteArray>
#include <QList>

#include <atomic>
#include <csignal>
#include <cstring>
#include <unistd.h>

namespace {
struct Target {
    QByteArray name;
    int pass = 1;
};

const Target &target()
{
    static const Target parsed = [] {
        const QList<QByteArray> parts = qgetenv("VELMORA_CRASH_AT").split(':');
        Target t;
        t.name = parts.value(0);
        t.pass = parts.size() > 1 ? qMax(1, parts.at(1).toInt()) : 1;
        return t;
    }();
    return parsed;
}

std::atomic<int> passes{0};
}

void crashPoint(const char *name)
{
    const Target &t = target();
    if (t.name.isEmpty() || std::strcmp(t.name.constData(), name) != 0)
        return;
    if (passes.fetch_add(1) + 1 == t.pass)
        ::kill(::getpid(), SIGKILL);
}
