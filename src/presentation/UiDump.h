#pragma once

#include <QByteArray>
#include <QList>
#include <QRectF>
#include <QString>

class QQuickItem;
class QQuickWindow;

// What assistive technology would find on screen: every visible item that has an accessible
// name or shows text, in reading order. A control or glyph a user can see but that nothing
// names comes with an empty name, so that a test can refuse it.
struct UiNode {
    QString role; // QAccessible's role name: "Button", "StaticText", "ListItem"...
    QString name;
    QRectF rect;  // in the window
};

QList<UiNode> dumpUi(QQuickWindow *window);
// One JSON array: {"role", "name", "x", "y", "w", "h"} per node.
QByteArray uiDumpJson(const QList<UiNode> &nodes);
