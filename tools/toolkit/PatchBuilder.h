#pragma once

#include <QDate>
#include <QString>

struct PatchStats {
    QDate from;
    QDate to;
    int scripts = 0;
    int inserted = 0; // rows or groups of rows new in NEW
    int updated = 0;
    int deleted = 0;
};

// Makes the patch archive that turns catalogue OLD into NEW: an encrypted ZIP holding one plain
// SQLite file velmora-<from>-<to>.db whose table `updates` lists numbered SQL scripts, the
// version date changed by the last one. The scripts are applied to a copy of OLD and every table
// compared with NEW before anything is written; a patch that would not reproduce NEW is refused.
bool buildPatch(const QString &oldPath, const QString &newPath, const QString &outZip, QString *error,
                PatchStats *stats = nullptr);

// The first table whose rows differ between two catalogues, described; empty when they agree.
QString firstDifference(const QString &leftPath, const QString &rightPath, QString *error);
