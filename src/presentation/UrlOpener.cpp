#include "UrlOpener.h"

#include <QDesktopServices>

namespace UrlOpener {

namespace {
std::function<bool(const QUrl &)> &opener()
{
    static std::function<bool(const QUrl &)> open = [](const QUrl &url) { return QDesktopServices::openUrl(url); };
    return open;
}
}

bool openURL(const QUrl &url) { return opener()(url); }

void setUrlOpener(std::function<bool(const QUrl &)> open) { opener() = std::move(open); }

}
