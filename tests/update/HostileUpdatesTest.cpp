// What a network (or a disk, or a server) can do to the update path, tried against the real
// Downloader with real servers on 127.0.0.1 and real archives. Every case also checks that the
// catalogue in use and the user's settings are untouched.

#include "platform/BackgroundSession.h"
#include "platform/Database.h"
#include "platform/ZipArchive.h"
#include "toolkit/Signing.h"
#include "update/HostileServer.h"
#include "update/PatchFiles.h"
#include "update/UpdateService.h"
#include "update/UpdateRig.h"

#include <QProcess>

#include <csignal>
#include <sys/resource.h>

namespace {
const Signatures::KeyPair publisher = Signatures::generateKeyPair();

// Small bounds, so that a test meets them in a moment.
TransferLimits quickLimits()
{
    TransferLimits limits;
    limits.hardCapBytes = 2 * 1024 * 1024;
    limits.stallMilliseconds = 400;
    limits.minimumBytesPerWindow = 4096;
    limits.overallMilliseconds = 30'000;
    return limits;
}

// The user's own settings, read back from the file as the next start will.
void expectUserDataKept(UpdateRig &rig, const QStringList &documents = {QStringLiteral("velmora-20170101.db")})
{
    rig.restaurants->reload(); // as the app does after an update; older files go here
    rig.restaurants->waitForSearchIndex();
    EXPECT_EQ(rig.documents(), documents) << "the catalogue files";
    UserDefaults reread(Paths::applicationSupport() + QStringLiteral("/UserDefaults.ini"));
    EXPECT_EQ(reread.intArrayForKey(DefaultKeys::favoritos), (QList<int>{101})) << "the user's lists";
    EXPECT_EQ(reread.stringForKey(DefaultKeys::notesKey(101)), QStringLiteral("my note")) << "the user's notes";
    EXPECT_TRUE(rig.restaurants->ready());
}

void keepUserData(UpdateRig &rig)
{
    rig.home.defaults().setIntArray({101}, DefaultKeys::favoritos);
    rig.home.defaults().setString(QStringLiteral("my note"), DefaultKeys::notesKey(101));
}

// Points the shelf's announcement at `catalogue`, signed by the publisher as a real publisher
// would sign an announcement of a file kept on another host.
void announce(UpdateRig &rig, const QUrl &catalogue, const QDate &date = QDate(2017, 2, 1))
{
    QFile last(rig.served(QStringLiteral("ios/last.txt")));
    ASSERT_TRUE(last.open(QIODevice::WriteOnly | QIODevice::Truncate));
    last.write(date.toString(QStringLiteral("yyyyMMdd")).toLatin1() + '|' + catalogue.toEncoded());
    last.close();
    QString error;
    if (!rig.signingKey.isEmpty()) {
        ASSERT_TRUE(signPublishedFile(last.fileName(), date, rig.signingKey, &error)) << error.toStdString();
    }
}

QByteArray readAll(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// A patch archive holding `entries`, in the shelf's place of the real one.
void replacePatch(UpdateRig &rig, const QList<ZipArchive::Entry> &entries)
{
    QString error;
    const QString path = rig.served(QStringLiteral("ios/u2/update-20170101-20170201.zip"));
    QFile::remove(path);
    ASSERT_TRUE(ZipArchive::create(path, entries, PatchFiles::archivePassword, ZipArchive::Encryption::Aes256, &error)) << error.toStdString();
}
}

// ---- the path's constants -------------------------------------------------------------------

// Catches a changed constant of the update path that no behaviour test would notice: how often
// the Internet is asked, how long a fetch waits, where the Internet and an unconfigured server
// stand among the sources, the archives' password, the transfer's identity, how often a patch
// reports, and the bounds this path puts on what a network sends.
TEST(UpdateConstants, AreTheDesignsAndTheBoundsChosen)
{
    EXPECT_EQ(UpdateChecker::internetCheckInterval, 21600.0);
    EXPECT_EQ(UpdateChecker::fetchTimeoutMs, 60000);
    EXPECT_EQ(UpdateChecker::maximumDaysAhead, 365);
    EXPECT_EQ(Downloader::internetPriority, 100);
    EXPECT_EQ(UpdateService::defaultPriority, 500);
    EXPECT_EQ(PatchFiles::archivePassword, QStringLiteral("Hw3TzqLm8XvRk2NbYc7PfJs9GdUe4AoQ"));
    EXPECT_EQ(Downloader::backgroundID, QStringLiteral("com.brenvistaco.ios.velmora.download_db"));
    EXPECT_EQ(Restaurants::patchProgressIntervalMs, 50);
    EXPECT_EQ(Restaurants::patchTimeBudgetAtStartMs, 3000);
    EXPECT_EQ(Restaurants::maximumPatchScripts, 5000);
    EXPECT_EQ(Restaurants::maximumPatchGrowth, 2);
    const TransferLimits limits;
    EXPECT_EQ(limits.hardCapBytes, 512ll * 1024 * 1024);
    EXPECT_EQ(limits.stallMilliseconds, 30000);
    EXPECT_EQ(limits.maximumResumes, 3);
    EXPECT_EQ(limits.maximumRestarts, 3);
    EXPECT_EQ(BackgroundSession::FileDoesNotExist, -1100);
    EXPECT_EQ(BackgroundSession::Cancelled, -999);
}

// ---- trust -----------------------------------------------------------------------------------

// Catches the root of the attacks: a home that trusts no key took whatever a network sent. With
// no key and no developer's permission nothing is even asked for; a trusted key file with one
// character wrong is no quiet fall-back to fewer keys or to none: every update is refused, and
// the reason is what the user is told.
TEST(HostileTrust, NoKeyOrABrokenKeyInstallsNothing)
{
    {
        UpdateRig rig(publisher.secretKey, {}); // a signed shelf, a home that trusts nothing
        keepUserData(rig);
        ASSERT_FALSE(rig.checker->trustProblem().isEmpty());
        rig.downloader->startUpdate();
        ASSERT_TRUE(rig.waitForEnd());
        ASSERT_TRUE(rig.follower.error);
        EXPECT_EQ(rig.follower.error->code, 10);
        EXPECT_TRUE(rig.follower.error->message.contains(QLatin1String("no update signing key is trusted")))
            << rig.follower.error->message.toStdString();
        EXPECT_TRUE(rig.proxy->requests.isEmpty()) << "nothing is fetched at all";
        expectUserDataKept(rig);
    }
    {
        QByteArray broken = "velmora-public-key " + publisher.publicKey.toBase64();
        broken[25] = broken[25] == 'A' ? 'B' : 'A';
        UpdateRig rig(publisher.secretKey, publisher.publicKey);
        QFile bad(Paths::applicationSupport() + QStringLiteral("/trusted-keys/second.pub"));
        ASSERT_TRUE(bad.open(QIODevice::WriteOnly));
        bad.write(broken.left(broken.size() - 1) + "\n"); // one character wrong, one missing
        bad.close();
        rig.downloader.reset();
        rig.checker = std::make_unique<UpdateChecker>(rig.home.defaults(), *rig.restaurants);
        rig.makeDownloader();
        keepUserData(rig);
        EXPECT_TRUE(rig.checker->trustProblem().contains(QLatin1String("is not a public key"))) << rig.checker->trustProblem().toStdString();
        rig.downloader->startUpdate();
        ASSERT_TRUE(rig.waitForEnd());
        ASSERT_TRUE(rig.follower.error);
        EXPECT_TRUE(rig.follower.error->message.contains(QLatin1String("a trusted signing key is broken")))
            << rig.follower.error->message.toStdString();
        EXPECT_TRUE(rig.proxy->requests.isEmpty()) << "the good key beside it doesn't let updates through";
        expectUserDataKept(rig);
    }
}

// ---- archives --------------------------------------------------------------------------------

// Catches an archive that writes anywhere but its own folder (an entry named like the settings
// store replaced it, and was then deleted with every list and note in it), and archives that
// can't be a patch (garbage, a link, a patch that changes nothing) stuck at "Couldn't move new
// db" on every run instead of leading to the whole file.
TEST(HostileArchives, APatchArchiveWritesOnlyItsOwnFileOrLeadsToTheWholeFile)
{
    QTemporaryDir work;
    const QString emptyPatch = work.filePath(QStringLiteral("empty.db"));
    {
        Database db(emptyPatch);
        ASSERT_TRUE(db.open() && db.executeStatements(QStringLiteral("CREATE TABLE updates(number INTEGER, patch TEXT)")));
    }
    const QString expected = QStringLiteral("velmora-20170101-20170201.db");
    struct Case {
        const char *name;
        QList<ZipArchive::Entry> entries;
    };
    const QList<Case> cases = {
        {"an entry named like the settings store", {{QStringLiteral("UserDefaults.ini"), "[General]\nfavoritos=@Invalid()\n", {}}}},
        {"an entry named like the forced settings", {{QStringLiteral("Forced.json"), "{\"enable-analytics\": true}", {}}}},
        {"a link in the patch's name", {{expected, "../../Application Support/UserDefaults.ini", {}, true}}},
        {"a patch whose updates table is empty", {{expected, {}, emptyPatch}}},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        UpdateRig rig;
        keepUserData(rig);
        replacePatch(rig, c.entries);
        rig.downloader->startUpdate();
        ASSERT_TRUE(rig.waitForEnd());
        EXPECT_EQ(rig.follower.events.last(), QStringLiteral("complete")) << rig.follower.events.join(' ').toStdString();
        EXPECT_FALSE(QFile::exists(Paths::applicationSupport() + QStringLiteral("/Forced.json")));
        expectUserDataKept(rig, {QStringLiteral("velmora-20170201.db")});
    }

    UpdateRig garbage;
    keepUserData(garbage);
    QFile zip(garbage.served(QStringLiteral("ios/u2/update-20170101-20170201.zip")));
    ASSERT_TRUE(zip.open(QIODevice::WriteOnly | QIODevice::Truncate));
    zip.write(QByteArray(4096, 'z'));
    zip.close();
    garbage.downloader->startUpdate();
    ASSERT_TRUE(garbage.waitForEnd());
    EXPECT_EQ(garbage.follower.events.last(), QStringLiteral("complete"));
    expectUserDataKept(garbage, {QStringLiteral("velmora-20170201.db")});
}

// ---- transfers -------------------------------------------------------------------------------

// Catches transfers without limits: a server that always sends less than it announced, and
// ignores ranges, was fetched whole again and again for ever; an endless body filled the disk
// and the memory; a claim of 5 GB was believed until the disk was full.
TEST(HostileTransfers, ShortEndlessAndOversizedBodiesEndOnceAndLeaveNothing)
{
    const auto run = [](HostileServer &hostile, const QByteArray &signingKey, const std::function<void(UpdateRig &)> &prepare = {}) {
        auto rig = std::make_unique<UpdateRig>(signingKey, signingKey.isEmpty() ? QByteArray() : publisher.publicKey);
        keepUserData(*rig);
        rig->downloader->setTransferLimits(quickLimits());
        QDir(rig->served(QStringLiteral("ios/u2"))).removeRecursively();
        announce(*rig, hostile.url(QStringLiteral("ios/velmora-20170201.db")));
        if (prepare)
            prepare(*rig);
        rig->downloader->startUpdate();
        EXPECT_TRUE(rig->waitForEnd(30000));
        return rig;
    };

    HostileServer shortBody(HostileServer::Behaviour::ShortBody);
    auto rig = run(shortBody, {});
    ASSERT_TRUE(rig->follower.error);
    EXPECT_EQ(rig->follower.error->code, BackgroundSession::NetworkConnectionLost);
    const int asked = shortBody.catalogueRequests;
    EXPECT_LE(asked, quickLimits().maximumResumes + quickLimits().maximumRestarts + 1);
    QTest::qWait(1500);
    EXPECT_EQ(shortBody.catalogueRequests, asked) << "nothing more is fetched once the update has failed";
    EXPECT_EQ(rig->follower.events.count(QStringLiteral("error")), 1);
    expectUserDataKept(*rig);
    rig.reset(); // one home at a time: each installs itself as the process's

    // Endless: stopped at the cap when unsigned, at the signed size when a valid signature of
    // the real file is replayed beside it; either way the partial file goes.
    for (const bool replaySignature : {false, true}) {
        SCOPED_TRACE(replaySignature ? "with the real file's signature" : "unsigned");
        HostileServer endless(HostileServer::Behaviour::Endless);
        auto endlessRig = run(endless, replaySignature ? publisher.secretKey : QByteArray(), [&](UpdateRig &r) {
            endless.signature = readAll(r.served(QStringLiteral("ios/velmora-20170201.db.sig")));
        });
        ASSERT_TRUE(endlessRig->follower.error);
        EXPECT_EQ(endlessRig->follower.error->code, BackgroundSession::DataLengthExceedsMaximum) << endlessRig->follower.error->message.toStdString();
        EXPECT_LT(endless.bytesSent, quickLimits().hardCapBytes + 8 * 1024 * 1024) << "the reading stopped near the cap";
        EXPECT_TRUE(endlessRig->transferFiles().isEmpty()) << endlessRig->transferFiles().join(' ').toStdString();
        expectUserDataKept(*endlessRig);
    }

    HostileServer huge(HostileServer::Behaviour::StallAfter);
    huge.claimed = 5ll * 1024 * 1024 * 1024;
    huge.sent = 64 * 1024;
    rig.reset();
    rig = run(huge, {});
    ASSERT_TRUE(rig->follower.error);
    EXPECT_EQ(rig->follower.error->code, BackgroundSession::DataLengthExceedsMaximum);
    EXPECT_EQ(huge.catalogueRequests, 1) << "refused on its announced size";
    EXPECT_TRUE(rig->transferFiles().isEmpty());
    expectUserDataKept(*rig);
}

// Catches a stall taken for the user's cancel (-999, never resumed) and a trickle waited on for
// ever: both are lost connections, resumed, and end as a network error.
TEST(HostileTransfers, StallsAndTricklesAreNetworkErrorsAndResumed)
{
    for (const auto behaviour : {HostileServer::Behaviour::Trickle, HostileServer::Behaviour::StallAfter}) {
        HostileServer server(behaviour);
        UpdateRig rig;
        keepUserData(rig);
        rig.downloader->setTransferLimits(quickLimits());
        QDir(rig.served(QStringLiteral("ios/u2"))).removeRecursively();
        announce(rig, server.url(QStringLiteral("ios/velmora-20170201.db")));
        rig.downloader->startUpdate();
        ASSERT_TRUE(rig.waitForEnd(30000));
        ASSERT_TRUE(rig.follower.error);
        EXPECT_NE(rig.follower.error->code, BackgroundSession::Cancelled);
        EXPECT_EQ(rig.follower.error->code, BackgroundSession::TimedOut) << rig.follower.error->message.toStdString();
        EXPECT_GT(server.catalogueRequests, 1) << "a stall is resumed";
        EXPECT_LE(server.catalogueRequests, quickLimits().maximumResumes + quickLimits().maximumRestarts + 1);
        expectUserDataKept(rig);
    }
}

// Catches a full disk mid-download met again at every attempt, the partial file keeping the
// disk full: it is reported once, and the partial file removed.
TEST(HostileTransfers, AFullDiskIsReportedOnceAndThePartialFileRemoved)
{
    UpdateRig rig;
    keepUserData(rig);
    QDir(rig.served(QStringLiteral("ios/u2"))).removeRecursively();
    HostileServer honest(HostileServer::Behaviour::Whole);
    honest.body = QByteArray(1024 * 1024, 'x');
    announce(rig, honest.url(QStringLiteral("ios/velmora-20170201.db")));
    rlimit saved{};
    getrlimit(RLIMIT_FSIZE, &saved);
    const auto previous = std::signal(SIGXFSZ, SIG_IGN);
    rlimit small = saved;
    small.rlim_cur = 48 * 1024; // the process's file size limit stands in for a full disk
    setrlimit(RLIMIT_FSIZE, &small);
    rig.downloader->startUpdate();
    const bool ended = rig.waitForEnd();
    setrlimit(RLIMIT_FSIZE, &saved);
    std::signal(SIGXFSZ, previous);
    ASSERT_TRUE(ended);
    ASSERT_TRUE(rig.follower.error);
    EXPECT_EQ(rig.follower.error->code, BackgroundSession::CannotWriteToFile);
    QTest::qWait(1500);
    EXPECT_EQ(rig.follower.events.count(QStringLiteral("error")), 1);
    EXPECT_EQ(honest.catalogueRequests, 1);
    EXPECT_TRUE(rig.transferFiles().isEmpty()) << rig.transferFiles().join(' ').toStdString();
    expectUserDataKept(rig);
}

// ---- sources ---------------------------------------------------------------------------------

// Catches a local source replaying the publisher's own older shelf fetched whole, refused, and
// the Internet (which has the newer one) never asked; and a signed date far in the future taken
// from anyone, which pinned the offer and stopped every later check.
TEST(HostileSources, AnOlderOrFarFutureSourceGivesWayToTheNext)
{
    UpdateRig rig(publisher.secretKey, publisher.publicKey);
    keepUserData(rig);
    // The replay: the publisher's shelf of the catalogue in use, signed, on a LAN server.
    QTemporaryDir replayShelf, futureShelf;
    UpdateServer replay(replayShelf.path()), future(futureShelf.path());
    QString error;
    FaultProxy replayProxy(replay.listen(QHostAddress::LocalHost, 0, &error));
    const quint16 futurePort = future.listen(QHostAddress::LocalHost, 0, &error);
    QJsonObject report;
    const QString older = rig.work.filePath(QStringLiteral("velmora-20170101.db"));
    ASSERT_TRUE(publish(older, {}, replayShelf.path(), QStringLiteral("http://127.0.0.1:%1").arg(replayProxy.port()), report, &error,
                        publisher.secretKey));
    CatalogueFixture far = CatalogueFixture::small();
    far.versionDate = QDate::currentDate().addYears(2).toString(QStringLiteral("yyyyMMdd"));
    const QString farPath = rig.work.filePath(QStringLiteral("far.db"));
    ASSERT_TRUE(far.write(farPath, &error));
    ASSERT_TRUE(publish(farPath, {older}, futureShelf.path(), QStringLiteral("http://127.0.0.1:%1").arg(futurePort), report, &error,
                        publisher.secretKey));
    const QUrl futureUrl(QStringLiteral("http://127.0.0.1:%1/ios/last.txt").arg(futurePort));
    rig.localSources = {{QUrl(QStringLiteral("http://127.0.0.1:%1/ios/last.txt").arg(replayProxy.port())), 900}, {futureUrl, 950}};

    rig.downloader->startUpdate();
    ASSERT_TRUE(rig.waitForEnd());
    EXPECT_TRUE(rig.follower.events.contains(QLatin1String("patched"))) << rig.follower.events.join(' ').toStdString();
    EXPECT_TRUE(replayProxy.sawRequestWith("GET /ios/last.txt"));
    EXPECT_FALSE(replayProxy.sawRequestWith(".db")) << "nothing is fetched from a source with nothing newer";
    EXPECT_FALSE(replayProxy.sawRequestWith(".zip"));
    EXPECT_TRUE(rig.checker->isRefused(futureUrl));
    EXPECT_FALSE(rig.home.defaults().objectForKey(DefaultKeys::newestDatabaseKnown).isValid());
    expectUserDataKept(rig, {QStringLiteral("velmora-20170201.db")});
}

// ---- headless commands -----------------------------------------------------------------------

// Catches the command-line update paths crashing after they printed their answer (a callback
// outliving the function whose locals it held; the index build outliving main) when no source
// answers, or an endpoint accepts and never says a word.
TEST(HostileHeadless, CommandsEndCleanlyWhenNoSourceAnswers)
{
    QTcpServer silent; // accepts, reads, never answers
    ASSERT_TRUE(silent.listen(QHostAddress::LocalHost));
    QList<QTcpSocket *> held;
    QObject::connect(&silent, &QTcpServer::newConnection, [&] {
        while (QTcpSocket *socket = silent.nextPendingConnection())
            held.append(socket);
    });
    TestHome home;
    home.addCatalogue(QStringLiteral("20170101"));
    TestSigning::trust();
    const auto runApp = [&](const QString &command, const QString &url) {
        QProcess app;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("VELMORA_DISCOVERY_SECONDS"), QStringLiteral("0"));
        app.setProcessEnvironment(environment);
        app.start(QStringLiteral(VELMORA_APP), {QStringLiteral("--home"), home.root(), command, QStringLiteral("--update-url"), url});
        EXPECT_TRUE(QTest::qWaitFor([&] { return app.state() == QProcess::NotRunning; }, 150000));
        EXPECT_EQ(app.exitStatus(), QProcess::NormalExit) << command.toStdString() << " crashed";
        EXPECT_EQ(app.exitCode(), 1) << command.toStdString();
        return app.readAllStandardOutput();
    };
    const QByteArray checked = runApp(QStringLiteral("--check-updates"), QStringLiteral("http://127.0.0.1:9/ios/last.txt"));
    EXPECT_TRUE(checked.contains("\"answered\":false")) << checked.constData();
    const QByteArray updated = runApp(QStringLiteral("--update-now"), QStringLiteral("http://127.0.0.1:%1/ios/last.txt").arg(silent.serverPort()));
    EXPECT_TRUE(updated.contains("\"failed\"")) << updated.constData();
    EXPECT_EQ(QDir(home.documents()).entryList(QDir::Files), QStringList{QStringLiteral("velmora-20170101.db")});
}
