// Opening a place's card from the list: from the tap to the first frame that shows the card, and
// to the first frame that shows its header picture (the first gallery picture, or the blurred
// profile, which is made off the main thread); and the main thread's longest stall in between.
// Each visible card of the capital's list is opened and closed again, several rounds.
//   card_open [places] [rounds]

#include "BenchApp.h"
#include "app/AppWindow.h"
#include "browse/BuscarViewController.h"
#include "catalogue/Restaurants.h"
#include "platform/Paths.h"
#include "platform/UserDefaults.h"
#include "presentation/NavigationController.h"
#include "presentation/QuickItems.h"
#include "toolkit/CatalogueWriter.h"
#include "toolkit/DemoGenerator.h"

#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <algorithm>
#include <functional>
#include <cstdio>

namespace {
double median(QList<double> values)
{
    std::sort(values.begin(), values.end());
    return values.isEmpty() ? 0 : values.at(values.size() / 2);
}

QQuickItem *shownItem(QQuickWindow *window, const QString &name)
{
    return findItemIf(window->contentItem(), [&](QQuickItem *item) { return item->objectName() == name && item->isVisible(); });
}

// The header picture is on screen: the gallery's first picture, or the blurred backdrop.
bool headerShown(QQuickWindow *window)
{
    for (const char *name : {"lugarGalleryPicture", "lugarBlurredPicture"})
        if (QQuickItem *picture = shownItem(window, QString::fromLatin1(name)); picture && picture->property("status").toInt() == 1)
            return true;
    return false;
}
}

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    const int places = argc > 1 ? QString::fromLatin1(argv[1]).toInt() : 20000;
    const int rounds = argc > 2 ? QString::fromLatin1(argv[2]).toInt() : 3;
    BenchApp bench(places);
    QQuickWindow *quick = bench.window->window();
    NavigationController *navigation = bench.delegate->mainNavigation();

    QStringList cards;
    findItemIf(quick->contentItem(), [&](QQuickItem *item) {
        const QRectF shown = item->mapRectToScene(QRectF(0, 0, item->width(), item->height()));
        if (item->objectName().startsWith(QLatin1String("placeCard-")) && item->isVisible() && shown.top() > 56 && shown.bottom() < quick->height())
            cards.append(item->objectName());
        return false;
    });

    StallWatch watch;

    // Opens one card by `open` and times it; false if no card with its picture came up.
    struct Figures {
        QList<double> toCard, toPicture, stalls;
    };
    const auto measure = [&](Figures &figures, const std::function<void()> &open) {
        qint64 cardFrame = 0, pictureFrame = 0;
        QEventLoop loop;
        const auto frames = QObject::connect(quick, &QQuickWindow::frameSwapped, &loop, [&] {
            const qint64 now = watch.clock.nsecsElapsed();
            if (!cardFrame && shownItem(quick, QStringLiteral("lugarView")))
                cardFrame = now;
            if (cardFrame && !pictureFrame && headerShown(quick)) {
                pictureFrame = now;
                loop.quit();
            }
        });
        QTimer::singleShot(5000, &loop, &QEventLoop::quit);
        // The tap's own handling counts: the first gap runs from here.
        watch.start();
        const qint64 tapped = watch.last;
        open();
        loop.exec();
        watch.stop();
        QObject::disconnect(frames);
        if (!pictureFrame)
            qFatal("no card with its picture");
        figures.toCard.append((cardFrame - tapped) / 1e6);
        figures.toPicture.append((pictureFrame - tapped) / 1e6);
        figures.stalls.append(watch.longestMs());
        navigation->popViewController(false);
        QTest::qWait(300);
    };

    // Places with gallery pictures are few and rarely on the first screen: they are opened by
    // link, which takes the same path from the list's tap handler on.
    auto *search = qobject_cast<BuscarViewController *>(navigation->viewControllers().first());
    LugaresTableViewController *list = search->lugaresVC();
    QList<int> galleryPlaces;
    for (int row = 0; row < list->rows()->rowCount() && galleryPlaces.size() < int(cards.size()); ++row)
        if (!Restaurants::shared().galleryImageIds(list->idAtRow(row)).isEmpty())
            galleryPlaces.append(list->idAtRow(row));

    Figures tapped, linked;
    for (int round = 0; round < rounds; ++round) {
        for (const QString &name : std::as_const(cards))
            if (QQuickItem *card = shownItem(quick, name))
                measure(tapped, [&] { QTest::mouseClick(quick, Qt::LeftButton, {}, card->mapToScene(QPointF(card->width() / 2, card->height() / 2)).toPoint()); });
        for (int id : std::as_const(galleryPlaces))
            measure(linked, [&] { search->openPlace(id, true); });
    }
    const auto report = [&](const char *what, const Figures &figures) {
        std::printf("%d places, %lld cards %s: tap to first card frame %.1f ms, to the header picture %.1f ms, "
                    "longest main-thread stall %.1f ms (medians)\n",
                    places, qlonglong(figures.toCard.size()), what, median(figures.toCard), median(figures.toPicture), median(figures.stalls));
    };
    report("tapped in the list (profile over its blur)", tapped);
    report("with gallery pictures, opened by link", linked);
    return tapped.toCard.isEmpty() ? 1 : 0;
}
