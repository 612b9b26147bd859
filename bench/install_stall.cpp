// The main thread's longest stall while the app, its window up, fetches a newer catalogue from the
// toolkit's server on 127.0.0.1 (the info screen's update button), verifies it, installs it and
// reloads:
// the whole file (a shelf without patches) of a month in which one place in a hundred changed.
// One install a process (the transfer session belongs to the process): scripts/bench runs it
// several times.
//   install_stall VELMORA-CATALOGUE [places]   (default 20,000 places)

#include "BenchApp.h"
#include "Figures.h"
#include "MonthOfChanges.h"
#include "platform/DefaultKeys.h"
#include "catalogue/Restaurants.h"
#include "info/InfoTableViewController.h"
#include "platform/NotificationCenter.h"
#include "platform/Notifications.h"
#include "update/UpdateChecker.h"

#include <QEventLoop>
#include <QGuiApplication>
#include <QProcess>

#include <cstdio>

using namespace Figures;

int main(int argc, char **argv)
{
    takeArguments(argc, argv, 1, "install_stall VELMORA-CATALOGUE [places]");
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("VELMORA_DISCOVERY_SECONDS", "0");
    QGuiApplication app(argc, argv);
    const QString tool = QString::fromLocal8Bit(argv[1]);
    const int places = argc > 2 ? QString::fromLatin1(argv[2]).toInt() : 20000;

    QTemporaryDir work;
    const MonthOfChanges month(work.path(), places);
    const QString root = work.filePath(QStringLiteral("served"));
    QDir().mkpath(root);
    const ToolkitServer server(tool, root);
    const QString &base = server.base;
    QProcess publish;
    publish.start(tool, {QStringLiteral("publish"), month.newPath, QStringLiteral("--to"), root, QStringLiteral("--base-url"), base});
    if (!publish.waitForFinished(300000) || publish.exitCode() != 0)
        qFatal("publish failed: %s", publish.readAllStandardError().constData());
    qputenv("VELMORA_UPDATE_URL", (base + QStringLiteral("ios/last.txt")).toUtf8());
    qputenv("VELMORA_BENCH_DEMO", month.oldPath.toLocal8Bit());

    {
        // The toolkit's shelf is unsigned: the developer setting that installs such updates
        // when the app trusts no key.
        BenchApp bench(places, [] { UserDefaults::standard().setBool(true, DefaultKeys::devAllowUnsignedUpdates); });
        UpdateChecker *checker = bench.delegate->updateChecker();
        if (!checker)
            qFatal("no updater");
        // The launch's own check has asked the server by now; once more, to be sure.
        QEventLoop asked;
        checker->checkInternet(0, [&](bool) { asked.quit(); });
        QTimer::singleShot(10000, &asked, &QEventLoop::quit);
        asked.exec();
        if (!checker->isNewerDatabaseKnown())
            qFatal("the server announced nothing newer");

        // As a user does: the info screen from the menu, then its update button.
        bench.delegate->openLink(QStringLiteral("velmora://info"), false);
        QTest::qWait(800);
        auto *info = bench.delegate->findChild<InfoTableViewController *>();
        if (!info)
            qFatal("no info screen");

        StallWatch watch;
        QEventLoop loop;
        QObject::connect(&NotificationCenter::defaultCenter(), &NotificationCenter::posted, &loop, [&](const QString &name) {
            // The first frames of the reloaded list belong to the install too.
            if (name == Notifications::RestaurantsDidReload)
                QTimer::singleShot(1000, &loop, &QEventLoop::quit);
        });
        QTimer::singleShot(120000, &loop, &QEventLoop::quit);
        QElapsedTimer clock;
        clock.start();
        watch.start();
        info->updateButtonTouched();
        loop.exec();
        watch.stop();
        if (!QFile::exists(Paths::documents() + QStringLiteral("/velmora-20261201.db"))
            || Restaurants::shared().databaseVersionDate() != QDate(2026, 12, 1))
            qFatal("the catalogue was not installed and loaded");
        std::printf("| %8d | %13.1f | %8.2f | %11.0f | %7.1f MB |\n", places, watch.longestMs(), watch.percentileMs(99),
                    double(clock.elapsed()) - 1000, double(QFileInfo(month.newPath).size()) / 1e6);
    }
    return 0;
}
