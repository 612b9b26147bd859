#include "catalogue/CatalogueFiles.h"

#include "catalogue/CatalogueDates.h"

#include <QRegularExpression>

bool CatalogueFiles::isCandidateName(const QString &fileName)
{
    const QString lower = fileName.toLower();
    return (lower.startsWith(QLatin1String("velmora")) && lower.endsWith(QLatin1String(".db")))
        || lower.endsWith(QLatin1String(".vmr"));
}

QString CatalogueFiles::catalogueFileName(QDate versionDate)
{
    return QStringLiteral("velmora-") + CatalogueDates::formatCompact(versionDate) + QStringLiteral(".db");
}

std::optional<CatalogueFiles::PatchDates> CatalogueFiles::patchDates(const QString &fileName)
{
    static const QRegularExpression pattern(QStringLiteral("(\\d{8})-(\\d{8}).db$"));
    const QRegularExpressionMatch match = pattern.match(fileName);
    if (!match.hasMatch())
        return std::nullopt;
    return PatchDates{match.captured(1), match.captured(2)};
}
