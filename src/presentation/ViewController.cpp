#include "ViewController.h"

#include "BarButtonItem.h"
#include "NavigationController.h"

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
    return qobject_cast<NavigationController *>(m_navigationController.data());
}

void ViewController::setNavigationController(NavigationController *controller)
{
    m_navigationController = controller;
}
