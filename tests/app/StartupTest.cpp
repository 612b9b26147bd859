#include "app/AppDelegate.h"
#include "app/AppWindow.h"
#include "platform/DefaultKeys.h"
#include "fixtures/QuickItems.h"
#include "fixtures/TestHome.h"
#include "platform/Localize.h"
#include "platform/UserDefaults.h"

#include <QDir>
#include <QDirIterator>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTest>

#include <gtest/gtest.h>

namespace {
QString launchedRoot()
{
    AppDelegate delegate;
    delegate.didFinishLaunching();
    return delegate.root();
}

// Shows the window offscreen, waits for it to draw, and saves what a user would see.
void saveScreenshot(AppWindow &window, const QString &name)
{
    QQuickWindow *quick = window.window();
    ASSERT_TRUE(quick);
    ASSERT_TRUE(QTest::qWaitForWindowExposed(quick));
    const QImage image = window.grab();
    ASSERT_FALSE(image.isNull());
    EXPECT_EQ(image.width(), AppWindow::logicalWidth * image.devicePixelRatio());
    QDir().mkpath(QStringLiteral(VELMORA_TEST_OUTPUT));
    EXPECT_TRUE(image.save(QStringLiteral(VELMORA_TEST_OUTPUT "/") + name + QStringLiteral(".png")));
}

QQuickItem *screenNamed(AppWindow &window, const char *name)
{
    return findItem(window.window()->contentItem(), QString::fromLatin1(name));
}
}

// Catches: the wrong root for the state of the catalogue and of the subscription settings.
TEST(Startup, RootFollowsTheCatalogueAndTheSubscriptionRule)
{
    {
        TestHome home;
        EXPECT_EQ(launchedRoot(), QLatin1String(AppDelegate::walkthroughRoot));
    }
    {
        TestHome home;
        home.addCatalogue(QStringLiteral("20170101"));
        EXPECT_EQ(launchedRoot(), QLatin1String(AppDelegate::mainRoot));
        EXPECT_FALSE(home.defaults().objectForKey(DefaultKeys::subscriptionScreenSeen).isValid());
    }
    {
        TestHome home;
        home.addCatalogue(QStringLiteral("20170101"));
        home.defaults().setBool(true, DefaultKeys::devEnableSubscribe);
        AppDelegate delegate;
        delegate.didFinishLaunching();
        EXPECT_EQ(delegate.root(), QLatin1String(AppDelegate::subscribeIntroRoot));
        delegate.provinceSelectionDidCancel();
        EXPECT_EQ(delegate.root(), QLatin1String(AppDelegate::mainRoot));
        EXPECT_FALSE(home.defaults().objectForKey(DefaultKeys::subscriptionProvinces).isValid());
    }
    {
        TestHome home;
        home.addCatalogue(QStringLiteral("20170101"));
        home.defaults().setBool(true, DefaultKeys::devEnableSubscribe);
        home.defaults().setIntArray({2}, DefaultKeys::subscriptionProvinces);
        EXPECT_EQ(launchedRoot(), QLatin1String(AppDelegate::mainRoot));
    }
}

// Catches: a root that the window doesn't draw, and a catalogue copied into Documents not
// leading from the walkthrough's copy step to the main interface without a restart.
TEST(Startup, WindowShowsTheRootAndSwitchesWhenACatalogueArrives)
{
    TestHome home;
    AppDelegate delegate;
    delegate.didFinishLaunching();
    AppWindow window(delegate);
    ASSERT_TRUE(window.load());
    EXPECT_EQ(window.window()->width(), AppWindow::logicalWidth);
    EXPECT_EQ(window.window()->height(), AppWindow::logicalHeight);
    EXPECT_TRUE(screenNamed(window, "walkthrough"));
    EXPECT_FALSE(screenNamed(window, "sideDrawer"));

    delegate.walkthrough()->didSelectiTunes();
    CatalogueFixture fixture = CatalogueFixture::generated(300);
    home.addCatalogue(fixture, QStringLiteral("Guide.vmr"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return delegate.walkthrough()->itunesVC()->ready(); }, 5000));
    delegate.walkthrough()->itunesVC()->startButtonTouched();
    EXPECT_EQ(delegate.root(), QLatin1String(AppDelegate::mainRoot));
    EXPECT_TRUE(QTest::qWaitFor([&] { return screenNamed(window, "sideDrawer") != nullptr; }, 2000));
    EXPECT_FALSE(screenNamed(window, "walkthrough"));
    saveScreenshot(window, QStringLiteral("startup-main"));
}

// Catches a QML module the app imports that scripts/setup doesn't install (or a file that no
// longer compiles): every QML file of the app is compiled with the machine's modules, as the
// window would load it. What Qt's own dialogs load lazily is covered by the chooser's test.
TEST(Startup, EveryQmlFileOfTheAppLoadsWithTheInstalledModules)
{
    QQmlEngine engine;
    engine.addImportPath(QStringLiteral("qrc:/"));
    int files = 0;
    QDirIterator it(QStringLiteral(":/Velmora"), {QStringLiteral("*.qml")}, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        ++files;
        QQmlComponent component(&engine, QUrl(QStringLiteral("qrc") + path), QQmlComponent::PreferSynchronous);
        QTRY_VERIFY_WITH_TIMEOUT(!component.isLoading(), 5000);
        EXPECT_FALSE(component.isError()) << path.toStdString() << ": " << component.errorString().toStdString();
    }
    EXPECT_GE(files, 40) << "the app's QML files were found";
}
