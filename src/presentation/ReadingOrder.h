#pragma once

#include <QObject>
#include <QPointer>
#include <QQmlEngine>
#include <QList>

class QQuickItem;

// Keeps a list's rows in the order they stand on screen among their siblings. A list reuses its
// rows and makes new ones as they are needed, so their order as children (the order a screen
// reader reads them in) drifts from top to bottom; a row that moves asks for its list to be put
// back in order, once per turn of the event loop whatever the number of rows that moved.
class ReadingOrder : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
public:
    explicit ReadingOrder(QObject *parent = nullptr);
    Q_INVOKABLE void sortSoon(QQuickItem *container);
    // Restacks `container`'s children by their top edge (then their left one).
    static void sort(QQuickItem *container);

private:
    QList<QPointer<QQuickItem>> m_pending;
};
