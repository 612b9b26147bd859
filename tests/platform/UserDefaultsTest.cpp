#include "platform/DefaultKeys.h"
#include "platform/UserDefaults.h"

#include <QSignalSpy>
#include <QSettings>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {
QString storeIn(const QTemporaryDir &dir) { return dir.filePath(QStringLiteral("defaults.ini")); }
}

// Catches: a stored value not surviving a restart, a removed key not falling back to its
// registered default, or a forced value being overwritten by the app.
TEST(UserDefaults, LayersResolveForcedThenStoredThenRegistered)
{
    QTemporaryDir dir;
    {
        UserDefaults defaults(storeIn(dir));
        defaults.registerDefaults({{DefaultKeys::showClosedPlaces, false}, {DefaultKeys::province, 1}});
        defaults.setForcedValues({{DefaultKeys::enableAnalytics, false}});

        EXPECT_FALSE(defaults.boolForKey(DefaultKeys::showClosedPlaces));
        defaults.setBool(true, DefaultKeys::showClosedPlaces);
        EXPECT_TRUE(defaults.boolForKey(DefaultKeys::showClosedPlaces));

        defaults.setBool(true, DefaultKeys::enableAnalytics);
        EXPECT_FALSE(defaults.boolForKey(DefaultKeys::enableAnalytics));
        EXPECT_TRUE(defaults.objectIsForcedForKey(DefaultKeys::enableAnalytics));
        EXPECT_FALSE(defaults.objectIsForcedForKey(DefaultKeys::showClosedPlaces));

        defaults.setInteger(7, DefaultKeys::province);
    }
    UserDefaults reopened(storeIn(dir));
    reopened.registerDefaults({{DefaultKeys::province, 1}});
    EXPECT_TRUE(reopened.boolForKey(DefaultKeys::showClosedPlaces));
    EXPECT_EQ(reopened.integerForKey(DefaultKeys::province), 7);
    reopened.removeObjectForKey(DefaultKeys::province);
    EXPECT_EQ(reopened.integerForKey(DefaultKeys::province), 1);

    const QVariantMap all = reopened.dictionaryRepresentation();
    EXPECT_TRUE(all.value(DefaultKeys::showClosedPlaces).toBool());
    EXPECT_EQ(all.value(DefaultKeys::province).toInt(), 1);
}

// Catches: a hand-edited or damaged store whose wrong-typed values turn a switch on or a
// province into 0, instead of reading as the registered default.
TEST(UserDefaults, WrongTypesReadAsTheDefault)
{
    QTemporaryDir dir;
    {
        QSettings file(dir.filePath(QStringLiteral("store.ini")), QSettings::IniFormat);
        file.setValue(DefaultKeys::showClosedPlaces, QStringLiteral("maybe"));
        file.setValue(DefaultKeys::enableAnalytics, QStringLiteral("true"));
        file.setValue(DefaultKeys::province, QStringLiteral("Havana"));
        file.setValue(DefaultKeys::developerModeEnabled, QVariantList{1, 2});
    }
    UserDefaults defaults(dir.filePath(QStringLiteral("store.ini")));
    defaults.registerDefaults({{DefaultKeys::showClosedPlaces, false}, {DefaultKeys::province, 1}, {DefaultKeys::developerModeEnabled, false}});
    EXPECT_FALSE(defaults.boolForKey(DefaultKeys::showClosedPlaces));
    EXPECT_TRUE(defaults.boolForKey(DefaultKeys::enableAnalytics)) << "the store's own text for true";
    EXPECT_EQ(defaults.integerForKey(DefaultKeys::province), 1);
    EXPECT_FALSE(defaults.boolForKey(DefaultKeys::developerModeEnabled));
}

// Catches: lists of one id coming back as a plain value, dictionaries or dates losing their
// type on disk, and note keys colliding when ids share a prefix.
TEST(UserDefaults, CompoundValuesRoundTripThroughTheFile)
{
    QTemporaryDir dir;
    const QDateTime checked(QDate(2017, 3, 1), QTime(12, 30), Qt::UTC);
    const QVariantMap filters{{QStringLiteral("municipalities"), QVariantList{10, 11}},
                              {QStringLiteral("cuisines"), QVariantList{}},
                              {QStringLiteral("prices"), QVariantList{3}}};
    {
        UserDefaults defaults(storeIn(dir));
        defaults.setIntArray({42}, DefaultKeys::favoritos);
        defaults.setIntArray({1, 5, 9}, DefaultKeys::visitados);
        defaults.setIntArray({}, DefaultKeys::porVisitar);
        defaults.setObject(filters, DefaultKeys::filters);
        defaults.setDate(checked, DefaultKeys::lastInternetUpdateCheck);
        defaults.setString(QStringLiteral("twelve"), DefaultKeys::notesKey(12));
        defaults.setString(QStringLiteral("one two three"), DefaultKeys::notesKey(123));
    }
    UserDefaults reopened(storeIn(dir));
    EXPECT_EQ(reopened.intArrayForKey(DefaultKeys::favoritos), QList<int>{42});
    EXPECT_EQ(reopened.intArrayForKey(DefaultKeys::visitados), (QList<int>{1, 5, 9}));
    EXPECT_TRUE(reopened.intArrayForKey(DefaultKeys::porVisitar).isEmpty());
    EXPECT_EQ(reopened.dictionaryForKey(DefaultKeys::filters), filters);
    EXPECT_EQ(reopened.dateForKey(DefaultKeys::lastInternetUpdateCheck), checked);
    EXPECT_EQ(reopened.stringForKey(QStringLiteral("notes_12")), QStringLiteral("twelve"));
    EXPECT_EQ(reopened.stringForKey(QStringLiteral("notes_123")), QStringLiteral("one two three"));
    EXPECT_TRUE(reopened.stringForKey(QStringLiteral("notes_0012")).isEmpty());
}

// Catches: observers of a key (the info screen watches newest-database-known) not being told.
TEST(UserDefaults, ObserversHearEveryChangeOfAKey)
{
    QTemporaryDir dir;
    UserDefaults defaults(storeIn(dir));
    QSignalSpy spy(&defaults, &UserDefaults::keyChanged);
    defaults.setDate(QDateTime::currentDateTimeUtc(), DefaultKeys::newestDatabaseKnown);
    defaults.removeObjectForKey(DefaultKeys::newestDatabaseKnown);
    ASSERT_EQ(spy.count(), 2);
    EXPECT_EQ(spy.at(0).at(0).toString(), DefaultKeys::newestDatabaseKnown);
    EXPECT_FALSE(defaults.dateForKey(DefaultKeys::newestDatabaseKnown).isValid());
}
