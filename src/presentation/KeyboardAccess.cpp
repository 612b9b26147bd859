#include "presentation/KeyboardAccess.h"

#include "presentation/AccessibleTree.h"
#include "presentation/FocusRingItem.h"

#include <QAccessible>
#include <QKeyEvent>
#include <QQuickItem>
#include <QQuickWindow>

#include <algorithm>

namespace {

QQuickItem *itemOf(QAccessibleInterface *node) { return qobject_cast<QQuickItem *>(node ? node->object() : nullptr); }

// The controls the keys can stop on, as the reader lists them; a control must stand mostly in
// the window to be a stop.
QList<QQuickItem *> keyboardStops(QQuickWindow *window)
{
    QList<QQuickItem *> stops;
    const QRect area(QPoint(), window->size());
    for (const ShownAccessible &shown : shownAccessibles(window)) {
        QQuickItem *item = itemOf(shown.node);
        if (item && area.contains(shown.rect.center()) && !shown.rect.isEmpty() && isKeyboardStop(shown.node))
            stops.append(item);
    }
    return stops;
}

bool holds(QQuickItem *stop, QQuickItem *focus) { return stop == focus || stop->isAncestorOf(focus); }

QQuickItem *enclosingView(QQuickItem *item)
{
    for (QQuickItem *view = item ? item->parentItem() : nullptr; view; view = view->parentItem())
        if (view->inherits("QQuickFlickable"))
            return view;
    return nullptr;
}

// Scrolls a list or page by `by` points within its content; false when it is already at that end.
// The view makes the rows it now shows before this returns.
bool scrollBy(QQuickItem *view, qreal by)
{
    const qreal top = view->property("originY").toReal();
    const qreal bottom = std::max(top, top + view->property("contentHeight").toReal() - view->height());
    const qreal from = view->property("contentY").toReal();
    const qreal to = std::clamp(from + by, top, bottom);
    if (qAbs(to - from) < 1)
        return false;
    view->setProperty("contentY", to);
    view->ensurePolished();
    return true;
}

// Scrolls the nearest list or page so that the whole control shows.
void bringIntoView(QQuickItem *item)
{
    QQuickItem *view = enclosingView(item);
    if (!view)
        return;
    const QRectF rect = item->mapRectToItem(view, item->boundingRect());
    if (rect.top() < 0)
        scrollBy(view, rect.top());
    else if (rect.bottom() > view->height())
        scrollBy(view, std::min(rect.bottom() - view->height(), rect.top()));
}

bool wellInView(QQuickItem *item, QQuickWindow *window)
{
    const QPointF middle = item->mapToScene(QPointF(item->width() / 2, item->height() / 2));
    QQuickItem *view = enclosingView(item);
    const QRectF area = view ? view->mapRectToScene(view->boundingRect()) : QRectF(QPointF(), window->size());
    return area.contains(middle) && QRectF(QPointF(), window->size()).contains(middle);
}

bool doAction(QAccessibleInterface *node)
{
    QAccessibleActionInterface *actions = node ? node->actionInterface() : nullptr;
    if (!actions)
        return false;
    const QStringList names = actions->actionNames();
    const bool togglable = node->role() == QAccessible::CheckBox || node->role() == QAccessible::RadioButton;
    const QString action = togglable && names.contains(QAccessibleActionInterface::toggleAction())
        ? QAccessibleActionInterface::toggleAction()
        : names.contains(QAccessibleActionInterface::pressAction()) ? QAccessibleActionInterface::pressAction()
                                                                     : QAccessibleActionInterface::toggleAction();
    if (!names.contains(action))
        return false;
    actions->doAction(action);
    return true;
}

bool plainKey(const QKeyEvent *key) { return !(key->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)); }

}

KeyboardAccess::KeyboardAccess(QQuickWindow *window)
    : QObject(window)
    , m_window(window)
    , m_ring(new FocusRingItem(window->contentItem()))
{
    window->installEventFilter(this);
    // Keys no control took end at the window's root item.
    window->contentItem()->installEventFilter(this);
    // A reader's "focus" on a control below the fold brings it into view, as Tab does.
    connect(window, &QQuickWindow::activeFocusItemChanged, this, [this] {
        QQuickItem *focus = m_window->activeFocusItem();
        if (focus && focus != m_window->contentItem() && !wellInView(focus, m_window)
            && isKeyboardStop(QAccessible::queryAccessibleInterface(focus)))
            bringIntoView(focus);
        placeRing();
    });
    // Lists scroll and screens slide under the ring; it follows them frame by frame.
    connect(window, &QQuickWindow::afterAnimating, this, [this] {
        if (m_keyboardInUse)
            placeRing();
    });
}

KeyboardAccess::~KeyboardAccess() = default;

QQuickItem *KeyboardAccess::ring() const { return m_ring; }

bool KeyboardAccess::moveFocus(bool forward)
{
    const QList<QQuickItem *> stops = keyboardStops(m_window);
    if (stops.isEmpty())
        return false;
    // The first key after a tap starts from the top: whatever a list gave the focus to unseen
    // is no place to start from.
    QQuickItem *focus = m_keyboardInUse ? m_window->activeFocusItem() : nullptr;
    qsizetype at = -1;
    // The innermost control holding the keys: a field's clear button lies within the field.
    for (qsizetype i = 0; focus && i < stops.size(); ++i)
        if (holds(stops[i], focus) && (at < 0 || stops[at]->isAncestorOf(stops[i])))
            at = i;
    qsizetype next = at < 0 ? (forward ? 0 : stops.size() - 1) : (at + (forward ? 1 : stops.size() - 1)) % stops.size();
    QQuickItem *target = stops[next];
    // Leaving a list or page at the last control it shows: first it scrolls on to the next.
    const bool wraps = at >= 0 && (forward ? next < at : next > at);
    if (QQuickItem *view = at >= 0 ? enclosingView(stops[at]) : nullptr; view && (wraps || !view->isAncestorOf(target))) {
        if (QQuickItem *revealed = revealNext(view, stops[at], forward))
            target = revealed;
    }
    target->forceActiveFocus(Qt::TabFocusReason);
    bringIntoView(target);
    showRing(true);
    return true;
}

QQuickItem *KeyboardAccess::revealNext(QQuickItem *view, QQuickItem *from, bool forward)
{
    if (!scrollBy(view, (forward ? 0.75 : -0.75) * view->height()))
        return nullptr;
    const qreal fromTop = from->mapToScene(QPointF()).y();
    QQuickItem *found = nullptr;
    for (QQuickItem *stop : keyboardStops(m_window)) {
        if (stop == from || !view->isAncestorOf(stop))
            continue;
        const qreal top = stop->mapToScene(QPointF()).y();
        if (forward && top > fromTop)
            return stop;
        if (!forward && top < fromTop)
            found = stop;
    }
    return found;
}

bool KeyboardAccess::activateFocused()
{
    QQuickItem *focus = m_window->activeFocusItem();
    if (!focus)
        return false;
    // The control is the focused item or holds it.
    for (QQuickItem *item = focus; item; item = item->parentItem()) {
        QAccessibleInterface *node = QAccessible::queryAccessibleInterface(item);
        if (isKeyboardStop(node))
            return node->role() != QAccessible::EditableText && doAction(node);
    }
    // A list's own arrow keys give them to a row, which may hold the control rather than be it.
    const QQuickItem *view = focus->parentItem() ? focus->parentItem()->parentItem() : nullptr;
    if (view && view->inherits("QQuickItemView")) {
        for (QQuickItem *stop : keyboardStops(m_window))
            if (focus->isAncestorOf(stop))
                return doAction(QAccessible::queryAccessibleInterface(stop));
    }
    return false;
}

bool KeyboardAccess::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::TouchBegin:
        if (watched == m_window)
            showRing(false);
        return false;
    case QEvent::KeyPress:
        break;
    default:
        return false;
    }
    auto *key = static_cast<QKeyEvent *>(event);
    if (watched == m_window) {
        // Tab is ours before any control sees it: no text field types it, every screen walks.
        if (plainKey(key) && (key->key() == Qt::Key_Tab || key->key() == Qt::Key_Backtab)) {
            const bool forward = key->key() == Qt::Key_Tab && !(key->modifiers() & Qt::ShiftModifier);
            moveFocus(forward);
            return true;
        }
        showRing(true);
        return false;
    }
    if (!plainKey(key))
        return false;
    switch (key->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
        return activateFocused();
    case Qt::Key_Up:
    case Qt::Key_Left:
        return moveFocus(false);
    case Qt::Key_Down:
    case Qt::Key_Right:
        return moveFocus(true);
    default:
        return false;
    }
}

void KeyboardAccess::showRing(bool shown)
{
    if (m_keyboardInUse == shown)
        return;
    m_keyboardInUse = shown;
    placeRing();
}

void KeyboardAccess::placeRing()
{
    if (!m_ring || !m_window)
        return;
    QQuickItem *focus = m_window->activeFocusItem();
    const bool shown = m_keyboardInUse && focus && focus != m_window->contentItem() && focus->isVisible()
        && focus->width() > 0 && focus->height() > 0;
    m_ring->setVisible(shown);
    if (!shown)
        return;
    const QRectF rect = focus->mapRectToItem(m_window->contentItem(), focus->boundingRect());
    if (m_ring->position() != rect.topLeft() || m_ring->size() != rect.size()) {
        m_ring->setPosition(rect.topLeft());
        m_ring->setSize(rect.size());
        m_ring->update();
    }
}
