#pragma once

#include <QByteArray>
#include <QList>
#include <QRectF>
#include <QString>

class QQuickWindow;

// One object of `shownAccessibles` (AccessibleTree.h), as the dump prints it. Anything without a
// name comes with an empty one, so that a test can refuse it.
struct UiNode {
    QString role; // QAccessible's role name: "Button", "StaticText", "ListItem"...
    QString name;
    QRectF rect;  // in the window
};

// Turns accessibility on, as a screen reader does; call before the window is made, so that its
// items make their accessible objects as they are created.
void prepareUiDump();
QList<UiNode> dumpUi(QQuickWindow *window);
// One JSON array: {"role", "name", "x", "y", "w", "h"} per node.
QByteArray uiDumpJson(const QList<UiNode> &nodes);
