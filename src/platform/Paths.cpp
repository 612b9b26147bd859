#include "platform/Paths.h"

#include <QDir>
#include <QMutex>
#include <mutex>
#include <QStandardPaths>

namespace {
std::mutex rootMutex;
QString currentRoot;
}

QString Paths::root()
{
    QMutexLocker lock(&rootMutex);
    if (currentRoot.isEmpty())
        currentRoot = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
    return currentRoot;
}

void Paths::setRoot(const QString &root)
{
    QMutexLocker lock(&rootMutex);
    currentRoot = root.isEmpty() ? QString() : QDir(root).absolutePath();
}

QString Paths::documents() { return subdirectory(QStringLiteral("Documents")); }
QString Paths::caches() { return subdirectory(QStringLiteral("Caches")); }
QString Paths::applicationSupport() { return subdirectory(QStringLiteral("Application Support")); }

QString Paths::subdirectory(const QString &name)
{
    const QString base = root();
    if (base.isEmpty())
        return {};
    const QString path = base + QLatin1Char('/') + name;
    if (!QDir().mkpath(path))
        return {};
    return path;
}

