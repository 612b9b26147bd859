#include "richtext/Color.h"

#include "richtext/RichString.h"

#include <QHash>

Color Color::fromHtml(const QString &text)
{
    return RichString::parseHexColor(text).value_or(Color{0, 0, 0, 1});
}

std::optional<Color> Color::named(const QString &name)
{
    // The grey levels and the mixed colours are the phone platform's class colours.
    static const QHash<QString, Color> table = {
        {QStringLiteral("black"), {0, 0, 0, 1}},
        {QStringLiteral("darkGray"), {1.0 / 3, 1.0 / 3, 1.0 / 3, 1}},
        {QStringLiteral("lightGray"), {2.0 / 3, 2.0 / 3, 2.0 / 3, 1}},
        {QStringLiteral("white"), {1, 1, 1, 1}},
        {QStringLiteral("gray"), {0.5, 0.5, 0.5, 1}},
        {QStringLiteral("red"), {1, 0, 0, 1}},
        {QStringLiteral("green"), {0, 1, 0, 1}},
        {QStringLiteral("blue"), {0, 0, 1, 1}},
        {QStringLiteral("cyan"), {0, 1, 1, 1}},
        {QStringLiteral("yellow"), {1, 1, 0, 1}},
        {QStringLiteral("magenta"), {1, 0, 1, 1}},
        {QStringLiteral("orange"), {1, 0.5, 0, 1}},
        {QStringLiteral("purple"), {0.5, 0, 0.5, 1}},
        {QStringLiteral("brown"), {0.6, 0.4, 0.2, 1}},
        {QStringLiteral("clear"), {0, 0, 0, 0}},
    };
    const auto it = table.constFind(name);
    if (it == table.constEnd())
        return std::nullopt;
    return *it;
}
