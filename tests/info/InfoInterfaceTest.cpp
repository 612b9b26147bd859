#include "fixtures/DemoWindow.h"
#include "info/InfoTableViewController.h"
#include "toolkit/CatalogueWriter.h"
#include "toolkit/DemoGenerator.h"
#include "toolkit/Publisher.h"
#include "platform/Paths.h"
#include "toolkit/UpdateServer.h"
#include "update/FaultProxy.h"
#include "update/UpdateChecker.h"

#include <QHostAddress>
#include <QJsonObject>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {
// The next month's demo guide and its patch from the one in use (none without one), on the
// toolkit's server.
struct NextMonthShelf {
    explicit NextMonthShelf(const QString &current = {})
    {
        QString error;
        proxy = std::make_unique<FaultProxy>(server.listen(QHostAddress::LocalHost, 0, &error));
        DemoOptions options;
        options.places = 400;
        options.date = QDate(2026, 12, 1);
        const QString next = work.filePath(QStringLiteral("velmora-20261201.db"));
        EXPECT_TRUE(writeCatalogue(makeDemo(options), next, &error)) << error.toStdString();
        QJsonObject report;
        EXPECT_TRUE(publish(next, current.isEmpty() ? QStringList() : QStringList{current}, shelf.path(), QStringLiteral("http://127.0.0.1:%1").arg(proxy->port()), report, &error, TestSigning::publisher().secretKey))
            << error.toStdString();
        UpdateChecker::setInternetURLOverride(QUrl(QStringLiteral("http://127.0.0.1:%1/ios/last.txt").arg(proxy->port())));
    }
    ~NextMonthShelf() { UpdateChecker::setInternetURLOverride(QUrl()); }

    QTemporaryDir shelf, work;
    UpdateServer server{shelf.path()};
    std::unique_ptr<FaultProxy> proxy;
};
}

// Catches: an update button that a tap doesn't reach, a progress row that never shows or never
// leaves, and a patched catalogue that the screen doesn't show once the update is over.
TEST(InfoInterface, TheUpdateButtonPatchesTheCatalogueInPlace)
{
    DemoWindow ui;
    NextMonthShelf shelf(ui.demoFile);
    ui.delegate->openLink(QStringLiteral("velmora://info"), false);
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("infoView") != nullptr; }, 3000));
    ASSERT_TRUE(ui.item("upToDateMark") && ui.item("upToDateMark")->isVisible());
    ui.save("info");

    ui.delegate->updateChecker()->noteAnnouncedDate(QDate(2026, 12, 1));
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("updateButton") && ui.item("updateButton")->isVisible(); }, 2000));
    shelf.proxy->trickle(128);
    tap(ui.window->window(), ui.item("updateButton"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("infoProgressRow") != nullptr; }, 2000));
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("progressView")->property("progress").toDouble() > 0.02; }, 15000));
    EXPECT_TRUE(ui.item("progressStatus")->property("text").isValid());
    shelf.proxy->trickle(1); // held still for the picture
    ui.save("info-updating");
    EXPECT_TRUE(ui.item("infoProgressRow"));

    shelf.proxy->trickle(0);
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("infoUpdateRow") != nullptr; }, 30000));
    ASSERT_TRUE(QTest::qWaitFor([&] {
        QQuickItem *label = ui.item("databaseVersionLabel");
        return label && label->property("text").toString().contains(QLatin1String("20261201"));
    }, 10000));
    EXPECT_TRUE(ui.item("upToDateMark")->isVisible());
    // The old file goes once the patched one is in use, at the end of that load.
    EXPECT_TRUE(QTest::qWaitFor([&] { return !QFile::exists(ui.demoFile); }, 5000));
}

// Catches a launch that never asks for a newer catalogue, now that the asking waits for the start
// to settle: with nothing tapped and nothing noted, the info screen comes to offer the update the
// server announces.
TEST(InfoInterface, ALaunchLearnsOfTheNewerCatalogueByItself)
{
    NextMonthShelf shelf;
    DemoWindow ui;
    ui.delegate->openLink(QStringLiteral("velmora://info"), false);
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("infoView") != nullptr; }, 3000));
    EXPECT_TRUE(QTest::qWaitFor([&] { return ui.item("updateButton") && ui.item("updateButton")->isVisible(); }, 15000));
}

// Catches a broken trusted key that the user never hears of (the app quietly took no update, or
// took unsigned ones): the info screen says so in the user's language, and the update button
// fetches nothing.
TEST(InfoInterface, ABrokenTrustedKeyIsToldAndNothingIsFetched)
{
    DemoWindow ui({}, DemoWindow::Start::WithCatalogue, [](TestHome &) {
        QFile broken(Paths::applicationSupport() + QStringLiteral("/trusted-keys/mirror.pub"));
        ASSERT_TRUE(broken.open(QIODevice::WriteOnly));
        broken.write("velmora-public-key 11qYAYKxCrfVS/7TyWQHOg7hcvPapiMlrwIaaPcHUR\n");
    });
    NextMonthShelf shelf(ui.demoFile);
    ui.delegate->openLink(QStringLiteral("velmora://info"), false);
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("updateWarningLabel") && ui.item("updateWarningLabel")->isVisible(); }, 3000));
    EXPECT_EQ(ui.item("updateWarningLabel")->property("text").toString(), qtTrId("info_updates_key_broken"));
    EXPECT_NE(qtTrId("info_updates_key_broken"), QStringLiteral("info_updates_key_broken"));
    ui.save("info-key-broken");

    ui.delegate->updateChecker()->noteAnnouncedDate(QDate(2026, 12, 1));
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("updateButton") && ui.item("updateButton")->isVisible(); }, 2000));
    shelf.proxy->requests.clear();
    tap(ui.window->window(), ui.item("updateButton"));
    ASSERT_TRUE(QTest::qWaitFor([&] {
        // What the status label draws: its row's cell's text.
        QQuickItem *row = ui.item("infoProgressRow");
        QObject *cell = row ? row->property("cell").value<QObject *>() : nullptr;
        return cell && ui.item("progressStatus")->isVisible() && cell->property("statusText").toString().contains(QLatin1String("refused"));
    }, 10000)) << "the refusal is shown in the progress row";
    EXPECT_TRUE(shelf.proxy->requests.isEmpty()) << "nothing is fetched";
    EXPECT_EQ(QDir(ui.home.documents()).entryList(QDir::Files), QStringList{QStringLiteral("velmora-20261101.db")});
}
