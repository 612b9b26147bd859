#include "richtext/RichString.h"

#include <QLoggingCategory>

#include <gtest/gtest.h>

namespace {
StyleSpec rule(const RichString &sheet, const char *selector)
{
    return sheet.styleMap().value(QString::fromLatin1(selector));
}

// Collects the rich-text diagnostics printed while alive.
class DiagnosticsSpy
{
public:
    DiagnosticsSpy()
    {
        s_lines.clear();
        QLoggingCategory::setFilterRules(QStringLiteral("velmora.richtext.debug=true"));
        m_previous = qInstallMessageHandler([](QtMsgType, const QMessageLogContext &context, const QString &message) {
            if (QLatin1String(context.category) == QLatin1String("velmora.richtext"))
                s_lines.append(message);
        });
    }
    ~DiagnosticsSpy() { qInstallMessageHandler(m_previous); }
    QStringList lines() const { return s_lines; }

private:
    static inline QStringList s_lines;
    QtMessageHandler m_previous;
};
}

// Catches: merging a repeated selector instead of replacing it, and rules found where the
// one-line pattern can't match them.
TEST(StyleSheet, RulesAreOneLineEachAndALaterSelectorReplacesTheEarlier)
{
    const RichString sheet({QStringLiteral("p { font-size: 12; }"), QStringLiteral("p { color: red; }"),
                            QStringLiteral("i { font-name: Velmora-Icons; font-size: 14; }b { font-name: OpenSans-Bold; }"),
                            QStringLiteral("tight {font-size: 9;} a, list { font-size: 3; } x.cls { font-size: 4; }"),
                            QStringLiteral("broken { font-size:\n 12; }")});
    EXPECT_FALSE(rule(sheet, "p").fontSize);
    EXPECT_EQ(rule(sheet, "p").color, Color::named(QStringLiteral("red")));
    EXPECT_EQ(rule(sheet, "i").fontName, QStringLiteral("Velmora-Icons"));
    EXPECT_EQ(rule(sheet, "b").fontName, QStringLiteral("OpenSans-Bold"));
    EXPECT_EQ(rule(sheet, "tight").fontSize, 9.0);
    EXPECT_EQ(rule(sheet, "list").fontSize, 3.0);
    EXPECT_EQ(rule(sheet, "cls").fontSize, 4.0);
    for (const char *absent : {"a", "x", "broken"})
        EXPECT_FALSE(sheet.styleMap().contains(QString::fromLatin1(absent))) << absent;
    EXPECT_TRUE(RichString().styleMap().isEmpty());
    EXPECT_TRUE(RichString({QString()}).styleMap().isEmpty());
}

// Catches: a declaration without its blank or its ";" being applied, a bad colour not clearing
// an earlier good one, and a bad number or alignment word clearing what came before.
TEST(StyleSheet, DeclarationsFollowTheirExactGrammar)
{
    const auto body = [](const char *text) { return RichString::parseStyleBody(QString::fromLatin1(text)); };
    EXPECT_FALSE(body(" color:#fff; ").color);
    EXPECT_FALSE(body(" font-size:12; ").fontSize);
    EXPECT_EQ(body(" font-size: 12; font-size: 14 ").fontSize, 12.0);
    EXPECT_FALSE(body(" color: red; color: nonsense; ").color);
    EXPECT_EQ(body(" font-size: 12; font-size: big; ").fontSize, 12.0);
    EXPECT_EQ(body(" align: center; align: middle; ").alignment, TextAlignment::Center);
    EXPECT_FALSE(body(" align: middle; ").alignment);
    EXPECT_EQ(body(" text-alignment: right; ").alignment, TextAlignment::Right);
    EXPECT_EQ(body(" alignment: justified; ").alignment, TextAlignment::Justified);
    EXPECT_EQ(body(" baseline-offset: -1.5; line-height: 0.85; ").baseline_offset, -1.5);
    EXPECT_EQ(body(" line-height: 0.85; ").line_height, double(0.85f));
    EXPECT_EQ(body(" font-name: \"OpenSans\"; ").fontName, QStringLiteral("\"OpenSans\""));
    EXPECT_FALSE(body(" font-size: 12 ; ").fontSize); // the value keeps its trailing blank
    EXPECT_EQ(body(" Font-Size: 12; font-weight: bold; "), StyleSpec{});
}

// Catches: clamping, a 0..1 alpha scale, loose patterns, and "#fff" or names being accepted where
// they must not be. The three diagnostics must reach the debug log, and only where designed.
TEST(Colors, GrammarOfNamedFunctionalAndHexForms)
{
    DiagnosticsSpy spy;
    EXPECT_EQ(RichString::parseColor(QStringLiteral("rgb(147, 135, 114)")), (Color{147 / 255.0, 135 / 255.0, 114 / 255.0, 1}));
    EXPECT_EQ(RichString::parseColor(QStringLiteral("rgba(0,0,0,128)")), (Color{0, 0, 0, 128 / 255.0}));
    EXPECT_EQ(RichString::parseColor(QStringLiteral("rgb (1,2,3) trailing")), (Color{1 / 255.0, 2 / 255.0, 3 / 255.0, 1}));
    EXPECT_EQ(RichString::parseColor(QStringLiteral("rgb(300,0,0)"))->red, 300 / 255.0);
    EXPECT_EQ(RichString::parseColor(QStringLiteral("rgba(1,2,3,4 )"))->alpha, 4 / 255.0);
    EXPECT_EQ(RichString::parseColor(QStringLiteral("clear")), (Color{0, 0, 0, 0}));
    EXPECT_EQ(RichString::parseColor(QStringLiteral("#FFFFFF")), (Color{1, 1, 1, 1}));
    EXPECT_EQ(RichString::parseColor(QStringLiteral("#ffffff7f")), (Color{1, 1, 1, 127 / 255.0}));
    EXPECT_TRUE(spy.lines().isEmpty());

    EXPECT_FALSE(RichString::parseColor(QStringLiteral("rgb(1, 2, 3 )")));
    EXPECT_FALSE(RichString::parseColor(QStringLiteral("rgb(1,2)")));
    EXPECT_FALSE(RichString::parseColor(QStringLiteral("Red")));
    EXPECT_EQ(spy.lines(), (QStringList{QStringLiteral("did not understand rgb color value: rgb(1, 2, 3 )"),
                                        QStringLiteral("did not understand rgb color value: rgb(1,2)"),
                                        QStringLiteral("did not understand color value: Red")}));
    EXPECT_FALSE(RichString::parseColor(QStringLiteral("#fff")));
    EXPECT_FALSE(RichString::parseColor(QStringLiteral("#12345")));
    EXPECT_FALSE(RichString::parseColor(QStringLiteral("#12345g")));
    EXPECT_FALSE(RichString::parseColor(QStringLiteral("#ab\u00e9def")));
    EXPECT_EQ(spy.lines().size(), 3); // hex failures are silent

    EXPECT_EQ(RichString::parseColor(QStringLiteral("rgb(\u0661,2,3)")), std::nullopt);
    EXPECT_EQ(spy.lines().last(), QStringLiteral("Error parsing number in rgb(\u0661,2,3)"));

    EXPECT_EQ(Color::fromHtml(QStringLiteral("#d95b43")), (Color{0xd9 / 255.0, 0x5b / 255.0, 0x43 / 255.0, 1}));
    EXPECT_EQ(Color::fromHtml(QStringLiteral("white")), (Color{0, 0, 0, 1}));
    EXPECT_EQ(Color::fromHtml(QString()), (Color{0, 0, 0, 1}));
}
