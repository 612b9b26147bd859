#include "BarButtonItem.h"

#include "richtext/FontRegistry.h"
#include "richtext/IconFont.h"
#include "richtext/RichTextLayout.h"

QFont BarButtonItem::iconFont(double size)
{
    const auto face = FontRegistry::shared().face(IconFont::fontName);
    return RichTextLayout::qfont(RunFont{IconFont::fontName, face.value_or(FontFace{IconFont::fontName}), size});
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
