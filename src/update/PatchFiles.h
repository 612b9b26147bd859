#pragma once

#include <QDate>
#include <QString>

// Names shared by whoever makes patches and whoever applies them.
namespace PatchFiles {
// Every patch archive is protected by this password, on every server.
inline const QString archivePassword = QStringLiteral("Hw3TzqLm8XvRk2NbYc7PfJs9GdUe4AoQ");
// The patch database inside an archive: velmora-<from>-<to>.db.
QString patchFileName(QDate from, QDate to);
// Where an archive lies relative to the whole catalogue's URL: u2/update-<from>-<to>.zip.
QString archivePath(QDate from, QDate to);
}
