#pragma once

#include <QDate>
#include <QString>

#include <optional>

// The catalogue's two fixed date forms, read in the device's time zone: `yyyyMMdd` for version,
// expiry and file names, `yyyy-MM-dd` for offers and campaigns.
namespace CatalogueDates {
std::optional<QDate> parseCompact(const QString &text);
QString formatCompact(QDate date);
std::optional<QDate> parseDashed(const QString &text);
QString formatDashed(QDate date);
}
