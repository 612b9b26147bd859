// The main thread's longest stall while a user types quickly (keys 30 to 120 ms apart, with a
// correction) into the search bar of a demo catalogue, the capital's list being updated after
// each search; then the app's resident memory after the whole capital list has been scrolled
// through, a screenful at a time.
//   typing_stall [places] [--no-scroll]

#include "BenchApp.h"
#include "app/AppWindow.h"
#include "browse/BuscarViewController.h"
#include "platform/Paths.h"
#include "platform/UserDefaults.h"
#include "presentation/NavigationController.h"
#include "presentation/QuickItems.h"
#include "toolkit/CatalogueWriter.h"
#include "toolkit/DemoGenerator.h"

#include <QElapsedTimer>
#include <QFile>
#include <QQuickItem>
#include <QGuiApplication>
#include <QQuickWindow>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <algorithm>
#include <cstdio>

namespace {
// A field of /proc/self/status, in kB.
qint64 residentKb(const char *field)
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray &line : status.readAll().split('\n'))
        if (line.startsWith(field))
            return line.mid(qstrlen(field) + 1).trimmed().split(' ').first().toLongLong();
    return -1;
}
}

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    const int places = argc > 1 && argv[1][0] != '-' ? QString::fromLatin1(argv[1]).toInt() : 20000;
    BenchApp bench(places);
    AppDelegate &delegate = *bench.delegate;
    AppWindow &window = *bench.window;
    auto *search = qobject_cast<BuscarViewController *>(delegate.mainNavigation()->viewControllers().first());

    const int listed = search->lugaresVC()->rows()->rowCount();
    search->searchTapped();
    QTest::qWait(500);

    StallWatch watch;
    watch.start();
    // A real event loop throughout (QTest::qWait would sleep between its own passes): a key every
    // 90 ms, a quick typist's pace, then time for the last search and list to land.
    QEventLoop loop;
    // "bodeguita", four corrections, then " calle": every kind of change a list goes through.
    const QString typed = QStringLiteral("bodeguita\b\b\b\b calle");
    const int pauses[] = {30, 120, 45, 90, 60, 110, 35, 75, 100, 50, 40, 85, 65, 120, 30, 55};
    int at = 0;
    for (qsizetype i = 0; i < typed.size(); ++i) {
        at += pauses[i % std::size(pauses)];
        const QChar key = typed.at(i);
        QTimer::singleShot(at, &loop, [&, key] {
            if (key == QLatin1Char('\b'))
                QTest::keyClick(window.window(), Qt::Key_Backspace);
            else
                QTest::keyClick(window.window(), key.toLatin1());
        });
    }
    QTimer::singleShot(at + 2000, &loop, &QEventLoop::quit);
    loop.exec();
    watch.stop();

    const double longest = watch.longestMs();
    const double median = watch.percentileMs(50);
    const double p99 = watch.percentileMs(99);
    std::printf("%d places, capital list of %d: longest main-thread stall while typing %.1f ms "
                "(p99 tick %.2f ms, median %.2f ms, %lld ticks), %d searches run, %d places listed at the end\n",
                places, listed, longest, p99, median, qlonglong(watch.ticks()), search->searchesStarted(),
                search->lugaresVC()->rows()->rowCount());
    if (QCoreApplication::arguments().contains(QStringLiteral("--no-scroll")))
        return 0;

    // Back to the whole capital, then through it a screenful at a time, every card drawn.
    search->cancelSearch();
    QTest::qWait(1500);
    auto *list = findItem(window.window()->contentItem(), QStringLiteral("placeList"));
    if (!list)
        qFatal("no place list");
    const int rows = search->lugaresVC()->rows()->rowCount();
    int screens = 0;
    while (!list->property("atYEnd").toBool() && screens < 100000) {
        list->setProperty("contentY", list->property("contentY").toDouble() + list->height());
        QTest::qWait(2);
        ++screens;
    }
    QTest::qWait(500);
    std::printf("%d places: after scrolling all %d rows of the capital (%d screens): resident %lld MB, peak %lld MB\n",
                places, rows, screens, residentKb("VmRSS") / 1024, residentKb("VmHWM") / 1024);
    return 0;
}
