#include "fixtures/DemoWindow.h"
#include "platform/DefaultKeys.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

// Catches: a switch, a language row, the developer gesture or the viewer's delete button that
// works only when its controller is called: each is reached here by a finger.
TEST(SettingsInterface, AFingerTogglesRevealsTheDeveloperToolsAndErasesAKey)
{
    DemoWindow ui;
    QQuickWindow *window = ui.window->window();
    tap(window, ui.item("barButton-menu"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("menuRow-settings") && ui.item("menuRow-settings")->isVisible(); }, 2000));
    QTest::qWait(400); // the drawer's slide
    tap(window, ui.item("menuRow-settings"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("settingsView") && ui.item("settingsView")->isVisible(); }, 3000));
    QTest::qWait(400);

    // The closed places' switch stores its key.
    EXPECT_FALSE(ui.home.defaults().boolForKey(DefaultKeys::showClosedPlaces));
    tap(window, ui.item("toggle-show-closed-places"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.home.defaults().boolForKey(DefaultKeys::showClosedPlaces); }, 1000));
    ui.save("settings");

    // Ten taps on the language in use show the developer section.
    const QString current = Localize::currentLanguage();
    const QByteArray languageRow = "languageRow-" + current.toLatin1();
    for (int i = 0; i < 10; ++i) {
        tap(window, ui.item(languageRow.constData()));
        QTest::qWait(30);
    }
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("actionRow-user-defaults") != nullptr; }, 2000));
    EXPECT_TRUE(ui.home.defaults().boolForKey(DefaultKeys::developerModeEnabled));
    ui.save("settings-developer");

    // The store's viewer: Edit, then the delete button of a key set above.
    QQuickItem *tools = ui.item("actionRow-user-defaults");
    ASSERT_TRUE(tools);
    if (tools->mapToScene(QPointF(0, tools->height())).y() > window->height())
        drag(window, QPoint(200, 700), QPoint(0, -400));
    QTest::qWait(300);
    tap(window, ui.item("actionRow-user-defaults"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("userDefaultsView") && ui.item("defaultsRow-developer-mode-enabled"); }, 3000));
    QTest::qWait(500);
    ui.save("defaults-viewer");
    tap(window, ui.item("barButton-edit"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("deleteDefault-show-closed-places") && ui.item("deleteDefault-show-closed-places")->isVisible(); }, 2000));
    tap(window, ui.item("deleteDefault-show-closed-places"));
    EXPECT_FALSE(ui.home.defaults().boolForKey(DefaultKeys::showClosedPlaces)) << "back to the registered default";
    EXPECT_TRUE(ui.item("defaultsRow-show-closed-places")) << "a registered default stays listed";
}

// Catches: a shortcut (the desktop's shake) that shows nothing, a fortune in the wrong language,
// a second shake that stacks another sheet, and a sheet a tap doesn't close.
TEST(FortuneInterface, TheShortcutShowsAFortuneAndATapClosesIt)
{
    DemoWindow ui;
    QQuickWindow *window = ui.window->window();
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.visibleCards() > 0; }, 5000));
    QTest::keyClick(window, Qt::Key_F, Qt::ControlModifier | Qt::ShiftModifier);
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("fortuneText") && ui.item("fortuneText")->isVisible(); }, 2000));
    const QString fortune = ui.item("fortuneText")->property("text").toString();
    EXPECT_FALSE(fortune.isEmpty());
    QFile resource(QStringLiteral(":/fortunes.json"));
    ASSERT_TRUE(resource.open(QIODevice::ReadOnly));
    const QJsonArray sentences = QJsonDocument::fromJson(resource.readAll()).object().value(Localize::currentLanguage()).toArray();
    EXPECT_TRUE(sentences.contains(fortune)) << fortune.toStdString();
    QTest::keyClick(window, Qt::Key_F, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(ui.item("fortuneText")->property("text").toString(), fortune) << "a shake while it shows changes nothing";
    ui.save("fortune");

    tap(window, ui.item("fortunesView"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.delegate.mainNavigation()->presentedViewController() == nullptr; }, 2000));
}
