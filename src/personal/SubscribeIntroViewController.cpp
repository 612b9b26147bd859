#include "personal/SubscribeIntroViewController.h"

#include "personal/SubscribeProvincesViewController.h"
#include "platform/DefaultKeys.h"
#include "platform/Localize.h"
#include "platform/NotificationCenter.h"
#include "platform/UserDefaults.h"
#include "presentation/NavigationController.h"
#include "presentation/Storyboard.h"

SubscribeIntroViewController::SubscribeIntroViewController(Restaurants &restaurants, UserDefaults &defaults, QObject *parent)
    : ViewController(parent)
    , m_restaurants(restaurants)
    , m_defaults(defaults)
{
}

void SubscribeIntroViewController::viewDidLoad()
{
    NotificationCenter::defaultCenter().addObserver(this, Localize::changeNotification, [this](const QVariant &) { emit localized(); });
}

void SubscribeIntroViewController::viewWillAppear() { m_defaults.setBool(true, DefaultKeys::subscriptionScreenSeen); }

void SubscribeIntroViewController::yeahSureTouched()
{
    NavigationController *navigation = navigationController();
    auto *provinces = qobject_cast<SubscribeProvincesViewController *>(
        Storyboard::instantiate(QStringLiteral("Walkthrough"), QStringLiteral("subscribe-provinces"), this));
    if (!navigation || !provinces)
        return;
    provinces->delegate = this;
    // Presented from the side menu, the invitation makes way for the choice on the stack.
    if (navigation->presentedViewController() == this)
        navigation->dismissViewController(false);
    navigation->pushViewController(provinces, true);
}

void SubscribeIntroViewController::cancelButtonTouched()
{
    if (delegate)
        delegate->provinceSelectionDidCancel();
}

void SubscribeIntroViewController::provinceSelectionDidCancel()
{
    if (delegate)
        delegate->provinceSelectionDidCancel();
}

void SubscribeIntroViewController::provinceSelectionDidFinish(const QSet<int> &provinces)
{
    if (delegate)
        delegate->provinceSelectionDidFinish(provinces);
}
