#include "fixtures/TestHome.h"
#include "platform/DefaultKeys.h"
#include "platform/UserDefaults.h"
#include "toolkit/UpdateServer.h"
#include "update/ServedTree.h"
#include "update/ServiceCenter.h"
#include "update/UpdateChecker.h"

#include <QDir>
#include <QFile>
#include <QHostAddress>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

namespace {
QByteArray txt(const QList<QByteArray> &entries)
{
    QByteArray wire;
    for (const QByteArray &entry : entries)
        wire += char(entry.size()) + entry;
    return wire;
}


// A server on 127.0.0.1 that answers every connection with the same raw bytes and hangs up.
struct RawServer {
    explicit RawServer(const QByteArray &answer)
    {
        EXPECT_TRUE(server.listen(QHostAddress::LocalHost));
        QObject::connect(&server, &QTcpServer::newConnection, &server, [this, answer] {
            while (QTcpSocket *socket = server.nextPendingConnection()) {
                QObject::connect(socket, &QTcpSocket::readyRead, socket, [socket, answer] {
                    socket->readAll();
                    socket->write(answer);
                    socket->disconnectFromHost();
                });
            }
        });
    }
    QUrl url() const { return QUrl(QStringLiteral("http://127.0.0.1:%1/ios/last.txt").arg(server.serverPort())); }
    QTcpServer server;
};

std::optional<UpdateInfo> fetch(UpdateChecker &checker, const QUrl &url)
{
    std::optional<UpdateInfo> answer;
    bool done = false;
    checker.fetchUpdateInfo(url, [&](const UpdateInfo &info) { answer = info, done = true; }, [&](const QString &) { done = true; });
    EXPECT_TRUE(QTest::qWaitFor([&] { return done; }, 10000));
    return answer;
}
}

// Catches: a TXT record trusted although one entry is broken (a length past the end, no "=",
// not UTF-8), priorities that aren't numbers taken as numbers, a path without its "/", and a
// service without a host given a URL.
TEST(UpdateSources, TxtRecordsAndServiceAddresses)
{
    EXPECT_EQ(UpdateService::parseTXTRecord(txt({"priority=900", "iospath=db/last.txt"})).value(QStringLiteral("priority")), "900");
    EXPECT_TRUE(UpdateService::parseTXTRecord(txt({"priority=900", "broken"})).isEmpty());
    EXPECT_TRUE(UpdateService::parseTXTRecord(txt({"priority=900"}) + char(40) + "short").isEmpty());
    EXPECT_TRUE(UpdateService::parseTXTRecord(txt({"iospath=\xff\xfe"})).isEmpty());
    EXPECT_TRUE(UpdateService::parseTXTRecord(QByteArray()).isEmpty());

    const auto resolved = [](const QByteArray &record) {
        return UpdateService::resolved(QStringLiteral("local"), QStringLiteral("_velmoraupdates._tcp"), QStringLiteral("Casa"),
                                       QStringLiteral("casa.local"), 8080, record);
    };
    const UpdateService plain = resolved(txt({"priority=900"}));
    EXPECT_EQ(plain.priority, 900);
    EXPECT_EQ(plain.url, QUrl(QStringLiteral("http://casa.local:8080/ios/last.txt")));
    EXPECT_EQ(resolved(txt({"iospath=db/last.txt"})).url, QUrl(QStringLiteral("http://casa.local:8080/db/last.txt")));
    for (const QByteArray &bad : {QByteArray("priority=high"), QByteArray("priority=99999999999999"), QByteArray("priority=")})
        EXPECT_EQ(resolved(txt({bad})).priority, UpdateService::defaultPriority) << bad.constData();
    EXPECT_EQ(resolved(txt({"priority=-5"})).priority, -5);
    EXPECT_EQ(resolved(txt({"priority=900", "nonsense"})).priority, UpdateService::defaultPriority) << "one broken entry voids the record";
    const UpdateService unresolved = UpdateService::resolved(QStringLiteral("local"), QStringLiteral("t"), QStringLiteral("n"), QString(), 80, {});
    EXPECT_FALSE(unresolved.url);
    EXPECT_TRUE(unresolved.description().endsWith(QLatin1String("unresolved)"))) << unresolved.description().toStdString();
    EXPECT_TRUE(UpdateService::found(QStringLiteral("local"), QStringLiteral("_velmoraupdates._tcp"), QStringLiteral("Casa")) == plain)
        << "identity is domain, type and name";
}

// Catches: the check against the real server answering wrongly: a newer date not remembered,
// an equal or older one remembered, the six-hour rule ignored or a failed check counted as one;
// bodies that are huge, binary or badly formed taken as answers; the status taken into account.
TEST(UpdateSources, CheckerAgainstTheToolkitServer)
{
    TestHome home;
    home.defaults().setBool(true, DefaultKeys::devAllowUnsignedUpdates); // the format, not the signatures
    auto restaurants = home.openCatalogue(CatalogueFixture::small()); // dated 2017-01-01
    UpdateChecker checker(home.defaults(), *restaurants);

    ServedTree older("20161231|http://127.0.0.1/ios/velmora-20161231.db\n");
    ServedTree equal(" 20170101 | http://127.0.0.1/ios/velmora-20170101.db \r\n");
    ServedTree newer("20170301|http://127.0.0.1/ios/velmora-20170301.db");
    const auto check = [&](const ServedTree &server, double minInterval) {
        UpdateChecker::setInternetURLOverride(server.url());
        bool answered = false, done = false;
        checker.checkInternet(minInterval, [&](bool ok) { answered = ok, done = true; });
        EXPECT_TRUE(QTest::qWaitFor([&] { return done; }, 10000));
        return answered;
    };
    EXPECT_TRUE(check(older, 0));
    EXPECT_TRUE(check(equal, 0));
    EXPECT_FALSE(home.defaults().objectForKey(DefaultKeys::newestDatabaseKnown).isValid());
    EXPECT_TRUE(home.defaults().dateForKey(DefaultKeys::lastInternetUpdateCheck).isValid());
    EXPECT_EQ(UpdateChecker::internetCheckInterval, 6 * 60 * 60) << "the Internet is asked at most every six hours";
    EXPECT_FALSE(check(newer, UpdateChecker::internetCheckInterval)) << "checked a moment ago: not again within six hours";
    EXPECT_FALSE(checker.isNewerDatabaseKnown());
    EXPECT_TRUE(check(newer, 0));
    EXPECT_EQ(home.defaults().dateForKey(DefaultKeys::newestDatabaseKnown).date(), QDate(2017, 3, 1));
    EXPECT_TRUE(checker.isNewerDatabaseKnown());

    // A refused connection stores nothing, so the next chance tries again at once.
    home.defaults().removeObjectForKey(DefaultKeys::lastInternetUpdateCheck);
    UpdateChecker::setInternetURLOverride(QUrl(QStringLiteral("http://127.0.0.1:9/ios/last.txt")));
    bool done = false, answered = true;
    checker.checkInternet(0, [&](bool ok) { answered = ok, done = true; });
    ASSERT_TRUE(QTest::qWaitFor([&] { return done; }, 10000));
    EXPECT_FALSE(answered);
    EXPECT_FALSE(home.defaults().objectForKey(DefaultKeys::lastInternetUpdateCheck).isValid());
    UpdateChecker::setInternetURLOverride(QUrl());

    for (const QByteArray &bad : {QByteArray(), QByteArray("20170301"), QByteArray("2017-03-01|http://x/a.db"),
                                  QByteArray("20170301|http://x/a.db|extra"), QByteArray("\x00\x01\x02|\xff", 6),
                                  QByteArray("20170301|http://x/a.db") + QByteArray(UpdateChecker::maximumBody, ' ')}) {
        ServedTree server(bad);
        EXPECT_FALSE(fetch(checker, server.url())) << bad.left(40).constData();
    }
    // The status plays no part: a 500 whose body announces is an answer; a reset or a redirect
    // loop is none, and neither blocks.
    RawServer failing("HTTP/1.1 500 Oops\r\nContent-Type: text/plain; charset=ISO-8859-1\r\nContent-Length: 22\r\n\r\n20170301|http://x/a.db");
    EXPECT_TRUE(fetch(checker, failing.url()));
    RawServer reset("");
    EXPECT_FALSE(fetch(checker, reset.url()));
    RawServer loop("HTTP/1.1 302 Found\r\nLocation: /ios/last.txt\r\nContent-Length: 0\r\n\r\n");
    EXPECT_FALSE(fetch(checker, loop.url()));
    ServedTree missing("20170301|http://127.0.0.1/a.db");
    EXPECT_FALSE(fetch(checker, QUrl(QStringLiteral("http://127.0.0.1:%1/nothing-here").arg(missing.port))))
        << "a 404 page is no announcement";
}

// Catches: a server counted as a source before its update information answered, one whose
// information is invalid joining, one that went away staying, and one removed while asked not
// coming back once it answers.
TEST(UpdateSources, ServiceCenterAdmitsOnlyServersThatAnswer)
{
    TestHome home;
    home.defaults().setBool(true, DefaultKeys::devAllowUnsignedUpdates);
    auto restaurants = home.openCatalogue(CatalogueFixture::small());
    UpdateChecker checker(home.defaults(), *restaurants);
    ServiceCenter center(checker);
    const QString type = ServiceCenter::serviceType, domain = ServiceCenter::serviceDomain;

    ServedTree good("20170301|http://127.0.0.1/ios/velmora-20170301.db");
    ServedTree bad("not an announcement");
    center.didFindService(QStringLiteral("Good"), type, domain);
    center.didFindService(QStringLiteral("Bad"), type, domain);
    EXPECT_EQ(center.services().size(), 2);
    EXPECT_TRUE(center.updateURLs().isEmpty()) << "found but unresolved: no URL yet";

    center.didResolve(UpdateService::resolved(domain, type, QStringLiteral("Good"), QStringLiteral("127.0.0.1"), good.port, txt({"priority=900"})));
    center.didResolve(UpdateService::resolved(domain, type, QStringLiteral("Bad"), QStringLiteral("127.0.0.1"), bad.port, {}));
    EXPECT_TRUE(center.services().isEmpty()) << "resolved servers wait for their answer";
    ASSERT_TRUE(QTest::qWaitFor([&] { return center.services().size() == 1; }, 10000));
    QTest::qWait(200);
    EXPECT_EQ(center.updateURLs(), (QList<UpdateURL>{{good.url(), 900}}));
    EXPECT_EQ(center.services().begin()->date, QDate(2017, 3, 1));
    EXPECT_FALSE(home.defaults().objectForKey(DefaultKeys::newestDatabaseKnown).isValid())
        << "a local server never writes what the Internet's checks and the update offer go by";

    center.didRemoveService(QStringLiteral("Good"), type, domain);
    EXPECT_TRUE(center.services().isEmpty());
    // Removed while being asked: it comes back when it answers.
    center.didResolve(UpdateService::resolved(domain, type, QStringLiteral("Good"), QStringLiteral("127.0.0.1"), good.port, {}));
    center.didRemoveService(QStringLiteral("Good"), type, domain);
    ASSERT_TRUE(QTest::qWaitFor([&] { return center.services().size() == 1; }, 10000));
    EXPECT_EQ(center.updateURLs().first().priority, UpdateService::defaultPriority);
}

// Catches: byte ranges read wrongly, so that a resumed transfer would join the wrong bytes.
TEST(UpdateSources, ByteRanges)
{
    using Range = std::pair<qint64, qint64>;
    EXPECT_EQ(parseByteRange("bytes=0-3", 10), Range(0, 3));
    EXPECT_EQ(parseByteRange("bytes=4-", 10), Range(4, 9));
    EXPECT_EQ(parseByteRange("bytes=-3", 10), Range(7, 9));
    EXPECT_EQ(parseByteRange("bytes=5-100", 10), Range(5, 9));
    for (const QByteArray &bad : {QByteArray("bytes=10-"), QByteArray("bytes=5-2"), QByteArray("bytes=0-1,4-5"), QByteArray("items=0-1"),
                                  QByteArray("bytes=x-")})
        EXPECT_FALSE(parseByteRange(bad, 10)) << bad.constData();
}

// Catches: announcements read with the wrong rules: a line with no or two "|" taken, a URL
// that isn't one taken, a date in another form read, or blanks and line ends not forgiven.
TEST(UpdateSources, AnnouncementFormat)
{
    QString error;
    for (const QString &pipes : {QStringLiteral("20170301"), QStringLiteral("20170301|http://x/a.db|http://x/b.db")}) {
        EXPECT_FALSE(parseUpdateInfo(pipes, &error));
        EXPECT_EQ(error, QStringLiteral("update info must have a single '|'"));
    }
    EXPECT_FALSE(parseUpdateInfo(QStringLiteral("20170301|not a url at all"), &error));
    EXPECT_EQ(error, QStringLiteral("invalid URL"));
    EXPECT_FALSE(parseUpdateInfo(QStringLiteral("2017-03-01|http://x/a.db"), &error));
    EXPECT_EQ(error, QString());
    const auto info = parseUpdateInfo(QStringLiteral("  20170301 |\thttp://x/a.db \r\n"), &error);
    ASSERT_TRUE(info);
    EXPECT_EQ(info->date, QDate(2017, 3, 1));
    EXPECT_EQ(info->url, QUrl(QStringLiteral("http://x/a.db")));
}
