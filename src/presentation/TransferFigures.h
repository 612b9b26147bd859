#pragma once

#include <QString>

// "1.5 / 2.5 MB" for a transfer under way; below a megabyte in kilobytes, where "0.0 / 0.0 MB"
// would tell the user nothing (a patch is often a few kilobytes).
inline QString transferFigures(qint64 done, qint64 total)
{
    if (total > 0 && total < 1000000)
        return QStringLiteral("%1 / %2 kB").arg(double(done) / 1e3, 0, 'f', 0).arg(double(total) / 1e3, 0, 'f', 0);
    return QStringLiteral("%1 / %2 MB").arg(double(done) / 1e6, 0, 'f', 1).arg(double(total) / 1e6, 0, 'f', 1);
}
