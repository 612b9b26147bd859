#pragma once

#include <QDate>
#include <QString>
#include <QUrl>

#include <optional>

// The update announcement `last.txt`: one line "yyyyMMdd|URL of the whole catalogue".
struct UpdateInfo {
    QDate date;
    QUrl url;
};

// The announcement, or the reason it is not one: "update info must have a single '|'",
// "invalid URL", or an empty message for a date that does not read.
std::optional<UpdateInfo> parseUpdateInfo(const QString &text, QString *error = nullptr);
QString formatUpdateInfo(const UpdateInfo &info);
