#include "personal/Fortunes.h"
#include "platform/ShakeDetector.h"
#include "platform/Shuffle.h"

#include <QSet>
#include <QSignalSpy>

#include <gtest/gtest.h>

namespace {
const QString warning = QStringLiteral("careful");
QByteArray lists(const char *json) { return QByteArray(json); }
}

// Catches: a sentence back before the list is gone through, another language's list used, a
// list of one that stops, and the former text lost when the language has no list.
TEST(Fortunes, EachSentenceOnceBeforeAnyComesBack)
{
    RandomSource::seed(7);
    Fortunes fortunes;
    QString error;
    ASSERT_TRUE(fortunes.load(lists(R"({"en": ["a", "b", "c", "d", "e"], "es": ["uno"]})"), &error)) << error.toStdString();
    QStringList first, second;
    for (int i = 0; i < 5; ++i)
        first.append(*fortunes.next(QStringLiteral("en"), warning));
    for (int i = 0; i < 5; ++i)
        second.append(*fortunes.next(QStringLiteral("en"), warning));
    EXPECT_EQ(QSet<QString>(first.cbegin(), first.cend()), (QSet<QString>{"a", "b", "c", "d", "e"}));
    EXPECT_EQ(first, second) << "round again in the same order";
    EXPECT_EQ(fortunes.next(QStringLiteral("es"), warning), QStringLiteral("uno"));
    EXPECT_EQ(fortunes.next(QStringLiteral("es"), warning), QStringLiteral("uno"));
    EXPECT_FALSE(fortunes.next(QStringLiteral("fr"), warning).has_value());
    RandomSource::seed(std::nullopt);
}

// Catches: the warning a shake early or late (seven within 29 s warn, a span of exactly 30 s
// doesn't), a count that isn't started afresh after it, and more than seven shakes kept.
TEST(Fortunes, SevenShakesWithinThirtySecondsEarnTheWarning)
{
    Fortunes fortunes;
    QString error;
    ASSERT_TRUE(fortunes.load(lists(R"({"en": ["a"]})"), &error));
    for (int i = 0; i < 6; ++i)
        fortunes.shaken(1000.0 + i);
    EXPECT_EQ(fortunes.next(QStringLiteral("en"), warning), QStringLiteral("a"));
    fortunes.shaken(1029.0);
    EXPECT_EQ(fortunes.next(QStringLiteral("en"), warning), warning);
    EXPECT_TRUE(fortunes.shakes().isEmpty());
    fortunes.shaken(1030.0);
    EXPECT_EQ(fortunes.next(QStringLiteral("en"), warning), QStringLiteral("a"));

    Fortunes calm;
    ASSERT_TRUE(calm.load(lists(R"({"en": ["a"]})"), &error));
    for (int i = 0; i < 9; ++i)
        calm.shaken(2000.0 + 5 * i);
    EXPECT_EQ(calm.shakes().size(), Fortunes::shakesKept);
    EXPECT_EQ(calm.next(QStringLiteral("en"), warning), QStringLiteral("a")) << "seven shakes 5 s apart span 30 s";
    EXPECT_FALSE(calm.next(QStringLiteral("es"), warning).has_value()) << "no list: no warning either";
}

// Catches: a damaged resource that half loads (or crashes), and the real resource falling short
// of 40 sentences a language.
TEST(Fortunes, ADamagedResourceGivesNoFortuneAndTheRealOneIsComplete)
{
    Fortunes fortunes;
    QString error;
    for (const char *bad : {"", "[1, 2]", R"({"en": "one"})", R"({"en": []})", R"({"en": ["a", 3]})", R"({"en": ["a"], "es": {"x": 1}})",
                            "{\"en\": [\"a\""})
        EXPECT_FALSE(fortunes.load(lists(bad), &error)) << bad;
    EXPECT_FALSE(fortunes.hasList(QStringLiteral("en")));
    EXPECT_FALSE(fortunes.loadFile(QStringLiteral("/nonexistent/fortunes.json")));

    ASSERT_TRUE(fortunes.loadFile(QStringLiteral(":/fortunes.json")));
    for (const char *language : {"en", "es"}) {
        QSet<QString> seen;
        for (int i = 0; i < 40; ++i)
            seen.insert(*fortunes.next(QString::fromLatin1(language), warning));
        EXPECT_EQ(seen.size(), 40) << language;
    }
}

// Catches: a single jolt (a bump, a step) taken for a shake, and one long shake counted many times.
TEST(Fortunes, ThreeJoltsWithinAMomentMakeOneShake)
{
    ShakeDetector detector;
    QSignalSpy shakes(&detector, &ShakeDetector::shaken);
    detector.reading(0, 0, 9.81, 0);
    detector.reading(25, 0, 9.81, 100);
    detector.reading(0, 0, 9.81, 200);
    detector.reading(-25, 0, 9.81, 900); // the first jolt is too old by now
    EXPECT_EQ(shakes.count(), 0);
    detector.reading(25, 0, 9.81, 1000);
    detector.reading(-25, 0, 9.81, 1100);
    EXPECT_EQ(shakes.count(), 1);
    for (qint64 t = 1200; t < 1900; t += 100)
        detector.reading(t % 200 ? 25 : -25, 0, 9.81, t);
    EXPECT_EQ(shakes.count(), 1) << "quiet for a second after a shake";
    for (qint64 t = 2200; t < 2500; t += 100)
        detector.reading(25, 0, 9.81, t);
    EXPECT_EQ(shakes.count(), 2);
}
