#include "SideMenuViewController.h"

#include "personal/SubscribeIntroViewController.h"
#include "personal/Subscription.h"
#include "catalogue/Restaurants.h"
#include "app/AppDelegate.h"
#include "platform/DefaultKeys.h"
#include "platform/Notifications.h"
#include "app/SideDrawer.h"
#include "platform/Dispatch.h"
#include "platform/Localize.h"
#include "platform/NotificationCenter.h"
#include "platform/UserDefaults.h"
#include "presentation/NavigationController.h"
#include "presentation/Storyboard.h"

SideMenuViewController::SideMenuViewController(QObject *parent)
    : QObject(parent)
{
}

void SideMenuViewController::viewDidLoad()
{
    m_tableVC.setMenuDelegate(this);
    m_tableVC.viewDidLoad();
    NotificationCenter &center = NotificationCenter::defaultCenter();
    center.addObserver(this, Notifications::VelmoraUserSubscriptionChanged, [this](const QVariant &) { updateMoreInfoButton(); });
    // Whether the catalogue names a number is known once it is loaded.
    center.addObserver(this, Notifications::RestaurantsDidReload, [this](const QVariant &) { updateMoreInfoButton(); });
    center.addObserver(this, Localize::changeNotification, [this](const QVariant &) { localize(); });
    connect(&UserDefaults::standard(), &UserDefaults::keyChanged, this, [this](const QString &key) {
        if (key == DefaultKeys::devEnableSubscribe || key == DefaultKeys::subscriptionProvinces)
            updateMoreInfoButton();
    });
    updateMoreInfoButton();
    localize();
}

void SideMenuViewController::localize()
{
    m_moreInfoTitle = qtTrId("notifications_receive_more_info");
    emit moreInfoButtonChanged();
}

void SideMenuViewController::updateMoreInfoButton()
{
    // Only those who could subscribe and haven't are invited.
    const UserDefaults &defaults = UserDefaults::standard();
    m_moreInfoHidden = !Subscription::isAvailable(defaults, Restaurants::shared()) || Subscription::isSubscribed(defaults);
    emit moreInfoButtonChanged();
}

void SideMenuViewController::moreInfoTouched()
{
    if (!m_contentController)
        return;
    // Over the whole window, not inside the content the open drawer has pushed aside.
    if (auto *intro = qobject_cast<SubscribeIntroViewController *>(
            Storyboard::instantiate(QStringLiteral("Walkthrough"), QStringLiteral("subscribe-intro"), this))) {
        intro->delegate = this;
        if (m_drawer)
            m_drawer->hideMenuAnimated(false);
        m_contentController->presentViewController(intro, true);
    }
}

void SideMenuViewController::provinceSelectionDidCancel()
{
    if (!m_contentController)
        return;
    if (m_contentController->presentedViewController())
        m_contentController->dismissViewController(true);
    else
        m_contentController->popViewController(true);
}

void SideMenuViewController::provinceSelectionDidFinish(const QSet<int> &) { provinceSelectionDidCancel(); }

ViewController *SideMenuViewController::lazily(QPointer<ViewController> &field, const char *storyboard, const char *identifier)
{
    if (!field)
        field = Storyboard::instantiate(QString::fromLatin1(storyboard), QString::fromLatin1(identifier), this);
    return field;
}

ViewController *SideMenuViewController::mapViewController() { return lazily(m_mapViewController, "Main", "map-view-controller"); }
ViewController *SideMenuViewController::myPlacesViewController()
{
    return lazily(m_myPlacesViewController, "Main", "my-places-view-controller");
}
ViewController *SideMenuViewController::infoViewController()
{
    return lazily(m_infoViewController, "Info_Settings", "info-view-controller");
}
ViewController *SideMenuViewController::settingsViewController()
{
    return lazily(m_settingsViewController, "Info_Settings", "settings-view-controller");
}

void SideMenuViewController::goToSearch()
{
    if (m_contentController)
        m_contentController->popToRootViewController(false);
    if (m_drawer)
        m_drawer->hideMenuAnimated(true);
}

void SideMenuViewController::show(ViewController *screen)
{
    if (m_contentController) {
        m_contentController->popToRootViewController(false);
        m_contentController->pushViewController(screen, false);
    }
    if (m_drawer)
        m_drawer->hideMenuAnimated(true);
}

void SideMenuViewController::goToMap() { show(mapViewController()); }
void SideMenuViewController::goToMyPlaces() { show(myPlacesViewController()); }
void SideMenuViewController::goToInfo() { show(infoViewController()); }
void SideMenuViewController::goToSettings() { show(settingsViewController()); }

void SideMenuViewController::goToDiscover()
{
    // The user sees the menu open and the search row being chosen.
    if (m_drawer)
        m_drawer->showMenuAnimated(true);
    dispatchAfter(500, [self = QPointer(this)] {
        if (self)
            self->m_tableVC.simulateTapOnSearch();
    });
}
