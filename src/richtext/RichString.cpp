#include "richtext/RichString.h"

#include "platform/Logging.h"
#include "richtext/StringParser.h"

#include <QLocale>
#include <QRegularExpression>

namespace {
// Made once per process. Unicode properties make \w, \s and \d match beyond ASCII, as the
// original regular expression engine does; "." stops at a line end, so a rule is one line.
const QRegularExpression &rulePattern()
{
    static const QRegularExpression pattern(QStringLiteral("\\s*([\\w-]+)\\s*\\{(.*?)\\}"),
                                            QRegularExpression::UseUnicodePropertiesOption);
    return pattern;
}

const QRegularExpression &declarationPattern()
{
    static const QRegularExpression pattern(QStringLiteral("\\s*([\\w-]+):\\s+(.*?);"),
                                            QRegularExpression::UseUnicodePropertiesOption);
    return pattern;
}

std::optional<TextAlignment> alignmentWord(const QString &word)
{
    if (word == QLatin1String("left"))
        return TextAlignment::Left;
    if (word == QLatin1String("center"))
        return TextAlignment::Center;
    if (word == QLatin1String("right"))
        return TextAlignment::Right;
    if (word == QLatin1String("justified"))
        return TextAlignment::Justified;
    if (word == QLatin1String("natural"))
        return TextAlignment::Natural;
    return std::nullopt;
}

void diagnostic(const QString &line) { qCDebug(lcRichText).noquote() << line; }
}

StyleSpec StyleSpec::inheriting(const StyleSpec &parent) const
{
    return {fontName ? fontName : parent.fontName,
            fontSize ? fontSize : parent.fontSize,
            color ? color : parent.color,
            alignment ? alignment : parent.alignment,
            line_height ? line_height : parent.line_height,
            baseline_offset ? baseline_offset : parent.baseline_offset};
}

QString AttributedString::string() const
{
    QString text;
    for (const TextRun &run : runs)
        text += run.text;
    return text;
}

RichString::RichString(const QStringList &styles)
{
    parseStyleSheet(styles.join(QString()));
}

void RichString::parseStyleSheet(const QString &text)
{
    if (!rulePattern().isValid())
        return;
    // A repeated selector replaces the earlier rule whole: later sheets win per selector.
    auto matches = rulePattern().globalMatch(text);
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        m_styleMap.insert(match.captured(1), parseStyleBody(match.captured(2)));
    }
}

StyleSpec RichString::parseStyleBody(const QString &body)
{
    StyleSpec rule;
    if (!declarationPattern().isValid())
        return rule;
    const auto number = [](const QString &value, std::optional<double> &field) {
        if (const auto parsed = parseNumber(value))
            field = parsed; // a bad number keeps what the field had
    };
    auto matches = declarationPattern().globalMatch(body);
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        const QString property = match.captured(1);
        const QString value = match.captured(2);
        if (property == QLatin1String("font-name"))
            rule.fontName = value;
        else if (property == QLatin1String("font-size"))
            number(value, rule.fontSize);
        else if (property == QLatin1String("color"))
            rule.color = parseColor(value); // a bad colour clears an earlier good one
        else if (property == QLatin1String("align") || property == QLatin1String("text-alignment")
                 || property == QLatin1String("alignment")) {
            if (const auto alignment = alignmentWord(value))
                rule.alignment = alignment;
        } else if (property == QLatin1String("line-height"))
            number(value, rule.line_height);
        else if (property == QLatin1String("baseline-offset"))
            number(value, rule.baseline_offset);
    }
    return rule;
}

std::optional<double> RichString::parseNumber(const QString &text)
{
    // Sheets are written with "." whatever the device's locale, so the C locale reads them.
    qsizetype i = 0;
    if (i < text.size() && (text[i] == QLatin1Char('-') || text[i] == QLatin1Char('+')))
        ++i;
    qsizetype digits = 0;
    bool point = false;
    for (; i < text.size(); ++i) {
        const QChar c = text[i];
        if (c >= QLatin1Char('0') && c <= QLatin1Char('9'))
            ++digits;
        else if (c == QLatin1Char('.') && !point)
            point = true;
        else
            return std::nullopt;
    }
    if (digits == 0)
        return std::nullopt;
    bool ok = false;
    const double value = QLocale::c().toDouble(text.startsWith(QLatin1Char('+')) ? text.mid(1) : text, &ok);
    if (!ok)
        return std::nullopt;
    return double(float(value)); // a 32-bit float, as the layout engine takes it
}

std::optional<Color> RichString::parseColor(const QString &value)
{
    if (const auto named = Color::named(value))
        return named;
    if (value.startsWith(QLatin1String("rgb"))) {
        // Compiled per call by design: functional colours are rare and only met in sheets.
        const QRegularExpression pattern(
            QStringLiteral("rgba?\\s*\\((\\d+)\\s*,\\s*(\\d+)\\s*,\\s*(\\d+)(\\s*,\\s*(\\d+)\\s*)?\\)"),
            QRegularExpression::UseUnicodePropertiesOption);
        const QRegularExpressionMatch match = pattern.match(value);
        if (!match.hasMatch()) {
            diagnostic(QStringLiteral("did not understand rgb color value: ") + value);
            return std::nullopt;
        }
        double components[4] = {0, 0, 0, 255};
        const int groups[4] = {1, 2, 3, 5};
        for (int i = 0; i < 4; ++i) {
            if (match.capturedStart(groups[i]) < 0)
                continue; // alpha absent: stays 255
            const auto number = parseNumber(match.captured(groups[i]));
            if (!number) {
                diagnostic(QStringLiteral("Error parsing number in ") + value);
                return std::nullopt;
            }
            components[i] = *number;
        }
        return Color{components[0] / 255.0, components[1] / 255.0, components[2] / 255.0, components[3] / 255.0};
    }
    if (value.startsWith(QLatin1Char('#')))
        return parseHexColor(value);
    diagnostic(QStringLiteral("did not understand color value: ") + value);
    return std::nullopt;
}

std::optional<Color> RichString::parseHexColor(const QString &value)
{
    if (!value.startsWith(QLatin1Char('#')) || (value.size() != 7 && value.size() != 9))
        return std::nullopt;
    int bytes[4] = {0, 0, 0, 255};
    for (qsizetype i = 1; i < value.size(); ++i) {
        const char16_t c = value[i].toLower().unicode();
        int digit;
        if (c >= u'0' && c <= u'9')
            digit = c - u'0';
        else if (c >= u'a' && c <= u'f')
            digit = c - u'a' + 10;
        else
            return std::nullopt;
        int &byte = bytes[(i - 1) / 2];
        byte = (i % 2 == 1) ? digit << 4 : (byte | digit);
    }
    return Color{bytes[0] / 255.0, bytes[1] / 255.0, bytes[2] / 255.0, bytes[3] / 255.0};
}

AttributedString RichString::render(const QString &markup) const
{
    StringParser parser(markup, *this);
    parser.parse();
    return parser.attributedString();
}
