#include "analytics/BatchingDispatcher.h"
#include "analytics/Measurement.h"
#include "fixtures/DemoWindow.h"
#include "platform/DefaultKeys.h"
#include "toolkit/collector/HitCollector.h"

#include <QJsonObject>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {
void openMenuRow(DemoWindow &ui, const char *row)
{
    QQuickWindow *window = ui.window->window();
    tap(window, ui.item("barButton-menu"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item(row) && ui.item(row)->isVisible(); }, 2000));
    QTest::qWait(400); // the drawer's slide
    tap(window, ui.item(row));
    QTest::qWait(600);
}

void tapAnalyticsSwitch(DemoWindow &ui)
{
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("settingsView") && ui.item("settingsView")->isVisible(); }, 3000));
    ASSERT_TRUE(scrollIntoView(ui.window->window(), [&] { return ui.item("toggle-enable-analytics"); }));
    tap(ui.window->window(), ui.item("toggle-enable-analytics"));
}
}

// Catches: a settings switch that doesn't reach the facility, events a finger's taps don't
// report (or report while opted out), a screen view missing when a card opens, hits that don't
// reach a real collector, and waiting hits kept after the user switched analytics off.
TEST(AnalyticsInterface, TheUsersChoiceDecidesWhatLeavesTheDevice)
{
    QTemporaryDir dir;
    HitCollector collector(dir.filePath(QStringLiteral("collected.sqlite")));
    QString error;
    ASSERT_TRUE(collector.open(&error)) << error.toStdString();
    const quint16 port = collector.listen(QHostAddress::LocalHost, 0, &error);
    ASSERT_NE(port, 0);
    MeasurementContext::setEndpointOverride(QUrl(QStringLiteral("http://127.0.0.1:%1/").arg(port)));

    DemoWindow ui;
    QQuickWindow *window = ui.window->window();
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.listShown(); }, 5000));
    Measurement &measurement = ui.home.measurement();
    ASSERT_TRUE(measurement.isStarted());
    EXPECT_TRUE(measurement.optOut()) << "nothing is reported until the user allows it";

    openMenuRow(ui, "menuRow-settings");
    tapAnalyticsSwitch(ui);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !measurement.optOut(); }, 1000));
    EXPECT_TRUE(ui.home.defaults().boolForKey(DefaultKeys::enableAnalytics));
    EXPECT_EQ(ui.home.storedEvents(), QStringList()) << "the taps before the choice left nothing";

    // The menu's bar button, then a place of the list opened by a tap.
    openMenuRow(ui, "menuRow-browse");
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.listShown(); }, 3000));
    QQuickItem *card = ui.itemWhere([&](QQuickItem *item) {
        return item->objectName().startsWith(QLatin1String("placeCard-")) && item->isVisible()
            && item->mapToScene(QPointF(0, item->height())).y() < window->height() && item->mapToScene(QPointF(0, 0)).y() > 100;
    });
    ASSERT_TRUE(card);
    tap(window, card);
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("lugarView") != nullptr; }, 3000));
    const QStringList reported{QStringLiteral("Navigation/Opened side menu//0"), QStringLiteral("Navigation/Tapped/Place/1"),
                               QStringLiteral("screen:RestaurantView")};
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.home.storedEvents().size() >= 3; }, 2000));
    const QStringList stored = ui.home.storedEvents();
    EXPECT_EQ(stored.mid(0, 3), reported);
    for (const QString &more : stored.mid(3))
        EXPECT_TRUE(more.startsWith(QLatin1String("ADV Campaigns/Show/Profile/"))) << "only the card's ad, if it has one: " << more.toStdString();

    // Sent to the collector; the store keeps nothing the service answered for.
    bool answered = false;
    measurement.dispatcher()->dispatchWithCompletionHandler([&answered](BatchingDispatcher::DispatchResult) { answered = true; });
    ASSERT_TRUE(QTest::qWaitFor([&] { return answered; }, 10000));
    QJsonObject summary;
    ASSERT_TRUE(HitCollector::summary(dir.filePath(QStringLiteral("collected.sqlite")), summary, &error));
    EXPECT_EQ(summary.value(QStringLiteral("total")).toInt(), stored.size());
    EXPECT_EQ(summary.value(QStringLiteral("screens")).toObject().value(QStringLiteral("RestaurantView")).toInt(), 1);
    EXPECT_EQ(summary.value(QStringLiteral("events")).toObject().value(QStringLiteral("Navigation / Tapped / Place")).toInt(), 1);
    EXPECT_EQ(ui.home.storedEvents(), QStringList());

    // Off again: what waits is deleted and further taps store nothing.
    tap(window, ui.item("barButton-back"));
    QTest::qWait(600);
    openMenuRow(ui, "menuRow-settings");
    EXPECT_EQ(ui.home.storedEvents(), QStringList{reported.first()}) << "the menu's opening waits unsent";
    tapAnalyticsSwitch(ui);
    ASSERT_TRUE(QTest::qWaitFor([&] { return measurement.optOut(); }, 1000));
    EXPECT_EQ(ui.home.storedEvents(), QStringList());
    openMenuRow(ui, "menuRow-browse");
    EXPECT_EQ(ui.home.storedEvents(), QStringList());
    MeasurementContext::setEndpointOverride(QUrl());
}
