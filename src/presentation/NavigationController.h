#pragma once

#include "Presentation.h"
#include "ViewController.h"

#include <QList>
#include <QObject>
#include <QPointer>

// A stack of screens, drawn by NavigationView.qml as a StackView under a navigation bar, and at
// most one screen presented modally above it, coming in from the edge its presentation names.
class NavigationController : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the application")
    Q_PROPERTY(QList<QObject *> viewControllers READ viewControllerObjects NOTIFY stackChanged)
    Q_PROPERTY(ViewController *topViewController READ topViewController NOTIFY stackChanged)
    Q_PROPERTY(ViewController *presentedViewController READ presentedViewController NOTIFY presentationChanged)
    Q_PROPERTY(bool lastChangeAnimated READ lastChangeAnimated NOTIFY stackChanged)
    Q_PROPERTY(QString presentedEdge READ presentedEdge NOTIFY presentationChanged)
    Q_PROPERTY(qreal presentedExtent READ presentedExtent NOTIFY presentationChanged)
    Q_PROPERTY(QColor dimmingColor READ dimmingColor NOTIFY presentationChanged)
    Q_PROPERTY(int presentationDuration READ presentationDuration NOTIFY presentationChanged)

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

    // Presents a screen over the stack as `presentation` says; dismissing clears it. A tap on
    // the dimmed area, or a swipe towards the edge it came from, dismisses it.
    void presentViewController(ViewController *controller, bool animated, const Presentation &presentation = Presentation::bottomSheet());
    Q_INVOKABLE void dismissViewController(bool animated);
    const Presentation &presentation() const { return m_presentation; }
    QString presentedEdge() const { return m_presentation.edgeName(); }
    qreal presentedExtent() const { return m_presentation.extent; }
    QColor dimmingColor() const { return m_presentation.dimming; }
    int presentationDuration() const { return m_presentation.duration; }

signals:
    void stackChanged();
    void presentationChanged();

private:
    QList<QObject *> viewControllerObjects() const { return {m_stack.begin(), m_stack.end()}; }
    void adopt(ViewController *controller);
    void changed(bool animated);

    QList<ViewController *> m_stack;
    QPointer<ViewController> m_presented;
    Presentation m_presentation;
    bool m_animated = false;
};
