#include "richtext/FontRegistry.h"
#include "richtext/RichString.h"

#include <QDir>
#include <QFile>
#include <QRandomGenerator>

#include <gtest/gtest.h>

namespace {
const FontFace bold{QStringLiteral("Open Sans"), 700, false};

RichString sheet(const QStringList &styles)
{
    FontRegistry::shared().registerFace(QStringLiteral("OpenSans-Bold"), bold);
    FontRegistry::shared().registerFace(QStringLiteral("OpenSans"), FontFace{QStringLiteral("Open Sans"), 400, false});
    return RichString(styles);
}

QStringList texts(const AttributedString &string)
{
    QStringList result;
    for (const TextRun &run : string.runs)
        result.append(run.text);
    return result;
}
}

// Catches: runs split or joined wrongly around tags, a rule's missing size not inherited from
// the base, empty elements making runs, and an unknown tag changing the style.
TEST(Render, RunsFollowTheTags)
{
    const RichString r = sheet({QStringLiteral("b { font-name: OpenSans-Bold; }")});
    EXPECT_TRUE(r.render(QStringLiteral("<body></body>")).isEmpty());
    EXPECT_TRUE(r.render(QStringLiteral("<body><p></p></body>")).isEmpty());

    const AttributedString abc = r.render(QStringLiteral("<body>a<b>b</b>c</body>"));
    ASSERT_EQ(texts(abc), (QStringList{QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")}));
    ASSERT_TRUE(abc.runs[0].font && abc.runs[1].font && abc.runs[2].font);
    EXPECT_EQ(abc.runs[0].font->name, FontRegistry::systemFontName());
    EXPECT_EQ(abc.runs[0].font->size, FontRegistry::systemFontSize);
    EXPECT_EQ(abc.runs[1].font->face, bold);
    EXPECT_EQ(abc.runs[1].font->size, FontRegistry::systemFontSize);
    EXPECT_EQ(abc.runs[2].font, abc.runs[0].font);

    EXPECT_EQ(r.render(QStringLiteral("<body><x:b>q</x:b></body>")).runs.value(0).font, abc.runs[0].font);

    const AttributedString unknown = r.render(QStringLiteral("<body><nope>x</nope></body>"));
    ASSERT_EQ(unknown.runs.size(), 1);
    EXPECT_EQ(unknown.runs[0].font, abc.runs[0].font);
    EXPECT_FALSE(unknown.runs[0].color);
    EXPECT_FALSE(unknown.runs[0].paragraph);
}

// Catches: fields other than the font not passing to nested tags, paragraph fields of parent and
// child not meeting, and an unknown font falling back instead of giving no font.
TEST(Render, EveryFieldIsInheritedIntoNestedTags)
{
    const RichString r = sheet({QStringLiteral("white { color: #ffffff; line-height: 1.5; baseline-offset: 2; }"),
                                QStringLiteral("swipe-text { font-name: OpenSans; font-size: 10; }"),
                                QStringLiteral("center { align: center; }"),
                                QStringLiteral("ghost { font-name: NoSuchFont; font-size: 30; }")});
    const AttributedString nested = r.render(
        QStringLiteral("<body><white><swipe-text>Llamar</swipe-text><center>x</center></white></body>"));
    ASSERT_EQ(nested.runs.size(), 2);
    const TextRun &label = nested.runs[0];
    EXPECT_EQ(label.color, (Color{1, 1, 1, 1}));
    EXPECT_EQ(label.font->size, 10.0);
    EXPECT_EQ(label.baselineOffset, 2.0);
    EXPECT_EQ(label.paragraph, (ParagraphStyle{std::nullopt, 1.5}));
    EXPECT_EQ(nested.runs[1].paragraph, (ParagraphStyle{TextAlignment::Center, 1.5}));

    const AttributedString ghost = r.render(QStringLiteral("<body><ghost>?</ghost></body>"));
    ASSERT_EQ(ghost.runs.size(), 1);
    EXPECT_FALSE(ghost.runs[0].font);
}

// Catches: CDATA and plain text not joining into one run, line feeds being dropped, and markup
// faults losing closed runs, keeping the open one, or expanding declared entities.
TEST(Render, MalformedMarkupKeepsClosedRunsOnly)
{
    const RichString r = sheet({QStringLiteral("p { font-name: OpenSans; }")});
    EXPECT_EQ(r.render(QStringLiteral("<body><p>Tom <![CDATA[& Jerry's]]> bar</p></body>")).string(),
              QStringLiteral("Tom & Jerry's bar"));
    EXPECT_EQ(r.render(QStringLiteral("<body><p>Tom <![CDATA[& Jerry's]]> bar</p></body>")).runs.size(), 1);
    EXPECT_EQ(texts(r.render(QStringLiteral("<body><i>T</i>\n<p>Llamar</p></body>"))),
              (QStringList{QStringLiteral("T"), QStringLiteral("\n"), QStringLiteral("Llamar")}));
    EXPECT_EQ(r.render(QStringLiteral("<body>&lt;&amp;&#65;</body>")).string(), QStringLiteral("<&A"));

    EXPECT_EQ(texts(r.render(QStringLiteral("<body><p>kept</p>lost & gone</body>"))), QStringList{QStringLiteral("kept")});
    EXPECT_EQ(texts(r.render(QStringLiteral("<body><p>kept</p><p>open</b></body>"))), QStringList{QStringLiteral("kept")});
    EXPECT_EQ(texts(r.render(QStringLiteral("<body><p>kept</p><p>x]]>y</p></body>"))), QStringList{QStringLiteral("kept")});
    EXPECT_TRUE(r.render(QStringLiteral("<!DOCTYPE body [<!ENTITY e \"boom\">]><body>&e;</body>")).isEmpty());
    EXPECT_TRUE(r.render(QStringLiteral("<body>&nbsp;</body>")).isEmpty());
    EXPECT_TRUE(r.render(QString()).isEmpty());
}

// Any bytes, as a sheet or as markup, give a result: no crash, no hang. Seeded, so a failure
// reproduces; ASan/UBSan builds run the same loop.
TEST(Render, ArbitraryInputNeverCrashes)
{
    QRandomGenerator random(20261123);
    const QStringList pieces = {QStringLiteral("<body>"), QStringLiteral("</body>"), QStringLiteral("<p>"), QStringLiteral("</p>"),
                                QStringLiteral("<![CDATA["), QStringLiteral("]]>"), QStringLiteral("&"), QStringLiteral("&amp;"),
                                QStringLiteral("p { color: rgb(1,2,3); }"), QStringLiteral("{"), QStringLiteral("}"),
                                QStringLiteral(": "), QStringLiteral(";"), QStringLiteral("#ffffff7f"), QStringLiteral("\n"),
                                QStringLiteral("<!DOCTYPE x>"), QStringLiteral("<?xml version='1.0'?>"), QStringLiteral("\u00e9")};
    // What every render must keep: no run is empty, and no text appears that wasn't in the input.
    const auto check = [](const AttributedString &result, const QString &input) {
        for (const TextRun &run : result.runs)
            if (run.text.isEmpty())
                return false;
        return result.string().size() <= input.size();
    };
    for (int i = 0; i < 3000; ++i) {
        QString text;
        const int length = random.bounded(40);
        for (int j = 0; j < length; ++j) {
            if (random.bounded(3) == 0)
                text += QChar(char16_t(random.bounded(1, 0xD7FF)));
            else
                text += pieces.at(random.bounded(qsizetype(pieces.size())));
        }
        const RichString r({text});
        const QString wrapped = QStringLiteral("<body>") + text + QStringLiteral("</body>");
        ASSERT_TRUE(check(r.render(text), text)) << qPrintable(text);
        ASSERT_TRUE(check(r.render(wrapped), wrapped)) << qPrintable(text);
    }

    // Stored inputs that once mattered, replayed as sheet and as markup.
    QDir corpus(QStringLiteral(VELMORA_RICHTEXT_CORPUS));
    const QStringList files = corpus.entryList(QDir::Files);
    ASSERT_FALSE(files.isEmpty());
    for (const QString &name : files) {
        QFile file(corpus.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        const QString input = QString::fromUtf8(file.readAll());
        EXPECT_TRUE(check(RichString({input}).render(input), input)) << qPrintable(name);
    }

    // Deep nesting is a loop, not a recursion.
    QString deep = QStringLiteral("<body>");
    for (int i = 0; i < 20000; ++i)
        deep += QStringLiteral("<p>");
    deep += QStringLiteral("x");
    for (int i = 0; i < 20000; ++i)
        deep += QStringLiteral("</p>");
    EXPECT_EQ(sheet({}).render(deep + QStringLiteral("</body>")).string(), QStringLiteral("x"));
}
