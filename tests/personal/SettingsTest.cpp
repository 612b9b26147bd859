#include "catalogue/Restaurants.h"
#include "fixtures/TestHome.h"
#include "personal/SettingsTableViewController.h"
#include "personal/Subscription.h"
#include "personal/UserDefaultsTableViewController.h"
#include "platform/DefaultKeys.h"
#include "platform/Localize.h"
#include "platform/NotificationCenter.h"
#include "platform/Notifications.h"
#include "platform/Telephony.h"
#include "platform/UserDefaults.h"

#include <gtest/gtest.h>

namespace {
using Kind = SettingsTableViewController::SettingsRow::Kind;

struct SettingsScreen {
    explicit SettingsScreen(const CatalogueFixture &fixture = CatalogueFixture::small())
    {
        Localize::setCurrentLanguage(QStringLiteral("en"));
        restaurants = home.openCatalogue(fixture, QStringLiteral("en"));
        screen = std::make_unique<SettingsTableViewController>(*restaurants, home.defaults());
        screen->loadViewIfNeeded();
    }
    ~SettingsScreen() { Localize::setCurrentLanguage(QStringLiteral("en")); }
    int rowOf(Kind kind, const QString &value = QString()) const
    {
        const auto &rows = screen->settingsRows();
        for (int i = 0; i < rows.size(); ++i)
            if (rows.at(i).kind == kind && (value.isEmpty() || rows.at(i).value == value))
                return i;
        return -1;
    }
    void tapLanguage(const char *code, int times)
    {
        for (int i = 0; i < times; ++i)
            screen->didSelectRow(rowOf(Kind::language, QString::fromLatin1(code)));
    }

    TestHome home;
    std::unique_ptr<Restaurants> restaurants;
    std::unique_ptr<SettingsTableViewController> screen;
};

// A phone of the country's carrier that can send text.
struct CountryPhone : Telephony {
    std::optional<QString> mobileCountryCode() const override { return QStringLiteral("368"); }
    bool canSendText() const override { return true; }
};
}

// Catches: the developer section shown without the mode, a count that survives a tap on the other
// language or flips before the tenth tap, and a mode that a later run of taps can't turn off.
TEST(Settings, TenTapsOnTheChosenLanguageToggleTheDeveloperSection)
{
    SettingsScreen settings;
    EXPECT_EQ(settings.screen->settingsRows().size(), 7);
    EXPECT_EQ(settings.rowOf(Kind::action), -1);

    settings.tapLanguage("en", 9);
    settings.tapLanguage("es", 1); // switches the language and restarts the count
    EXPECT_EQ(Localize::currentLanguage(), QStringLiteral("es"));
    EXPECT_EQ(settings.screen->devtaps(), 0);
    settings.tapLanguage("es", 9);
    EXPECT_FALSE(settings.home.defaults().boolForKey(DefaultKeys::developerModeEnabled));
    settings.tapLanguage("es", 1);
    EXPECT_TRUE(settings.home.defaults().boolForKey(DefaultKeys::developerModeEnabled));
    EXPECT_EQ(settings.screen->settingsRows().size(), 7 + 1 + 6 + 6);
    EXPECT_NE(settings.rowOf(Kind::action, QStringLiteral("delete-database")), -1);
    EXPECT_EQ(settings.screen->rows().at(settings.rowOf(Kind::header)).toMap().value(QStringLiteral("title")),
              QStringLiteral("IDIOMA"));

    // Off again: the section hides and the switches it set keep their effect.
    settings.screen->toggleChanged(settings.rowOf(Kind::toggle, DefaultKeys::devKeepOldDbs), true);
    settings.tapLanguage("es", 10);
    EXPECT_EQ(settings.rowOf(Kind::action), -1);
    EXPECT_TRUE(settings.home.defaults().boolForKey(DefaultKeys::devKeepOldDbs));
}

// Catches: a switch that stores nothing or the wrong key, the lists or the info screen not told,
// a forced value changed from here, and the subscription row offered without its rule.
TEST(Settings, SwitchesStoreTheirKeyAndForcedOnesAreLocked)
{
    SettingsScreen settings;
    QStringList posted;
    QObject observer;
    for (const QString &name : {Notifications::VelmoraReloadRestaurants, Notifications::VelmoraReloadInfoScreen})
        NotificationCenter::defaultCenter().addObserver(&observer, name, [&posted, name](const QVariant &) { posted.append(name); });
    settings.screen->toggleChanged(settings.rowOf(Kind::toggle, DefaultKeys::showClosedPlaces), true);
    EXPECT_TRUE(settings.home.defaults().boolForKey(DefaultKeys::showClosedPlaces));
    EXPECT_EQ(posted, QStringList{Notifications::VelmoraReloadRestaurants});
    settings.screen->toggleChanged(settings.rowOf(Kind::toggle, DefaultKeys::enableAnalytics), true);
    EXPECT_TRUE(settings.home.defaults().boolForKey(DefaultKeys::enableAnalytics));
    settings.screen->toggleChanged(settings.rowOf(Kind::header), true); // not a switch: nothing
    EXPECT_EQ(posted.size(), 1);

    settings.home.defaults().setForcedValues({{DefaultKeys::enableAnalytics, false}});
    const int analytics = settings.rowOf(Kind::toggle, DefaultKeys::enableAnalytics);
    EXPECT_TRUE(settings.screen->rows().at(analytics).toMap().value(QStringLiteral("locked")).toBool());
    settings.screen->toggleChanged(analytics, true);
    EXPECT_FALSE(settings.home.defaults().boolForKey(DefaultKeys::enableAnalytics));
    settings.home.defaults().setForcedValues({});

    // Offered on the country's carrier, or by the developer switch, and only with a number to text.
    EXPECT_EQ(settings.rowOf(Kind::subscribed), -1);
    Telephony::install(std::make_unique<CountryPhone>());
    settings.screen->populateCells();
    const int subscribed = settings.rowOf(Kind::subscribed);
    ASSERT_NE(subscribed, -1) << "the small catalogue names a number";
    EXPECT_EQ(settings.screen->rows().at(subscribed).toMap().value(QStringLiteral("state")), qtTrId("settings_subscribed_no"));
    Subscription::setProvinces(settings.home.defaults(), {3, 1});
    EXPECT_EQ(settings.screen->rows().at(subscribed).toMap().value(QStringLiteral("state")), qtTrId("settings_subscribed_yes"));
    Telephony::install(nullptr);
}

// Catches: a subscription offered (to a developer, even) by a catalogue that names no number.
TEST(Settings, NoNumberInTheCatalogueNoSubscription)
{
    CatalogueFixture silent = CatalogueFixture::small();
    silent.phoneNumber.reset();
    SettingsScreen without(silent);
    without.home.defaults().setBool(true, DefaultKeys::devEnableSubscribe);
    without.screen->populateCells();
    EXPECT_EQ(without.rowOf(Kind::subscribed), -1);
    EXPECT_FALSE(Subscription::isAvailable(without.home.defaults(), *without.restaurants));
}

// Catches: the viewer out of key order, a forced key erasable, and an erased key with a registered
// default that vanishes instead of showing the default.
TEST(Settings, TheViewerErasesKeysAndShowsWhatTheStoreStillAnswers)
{
    TestHome home;
    UserDefaults &defaults = home.defaults();
    defaults.registerDefaults({{DefaultKeys::showClosedPlaces, false}});
    defaults.setBool(true, DefaultKeys::showClosedPlaces);
    defaults.setString(QStringLiteral("x"), QStringLiteral("aaa-own-key"));
    defaults.setIntArray({1, 2}, DefaultKeys::subscriptionProvinces);
    defaults.setForcedValues({{QStringLiteral("zzz-forced"), 5}});
    UserDefaultsTableViewController viewer(defaults);
    viewer.loadViewIfNeeded();
    const auto keyRow = [&](const QString &key) {
        for (int i = 0; i < viewer.pairs().size(); ++i)
            if (viewer.pairs().at(i).first == key)
                return i;
        return -1;
    };
    EXPECT_EQ(viewer.pairs().first().first, QStringLiteral("aaa-own-key"));
    EXPECT_TRUE(std::is_sorted(viewer.pairs().cbegin(), viewer.pairs().cend(),
                               [](const auto &a, const auto &b) { return a.first < b.first; }));
    EXPECT_EQ(UserDefaultsTableViewController::describe(viewer.pairs().at(keyRow(DefaultKeys::subscriptionProvinces)).second),
              QStringLiteral("[1,2]"));

    EXPECT_FALSE(viewer.deleteRow(keyRow(QStringLiteral("zzz-forced"))));
    ASSERT_TRUE(viewer.deleteRow(keyRow(QStringLiteral("aaa-own-key"))));
    EXPECT_EQ(keyRow(QStringLiteral("aaa-own-key")), -1);
    ASSERT_TRUE(viewer.deleteRow(keyRow(DefaultKeys::showClosedPlaces)));
    ASSERT_NE(keyRow(DefaultKeys::showClosedPlaces), -1) << "the registered default answers";
    EXPECT_FALSE(viewer.pairs().at(keyRow(DefaultKeys::showClosedPlaces)).second.toBool());
}
