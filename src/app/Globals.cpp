#include "app/Globals.h"

#include "platform/FileAttributes.h"
#include "platform/Logging.h"
#include "platform/OperationQueue.h"

OperationQueue &Globals::backgroundQueue()
{
    static OperationQueue queue;
    return queue;
}

QUrl Globals::updateURL()
{
    const QString overridden = qEnvironmentVariable("VELMORA_UPDATE_URL");
    return QUrl(overridden.isEmpty() ? QStringLiteral("http://updates.velmora.app/ios/last.txt") : overridden);
}

void excludeFromBackup(const QString &path)
{
    if (!markExcludedFromBackup(path))
        qCDebug(lcPlatform).noquote() << "Excluding " + path + " from backups failed";
}
