#include "Theme.h"

#include "presentation/Globals.h"
#include "richtext/FontRegistry.h"
#include "richtext/IconFont.h"
#include "richtext/RichTextLayout.h"

Theme::Theme(QObject *parent)
    : QObject(parent)
{
    using ColorOf = const Color &(*)();
    static const std::pair<const char *, ColorOf> colors[] = {
        {"tabTitleColor", Globals::tabTitleColor},
        {"tabTitleSelectedColor", Globals::tabTitleSelectedColor},
        {"selectedRowColor", Globals::selectedRowColor},
        {"unselectedRowColor", Globals::unselectedRowColor},
        {"unselectedIconColor", Globals::unselectedIconColor},
        {"barTintColor", Globals::barTintColor},
        {"swipeReserveColor", Globals::swipeReserveColor},
        {"swipeCallColor", Globals::swipeCallColor},
        {"swipeDeleteColor", Globals::swipeDeleteColor},
        {"filtersDimColor", Globals::filtersDimColor},
        {"savedColor", Globals::savedColor},
        {"warningIconColor", Globals::warningIconColor},
        {"actionArrowColor", Globals::actionArrowColor},
        {"activeFiltersColor", Globals::activeFiltersColor},
        {"mapContrastColor", Globals::mapContrastColor},
        {"settingsTextColor", Globals::settingsTextColor},
    };
    for (const auto &[name, color] : colors)
        m_colors.insert(QString::fromLatin1(name), RichTextLayout::qcolor(color()));

    using FontOf = const RunFont &(*)();
    static const std::pair<const char *, FontOf> fonts[] = {
        {"iconFont", Globals::iconFont}, {"bigIconFont", Globals::bigIconFont}, {"lightFont", Globals::lightFont},
        {"boldFont", Globals::boldFont}, {"tabFont", Globals::tabFont},
    };
    for (const auto &[name, font] : fonts)
        m_fonts.insert(QString::fromLatin1(name), RichTextLayout::qfont(font()));

    for (const IconFont::Glyph &glyph : IconFont::all())
        m_icons.insert(QString::fromLatin1(glyph.name), *glyph.text);
}

QFont Theme::font(const QString &name, double size) const
{
    const auto face = FontRegistry::shared().face(name);
    return RichTextLayout::qfont(RunFont{name, face.value_or(FontFace{name}), size});
}
