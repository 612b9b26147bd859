// The map on a large guide: opening the menu's map (building the shared view with a pin for
// every place, up to the first frame that shows them), the main thread's work for each frame
// of a pan and of a zoom with every pin drawn, and the memory the map adds.
//   map_bench PLACES BASEMAP.mbtiles [frames [STREETS.mbtiles]]

#include "BenchApp.h"
#include "Figures.h"
#include "map/MapView.h"
#include "map/MapViewWrapper.h"

#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>

#include <algorithm>
#include <cstdio>

using namespace Figures;

int main(int argc, char **argv)
{
    takeArguments(argc, argv, 2, "map_bench PLACES BASEMAP.mbtiles [frames [STREETS.mbtiles]]");
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    const int places = QString::fromLatin1(argv[1]).toInt();
    const int frames = argc > 3 ? QString::fromLatin1(argv[3]).toInt() : 60;
    BenchApp bench(places);
    QFile::copy(QString::fromLocal8Bit(argv[2]), Paths::documents() + QStringLiteral("/base.mbtiles"));
    // With the street map beside it, the same figures show what it costs at the country's zooms.
    if (argc > 4)
        QFile::copy(QString::fromLocal8Bit(argv[4]), Paths::documents() + QStringLiteral("/streets.mbtiles"));
    QQuickWindow *window = bench.window->window();
    QTest::qWait(500);
    const double before = residentMb();

    // From the menu's choice to the first frame that shows every pin.
    QElapsedTimer clock;
    clock.start();
    qint64 shownAt = 0;
    QEventLoop loop;
    QObject::connect(window, &QQuickWindow::frameSwapped, &loop, [&] {
        MapView *view = MapViewWrapper::shared().mapView();
        if (!shownAt && view && view->isVisible() && view->lastFrameNanoseconds() > 0) {
            shownAt = clock.elapsed();
            loop.quit();
        }
    });
    QTimer::singleShot(30000, &loop, &QEventLoop::quit);
    bench.delegate->openLink(QStringLiteral("velmora://map"), false);
    loop.exec();
    MapView *view = MapViewWrapper::shared().mapView();
    if (!shownAt || !view) {
        std::fprintf(stderr, "the map never showed\n");
        return 1;
    }
    const int pins = view->annotationCount();
    QTest::qWait(300);
    const double after = residentMb();

    // One frame per camera step, each waited for: what updatePaintNode costs the main thread,
    // and the whole frame from the change to the swap.
    const auto run = [&](const std::function<void(int)> &step) {
        QList<double> work, whole;
        for (int i = 0; i < frames; ++i) {
            QEventLoop frame;
            QObject::connect(window, &QQuickWindow::frameSwapped, &frame, &QEventLoop::quit);
            QElapsedTimer timer;
            timer.start();
            step(i);
            frame.exec();
            whole.append(timer.nsecsElapsed() / 1e6);
            work.append(view->lastFrameNanoseconds() / 1e6);
        }
        return std::pair{work, whole};
    };
    const CoordinateRegion country = view->visibleRegion();
    const auto [panWork, panWhole] = run([&](int i) {
        view->setVisibleRegion({country.latitude + 0.02 * (i % 10), country.longitude - 0.05 * i, country.zoomLevel});
    });
    const auto [zoomWork, zoomWhole] = run([&](int i) {
        view->setVisibleRegion({22.5, -81.0, float(5.1 + (i % 30) * 0.1)});
    });
    std::printf("| %7d | %8lld | %8.2f | %8.2f | %8.2f | %8.2f | %8.2f | %8.1f |\n", pins, shownAt, median(panWork),
                percentile(panWork, 95), median(panWhole), median(zoomWork), percentile(zoomWork, 95), after - before);
    return 0;
}
