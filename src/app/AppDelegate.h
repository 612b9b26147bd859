#pragma once

#include <QObject>
#include <QVariantList>
#include <QtQml/qqmlregistration.h>

#include <memory>

#include "app/SideDrawer.h"
#include "personal/Fortunes.h"
#include "personal/SubscribeProvincesDelegate.h"
#include "presentation/SideMenuPresenter.h"
#include "presentation/TipPresenter.h"
#include "walkthrough/WTPage1ViewController.h"
#include "walkthrough/WalkthroughDelegate.h"

class OperationQueue;
class Restaurants;
class SideMenuViewController;

// The application object: owns the long-lived services and decides which root the window shows.
// The QML window renders `root`; every rule of the choice lives here, so tests check it without
// a window.
class ServiceCenter;
class Downloader;
class UpdateChecker;

class AppDelegate : public QObject, public SideMenuPresenter, public TipPresenter, public DatabaseReadyDelegate, public SubscribeProvincesDelegate
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The application object is made by main")
    Q_PROPERTY(QString root READ root NOTIFY rootChanged)
    Q_PROPERTY(QString documentsPath READ documentsPath CONSTANT)
    Q_PROPERTY(QString catalogueVersion READ catalogueVersion NOTIFY rootChanged)
    Q_PROPERTY(SideDrawer *drawer READ drawer NOTIFY rootChanged)
    Q_PROPERTY(WTPage1ViewController *walkthrough READ walkthrough NOTIFY rootChanged)
    Q_PROPERTY(NavigationController *subscribeNavigation READ subscribeNavigation NOTIFY rootChanged)

public:
    // The roots the window can show.
    static constexpr const char *walkthroughRoot = "walkthrough";
    static constexpr const char *subscribeIntroRoot = "subscribe-intro";
    static constexpr const char *mainRoot = "main";

    // Orientation masks: portrait only, and portrait with both landscapes.
    static constexpr int portraitMask = 2;
    static constexpr int allButUpsideDownMask = 26;

    explicit AppDelegate(QObject *parent = nullptr);
    ~AppDelegate() override;

    // The one application object of the process, set as the first act of launching.
    static AppDelegate *global();

    // The launching steps, in order. Returns true as the platform expects.
    bool didFinishLaunching();

    QString root() const { return m_root; }
    QString documentsPath() const;
    QString catalogueVersion() const;

    Q_INVOKABLE void showDatabaseUI();
    Q_INVOKABLE void showSubscriptionUI();
    Q_INVOKABLE void databaseReady() override;
    // The first start's invitation ended: on to the main interface either way.
    Q_INVOKABLE void provinceSelectionDidCancel() override;
    void provinceSelectionDidFinish(const QSet<int> &provinces) override;
    // The invitation's own stack, shown while the root is the invitation.
    NavigationController *subscribeNavigation() const { return m_subscribeNavigation; }
    // A shake of the device (or its stand-ins: the shortcut, the developer tool): a fortune over
    // the main interface.
    Q_INVOKABLE void shaken();
    // The Escape key of the main interface: closes what is on top (a sheet or panel, the drawer,
    // the screen's own search bar) or else goes back one screen. False when there was nothing.
    Q_INVOKABLE bool escapePressed();
    // Ctrl+F or "/": whatever the screen, back to the browse screen with its search field ready.
    Q_INVOKABLE void findPressed();
    class FortunesViewController *fortunesViewController() const { return m_fortunesViewController; }
    // An ad's "tip": its text in the fortune sheet, over the dimmed main interface.
    void showTip(const QString &text) override;
    Q_INVOKABLE void loadMainUI();

    // Whether the subscription introduction can be offered on this device.
    bool subscribingPossible() const;

    void allowRotation() { m_allowRotation = true; }
    void forcePortrait() { m_allowRotation = false; }
    void preventRotation() { m_allowRotation = false; }
    int supportedInterfaceOrientations() const { return m_allowRotation ? allButUpsideDownMask : portraitMask; }

    // The main interface, absent until loadMainUI(): the drawer, its menu and its content.
    SideDrawer *drawer() const { return m_drawer; }
    // The first run's screen, while the walkthrough is the root.
    WTPage1ViewController *walkthrough() const { return m_walkthrough; }
    SideMenuViewController *sideMenu() const { return m_sideMenu; }
    NavigationController *mainNavigation() const { return m_mainNavigation; }
    // Follows a velmora:// link on the main interface, now or once it is loaded. A link that
    // can't be followed leaves the main interface as it is and logs one line.
    void openLink(const QString &link, bool animated = true);

    // Opens the drawer; harmless before the main interface exists.
    Q_INVOKABLE void showSideMenu(bool animated) override;
    void showMenuEntry(const QString &key) override;

signals:
    void rootChanged();

private:
    void setRoot(const QString &root);
    void loadFortunes();
    // What waits for the start to settle: the network's reachability, update monitoring and the
    // shake sensor, each of which loads plugins and may connect to the system bus.
    void startSettled();
    void watchShakes();
    void showFortunesVCOnTopOf(NavigationController *navigation);
    void followPendingLink();

    Restaurants &m_restaurants;
    QString m_root;
    bool m_allowRotation = false;
    WTPage1ViewController *m_walkthrough = nullptr;
    NavigationController *m_mainNavigation = nullptr;
    NavigationController *m_subscribeNavigation = nullptr;
    SideMenuViewController *m_sideMenu = nullptr;
    SideDrawer *m_drawer = nullptr;
    QString m_pendingLink;
    bool m_pendingLinkAnimated = true;
    // Made at launch and kept for the life of the process: the sources of newer catalogues.
    UpdateChecker *m_updateChecker = nullptr;
    ServiceCenter *m_serviceCenter = nullptr;
    Downloader *m_downloader = nullptr;
    Fortunes m_fortunes;
    class FortunesViewController *m_fortunesViewController = nullptr;
    bool m_startSettled = false;
    bool m_shakesWanted = false;
    class ShakeDetector *m_shakeDetector = nullptr;

public:
    UpdateChecker *updateChecker() const { return m_updateChecker; }
    ServiceCenter *serviceCenter() const { return m_serviceCenter; }
    Downloader *downloader() const { return m_downloader; }
};
