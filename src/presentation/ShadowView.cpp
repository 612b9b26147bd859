#include "ShadowView.h"

#include <QPainter>

ShadowView::ShadowView(QQuickItem *parent)
    : QQuickPaintedItem(parent)
{
}

void ShadowView::setBackgroundColor(const QColor &color)
{
    if (!m_defaultBGColor)
        m_defaultBGColor = color;
    emit backgroundColorChanged();
    update();
}

void ShadowView::paint(QPainter *painter)
{
    painter->fillRect(boundingRect(), backgroundColor());
}
