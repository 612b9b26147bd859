#pragma once

#include <QString>

// Which column of a Spanish/English pair a language reads.
namespace LanguageColumns {
// `name`, `description`, `horario`, `oof_reason`, `custom_category` and the name tables: the plain
// column for exactly "es", the `_en` one for every other language.
inline QString localized(const QString &column, const QString &language)
{
    return language == QLatin1String("es") ? column : column + QLatin1String("_en");
}

// An ad's `action_value` goes the other way round: English only for languages starting with "en",
// the plain column for all the rest.
inline QString actionValue(const QString &language)
{
    return language.startsWith(QLatin1String("en")) ? QStringLiteral("action_value_en") : QStringLiteral("action_value");
}
}
