// How big a patch is against the whole catalogue when 1% of a demo's places change.
//   patch_bench [places]   (default 20,000)

#include "toolkit/CatalogueWriter.h"
#include "toolkit/DemoGenerator.h"
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
    DemoOptions options;
    options.places = places;
    QString error;
    const QString oldPath = dir.filePath(QStringLiteral("old.db"));
    if (!writeCatalogue(makeDemo(options), oldPath, &error))
        qFatal("%s", qPrintable(error));

    // A month later: one place in a hundred renamed, with new hours and a new picture.
    CatalogueData next = makeDemo(options);
    next.setExtra(QStringLiteral("version_date"), QStringLiteral("20261201"));
    QList<QVariantMap> &rows = next.rows(QStringLiteral("restaurants"));
    QSet<int> changed;
    for (int i = 0; i < rows.size(); i += 100) {
        rows[i].insert(QStringLiteral("name"), rows[i].value(QStringLiteral("name")).toString() + QStringLiteral(" Nuevo"));
        rows[i].insert(QStringLiteral("horario"), QStringLiteral("De 10:00 a 22:00"));
        changed.insert(rows[i].value(QStringLiteral("id")).toInt());
    }
    for (QVariantMap &profile : next.rows(QStringLiteral("restaurants_profiles")))
        if (changed.contains(profile.value(QStringLiteral("restaurant_id")).toInt()))
            profile.insert(QStringLiteral("data"), profile.value(QStringLiteral("data")).toByteArray() + QByteArray("\xff\xd9"));
    const QString newPath = dir.filePath(QStringLiteral("new.db"));
    if (!writeCatalogue(next, newPath, &error))
        qFatal("%s", qPrintable(error));

    QElapsedTimer timer;
    timer.start();
    PatchStats stats;
    const QString archive = dir.filePath(QStringLiteral("patch.zip"));
    if (!buildPatch(oldPath, newPath, archive, &error, &stats))
        qFatal("%s", qPrintable(error));
    const double whole = double(QFileInfo(newPath).size());
    const double patch = double(QFileInfo(archive).size());
    std::printf("%d places, %lld changed: catalogue %.1f MB, patch archive %.1f kB (%.2f%% of the catalogue), "
                "%d scripts, built and checked in %lld ms\n",
                places, qlonglong(changed.size()), whole / 1e6, patch / 1e3, 100.0 * patch / whole, stats.scripts,
                qlonglong(timer.elapsed()));
    return 0;
}
