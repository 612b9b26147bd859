#include "fixtures/TestHome.h"
#include "platform/DefaultKeys.h"
#include "platform/UserDefaults.h"
#include "update/ServedTree.h"
#include "update/ServiceCenter.h"
#include "update/UpdateChecker.h"

#include <QDir>
#include <QFile>
#include <QHostAddress>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

#include <memory>

namespace {
// A served tree that announces itself by DNS-SD with `priority`.
struct AdvertisedServer : ServedTree {
    AdvertisedServer(const QString &name, int priority, const QByteArray &announcement)
        : ServedTree(announcement)
    {
        QString error;
        EXPECT_TRUE(server.advertise(name, priority, &error)) << error.toStdString();
    }
};

QList<int> priorities(const ServiceCenter &center)
{
    QList<int> found;
    for (const UpdateURL &source : center.updateURLs())
        found.append(source.priority);
    std::sort(found.begin(), found.end());
    return found;
}
}

// Catches, through a real avahi-daemon on a private loopback: servers the browser doesn't find
// or resolve, priorities not read from their TXT records, a server with an invalid last.txt
// taken as a source, and a server that vanished kept.
TEST(Discovery, TwoServersFoundOneVanishesTheInvalidNeverJoins)
{
    if (qEnvironmentVariable("VELMORA_DNSSD_NAMESPACE") != QLatin1String("1"))
        GTEST_SKIP() << "runs only inside the namespace tests/update/in-netns.sh makes";
    TestHome home;
    home.defaults().setBool(true, DefaultKeys::devAllowUnsignedUpdates); // discovery, not signatures
    auto restaurants = home.openCatalogue(CatalogueFixture::small());
    UpdateChecker checker(home.defaults(), *restaurants);
    ServiceCenter center(checker);

    auto high = std::make_unique<AdvertisedServer>(QStringLiteral("High"), 900, "20170301|http://127.0.0.1/a.db");
    AdvertisedServer low(QStringLiteral("Low"), 300, "20170201|http://127.0.0.1/b.db");
    AdvertisedServer invalid(QStringLiteral("Invalid"), 950, "no announcement here");
    ASSERT_TRUE(QTest::qWaitFor([&] { return priorities(center) == QList<int>{300, 900}; }, 15000)) << priorities(center).size();
    QTest::qWait(1500);
    EXPECT_EQ(priorities(center), (QList<int>{300, 900})) << "the invalid server stays out";

    high.reset();
    ASSERT_TRUE(QTest::qWaitFor([&] { return priorities(center) == QList<int>{300}; }, 15000));
}
