#pragma once

#include "richtext/AttributedString.h"
#include "richtext/StyleSpec.h"

#include <QHash>
#include <QStringList>

// A parsed style sheet and the renderer of markup written against it. A screen makes one when it
// is created and renders every cell from it: the sheet is parsed once, a render never parses it.
class RichString
{
public:
    // The strings are joined, in order, and parsed as one sheet.
    explicit RichString(const QStringList &styles = {});

    const QHash<QString, StyleSpec> &styleMap() const { return m_styleMap; }

    // Markup is "<body>...</body>"; each tag names a rule of this sheet.
    AttributedString render(const QString &markup) const;

    void parseStyleSheet(const QString &text);
    static StyleSpec parseStyleBody(const QString &body);
    // The whole colour grammar: named colours, rgb()/rgba() on the 0..255 scale, the "#" forms.
    static std::optional<Color> parseColor(const QString &value);
    // "#rrggbb" and "#rrggbbaa" alone.
    static std::optional<Color> parseHexColor(const QString &value);
    // A sheet number: optional sign, digits, optional fraction, read the same in every locale.
    static std::optional<double> parseNumber(const QString &text);

private:
    QHash<QString, StyleSpec> m_styleMap;
};
