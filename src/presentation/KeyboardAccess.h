#pragma once

#include <QObject>
#include <QPointer>

class QQuickItem;
class QQuickWindow;
class FocusRingItem;

// The keyboard's way through a window, for people who use no pointer:
// - Tab and Shift+Tab walk the controls a screen reader can act on, in its reading order (one
//   list, read from the accessible tree), and leave text fields rather than type into them;
// - Return, Enter or Space on a control that takes no keys of its own does its accessible press
//   or toggle, the very handler a reader's action and a tap call;
// - the arrows, where no list or page takes them, walk the same list;
// - a ring shows where the keys are, from the first key until a finger or the mouse comes back.
class KeyboardAccess : public QObject
{
    Q_OBJECT
public:
    explicit KeyboardAccess(QQuickWindow *window);
    ~KeyboardAccess() override;

    // Moves the keys to the next (or previous) control; false when the window has none.
    bool moveFocus(bool forward);
    // Does the press (or toggle) of the control with the keys; false when it has neither.
    bool activateFocused();
    QQuickItem *ring() const;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    // Scrolls `view` on by most of its height and gives the first control it now shows after
    // (or before) `from`; null when it can scroll no further.
    QQuickItem *revealNext(QQuickItem *view, QQuickItem *from, bool forward);
    void showRing(bool shown);
    void placeRing();

    QPointer<QQuickWindow> m_window;
    // The window's root item owns the ring and may delete it first as the window goes.
    QPointer<FocusRingItem> m_ring;
    bool m_keyboardInUse = false;
};
