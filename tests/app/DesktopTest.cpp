#include "app/AppWindow.h"
#include "fixtures/DemoWindow.h"
#include "placecard/LugarTableViewController.h"
#include "platform/Paths.h"
#include "platform/SingleInstance.h"

#include <QProcess>

// Catches a link opened from the desktop (xdg-open velmora://...) that starts a second app on a
// home already open instead of going to the running one, a second start that doesn't end, and a
// bad link that disturbs the running app.
TEST(Desktop, ALinkOpenedAgainGoesToTheRunningApp)
{
    DemoWindow ui;
    SingleInstance instance(Paths::root());
    ASSERT_TRUE(instance.listen());
    ui.window->followLinksFrom(instance);
    QQuickItem *first = ui.cardOnScreen();
    ASSERT_TRUE(first);
    const int placeId = first->objectName().mid(int(qstrlen("placeCard-"))).toInt();

    const auto secondStart = [&ui](const QString &link) {
        QProcess second;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        second.setProcessEnvironment(environment);
        second.start(QStringLiteral(VELMORA_APP), {QStringLiteral("--home"), ui.home.root(), link});
        // The running app answers from this event loop while the second start waits for it.
        EXPECT_TRUE(QTest::qWaitFor([&second] { return second.state() == QProcess::NotRunning; }, 20000)) << "the second start never ended";
        EXPECT_EQ(second.exitCode(), 0) << second.readAllStandardError().constData();
        return second.readAllStandardOutput();
    };

    EXPECT_TRUE(secondStart(QStringLiteral("velmora://place/%1").arg(placeId)).contains("handed to the app already running"));
    const auto cardShown = [&ui] { return qobject_cast<LugarTableViewController *>(ui.delegate->mainNavigation()->topViewController()); };
    ASSERT_TRUE(QTest::qWaitFor([&] { return cardShown() && cardShown()->restInfo && cardShown()->restInfo->id == placeId; }, 5000))
        << "the running app opened the place";

    secondStart(QStringLiteral("velmora://place/99999999"));
    QTest::qWait(300);
    ASSERT_TRUE(cardShown()) << "a link to nothing leaves the app where it was";
    EXPECT_EQ(cardShown()->restInfo->id, placeId);
}

// Catches a phone's window kept phone-shaped (a margin around it) and a desktop's filling the
// screen.
TEST(Desktop, TheWindowFillsAPhoneScreenOnly)
{
    EXPECT_TRUE(AppWindow::fillsScreen({360, 720}, {}, {}));
    EXPECT_TRUE(AppWindow::fillsScreen({915, 412}, {}, {})) << "a phone turned sideways";
    EXPECT_FALSE(AppWindow::fillsScreen({1366, 768}, {}, {}));
    EXPECT_FALSE(AppWindow::fillsScreen({800, 1280}, {}, {})) << "a tablet";
    EXPECT_TRUE(AppWindow::fillsScreen({1920, 1080}, QStringLiteral("Phosh:GNOME"), {})) << "a phone shell on a docked phone";
    EXPECT_TRUE(AppWindow::fillsScreen({1920, 1080}, QStringLiteral("KDE"), QStringLiteral("phone:handset")));
}
