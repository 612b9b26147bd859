#include "catalogue/CatalogueDates.h"

namespace {
// Qt's parser accepts surrounding blanks and some loose forms; a catalogue date is exactly its
// pattern's length in digits (and dashes), nothing else.
std::optional<QDate> parseStrict(const QString &text, const QString &pattern, qsizetype length)
{
    if (text.size() != length)
        return std::nullopt;
    const QDate date = QDate::fromString(text, pattern);
    if (!date.isValid())
        return std::nullopt;
    return date;
}
}

std::optional<QDate> CatalogueDates::parseCompact(const QString &text)
{
    for (QChar c : text)
        if (!c.isDigit())
            return std::nullopt;
    return parseStrict(text, QStringLiteral("yyyyMMdd"), 8);
}

QString CatalogueDates::formatCompact(QDate date) { return date.toString(QStringLiteral("yyyyMMdd")); }

std::optional<QDate> CatalogueDates::parseDashed(const QString &text)
{
    return parseStrict(text, QStringLiteral("yyyy-MM-dd"), 10);
}

QString CatalogueDates::formatDashed(QDate date) { return date.toString(QStringLiteral("yyyy-MM-dd")); }
