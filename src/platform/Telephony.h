#pragma once

#include <QString>

#include <memory>
#include <optional>

// What the phone service of the device tells: the country code of the SIM's carrier and whether
// text messages can be sent. A desktop has no SIM, and can text when it has an application for
// "sms:" links; tests install a double with a SIM.
class Telephony
{
public:
    virtual ~Telephony() = default;
    // The carrier's mobile country code ("368"), or nothing without a SIM.
    virtual std::optional<QString> mobileCountryCode() const { return std::nullopt; }
    virtual bool canSendText() const { return false; }

    static Telephony &shared();
    // Replaces the shared instance (a phone build's own, or a test's double); null restores the
    // platform's.
    static void install(std::unique_ptr<Telephony> telephony);
};
