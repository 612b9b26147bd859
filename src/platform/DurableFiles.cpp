#include "platform/DurableFiles.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace {
QString systemError() { return QString::fromLocal8Bit(std::strerror(errno)); }

bool syncDirectoryOf(const QString &path) { return DurableFiles::syncPath(QFileInfo(path).absolutePath()); }

// Copies and flushes `from` into a temporary name beside `to`, then renames it into place.
bool copyThroughTemporary(const QString &from, const QString &to, QString *error)
{
    const QString temporary = DurableFiles::temporaryPathFor(to);
    QFile::remove(temporary);
    QFile source(from);
    QFile target(temporary);
    if (!source.open(QIODevice::ReadOnly) || !target.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        *error = QStringLiteral("can't copy %1 to %2").arg(from, temporary);
        return false;
    }
    QByteArray buffer;
    while (!(buffer = source.read(1 << 20)).isEmpty()) {
        if (target.write(buffer) != buffer.size()) {
            *error = QStringLiteral("can't write %1: %2").arg(temporary, target.errorString());
            target.remove();
            return false;
        }
    }
    const bool flushed = target.flush() && ::fsync(target.handle()) == 0;
    target.close();
    if (!flushed || source.error() != QFileDevice::NoError || ::rename(QFile::encodeName(temporary), QFile::encodeName(to)) != 0) {
        *error = QStringLiteral("can't finish %1: %2").arg(to, systemError());
        QFile::remove(temporary);
        return false;
    }
    syncDirectoryOf(to);
    return true;
}
}

QString DurableFiles::temporaryPathFor(const QString &finalPath)
{
    const QFileInfo info(finalPath);
    return info.absoluteDir().filePath(QStringLiteral(".") + info.fileName() + QStringLiteral(".partial"));
}

bool DurableFiles::syncPath(const QString &path)
{
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return false;
    const bool synced = ::fsync(fd) == 0;
    ::close(fd);
    return synced;
}

bool DurableFiles::writeFile(const QString &finalPath, const QByteArray &bytes, QString *error)
{
    const QString temporary = temporaryPathFor(finalPath);
    QFile file(temporary);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        *error = QStringLiteral("can't write %1: %2").arg(temporary, file.errorString());
        return false;
    }
    const bool written = file.write(bytes) == bytes.size() && file.flush() && ::fsync(file.handle()) == 0;
    file.close();
    if (!written || ::rename(QFile::encodeName(temporary), QFile::encodeName(finalPath)) != 0) {
        *error = QStringLiteral("can't write %1: %2").arg(finalPath, systemError());
        QFile::remove(temporary);
        return false;
    }
    syncDirectoryOf(finalPath);
    return true;
}

bool DurableFiles::moveFile(const QString &from, const QString &to, bool replace, QString *error)
{
    const QByteArray source = QFile::encodeName(from);
    const QByteArray target = QFile::encodeName(to);
    if (!replace && QFileInfo::exists(to)) {
        *error = QStringLiteral("%1 already exists").arg(to);
        return false;
    }
    // The moved bytes are flushed before the name changes, so a crash never leaves the final
    // name pointing at a file the disk doesn't hold yet.
    if (!syncPath(from)) {
        *error = QStringLiteral("can't flush %1: %2").arg(from, systemError());
        return false;
    }
    int status = replace ? ::rename(source, target) : ::linkat(AT_FDCWD, source, AT_FDCWD, target, 0);
    if (status != 0 && errno == EXDEV) {
        if (!replace && QFileInfo::exists(to)) {
            *error = QStringLiteral("%1 already exists").arg(to);
            return false;
        }
        if (!copyThroughTemporary(from, to, error))
            return false;
        QFile::remove(from);
        syncDirectoryOf(from);
        return true;
    }
    if (status != 0) {
        *error = QStringLiteral("can't move %1 to %2: %3").arg(from, to, systemError());
        return false;
    }
    // Without replacing, the new name was made as a second link: the old one goes now.
    if (!replace)
        ::unlink(source);
    syncDirectoryOf(to);
    if (QFileInfo(from).absolutePath() != QFileInfo(to).absolutePath())
        syncDirectoryOf(from);
    return true;
}

bool DurableFiles::copyFile(const QString &from, const QString &to, QString *error)
{
    return copyThroughTemporary(from, to, error);
}
