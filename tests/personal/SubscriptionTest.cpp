#include "catalogue/Restaurants.h"
#include "fixtures/TestHome.h"
#include "personal/SubscribeProvincesViewController.h"
#include "personal/Subscription.h"
#include "platform/DefaultKeys.h"
#include "platform/Localize.h"
#include "platform/NotificationCenter.h"
#include "platform/Notifications.h"
#include "platform/Telephony.h"
#include "platform/UserDefaults.h"

#include <gtest/gtest.h>

namespace {
// A SIM of a carrier, with or without text messages.
struct Phone : Telephony {
    Phone(const char *country, bool text) : country(QString::fromLatin1(country)), text(text) {}
    std::optional<QString> mobileCountryCode() const override { return country.isEmpty() ? std::nullopt : std::optional(country); }
    bool canSendText() const override { return text; }
    QString country;
    bool text;
};

// The message sheet: records what it was given and answers as told.
struct Sheet {
    Sheet()
    {
        MessageComposer::setSheet([this](const QString &recipient, const QString &body, std::function<void(MessageComposer::Result)> done) {
            recipients.append(recipient);
            bodies.append(body);
            done(answer);
        });
    }
    ~Sheet() { MessageComposer::setSheet(nullptr); }
    MessageComposer::Result answer = MessageComposer::Result::sent;
    QStringList recipients, bodies;
};

struct ProvincesScreen : SubscribeProvincesDelegate {
    ProvincesScreen()
    {
        Localize::setCurrentLanguage(QStringLiteral("en"));
        restaurants = home.openCatalogue(CatalogueFixture::small(), QStringLiteral("en"));
        Telephony::install(std::make_unique<Phone>("368", true));
        screen = std::make_unique<SubscribeProvincesViewController>(*restaurants, home.defaults());
        screen->delegate = this;
        screen->loadViewIfNeeded();
    }
    ~ProvincesScreen() override { Telephony::install(nullptr); }
    int rowOf(int id) const
    {
        for (int i = 0; i < screen->provinces().size(); ++i)
            if (screen->provinces().at(i).id == id)
                return i;
        return -1;
    }
    void provinceSelectionDidCancel() override { ++cancelled; }
    void provinceSelectionDidFinish(const QSet<int> &provinces) override { finished.append(provinces); }

    TestHome home;
    std::unique_ptr<Restaurants> restaurants;
    std::unique_ptr<SubscribeProvincesViewController> screen;
    int cancelled = 0;
    QList<QSet<int>> finished;
};
}

// Catches: ids out of order or joined wrongly, the token changed, and an empty choice that
// drops the token.
TEST(Subscription, TheMessageListsTheProvincesInAscendingOrder)
{
    EXPECT_EQ(SubscribeProvincesViewController::messageBody(QStringLiteral("Alta"), {12, 3, 7}), QStringLiteral("Alta &&0&3-7-12"));
    EXPECT_EQ(SubscribeProvincesViewController::messageBody(QStringLiteral("Alta"), {}), QStringLiteral("Alta &&0&"));
    EXPECT_EQ(SubscribeProvincesViewController::messageBody(QStringLiteral("Alta"), {16}), QStringLiteral("Alta &&0&16"));
}

// Catches: the offer made to another country's carrier or a SIM without text, not made to the
// country's, and a stored subscription lost when the offer goes.
TEST(Subscription, OfferedOnTheCountrysCarrierThatCanText)
{
    TestHome home;
    auto restaurants = home.openCatalogue(CatalogueFixture::small());
    const auto offered = [&](Telephony *phone) {
        Telephony::install(std::unique_ptr<Telephony>(phone));
        return Subscription::isAvailable(home.defaults(), *restaurants);
    };
    EXPECT_FALSE(offered(new Phone("", true)));
    EXPECT_FALSE(offered(new Phone("214", true)));
    EXPECT_FALSE(offered(new Phone("368", false)));
    EXPECT_TRUE(offered(new Phone("368", true)));
    Subscription::setProvinces(home.defaults(), {4});
    EXPECT_FALSE(offered(new Phone("214", true)));
    EXPECT_TRUE(Subscription::isSubscribed(home.defaults())) << "abroad, the subscription is kept";
    home.defaults().setBool(true, DefaultKeys::devEnableSubscribe);
    EXPECT_TRUE(offered(new Phone("", false)));
    Telephony::install(nullptr);
    home.defaults().setString(QStringLiteral("not a list"), DefaultKeys::subscriptionProvinces);
    EXPECT_FALSE(Subscription::isSubscribed(home.defaults()));
}

// Catches: a choice stored before the message was sent (or after a cancel), the finish button
// shown with nothing new to send, a message to the wrong number, and an empty choice that
// still counts as subscribed.
TEST(Subscription, OnlyASentMessageStoresTheChoice)
{
    ProvincesScreen provinces;
    Sheet sheet;
    SubscribeProvincesViewController &screen = *provinces.screen;
    ASSERT_EQ(screen.provinces().size(), 2);
    EXPECT_FALSE(screen.finishVisible());
    screen.didSelectRow(provinces.rowOf(2));
    EXPECT_TRUE(screen.finishVisible());
    screen.didSelectRow(provinces.rowOf(2));
    EXPECT_FALSE(screen.finishVisible()) << "selected and deselected: nothing to send";

    screen.selectAllTouched();
    EXPECT_EQ(screen.selection(), (QSet<int>{1, 2}));
    sheet.answer = MessageComposer::Result::cancelled;
    screen.finishButtonTouched();
    EXPECT_EQ(sheet.recipients, QStringList{QStringLiteral("8888")});
    EXPECT_EQ(sheet.bodies.last(), qtTrId("subscribe_sms_body_intro") + QStringLiteral(" &&0&1-2"));
    EXPECT_FALSE(provinces.home.defaults().objectForKey(DefaultKeys::subscriptionProvinces).isValid());
    EXPECT_TRUE(screen.finishVisible()) << "a cancelled sheet leaves the button";
    EXPECT_TRUE(provinces.finished.isEmpty());

    int changes = 0;
    QObject observer;
    NotificationCenter::defaultCenter().addObserver(&observer, Notifications::VelmoraUserSubscriptionChanged,
                                                    [&](const QVariant &) { ++changes; });
    sheet.answer = MessageComposer::Result::sent;
    screen.finishButtonTouched();
    EXPECT_EQ(Subscription::provinces(provinces.home.defaults()), (QSet<int>{1, 2}));
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(provinces.finished, (QList<QSet<int>>{{1, 2}}));
    EXPECT_FALSE(screen.finishVisible());

    screen.selectAllTouched(); // all were selected: now none
    screen.finishButtonTouched();
    EXPECT_EQ(sheet.bodies.last(), qtTrId("subscribe_sms_body_intro") + QStringLiteral(" &&0&"));
    EXPECT_FALSE(Subscription::isSubscribed(provinces.home.defaults()));
    EXPECT_TRUE(Subscription::provinces(provinces.home.defaults()).has_value()) << "an empty choice is stored as such";

    Telephony::install(std::make_unique<Phone>("368", false));
    screen.selectAllTouched();
    screen.finishButtonTouched();
    EXPECT_EQ(sheet.bodies.size(), 3) << "without text messages, nothing is composed";
    screen.closeButtonTouched();
    EXPECT_EQ(provinces.cancelled, 1);
}
