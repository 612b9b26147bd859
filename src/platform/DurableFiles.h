#pragma once

#include <QByteArray>
#include <QString>

// Files the app makes final are never seen half-written, even across a power cut or a killed
// process: the bytes go to a temporary name beside the target, are flushed to the disk, renamed
// over the final name, and the folder is flushed so the rename itself survives.
namespace DurableFiles {
// The temporary name used beside `finalPath`; hidden, and never a catalogue candidate's name.
QString temporaryPathFor(const QString &finalPath);
// Flushes a file's or a folder's contents to the disk.
bool syncPath(const QString &path);
// Writes `bytes` to `finalPath` as described above, replacing what stood there.
bool writeFile(const QString &finalPath, const QByteArray &bytes, QString *error);
// Moves `from` to `to` (a rename when both are on one file system, else a copy through a
// temporary name and the removal of `from`). With `replace` false an existing `to` is left alone
// and the move fails.
bool moveFile(const QString &from, const QString &to, bool replace, QString *error);
// Copies `from` to `to` through a temporary name; `to` is replaced.
bool copyFile(const QString &from, const QString &to, QString *error);
}
