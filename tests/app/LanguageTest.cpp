#include "presentation/Globals.h"
#include "catalogue/LanguageSwitch.h"
#include "fixtures/TestHome.h"
#include "platform/Localize.h"
#include "platform/NotificationCenter.h"
#include "platform/UserDefaults.h"

#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <QSet>
#include <QXmlStreamReader>

#include <gtest/gtest.h>

namespace {
const QString sourceDir = QStringLiteral(VELMORA_SOURCE_DIR);

// The message ids of one Linguist source.
QSet<QString> keysOf(const QString &language)
{
    QFile file(sourceDir + QStringLiteral("/resources/translations/velmora_%1.ts").arg(language));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << file.fileName().toStdString();
    QSet<QString> keys;
    QXmlStreamReader xml(&file);
    while (!xml.atEnd()) {
        if (xml.readNext() == QXmlStreamReader::StartElement && xml.name() == QLatin1String("message"))
            keys.insert(xml.attributes().value(QStringLiteral("id")).toString());
    }
    EXPECT_FALSE(xml.hasError()) << xml.errorString().toStdString();
    return keys;
}

// What must survive translation: the tokens code replaces ("{N}") and the markup tags ("<msg>").
QStringList placeholdersOf(const QString &text)
{
    static const QRegularExpression pattern(QStringLiteral(R"(\{[A-Z_]+\}|</?[a-z-]+>)"));
    QStringList found;
    for (auto it = pattern.globalMatch(text); it.hasNext();)
        found.append(it.next().captured());
    found.sort();
    return found;
}

// Every literal key that code or QML looks up.
QSet<QString> keysUsedInSources()
{
    static const QRegularExpression use(QStringLiteral(R"((?:qtTrId|qsTrId|QT_TRID_NOOP)\(\s*"([^"]+)\")"));
    QSet<QString> used;
    QDirIterator it(sourceDir + QStringLiteral("/src"), {QStringLiteral("*.cpp"), QStringLiteral("*.h"), QStringLiteral("*.qml")},
                    QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        QFile file(it.next());
        if (!file.open(QIODevice::ReadOnly))
            continue;
        const QString text = QString::fromUtf8(file.readAll());
        for (auto match = use.globalMatch(text); match.hasNext();)
            used.insert(match.next().captured(1));
    }
    return used;
}
}

// Catches: a key missing or left untranslated in one language, a token or tag lost in
// translation, and code asking for a key that no language has.
TEST(Language, EveryKeyHasTextInBothLanguages)
{
    const QSet<QString> spanish = keysOf(QStringLiteral("es"));
    const QSet<QString> english = keysOf(QStringLiteral("en"));
    EXPECT_EQ(spanish, english);
    EXPECT_GE(english.size(), 100);
    for (const QString &key : english) {
        const QString es = localizedString(QStringLiteral("es"), key);
        const QString en = localizedString(QStringLiteral("en"), key);
        EXPECT_NE(es, key) << "no Spanish text for " << key.toStdString();
        EXPECT_NE(en, key) << "no English text for " << key.toStdString();
        EXPECT_EQ(placeholdersOf(es), placeholdersOf(en)) << key.toStdString();
    }
    const QSet<QString> used = keysUsedInSources();
    EXPECT_FALSE(used.isEmpty());
    for (const QString &key : used)
        EXPECT_TRUE(english.contains(key)) << "used but never written: " << key.toStdString();
}

// Catches: localizedString switching the interface, an unknown language answering anything but
// the key, and the chosen language not reaching qtTrId or the settings store.
TEST(Language, TextsFollowTheCurrentLanguage)
{
    TestHome home;
    Localize::setCurrentLanguage(QStringLiteral("es"));
    EXPECT_EQ(qtTrId("search_places"), QStringLiteral("Lugares"));
    EXPECT_EQ(localizedString(QStringLiteral("en"), QStringLiteral("search_places")), QStringLiteral("Places"));
    EXPECT_EQ(Localize::localized(QStringLiteral("search_places")), QStringLiteral("Lugares"));
    EXPECT_EQ(localizedString(QStringLiteral("fr"), QStringLiteral("search_places")), QStringLiteral("search_places"));
    EXPECT_EQ(localizedString(QStringLiteral("en"), QStringLiteral("no_such_key")), QStringLiteral("no_such_key"));

    Localize::setCurrentLanguage(QStringLiteral("en"));
    EXPECT_EQ(qtTrId("search_places"), QStringLiteral("Places"));
    EXPECT_EQ(home.defaults().stringForKey(Localize::currentLanguageKey), QStringLiteral("en"));
    Localize::setCurrentLanguage(QStringLiteral("ejemplo")); // not offered: the device default instead
    EXPECT_TRUE(Localize::availableLanguages().contains(Localize::currentLanguage()));
}

// Catches: the interface announcing a new language before the catalogue's names follow, and a
// choice of the current language announcing anything.
TEST(Language, CatalogueSwitchesBeforeTheInterfaceAnnounces)
{
    TestHome home;
    home.addCatalogue(QStringLiteral("20170101"));
    Localize::setCurrentLanguage(QStringLiteral("es"));
    Restaurants restaurants(home.environment(QStringLiteral("es")));
    restaurants.reload();

    QObject observer;
    QStringList seen;
    EXPECT_EQ(restaurants.brief(100)->cuisines, (QStringList{QStringLiteral("Criolla"), QStringLiteral("Mariscos")}));
    NotificationCenter::defaultCenter().addObserver(&observer, Localize::changeNotification, [&](const QVariant &) {
        seen << restaurants.province(1)->name << *restaurants.price_ranks().name(2) << qtTrId("search_places")
             << restaurants.brief(100)->cuisines; // a brief read before the switch isn't served in the old language
    });
    switchLanguage(restaurants, QStringLiteral("en"));
    EXPECT_EQ(seen, (QStringList{QStringLiteral("Havana"), QStringLiteral("Budget"), QStringLiteral("Places"), QStringLiteral("Creole"),
                                 QStringLiteral("Seafood")}));
    switchLanguage(restaurants, QStringLiteral("en"));
    EXPECT_EQ(seen.size(), 5);
}
