#include "PlaceholderViewController.h"

#include "BarButtonItem.h"
#include "NavigationController.h"
#include "SideMenuPresenter.h"
#include "platform/Localize.h"
#include "platform/NotificationCenter.h"
#include "richtext/IconFont.h"
#include "richtext/RichTextLayout.h"

PlaceholderViewController::PlaceholderViewController(const char *titleKey, const char *messageKey, Place place, QObject *parent)
    : ViewController(parent)
    , m_titleKey(titleKey)
    , m_messageKey(messageKey)
    , m_place(place)
{
}

void PlaceholderViewController::viewDidLoad()
{
    const QFont icons = BarButtonItem::iconFont(18);
    if (m_place == Place::TopLevel) {
        auto *menu = new BarButtonItem(QStringLiteral("menu"), IconFont::drawer, icons, this);
        connect(menu, &BarButtonItem::triggered, this, [] {
            if (SideMenuPresenter *menu = SideMenuPresenter::shared())
                menu->showSideMenu(true);
        });
        setLeftItems({menu});
    } else {
        auto *back = new BarButtonItem(QStringLiteral("back"), IconFont::back + QStringLiteral("   "), icons, this);
        connect(back, &BarButtonItem::triggered, this, &PlaceholderViewController::close);
        setLeftItems({back});
    }
    // A title or message set by whoever made the screen (a place's name) stays as it is.
    const auto localize = [this] {
        if (m_titleKey)
            setTitle(qtTrId(m_titleKey));
        if (m_messageKey) {
            m_message = qtTrId(m_messageKey);
            emit messageChanged();
        }
    };
    NotificationCenter::defaultCenter().addObserver(this, Localize::changeNotification, [localize](const QVariant &) { localize(); });
    localize();
}

void PlaceholderViewController::setMessage(const QString &message)
{
    m_messageKey = nullptr;
    if (message == m_message)
        return;
    m_message = message;
    emit messageChanged();
}

void PlaceholderViewController::close()
{
    NavigationController *navigation = navigationController();
    if (!navigation)
        return;
    if (m_place == Place::Presented)
        navigation->dismissViewController(true);
    else
        navigation->popViewController(true);
}
