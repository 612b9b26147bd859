#include "presentation/Globals.h"

#include "platform/FileAttributes.h"
#include "platform/Localize.h"
#include "platform/Logging.h"
#include "platform/OperationQueue.h"
#include "platform/UserDefaults.h"
#include "richtext/FontRegistry.h"
#include "richtext/IconFont.h"

namespace {

RunFont makeFont(const QString &name, double size)
{
    const auto face = FontRegistry::shared().face(name);
    if (!face)
        qCCritical(lcApp) << "The font" << name << "can't be made; text set in it falls back to the label font";
    return RunFont{name, face.value_or(FontFace{name}), size};
}

Color named(const char *name)
{
    return *Color::named(QString::fromLatin1(name));
}

}

OperationQueue &Globals::backgroundQueue()
{
    static OperationQueue queue;
    return queue;
}

QString Globals::siteURL()
{
    QString site = UserDefaults::standard().stringForKey(QStringLiteral("site-url"));
    if (site.isEmpty())
        site = QStringLiteral("https://velmora.app/");
    return site.endsWith(QLatin1Char('/')) ? site : site + QLatin1Char('/');
}

#define VELMORA_FONT(member, name, size)                                                                      \
    const RunFont &Globals::member()                                                                     \
    {                                                                                                    \
        static const RunFont font = makeFont(name, size);                                                \
        return font;                                                                                     \
    }
VELMORA_FONT(iconFont, IconFont::fontName, 18)
VELMORA_FONT(bigIconFont, IconFont::fontName, 33)
VELMORA_FONT(lightFont, QStringLiteral("OpenSans-Light"), 18)
VELMORA_FONT(boldFont, QStringLiteral("OpenSans-Bold"), 18)
VELMORA_FONT(tabFont, QStringLiteral("OpenSans-Semibold"), 12)
#undef VELMORA_FONT

#define VELMORA_COLOR(member, make)                                                                          \
    const Color &Globals::member()                                                                       \
    {                                                                                                    \
        static const Color color = make;                                                                 \
        return color;                                                                                    \
    }
VELMORA_COLOR(tabTitleColor, Color::fromHtml(QStringLiteral("#5e190b")))
VELMORA_COLOR(tabTitleSelectedColor, named("white"))
VELMORA_COLOR(selectedRowColor, Color::fromHtml(QStringLiteral("#68B213")))
VELMORA_COLOR(unselectedRowColor, Color::fromHtml(QStringLiteral("#A29476")))
VELMORA_COLOR(unselectedIconColor, Color::fromHtml(QStringLiteral("#f0ede8")))
VELMORA_COLOR(barTintColor, Color::fromHtml(QStringLiteral("#d95b43")))
VELMORA_COLOR(swipeCallColor, Color::fromHtml(QStringLiteral("#9acb22")))
VELMORA_COLOR(swipeDeleteColor, named("red"))
VELMORA_COLOR(filtersDimColor, Color::fromHtml(QStringLiteral("#7f1616aa")))
VELMORA_COLOR(savedColor, Color::fromHtml(QStringLiteral("#9acb22")))
VELMORA_COLOR(warningIconColor, Color::fromHtml(QStringLiteral("#fdad0e")))
VELMORA_COLOR(actionArrowColor, Color::fromHtml(QStringLiteral("#79BC16")))
VELMORA_COLOR(activeFiltersColor, Color::fromHtml(QStringLiteral("#94cf3c")))
VELMORA_COLOR(mapContrastColor, named("white"))
VELMORA_COLOR(settingsTextColor, Color::fromHtml(QStringLiteral("#897C5E")))
#undef VELMORA_COLOR

const Color &Globals::swipeReserveColor()
{
    return barTintColor();
}

QString localizedString(const QString &language, const QString &key)
{
    return Localize::textIn(language, key);
}

void excludeFromBackup(const QString &path)
{
    if (!markExcludedFromBackup(path))
        qCDebug(lcPlatform).noquote() << "Excluding " + path + " from backups failed";
}
