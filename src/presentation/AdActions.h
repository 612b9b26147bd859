#pragma once

#include "catalogue/Records.h"

#include <QUrl>

#include <functional>
#include <optional>

// What tapping an ad does, the same on every screen: open its web page, dial its number, write
// to its address, or show its tip. The one place that reads an ad's action.
namespace AdActions {

// The URL an ad opens, or nothing for an ad that opens none (a tip, an unknown type, a value
// that makes no URL). `emailSubject` is the translated subject of "email" ads.
std::optional<QUrl> urlFor(const Ad &ad, const QString &emailSubject);

// Acts on the ad: opens its URL, or hands a tip's text to `showTip`. Unknown types and bad
// values do nothing and log one line. True when something was done.
bool performAdAction(const Ad &ad, const std::function<void(const QString &)> &showTip);

}
