#pragma once

#include <QString>
#include <QUrl>

class OperationQueue;

// Process-wide constants and shared services, each made once on first use.
namespace Globals {
// The one shared, concurrent queue for slow work of the list screens and the Downloader.
OperationQueue &backgroundQueue();
// The update announcement: `/ios/last.txt` on the project's update host. VELMORA_UPDATE_URL
// points a deployment or a test at another server.
QUrl updateURL();
}

// Keeps a file out of device backups; a failure is only logged.
void excludeFromBackup(const QString &path);
