#include "MenuTableViewController.h"

#include "catalogue/Restaurants.h"
#include "platform/Dispatch.h"
#include "platform/Localize.h"
#include "platform/NotificationCenter.h"
#include "presentation/BarButtonItem.h"
#include "presentation/NavigationController.h"
#include "richtext/IconFont.h"

#include <QLocale>
#include <QPointer>

MenuTableViewController::MenuTableViewController(Restaurants &restaurants, QObject *parent)
    : ViewController(parent)
    , m_restaurants(restaurants)
{
}

void MenuTableViewController::viewDidLoad()
{
    m_menu = m_restaurants.menu(rid);
    setTitle(qtTrId("menu_title"));
    showBackButton();
    m_openSections.insert(0);
    NotificationCenter::defaultCenter().addObserver(this, Localize::changeNotification,
                                                    [this](const QVariant &) { setTitle(qtTrId("menu_title")); });
    buildRows();
}

QString MenuTableViewController::priceText(double price)
{
    if (!(price > 0))
        return QString();
    QLocale locale;
    locale.setNumberOptions(QLocale::OmitGroupSeparator);
    return locale.toString(price, 'f', 2);
}

void MenuTableViewController::buildRows()
{
    m_rows.clear();
    if (m_menu) {
        m_rows.append(QVariantMap{{QStringLiteral("kind"), QStringLiteral("menu-desc-cell")},
                                  {QStringLiteral("text"), m_menu->desc.isEmpty() ? QString() : QStringLiteral("* ") + m_menu->desc}});
        for (int section = 0; section < m_menu->sections.size(); ++section) {
            const MenuSection &menuSection = m_menu->sections.at(section);
            const bool open = m_openSections.contains(section);
            m_rows.append(QVariantMap{{QStringLiteral("kind"), QStringLiteral("menu-header-cell")},
                                      {QStringLiteral("section"), section},
                                      {QStringLiteral("name"), menuSection.name.toUpper()},
                                      {QStringLiteral("arrow"), open ? IconFont::chevronOpen : IconFont::chevronClosed},
                                      {QStringLiteral("open"), open}});
            if (!open)
                continue;
            for (const auto &[dish, price] : menuSection.entries)
                m_rows.append(QVariantMap{{QStringLiteral("kind"), QStringLiteral("menu-entry-cell")},
                                          {QStringLiteral("section"), section},
                                          {QStringLiteral("dish"), dish},
                                          {QStringLiteral("price"), priceText(price)}});
        }
    }
    emit rowsChanged();
}

void MenuTableViewController::didSelectRow(int row)
{
    const QVariantMap tapped = m_rows.value(row).toMap();
    if (tapped.value(QStringLiteral("kind")) != QLatin1String("menu-header-cell"))
        return;
    const int section = tapped.value(QStringLiteral("section")).toInt();
    const bool opening = !m_openSections.remove(section);
    if (opening)
        m_openSections.insert(section);
    buildRows();
    if (opening)
        dispatchAfter(300, [self = QPointer(this), row] {
            if (self)
                emit self->scrollToRow(row);
        });
}
