#include "SideDrawer.h"

#include "presentation/NavigationController.h"

#include <cmath>

SideDrawer::SideDrawer(NavigationController *content, QObject *menu, QObject *parent)
    : QObject(parent)
    , m_content(content)
    , m_menu(menu)
{
}

void SideDrawer::setOffset(qreal offset, int durationMs)
{
    m_offset = offset;
    m_duration = durationMs;
    emit offsetChanged();
}

void SideDrawer::addMenuControllerView()
{
    if (m_menuViewPresent)
        return;
    m_menuViewPresent = true;
    emit stateChanged();
}

// `initialVelocity` is the spring's start for a platform that animates with springs; the view
// here eases out over `duration` instead.
void SideDrawer::showMenuAnimated(bool animated, double duration, double)
{
    addMenuControllerView();
    m_recognizersAttached = true;
    m_shadowOpacity = 0.5;
    // A tap on the content must reach the drawer, not a control of the screen.
    m_contentInteractive = false;
    emit stateChanged();
    setOffset(m_menuWidth, animated ? int(std::lround(duration * 1000)) : 0);
}

void SideDrawer::hideMenuAnimated(bool animated)
{
    m_recognizersAttached = false;
    m_contentInteractive = true;
    emit stateChanged();
    setOffset(0, animated ? 250 : 0);
    if (!animated)
        hideAnimationFinished();
}

void SideDrawer::hideAnimationFinished()
{
    if (m_offset != 0)
        return; // the drawer was opened again meanwhile
    m_menuViewPresent = false;
    m_shadowOpacity = 0;
    emit stateChanged();
}

void SideDrawer::tapRecognized()
{
    if (!tapGestureEnabled || !m_recognizersAttached)
        return;
    if (isMenuVisible())
        hideMenuAnimated(true);
    else
        showMenuAnimated(true);
}

void SideDrawer::panBegan()
{
    if (!panGestureEnabled || !m_recognizersAttached)
        return;
    addMenuControllerView();
}

void SideDrawer::panChanged(qreal position)
{
    if (!panGestureEnabled || !m_recognizersAttached)
        return;
    setOffset(std::max<qreal>(position, 0), 0); // the content can't go left of its place
}

void SideDrawer::panEnded(qreal position, qreal velocity)
{
    if (!panGestureEnabled || !m_recognizersAttached)
        return;
    const qreal t = position;
    // Open on a flick to the right, or when not flicked left and past a third of the way.
    if (velocity > 5 || (velocity >= -1 && t > m_menuWidth * 0.33))
        showMenuAnimated(true, 0.165, velocity / std::abs(m_menuWidth - t));
    else
        hideMenuAnimated(true);
}
