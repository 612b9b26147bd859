// Paging through a gallery of 30 large photographs (2400 x 1600 JPEG): the main thread's longest
// stall and its 99th percentile while the pager moves from the first page to the last and back,
// a page every 700 ms. The pictures are decoded on the image loader's thread.
//   gallery_paging [pictures]

#include "BenchApp.h"
#include "browse/BuscarViewController.h"
#include "catalogue/Restaurants.h"
#include "placecard/GalleryViewController.h"
#include "placecard/PlaceCards.h"
#include "platform/Database.h"
#include "presentation/NavigationController.h"
#include "presentation/QuickItems.h"

#include <QBuffer>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QLinearGradient>
#include <QPainter>
#include <QRandomGenerator>
#include <QTimer>

#include <algorithm>
#include <cstdio>

namespace {
// A photograph-like picture: a gradient and soft shapes, so the JPEG is as heavy as a photo's.
QByteArray photograph(int seed)
{
    QImage image(2400, 1600, QImage::Format_RGB32);
    QPainter painter(&image);
    QLinearGradient light(0, 0, 2400, 1600);
    light.setColorAt(0, QColor::fromHsv(seed * 37 % 360, 120, 200));
    light.setColorAt(1, QColor::fromHsv(seed * 53 % 360, 160, 90));
    painter.fillRect(image.rect(), light);
    QRandomGenerator random{quint32(seed)};
    painter.setRenderHint(QPainter::Antialiasing);
    for (int shape = 0; shape < 400; ++shape) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor::fromHsv(random.bounded(360), 90, 230, 60));
        painter.drawEllipse(QPointF(random.bounded(2400), random.bounded(1600)), random.bounded(10, 160), random.bounded(10, 160));
    }
    painter.end();
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "JPEG", 88);
    return bytes;
}
}

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    const int pictures = argc > 1 ? QString::fromLatin1(argv[1]).toInt() : 30;
    BenchApp bench(2000);
    QQuickWindow *window = bench.window->window();
    NavigationController *navigation = bench.delegate->mainNavigation();

    // The gallery of the capital's first listed place becomes 30 large photographs.
    auto *search = qobject_cast<BuscarViewController *>(navigation->viewControllers().first());
    const int placeId = search->lugaresVC()->idAtRow(0);
    qint64 bytes = 0;
    {
        Database db(Restaurants::shared().databasePath());
        if (!db.open() || !db.setKey(Restaurants::dbkey))
            qFatal("can't open the catalogue");
        db.executeUpdate(QStringLiteral("DELETE FROM gallery WHERE restaurant_id = ?"), {placeId});
        for (int n = 0; n < pictures; ++n) {
            const QByteArray photo = photograph(n);
            bytes += photo.size();
            if (!db.executeUpdate(QStringLiteral("INSERT INTO gallery VALUES(?, ?, ?, 'foto', 'Photo')"), {900000 + n, placeId, photo}))
                qFatal("can't add a picture: %s", qPrintable(db.lastErrorMessage()));
        }
        db.executeUpdate(QStringLiteral("UPDATE restaurants SET has_gallery = 1 WHERE id = ?"), {placeId});
    }
    if (!showPlaceCard(navigation, Restaurants::shared(), placeId, search, false))
        qFatal("no card");
    auto *card = navigation->topViewController();
    QTest::qWait(500);
    QMetaObject::invokeMethod(card, "performSegue", Q_ARG(QString, QStringLiteral("show-pictures")));
    auto *gallery = qobject_cast<GalleryViewController *>(navigation->presentedViewController());
    if (!gallery || gallery->pageCount() != pictures)
        qFatal("no gallery of %d pictures", pictures);
    QTest::qWait(1500);

    StallWatch watch;
    watch.start();
    QEventLoop loop;
    int at = 0;
    // Page after page to the end and back, each move animated by the pager as after a swipe.
    // (Synthetic drags carry made-up timestamps that a pager reads as odd speeds; the move and
    // the pictures' loading are what cost the main thread, and they are the same.)
    QQuickItem *pager = findItem(window->contentItem(), QStringLiteral("galleryPager"));
    if (!pager)
        qFatal("no pager");
    for (int n = 1; n < 2 * pictures - 1; ++n) {
        at += 700;
        QTimer::singleShot(at, &loop, [&, n] {
            QMetaObject::invokeMethod(pager, n < pictures ? "incrementCurrentIndex" : "decrementCurrentIndex");
        });
    }
    QTimer::singleShot(at + 1000, &loop, &QEventLoop::quit);
    const int reachedFirst = gallery->currentPage();
    int farthest = 0;
    QObject::connect(gallery, &GalleryViewController::currentPageChanged, [&] { farthest = std::max(farthest, gallery->currentPage()); });
    loop.exec();
    watch.stop();

    const double longest = watch.longestMs();
    const double p99 = watch.percentileMs(99);
    std::printf("%d pictures of 2400 x 1600 (%lld kB of JPEG): paged from %d to %d and back to %d; longest main-thread stall "
                "%.1f ms, p99 tick %.2f ms (%lld ticks)\n",
                pictures, bytes / 1024, reachedFirst, farthest, gallery->currentPage(), longest, p99, qlonglong(watch.ticks()));
    return farthest == pictures ? 0 : 1;
}
