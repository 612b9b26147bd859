#include "BarButtonItem.h"

#include "Globals.h"
#include "richtext/RichTextLayout.h"

QFont BarButtonItem::iconFont(double size)
{
    RunFont font = Globals::iconFont();
    font.size = size;
    return RichTextLayout::qfont(font);
}

BarButtonItem::BarButtonItem(const QString &name, const QString &title, const QFont &font, QObject *parent)
    : QObject(parent)
    , m_title(title)
    , m_font(font)
{
    setObjectName(name);
}

void BarButtonItem::setTitle(const QString &title)
{
    m_title = title;
    emit changed();
}

void BarButtonItem::setFont(const QFont &font)
{
    m_font = font;
    emit changed();
}

void BarButtonItem::setTintColor(const QColor &color)
{
    m_tint = color;
    emit changed();
}

void BarButtonItem::setBackgroundColor(const QColor &color)
{
    m_background = color;
    emit changed();
}

void BarButtonItem::setBusy(bool busy)
{
    m_busy = busy;
    emit changed();
}
