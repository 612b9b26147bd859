#pragma once

#include <QUrl>

#include <functional>

// Who opens URLs (web pages, "tel:", "mailto:"): the platform's handler unless someone sets
// another, as tests do and as a phone's own shell would. Every screen opens its URLs here.
namespace UrlOpener {

bool openURL(const QUrl &url);
void setUrlOpener(std::function<bool(const QUrl &)> opener);

}
