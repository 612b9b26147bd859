#pragma once

#include <QString>

#include <functional>

// The platform's sheet for a text message. On a phone, the system's own; on Linux, an "sms:" URL
// handed to the desktop (through UrlOpener), which counts as sent when the desktop takes it.
// Tests install a sheet that answers sent or cancelled.
namespace MessageComposer {

enum class Result { cancelled, sent, failed };
using Sheet = std::function<void(const QString &recipient, const QString &body, std::function<void(Result)> done)>;

void compose(const QString &recipient, const QString &body, std::function<void(Result)> done);
// Null restores the platform's.
void setSheet(Sheet sheet);

}
