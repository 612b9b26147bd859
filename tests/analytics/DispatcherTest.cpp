#include "analytics/BatchingDispatcher.h"
#include "analytics/Events.h"
#include "analytics/Measurement.h"
#include "fixtures/TestHome.h"
#include "platform/Database.h"
#include "toolkit/collector/HitCollector.h"
#include "update/FaultProxy.h"

#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>

#include <gtest/gtest.h>

#include <optional>

namespace {
using Result = BatchingDispatcher::DispatchResult;

qint64 clockMs = 0;
qint64 testClock() { return clockMs; }

// The toolkit's collector on a free port of 127.0.0.1 and a dispatcher sending to it (through a
// fault proxy when asked). The dispatcher lives on the test's thread, so its network work runs
// while the test waits.
struct Rig {
    explicit Rig(bool throughProxy = false)
    {
        QString error;
        EXPECT_TRUE(collector.open(&error)) << error.toStdString();
        port = collector.listen(QHostAddress::LocalHost, 0, &error);
        EXPECT_NE(port, 0) << error.toStdString();
        if (throughProxy)
            proxy = std::make_unique<FaultProxy>(port);
        connectTo(proxy ? proxy->port() : port);
    }

    void connectTo(quint16 to)
    {
        dispatcher = std::make_unique<BatchingDispatcher>(dir.filePath(QStringLiteral("hits.sqlite")),
                                                          QUrl(QStringLiteral("http://127.0.0.1:%1/").arg(to)));
        dispatcher->setDispatchInterval(0);
        dispatcher->setUp();
    }

    void queue(int count, qint64 padding = 0)
    {
        for (int i = 0; i < count; ++i, ++queued)
            dispatcher->queueDispatch({{QStringLiteral("&t"), QStringLiteral("event")}, {QStringLiteral("&tid"), QStringLiteral("T")},
                                       {QStringLiteral("&cid"), QStringLiteral("C")}, {QStringLiteral("&ec"), QStringLiteral("Test")},
                                       {QStringLiteral("&ea"), QStringLiteral("Queued")}, {QStringLiteral("&el"), QString::number(queued)},
                                       {QStringLiteral("&z"), QString::number(queued)}, {QStringLiteral("&pad"), QString(padding, QLatin1Char('p'))},
                                       {QStringLiteral("useSecure"), QStringLiteral("0")}});
    }

    Result dispatchNow(int timeoutMs = 10000)
    {
        std::optional<Result> result;
        dispatcher->dispatchWithCompletionHandler([&result](Result r) { result = r; });
        EXPECT_TRUE(QTest::qWaitFor([&] { return result.has_value(); }, timeoutMs)) << "the dispatch never ended";
        return result.value_or(Result::Error);
    }

    // Dispatches until nothing is left (or a dispatch fails); the number of requests made.
    int drain()
    {
        int requests = 0;
        while (dispatchNow() == Result::Good && ++requests < 100) {
        }
        return requests;
    }

    QStringList arrived()
    {
        QStringList labels;
        Database db(dir.filePath(QStringLiteral("collected.sqlite")));
        db.openWithFlags(Database::ReadOnly);
        db.forEachRow(QStringLiteral("SELECT label FROM hits ORDER BY id"), {}, [&labels](const ResultSet &row) {
            labels.append(row.stringForColumn(0));
            return true;
        });
        return labels;
    }

    qint64 copiesReceived()
    {
        Database db(dir.filePath(QStringLiteral("collected.sqlite")));
        db.openWithFlags(Database::ReadOnly);
        ResultSet row = db.executeQuery(QStringLiteral("SELECT sum(copies) FROM hits"));
        return row.next() ? row.longForColumn(0) : -1;
    }

    QStringList queuedLabels(int from, int to) const
    {
        QStringList labels;
        for (int i = from; i < to; ++i)
            labels.append(QString::number(i));
        return labels;
    }

    QTemporaryDir dir;
    HitCollector collector{dir.filePath(QStringLiteral("collected.sqlite"))};
    quint16 port = 0;
    std::unique_ptr<FaultProxy> proxy;
    std::unique_ptr<BatchingDispatcher> dispatcher;
    int queued = 0;
};
}

// Catches: hits lost, reordered or sent twice on the way to a real server; a batch larger than
// the fetch; a compression the server can't read; a single hit sent some other way than GET
// (short) or POST (long).
TEST(Dispatcher, WhatWasQueuedArrivesOnceInEveryEncoding)
{
    for (const int compression : {RequestBuilder::Gzip, RequestBuilder::Deflate, RequestBuilder::None}) {
        Rig rig;
        rig.dispatcher->compressionStrategy = compression;
        rig.queue(45);
        EXPECT_EQ(rig.drain(), 3) << "twenty hits a request at most";
        EXPECT_EQ(rig.arrived(), rig.queuedLabels(0, 45)) << "compression " << compression;
        EXPECT_EQ(rig.dispatcher->store().hitCount(), 0);
        EXPECT_FALSE(rig.dispatcher->hasHits());
    }
    Rig rig;
    rig.queue(1);
    rig.queue(1, 3000); // a single hit too long for a URL goes as a POST
    rig.dispatcher->batchingStrategy = BatchChoice::NoBatching;
    EXPECT_EQ(rig.drain(), 2);
    EXPECT_EQ(rig.arrived(), rig.queuedLabels(0, 2));
}

// Catches: a refused batch that deletes its hits, batching that stays off forever or comes
// back too soon, a refused single hit kept for ever, and a server error on a batch that keeps
// hits the service did answer about.
TEST(Dispatcher, TheServiceAnswerDecidesWhatStays)
{
    Rig rig;
    rig.dispatcher->now = testClock;
    clockMs = 1'700'000'000'000;
    rig.queue(3);
    rig.collector.batchStatusOverride = 404;
    EXPECT_EQ(rig.dispatchNow(), Result::Error);
    EXPECT_EQ(rig.dispatcher->store().hitCount(), 3) << "a refused batch keeps its hits";
    EXPECT_TRUE(rig.dispatcher->serverBatchingDisabled());
    EXPECT_EQ(rig.drain(), 3) << "the same hits go out one by one";
    EXPECT_EQ(rig.arrived(), rig.queuedLabels(0, 3));

    // An hour later batches are tried again.
    rig.collector.batchStatusOverride = 0;
    rig.queue(4);
    clockMs += 3601 * 1000;
    EXPECT_EQ(rig.drain(), 1);
    EXPECT_FALSE(rig.dispatcher->serverBatchingDisabled());
    EXPECT_EQ(rig.arrived(), rig.queuedLabels(0, 7));

    rig.collector.collectStatusOverride = 404;
    rig.queue(1);
    EXPECT_EQ(rig.dispatchNow(), Result::Good);
    EXPECT_EQ(rig.dispatcher->store().hitCount(), 0) << "a single hit is deleted whatever the answer";
    rig.collector.batchStatusOverride = 500;
    rig.queue(2);
    EXPECT_EQ(rig.dispatchNow(), Result::Good);
    EXPECT_EQ(rig.dispatcher->store().hitCount(), 0) << "a 500 on a batch is an answer too";
    EXPECT_EQ(rig.arrived().size(), 7);
}

// Catches: hits lost when no answer comes (server down, answer cut, too slow, garbage), a slow
// answer taken for a failure, and the same hit sent twice within one dispatch.
TEST(Dispatcher, NoAnswerKeepsTheHits)
{
    // Down: nothing listens on the port.
    {
        QTcpServer closed;
        closed.listen(QHostAddress::LocalHost);
        const quint16 port = closed.serverPort();
        closed.close();
        Rig rig;
        rig.connectTo(port);
        rig.queue(5);
        EXPECT_EQ(rig.dispatchNow(), Result::Error);
        EXPECT_EQ(rig.dispatcher->store().hitCount(), 5);
    }
    // Cut: the service stored the batch but the answer never came; the next dispatch sends it
    // again (at least once), each hit once per dispatch.
    {
        Rig rig(true);
        rig.queue(5);
        rig.proxy->cutAfter(5);
        EXPECT_EQ(rig.dispatchNow(), Result::Error);
        EXPECT_EQ(rig.dispatcher->store().hitCount(), 5);
        EXPECT_EQ(rig.drain(), 1);
        EXPECT_EQ(rig.arrived(), rig.queuedLabels(0, 5)) << "the collector stores a hit it receives twice once";
        EXPECT_EQ(rig.copiesReceived(), 10);
    }
    // Slow: an answer trickling in is still an answer; one slower than the timeout is not.
    {
        Rig rig(true);
        rig.queue(3);
        rig.proxy->trickle(8);
        EXPECT_EQ(rig.dispatchNow(), Result::Good);
        EXPECT_EQ(rig.dispatcher->store().hitCount(), 0);
        rig.proxy->trickle(1);
        rig.dispatcher->requestTimeoutMs = 100;
        rig.queue(2);
        EXPECT_EQ(rig.dispatchNow(), Result::Error);
        EXPECT_EQ(rig.dispatcher->store().hitCount(), 2);
    }
    // Garbage: a server that answers with something that isn't HTTP.
    {
        QTcpServer garbage;
        garbage.listen(QHostAddress::LocalHost);
        QObject::connect(&garbage, &QTcpServer::newConnection, [&garbage] {
            QTcpSocket *socket = garbage.nextPendingConnection();
            QObject::connect(socket, &QTcpSocket::readyRead, socket, [socket] {
                socket->readAll();
                socket->write("\x01\x02 not http at all\r\n\r\n\xff\xfe");
                socket->disconnectFromHost();
            });
        });
        Rig rig;
        rig.connectTo(garbage.serverPort());
        rig.queue(2);
        EXPECT_EQ(rig.dispatchNow(), Result::Error);
        EXPECT_EQ(rig.dispatcher->store().hitCount(), 2);
    }
}

// Catches: an oversized hit stored (and the store growing without bound), a single hit over the
// body limit kept for ever, a clock set back that stops delivery, and hits older than thirty days
// sent.
TEST(Dispatcher, BadHitsAndClocksCostNothing)
{
    Rig rig;
    rig.dispatcher->now = testClock;
    clockMs = 1'700'000'000'000;
    rig.queue(1, 9000);
    EXPECT_EQ(rig.dispatcher->store().hitCount(), 0) << "larger than the hit limit";
    rig.dispatcher->maxHitSize = 0;
    rig.queue(1, 9000);
    EXPECT_EQ(rig.dispatchNow(), Result::Good);
    EXPECT_EQ(rig.dispatcher->store().hitCount(), 0) << "a request over the body limit fails and its hit goes";

    rig.dispatcher->store().maxHitCount = 10;
    rig.queue(25);
    EXPECT_EQ(rig.dispatcher->store().hitCount(), 10) << "the count cap keeps the newest";
    clockMs -= 3'600'000; // the clock set back an hour
    EXPECT_EQ(rig.drain(), 1);
    EXPECT_EQ(rig.arrived(), rig.queuedLabels(17, 27));

    rig.queue(2);
    clockMs += 31LL * 24 * 3600 * 1000;
    EXPECT_EQ(rig.dispatchNow(), Result::NoData) << "thirty days old: thrown away unsent";
    EXPECT_EQ(rig.dispatcher->store().hitCount(), 0);
}

// Catches: opting out that keeps the waiting hits (or brings them back on opting in), hits
// stored while opted out, and a timer that runs with nothing to send.
TEST(Dispatcher, OptOutAndTheTimer)
{
    Rig rig;
    EXPECT_FALSE(rig.dispatcher->timerRunning());
    rig.dispatcher->setDispatchInterval(0.05);
    EXPECT_FALSE(rig.dispatcher->timerRunning()) << "nothing to send";
    rig.queue(3);
    EXPECT_TRUE(rig.dispatcher->timerRunning());
    ASSERT_TRUE(QTest::qWaitFor([&] { return rig.arrived().size() == 3; }, 5000)) << "the timer sent them";
    EXPECT_TRUE(QTest::qWaitFor([&] { return !rig.dispatcher->timerRunning(); }, 2000)) << "and stopped with nothing left";

    rig.dispatcher->setDispatchInterval(0);
    rig.queue(4);
    rig.dispatcher->setOptOut(true);
    EXPECT_EQ(rig.dispatcher->store().hitCount(), 0);
    rig.queue(2);
    EXPECT_EQ(rig.dispatcher->store().hitCount(), 0) << "nothing is kept while opted out";
    rig.dispatcher->setOptOut(false);
    EXPECT_EQ(rig.dispatcher->store().hitCount(), 0) << "opting in doesn't bring them back";
    rig.queue(1);
    EXPECT_EQ(rig.drain(), 1);
    EXPECT_EQ(rig.arrived(), rig.queuedLabels(0, 3) + QStringList{QStringLiteral("9")});
}

// Catches: store or network work on the caller's thread, and the app's own events not reaching
// a real collector through the shared facility.
TEST(Dispatcher, TheAppsEventsTravelOnTheMeasurementThread)
{
    TestHome home;
    QTemporaryDir dir;
    HitCollector collector(dir.filePath(QStringLiteral("collected.sqlite")));
    QString error;
    ASSERT_TRUE(collector.open(&error));
    const quint16 port = collector.listen(QHostAddress::LocalHost, 0, &error);
    home.startAnalytics(QStringLiteral("http://127.0.0.1:%1/").arg(port));
    BatchingDispatcher *dispatcher = home.measurement().dispatcher();
    ASSERT_TRUE(dispatcher);
    EXPECT_EQ(dispatcher->thread()->objectName(), QStringLiteral("MeasurementThread"));
    EXPECT_NE(dispatcher->thread(), QThread::currentThread());

    Events::openedSideMenu();
    Events::placeCardAppeared();
    Events::adShown(Events::AdPlacement::MoreInfo, 70);
    EXPECT_EQ(home.storedEvents().size(), 3);
    // The main thread must keep serving the collector while the measurement thread waits.
    bool answered = false;
    dispatcher->dispatchWithCompletionHandler([&answered](Result) { answered = true; });
    ASSERT_TRUE(QTest::qWaitFor([&] { return answered; }, 10000));
    QJsonObject summary;
    ASSERT_TRUE(HitCollector::summary(dir.filePath(QStringLiteral("collected.sqlite")), summary, &error));
    EXPECT_EQ(summary.value(QStringLiteral("total")).toInt(), 3);
    EXPECT_EQ(summary.value(QStringLiteral("screens")).toObject().value(QStringLiteral("RestaurantView")).toInt(), 1);
    EXPECT_EQ(summary.value(QStringLiteral("events")).toObject().value(QStringLiteral("Navigation / Opened side menu / ")).toInt(), 1);
    EXPECT_EQ(summary.value(QStringLiteral("events")).toObject().value(QStringLiteral("ADV Campaigns / Show / +Info")).toInt(), 1);
    EXPECT_EQ(summary.value(QStringLiteral("duplicates")).toInt(), 0);
    EXPECT_EQ(home.storedEvents(), QStringList());
}

// Catches a collector that answered hits it never stored (its database locked by another
// writer: the app deleted them on the answer), and one that read a huge body whole before
// refusing it: a body announced over the limit is refused on its head, before any of it is sent.
TEST(Dispatcher, TheCollectorAnswersOnlyWhatItStoredAndRefusesHugeBodiesUnread)
{
    Rig rig;
    rig.queue(3);
    {
        Database writer(rig.dir.filePath(QStringLiteral("collected.sqlite")));
        ASSERT_TRUE(writer.open() && writer.executeStatements(QStringLiteral("BEGIN EXCLUSIVE")));
        EXPECT_EQ(rig.dispatchNow(), Result::Error) << "no answer while nothing could be stored";
        EXPECT_EQ(rig.dispatcher->store().hitCount(), 3) << "the app keeps what wasn't stored";
        ASSERT_TRUE(writer.executeStatements(QStringLiteral("COMMIT")));
    }
    EXPECT_TRUE(rig.arrived().isEmpty());
    EXPECT_EQ(rig.drain(), 1);
    EXPECT_EQ(rig.arrived(), rig.queuedLabels(0, 3)) << "each hit stored once, once the database is free";

    QTcpSocket client;
    client.connectToHost(QHostAddress::LocalHost, rig.port);
    ASSERT_TRUE(client.waitForConnected(3000));
    client.write("POST /batch HTTP/1.1\r\nHost: 127.0.0.1\r\nContent-Length: 1500000000\r\n\r\n");
    ASSERT_TRUE(QTest::qWaitFor([&] { return client.bytesAvailable() > 0 || client.state() != QAbstractSocket::ConnectedState; }, 5000));
    EXPECT_TRUE(client.readAll().startsWith("HTTP/1.1 413")) << "refused on its announced length, not a byte of it read";
    EXPECT_EQ(rig.arrived().size(), 3);
}
