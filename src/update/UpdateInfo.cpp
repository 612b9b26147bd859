#include "update/UpdateInfo.h"

#include "catalogue/CatalogueDates.h"

std::optional<UpdateInfo> parseUpdateInfo(const QString &text, QString *error)
{
    const auto fail = [&](const QString &message) {
        if (error)
            *error = message;
        return std::nullopt;
    };
    const QStringList parts = text.split(QLatin1Char('|'));
    if (parts.size() != 2)
        return fail(QStringLiteral("update info must have a single '|'"));
    const QUrl url(parts.at(1).trimmed(), QUrl::StrictMode);
    if (!url.isValid() || url.isRelative())
        return fail(QStringLiteral("invalid URL"));
    const auto date = CatalogueDates::parseCompact(parts.at(0).trimmed());
    if (!date)
        return fail(QString());
    return UpdateInfo{*date, url};
}

QString formatUpdateInfo(const UpdateInfo &info)
{
    return CatalogueDates::formatCompact(info.date) + QLatin1Char('|') + info.url.toString() + QLatin1Char('\n');
}
