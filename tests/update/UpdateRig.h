#pragma once

#include "catalogue/Restaurants.h"
#include "fixtures/TestHome.h"
#include "fixtures/TestSigning.h"
#include "platform/DefaultKeys.h"
#include "platform/Paths.h"
#include "platform/UserDefaults.h"
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
#include <QTemporaryDir>
#include <QTest>
#include <QThread>

#include <gtest/gtest.h>

// What a screen following the Downloader would see, in order, and on which thread.
struct Follower : DownloaderDelegate {
    QStringList events;
    std::optional<Error> error;
    qint64 lastWritten = 0;
    bool offMainThread = false;

    void note(const QString &event)
    {
        offMainThread |= QThread::currentThread() != QCoreApplication::instance()->thread();
        events.append(event);
    }
    void downloadDidFinishWithError(const Error &e) override { error = e, note(QStringLiteral("error")); }
    void downloadProgress(qint64 written, qint64) override
    {
        lastWritten = written;
        if (events.isEmpty() || events.last() != QLatin1String("progress"))
            note(QStringLiteral("progress"));
    }
    void downloadDidComplete() override { note(QStringLiteral("complete")); }
    void downloadingPatch() override { note(QStringLiteral("unpacked")); }
    void patchStarted() override { note(QStringLiteral("patchStarted")); }
    void patchProgress(int done, int total) override { note(QStringLiteral("patch %1/%2").arg(done).arg(total)); }
    void patchSuceeded() override { note(QStringLiteral("patched")); }
    void patchFailed(const QString &message) override { note(QStringLiteral("patchFailed ") + message); }

    bool ended() const
    {
        return events.contains(QLatin1String("complete")) || events.contains(QLatin1String("patched"))
               || events.contains(QLatin1String("error"));
    }
};

// A home with the catalogue of 20170101 in use, a Downloader for it, and a shelf served by the
// toolkit's server (behind a fault proxy) announcing the catalogue of 20170201 with its patch;
// signed with `signingKey` when one is given, and the home trusting `trustedKey` when given.
// With neither, the shelf is unsigned and the home a developer's, with unsigned updates allowed:
// for the tests of transfers and installation, whose files a signature would refuse first.
struct UpdateRig {
    TestHome home;
    QByteArray signingKey;
    QTemporaryDir shelf;
    QTemporaryDir work;
    UpdateServer server{shelf.path()};
    std::unique_ptr<FaultProxy> proxy;
    std::unique_ptr<Restaurants> restaurants;
    std::unique_ptr<UpdateChecker> checker;
    std::unique_ptr<Downloader> downloader;
    QList<UpdateURL> localSources;
    Follower follower;

    explicit UpdateRig(const QByteArray &signingKey = {}, const QByteArray &trustedKey = {})
        : signingKey(signingKey)
    {
        if (!trustedKey.isEmpty()) {
            EXPECT_TRUE(TestSigning::trust(trustedKey));
        }
        if (signingKey.isEmpty() && trustedKey.isEmpty())
            home.defaults().setBool(true, DefaultKeys::devAllowUnsignedUpdates);
        home.addCatalogue(QStringLiteral("20170101"));
        QString error;
        const quint16 port = server.listen(QHostAddress::LocalHost, 0, &error);
        EXPECT_NE(port, 0) << error.toStdString();
        proxy = std::make_unique<FaultProxy>(port);
        publishNewer(QStringLiteral("20170201"));
        restaurants = std::make_unique<Restaurants>(home.environment());
        checker = std::make_unique<UpdateChecker>(home.defaults(), *restaurants);
        UpdateChecker::setInternetURLOverride(url(QStringLiteral("ios/last.txt")));
        makeDownloader();
    }
    ~UpdateRig()
    {
        downloader.reset();
        UpdateChecker::setInternetURLOverride(QUrl());
    }

    QUrl url(const QString &path) const { return QUrl(QStringLiteral("http://127.0.0.1:%1/%2").arg(proxy->port()).arg(path)); }
    QString served(const QString &path) const { return QDir(shelf.path()).filePath(path); }

    // The catalogue of `date`, with one place renamed, and its patch from 20170101.
    void publishNewer(const QString &date)
    {
        CatalogueFixture next = CatalogueFixture::small();
        next.versionDate = date;
        next.places[1].name = QStringLiteral("El Aljibe Nuevo");
        const QString newPath = work.filePath(QStringLiteral("velmora-%1.db").arg(date));
        CatalogueFixture old = CatalogueFixture::small();
        const QString oldPath = work.filePath(QStringLiteral("velmora-20170101.db"));
        QString error;
        ASSERT_TRUE(next.write(newPath, &error) && old.write(oldPath, &error)) << error.toStdString();
        QJsonObject report;
        ASSERT_TRUE(publish(newPath, {oldPath}, shelf.path(), url(QString()).toString().chopped(1), report, &error, signingKey))
            << error.toStdString();
    }

    // A Downloader as the app makes it at start; an earlier one's transfer is picked up.
    void makeDownloader()
    {
        downloader.reset();
        downloader = std::make_unique<Downloader>(*restaurants, home.defaults(), *checker, [this] { return localSources; },
                                                  Downloader::Folders{Paths::caches(), Paths::applicationSupport()});
        downloader->setDelegate(&follower);
    }

    // Waits for the end of the update; a patch's end includes the reload that takes it into use.
    bool waitForEnd(int ms = 20000)
    {
        bool reloaded = false;
        QObject::connect(downloader.get(), &Downloader::reloadFinished, [&] { reloaded = true; });
        return QTest::qWaitFor([&] { return follower.ended() && (!follower.events.contains(QLatin1String("patched")) || reloaded); },
                               ms);
    }

    QStringList transferFiles() const
    {
        return QDir(Paths::caches()).entryList({QStringLiteral("*.download"), QStringLiteral("*.task"), QStringLiteral("*.finished")},
                                                QDir::Files | QDir::Hidden);
    }
    QStringList documents() const { return QDir(home.documents()).entryList(QDir::Files | QDir::Hidden); }
};
