#pragma once

#include <QString>

// Marks a file so that backup tools leave it out. On Linux this is the freedesktop extended
// attribute user.xdg.robots.backup = "false"; a phone build sets its platform's flag instead.
// Returns false when the file system refused the mark.
bool markExcludedFromBackup(const QString &path);
// Whether the mark is on the file.
bool isExcludedFromBackup(const QString &path);
