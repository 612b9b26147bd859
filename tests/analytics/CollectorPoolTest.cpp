#include "analytics/BatchingDispatcher.h"
#include "fixtures/PostgresServer.h"
#include "fixtures/ServiceProcesses.h"
#include "platform/Compression.h"
#include "toolkit/collector/PgConnection.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QProcess>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

#include <optional>
#include <thread>

namespace {
const QString tool = QStringLiteral(VELMORA_CATALOGUE_TOOL);
using Result = BatchingDispatcher::DispatchResult;

#define START_POSTGRES(server)                                                                                                     \
    PostgresServer server;                                                                                                         \
    if (!server.isRunning())                                                                                                       \
    GTEST_SKIP() << "PostgreSQL can't run here: " << server.whyNot().toStdString()

int ask(const QString &url, const QByteArray &method, const QByteArray &body = {}, const QByteArray &encoding = {})
{
    QNetworkAccessManager network;
    QNetworkRequest request{QUrl(url)};
    if (!encoding.isEmpty())
        request.setRawHeader("Content-Encoding", encoding);
    QNetworkReply *reply = network.sendCustomRequest(request, method, body);
    EXPECT_TRUE(QTest::qWaitFor([reply] { return reply->isFinished(); }, 15000));
    reply->deleteLater();
    return reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
}

QJsonObject summary(const QString &database, QByteArray *errors = nullptr)
{
    QProcess hits;
    hits.start(tool, {QStringLiteral("hits"), QStringLiteral("--db"), database});
    hits.waitForFinished(30000);
    if (errors)
        *errors = hits.readAllStandardError();
    return QJsonDocument::fromJson(hits.readAllStandardOutput()).object();
}

// label -> rows with that label, straight from the database.
QMap<QString, int> storedLabels(const QString &database)
{
    PgConnection db(database);
    QString error;
    EXPECT_TRUE(db.connect(&error)) << error.toStdString();
    QMap<QString, int> labels;
    const auto rows = db.run("SELECT label, count(*) FROM hits GROUP BY label", {}, &error);
    EXPECT_TRUE(rows.has_value()) << error.toStdString();
    for (const PgConnection::Row &row : rows.value_or(QList<PgConnection::Row>{}))
        labels.insert(QString::fromUtf8(row.value(0)), row.value(1).toInt());
    return labels;
}
}

// Catches: a hit two collectors each received stored twice, copies not counted, invalid hits
// or garbage costing more than a 4xx, a summary that reads only SQLite, and an unreachable
// database taken for a working one at start.
TEST(CollectorPool, OneHitAtTwoCollectorsIsStoredOnce)
{
    START_POSTGRES(postgres);
    CollectorProcess first(tool, postgres.url()), second(tool, postgres.url());
    ASSERT_TRUE(first.isRunning() && second.isRunning()) << first.errors().constData() << second.errors().constData();

    const QByteArray hit = "t=event&tid=T&cid=C&ec=Navigation&ea=Tapped&el=Place&ht=1764000000000&z=7";
    EXPECT_EQ(ask(first.url() + QStringLiteral("collect?") + QString::fromLatin1(hit), "GET"), 200);
    EXPECT_EQ(ask(second.url() + QStringLiteral("collect?") + QString::fromLatin1(hit), "GET"), 200);
    const QByteArray batch = hit + "&qt=5000\nt=screenview&tid=T&cid=C&cd=RestaurantView&ht=1764086400000&z=8\nt=event&tid=T\n";
    EXPECT_EQ(ask(second.url() + QStringLiteral("batch"), "POST", Compression::compress(batch, Compression::Format::Gzip), "gzip"), 200);
    EXPECT_EQ(ask(first.url() + QStringLiteral("collect?t=nonsense"), "GET"), 400);
    EXPECT_EQ(ask(first.url() + QStringLiteral("batch"), "POST", "not gzip", "gzip"), 400);
    QTcpSocket garbage;
    garbage.connectToHost(QHostAddress::LocalHost, second.port());
    ASSERT_TRUE(garbage.waitForConnected(3000));
    garbage.write("\x16\x03\x01 not HTTP at all\r\n\r\n");
    ASSERT_TRUE(QTest::qWaitFor([&] { return garbage.bytesAvailable() > 0 || garbage.state() != QAbstractSocket::ConnectedState; }, 5000));
    EXPECT_TRUE(garbage.readAll().startsWith("HTTP/1.1 400"));

    const QJsonObject hits = summary(postgres.url());
    EXPECT_EQ(hits.value(QStringLiteral("total")).toInt(), 2) << QJsonDocument(hits).toJson().constData();
    EXPECT_EQ(hits.value(QStringLiteral("duplicates")).toInt(), 2) << "three copies of z=7, one row";
    EXPECT_EQ(hits.value(QStringLiteral("rejected")).toInt(), 2);
    EXPECT_EQ(hits.value(QStringLiteral("screens")).toObject().value(QStringLiteral("RestaurantView")).toInt(), 1);
    EXPECT_EQ(hits.value(QStringLiteral("days")).toObject(),
              (QJsonObject{{QStringLiteral("2025-11-24"), 1}, {QStringLiteral("2025-11-25"), 1}}));
    EXPECT_TRUE(first.isRunning() && second.isRunning()) << "garbage cost a collector";

    // Nothing listens on port 1: a clear refusal at start, not a collector that answers nothing.
    CollectorProcess nowhere(tool, QStringLiteral("postgresql://velmora@127.0.0.1:1/postgres"));
    EXPECT_FALSE(nowhere.isRunning());
    EXPECT_TRUE(nowhere.errors().contains("can't keep hits in postgresql://velmora@127.0.0.1:1/postgres"));
    QByteArray errors;
    EXPECT_TRUE(summary(QStringLiteral("postgresql://velmora@127.0.0.1:1/postgres"), &errors).isEmpty());
    EXPECT_TRUE(errors.contains("can't read hits from")) << errors.constData();
}

// Catches: hits the app was answered for but that never reached the database, and hits stored
// twice, when the app's own dispatcher sends through nginx to two collectors, one of which is
// killed in the middle, and the database stops and starts while batches are on their way.
TEST(CollectorPool, EveryAcknowledgedHitIsStoredOnceThroughAKillAndARestart)
{
    START_POSTGRES(postgres);
    CollectorProcess first(tool, postgres.url()), second(tool, postgres.url());
    ASSERT_TRUE(first.isRunning() && second.isRunning()) << first.errors().constData() << second.errors().constData();
    CollectorBalancer balancer(QStringLiteral(VELMORA_NGINX_CONFIG), {first.port(), second.port()});
    if (!balancer.isRunning())
        GTEST_SKIP() << balancer.whyNot().toStdString();

    QTemporaryDir dir;
    BatchingDispatcher dispatcher(dir.filePath(QStringLiteral("hits.sqlite")), QUrl(balancer.url()));
    dispatcher.setDispatchInterval(0);
    dispatcher.requestTimeoutMs = 10000;
    dispatcher.setUp();
    QStringList queued;
    const auto queue = [&](int count) {
        for (int i = 0; i < count; ++i) {
            const QString label = QString::number(queued.size());
            queued.append(label);
            dispatcher.queueDispatch({{QStringLiteral("&t"), QStringLiteral("event")}, {QStringLiteral("&tid"), QStringLiteral("T")},
                                      {QStringLiteral("&cid"), QStringLiteral("C")}, {QStringLiteral("&ec"), QStringLiteral("Pool")},
                                      {QStringLiteral("&ea"), QStringLiteral("Sent")}, {QStringLiteral("&el"), label},
                                      {QStringLiteral("&z"), label}, {QStringLiteral("useSecure"), QStringLiteral("0")}});
        }
    };
    const auto dispatchOnce = [&] {
        std::optional<Result> result;
        dispatcher.dispatchWithCompletionHandler([&result](Result r) { result = r; });
        EXPECT_TRUE(QTest::qWaitFor([&] { return result.has_value(); }, 20000)) << "a dispatch never ended";
        return result.value_or(Result::Error);
    };
    // Sends until the app holds nothing: a dispatch without an answer is tried again shortly,
    // as the app's timer would.
    const auto drain = [&](int seconds) {
        const QDeadlineTimer deadline(seconds * 1000);
        while (dispatcher.store().hitCount() > 0 && !deadline.hasExpired())
            if (dispatchOnce() != Result::Good)
                QTest::qWait(200);
        return dispatcher.store().hitCount();
    };

    queue(100);
    EXPECT_EQ(dispatchOnce(), Result::Good);
    EXPECT_EQ(dispatchOnce(), Result::Good);
    first.kill();
    EXPECT_EQ(drain(30), 0) << "the second collector takes over";

    // The database goes away and comes back while the app sends.
    queue(200);
    std::thread restart([&postgres] {
        std::this_thread::sleep_for(std::chrono::milliseconds(30));
        postgres.stop();
        std::this_thread::sleep_for(std::chrono::milliseconds(1500));
        postgres.start();
    });
    int unanswered = 0;
    const QDeadlineTimer during(4000);
    while (dispatcher.store().hitCount() > 0 && !during.hasExpired())
        unanswered += dispatchOnce() != Result::Good;
    restart.join();
    ASSERT_TRUE(postgres.isRunning()) << postgres.whyNot().toStdString();
    EXPECT_GT(unanswered, 0) << "the database was down for 1.5 s and nothing went unanswered";
    EXPECT_EQ(drain(60), 0) << "the collectors store again once the database is back";

    const QMap<QString, int> stored = storedLabels(postgres.url());
    EXPECT_EQ(stored.size(), queued.size()) << "every hit the app was answered for is in the database";
    for (const QString &label : queued)
        EXPECT_EQ(stored.value(label), 1) << "hit " << label.toStdString();
    const QJsonObject hits = summary(postgres.url());
    EXPECT_EQ(hits.value(QStringLiteral("total")).toInt(), queued.size());
}
