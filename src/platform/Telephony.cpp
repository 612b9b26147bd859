#include "platform/Telephony.h"

#include <QProcess>
#include <QStandardPaths>

namespace {

// A desktop has no SIM; it can send text when it has an application for "sms:" links (a
// phone paired with the computer, a messaging client), as xdg-mime tells. Asked once.
class DesktopTelephony : public Telephony
{
public:
    bool canSendText() const override
    {
        static const bool handler = [] {
            const QString xdgMime = QStandardPaths::findExecutable(QStringLiteral("xdg-mime"));
            if (xdgMime.isEmpty())
                return false;
            QProcess query;
            query.start(xdgMime, {QStringLiteral("query"), QStringLiteral("default"), QStringLiteral("x-scheme-handler/sms")});
            return query.waitForFinished(2000) && query.exitCode() == 0 && !query.readAllStandardOutput().trimmed().isEmpty();
        }();
        return handler;
    }
};

std::unique_ptr<Telephony> &instance()
{
    static std::unique_ptr<Telephony> shared = std::make_unique<DesktopTelephony>();
    return shared;
}

}

Telephony &Telephony::shared() { return *instance(); }

void Telephony::install(std::unique_ptr<Telephony> telephony)
{
    instance() = telephony ? std::move(telephony) : std::make_unique<DesktopTelephony>();
}
