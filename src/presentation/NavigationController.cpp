#include "NavigationController.h"

NavigationController::NavigationController(QObject *parent)
    : QObject(parent)
{
}

void NavigationController::adopt(ViewController *controller)
{
    controller->setNavigationController(this);
    controller->loadViewIfNeeded();
}

void NavigationController::changed(bool animated)
{
    m_animated = animated;
    if (ViewController *top = topViewController())
        top->viewWillAppear();
    emit stackChanged();
}

void NavigationController::setViewControllers(const QList<ViewController *> &controllers, bool animated)
{
    if (ViewController *top = topViewController())
        top->viewWillDisappear();
    m_stack.clear();
    for (ViewController *controller : controllers) {
        if (!controller)
            continue;
        adopt(controller);
        m_stack.append(controller);
    }
    changed(animated);
}

void NavigationController::pushViewController(ViewController *controller, bool animated)
{
    if (!controller)
        return;
    if (ViewController *top = topViewController())
        top->viewWillDisappear();
    adopt(controller);
    m_stack.removeAll(controller); // a screen kept for good may come back; it is never twice on the stack
    m_stack.append(controller);
    changed(animated);
}

void NavigationController::popViewController(bool animated)
{
    if (m_stack.size() < 2)
        return;
    m_stack.takeLast()->viewWillDisappear();
    changed(animated);
}

void NavigationController::popToRootViewController(bool animated)
{
    if (m_stack.size() < 2)
        return;
    m_stack.last()->viewWillDisappear();
    m_stack.resize(1);
    changed(animated);
}

void NavigationController::presentViewController(ViewController *controller, bool animated, const Presentation &presentation)
{
    if (!controller)
        return;
    adopt(controller);
    m_presented = controller;
    m_presentation = presentation;
    m_animated = animated;
    controller->viewWillAppear();
    emit presentationChanged();
}

void NavigationController::dismissViewController(bool animated)
{
    if (!m_presented)
        return;
    m_presented->viewWillDisappear();
    m_presented = nullptr;
    m_animated = animated;
    emit presentationChanged();
}
