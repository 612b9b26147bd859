#include "platform/Signatures.h"
#include "toolkit/Signing.h"
#include "update/SignedFiles.h"
#include "update/UpdateRig.h"

#include <QProcess>

#include <gtest/gtest.h>

namespace {
const Signatures::KeyPair publisher = Signatures::generateKeyPair();
const Signatures::KeyPair stranger = Signatures::generateKeyPair();

// What the user would see afterwards: which catalogue files the home holds, and the place the
// update renames.
QString placeShown(UpdateRig &rig)
{
    rig.restaurants->reload();
    const auto info = rig.restaurants->restaurantInfo(101);
    return info ? info->name : QString();
}

void flipAByte(const QString &path, qint64 at)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    file.seek(at);
    char byte = 0;
    file.getChar(&byte);
    file.seek(at);
    file.putChar(char(byte ^ 0x01));
}
}

// Catches: a signed update that a trusting app refuses, by patch or by whole file, and a
// signature check that costs the update its patch.
TEST(SignedUpdates, ASignedUpdateInstallsByPatchOrWholeFile)
{
    UpdateRig rig(publisher.secretKey, publisher.publicKey);
    ASSERT_TRUE(rig.checker->requiresSignatures());
    rig.downloader->startUpdate();
    ASSERT_TRUE(rig.waitForEnd());
    EXPECT_TRUE(rig.follower.events.contains(QLatin1String("patched"))) << rig.follower.events.join(QLatin1Char(' ')).toStdString();
    EXPECT_EQ(placeShown(rig), QStringLiteral("El Aljibe Nuevo"));

    UpdateRig whole(publisher.secretKey, publisher.publicKey);
    QDir(whole.served(QStringLiteral("ios/u2"))).removeRecursively();
    whole.downloader->startUpdate();
    ASSERT_TRUE(whole.waitForEnd());
    EXPECT_EQ(whole.follower.events.last(), QStringLiteral("complete")) << whole.follower.events.join(QLatin1Char(' ')).toStdString();
    EXPECT_TRUE(whole.documents().contains(QStringLiteral("velmora-20170201.db")));
}

// Catches: any tampered or misattributed file installed, announced or applied; a refused file
// left in the temporary place; a refused source asked again in the same run; and a refusal that
// costs the catalogue in use.
TEST(SignedUpdates, WhatIsNotSignedByATrustedKeyIsRefused)
{
    struct Case {
        const char *name;
        std::function<void(UpdateRig &)> tamper;
        const char *why;
    };
    const auto wholeFileOnly = [](UpdateRig &rig) { QDir(rig.served(QStringLiteral("ios/u2"))).removeRecursively(); };
    const QList<Case> cases{
        {"a byte of the catalogue changed",
         [&](UpdateRig &rig) {
             wholeFileOnly(rig);
             flipAByte(rig.served(QStringLiteral("ios/velmora-20170201.db")), 5000);
         },
         "the file's bytes are not the ones signed"},
        {"the signature of another file",
         [&](UpdateRig &rig) {
             wholeFileOnly(rig);
             QFile::remove(rig.served(QStringLiteral("ios/velmora-20170201.db.sig")));
             QFile::copy(rig.served(QStringLiteral("ios/last.txt.sig")), rig.served(QStringLiteral("ios/velmora-20170201.db.sig")));
         },
         "the signature is for last.txt, not velmora-20170201.db"},
        {"an older signed catalogue announced as newer",
         [&](UpdateRig &rig) {
             // The publisher's own older file and signature, renamed into the newer one's place.
             wholeFileOnly(rig);
             const QString older = rig.work.filePath(QStringLiteral("velmora-20170101.db"));
             QFile::remove(rig.served(QStringLiteral("ios/velmora-20170201.db")));
             QFile::copy(older, rig.served(QStringLiteral("ios/velmora-20170201.db")));
             QString error;
             QFile sig(rig.served(QStringLiteral("ios/velmora-20170201.db.sig")));
             ASSERT_TRUE(sig.open(QIODevice::WriteOnly | QIODevice::Truncate));
             sig.write(signFile(older, QStringLiteral("velmora-20170101.db"), QDate(2017, 1, 1), publisher.secretKey, &error));
         },
         "the signature is for velmora-20170101.db, not velmora-20170201.db"},
        {"an announcement rewritten to another date",
         [&](UpdateRig &rig) {
             QFile last(rig.served(QStringLiteral("ios/last.txt")));
             ASSERT_TRUE(last.open(QIODevice::WriteOnly | QIODevice::Truncate));
             last.write("20170301|" + rig.url(QStringLiteral("ios/velmora-20170201.db")).toEncoded());
         },
         "the signature is for the date 20170201, not 20170301"},
        {"a patch signed by another key",
         [&](UpdateRig &rig) {
             QString error;
             const QString patch = rig.served(QStringLiteral("ios/u2/update-20170101-20170201.zip"));
             ASSERT_TRUE(signPublishedFile(patch, QDate(2017, 2, 1), stranger.secretKey, &error, {}, QDate(2017, 1, 1))) << error.toStdString();
         },
         "signed by a key this app doesn't trust"},
        {"nothing signed at all",
         [&](UpdateRig &rig) {
             for (const QString &sig : QDir(rig.served(QStringLiteral("ios"))).entryList({QStringLiteral("*.sig")}))
                 QFile::remove(rig.served(QStringLiteral("ios/") + sig));
         },
         "no signature"},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        UpdateRig rig(publisher.secretKey, publisher.publicKey);
        c.tamper(rig);
        rig.downloader->startUpdate();
        ASSERT_TRUE(rig.waitForEnd());
        ASSERT_TRUE(rig.follower.error) << rig.follower.events.join(QLatin1Char(' ')).toStdString();
        EXPECT_TRUE(rig.follower.error->message.contains(QLatin1String(c.why))) << rig.follower.error->message.toStdString();
        EXPECT_FALSE(rig.follower.events.contains(QLatin1String("patched")));
        EXPECT_EQ(rig.documents(), QStringList{QStringLiteral("velmora-20170101.db")}) << "nothing installed";
        EXPECT_TRUE(rig.transferFiles().isEmpty()) << "the refused file is gone: " << rig.transferFiles().join(' ').toStdString();
        EXPECT_TRUE(rig.checker->isRefused(rig.url(QString())));
        EXPECT_EQ(placeShown(rig), QStringLiteral("El Aljibe")) << "the catalogue in use keeps working";
        EXPECT_FALSE(rig.checker->isNewerDatabaseKnown());

        // Asked again in the same run, the refused source isn't even fetched.
        rig.proxy->requests.clear();
        rig.follower = {};
        rig.downloader->startUpdate();
        ASSERT_TRUE(rig.waitForEnd());
        EXPECT_FALSE(rig.proxy->sawRequestWith("GET /ios/last.txt")) << "a refused source is skipped";
    }
}

// Catches: a rogue local server at the highest priority that changes the catalogue or is even
// announced, and the trusted Internet update that it would push aside.
TEST(SignedUpdates, ARogueServerAtTheHighestPriorityChangesNothing)
{
    UpdateRig rig(publisher.secretKey, publisher.publicKey);
    // The rogue: its own catalogue and patch, signed by its own key, announced at priority 900.
    QTemporaryDir rogueShelf;
    UpdateServer rogue(rogueShelf.path());
    QString error;
    const quint16 roguePort = rogue.listen(QHostAddress::LocalHost, 0, &error);
    CatalogueFixture forged = CatalogueFixture::small();
    forged.versionDate = QStringLiteral("20991231");
    forged.places[1].name = QStringLiteral("Call 555-ROGUE");
    const QString forgedPath = rig.work.filePath(QStringLiteral("velmora-20991231.db"));
    ASSERT_TRUE(forged.write(forgedPath, &error));
    QJsonObject report;
    ASSERT_TRUE(publish(forgedPath, {rig.work.filePath(QStringLiteral("velmora-20170101.db"))}, rogueShelf.path(),
                        QStringLiteral("http://127.0.0.1:%1").arg(roguePort), report, &error, stranger.secretKey));
    const QUrl rogueUrl(QStringLiteral("http://127.0.0.1:%1/ios/last.txt").arg(roguePort));
    rig.localSources = {{rogueUrl, 900}};

    rig.checker->fetchUpdateInfo(rogueUrl, [](const UpdateInfo &) { ADD_FAILURE() << "the rogue was announced"; });
    rig.downloader->startUpdate();
    ASSERT_TRUE(rig.waitForEnd());
    EXPECT_TRUE(rig.follower.events.contains(QLatin1String("patched"))) << rig.follower.events.join(QLatin1Char(' ')).toStdString();
    EXPECT_EQ(placeShown(rig), QStringLiteral("El Aljibe Nuevo")) << "the publisher's update, not the rogue's";
    EXPECT_TRUE(rig.checker->isRefused(rogueUrl));
    EXPECT_FALSE(rig.documents().contains(QStringLiteral("velmora-20991231.db")));
}

// Catches: `velmora --update-now` refusing without saying why.
TEST(SignedUpdates, TheCommandLineSaysWhyItRefused)
{
    UpdateRig rig({}, publisher.publicKey); // the shelf is unsigned, the home trusts a key
    QProcess app;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("VELMORA_DISCOVERY_SECONDS"), QStringLiteral("0"));
    app.setProcessEnvironment(environment);
    app.start(QStringLiteral(VELMORA_APP), {QStringLiteral("--home"), rig.home.root(), QStringLiteral("--update-now"),
                                            QStringLiteral("--update-url"), rig.url(QStringLiteral("ios/last.txt")).toString()});
    // The proxy lives on this thread: keep serving while the app runs.
    ASSERT_TRUE(QTest::qWaitFor([&] { return app.state() == QProcess::NotRunning; }, 60000));
    const QByteArray out = app.readAllStandardOutput();
    EXPECT_NE(app.exitCode(), 0);
    EXPECT_TRUE(out.contains("\"failed\"")) << out.constData();
    EXPECT_TRUE(out.contains("refused")) << out.constData();
    EXPECT_TRUE(out.contains("no signature")) << out.constData();
    EXPECT_EQ(rig.documents(), QStringList{QStringLiteral("velmora-20170101.db")});
}
