#pragma once

#include <QObject>
#include <QtQml/qqmlregistration.h>

#include "presentation/NavigationController.h"

// The main interface: a content area (the navigation stack whose root is the search screen)
// that slides right by menuWidth to uncover the side menu. This object holds the drawer's state
// and its gesture rules; SideDrawer.qml animates `offset` over `animationDuration` and feeds
// taps and drags back in.
class SideDrawer : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the application")
    Q_PROPERTY(qreal offset READ offset NOTIFY offsetChanged)
    Q_PROPERTY(int animationDuration READ animationDuration NOTIFY offsetChanged)
    Q_PROPERTY(bool menuViewPresent READ menuViewPresent NOTIFY stateChanged)
    Q_PROPERTY(bool recognizersAttached READ recognizersAttached NOTIFY stateChanged)
    Q_PROPERTY(bool contentInteractive READ contentInteractive NOTIFY stateChanged)
    Q_PROPERTY(qreal shadowOpacity READ shadowOpacity NOTIFY stateChanged)
    Q_PROPERTY(qreal menuWidth READ menuWidth CONSTANT)
    Q_PROPERTY(NavigationController *contentController READ contentController CONSTANT)
    Q_PROPERTY(QObject *menuController READ menuController CONSTANT)

public:
    SideDrawer(NavigationController *content, QObject *menu, QObject *parent = nullptr);

    static constexpr qreal defaultMenuWidth = 210;

    qreal offset() const { return m_offset; }
    int animationDuration() const { return m_duration; }
    bool menuViewPresent() const { return m_menuViewPresent; }
    bool recognizersAttached() const { return m_recognizersAttached; }
    bool contentInteractive() const { return m_contentInteractive; }
    qreal shadowOpacity() const { return m_shadowOpacity; }
    qreal menuWidth() const { return m_menuWidth; }
    NavigationController *contentController() const { return m_content; }
    QObject *menuController() const { return m_menu; }

    bool tapGestureEnabled = true;
    bool panGestureEnabled = true;

    // Open when the content stands away from its place.
    Q_INVOKABLE bool isMenuVisible() const { return m_offset != 0; }
    Q_INVOKABLE void showMenuAnimated(bool animated) { showMenuAnimated(animated, 0.25, 1.0); }
    void showMenuAnimated(bool animated, double duration, double initialVelocity);
    Q_INVOKABLE void hideMenuAnimated(bool animated);
    // Called by the view when the hide animation has finished.
    Q_INVOKABLE void hideAnimationFinished();

    Q_INVOKABLE void tapRecognized();
    // A drag on the open drawer. `position` is where the finger puts the content: its offset when
    // the drag began plus the drag's translation; `velocity` in points per second.
    Q_INVOKABLE void panBegan();
    Q_INVOKABLE void panChanged(qreal position);
    Q_INVOKABLE void panEnded(qreal position, qreal velocity);

signals:
    void offsetChanged();
    void stateChanged();

private:
    void setOffset(qreal offset, int durationMs);
    void addMenuControllerView();

    NavigationController *m_content;
    QObject *m_menu;
    qreal m_menuWidth = defaultMenuWidth;
    qreal m_offset = 0;
    int m_duration = 0;
    bool m_menuViewPresent = false;
    bool m_recognizersAttached = false;
    bool m_contentInteractive = true;
    qreal m_shadowOpacity = 0;
};
