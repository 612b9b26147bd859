// How big a patch is against the whole catalogue when 1% of a demo's places change.
//   patch_bench [places]   (default 20,000)

#include "MonthOfChanges.h"
#include "toolkit/PatchBuilder.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QTemporaryDir>

#include <cstdio>

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const int places = argc > 1 ? QString::fromLatin1(argv[1]).toInt() : 20000;
    QTemporaryDir dir;
    const MonthOfChanges month(dir.path(), places);

    QElapsedTimer timer;
    timer.start();
    PatchStats stats;
    QString error;
    const QString archive = dir.filePath(QStringLiteral("patch.zip"));
    if (!buildPatch(month.oldPath, month.newPath, archive, &error, &stats))
        qFatal("%s", qPrintable(error));
    const double whole = double(QFileInfo(month.newPath).size());
    const double patch = double(QFileInfo(archive).size());
    std::printf("%d places, %d changed: catalogue %.1f MB, patch archive %.1f kB (%.2f%% of the catalogue), "
                "%d scripts, built and checked in %lld ms\n",
                places, month.changed, whole / 1e6, patch / 1e3, 100.0 * patch / whole, stats.scripts, qlonglong(timer.elapsed()));
    return 0;
}
