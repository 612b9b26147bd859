#include "update/PatchFiles.h"

#include "catalogue/CatalogueDates.h"

QString PatchFiles::patchFileName(QDate from, QDate to)
{
    return QStringLiteral("velmora-%1-%2.db").arg(CatalogueDates::formatCompact(from), CatalogueDates::formatCompact(to));
}

QString PatchFiles::archivePath(QDate from, QDate to)
{
    return QStringLiteral("u2/update-%1-%2.zip").arg(CatalogueDates::formatCompact(from), CatalogueDates::formatCompact(to));
}
