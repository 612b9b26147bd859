#pragma once

#include <QString>
#include <QStringList>

// Password-protected ZIP archives (AES-256), as patch archives travel.
namespace ZipArchive {
// Writes `zipPath` holding `sourceFile` under `entryName`, deflated and encrypted.
bool writeEncrypted(const QString &zipPath, const QString &entryName, const QString &sourceFile, const QString &password,
                    QString *error);
// Extracts every entry into `destination` (which must exist), overwriting; `entries` gets their
// names. An entry whose name would leave `destination` is refused.
bool extract(const QString &zipPath, const QString &destination, const QString &password, QStringList *entries,
             QString *error);
}
