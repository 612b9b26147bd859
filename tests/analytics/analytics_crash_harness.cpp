// Kills a process that queues and dispatches analytics hits with SIGKILL at random moments, again
// and again on the same store, then lets a last run send what is left, and compares what the
// killed runs acknowledged as queued with what reached the toolkit's collector.
//
//   analytics_crash_harness --tool VELMORA-CATALOGUE [--kills N]
//
// Prints the hits queued, delivered, duplicated and lost; answers 0 only when none was lost and
// at least N kills (50 by default) really happened. The same program is the child it kills:
//   analytics_crash_harness --child STORE URL RUN   queue and dispatch until killed
//   analytics_crash_harness --drain STORE URL       dispatch until the store is empty
//
//   analytics_crash_harness --uncaught-exception
// checks instead that a C++ exception nothing catches is stored as an exception hit before the
// process ends.

#include "analytics/BatchingDispatcher.h"
#include "analytics/HitStore.h"
#include "analytics/Measurement.h"
#include "platform/Database.h"

#include <QCoreApplication>
#include <QDir>
#include <QProcess>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QSet>
#include <QTemporaryDir>
#include <QTextStream>
#include <QThread>
#include <QTimer>

#include <cstdio>
#include <stdexcept>
#include <unistd.h>

namespace {
QTextStream out(stdout);

// The dispatcher on its own measurement thread, as in the app, sending often.
struct Pipeline {
    Pipeline(const QString &store, const QString &url)
        : dispatcher(store, QUrl(url))
    {
        thread.setObjectName(QStringLiteral("MeasurementThread"));
        dispatcher.moveToThread(&thread);
        thread.start();
        dispatcher.setUp();
    }
    ~Pipeline()
    {
        QMetaObject::invokeMethod(&dispatcher, [this] { dispatcher.moveToThread(qApp->thread()); }, Qt::BlockingQueuedConnection);
        thread.quit();
        thread.wait();
    }
    QThread thread;
    BatchingDispatcher dispatcher;
};

int child(const QString &store, const QString &url, const QString &run)
{
    Pipeline pipeline(store, url);
    // The acknowledgement: written straight to the pipe once the hit is committed, so a kill can
    // come after it but never between the commit and the parent knowing.
    QObject::connect(&pipeline.dispatcher, &BatchingDispatcher::hitPersisted, &pipeline.dispatcher,
                     [](const QString &label) {
                         const QByteArray line = "queued " + label.toUtf8() + '\n';
                         [[maybe_unused]] const ssize_t written = ::write(1, line.constData(), size_t(line.size()));
                     },
                     Qt::DirectConnection);
    pipeline.dispatcher.setDispatchInterval(0.02);
    int next = 0;
    QTimer sender;
    QObject::connect(&sender, &QTimer::timeout, [&] {
        const QString label = QStringLiteral("%1-%2").arg(run).arg(next++);
        pipeline.dispatcher.queueDispatch({{QStringLiteral("&t"), QStringLiteral("event")}, {QStringLiteral("&tid"), QStringLiteral("T")},
                                           {QStringLiteral("&cid"), QStringLiteral("C")}, {QStringLiteral("&ec"), QStringLiteral("Harness")},
                                           {QStringLiteral("&ea"), QStringLiteral("Queued")}, {QStringLiteral("&el"), label},
                                           {QStringLiteral("&z"), label}, {QStringLiteral("useSecure"), QStringLiteral("0")}});
    });
    sender.start(2);
    return QCoreApplication::exec();
}

int drain(const QString &store, const QString &url)
{
    Pipeline pipeline(store, url);
    for (int attempt = 0; attempt < 500; ++attempt) {
        BatchingDispatcher::DispatchResult result = BatchingDispatcher::Error;
        bool done = false;
        pipeline.dispatcher.dispatchWithCompletionHandler([&](BatchingDispatcher::DispatchResult r) {
            result = r;
            done = true;
        });
        while (!done)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        if (result == BatchingDispatcher::NoData)
            return 0;
    }
    return 1;
}

// The child throws; the parent finds the exception in the store the child left.
int uncaughtException()
{
    QTemporaryDir dir;
    const QString store = dir.filePath(QStringLiteral("hits.sqlite"));
    QProcess child;
    child.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--throw"), store});
    child.waitForFinished(30000);
    HitStore hits(store);
    hits.open();
    for (const Hit &hit : hits.fetchHits(10))
        if (hit.parameters.value(QStringLiteral("&t")) == QLatin1String("exception")
            && hit.parameters.value(QStringLiteral("&exd")) == QLatin1String("the harness threw this")) {
            out << "the uncaught exception was stored as a hit" << Qt::endl;
            return child.exitStatus() == QProcess::CrashExit ? 0 : 1;
        }
    out << "no exception hit in the store; the child said: " << child.readAllStandardError() << Qt::endl;
    return 1;
}

QSet<QString> collectedLabels(const QString &database, int &rows)
{
    QSet<QString> labels;
    rows = 0;
    Database db(database);
    db.openWithFlags(Database::ReadOnly);
    // The collector keeps one row per hit and counts the copies it received.
    db.forEachRow(QStringLiteral("SELECT label, copies FROM hits"), {}, [&](const ResultSet &row) {
        labels.insert(row.stringForColumn(0));
        rows += int(row.longForColumn(1));
        return true;
    });
    return labels;
}
}

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments().mid(1);
    if (args.value(0) == QLatin1String("--child") && args.size() == 4)
        return child(args.at(1), args.at(2), args.at(3));
    if (args.value(0) == QLatin1String("--drain") && args.size() == 3)
        return drain(args.at(1), args.at(2));
    if (args.value(0) == QLatin1String("--uncaught-exception"))
        return uncaughtException();
    if (args.value(0) == QLatin1String("--throw") && args.size() == 2) {
        Measurement &measurement = Measurement::sharedInstance();
        QString error;
        measurement.start({QUrl(QStringLiteral("http://127.0.0.1:9/")), QStringLiteral("T"), QStringLiteral("C"), args.at(1), 0}, &error);
        measurement.setTrackUncaughtExceptions(true);
        throw std::runtime_error("the harness threw this");
    }
    if (args.contains(QStringLiteral("--help"))) {
        out << "usage: analytics_crash_harness --tool VELMORA-CATALOGUE [--kills N]" << Qt::endl;
        return 0;
    }
    QString tool;
    int wantedKills = 50;
    for (int i = 0; i < args.size(); ++i) {
        if (args.at(i) == QLatin1String("--tool") && i + 1 < args.size())
            tool = args.at(++i);
        else if (args.at(i) == QLatin1String("--kills") && i + 1 < args.size())
            wantedKills = args.at(++i).toInt();
        else {
            out << "analytics_crash_harness: unknown option " << args.at(i) << Qt::endl;
            return 2;
        }
    }
    QTemporaryDir dir;
    const QString collected = dir.filePath(QStringLiteral("collected.sqlite"));
    const QString store = dir.filePath(QStringLiteral("hits.sqlite"));
    QProcess collector;
    collector.start(tool, {QStringLiteral("collect"), QStringLiteral("--db"), collected, QStringLiteral("--port"), QStringLiteral("0"),
                             QStringLiteral("--listen"), QStringLiteral("127.0.0.1")});
    if (!collector.waitForReadyRead(10000)) {
        out << "the collector did not start: " << collector.readAllStandardError() << Qt::endl;
        return 1;
    }
    const QRegularExpressionMatch port = QRegularExpression(QStringLiteral("on port (\\d+)")).match(QString::fromUtf8(collector.readAll()));
    const QString url = QStringLiteral("http://127.0.0.1:%1/").arg(port.captured(1));

    QSet<QString> acknowledged;
    int kills = 0;
    auto *random = QRandomGenerator::global();
    for (int run = 0; kills < wantedKills && run < wantedKills * 2; ++run) {
        QProcess child;
        child.start(app.applicationFilePath(), {QStringLiteral("--child"), store, url, QString::number(run)});
        if (!child.waitForStarted(5000))
            continue;
        QThread::msleep(40 + random->bounded(400));
        child.kill(); // SIGKILL
        child.waitForFinished(5000);
        kills += child.exitStatus() == QProcess::CrashExit;
        for (const QByteArray &line : child.readAllStandardOutput().split('\n'))
            if (line.startsWith("queued "))
                acknowledged.insert(QString::fromUtf8(line.mid(7)));
    }
    QProcess last;
    last.start(app.applicationFilePath(), {QStringLiteral("--drain"), store, url});
    const bool drained = last.waitForFinished(120000) && last.exitCode() == 0;

    int rows = 0;
    const QSet<QString> arrived = collectedLabels(collected, rows);
    const qsizetype lost = (acknowledged - arrived).size();
    const qsizetype delivered = (acknowledged & arrived).size();
    out << "kills: " << kills << "\nhits queued: " << acknowledged.size() << "\ndelivered: " << delivered
        << "\nduplicated: " << rows - arrived.size() << " (hits that arrived more than once)\nlost: " << lost
        << "\narrived without an acknowledgement (killed between commit and report): " << (arrived - acknowledged).size()
        << "\nlast run emptied the store: " << (drained ? "yes" : "no") << Qt::endl;
    collector.kill();
    collector.waitForFinished();
    return kills >= wantedKills && lost == 0 && drained && !acknowledged.isEmpty() ? 0 : 1;
}
