#pragma once

#include <QFile>
#include <QList>

#include <algorithm>

// The figures the interface benchmarks print.
namespace Figures {

inline double median(QList<double> values)
{
    std::sort(values.begin(), values.end());
    return values.isEmpty() ? 0 : values.at(values.size() / 2);
}

inline double percentile(QList<double> values, int percent)
{
    std::sort(values.begin(), values.end());
    return values.isEmpty() ? 0 : values.at(std::min(values.size() - 1, values.size() * percent / 100));
}

// The process's resident memory now, in MB.
inline double residentMb()
{
    QFile status(QStringLiteral("/proc/self/statm"));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    const QList<QByteArray> fields = status.readAll().split(' ');
    return fields.value(1).toDouble() * 4096.0 / 1e6;
}

}
