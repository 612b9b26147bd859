#include "app/SideMenuViewController.h"
#include "fixtures/DemoWindow.h"
#include "platform/DefaultKeys.h"
#include "platform/Telephony.h"
#include "presentation/MessageComposer.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

namespace {
// The settings screen, reached the way a user reaches it: the menu button, then its row.
bool openSettings(DemoWindow &ui)
{
    QQuickWindow *window = ui.window->window();
    tap(window, ui.item("barButton-menu"));
    if (!QTest::qWaitFor([&] { return ui.item("menuRow-settings") && ui.item("menuRow-settings")->isVisible(); }, 2000))
        return false;
    QTest::qWait(400); // the drawer's slide
    tap(window, ui.item("menuRow-settings"));
    const bool shown = QTest::qWaitFor([&] { return ui.item("settingsView") && ui.item("settingsView")->isVisible(); }, 3000);
    QTest::qWait(400);
    return shown;
}
}

// Catches: the language chosen in settings given up at the next start for the device's, and an
// interface in one language over catalogue names in another. This file runs under an English
// and a Spanish device locale, so the choice differs from the device's in one of the two runs.
TEST(SettingsInterface, AChosenLanguageOutlivesARestartInTextsAndNames)
{
    DemoWindow ui;
    ASSERT_TRUE(openSettings(ui));
    const QString chosen = Localize::currentLanguage() == QLatin1String("es") ? QStringLiteral("en") : QStringLiteral("es");
    const QByteArray row = ("languageRow-" + chosen).toLatin1();
    ASSERT_TRUE(scrollIntoView(ui.window->window(), [&] { return ui.item(row.constData()); }));
    tap(ui.window->window(), ui.item(row.constData()));
    ASSERT_TRUE(QTest::qWaitFor([&] { return Localize::currentLanguage() == chosen; }, 2000));

    ui.relaunch();
    EXPECT_EQ(Localize::currentLanguage(), chosen);
    EXPECT_EQ(Restaurants::shared().language(), chosen);
    const QString placesTab = Localize::textIn(chosen, QStringLiteral("search_places"));
    EXPECT_TRUE(ui.itemWhere([&](QQuickItem *item) { return item->isVisible() && item->property("text").toString() == placesTab; }))
        << "the tab bar in the chosen language";
}

// Catches: a switch, a language row, the developer gesture or the viewer's delete button that
// works only when its controller is called: each is reached here by a finger.
TEST(SettingsInterface, AFingerTogglesRevealsTheDeveloperToolsAndErasesAKey)
{
    DemoWindow ui;
    QQuickWindow *window = ui.window->window();
    ASSERT_TRUE(openSettings(ui));

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
    ASSERT_TRUE(scrollIntoView(window, [&] { return ui.item("actionRow-user-defaults"); }));
    tap(window, ui.item("actionRow-user-defaults"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("userDefaultsView") && ui.item("defaultsRow-developer-mode-enabled"); }, 3000));
    QTest::qWait(500);
    ui.save("defaults-viewer");
    tap(window, ui.item("barButton-edit"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("deleteDefault-show-closed-places") && ui.item("deleteDefault-show-closed-places")->isVisible(); }, 2000));
    ASSERT_TRUE(scrollIntoView(window, [&] { return ui.item("deleteDefault-show-closed-places"); }));
    tap(window, ui.item("deleteDefault-show-closed-places"));
    EXPECT_FALSE(ui.home.defaults().boolForKey(DefaultKeys::showClosedPlaces)) << "back to the registered default";
    EXPECT_TRUE(scrollIntoView(window, [&] { return ui.item("defaultsRow-show-closed-places"); })) << "a registered default stays listed";
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
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.delegate->mainNavigation()->presentedViewController() == nullptr; }, 2000));
}

// Catches: an invitation, province row or finish button that works only when its controller is
// called, and a first start that stays on the invitation after the message went.
TEST(SubscriptionInterface, TheInvitationLeadsToTheProvincesAndAMessageSent)
{
    struct Phone : Telephony {
        std::optional<QString> mobileCountryCode() const override { return QStringLiteral("368"); }
        bool canSendText() const override { return true; }
    };
    Telephony::install(std::make_unique<Phone>());
    QStringList bodies;
    MessageComposer::setSheet([&](const QString &, const QString &body, std::function<void(MessageComposer::Result)> done) {
        bodies.append(body);
        done(MessageComposer::Result::sent);
    });
    {
        DemoWindow ui;
        QQuickWindow *window = ui.window->window();
        ASSERT_EQ(ui.delegate->root(), QLatin1String(AppDelegate::subscribeIntroRoot));
        ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("yeahSureButton") && ui.item("yeahSureButton")->isVisible(); }, 3000));
        ui.save("subscribe-intro");
        tap(window, ui.item("yeahSureButton"));
        ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("provinceRow-3") && ui.item("provinceRow-3")->isVisible(); }, 3000));
        QTest::qWait(500); // the push
        tap(window, ui.item("provinceRow-3"));
        tap(window, ui.item("provinceRow-1"));
        ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("finishButton")->isVisible() && ui.item("finishButton")->y() < window->height() - 70; }, 2000));
        QTest::qWait(300);
        ui.save("subscribe-provinces");
        tap(window, ui.item("finishButton"));
        ASSERT_TRUE(QTest::qWaitFor([&] { return ui.delegate->root() == QLatin1String(AppDelegate::mainRoot); }, 3000));
        EXPECT_EQ(bodies, QStringList{qtTrId("subscribe_sms_body_intro") + QStringLiteral(" &&0&1-3")});
        EXPECT_EQ(ui.home.defaults().intArrayForKey(DefaultKeys::subscriptionProvinces), (QList<int>{1, 3}));
        EXPECT_TRUE(ui.home.defaults().boolForKey(DefaultKeys::subscriptionScreenSeen));
    }
    MessageComposer::setSheet(nullptr);
    Telephony::install(nullptr);
}

// Catches: the menu's invitation that can't lead on to the provinces from its sheet, and a
// finished choice that leaves the province screen on the stack or the invitation in the menu.
TEST(SubscriptionInterface, TheMenusInvitationSubscribesAndGoesBack)
{
    struct Phone : Telephony {
        bool canSendText() const override { return true; }
    };
    Telephony::install(std::make_unique<Phone>());
    MessageComposer::setSheet([](const QString &, const QString &, std::function<void(MessageComposer::Result)> done) {
        done(MessageComposer::Result::sent);
    });
    {
        DemoWindow ui({DefaultKeys::devEnableSubscribe, DefaultKeys::subscriptionScreenSeen});
        QQuickWindow *window = ui.window->window();
        ASSERT_EQ(ui.delegate->root(), QLatin1String(AppDelegate::mainRoot));
        tap(window, ui.item("barButton-menu"));
        ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("moreInfoButton") && ui.item("moreInfoButton")->isVisible(); }, 2000));
        QTest::qWait(400);
        tap(window, ui.item("moreInfoButton"));
        ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("yeahSureButton") && ui.item("yeahSureButton")->isVisible(); }, 2000));
        QTest::qWait(400);
        tap(window, ui.item("yeahSureButton"));
        ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("provinceRow-2") && ui.item("provinceRow-2")->isVisible(); }, 3000));
        EXPECT_EQ(ui.delegate->mainNavigation()->presentedViewController(), nullptr);
        QTest::qWait(500);
        tap(window, ui.item("provinceRow-2"));
        ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("finishButton")->isVisible() && ui.item("finishButton")->y() < window->height() - 70; }, 2000));
        QTest::qWait(300);
        tap(window, ui.item("finishButton"));
        ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("subscribeProvincesView") == nullptr; }, 3000));
        EXPECT_EQ(ui.home.defaults().intArrayForKey(DefaultKeys::subscriptionProvinces), QList<int>{2});
        EXPECT_TRUE(ui.delegate->sideMenu()->moreInfoButtonHidden());
    }
    MessageComposer::setSheet(nullptr);
    Telephony::install(nullptr);
}
