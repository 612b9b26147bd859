// What the usage collector holds: hits per second that one collector stores into SQLite and
// into PostgreSQL, and two collectors together into one PostgreSQL, each with the answer time's
// median and p99; then the same two under faults (one collector killed a third of the way in,
// the database stopped and started two thirds in), counting hits acknowledged against stored.
// The load is the app's: gzip batches of 20 hits on /batch, from `clients` connections at once,
// a request that gets no answer sent again, as the app would. Loopback only; bounded in hits and
// in time.
//   collector_bench --tool VELMORA-CATALOGUE [--hits N] [--clients C]
// Prints one table row per case.

#include "fixtures/PostgresServer.h"
#include "fixtures/ServiceProcesses.h"
#include "platform/Compression.h"
#include "platform/Database.h"
#include "toolkit/collector/PgConnection.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <memory>
#include <thread>

namespace {
constexpr int hitsPerBatch = 20;
constexpr int timeLimitMs = 120'000;

struct Outcome {
    double hitsPerSecond = 0, medianMs = 0, p99Ms = 0;
    qint64 acknowledged = 0, retries = 0;
};

// Sends `batches` bodies to the collectors' ports, `clients` requests in flight, round robin;
// unanswered ones go again. `onProgress(done)` lets a case break things on the way.
class Load : public QObject
{
public:
    Load(QList<quint16> ports, int batches, int clients, std::function<void(int)> onProgress)
        : m_ports(std::move(ports))
        , m_clients(clients)
        , m_onProgress(std::move(onProgress))
    {
        for (int b = 0; b < batches; ++b) {
            QByteArray lines;
            for (int h = 0; h < hitsPerBatch; ++h) {
                const QByteArray n = QByteArray::number(b * hitsPerBatch + h);
                lines += "t=event&tid=VM-BENCH&cid=client-" + QByteArray::number(b % 500) + "&ec=Navigation&ea=Tapped&el=Place&ht="
                         + QByteArray::number(1764000000000LL + b) + "&z=" + n + '\n';
            }
            m_pending.append(Compression::compress(lines, Compression::Format::Gzip));
        }
        m_total = batches;
    }

    Outcome run()
    {
        QElapsedTimer clock;
        clock.start();
        m_clock = &clock;
        for (int i = 0; i < m_clients; ++i)
            next();
        QTimer limit;
        limit.setSingleShot(true);
        QObject::connect(&limit, &QTimer::timeout, qApp, &QCoreApplication::quit);
        limit.start(timeLimitMs);
        if (m_done < m_total)
            QCoreApplication::exec();
        Outcome outcome;
        std::sort(m_answerMs.begin(), m_answerMs.end());
        outcome.hitsPerSecond = double(m_done) * hitsPerBatch / (double(clock.elapsed()) / 1000.0);
        outcome.medianMs = m_answerMs.isEmpty() ? 0 : m_answerMs.at(m_answerMs.size() / 2);
        outcome.p99Ms = m_answerMs.isEmpty() ? 0 : m_answerMs.at(std::min(m_answerMs.size() - 1, m_answerMs.size() * 99 / 100));
        outcome.acknowledged = qint64(m_done) * hitsPerBatch;
        outcome.retries = m_retries;
        return outcome;
    }

private:
    void next()
    {
        if (m_pending.isEmpty())
            return;
        const QByteArray body = m_pending.takeFirst();
        const quint16 port = m_ports.at(m_turn++ % m_ports.size());
        auto *socket = new QTcpSocket(this);
        auto reply = std::make_shared<QByteArray>();
        const qint64 sent = m_clock->nsecsElapsed();
        QObject::connect(socket, &QTcpSocket::connected, socket, [socket, body] {
            socket->write("POST /batch HTTP/1.1\r\nHost: 127.0.0.1\r\nContent-Encoding: gzip\r\nContent-Length: " + QByteArray::number(body.size())
                          + "\r\n\r\n" + body);
        });
        QObject::connect(socket, &QTcpSocket::readyRead, socket, [socket, reply] { *reply += socket->readAll(); });
        // The collector closes after its answer, or closes unanswered: either way the end.
        const auto finish = [this, socket, reply, body, sent] {
            if (socket->property("finished").toBool())
                return;
            socket->setProperty("finished", true);
            *reply += socket->readAll();
            socket->deleteLater();
            if (reply->startsWith("HTTP/1.1 200")) {
                m_answerMs.append(double(m_clock->nsecsElapsed() - sent) / 1e6);
                if (++m_done == m_total)
                    return QCoreApplication::quit();
                if (m_onProgress)
                    m_onProgress(m_done);
            } else {
                ++m_retries;
                m_pending.append(body);
            }
            // A refused or unanswered request waits a moment before the next, as the app's timer would.
            QTimer::singleShot(reply->isEmpty() ? 20 : 0, this, [this] { next(); });
        };
        QObject::connect(socket, &QTcpSocket::disconnected, socket, finish);
        QObject::connect(socket, &QTcpSocket::errorOccurred, socket, finish);
        socket->connectToHost(QHostAddress::LocalHost, port);
    }

    QList<quint16> m_ports;
    int m_clients;
    std::function<void(int)> m_onProgress;
    QList<QByteArray> m_pending;
    QList<double> m_answerMs;
    int m_total = 0, m_done = 0, m_turn = 0;
    qint64 m_retries = 0;
    QElapsedTimer *m_clock = nullptr;
};

struct Stored {
    QString rows = QStringLiteral("?"), duplicates = QStringLiteral("?"), bytesPerHit = QStringLiteral("-");
};

void row(const char *name, const Outcome &outcome, const Stored &stored)
{
    std::printf("| %-38s | %9.0f | %7.1f | %6.1f | %12lld | %8s | %10s | %7lld | %11s |\n", name, outcome.hitsPerSecond, outcome.medianMs,
                outcome.p99Ms, static_cast<long long>(outcome.acknowledged), qPrintable(stored.rows), qPrintable(stored.duplicates),
                static_cast<long long>(outcome.retries), qPrintable(stored.bytesPerHit));
    std::fflush(stdout);
}

const char countRows[] = "SELECT count(*), count(*) - (SELECT count(*) FROM (SELECT DISTINCT tracking_id, client_id, hit_identity FROM hits) AS ids)"
                         " FROM hits";

// Rows stored and rows beyond one per hit identity (must be 0).
Stored storedInFile(const QString &path)
{
    Database db(path);
    ResultSet rows = db.openWithFlags(Database::ReadOnly) ? db.executeQuery(QString::fromLatin1(countRows)) : ResultSet();
    if (!rows.next())
        return {};
    return {QString::number(rows.longForColumn(0)), QString::number(rows.longForColumn(1))};
}

// The same from PostgreSQL, with the table's size on disk (indexes included) per hit.
Stored storedIn(const QString &url)
{
    PgConnection db(url);
    QString error;
    const auto rows = db.connect(&error) ? db.run(countRows, {}, &error) : std::nullopt;
    const auto size = db.isConnected() ? db.run("SELECT pg_total_relation_size('hits')", {}, &error) : std::nullopt;
    if (!rows || rows->isEmpty())
        return {};
    const qint64 count = rows->first().value(0).toLongLong();
    return {QString::number(count), QString::fromUtf8(rows->first().value(1)),
            size && count ? QString::number(size->value(0).value(0).toLongLong() / count) : QStringLiteral("?")};
}
}

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QString tool;
    int hits = 40'000, clients = 16;
    const QStringList args = app.arguments().mid(1);
    for (int i = 0; i < args.size(); ++i) {
        if (args.at(i) == QLatin1String("--help")) {
            std::puts("collector_bench --tool VELMORA-CATALOGUE [--hits N] [--clients C]");
            return 0;
        }
        if (args.at(i) == QLatin1String("--tool") && i + 1 < args.size())
            tool = args.at(++i);
        else if (args.at(i) == QLatin1String("--hits") && i + 1 < args.size())
            hits = std::max(hitsPerBatch, args.at(++i).toInt());
        else if (args.at(i) == QLatin1String("--clients") && i + 1 < args.size())
            clients = std::max(1, args.at(++i).toInt());
        else {
            std::fprintf(stderr, "collector_bench: unknown option %s\n", qPrintable(args.at(i)));
            return 2;
        }
    }
    if (tool.isEmpty()) {
        std::fprintf(stderr, "collector_bench: --tool is required\n");
        return 2;
    }
    const int batches = hits / hitsPerBatch;
    std::puts("| case                                   |  hits / s | med. ms | p99 ms | acknowledged |   stored | duplicates | resends | bytes / hit |");
    std::puts("|:---------------------------------------|----------:|--------:|-------:|-------------:|---------:|-----------:|--------:|------------:|");

    QTemporaryDir dir;
    {
        const QString file = dir.filePath(QStringLiteral("hits.sqlite"));
        CollectorProcess collector(tool, file);
        const Outcome outcome = Load({collector.port()}, batches, clients, {}).run();
        row("one collector, SQLite", outcome, storedInFile(file));
    }
    PostgresServer postgres;
    if (!postgres.isRunning()) {
        std::printf("PostgreSQL can't run here: %s\n", qPrintable(postgres.whyNot()));
        return 0;
    }
    const auto fresh = [&postgres] {
        PgConnection db(postgres.url());
        QString error;
        if (db.connect(&error))
            db.run("DROP TABLE IF EXISTS hits, rejected", &error);
    };
    {
        fresh();
        CollectorProcess collector(tool, postgres.url());
        const Outcome outcome = Load({collector.port()}, batches, clients, {}).run();
        row("one collector, PostgreSQL", outcome, storedIn(postgres.url()));
    }
    {
        fresh();
        CollectorProcess first(tool, postgres.url()), second(tool, postgres.url());
        const Outcome outcome = Load({first.port(), second.port()}, batches, clients, {}).run();
        row("two collectors, one PostgreSQL", outcome, storedIn(postgres.url()));
    }
    {
        fresh();
        CollectorProcess first(tool, postgres.url()), second(tool, postgres.url());
        std::thread restart;
        bool killed = false, restarted = false;
        const Outcome outcome = Load({first.port(), second.port()}, batches, clients, [&](int done) {
                                    if (!killed && done >= batches / 3) {
                                        killed = true;
                                        first.kill();
                                    }
                                    if (!restarted && done >= batches * 2 / 3) {
                                        restarted = true;
                                        restart = std::thread([&postgres] {
                                            postgres.stop();
                                            std::this_thread::sleep_for(std::chrono::seconds(1));
                                            postgres.start();
                                        });
                                    }
                                }).run();
        if (restart.joinable())
            restart.join();
        row("two, one killed, database restarted", outcome, storedIn(postgres.url()));
    }
    return 0;
}
