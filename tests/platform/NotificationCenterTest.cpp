#include "platform/NotificationCenter.h"

#include <gtest/gtest.h>

#include <memory>

// Catches: a destroyed screen still being called (a crash), and an observer that removes
// itself while being notified disturbing the others.
TEST(NotificationCenter, ObserversEndWithTheirOwnerAndMayLeaveDuringAPost)
{
    NotificationCenter center;
    int kept = 0;
    int gone = 0;
    int selfRemoving = 0;
    QObject keeper;
    auto shortLived = std::make_unique<QObject>();
    QObject leaver;
    center.addObserver(&keeper, QStringLiteral("RestaurantsDidReload"), [&](const QVariant &) { ++kept; });
    center.addObserver(shortLived.get(), QStringLiteral("RestaurantsDidReload"), [&](const QVariant &) { ++gone; });
    center.addObserver(&leaver, QStringLiteral("RestaurantsDidReload"), [&](const QVariant &) {
        ++selfRemoving;
        center.removeObserver(&leaver);
    });
    center.addObserver(&keeper, QStringLiteral("Other"), [&](const QVariant &) { kept += 100; });

    center.post(QStringLiteral("RestaurantsDidReload"));
    shortLived.reset();
    center.post(QStringLiteral("RestaurantsDidReload"));

    EXPECT_EQ(kept, 2);
    EXPECT_EQ(gone, 1);
    EXPECT_EQ(selfRemoving, 1);
}

TEST(NotificationCenter, PassesTheObjectAndRemovesByName)
{
    NotificationCenter center;
    QObject owner;
    QVariant received;
    int other = 0;
    center.addObserver(&owner, QStringLiteral("A"), [&](const QVariant &object) { received = object; });
    center.addObserver(&owner, QStringLiteral("B"), [&](const QVariant &) { ++other; });
    center.post(QStringLiteral("A"), 42);
    center.removeObserver(&owner, QStringLiteral("B"));
    center.post(QStringLiteral("B"));
    EXPECT_EQ(received.toInt(), 42);
    EXPECT_EQ(other, 0);
}
