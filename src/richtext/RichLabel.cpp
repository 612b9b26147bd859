#include "richtext/RichLabel.h"

#include <QPainter>

RichLabel::RichLabel(QQuickItem *parent)
    : QQuickPaintedItem(parent)
{
    setAntialiasing(true);
    m_layout.setFallbackFont(m_font);
    m_layout.setFallbackColor(m_color);
}

void RichLabel::setText(const QVariant &text)
{
    AttributedString value = text.value<AttributedString>();
    if (value == m_text)
        return;
    m_text = std::move(value);
    m_layout.setText(m_text);
    emit textChanged();
    relayout();
}

void RichLabel::setFont(const QFont &font)
{
    if (font == m_font)
        return;
    m_font = font;
    m_layout.setFallbackFont(font);
    emit fontChanged();
    relayout();
}

void RichLabel::setColor(const QColor &color)
{
    if (color == m_color)
        return;
    m_color = color;
    m_layout.setFallbackColor(color);
    emit colorChanged();
    relayout();
}

void RichLabel::setMaximumLineCount(int lines)
{
    if (lines == m_maximumLineCount)
        return;
    m_maximumLineCount = lines;
    m_layout.setMaximumLineCount(lines);
    emit maximumLineCountChanged();
    relayout();
}

void RichLabel::geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry)
{
    QQuickPaintedItem::geometryChange(newGeometry, oldGeometry);
    if (newGeometry.width() != oldGeometry.width())
        relayout();
}

void RichLabel::relayout()
{
    // The natural width is what the label asks for; its height follows the width it gets.
    const QSizeF natural = m_layout.naturalSize();
    setImplicitWidth(natural.width());
    const QSizeF laidOut = m_layout.layout(widthValid() || width() > 0 ? width() : natural.width());
    setImplicitHeight(laidOut.height());
    emit layoutChanged();
    update();
}

void RichLabel::paint(QPainter *painter)
{
    m_layout.draw(painter);
}
