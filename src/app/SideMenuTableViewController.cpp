#include "SideMenuTableViewController.h"

#include "platform/DefaultKeys.h"
#include "platform/Notifications.h"
#include "app/SideMenuViewController.h"
#include "platform/Dispatch.h"
#include "platform/Localize.h"
#include "platform/NotificationCenter.h"
#include "platform/UserDefaults.h"
#include "richtext/IconFont.h"

#include <QPointer>
#include <QVariant>

namespace {
struct MenuRow {
    const char *key;
    const char *textKey;
    const QString *thin;
    const QString *full;
};
const MenuRow menuRows[] = {
    {"browse", "sidemenu_search", &IconFont::browseThin, &IconFont::browseFull},
    {"map", "sidemenu_map", &IconFont::mapThin, &IconFont::mapFull},
    {"myplaces", "sidemenu_myplaces", &IconFont::myplacesThin, &IconFont::myplacesFull},
    {"notifications", "sidemenu_notifications", &IconFont::notificationsThin, &IconFont::notificationsFull},
    {"info", "sidemenu_info", &IconFont::infoThin, &IconFont::infoFull},
    {"settings", "sidemenu_settings", &IconFont::settingsThin, &IconFont::settingsFull},
};
}

SideMenuTableViewController::SideMenuTableViewController(QObject *parent)
    : QAbstractListModel(parent)
    , R({QStringLiteral("b { font-name: OpenSans-Semibold; font-size: 15; }"),
         QStringLiteral("r { font-name: OpenSans-Light; font-size: 15; }")})
    , m_rows({QStringLiteral("logo"), QStringLiteral("browse"), QStringLiteral("map"), QStringLiteral("myplaces"),
              QStringLiteral("info"), QStringLiteral("settings")})
{
}

void SideMenuTableViewController::viewDidLoad()
{
    if (UserDefaults::standard().boolForKey(DefaultKeys::devEnableNotifications))
        m_rows.insert(4, QStringLiteral("notifications"));
    for (const MenuRow &row : menuRows) {
        m_rowThinIcons.insert(QString::fromLatin1(row.key), *row.thin);
        m_rowFullIcons.insert(QString::fromLatin1(row.key), *row.full);
    }
    NotificationCenter::defaultCenter().addObserver(this, Localize::changeNotification, [this](const QVariant &) { localize(); });
    localize();
}

void SideMenuTableViewController::localize()
{
    beginResetModel();
    for (const MenuRow &row : menuRows)
        m_rowText.insert(QString::fromLatin1(row.key), qtTrId(row.textKey));
    endResetModel();
}

int SideMenuTableViewController::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

QVariant SideMenuTableViewController::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= m_rows.size())
        return {};
    const QString key = m_rows.at(index.row());
    const bool selected = index.row() == m_selectedRow;
    switch (role) {
    case KeyRole:
        return key;
    case LogoRole:
        return key == QLatin1String("logo");
    case SelectedRole:
        return selected;
    case IconRole:
        return (selected ? m_rowFullIcons : m_rowThinIcons).value(key, QStringLiteral("?"));
    case TitleRole: {
        const QString tag = selected ? QStringLiteral("b") : QStringLiteral("r");
        return QVariant::fromValue(R.render(QStringLiteral("<body><%1><![CDATA[%2]]></%1></body>")
                                                .arg(tag, m_rowText.value(key, QStringLiteral("?")))));
    }
    case BadgeRole:
        return key == QLatin1String("notifications") ? QStringLiteral("16") : QString();
    default:
        return {};
    }
}

QHash<int, QByteArray> SideMenuTableViewController::roleNames() const
{
    return {{KeyRole, "key"},   {TitleRole, "title"}, {IconRole, "icon"},
            {SelectedRole, "selected"}, {LogoRole, "logo"}, {BadgeRole, "badge"}};
}

void SideMenuTableViewController::didSelectRow(int row)
{
    if (row < 0 || row >= m_rows.size())
        return;
    if (row == 0) {
        // The logo explores: the search screen's discover tab, the selection left as it was.
        NotificationCenter::defaultCenter().post(Notifications::MyPlacesExplore);
        if (m_menuDelegate)
            m_menuDelegate->goToSearch();
        return;
    }
    markSelected(row);
    emit rowFlashed(row);
    // After this call returns, so that loading a screen doesn't hold up the row's feedback.
    const QString key = m_rows.at(row);
    dispatchMain([self = QPointer(this), key] {
        if (self)
            self->tellMenuToLoad(key);
    });
}

void SideMenuTableViewController::markSelected(int row)
{
    const int previous = m_selectedRow;
    m_selectedRow = row;
    emit dataChanged(index(previous), index(previous));
    emit dataChanged(index(row), index(row));
    emit selectedRowChanged();
}

bool SideMenuTableViewController::selectRowWithKey(const QString &key)
{
    const qsizetype row = m_rows.indexOf(key);
    if (row <= 0)
        return false;
    // At once, not after the row's feedback: whoever asked goes on from the screen reached.
    markSelected(int(row));
    tellMenuToLoad(key);
    return true;
}

void SideMenuTableViewController::tellMenuToLoad(const QString &rowKey)
{
    if (!m_menuDelegate)
        return;
    if (rowKey == QLatin1String("browse"))
        m_menuDelegate->goToSearch();
    else if (rowKey == QLatin1String("map"))
        m_menuDelegate->goToMap();
    else if (rowKey == QLatin1String("myplaces"))
        m_menuDelegate->goToMyPlaces();
    else if (rowKey == QLatin1String("info"))
        m_menuDelegate->goToInfo();
    else if (rowKey == QLatin1String("settings"))
        m_menuDelegate->goToSettings();
}
