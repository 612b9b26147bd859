#include "catalogue/LanguageColumns.h"
#include "fixtures/TestHome.h"

#include <gtest/gtest.h>

namespace {
// A home whose catalogue has a cuisine with no English name, opened in `language`.
struct LanguageHome {
    explicit LanguageHome(const QString &language, CatalogueFixture fixture = CatalogueFixture::small())
    {
        fixture.cuisines.append({4, QStringLiteral("Fusión"), std::nullopt});
        restaurants = home.openCatalogue(fixture, language);
    }
    TestHome home;
    std::unique_ptr<Restaurants> restaurants;
};
}

// Catches: a language other than exactly "es" reading the Spanish column (a case-insensitive or
// prefix match), or a language change that keeps the old names.
TEST(LocalizableTable, OnlyExactlyEsReadsTheBaseColumn)
{
    LanguageHome home(QStringLiteral("es"));
    Restaurants &restaurants = *home.restaurants;
    const QList<std::pair<QString, QString>> cases = {
        {QStringLiteral("es"), QStringLiteral("Económico")}, {QStringLiteral("en"), QStringLiteral("Budget")},
        {QStringLiteral("fr"), QStringLiteral("Budget")},    {QStringLiteral("ejemplo"), QStringLiteral("Budget")},
        {QStringLiteral("ES"), QStringLiteral("Budget")},    {QStringLiteral("es-ES"), QStringLiteral("Budget")},
    };
    for (const auto &[language, expected] : cases) {
        restaurants.setLanguage(language);
        EXPECT_EQ(restaurants.price_ranks().name(2), expected) << language.toStdString();
        EXPECT_EQ(restaurants.cuisines().name(2),
                  language == QLatin1String("es") ? QStringLiteral("Italiana") : QStringLiteral("Italian"));
    }
}

// Catches: the ad rule made to agree with the others, or either rule matching loosely.
TEST(LocalizableTable, ActionValueRuleIsTheOtherWayRound)
{
    for (const char *language : {"en", "en-GB", "english"})
        EXPECT_EQ(LanguageColumns::actionValue(QString::fromLatin1(language)), QStringLiteral("action_value_en")) << language;
    for (const char *language : {"es", "fr", "ejemplo", "EN", ""})
        EXPECT_EQ(LanguageColumns::actionValue(QString::fromLatin1(language)), QStringLiteral("action_value")) << language;
    EXPECT_EQ(LanguageColumns::localized(QStringLiteral("horario"), QStringLiteral("fr")), QStringLiteral("horario_en"));
    EXPECT_EQ(LanguageColumns::localized(QStringLiteral("horario"), QStringLiteral("es")), QStringLiteral("horario"));
}

// Catches: a NULL English name falling back on the Spanish one, or leaving a stale entry.
TEST(LocalizableTable, NullEnglishNameIsAbsent)
{
    LanguageHome home(QStringLiteral("es"));
    EXPECT_EQ(home.restaurants->cuisines().name(4), QStringLiteral("Fusión"));
    home.restaurants->setLanguage(QStringLiteral("en"));
    EXPECT_EQ(home.restaurants->cuisines().name(4), std::nullopt);
    EXPECT_FALSE(home.restaurants->cuisines().contents().contains(4));
    EXPECT_EQ(home.restaurants->cuisines().name(1), QStringLiteral("Creole"));
}

// Catches: a loaded table queried again, contents() loading behind the screen's back, and an
// empty or missing table being taken as loaded (or crashing).
TEST(LocalizableTable, LoadsOnceUnlessEmpty)
{
    LanguageHome home(QStringLiteral("es"));
    LocalizableTable &ranks = home.restaurants->price_ranks();
    ranks.setLanguage(QStringLiteral("es"));
    EXPECT_TRUE(ranks.contents().isEmpty());
    EXPECT_GT(preparedStatementsDuring([&] { EXPECT_EQ(ranks.name(3), QStringLiteral("Moderado")); }), 0);
    EXPECT_EQ(preparedStatementsDuring([&] {
                  EXPECT_EQ(ranks.name(4), QStringLiteral("Caro"));
                  EXPECT_EQ(ranks.name(99), std::nullopt);
              }), 0);
    EXPECT_EQ(ranks.contents().size(), 3);

    // The fixture never fills restaurant_groups: empty means "not loaded", so each call asks again.
    for (int attempt = 0; attempt < 2; ++attempt)
        EXPECT_GT(preparedStatementsDuring([&] { EXPECT_EQ(home.restaurants->restaurant_groups().name(1), std::nullopt); }), 0);

    CatalogueFixture withoutTable = CatalogueFixture::small();
    withoutTable.omitTables = {QStringLiteral("service_types")};
    LanguageHome missing(QStringLiteral("es"), withoutTable);
    ASSERT_TRUE(missing.restaurants->ready());
    EXPECT_EQ(missing.restaurants->service_types().name(1), std::nullopt);
}
