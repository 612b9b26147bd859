// The street map in the capital at zoom 16, on a large guide: the main thread's work for each
// frame of a pan while street tiles are drawn on the workers, the time from a town entering the
// view to its street tiles on screen, and the memory the street map adds.
//   street_bench PLACES BASEMAP.mbtiles STREETS.mbtiles [frames]

#include "BenchApp.h"
#include "Figures.h"
#include "map/MapView.h"
#include "map/MapViewWrapper.h"
#include "toolkit/DemoTowns.h"

#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>

#include <cmath>
#include <cstdio>

using namespace Figures;

int main(int argc, char **argv)
{
    takeArguments(argc, argv, 3, "street_bench PLACES BASEMAP.mbtiles STREETS.mbtiles [frames]");
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    const int frames = argc > 4 ? QString::fromLatin1(argv[4]).toInt() : 120;
    BenchApp bench(QString::fromLatin1(argv[1]).toInt());
    QFile::copy(QString::fromLocal8Bit(argv[2]), Paths::documents() + QStringLiteral("/base.mbtiles"));
    QFile::copy(QString::fromLocal8Bit(argv[3]), Paths::documents() + QStringLiteral("/streets.mbtiles"));
    QQuickWindow *window = bench.window->window();
    bench.delegate->openLink(QStringLiteral("velmora://map"), false);
    QTest::qWait(1500);
    MapView *view = MapViewWrapper::shared().mapView();
    if (!view || !view->hasStreetMap()) {
        std::fprintf(stderr, "no street map on the map\n");
        return 1;
    }
    const auto nextFrame = [&] {
        QEventLoop frame;
        QObject::connect(window, &QQuickWindow::frameSwapped, &frame, &QEventLoop::quit);
        QTimer::singleShot(1000, &frame, &QEventLoop::quit);
        frame.exec();
    };
    // The capital's towns, as the demo's catalogue and street map place them.
    QList<DemoTown> capital;
    for (const DemoTown &town : demoTowns(countryLand()))
        if (town.province == 0)
            capital.append(town);
    const double before = residentMb();

    // A town entering the view: from the camera's move to the frame that shows its streets.
    QList<double> arrivals;
    for (int t = 1; t < capital.size(); ++t) {
        const QPointF centre = capital.at(t).bounds().center();
        QElapsedTimer timer;
        timer.start();
        view->setVisibleRegion({centre.y(), centre.x(), 16});
        nextFrame(); // the frame that asks for the tiles
        while (view->streetTiles().pendingCount() > 0 && timer.elapsed() < 5000)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 1);
        view->update();
        nextFrame(); // the frame that shows them, if none has yet
        arrivals.append(timer.nsecsElapsed() / 1e6);
    }

    // Panning around the first town in a circle of 200 m, a frame per step, tiles arriving as
    // they are drawn.
    const QPointF centre = capital.first().bounds().center();
    QList<double> work;
    for (int i = 0; i < frames; ++i) {
        const double angle = i * 0.15;
        view->setVisibleRegion({centre.y() + 0.0018 * std::sin(angle), centre.x() + 0.0018 * std::cos(angle), 16});
        nextFrame();
        work.append(view->lastFrameNanoseconds() / 1e6);
    }
    view->streetTiles().waitForDone();
    QTest::qWait(200);
    const double after = residentMb();
    std::printf("| %8.2f | %7.2f | %10.1f | %9.1f | %8.1f | %11.1f |\n", median(work), percentile(work, 95), median(arrivals),
                percentile(arrivals, 100), after - before, view->streetTiles().pictureBytes() / 1e6);
    return 0;
}
