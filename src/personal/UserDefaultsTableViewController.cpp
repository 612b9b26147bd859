#include "personal/UserDefaultsTableViewController.h"

#include "platform/Localize.h"
#include "platform/NotificationCenter.h"
#include "platform/UserDefaults.h"
#include "presentation/BarButtonItem.h"

#include <QDateTime>
#include <QJsonDocument>
#include <QStringList>

UserDefaultsTableViewController::UserDefaultsTableViewController(UserDefaults &defaults, QObject *parent)
    : ViewController(parent)
    , m_defaults(defaults)
{
}

void UserDefaultsTableViewController::viewDidLoad()
{
    showBackButton();
    QFont font(QStringLiteral("Open Sans"));
    font.setPixelSize(15);
    m_editButton = new BarButtonItem(QStringLiteral("edit"), qtTrId("user_defaults_edit"), font, this);
    connect(m_editButton, &BarButtonItem::triggered, this, [this] { setEditing(!m_editing); });
    setRightItems({m_editButton});
    const auto localize = [this] {
        setTitle(qtTrId("user_defaults_title"));
        m_editButton->setTitle(qtTrId(m_editing ? "user_defaults_done" : "user_defaults_edit"));
    };
    NotificationCenter::defaultCenter().addObserver(this, Localize::changeNotification, [localize](const QVariant &) { localize(); });
    localize();
    loadPairs();
}

void UserDefaultsTableViewController::setEditing(bool editing)
{
    m_editing = editing;
    m_editButton->setTitle(qtTrId(m_editing ? "user_defaults_done" : "user_defaults_edit"));
    emit editingChanged();
}

void UserDefaultsTableViewController::loadPairs()
{
    m_pairs.clear();
    const QVariantMap all = m_defaults.dictionaryRepresentation();
    for (auto it = all.cbegin(); it != all.cend(); ++it) // a QVariantMap is sorted by key
        m_pairs.append({it.key(), it.value()});
    emit pairsChanged();
}

bool UserDefaultsTableViewController::canEditRow(int row) const
{
    return row >= 0 && row < m_pairs.size() && !m_defaults.objectIsForcedForKey(m_pairs.at(row).first);
}

bool UserDefaultsTableViewController::deleteRow(int row)
{
    if (!canEditRow(row))
        return false;
    // A key with a registered default still answers afterwards: its row stays, with the default.
    m_defaults.removeObjectForKey(m_pairs.at(row).first);
    loadPairs();
    return true;
}

QString UserDefaultsTableViewController::describe(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::Bool: return value.toBool() ? QStringLiteral("1") : QStringLiteral("0");
    case QMetaType::QDateTime: return value.toDateTime().toUTC().toString(Qt::ISODate);
    case QMetaType::QVariantList:
    case QMetaType::QStringList:
    case QMetaType::QVariantMap:
        return QString::fromUtf8(QJsonDocument::fromVariant(value).toJson(QJsonDocument::Compact));
    default: return value.toString();
    }
}

QVariantList UserDefaultsTableViewController::pairObjects() const
{
    QVariantList rows;
    for (const auto &[key, value] : m_pairs)
        rows.append(QVariantMap{{QStringLiteral("key"), key},
                                {QStringLiteral("value"), describe(value)},
                                {QStringLiteral("locked"), m_defaults.objectIsForcedForKey(key)}});
    return rows;
}
