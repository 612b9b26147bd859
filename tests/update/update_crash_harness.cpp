// Kills `velmora --update-now` with SIGKILL at named points of the update path and at random
// moments once the update is under way, then starts it again on the same home, and counts the
// kills after which that fresh start found no readable catalogue or could not finish the update.
//
//   update_crash_harness --app VELMORA --tool VELMORA-CATALOGUE [--kills N] [--places N]
//
// Prints one line per kill and a summary; answers 0 only when every kill was recovered from and
// at least N kills (50 by default) really happened.

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTextStream>
#include <QThread>

#include <algorithm>
#include <cstdio>

namespace {
const QString oldDate = QStringLiteral("20261101");
const QString newDate = QStringLiteral("20261201");

QTextStream out(stdout);

struct Options {
    QString app;
    QString tool;
    int kills = 50;
    int places = 300;
};

bool runTool(const Options &options, const QStringList &arguments)
{
    QProcess tool;
    tool.start(options.tool, arguments);
    if (!tool.waitForFinished(120000) || tool.exitCode() != 0) {
        out << "velmora-catalogue " << arguments.join(' ') << " failed: " << tool.readAllStandardError() << Qt::endl;
        return false;
    }
    return true;
}

// One run of the update on `home`, optionally killed: at the point named in `crashAt`, or
// `killAfterMs` after the update started fetching.
struct Run {
    bool killed = false;
    QString openedDate; // the catalogue the run started with, as it printed it
    QJsonObject result;
    qint64 updatingMs = 0; // from "fetching it" to the end
};

Run runUpdate(const Options &options, const QString &home, const QString &updateUrl, const QString &crashAt, int killAfterMs)
{
    QProcess app;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("VELMORA_DISCOVERY_SECONDS"), QStringLiteral("0"));
    environment.insert(QStringLiteral("QT_LOGGING_RULES"), QStringLiteral("velmora.*=false"));
    if (!crashAt.isEmpty())
        environment.insert(QStringLiteral("VELMORA_CRASH_AT"), crashAt);
    app.setProcessEnvironment(environment);
    app.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    app.start(options.app, {QStringLiteral("--home"), home, QStringLiteral("--update-now"), QStringLiteral("--update-url"), updateUrl});
    Run run;
    QByteArray output;
    QElapsedTimer sinceFetching;
    while (app.state() != QProcess::NotRunning || app.bytesAvailable()) {
        app.waitForReadyRead(20);
        output += app.readAllStandardOutput();
        if (!sinceFetching.isValid() && output.contains("fetching it"))
            sinceFetching.start();
        if (killAfterMs >= 0 && sinceFetching.isValid() && sinceFetching.elapsed() >= killAfterMs && app.state() == QProcess::Running) {
            app.kill(); // SIGKILL
            app.waitForFinished();
            run.killed = true;
            break;
        }
    }
    app.waitForFinished();
    if (app.exitStatus() == QProcess::CrashExit)
        run.killed = true;
    if (sinceFetching.isValid())
        run.updatingMs = sinceFetching.elapsed();
    const QList<QByteArray> lines = output.trimmed().split('\n');
    if (!lines.isEmpty() && lines.first().startsWith("catalogue "))
        run.openedDate = QString::fromUtf8(lines.first().mid(10, lines.first().indexOf(';') - 10));
    if (!run.killed)
        run.result = QJsonDocument::fromJson(lines.last()).object();
    return run;
}

QStringList filesIn(const QString &dir, const QStringList &patterns)
{
    return QDir(dir).entryList(patterns, QDir::Files | QDir::Hidden);
}

// What is wrong with `home` after a recovery run, or empty.
QString faultAfterRecovery(const QString &home, const Run &recovery)
{
    const QString expected = QDate::fromString(newDate, QStringLiteral("yyyyMMdd")).toString(Qt::ISODate);
    if (recovery.openedDate.isEmpty())
        return QStringLiteral("the fresh start found no readable catalogue");
    const QString result = recovery.result.value(QStringLiteral("result")).toString();
    if (result == QLatin1String("failed") || result.isEmpty())
        return QStringLiteral("the update did not finish: ") + recovery.result.value(QStringLiteral("message")).toString();
    if (recovery.result.value(QStringLiteral("date")).toString() != expected)
        return QStringLiteral("ended on the catalogue of ") + recovery.result.value(QStringLiteral("date")).toString();
    const QStringList documents = filesIn(home + QStringLiteral("/Documents"), {QStringLiteral("*")});
    if (documents != QStringList{QStringLiteral("velmora-") + newDate + QStringLiteral(".db")})
        return QStringLiteral("Documents holds ") + documents.join(QStringLiteral(", "));
    const QStringList transfers = filesIn(home + QStringLiteral("/Caches"), {QStringLiteral("*.download"), QStringLiteral("*.task"),
                                                                             QStringLiteral("*.finished"), QStringLiteral(".*partial")});
    if (!transfers.isEmpty())
        return QStringLiteral("Caches keeps ") + transfers.join(QStringLiteral(", "));
    const QStringList support = filesIn(home + QStringLiteral("/Application Support"), {QStringLiteral("*.db"), QStringLiteral(".*partial")});
    if (!support.isEmpty())
        return QStringLiteral("Application Support keeps ") + support.join(QStringLiteral(", "));
    return QString();
}

bool parse(const QStringList &arguments, Options &options)
{
    for (int i = 1; i < arguments.size(); ++i) {
        const QString &argument = arguments.at(i);
        const QString value = arguments.value(i + 1);
        if (argument == QLatin1String("--help")) {
            out << "usage: update_crash_harness --app VELMORA --tool VELMORA-CATALOGUE [--kills N] [--places N]" << Qt::endl;
            std::exit(0);
        } else if (argument == QLatin1String("--app") && !value.isEmpty()) {
            options.app = value, ++i;
        } else if (argument == QLatin1String("--tool") && !value.isEmpty()) {
            options.tool = value, ++i;
        } else if (argument == QLatin1String("--kills") && value.toInt() > 0) {
            options.kills = value.toInt(), ++i;
        } else if (argument == QLatin1String("--places") && value.toInt() > 0) {
            options.places = value.toInt(), ++i;
        } else {
            out << "update_crash_harness: unknown option " << argument << Qt::endl;
            return false;
        }
    }
    return !options.app.isEmpty() && !options.tool.isEmpty();
}
}

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    Options options;
    if (!parse(QCoreApplication::arguments(), options))
        return 2;
    QTemporaryDir work;
    const QString root = work.filePath(QStringLiteral("served"));
    QDir().mkpath(root + QStringLiteral("/patch"));
    QDir().mkpath(root + QStringLiteral("/full"));
    QDir().mkpath(work.filePath(QStringLiteral("old")));
    QDir().mkpath(work.filePath(QStringLiteral("new")));
    const QString places = QString::number(options.places);
    if (!runTool(options, {QStringLiteral("demo"), QStringLiteral("-o"), work.filePath(QStringLiteral("old")), QStringLiteral("--places"), places,
                           QStringLiteral("--date"), oldDate})
        || !runTool(options, {QStringLiteral("demo"), QStringLiteral("-o"), work.filePath(QStringLiteral("new")), QStringLiteral("--places"),
                              places, QStringLiteral("--date"), newDate, QStringLiteral("--seed"), QStringLiteral("7")}))
        return 1;
    const QString oldCatalogue = work.filePath(QStringLiteral("old/velmora-") + oldDate + QStringLiteral(".db"));
    const QString newCatalogue = work.filePath(QStringLiteral("new/velmora-") + newDate + QStringLiteral(".db"));

    // The toolkit's own server, on a free port of 127.0.0.1.
    QProcess server;
    server.start(options.tool, {QStringLiteral("serve"), root, QStringLiteral("--listen"), QStringLiteral("127.0.0.1")});
    if (!server.waitForReadyRead(10000))
        return 1;
    const QByteArray banner = server.readAllStandardOutput();
    const int port = banner.mid(banner.lastIndexOf(' ') + 1).trimmed().toInt();
    const QString base = QStringLiteral("http://127.0.0.1:%1/").arg(port);
    // Signed as a publisher signs, and trusted by every home as an installed app trusts its key.
    const QString keys = work.filePath(QStringLiteral("keys"));
    const QString secret = keys + QStringLiteral("/velmora-signing.key");
    if (!runTool(options, {QStringLiteral("keygen"), QStringLiteral("-o"), keys})
        || !runTool(options, {QStringLiteral("publish"), newCatalogue, oldCatalogue, QStringLiteral("--to"), root + QStringLiteral("/patch"),
                              QStringLiteral("--base-url"), base + QStringLiteral("patch"), QStringLiteral("--key"), secret})
        || !runTool(options, {QStringLiteral("publish"), newCatalogue, QStringLiteral("--to"), root + QStringLiteral("/full"),
                              QStringLiteral("--base-url"), base + QStringLiteral("full"), QStringLiteral("--key"), secret}))
        return 1;

    struct Scenario {
        QString shelf;
        QString crashAt;
        int killAfterMs = -1;
    };
    const QStringList patchPoints = {QStringLiteral("transfer-data:1"),  QStringLiteral("transfer-data:3"),  QStringLiteral("transfer-finished"),
                                     QStringLiteral("patch-unpacked"),   QStringLiteral("patch-copied"),     QStringLiteral("patch-script:1"),
                                     QStringLiteral("patch-script:7"),   QStringLiteral("patch-applied"),    QStringLiteral("patch-moved")};
    const QStringList fullPoints = {QStringLiteral("transfer-data:1"), QStringLiteral("transfer-data:5"), QStringLiteral("transfer-finished"),
                                    QStringLiteral("install-verified"), QStringLiteral("install-moved")};
    QList<Scenario> scenarios;
    for (const QString &point : patchPoints)
        scenarios.append({QStringLiteral("patch"), point});
    for (const QString &point : fullPoints)
        scenarios.append({QStringLiteral("full"), point});

    int homes = 0;
    const auto freshHome = [&] {
        const QString home = work.filePath(QStringLiteral("home-%1").arg(++homes));
        QDir().mkpath(home + QStringLiteral("/Documents"));
        QDir().mkpath(home + QStringLiteral("/Application Support/trusted-keys"));
        QFile::copy(oldCatalogue, home + QStringLiteral("/Documents/velmora-") + oldDate + QStringLiteral(".db"));
        QFile::copy(keys + QStringLiteral("/velmora-signing.pub"), home + QStringLiteral("/Application Support/trusted-keys/publisher.pub"));
        return home;
    };
    const auto url = [&](const QString &shelf) { return base + shelf + QStringLiteral("/ios/last.txt"); };

    // How long the update itself takes, uninterrupted, on each shelf: random kills fall within it.
    QHash<QString, qint64> updating;
    for (const QString &shelf : {QStringLiteral("patch"), QStringLiteral("full")}) {
        QList<qint64> times;
        for (int i = 0; i < 3; ++i) {
            const QString home = freshHome();
            const Run run = runUpdate(options, home, url(shelf), QString(), -1);
            if (const QString fault = faultAfterRecovery(home, run); !fault.isEmpty()) {
                out << "an uninterrupted update on the " << shelf << " shelf fails: " << fault << Qt::endl;
                return 1;
            }
            times.append(run.updatingMs);
        }
        std::sort(times.begin(), times.end());
        updating[shelf] = qMax<qint64>(times.at(1), 1);
        out << "uninterrupted update from the " << shelf << " shelf: " << updating[shelf] << " ms (median of 3)" << Qt::endl;
    }

    int tried = 0, killed = 0, unrecoverable = 0, injected = 0;
    QRandomGenerator random(20261124);
    const auto attempt = [&](const Scenario &scenario) {
        ++tried;
        const QString home = freshHome();
        const Run first = runUpdate(options, home, url(scenario.shelf), scenario.crashAt, scenario.killAfterMs);
        const QString what = scenario.crashAt.isEmpty() ? QStringLiteral("at %1 ms").arg(scenario.killAfterMs) : scenario.crashAt;
        if (!first.killed) {
            out << scenario.shelf << " " << what << ": finished before the kill" << Qt::endl;
            return;
        }
        ++killed;
        injected += scenario.crashAt.isEmpty() ? 0 : 1;
        const Run recovery = runUpdate(options, home, url(scenario.shelf), QString(), -1);
        const QString fault = faultAfterRecovery(home, recovery);
        if (!fault.isEmpty())
            ++unrecoverable;
        out << scenario.shelf << " " << what << ": killed; the next start opened " << recovery.openedDate << " and "
            << (fault.isEmpty() ? recovery.result.value(QStringLiteral("result")).toString() : QStringLiteral("FAILED: ") + fault) << Qt::endl;
    };
    for (const Scenario &scenario : scenarios)
        attempt(scenario);
    // Random moments until enough kills have happened, alternating the shelves.
    for (int i = 0; killed < options.kills && i < options.kills * 3; ++i) {
        const QString shelf = i % 2 ? QStringLiteral("full") : QStringLiteral("patch");
        attempt({shelf, QString(), int(random.bounded(updating[shelf]))});
    }
    server.kill();
    server.waitForFinished();

    out << "\nkills tried: " << tried << ", kills that happened: " << killed << " (" << injected << " at injected points, "
        << killed - injected << " at random moments), left no readable catalogue or no finished update: " << unrecoverable << Qt::endl;
    return unrecoverable == 0 && killed >= options.kills ? 0 : 1;
}
