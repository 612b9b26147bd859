#include "info/InfoTableViewController.h"

#include "catalogue/Restaurants.h"
#include "platform/DefaultKeys.h"
#include "platform/Dispatch.h"
#include "platform/Localize.h"
#include "platform/NotificationCenter.h"
#include "platform/Notifications.h"
#include "platform/UserDefaults.h"
#include "presentation/BarButtonItem.h"
#include "presentation/Globals.h"
#include "presentation/SideMenuPresenter.h"
#include "presentation/UrlOpener.h"
#include "richtext/IconFont.h"
#include "update/Downloader.h"
#include "update/UpdateChecker.h"

#include <QCoreApplication>
#include <QPointer>

namespace {
// Where the contact rows lead: deployment values of the settings store.
QUrl deploymentURL(const UserDefaults &defaults, const QString &key) { return QUrl(defaults.stringForKey(key)); }
}

InfoTableViewController::InfoTableViewController(Restaurants &restaurants, UserDefaults &defaults, UpdateChecker *checker,
                                                 Downloader *downloader, QObject *parent)
    : ViewController(parent)
    , m_restaurants(restaurants)
    , m_defaults(defaults)
    , m_checker(checker)
    , m_downloader(downloader)
{
}

InfoTableViewController::~InfoTableViewController()
{
    if (m_downloader && m_downloader->delegate() == this)
        m_downloader->setDelegate(nullptr);
}

void InfoTableViewController::viewDidLoad()
{
    auto *menu = new BarButtonItem(QStringLiteral("menu"), IconFont::drawer, BarButtonItem::iconFont(18), this);
    connect(menu, &BarButtonItem::triggered, this, [] {
        if (SideMenuPresenter *presenter = SideMenuPresenter::shared())
            presenter->showSideMenu(true);
    });
    setLeftItems({menu});
    m_progressCell.onCancel = [this] { cancelButtonTouched(); };
    if (m_downloader)
        m_downloader->setDelegate(this);
    setupCells();
    NotificationCenter &center = NotificationCenter::defaultCenter();
    center.addObserver(this, Localize::changeNotification, [this](const QVariant &) { localize(); });
    center.addObserver(this, Notifications::VelmoraReloadInfoScreen, [this](const QVariant &) { emit cellsChanged(); });
    // A patch is reported done before the load that takes it into use has finished; the
    // version shown follows that load, which may come from any thread.
    QPointer<InfoTableViewController> self(this);
    center.addObserver(this, Notifications::RestaurantsDidReload, [self](const QVariant &) {
        dispatchMain([self] {
            if (self)
                emit self->cellsChanged();
        });
    });
    // The offer comes up by itself when a check in the background learns of a newer catalogue.
    connect(&m_defaults, &UserDefaults::keyChanged, this, [this](const QString &key) {
        if (key == DefaultKeys::newestDatabaseKnown)
            emit cellsChanged();
    });
    localize();
}

void InfoTableViewController::localize()
{
    setTitle(qtTrId("sidemenu_info"));
    if (m_cells.value(1) == progress)
        m_progressCell.setLabelText(qtTrId("info_updating"));
    emit cellsChanged();
}

void InfoTableViewController::setupCells()
{
    m_cells = {versionHeader, update, contactHeader, website, email, socialNetworks, separator, rateApp, shake};
    if (m_downloader) {
        QPointer<InfoTableViewController> self(this);
        m_downloader->isDownloading([self](bool running) {
            if (self && running)
                self->showProgressCell();
        });
    }
    emit cellsChanged();
}

QString InfoTableViewController::appVersion() const
{
    // "v" and the version; a build number follows it where the build gives one.
    const QString build = QCoreApplication::applicationVersion();
    return QStringLiteral("Velmora App v") + QStringLiteral(VELMORA_VERSION)
           + (build.isEmpty() || build == QLatin1String(VELMORA_VERSION) ? QString() : QLatin1Char('-') + build);
}

QString InfoTableViewController::databaseVersion() const
{
    return qtTrId("info_version") + QLatin1Char(' ') + m_restaurants.databaseVersionString() + QStringLiteral("\n(")
           + (offer() ? qtTrId("info_db_outdated") : qtTrId("info_db_up_to_date")) + QLatin1Char(')');
}

bool InfoTableViewController::offer() const
{
    return m_restaurants.isExpired() || (m_checker && m_checker->isNewerDatabaseKnown())
           || m_defaults.boolForKey(DefaultKeys::devUpdateAlwaysEnabled);
}

QString InfoTableViewController::updateWarning() const
{
    switch (m_checker ? m_checker->trust() : UpdateChecker::Trust::Ok) {
    case UpdateChecker::Trust::BrokenKey: return qtTrId("info_updates_key_broken");
    case UpdateChecker::Trust::NoKey: return qtTrId("info_updates_no_key");
    case UpdateChecker::Trust::Ok: break;
    }
    return {};
}

void InfoTableViewController::didSelectRow(int row)
{
    const QString kind = m_cells.value(row);
    if (kind == update && m_checker)
        m_checker->checkInternet(10);
    else if (kind == website)
        UrlOpener::openURL(QUrl(Globals::siteURL()));
    else if (kind == email)
        UrlOpener::openURL(QUrl(QStringLiteral("mailto:") + m_defaults.stringForKey(QStringLiteral("support-email"))));
    else if (kind == rateApp)
        UrlOpener::openURL(deploymentURL(m_defaults, QStringLiteral("store-url")));
}

void InfoTableViewController::socialButtonTouched(const QString &network)
{
    UrlOpener::openURL(deploymentURL(m_defaults, QStringLiteral("social-") + network + QStringLiteral("-url")));
}

void InfoTableViewController::updateButtonTouched()
{
    if (m_downloader) {
        m_downloader->setDelegate(this);
        m_downloader->startUpdate();
    }
    m_progressCell.reset();
    m_progressCell.setLabelText(qtTrId("info_updating"));
    showProgressCell();
}

void InfoTableViewController::showProgressCell()
{
    if (m_cells.value(1) == progress)
        return;
    m_cells[1] = progress;
    emit cellsChanged();
}

void InfoTableViewController::showInfoCell()
{
    if (m_cells.value(1) == update)
        return;
    m_cells[1] = update;
    emit cellsChanged();
}

void InfoTableViewController::cancelButtonTouched()
{
    if (m_downloader)
        m_downloader->cancel();
    showInfoCell();
}

void InfoTableViewController::showDownloadError(const QString &message)
{
    m_progressCell.enableCancel();
    m_progressCell.showErrorMessage(message);
    showProgressCell();
}

void InfoTableViewController::downloadProgress(qint64 written, qint64 total)
{
    m_progressCell.enableCancel();
    m_progressCell.setLabelText(qtTrId("info_updating"));
    m_progressCell.showDownloadProgress(written, total);
    showProgressCell();
}

void InfoTableViewController::patchStarted() { patchProgress(0, 100); }

void InfoTableViewController::patchProgress(int done, int total)
{
    // A patch can't be stopped half-way.
    m_progressCell.disableCancel();
    m_progressCell.showPatchProgress(done, total);
    m_progressCell.setLabelText(qtTrId("info_applying_patches"));
}

void InfoTableViewController::patchSuceeded()
{
    m_progressCell.enableCancel();
    showInfoCell();
    emit cellsChanged();
}

void InfoTableViewController::patchFailed(const QString &message) { showDownloadError(message); }

void InfoTableViewController::downloadDidComplete()
{
    m_progressCell.enableCancel();
    // The load reads the new file's every page: off the main thread, the screens going on.
    m_restaurants.reloadInBackground([self = QPointer(this)](bool ready) {
        if (!self)
            return;
        if (!ready) {
            self->showDownloadError(QStringLiteral("new DB passed validation but failed to load"));
            return;
        }
        self->showInfoCell();
        emit self->cellsChanged();
    });
}

void InfoTableViewController::downloadDidFinishWithError(const Error &error)
{
    // A cancel the user asked for is not an error to show.
    if (error.code == -999 && m_cells.value(1) == update)
        return;
    showDownloadError(error.message);
}
