#include "platform/NotificationCenter.h"

#include <QTest>
#include <QTimer>

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

// Catches: news spread over turns running all its observers at once (one long stall, with
// whatever else was due, a frame or a timer, waiting behind it), calling an observer whose
// owner went between two turns, or announcing the end before the last observer ran.
TEST(NotificationCenter, NewsOverTurnsLetsOtherWorkRunBetweenObservers)
{
    NotificationCenter center;
    QStringList order;
    QObject first;
    auto second = std::make_unique<QObject>();
    QObject third;
    center.addObserver(&first, QStringLiteral("RestaurantsDidReload"), [&](const QVariant &object) {
        order << QStringLiteral("first %1").arg(object.toInt());
        // Due from now on, like a frame the first screen's change asked for.
        QTimer::singleShot(0, [&] { order << QStringLiteral("other work"); });
        second.reset();
    });
    center.addObserver(second.get(), QStringLiteral("RestaurantsDidReload"), [&](const QVariant &) { order << QStringLiteral("second"); });
    center.addObserver(&third, QStringLiteral("RestaurantsDidReload"), [&](const QVariant &object) {
        order << QStringLiteral("third %1").arg(object.toInt());
    });
    QObject::connect(&center, &NotificationCenter::posted, [&](const QString &name) { order << QStringLiteral("posted ") + name; });

    bool delivered = false;
    center.postOverTurns(QStringLiteral("RestaurantsDidReload"), 7, [&] {
        order << QStringLiteral("delivered");
        delivered = true;
    });
    EXPECT_EQ(order, QStringList{QStringLiteral("first 7")});
    ASSERT_TRUE(QTest::qWaitFor([&] { return delivered; }, 2000));
    QTest::qWait(10);
    EXPECT_EQ(order, (QStringList{QStringLiteral("first 7"), QStringLiteral("other work"), QStringLiteral("third 7"),
                                  QStringLiteral("delivered"), QStringLiteral("posted RestaurantsDidReload")}));
}
