#include "app/UpdateCommands.h"

#include "catalogue/Restaurants.h"
#include "platform/DefaultKeys.h"
#include "platform/Paths.h"
#include "platform/UserDefaults.h"
#include "update/Downloader.h"
#include "update/ServiceCenter.h"
#include "update/UpdateChecker.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTextStream>
#include <QTimer>

#include <memory>
#include <optional>

namespace {
// Asks the Internet now, whatever the six-hour rule says (an operator wants the answer of this
// moment), and lets discovery run for its time; returns once both are over, with whether the
// Internet answered. The Internet gets 60 s beyond discovery at most.
bool askAllSources(UpdateChecker &checker, int discoverySeconds)
{
    // The answer may come after this returns (the loop's own time-out ends it first): what the
    // callback writes is shared with it, never a local of a returned function.
    struct Progress {
        QEventLoop loop;
        bool answered = false, internetDone = false, discoveryOver = false;
        void finishWhenBothAreOver()
        {
            if (internetDone && discoveryOver)
                loop.quit();
        }
    };
    const auto progress = std::make_shared<Progress>();
    checker.checkInternet(0, [weak = std::weak_ptr<Progress>(progress)](bool ok) {
        if (const auto p = weak.lock()) {
            p->answered = ok;
            p->internetDone = true;
            p->finishWhenBothAreOver();
        }
    });
    QTimer::singleShot(discoverySeconds * 1000, &progress->loop, [p = progress.get()] {
        p->discoveryOver = true;
        p->finishWhenBothAreOver();
    });
    QTimer::singleShot(discoverySeconds * 1000 + 60000, &progress->loop, &QEventLoop::quit);
    progress->loop.exec();
    return progress->answered;
}

QString isoDate(const std::optional<QDate> &date) { return date ? date->toString(Qt::ISODate) : QString(); }

UserDefaults &registeredDefaults()
{
    UserDefaults &defaults = UserDefaults::standard();
    defaults.registerDefaultsFromFile(QStringLiteral(":/Defaults.json"));
    return defaults;
}

// What both commands need: the settings with their defaults, the catalogue (whose first load
// applies a patch an earlier run left), the check and the local servers.
struct HeadlessServices {
    UserDefaults &defaults = registeredDefaults();
    Restaurants &restaurants = Restaurants::shared();
    UpdateChecker checker{defaults, restaurants};
    ServiceCenter center{checker};
};
}

int runUpdateCheck(int discoverySeconds)
{
    HeadlessServices services;
    UserDefaults &defaults = services.defaults;
    Restaurants &restaurants = services.restaurants;
    UpdateChecker &checker = services.checker;
    ServiceCenter &center = services.center;

    const QJsonObject internet{{QStringLiteral("url"), checker.internetURL().toString()},
                               {QStringLiteral("answered"), askAllSources(checker, discoverySeconds)}};

    QJsonArray sources;
    for (const UpdateService &service : center.services())
        if (service.url)
            sources.append(QJsonObject{{QStringLiteral("name"), service.name},
                                       {QStringLiteral("url"), service.url->toString()},
                                       {QStringLiteral("priority"), service.priority},
                                       {QStringLiteral("date"), service.date.toString(Qt::ISODate)},
                                       {QStringLiteral("catalogue_url"), service.dburl ? service.dburl->toString() : QString()}});
    const QDateTime newest = defaults.dateForKey(DefaultKeys::newestDatabaseKnown);
    const QJsonObject result{
        {QStringLiteral("catalogue"), isoDate(restaurants.databaseVersionDate())},
        {QStringLiteral("internet"), internet},
        {QStringLiteral("sources"), sources},
        {QStringLiteral("newest_database_known"), newest.isValid() ? newest.date().toString(Qt::ISODate) : QString()},
        {QStringLiteral("newer_known"), checker.isNewerDatabaseKnown()},
    };
    QTextStream(stdout) << QJsonDocument(result).toJson(QJsonDocument::Compact) << "\n";
    if (!internet.value(QStringLiteral("answered")).toBool() && sources.isEmpty()) {
        QTextStream(stderr) << "velmora: no update source answered (Internet: " << checker.internetURL().toString()
                            << "; no update server found on the local network)\n";
        return 1;
    }
    return 0;
}

namespace {
// Follows the Downloader to the end of one update and says how it ended.
class UpdateNowFollower : public DownloaderDelegate
{
public:
    UpdateNowFollower(Restaurants &restaurants, Downloader &downloader, QEventLoop &loop)
        : m_restaurants(restaurants)
        , m_downloader(downloader)
        , m_loop(loop)
    {
    }

    std::optional<QJsonObject> outcome;

    void downloadDidFinishWithError(const Error &error) override
    {
        finish(QStringLiteral("failed"), QStringLiteral("%1 %2: %3").arg(error.domain).arg(error.code).arg(error.message));
    }
    void downloadProgress(qint64 written, qint64 total) override
    {
        // A line per tenth (or per megabyte when the size is unknown), not per packet.
        const qint64 step = total > 0 ? total / 10 : 1 << 20;
        if (written < m_nextProgress && written != total)
            return;
        m_nextProgress = written + qMax<qint64>(step, 1);
        say(total > 0 ? QStringLiteral("downloading %1 of %2 bytes").arg(written).arg(total)
                      : QStringLiteral("downloading %1 bytes").arg(written));
    }
    void downloadDidComplete() override
    {
        say(QStringLiteral("installed; loading the new catalogue"));
        m_restaurants.reload();
        if (m_restaurants.ready())
            finish(QStringLiteral("downloaded"), QString());
        else
            finish(QStringLiteral("failed"), QStringLiteral("the installed catalogue could not be loaded"));
    }
    void downloadingPatch() override { say(QStringLiteral("patch unpacked; applying")); }
    void patchStarted() override { say(QStringLiteral("patch downloaded")); }
    void patchProgress(int done, int total) override { say(QStringLiteral("patching %1 of %2 scripts").arg(done).arg(total)); }
    void patchSuceeded() override { m_patched = true; }
    void patchFailed(const QString &message) override { finish(QStringLiteral("failed"), message); }

    // The patch's reload is over: the patched catalogue is in use, or the whole file is coming.
    void reloadFinished()
    {
        if (m_patched) {
            finish(QStringLiteral("patched"), QString());
            return;
        }
        // A patch that failed quietly has started the whole file; one that didn't start anything
        // ends the update here.
        m_downloader.isDownloading([this](bool running) {
            if (!running)
                finish(QStringLiteral("failed"), QStringLiteral("the patch was not applied"));
        });
    }

    void say(const QString &line) { QTextStream(stdout) << line << Qt::endl; }

    void finish(const QString &result, const QString &message)
    {
        if (outcome)
            return;
        outcome = QJsonObject{{QStringLiteral("result"), result},
                              {QStringLiteral("date"), isoDate(m_restaurants.databaseVersionDate())},
                              {QStringLiteral("message"), message}};
        m_loop.quit();
    }

private:
    Restaurants &m_restaurants;
    Downloader &m_downloader;
    QEventLoop &m_loop;
    qint64 m_nextProgress = 0;
    bool m_patched = false;
};
}

int runUpdateNow(int discoverySeconds)
{
    HeadlessServices services;
    Restaurants &restaurants = services.restaurants;
    UpdateChecker &checker = services.checker;
    ServiceCenter &center = services.center;
    Downloader downloader(restaurants, services.defaults, checker, [&center] { return center.updateURLs(); },
                          {Paths::caches(), Paths::applicationSupport()});
    QEventLoop loop;
    UpdateNowFollower follower(restaurants, downloader, loop);
    downloader.setDelegate(&follower);
    QObject::connect(&downloader, &Downloader::reloadFinished, &loop, [&] { follower.reloadFinished(); });

    follower.say(QStringLiteral("catalogue %1; asking the update sources").arg(isoDate(restaurants.databaseVersionDate())));
    const bool internetAnswered = askAllSources(checker, discoverySeconds);
    // A transfer left by an earlier run has resumed meanwhile; what it leads to (a patch being
    // applied, a catalogue installed) is over before anything new is decided.
    const bool running = downloader.isBusy();
    if (running)
        follower.say(QStringLiteral("continuing the transfer of an earlier run"));
    if (running) {
        QEventLoop idle;
        QTimer tick;
        QObject::connect(&tick, &QTimer::timeout, &idle, [&] {
            if (follower.outcome || !downloader.isBusy())
                idle.quit();
        });
        tick.start(20);
        idle.exec();
    }
    QCoreApplication::processEvents();
    if (!follower.outcome) {
        if (!internetAnswered && center.updateURLs().isEmpty() && !checker.refusals().isEmpty())
            follower.finish(QStringLiteral("failed"), QStringLiteral("refused: ") + checker.refusals().join(QStringLiteral("; ")));
        else if (!internetAnswered && center.updateURLs().isEmpty())
            follower.finish(QStringLiteral("failed"), QStringLiteral("no update source answered"));
        else if (!checker.isNewerDatabaseKnown() && !center.hasNewerThan(restaurants.databaseVersionDate()) && restaurants.ready())
            follower.finish(QStringLiteral("up-to-date"), QString());
        else {
            follower.say(QStringLiteral("a newer catalogue is announced; fetching it"));
            downloader.startUpdate();
        }
    }
    if (!follower.outcome)
        loop.exec();
    downloader.setDelegate(nullptr);
    restaurants.waitForSearchIndex();
    QTextStream(stdout) << QJsonDocument(*follower.outcome).toJson(QJsonDocument::Compact) << Qt::endl;
    return follower.outcome->value(QStringLiteral("result")).toString() == QLatin1String("failed") ? 1 : 0;
}
