#pragma once

#include "ViewController.h"

#include <QList>
#include <QObject>
#include <QPointer>

// A stack of screens, drawn by NavigationView.qml as a StackView under a navigation bar, and at
// most one screen presented modally above it as a sheet rising from the bottom.
class NavigationController : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the application")
    Q_PROPERTY(QList<QObject *> viewControllers READ viewControllerObjects NOTIFY stackChanged)
    Q_PROPERTY(ViewController *topViewController READ topViewController NOTIFY stackChanged)
    Q_PROPERTY(ViewController *presentedViewController READ presentedViewController NOTIFY presentationChanged)
    Q_PROPERTY(bool lastChangeAnimated READ lastChangeAnimated NOTIFY stackChanged)

public:
    explicit NavigationController(QObject *parent = nullptr);

    QList<ViewController *> viewControllers() const { return m_stack; }
    ViewController *topViewController() const { return m_stack.isEmpty() ? nullptr : m_stack.last(); }
    ViewController *presentedViewController() const { return m_presented; }
    bool lastChangeAnimated() const { return m_animated; }

    // Controllers stay owned by whoever made them: screens built once are kept for good.
    void setViewControllers(const QList<ViewController *> &controllers, bool animated);
    Q_INVOKABLE void pushViewController(ViewController *controller, bool animated);
    Q_INVOKABLE void popViewController(bool animated);
    Q_INVOKABLE void popToRootViewController(bool animated);

    // A sheet of `height` logical pixels from the bottom (0: the whole screen) over a dimming
    // colour; dismissing clears it.
    void presentViewController(ViewController *controller, bool animated, qreal height = 0);
    Q_INVOKABLE void dismissViewController(bool animated);
    Q_INVOKABLE qreal presentedHeight() const { return m_presentedHeight; }

signals:
    void stackChanged();
    void presentationChanged();

private:
    QList<QObject *> viewControllerObjects() const { return {m_stack.begin(), m_stack.end()}; }
    void adopt(ViewController *controller);
    void changed(bool animated);

    QList<ViewController *> m_stack;
    QPointer<ViewController> m_presented;
    qreal m_presentedHeight = 0;
    bool m_animated = false;
};
