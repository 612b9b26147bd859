#include "app/AppDelegate.h"
#include "analytics/BatchingDispatcher.h"
#include "analytics/Events.h"
#include "analytics/Measurement.h"
#include "personal/FortunesViewController.h"
#include "personal/SubscribeIntroViewController.h"
#include "platform/ShakeDetector.h"
#include "presentation/Presentation.h"
#include "personal/Subscription.h"

#include "update/Downloader.h"
#include "update/ServiceCenter.h"
#include "update/UpdateChecker.h"

#include "platform/DefaultKeys.h"
#include "app/DeepLink.h"
#include "app/LinkRouter.h"
#include "browse/BuscarViewController.h"
#include "platform/Notifications.h"
#include "catalogue/LoadRestaurantsOperation.h"
#include "catalogue/Restaurants.h"
#include "platform/Dispatch.h"
#include "app/Scenes.h"
#include "richtext/ApplicationFonts.h"
#include "app/SideDrawer.h"
#include "app/SideMenuViewController.h"
#include "platform/Localize.h"
#include "presentation/NavigationController.h"
#include "presentation/Storyboard.h"
#include "platform/Logging.h"
#include "platform/NotificationCenter.h"
#include "platform/Paths.h"
#include "platform/UserDefaults.h"

#include <QDateTime>
#include <QGuiApplication>
#include <QSysInfo>
#include <QPointer>
#include <QTimer>

namespace {
// The fortune sheet rises from the bottom over a reddish dim ("#7f1616dd"), for a shake and an ad's tip.
const Presentation fortunePresentation{Presentation::Edge::Bottom, 0, QColor(0x7f, 0x16, 0x16, 0xdd), 250};
// How long after launch the start is taken to have settled (see startSettled).
constexpr int startSettlesMs = 1000;
QPointer<AppDelegate> globalDelegate;
}

AppDelegate::AppDelegate(QObject *parent)
    : QObject(parent)
    // Creating the shared catalogue loads it synchronously, before any screen exists.
    , m_restaurants(Restaurants::shared())
{
}

AppDelegate::~AppDelegate()
{
    if (SideMenuPresenter::shared() == this)
        SideMenuPresenter::setShared(nullptr);
    if (TipPresenter::shared() == this)
        TipPresenter::setShared(nullptr);
}

AppDelegate *AppDelegate::global() { return globalDelegate.data(); }

bool AppDelegate::didFinishLaunching()
{
    globalDelegate = this;
    SideMenuPresenter::setShared(this);
    TipPresenter::setShared(this);
    // Screens render their styled text from the moment they are made, so the fonts come first.
    registerApplicationFonts();

    // Registered defaults; the catalogue was created before this and read its settings without.
    UserDefaults &defaults = UserDefaults::standard();
    defaults.registerDefaultsFromFile(QStringLiteral(":/Defaults.json"));

    // Analytics: a configuration that can't work leaves the tracker dropping what it gets, which
    // costs the app nothing. Nothing is reported unless the user allowed it.
    QString analyticsError;
    if (!MeasurementContext::sharedInstance().configureWithError(&analyticsError))
        qCInfo(lcApp) << "Analytics not started:" << analyticsError;
    Measurement &measurement = Measurement::sharedInstance();
    measurement.setTrackUncaughtExceptions(true);
    if (!defaults.boolForKey(DefaultKeys::enableAnalytics))
        measurement.setOptOut(true);
    // Going to the background sends what waits; ending waits briefly for the answer, so the last
    // minutes of use aren't held until the next start.
    connect(qApp, &QGuiApplication::applicationStateChanged, this, [](Qt::ApplicationState state) {
        if (state == Qt::ApplicationSuspended || state == Qt::ApplicationHidden)
            if (BatchingDispatcher *dispatcher = Measurement::sharedInstance().dispatcher())
                dispatcher->dispatch();
    });
    connect(qApp, &QCoreApplication::aboutToQuit, this, [] { Measurement::sharedInstance().dispatchAndWait(1500); });

    // The language chosen in settings, else the device's: the same one the catalogue read its
    // names in when it was made, so texts and names agree from the first frame.
    Localize::loadCurrentLanguage();

    // Update monitoring starts in every case, with or without a catalogue, once the start has
    // settled (see startSettled).
    m_updateChecker = new UpdateChecker(defaults, m_restaurants, this);
    m_serviceCenter = new ServiceCenter(*m_updateChecker, this);
    QTimer::singleShot(startSettlesMs, this, &AppDelegate::startSettled);
    // Made at start, so that a transfer an earlier run left behind goes on and ends where it should.
    ServiceCenter *center = m_serviceCenter;
    m_downloader = new Downloader(m_restaurants, defaults, *m_updateChecker, [center] { return center->updateURLs(); },
                                  {Paths::caches(), Paths::applicationSupport()}, this);
    Downloader::setShared(m_downloader);

    if (m_restaurants.ready())
        showSubscriptionUI();
    else
        showDatabaseUI();
    return true;
}

QString AppDelegate::documentsPath() const { return Paths::documents(); }

QString AppDelegate::catalogueVersion() const { return m_restaurants.databaseVersionString(); }

void AppDelegate::showDatabaseUI()
{
    if (!m_walkthrough) {
        m_walkthrough = new WTPage1ViewController(m_restaurants, m_downloader, this, Paths::documents(), this);
        m_walkthrough->viewDidLoad();
    }
    setRoot(QString::fromLatin1(walkthroughRoot));
}

bool AppDelegate::subscribingPossible() const { return Subscription::isAvailable(UserDefaults::standard(), Restaurants::shared()); }

void AppDelegate::showSubscriptionUI()
{
    const UserDefaults &defaults = UserDefaults::standard();
    if (subscribingPossible() && !defaults.boolForKey(DefaultKeys::subscriptionScreenSeen)
        && !Subscription::isSubscribed(defaults)) {
        registerApplicationScenes();
        auto *intro = qobject_cast<SubscribeIntroViewController *>(
            Storyboard::instantiate(QStringLiteral("Walkthrough"), QStringLiteral("subscribe-intro"), this));
        if (intro) {
            intro->delegate = this;
            delete m_subscribeNavigation;
            m_subscribeNavigation = new NavigationController(this);
            m_subscribeNavigation->setViewControllers({intro}, false);
            setRoot(QString::fromLatin1(subscribeIntroRoot));
            return;
        }
    }
    loadMainUI();
}

void AppDelegate::databaseReady() { showSubscriptionUI(); }

void AppDelegate::provinceSelectionDidCancel() { loadMainUI(); }

void AppDelegate::provinceSelectionDidFinish(const QSet<int> &)
{
    // The province screen stored what was sent.
    loadMainUI();
}

void AppDelegate::loadMainUI()
{
    if (!m_drawer) {
        registerApplicationScenes();
        m_sideMenu = new SideMenuViewController(this);
        m_mainNavigation = new NavigationController(this);
        // The search screen is always the first screen.
        m_mainNavigation->setViewControllers(
            {Storyboard::instantiate(QStringLiteral("Buscar"), QStringLiteral("search-view-controller"), this)}, false);
        m_drawer = new SideDrawer(m_mainNavigation, m_sideMenu, this);
        m_sideMenu->setContentController(m_mainNavigation);
        m_sideMenu->setDrawer(m_drawer);
        m_sideMenu->viewDidLoad();
        loadFortunes();
    }
    setRoot(QString::fromLatin1(mainRoot));
    followPendingLink();
}

void AppDelegate::openLink(const QString &link, bool animated)
{
    m_pendingLink = link;
    m_pendingLinkAnimated = animated;
    if (m_root == QLatin1String(mainRoot))
        followPendingLink();
}

void AppDelegate::followPendingLink()
{
    const QString link = std::exchange(m_pendingLink, QString());
    if (link.isEmpty() || !m_mainNavigation || !m_sideMenu)
        return;
    auto *search = m_mainNavigation->viewControllers().isEmpty()
        ? nullptr : qobject_cast<BuscarViewController *>(m_mainNavigation->viewControllers().first());
    QString why;
    const auto parsed = DeepLink::parse(link, &why);
    if (parsed && search && LinkRouter(*search, *m_sideMenu->tableVC()).follow(*parsed, m_pendingLinkAnimated, &why))
        return;
    qCWarning(lcApp).noquote() << "Not following" << link << "-" << why;
}

void AppDelegate::showSideMenu(bool animated)
{
    Events::openedSideMenu();
    if (m_drawer)
        m_drawer->showMenuAnimated(animated);
}

void AppDelegate::showMenuEntry(const QString &key)
{
    if (m_sideMenu)
        m_sideMenu->tableVC()->selectRowWithKey(key);
}

void AppDelegate::setRoot(const QString &root)
{
    if (m_root == root)
        return;
    m_root = root;
    qCInfo(lcApp) << "Root:" << root;
    emit rootChanged();
}


void AppDelegate::loadFortunes()
{
    m_fortunesViewController = qobject_cast<FortunesViewController *>(
        Storyboard::instantiate(QStringLiteral("Main"), QStringLiteral("fortunes-view-controller"), this));
    m_fortunes.loadFile(QStringLiteral(":/fortunes.json"));
    m_shakesWanted = true;
    if (m_startSettled)
        watchShakes();
    NotificationCenter::defaultCenter().addObserver(this, Notifications::VelmoraShake, [this](const QVariant &) { shaken(); });
}

void AppDelegate::startSettled()
{
    // Loading the reachability backend, the sensor plugins and their bus connections takes
    // milliseconds the first frame would otherwise wait for. Nothing is lost meanwhile: the
    // analytics dispatcher takes the network to be there, a check a second later finds what a
    // check now would, and nobody shakes a phone in its first second.
    m_startSettled = true;
    Measurement::sharedInstance().watchReachability();
    m_updateChecker->startMonitoring();
    if (m_shakesWanted)
        watchShakes();
}

void AppDelegate::watchShakes()
{
    if (m_shakeDetector)
        return;
    m_shakeDetector = new ShakeDetector(this);
    connect(m_shakeDetector, &ShakeDetector::shaken, this, &AppDelegate::shaken);
}

bool AppDelegate::escapePressed()
{
    NavigationController *navigation = m_root == QLatin1String(mainRoot) ? m_mainNavigation : nullptr;
    if (!navigation)
        return false;
    if (navigation->presentedViewController()) {
        navigation->dismissViewController(true);
        return true;
    }
    if (m_drawer && m_drawer->isMenuVisible()) {
        m_drawer->hideMenuAnimated(true);
        return true;
    }
    if (ViewController *top = navigation->topViewController(); top && top->closeOwnLayer())
        return true;
    if (navigation->viewControllers().size() < 2)
        return false;
    navigation->popViewController(true);
    return true;
}

void AppDelegate::findPressed()
{
    if (m_root != QLatin1String(mainRoot) || !m_mainNavigation)
        return;
    if (m_mainNavigation->presentedViewController())
        m_mainNavigation->dismissViewController(false);
    if (m_drawer && m_drawer->isMenuVisible())
        m_drawer->hideMenuAnimated(true);
    showMenuEntry(QStringLiteral("browse"));
    m_mainNavigation->popToRootViewController(false);
    if (auto *search = qobject_cast<BuscarViewController *>(m_mainNavigation->topViewController()))
        search->focusSearch();
}

void AppDelegate::shaken()
{
    if (m_root != QLatin1String(mainRoot) || !m_mainNavigation)
        return;
    m_fortunes.shaken(QDateTime::currentMSecsSinceEpoch() / 1000.0);
    showFortunesVCOnTopOf(m_mainNavigation);
}

void AppDelegate::showTip(const QString &text)
{
    if (!m_fortunesViewController || !m_mainNavigation || m_fortunesViewController->isVisible() || m_mainNavigation->presentedViewController())
        return;
    m_fortunesViewController->setFortune(text);
    m_mainNavigation->presentViewController(m_fortunesViewController, true, fortunePresentation);
}

void AppDelegate::showFortunesVCOnTopOf(NavigationController *navigation)
{
    // A shake while the sheet is up, or over another sheet, counts and shows nothing more.
    if (!m_fortunesViewController || m_fortunesViewController->isVisible() || navigation->presentedViewController())
        return;
    // Phones name themselves; a desktop is a computer.
    const QString product = QSysInfo::productType();
    const bool phone = product == QLatin1String("android") || product == QLatin1String("ios");
    const QString warning = qtTrId("careful_with_the_shaking").replace(QLatin1String("{DEVICE}"), qtTrId(phone ? "device_phone" : "device_computer"));
    if (const std::optional<QString> text = m_fortunes.next(Localize::currentLanguage(), warning))
        m_fortunesViewController->setFortune(*text);
    navigation->presentViewController(m_fortunesViewController, true, fortunePresentation);
}
