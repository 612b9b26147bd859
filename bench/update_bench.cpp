// The same month's update reaching a device two ways, from the toolkit's server on 127.0.0.1:
// the patch, and the whole file (a shelf published without patches). Each is a whole run of
// `velmora --update-now` on a fresh home holding the older catalogue: wall time and the
// process's peak resident memory, medians of `runs`.
//   update_bench VELMORA VELMORA-CATALOGUE [places] [runs]   (default 20,000 places, 5 runs)

#include "MonthOfChanges.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

extern char **environ;

namespace {
struct Measure {
    double ms = 0;
    double updatingMs = 0; // from the announcement's answer ("fetching it") to the end
    double peakMb = 0;
    bool ok = false;
};

// One run of the app as its own process, with its own resource usage.
Measure runOnce(const QString &app, const QString &home, const QString &url)
{
    const QByteArray appPath = QFile::encodeName(app), homePath = QFile::encodeName(home), urlText = url.toUtf8();
    char *argv[] = {const_cast<char *>(appPath.constData()), const_cast<char *>("--home"), const_cast<char *>(homePath.constData()),
                    const_cast<char *>("--update-now"), const_cast<char *>("--update-url"), const_cast<char *>(urlText.constData()),
                    nullptr};
    int output[2];
    if (pipe(output) != 0)
        return {};
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, output[1], 1);
    posix_spawn_file_actions_addclose(&actions, output[0]);
    posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
    QElapsedTimer timer;
    timer.start();
    pid_t pid = 0;
    Measure measure;
    const bool spawned = posix_spawn(&pid, argv[0], &actions, nullptr, argv, environ) == 0;
    close(output[1]);
    if (spawned) {
        // The progress lines tell when the update proper began.
        QByteArray seen;
        char buffer[4096];
        qint64 fetchingAt = -1;
        ssize_t n;
        while ((n = read(output[0], buffer, sizeof buffer)) > 0) {
            seen.append(buffer, n);
            if (fetchingAt < 0 && seen.contains("fetching it"))
                fetchingAt = timer.nsecsElapsed();
        }
        int status = 0;
        rusage usage{};
        wait4(pid, &status, 0, &usage);
        measure.ms = double(timer.nsecsElapsed()) / 1e6;
        measure.updatingMs = fetchingAt < 0 ? 0 : double(timer.nsecsElapsed() - fetchingAt) / 1e6;
        measure.peakMb = double(usage.ru_maxrss) / 1024.0;
        measure.ok = WIFEXITED(status) && WEXITSTATUS(status) == 0;
    }
    close(output[0]);
    posix_spawn_file_actions_destroy(&actions);
    return measure;
}

double median(QList<double> values)
{
    std::sort(values.begin(), values.end());
    return values.isEmpty() ? 0 : values.at(values.size() / 2);
}
}

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    if (argc < 3) {
        std::fprintf(stderr, "usage: update_bench VELMORA VELMORA-CATALOGUE [places] [runs]\n");
        return 2;
    }
    const QString app = QString::fromLocal8Bit(argv[1]);
    const QString tool = QString::fromLocal8Bit(argv[2]);
    const int places = argc > 3 ? QString::fromLatin1(argv[3]).toInt() : 20000;
    const int runs = argc > 4 ? QString::fromLatin1(argv[4]).toInt() : 5;
    qputenv("VELMORA_DISCOVERY_SECONDS", "0");
    qputenv("QT_LOGGING_RULES", "velmora.*=false");

    QTemporaryDir work;
    const MonthOfChanges month(work.path(), places);
    const QString root = work.filePath(QStringLiteral("served"));
    QDir().mkpath(root + QStringLiteral("/patch"));
    QDir().mkpath(root + QStringLiteral("/full"));
    const ToolkitServer server(tool, root);
    const QString &base = server.base;
    // Signed as a real shelf is, with a key each home trusts.
    const QString keys = work.filePath(QStringLiteral("keys"));
    QProcess keygen;
    keygen.start(tool, {QStringLiteral("keygen"), QStringLiteral("-o"), keys});
    if (!keygen.waitForFinished(60000) || keygen.exitCode() != 0)
        qFatal("keygen failed: %s", keygen.readAllStandardError().constData());
    for (const QString &shelf : {QStringLiteral("patch"), QStringLiteral("full")}) {
        QStringList arguments = {QStringLiteral("publish"), month.newPath};
        if (shelf == QLatin1String("patch"))
            arguments << month.oldPath;
        arguments << QStringLiteral("--to") << root + QLatin1Char('/') + shelf << QStringLiteral("--base-url") << base + shelf
                  << QStringLiteral("--key") << keys + QStringLiteral("/velmora-signing.key");
        QProcess publish;
        publish.start(tool, arguments);
        if (!publish.waitForFinished(300000) || publish.exitCode() != 0)
            qFatal("publish failed: %s", publish.readAllStandardError().constData());
    }
    const double patchKb = double(QFileInfo(root + QStringLiteral("/patch/ios/u2/update-20261101-20261201.zip")).size()) / 1e3;
    const double wholeMb = double(QFileInfo(month.newPath).size()) / 1e6;

    QHash<QString, QList<double>> times, updating, peaks;
    int homes = 0;
    for (int run = 0; run < runs; ++run) {
        for (const QString &shelf : {QStringLiteral("patch"), QStringLiteral("full")}) {
            const QString home = work.filePath(QStringLiteral("home-%1").arg(++homes));
            QDir().mkpath(home + QStringLiteral("/Documents"));
            QFile::copy(month.oldPath, home + QStringLiteral("/Documents/velmora-20261101.db"));
            QDir().mkpath(home + QStringLiteral("/Application Support/trusted-keys"));
            QFile::copy(keys + QStringLiteral("/velmora-signing.pub"), home + QStringLiteral("/Application Support/trusted-keys/bench.pub"));
            const Measure measure = runOnce(app, home, base + shelf + QStringLiteral("/ios/last.txt"));
            if (!measure.ok || !QFile::exists(home + QStringLiteral("/Documents/velmora-20261201.db")))
                qFatal("the update from the %s shelf failed", qPrintable(shelf));
            times[shelf].append(measure.ms);
            updating[shelf].append(measure.updatingMs);
            peaks[shelf].append(measure.peakMb);
            QDir(home).removeRecursively();
        }
    }

    std::printf("%d places, %d changed: patch archive %.1f kB against a catalogue of %.1f MB (%.2f%%)\n", places, month.changed,
                patchKb, wholeMb, 100.0 * patchKb / 1e3 / wholeMb);
    const QString patch = QStringLiteral("patch"), full = QStringLiteral("full");
    std::printf("  (medians of %d; the update proper runs from the announcement's answer to the new catalogue in use,\n"
                "   the whole run adds the start and the check; peak memory is the process's)\n", runs);
    std::printf("  by patch:      update %6.0f ms, whole run %6.0f ms, peak memory %4.0f MB\n", median(updating[patch]),
                median(times[patch]), median(peaks[patch]));
    std::printf("  by whole file: update %6.0f ms, whole run %6.0f ms, peak memory %4.0f MB\n", median(updating[full]),
                median(times[full]), median(peaks[full]));
    std::printf("  whole file / patch: %.2fx the update's time, %.0fx the bytes\n", median(updating[full]) / median(updating[patch]),
                wholeMb * 1e3 / patchKb);
    return 0;
}
