#include "fixtures/DemoWindow.h"
#include "platform/Paths.h"
#include "toolkit/Publisher.h"
#include "toolkit/UpdateServer.h"
#include "update/FaultProxy.h"
#include "update/UpdateChecker.h"
#include "walkthrough/WTiTunesViewController.h"

#include <QDir>
#include <QDropEvent>
#include <QHostAddress>
#include <QJsonObject>
#include <QMimeData>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {
// A first run in the real window, with the demo guide's file written aside.
struct FirstRunWindow : DemoWindow {
    FirstRunWindow() : DemoWindow({}, Start::FirstRun) {}

    QQuickItem *visible(const char *name) const
    {
        return itemWhere([&](QQuickItem *item) { return item->objectName() == QLatin1String(name) && item->isVisible(); });
    }
    // Taps the visible item of that name; false if there is none.
    bool tapOn(const char *name)
    {
        QQuickItem *target = visible(name);
        if (!target)
            return false;
        tap(window->window(), target);
        return true;
    }
    // What the desktop does when a file is dropped on the window at `at`.
    void dropFile(const QString &path, QPoint at)
    {
        QMimeData mime;
        mime.setUrls({QUrl::fromLocalFile(path)});
        QQuickWindow *quick = window->window();
        QDragEnterEvent enter(at, Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(quick, &enter);
        QDragMoveEvent move(at, Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(quick, &move);
        QDropEvent drop(QPointF(at), Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(quick, &drop);
    }
    // The splash rises and the steps fade in (2.3 s, as the design times it).
    bool waitForOpening()
    {
        return QTest::qWaitFor([&] { return item("walkthroughContainer")->opacity() == 1.0; }, 4000);
    }
};

// The demo guide published on the toolkit's server (behind a proxy that can slow it down).
struct DemoShelf {
    explicit DemoShelf(const QString &catalogue)
    {
        QString error;
        const quint16 port = server.listen(QHostAddress::LocalHost, 0, &error);
        proxy = std::make_unique<FaultProxy>(port);
        const QString named = work.filePath(QStringLiteral("velmora-20261101.db"));
        QFile::copy(catalogue, named);
        QJsonObject report;
        EXPECT_TRUE(publish(named, {}, shelf.path(), QStringLiteral("http://127.0.0.1:%1").arg(proxy->port()), report, &error, TestSigning::publisher().secretKey))
            << error.toStdString();
        UpdateChecker::setInternetURLOverride(QUrl(QStringLiteral("http://127.0.0.1:%1/ios/last.txt").arg(proxy->port())));
    }
    ~DemoShelf() { UpdateChecker::setInternetURLOverride(QUrl()); }

    QTemporaryDir shelf, work;
    UpdateServer server{shelf.path()};
    std::unique_ptr<FaultProxy> proxy;
};
}

// Catches: buttons of the first run that only work when their controller is called, a dropped
// file that the window ignores, and a start that doesn't lead into the guide.
TEST(WalkthroughInterface, CopyStepTakesADroppedFileAndStartLeadsIn)
{
    FirstRunWindow app;
    ASSERT_TRUE(app.visible("walkthrough"));
    ASSERT_TRUE(app.waitForOpening());
    EXPECT_TRUE(app.visible("downloadButton"));
    app.save("walkthrough-select");

    ASSERT_TRUE(app.tapOn("itunesButton"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return app.visible("step4") != nullptr; }, 2000));
    EXPECT_TRUE(app.visible("activityIndicator"));
    EXPECT_TRUE(app.visible("openCatalogueButton"));
    app.save("walkthrough-copy");

    // A damaged catalogue copied into the folder is named as unusable and kept; the watch goes on.
    const QString damaged = app.home.documents() + QStringLiteral("/Guía dañada.vmr");
    {
        QFile whole(app.demoFile), half(damaged);
        ASSERT_TRUE(whole.open(QIODevice::ReadOnly) && half.open(QIODevice::WriteOnly));
        half.write(whole.read(whole.size() / 2));
    }
    ASSERT_TRUE(QTest::qWaitFor([&] { return app.visible("importMessage") != nullptr; }, 4000));
    EXPECT_EQ(app.visible("importMessage")->property("text").toString(), qtTrId("wt_copied_file_unusable").arg(QStringLiteral("Guía dañada.vmr")));
    app.save("walkthrough-copy-damaged");

    // A file that isn't a catalogue is refused in words, and stays where it was.
    const QString note = app.home.root() + QStringLiteral("/note.vmr");
    BrokenFiles::writeGarbage(note);
    app.dropFile(note, QPoint(195, 420));
    const auto message = [&] { return app.visible("importMessage") ? app.visible("importMessage")->property("text").toString() : QString(); };
    EXPECT_TRUE(QTest::qWaitFor([&] { return message() == qtTrId("wt_import_not_a_catalogue"); }, 3000)) << message().toStdString();
    EXPECT_TRUE(QFile::exists(note));

    app.dropFile(app.demoFile, QPoint(195, 420));
    ASSERT_TRUE(QTest::qWaitFor([&] { return app.visible("checkmark") != nullptr; }, 5000));
    EXPECT_TRUE(QFile::exists(app.demoFile));
    EXPECT_TRUE(QFile::exists(app.home.documents() + QStringLiteral("/velmora-20261101.db")));
    app.save("walkthrough-copy-ready");
    ASSERT_TRUE(app.tapOn("startButton"));
    EXPECT_EQ(app.delegate->root(), QLatin1String(AppDelegate::mainRoot));
    EXPECT_TRUE(QTest::qWaitFor([&] { return app.item("sideDrawer") != nullptr; }, 3000));
    EXPECT_TRUE(QFile::exists(damaged));
}

// Catches a first run a keyboard can't walk: Tab reaches the choice's buttons, Right moves
// between them, Return opens the copy step and Escape comes back from it to the choice.
TEST(WalkthroughInterface, TheKeysChooseAStepAndComeBack)
{
    FirstRunWindow app;
    QQuickWindow *window = app.window->window();
    ASSERT_TRUE(app.waitForOpening());
    ASSERT_TRUE(tabTo(window, QStringLiteral("downloadButton")));
    EXPECT_TRUE(ringOnFocus(window));
    QTest::keyClick(window, Qt::Key_Right);
    ASSERT_EQ(focusedName(window), QStringLiteral("itunesButton"));
    QTest::keyClick(window, Qt::Key_Return);
    ASSERT_TRUE(QTest::qWaitFor([&] { return app.visible("openCatalogueButton") != nullptr; }, 2000));
    QTest::keyClick(window, Qt::Key_Escape);
    EXPECT_TRUE(QTest::qWaitFor([&] { return app.visible("downloadButton") != nullptr && !app.visible("openCatalogueButton"); }, 2000));
}

// Catches: a download step whose bar never moves, a cancel that leaves the transfer (or its
// file) behind, and a finished download that doesn't lead into the guide.
TEST(WalkthroughInterface, DownloadShowsProgressCancelsAndLeadsIn)
{
    FirstRunWindow app;
    DemoShelf shelf(app.demoFile);
    ASSERT_TRUE(app.waitForOpening());

    shelf.proxy->trickle(64 * 1024);
    ASSERT_TRUE(app.tapOn("downloadButton"));
    ASSERT_TRUE(QTest::qWaitFor([&] {
        QQuickItem *bar = app.visible("progressView");
        return bar && bar->property("progress").toDouble() > 0.05;
    }, 10000));
    EXPECT_TRUE(app.visible("downloadLabel")->property("text").toString().contains(QLatin1String(" MB")));
    EXPECT_EQ(app.visible("captionLabel")->property("text").toString(), qtTrId("downloading_database"));
    app.save("walkthrough-download");
    ASSERT_TRUE(app.tapOn("cancelButton"));
    EXPECT_TRUE(QTest::qWaitFor([&] { return app.visible("downloadButton") != nullptr; }, 2000));
    EXPECT_TRUE(QTest::qWaitFor([&] { return QDir(Paths::caches()).entryList({QStringLiteral("*.download")}).isEmpty(); }, 2000));

    shelf.proxy->trickle(0);
    ASSERT_TRUE(app.tapOn("downloadButton"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return app.visible("startButton") != nullptr; }, 15000));
    EXPECT_TRUE(app.visible("checkmark"));
    // The heading over the check mark says the catalogue is here, no longer that it is coming.
    EXPECT_EQ(app.visible("captionLabel")->property("text").toString(), qtTrId("wt_catalogue_downloaded"));
    app.save("walkthrough-downloaded");
    ASSERT_TRUE(app.tapOn("startButton"));
    EXPECT_EQ(app.delegate->root(), QLatin1String(AppDelegate::mainRoot));
}

// Catches a start during a first-run download opening on the choice of ways in, with the resumed
// transfer ending unheard and a second Download failing on the file the first one installed.
TEST(WalkthroughInterface, ARestartDuringTheDownloadOpensOnItsProgress)
{
    FirstRunWindow app;
    DemoShelf shelf(app.demoFile);
    ASSERT_TRUE(app.waitForOpening());
    shelf.proxy->trickle(4 * 1024); // the whole file takes about ten seconds
    ASSERT_TRUE(app.tapOn("downloadButton"));
    ASSERT_TRUE(QTest::qWaitFor([&] {
        QQuickItem *bar = app.visible("progressView");
        return bar && bar->property("progress").toDouble() > 0.05;
    }, 10000));

    app.relaunch();
    ASSERT_TRUE(app.waitForOpening());
    EXPECT_FALSE(app.visible("downloadButton"));
    ASSERT_TRUE(QTest::qWaitFor([&] {
        QQuickItem *bar = app.visible("progressView");
        return bar && bar->property("progress").toDouble() > 0.05;
    }, 5000)) << "the resumed transfer's progress, not a bar from zero";
    EXPECT_TRUE(app.visible("cancelButton"));
    shelf.proxy->trickle(0);
    ASSERT_TRUE(QTest::qWaitFor([&] { return app.visible("startButton") != nullptr; }, 15000));
    ASSERT_TRUE(app.tapOn("startButton"));
    EXPECT_EQ(app.delegate->root(), QLatin1String(AppDelegate::mainRoot));
}

// Catches "Open catalogue…" ending the app (exit 139) on a machine set up by scripts/setup: the
// system's file dialog loads a QML module of its own when it first opens. The real tap opens it
// and Escape closes it; and where such a module is missing, the tap says so instead of opening.
TEST(WalkthroughInterface, OpenCatalogueOpensTheChooserOrSaysWhyNot)
{
    FirstRunWindow app;
    ASSERT_TRUE(app.waitForOpening());
    ASSERT_TRUE(app.tapOn("itunesButton"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return app.visible("openCatalogueButton") != nullptr; }, 2000));
    const auto chooserShown = [&] {
        return app.itemWhere([](QQuickItem *item) {
            return QString::fromLatin1(item->metaObject()->className()).contains(QLatin1String("FileDialog")) && item->isVisible();
        });
    };
    ASSERT_TRUE(app.tapOn("openCatalogueButton"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return chooserShown() != nullptr; }, 5000)) << "the chooser opened";
    app.save("walkthrough-chooser");
    QTest::keyClick(app.window->window(), Qt::Key_Escape);
    ASSERT_TRUE(QTest::qWaitFor([&] { return chooserShown() == nullptr; }, 3000));

    QTemporaryDir bare; // a Qt installation without the chooser's modules
    auto *view = app.itemWhere([](QQuickItem *item) { return item->property("controller").value<WTiTunesViewController *>() != nullptr; });
    ASSERT_TRUE(view);
    view->property("controller").value<WTiTunesViewController *>()->qmlImportPaths = {bare.path()};
    ASSERT_TRUE(app.tapOn("openCatalogueButton"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return app.visible("importMessage") != nullptr; }, 2000));
    EXPECT_EQ(app.visible("importMessage")->property("text").toString(), qtTrId("wt_chooser_missing"));
    EXPECT_FALSE(chooserShown());
}
