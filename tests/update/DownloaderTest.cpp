#include "catalogue/Restaurants.h"
#include "fixtures/TestHome.h"
#include "platform/DefaultKeys.h"
#include "platform/Paths.h"
#include "platform/UserDefaults.h"
#include "platform/ZipArchive.h"
#include "toolkit/Publisher.h"
#include "toolkit/UpdateServer.h"
#include "update/Downloader.h"
#include "update/FaultProxy.h"
#include "update/UpdateChecker.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QHostAddress>
#include <QJsonObject>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>

#include <gtest/gtest.h>

#include <algorithm>

#include "update/UpdateRig.h"

namespace {

// A server on 127.0.0.1 that answers every request with `answer` and notes its own name.
struct NamedServer {
    NamedServer(const QByteArray &name, const QByteArray &answer, QStringList &log, const QByteArray &status = "200 OK")
    {
        EXPECT_TRUE(server.listen(QHostAddress::LocalHost));
        QObject::connect(&server, &QTcpServer::newConnection, &server, [this, name, answer, status, &log] {
            while (QTcpSocket *socket = server.nextPendingConnection())
                QObject::connect(socket, &QTcpSocket::readyRead, socket, [socket, name, answer, status, &log] {
                    socket->readAll();
                    log.append(QString::fromLatin1(name));
                    socket->write("HTTP/1.1 " + status + "\r\nContent-Length: " + QByteArray::number(answer.size()) + "\r\n\r\n" + answer);
                    socket->disconnectFromHost();
                });
        });
    }
    QUrl url() const { return QUrl(QStringLiteral("http://127.0.0.1:%1/ios/last.txt").arg(server.serverPort())); }
    QTcpServer server;
};
}

// Catches: sources tried in the wrong order (the Internet before a local server, or a server of
// priority below 100 after the Internet), an invalid answer ending the attempt instead of
// leading to the next source, and a final message other than the last source's.
TEST(Downloader, SourcesGoHighestPriorityFirstWithTheInternetAlwaysLast)
{
    UpdateRig rig;
    QStringList asked;
    NamedServer low("300", "20170201|::not a url", asked), high("900", "20170201|::not a url", asked),
        tiny("50", "20170201|::not a url", asked), internet("internet", "20170201|a|b", asked);
    UpdateChecker::setInternetURLOverride(internet.url());

    rig.localSources = {{low.url(), 300}, {high.url(), 900}};
    rig.downloader->startUpdate();
    ASSERT_TRUE(rig.waitForEnd());
    EXPECT_EQ(asked, (QStringList{QStringLiteral("900"), QStringLiteral("300"), QStringLiteral("internet")}));
    ASSERT_TRUE(rig.follower.error);
    EXPECT_EQ(rig.follower.error->domain, QStringLiteral("Velmora"));
    EXPECT_EQ(rig.follower.error->code, 1);
    EXPECT_EQ(rig.follower.error->message, QStringLiteral("update info must have a single '|'"));

    asked.clear();
    rig.follower = Follower();
    rig.localSources = {{tiny.url(), 50}};
    rig.downloader->startUpdate();
    ASSERT_TRUE(rig.waitForEnd());
    EXPECT_EQ(asked, (QStringList{QStringLiteral("50"), QStringLiteral("internet")}));
    EXPECT_FALSE(rig.follower.offMainThread);
}

// Catches: the patch looked for anywhere but u2/ beside the catalogue, its stages reported out
// of order or off the main thread, and the patched catalogue not in use once the update ends.
TEST(Downloader, PatchBesideTheCatalogueIsFetchedAppliedAndTakenIntoUse)
{
    UpdateRig rig;
    rig.downloader->startUpdate();
    ASSERT_TRUE(rig.waitForEnd());
    EXPECT_FALSE(rig.follower.error) << rig.follower.error->message.toStdString();
    EXPECT_TRUE(rig.proxy->sawRequestWith("GET /ios/u2/update-20170101-20170201.zip"));
    EXPECT_FALSE(rig.proxy->sawRequestWith("GET /ios/velmora-20170201.db"));
    const QStringList stages = rig.follower.events.filter(QRegularExpression(QStringLiteral("^(patchStarted|unpacked|patched)$")));
    EXPECT_EQ(stages, (QStringList{QStringLiteral("patchStarted"), QStringLiteral("unpacked"), QStringLiteral("patched")}));
    EXPECT_FALSE(rig.follower.offMainThread);
    EXPECT_EQ(rig.downloader->state(), DownloadState::DownloadingPatch);
    EXPECT_EQ(rig.restaurants->databaseVersionDate(), QDate(2017, 2, 1));
    EXPECT_EQ(rig.restaurants->brief(101)->name, QStringLiteral("El Aljibe Nuevo"));
    EXPECT_EQ(rig.documents(), QStringList{QStringLiteral("velmora-20170201.db")});
    EXPECT_EQ(rig.transferFiles(), QStringList());
}

// Catches: a missing patch, or one that is not a single plain file, shown to the user as an
// error instead of leading quietly to the whole file.
TEST(Downloader, MissingOrRefusedPatchLeadsQuietlyToTheWholeFile)
{
    for (const bool twoEntries : {false, true}) {
        UpdateRig rig;
        const QString archive = rig.served(QStringLiteral("ios/u2/update-20170101-20170201.zip"));
        QFile::remove(archive);
        if (twoEntries) {
            QString error;
            ASSERT_TRUE(ZipArchive::create(archive, {{QStringLiteral("a.db"), "a", {}}, {QStringLiteral("b.db"), "b", {}}},
                                          QStringLiteral("Hw3TzqLm8XvRk2NbYc7PfJs9GdUe4AoQ"), ZipArchive::Encryption::Aes256, &error));
        }
        rig.downloader->startUpdate();
        ASSERT_TRUE(rig.waitForEnd());
        EXPECT_FALSE(rig.follower.error);
        EXPECT_TRUE(rig.follower.events.contains(QLatin1String("complete"))) << rig.follower.events.join(' ').toStdString();
        EXPECT_EQ(rig.downloader->state(), DownloadState::DownloadingDB);
        EXPECT_TRUE(rig.documents().contains(QStringLiteral("velmora-20170201.db")));
        EXPECT_EQ(rig.transferFiles(), QStringList());
        rig.restaurants->reload();
        EXPECT_EQ(rig.restaurants->databaseVersionDate(), QDate(2017, 2, 1));
    }
}

// Catches: a whole file that is no good (absent, not a catalogue, older, without a date, or
// already here) installed, or refused with the wrong code, or leaving the catalogue in use broken.
TEST(Downloader, WholeFilesThatAreNoGoodEndInTheirCodes)
{
    UpdateRig rig;
    const auto serve = [&](const QString &name, const std::function<void(const QString &)> &make) {
        make(rig.served(QStringLiteral("ios/") + name));
        return rig.url(QStringLiteral("ios/") + name);
    };
    const auto fixtureOf = [](std::optional<QString> date) {
        return [date](const QString &path) {
            CatalogueFixture fixture = CatalogueFixture::small();
            fixture.versionDate = date;
            ASSERT_TRUE(fixture.write(path));
        };
    };
    struct Case {
        QUrl url;
        int code;
        QString message;
    };
    QStringList asked;
    NamedServer failing("500", "oops", asked, "500 Internal Server Error");
    const QList<Case> cases = {
        {rig.url(QStringLiteral("ios/absent.db")), 3, QStringLiteral("download finished with code 404")},
        {QUrl(failing.url().toString().replace(QLatin1String("last.txt"), QLatin1String("velmora.db"))), 3,
         QStringLiteral("download finished with code 500")},
        {serve(QStringLiteral("garbage.db"), [](const QString &path) { BrokenFiles::writeGarbage(path); }), 5,
         QStringLiteral("failed to decipher new DB")},
        {serve(QStringLiteral("older.db"), fixtureOf(QStringLiteral("20161201"))), 4, QStringLiteral("new DB is outdated (baffled!)")},
        {serve(QStringLiteral("undated.db"), fixtureOf(std::nullopt)), 8, QStringLiteral("DB file has no version information")},
        {serve(QStringLiteral("same.db"), fixtureOf(QStringLiteral("20170101"))), 4, QStringLiteral("new DB is outdated (baffled!)")},
    };
    for (const Case &c : cases) {
        rig.follower = Follower();
        rig.downloader->startFullDownload(c.url);
        ASSERT_TRUE(rig.waitForEnd()) << c.url.toString().toStdString();
        ASSERT_TRUE(rig.follower.error) << c.url.toString().toStdString();
        EXPECT_EQ(rig.follower.error->code, c.code);
        EXPECT_EQ(rig.follower.error->message, c.message);
        EXPECT_EQ(rig.documents(), QStringList{QStringLiteral("velmora-20170101.db")});
        EXPECT_EQ(rig.transferFiles(), QStringList());
    }
    // A newer file whose name is taken already (a damaged copy the load refused) stays as it is.
    BrokenFiles::writeGarbage(QDir(rig.home.documents()).filePath(QStringLiteral("velmora-20170301.db")));
    rig.follower = Follower();
    rig.downloader->startFullDownload(serve(QStringLiteral("taken.db"), fixtureOf(QStringLiteral("20170301"))));
    ASSERT_TRUE(rig.waitForEnd());
    ASSERT_TRUE(rig.follower.error);
    EXPECT_EQ(rig.follower.error->code, 9);
    EXPECT_EQ(rig.follower.error->message, QStringLiteral("file velmora-20170301.db already exists"));
    EXPECT_EQ(rig.transferFiles(), QStringList());

    rig.restaurants->reload();
    EXPECT_TRUE(rig.restaurants->ready());
    EXPECT_EQ(rig.restaurants->databaseVersionDate(), QDate(2017, 1, 1));
}

// Catches: a lost connection ending the update (or starting it over from zero), a resume that
// appends a newer file's tail to an older file's head, and a resume without a validator.
TEST(Downloader, LostConnectionsResumeWithRangeUnlessTheFileChanged)
{
    UpdateRig rig;
    const QUrl whole = rig.url(QStringLiteral("ios/velmora-20170201.db"));
    rig.proxy->cutAfter(20000);
    rig.downloader->startFullDownload(whole);
    ASSERT_TRUE(rig.waitForEnd());
    EXPECT_FALSE(rig.follower.error);
    EXPECT_TRUE(rig.proxy->sawRequestWith("Range: bytes="));
    EXPECT_TRUE(rig.proxy->sawRequestWith("If-Range: \""));
    EXPECT_TRUE(rig.documents().contains(QStringLiteral("velmora-20170201.db")));

    // The file changes on the server between the cut and the resume: the resume is answered
    // with the whole new file, which is what gets installed.
    UpdateRig changed;
    const QString servedPath = changed.served(QStringLiteral("ios/velmora-20170201.db"));
    changed.proxy->cutAfter(20000);
    bool replaced = false;
    changed.proxy->onCut = [&] {
        CatalogueFixture other = CatalogueFixture::small();
        other.versionDate = QStringLiteral("20170201");
        other.places[0].name = QStringLiteral("Otra Bodeguita");
        QFile::remove(servedPath);
        replaced = other.write(servedPath);
    };
    changed.downloader->startFullDownload(changed.url(QStringLiteral("ios/velmora-20170201.db")));
    ASSERT_TRUE(changed.waitForEnd());
    EXPECT_FALSE(changed.follower.error);
    changed.restaurants->reload();
    ASSERT_EQ(changed.restaurants->databaseVersionDate(), QDate(2017, 2, 1));
    ASSERT_TRUE(replaced);
    EXPECT_EQ(changed.restaurants->brief(100)->name, QStringLiteral("Otra Bodeguita"));
}

// Catches: a transfer lost with the process that made it (the next run starting over, or not
// at all), and a cancel that leaves its partial file behind or reports anything but -999.
TEST(Downloader, TransferOutlivesItsDownloaderAndCancelCleansUp)
{
    UpdateRig rig;
    rig.proxy->trickle(256);
    rig.downloader->startFullDownload(rig.url(QStringLiteral("ios/velmora-20170201.db")));
    ASSERT_TRUE(QTest::qWaitFor([&] { return rig.follower.lastWritten > 4096; }, 10000));
    rig.makeDownloader(); // the process ends; the next one makes its Downloader at start
    rig.proxy->trickle(0);
    ASSERT_TRUE(rig.waitForEnd());
    EXPECT_FALSE(rig.follower.error);
    EXPECT_TRUE(rig.follower.events.contains(QLatin1String("complete")));
    EXPECT_EQ(std::count_if(rig.proxy->requests.begin(), rig.proxy->requests.end(),
                            [](const QByteArray &head) { return head.startsWith("GET /ios/velmora-20170201.db"); }),
              2);
    EXPECT_TRUE(rig.proxy->sawRequestWith("Range: bytes="));
    EXPECT_TRUE(rig.documents().contains(QStringLiteral("velmora-20170201.db")));

    UpdateRig cancelled;
    cancelled.proxy->trickle(256);
    cancelled.downloader->startUpdate();
    ASSERT_TRUE(QTest::qWaitFor([&] { return cancelled.follower.lastWritten > 0 || !cancelled.transferFiles().isEmpty(); }, 10000));
    bool running = false;
    cancelled.downloader->isDownloading([&](bool answer) { running = answer; });
    ASSERT_TRUE(QTest::qWaitFor([&] { return running; }, 1000));
    cancelled.downloader->cancel();
    ASSERT_TRUE(cancelled.waitForEnd());
    ASSERT_TRUE(cancelled.follower.error);
    EXPECT_EQ(cancelled.follower.error->code, -999);
    EXPECT_EQ(cancelled.transferFiles(), QStringList());
    EXPECT_EQ(cancelled.documents(), QStringList{QStringLiteral("velmora-20170101.db")});
}
