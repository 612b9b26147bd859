#include "presentation/FocusRingItem.h"

#include <QPainter>
#include <QPen>

FocusRingItem::FocusRingItem(QQuickItem *parent)
    : QQuickPaintedItem(parent)
{
    setObjectName(QStringLiteral("focusRing"));
    setAntialiasing(true);
    // Above every screen, sheet and drawer; it never takes a touch.
    setZ(1e6);
    setAcceptedMouseButtons(Qt::NoButton);
    setVisible(false);
}

void FocusRingItem::paint(QPainter *painter)
{
    painter->setRenderHint(QPainter::Antialiasing);
    const QRectF outer = boundingRect().adjusted(1.5, 1.5, -1.5, -1.5);
    painter->setPen(QPen(QColor(0x2b, 0x1a, 0x12), 3));
    painter->drawRoundedRect(outer, 6, 6);
    painter->setPen(QPen(Qt::white, 2));
    painter->drawRoundedRect(outer.adjusted(2.5, 2.5, -2.5, -2.5), 4, 4);
}
