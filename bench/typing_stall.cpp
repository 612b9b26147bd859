// The main thread's longest stall while a user types a five-letter word quickly into the search
// bar of a 20,000-place demo, the capital's list being rebuilt after each search.
//   typing_stall [places]

#include "app/AppDelegate.h"
#include "app/AppWindow.h"
#include "browse/BuscarViewController.h"
#include "platform/Paths.h"
#include "platform/UserDefaults.h"
#include "presentation/NavigationController.h"
#include "toolkit/CatalogueWriter.h"
#include "toolkit/DemoGenerator.h"

#include <QElapsedTimer>
#include <QGuiApplication>
#include <QQuickWindow>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <algorithm>
#include <cstdio>

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    const int places = argc > 1 ? QString::fromLatin1(argv[1]).toInt() : 20000;
    QTemporaryDir home;
    Paths::setRoot(home.path());
    DemoOptions options;
    options.places = places;
    QString error;
    QDir().mkpath(Paths::documents());
    if (!writeCatalogue(makeDemo(options), Paths::documents() + QStringLiteral("/velmora-20261101.db"), &error))
        qFatal("%s", qPrintable(error));
    UserDefaults::standard().setInteger(1, QStringLiteral("Province"));

    AppDelegate delegate;
    delegate.didFinishLaunching();
    AppWindow window(delegate);
    if (!window.load() || !QTest::qWaitForWindowExposed(window.window()))
        qFatal("no window");
    auto *search = qobject_cast<BuscarViewController *>(delegate.mainNavigation()->viewControllers().first());
    QTest::qWait(1500); // the first list of the capital

    const int listed = search->lugaresVC()->rows()->rowCount();
    search->searchTapped();
    QTest::qWait(500);

    // A watchdog on the main thread: the gaps between its ticks are the stalls.
    QList<qint64> gaps;
    QElapsedTimer clock;
    clock.start();
    qint64 last = 0;
    QTimer watchdog;
    watchdog.setInterval(1);
    watchdog.setTimerType(Qt::PreciseTimer);
    QObject::connect(&watchdog, &QTimer::timeout, [&] {
        const qint64 now = clock.nsecsElapsed();
        if (last)
            gaps.append(now - last);
        last = now;
    });
    watchdog.start();
    // A real event loop throughout (QTest::qWait would sleep between its own passes): a key every
    // 90 ms, a quick typist's pace, then time for the last search and list to land.
    QEventLoop loop;
    const char word[] = "bodeg";
    for (int i = 0; i < 5; ++i)
        QTimer::singleShot(90 * i, &loop, [&, i] { QTest::keyClick(window.window(), word[i]); });
    QTimer::singleShot(90 * 5 + 1500, &loop, &QEventLoop::quit);
    loop.exec();
    watchdog.stop();

    std::sort(gaps.begin(), gaps.end());
    const double longest = gaps.isEmpty() ? 0 : gaps.last() / 1e6;
    const double median = gaps.isEmpty() ? 0 : gaps.at(gaps.size() / 2) / 1e6;
    std::printf("%d places, capital list of %d: longest main-thread stall while typing \"bodeg\" %.1f ms "
                "(median tick %.2f ms, %lld ticks), %d searches run, %d places listed at the end\n",
                places, listed, longest, median, qlonglong(gaps.size()), search->searchesStarted(),
                search->lugaresVC()->rows()->rowCount());
    return 0;
}
