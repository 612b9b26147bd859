#include "ViewController.h"

#include "BarButtonItem.h"
#include "NavigationController.h"
#include "richtext/IconFont.h"

ViewController::ViewController(QObject *parent)
    : QObject(parent)
{
}

void ViewController::setTitle(const QString &title)
{
    if (m_title == title)
        return;
    m_title = title;
    emit titleChanged();
}

void ViewController::setLeftItems(const QList<BarButtonItem *> &items)
{
    m_leftItems = items;
    emit barItemsChanged();
}

void ViewController::setRightItems(const QList<BarButtonItem *> &items)
{
    m_rightItems = items;
    emit barItemsChanged();
}

void ViewController::loadViewIfNeeded()
{
    if (m_loaded)
        return;
    m_loaded = true;
    viewDidLoad();
}

NavigationController *ViewController::navigationController() const
{
    // A child screen (a tab) belongs to the stack of the screen that holds it.
    for (const QObject *object = this; object; object = object->parent())
        if (const auto *controller = qobject_cast<const ViewController *>(object); controller && controller->m_navigationController)
            return qobject_cast<NavigationController *>(controller->m_navigationController.data());
    return nullptr;
}

void ViewController::setNavigationController(NavigationController *controller)
{
    m_navigationController = controller;
}

void ViewController::popBack()
{
    if (NavigationController *navigation = navigationController())
        navigation->popViewController(true);
}

void ViewController::showBackButton()
{
    auto *back = new BarButtonItem(QStringLiteral("back"), IconFont::back + QStringLiteral("   "), BarButtonItem::iconFont(18), this);
    connect(back, &BarButtonItem::triggered, this, &ViewController::popBack);
    setLeftItems({back});
}
