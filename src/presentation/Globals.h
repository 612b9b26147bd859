#pragma once

#include "richtext/AttributedString.h"
#include "richtext/Color.h"

#include <QString>
#include <QUrl>

class OperationQueue;

// Process-wide constants and shared services, each made once on first use.
namespace Globals {
// The one shared, concurrent queue for slow work of the list screens and the Downloader.
OperationQueue &backgroundQueue();
// The product's web site, ending in "/": where a place's page lives. A deployment value, set
// under "site-url" in resources/Defaults.json.
QString siteURL();

// The app's fonts and colours, each made once on first use. Fonts resolve through the
// FontRegistry, so the first call must come after the interface has registered its fonts.
const RunFont &iconFont();
const RunFont &bigIconFont();
const RunFont &lightFont();
const RunFont &boldFont();
const RunFont &tabFont();

const Color &tabTitleColor();
const Color &tabTitleSelectedColor();
const Color &selectedRowColor();
const Color &unselectedRowColor();
const Color &unselectedIconColor();
const Color &barTintColor();
const Color &swipeReserveColor(); // the very object of barTintColor()
const Color &swipeCallColor();
const Color &swipeDeleteColor();
const Color &filtersDimColor();
const Color &savedColor();
const Color &warningIconColor();
const Color &actionArrowColor();
const Color &activeFiltersColor();
const Color &mapContrastColor();
const Color &settingsTextColor();
}

// The text of a localisation key in `language`, without changing the current language; the key
// itself when the app has no texts for that language.
QString localizedString(const QString &language, const QString &key);

// Keeps a file out of device backups; a failure is only logged.
void excludeFromBackup(const QString &path);
