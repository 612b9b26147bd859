#include "analytics/Measurement.h"
#include "personal/SettingsTableViewController.h"

#include "catalogue/LanguageSwitch.h"
#include "catalogue/Restaurants.h"
#include "personal/SubscribeProvincesViewController.h"
#include "personal/Subscription.h"
#include "platform/DefaultKeys.h"
#include "platform/Localize.h"
#include "platform/Logging.h"
#include "platform/NotificationCenter.h"
#include "platform/Notifications.h"
#include "platform/UserDefaults.h"
#include "presentation/BarButtonItem.h"
#include "presentation/NavigationController.h"
#include "presentation/SideMenuPresenter.h"
#include "presentation/Storyboard.h"
#include "richtext/IconFont.h"

#include <QVariantMap>

namespace {
using Kind = SettingsTableViewController::SettingsRow::Kind;

// The developer section's switches: their text (English in both languages) and key.
const std::pair<const char *, const QString *> developerToggles[] = {
    {"settings_dev_notifications", &DefaultKeys::devEnableNotifications},
    {"settings_dev_opinions", &DefaultKeys::devEnableOpinions},
    {"settings_dev_update_always", &DefaultKeys::devUpdateAlwaysEnabled},
    {"settings_dev_keep_old_dbs", &DefaultKeys::devKeepOldDbs},
    {"settings_dev_allow_unsigned_updates", &DefaultKeys::devAllowUnsignedUpdates},
    {"settings_dev_enable_subscribe", &DefaultKeys::devEnableSubscribe},
};
const char *developerCommands[] = {"user-defaults", "build-fts-index", "reload-database", "clear-nsurl-cache", "shake", "delete-database"};

const QString reuseIdentifier(Kind kind)
{
    switch (kind) {
    case Kind::header: return QStringLiteral("settings-header-cell");
    case Kind::language: return QStringLiteral("settings-language-cell");
    case Kind::toggle: return QStringLiteral("settings-toggle-cell");
    case Kind::action: return QStringLiteral("settings-action-cell");
    case Kind::subscribed: return QStringLiteral("settings-subscribed-cell");
    }
    return {};
}
}

SettingsTableViewController::SettingsTableViewController(Restaurants &restaurants, UserDefaults &defaults, QObject *parent)
    : ViewController(parent)
    , m_restaurants(restaurants)
    , m_defaults(defaults)
{
}

void SettingsTableViewController::viewDidLoad()
{
    auto *menu = new BarButtonItem(QStringLiteral("menu"), IconFont::drawer, BarButtonItem::iconFont(18), this);
    connect(menu, &BarButtonItem::triggered, this, &SettingsTableViewController::showMenu);
    setLeftItems({menu});
    NotificationCenter &center = NotificationCenter::defaultCenter();
    center.addObserver(this, Localize::changeNotification, [this](const QVariant &) { localize(); });
    center.addObserver(this, Notifications::VelmoraUserSubscriptionChanged, [this](const QVariant &) { emit rowsChanged(); });
    localize();
}

void SettingsTableViewController::localize()
{
    populateCells();
    setTitle(qtTrId("settings_title"));
}

void SettingsTableViewController::viewWillAppear()
{
    // Back from the settings viewer, whose erasures may have changed any row.
    populateCells();
}

void SettingsTableViewController::populateCells()
{
    m_rows.clear();
    m_rows.append({Kind::header, qtTrId("settings_header_language"), {}});
    m_rows.append({Kind::language, QStringLiteral("Español"), QStringLiteral("es")});
    m_rows.append({Kind::language, QStringLiteral("English"), QStringLiteral("en")});
    if (Subscription::isAvailable(m_defaults, m_restaurants)) {
        m_rows.append({Kind::header, qtTrId("settings_header_notifications"), {}});
        m_rows.append({Kind::subscribed, {}, {}});
    }
    m_rows.append({Kind::header, qtTrId("settings_header_places_out_of_service"), {}});
    m_rows.append({Kind::toggle, qtTrId("settings_show_closed_places"), DefaultKeys::showClosedPlaces});
    m_rows.append({Kind::header, qtTrId("settings_analytics"), {}});
    m_rows.append({Kind::toggle, qtTrId("settings_enable_analytics"), DefaultKeys::enableAnalytics});
    if (m_defaults.boolForKey(DefaultKeys::developerModeEnabled)) {
        m_rows.append({Kind::header, qtTrId("settings_dev_header"), {}});
        for (const auto &[title, key] : developerToggles)
            m_rows.append({Kind::toggle, qtTrId(title), *key});
        for (const char *command : developerCommands)
            m_rows.append({Kind::action, {}, QString::fromLatin1(command)});
    }
    emit rowsChanged();
}

QVariantList SettingsTableViewController::rows() const
{
    QVariantList rows;
    const QString current = Localize::currentLanguage();
    for (const SettingsRow &row : m_rows) {
        QVariantMap cell{{QStringLiteral("kind"), reuseIdentifier(row.kind)}, {QStringLiteral("title"), row.title},
                         {QStringLiteral("value"), row.value}};
        switch (row.kind) {
        case Kind::language: {
            const bool chosen = row.value == current;
            cell.insert(QStringLiteral("selected"), chosen);
            cell.insert(QStringLiteral("glyph"), chosen ? IconFont::checkOn : IconFont::checkOff);
            cell.insert(QStringLiteral("color"), chosen ? QStringLiteral("#68B213") : QStringLiteral("#A29476"));
            cell.insert(QStringLiteral("closesGroup"), row.value == QLatin1String("en"));
            break;
        }
        case Kind::toggle:
            cell.insert(QStringLiteral("on"), m_defaults.boolForKey(row.value));
            // A value forced by the deployment shows, and can't be changed here.
            cell.insert(QStringLiteral("locked"), m_defaults.objectIsForcedForKey(row.value));
            break;
        case Kind::action: {
            static const QHash<QString, const char *> titles = {{QStringLiteral("delete-database"), "settings_dev_delete_database"},
                                                                {QStringLiteral("user-defaults"), "settings_dev_user_defaults"},
                                                                {QStringLiteral("build-fts-index"), "settings_dev_build_fts"},
                                                                {QStringLiteral("clear-nsurl-cache"), "settings_dev_clear_cache"},
                                                                {QStringLiteral("shake"), "settings_dev_shake"},
                                                                {QStringLiteral("reload-database"), "settings_dev_reload"}};
            const char *title = titles.value(row.value, "settings_dev_unknown");
            cell.insert(QStringLiteral("title"), qtTrId(title));
            const bool red = row.value == QLatin1String("delete-database") || !titles.contains(row.value);
            cell.insert(QStringLiteral("color"), red ? QStringLiteral("red") : QStringLiteral("#3a2a22"));
            break;
        }
        case Kind::subscribed: {
            const bool subscribed = Subscription::isSubscribed(m_defaults);
            cell.insert(QStringLiteral("title"), qtTrId("settings_receive_notifications"));
            cell.insert(QStringLiteral("state"), qtTrId(subscribed ? "settings_subscribed_yes" : "settings_subscribed_no"));
            cell.insert(QStringLiteral("color"), subscribed ? QStringLiteral("#94cf3c") : QStringLiteral("#897C5E"));
            break;
        }
        case Kind::header: break;
        }
        rows.append(cell);
    }
    return rows;
}

void SettingsTableViewController::didSelectRow(int index)
{
    if (index < 0 || index >= m_rows.size())
        return;
    const SettingsRow row = m_rows.at(index);
    switch (row.kind) {
    case Kind::language:
        if (row.value != Localize::currentLanguage()) {
            m_devtaps = 0;
            // The catalogue's names first, then the interface: every screen redoes its texts.
            switchLanguage(m_restaurants, row.value);
        } else if (++m_devtaps > 9) {
            m_devtaps = 0;
            m_defaults.setBool(!m_defaults.boolForKey(DefaultKeys::developerModeEnabled), DefaultKeys::developerModeEnabled);
            populateCells();
        }
        break;
    case Kind::subscribed:
        if (NavigationController *navigation = navigationController()) {
            if (auto *provinces = qobject_cast<SubscribeProvincesViewController *>(
                    Storyboard::instantiate(QStringLiteral("Walkthrough"), QStringLiteral("subscribe-provinces"), this))) {
                provinces->delegate = this;
                navigation->pushViewController(provinces, true);
            }
        }
        break;
    case Kind::action: runCommand(row.value); break;
    case Kind::header:
    case Kind::toggle: break;
    }
}

void SettingsTableViewController::toggleChanged(int index, bool on)
{
    if (index < 0 || index >= m_rows.size() || m_rows.at(index).kind != Kind::toggle)
        return;
    const QString key = m_rows.at(index).value;
    if (m_defaults.objectIsForcedForKey(key)) {
        emit rowsChanged(); // the switch goes back to the forced value
        return;
    }
    m_defaults.setBool(on, key);
    NotificationCenter &center = NotificationCenter::defaultCenter();
    if (key == DefaultKeys::devUpdateAlwaysEnabled)
        center.post(Notifications::VelmoraReloadInfoScreen);
    else if (key == DefaultKeys::showClosedPlaces)
        center.post(Notifications::VelmoraReloadRestaurants);
    else if (key == DefaultKeys::enableAnalytics)
        Measurement::sharedInstance().setOptOut(!on);
}

void SettingsTableViewController::runCommand(const QString &command)
{
    if (command == QLatin1String("delete-database")) {
        m_confirmingDelete = true;
        emit confirmingDeleteChanged();
    } else if (command == QLatin1String("user-defaults")) {
        if (NavigationController *navigation = navigationController())
            if (ViewController *viewer = Storyboard::instantiate(QStringLiteral("Info_Settings"), QStringLiteral("user-defaults-view-controller"), this))
                navigation->pushViewController(viewer, true);
    } else if (command == QLatin1String("build-fts-index")) {
        m_restaurants.openSearchIndex(true);
    } else if (command == QLatin1String("reload-database")) {
        m_restaurants.reload();
    } else if (command == QLatin1String("shake")) {
        // Where the device has no accelerometer, this stands in for shaking it.
        NotificationCenter::defaultCenter().post(Notifications::VelmoraShake);
    } else if (command == QLatin1String("clear-nsurl-cache")) {
        // Transfers here keep no response cache: there is nothing to clear.
        qCInfo(lcApp) << "No URL cache to clear";
    }
}

void SettingsTableViewController::confirmDelete(bool confirmed)
{
    m_confirmingDelete = false;
    emit confirmingDeleteChanged();
    if (confirmed)
        m_restaurants.deleteDatabaseFile();
}

void SettingsTableViewController::provinceSelectionDidCancel()
{
    if (NavigationController *navigation = navigationController())
        navigation->popViewController(true);
}

void SettingsTableViewController::provinceSelectionDidFinish(const QSet<int> &) { provinceSelectionDidCancel(); }

void SettingsTableViewController::showMenu()
{
    if (SideMenuPresenter *presenter = SideMenuPresenter::shared())
        presenter->showSideMenu(true);
}
