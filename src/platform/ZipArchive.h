#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

// Password-protected ZIP archives (AES-256), as patch archives travel.
namespace ZipArchive {
enum class Encryption { Aes256, Traditional, None };
// One file of an archive: its bytes, or the file they are read from.
struct Entry {
    QString name;
    QByteArray bytes;
    QString sourceFile;
    bool symbolicLink = false; // marked as a Unix link to `bytes`, as some archivers store links
};
// Writes `zipPath` holding `entries`, deflated, each encrypted with `password` as asked. The
// toolkit writes AES-256; the older ZIP encryption exists for archives made elsewhere.
bool create(const QString &zipPath, const QList<Entry> &entries, const QString &password, Encryption encryption,
           QString *error);
// The common case: one file, AES-256.
bool writeEncrypted(const QString &zipPath, const QString &entryName, const QString &sourceFile, const QString &password,
                    QString *error);

// What an archive from the network may unpack to. An archive that breaks a limit is refused
// before a byte is written.
struct ExtractLimits {
    qint64 maxBytes = 512ll * 1024 * 1024; // uncompressed size of the entry
    int maxRatio = 100;                    // uncompressed size to archive size...
    qint64 ratioFloor = 1024 * 1024;       // ...once the entry is bigger than this
};
// Unpacks the one file an archive must hold into `destination` (which must exist), replacing a
// file of that name; the name is given in `entryName`. Refused: more or fewer than one entry, a
// name that is not a plain file name (a path, "..", a backslash), another name than
// `expectedName` when one is given, an entry that isn't a regular file (a link), a size beyond
// the limits, a damaged entry or a wrong password; AES and the older ZIP encryption both read.
bool extractSingle(const QString &zipPath, const QString &destination, const QString &password, const ExtractLimits &limits,
                   QString *entryName, QString *error, const QString &expectedName = {});
}
