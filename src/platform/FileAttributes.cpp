#include "platform/FileAttributes.h"

#include <QFile>

#include <sys/xattr.h>

namespace {
constexpr char backupAttribute[] = "user.xdg.robots.backup";
}

bool markExcludedFromBackup(const QString &path)
{
    const QByteArray native = QFile::encodeName(path);
    return setxattr(native.constData(), backupAttribute, "false", 5, 0) == 0;
}

bool isExcludedFromBackup(const QString &path)
{
    const QByteArray native = QFile::encodeName(path);
    char value[16] = {};
    const ssize_t size = getxattr(native.constData(), backupAttribute, value, sizeof value - 1);
    return size == 5 && QByteArray(value, 5) == "false";
}
