#pragma once

#include <QFile>
#include <QList>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

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

// `--help` prints the usage and ends the process; an option the benchmark doesn't take, or too
// few arguments, prints it to the error stream and ends it with 2.
inline void takeArguments(int argc, char **argv, int required, const char *usage)
{
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--help") == 0 || std::strcmp(argv[i], "-h") == 0) {
            std::printf("usage: %s\n", usage);
            std::exit(0);
        }
        if (argv[i][0] == '-' && argv[i][1] != '\0') {
            std::fprintf(stderr, "unknown option %s\nusage: %s\n", argv[i], usage);
            std::exit(2);
        }
    }
    if (argc < required + 1) {
        std::fprintf(stderr, "usage: %s\n", usage);
        std::exit(2);
    }
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
