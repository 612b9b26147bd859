#pragma once

#include <QList>
#include <QRect>

class QAccessibleInterface;
class QQuickWindow;

// What assistive technology finds on screen: the window's accessible objects, the very tree a
// screen reader gets over the accessibility bus, those shown in the window, in reading order.
// The dump of the interface and the keyboard's Tab order both read it, so what a test checks, what
// a reader says and where Tab goes are one list.
struct ShownAccessible {
    QAccessibleInterface *node = nullptr;
    QRect rect; // in the window, cut to it
};

// Unnamed containers a reader passes through without a word are left out.
QList<ShownAccessible> shownAccessibles(QQuickWindow *window);

// Whether the keys may stop on it: something a reader can press or toggle, or a text field.
bool isKeyboardStop(QAccessibleInterface *node);
