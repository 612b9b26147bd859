#pragma once

#include <QQuickPaintedItem>

// The ring round the control that has the keys: a white line inside a dark one, so it shows on
// the red bar, on white rows and over pictures alike.
class FocusRingItem : public QQuickPaintedItem
{
    Q_OBJECT
public:
    explicit FocusRingItem(QQuickItem *parent);
    void paint(QPainter *painter) override;
};
