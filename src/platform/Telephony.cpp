#include "platform/Telephony.h"

namespace {
std::unique_ptr<Telephony> &instance()
{
    static std::unique_ptr<Telephony> shared = std::make_unique<Telephony>();
    return shared;
}
}

Telephony &Telephony::shared() { return *instance(); }

void Telephony::install(std::unique_ptr<Telephony> telephony)
{
    instance() = telephony ? std::move(telephony) : std::make_unique<Telephony>();
}
