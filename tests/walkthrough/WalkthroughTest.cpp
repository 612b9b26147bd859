#include "catalogue/CatalogueImport.h"
#include "catalogue/Restaurants.h"
#include "fixtures/TestHome.h"
#include "platform/Localize.h"
#include "platform/Paths.h"
#include "update/Downloader.h"
#include "update/UpdateChecker.h"
#include "walkthrough/WTPage1ViewController.h"

#include <QDir>
#include <QFile>
#include <QTest>

#include <gtest/gtest.h>

#include <csignal>
#include <sys/resource.h>

namespace {
struct ReadyCounter : DatabaseReadyDelegate {
    int calls = 0;
    void databaseReady() override { ++calls; }
};

// A first run: no catalogue, the app's Downloader, and the walkthrough over them.
struct FirstRun {
    FirstRun() { Localize::loadCurrentLanguage(); }

    TestHome home;
    std::unique_ptr<Restaurants> restaurants = std::make_unique<Restaurants>(home.environment());
    UpdateChecker checker{home.defaults(), *restaurants};
    Downloader downloader{*restaurants, home.defaults(), checker, {}, {Paths::caches(), Paths::applicationSupport()}};
    ReadyCounter app;
    WTPage1ViewController walkthrough{*restaurants, &downloader, &app, home.documents()};

    // A valid catalogue written outside Documents, as a file the user has somewhere.
    QString fileOutside(const QString &name, const QString &date = QStringLiteral("20261101"))
    {
        CatalogueFixture fixture = CatalogueFixture::small();
        fixture.versionDate = date;
        const QString path = home.root() + QLatin1Char('/') + name;
        EXPECT_TRUE(fixture.write(path));
        return path;
    }
    CatalogueImport::Outcome import(const QString &path)
    {
        return CatalogueImport::importFile(*restaurants, path, home.documents()).outcome;
    }
};
}

// Catches: steps that don't lead where their buttons say, a copy step left watching after it
// was cancelled, and a start that lets the user in before the catalogue is there.
TEST(Walkthrough, StepsSwitchAndTheCopyStepWatchesOnlyWhileShown)
{
    FirstRun run;
    run.walkthrough.viewDidLoad();
    EXPECT_EQ(run.walkthrough.step(), QStringLiteral("select"));

    run.walkthrough.selectVC()->iTunesButtonTouched();
    EXPECT_EQ(run.walkthrough.step(), QStringLiteral("itunes"));
    EXPECT_TRUE(run.walkthrough.itunesVC()->isWatching());
    run.walkthrough.itunesVC()->startButtonTouched();
    EXPECT_EQ(run.app.calls, 0);
    run.walkthrough.itunesVC()->cancelTouched();
    EXPECT_EQ(run.walkthrough.step(), QStringLiteral("select"));
    EXPECT_FALSE(run.walkthrough.itunesVC()->isWatching());

    // A file arriving after the cancel is not noticed; one arriving while watching is, within
    // about a second, and start then leads in.
    QFile::copy(run.fileOutside(QStringLiteral("early.vmr")), run.home.documents() + QStringLiteral("/Early.vmr"));
    QTest::qWait(1300);
    EXPECT_FALSE(run.walkthrough.itunesVC()->ready());
    run.walkthrough.selectVC()->iTunesButtonTouched();
    ASSERT_TRUE(QTest::qWaitFor([&] { return run.walkthrough.itunesVC()->ready(); }, 3000));
    EXPECT_FALSE(run.walkthrough.itunesVC()->isWatching());
    run.walkthrough.itunesVC()->startButtonTouched();
    EXPECT_EQ(run.app.calls, 1);
}

// Catches: a file handed over that isn't a usable catalogue copied into Documents (or the
// user's own file moved or deleted), a catalogue already there replaced, and a refusal without
// its reason.
TEST(Walkthrough, HandedOverFilesAreCheckedAndNeverLost)
{
    FirstRun run;
    const QString garbage = run.home.root() + QStringLiteral("/notes.vmr");
    BrokenFiles::writeGarbage(garbage);
    const QString plain = run.home.root() + QStringLiteral("/plain.vmr");
    {
        CatalogueFixture fixture = CatalogueFixture::small();
        fixture.key = QStringLiteral("another key");
        ASSERT_TRUE(fixture.write(run.home.root() + QStringLiteral("/other.vmr")));
        QFile text(plain);
        ASSERT_TRUE(text.open(QIODevice::WriteOnly));
        text.write("SQLite format 3\0 and nothing else", 33);
    }
    const QString good = run.fileOutside(QStringLiteral("good.vmr"));
    const QString noisy = run.fileOutside(QStringLiteral("noisy.vmr"));
    BrokenFiles::overwriteMiddle(noisy, 4096);
    const QString broken = run.home.root() + QStringLiteral("/broken.vmr");
    {
        CatalogueFixture fixture = CatalogueFixture::small();
        fixture.omitTables = {QStringLiteral("restaurants_cuisines")};
        ASSERT_TRUE(fixture.write(broken));
    }

    using Outcome = CatalogueImport::Outcome;
    EXPECT_EQ(run.import(plain), Outcome::NotACatalogue);
    EXPECT_EQ(run.import(garbage), Outcome::NotACatalogue);
    EXPECT_EQ(run.import(run.home.root() + QStringLiteral("/other.vmr")), Outcome::OtherKey);
    EXPECT_EQ(run.import(noisy), Outcome::OtherKey); // pages the cipher rejects look like another key
    EXPECT_EQ(run.import(broken), Outcome::Damaged);
    EXPECT_EQ(QDir(run.home.documents()).entryList(QDir::Files | QDir::Hidden), QStringList());

    // Through the screen: the reason shows, translated.
    WTiTunesViewController *copy = run.walkthrough.itunesVC();
    run.walkthrough.didSelectiTunes();
    copy->importCatalogue(QUrl::fromLocalFile(broken));
    ASSERT_TRUE(QTest::qWaitFor([&] { return !copy->importing() && !copy->message().isEmpty(); }, 3000));
    EXPECT_EQ(copy->message(), qtTrId("wt_import_damaged"));
    EXPECT_NE(copy->message(), QStringLiteral("wt_import_damaged"));
    EXPECT_FALSE(copy->ready());

    // A disk that fills up half-way through the copy (the process's file size limit stands in
    // for it): refused, and nothing half-written stays in Documents.
    {
        rlimit saved{};
        getrlimit(RLIMIT_FSIZE, &saved);
        const auto previous = std::signal(SIGXFSZ, SIG_IGN);
        rlimit small = saved;
        small.rlim_cur = 16 * 1024;
        setrlimit(RLIMIT_FSIZE, &small);
        const Outcome full = run.import(good);
        setrlimit(RLIMIT_FSIZE, &saved);
        std::signal(SIGXFSZ, previous);
        EXPECT_EQ(full, Outcome::CopyFailed);
        EXPECT_EQ(QDir(run.home.documents()).entryList(QDir::Files | QDir::Hidden), QStringList());
    }

    EXPECT_EQ(run.import(good), Outcome::Imported);
    EXPECT_EQ(QDir(run.home.documents()).entryList(QDir::Files | QDir::Hidden), QStringList{QStringLiteral("velmora-20261101.db")});
    EXPECT_EQ(run.import(good), Outcome::NotNewer); // its name is taken now
    for (const QString &mine : {garbage, plain, good, noisy, broken})
        EXPECT_TRUE(QFile::exists(mine)) << mine.toStdString();
    // The watch of the copy step finds what was imported.
    ASSERT_TRUE(QTest::qWaitFor([&] { return copy->ready(); }, 3000));
}

// Catches: the bar redrawn at every packet, figures in the wrong unit, and an error that hides
// the Downloader's reason.
TEST(Walkthrough, DownloadStepThrottlesProgressAndShowsFailures)
{
    FirstRun run;
    WTDownloadViewController *download = run.walkthrough.downloadVC();
    download->viewWillAppear();
    EXPECT_LT(download->progress(), 0); // indeterminate until the first figures
    download->downloadProgress(1000000, 4000000);
    EXPECT_FLOAT_EQ(download->progress(), 0.25);
    EXPECT_EQ(download->downloadLabel(), QStringLiteral("1.0 / 4.0 MB"));
    download->downloadProgress(2000000, 4000000);
    EXPECT_FLOAT_EQ(download->progress(), 0.25); // within 0.05 s of the last
    download->downloadProgress(4000000, 4000000);
    EXPECT_FLOAT_EQ(download->progress(), 1); // the end always shows

    download->downloadDidFinishWithError(Error{QStringLiteral("Velmora"), 3, QStringLiteral("download finished with code 500")});
    EXPECT_TRUE(download->failed());
    EXPECT_EQ(download->downloadLabel(), qtTrId("update_error").arg(QStringLiteral("download finished with code 500")));
    EXPECT_TRUE(download->downloadLabel().contains(QLatin1String("code 500")));
    download->startButtonTouched();
    EXPECT_EQ(run.app.calls, 0);
    download->retryTouched(); // the network is back: the bar starts over
    EXPECT_FALSE(download->failed());
    EXPECT_LT(download->progress(), 0);
    EXPECT_EQ(run.downloader.delegate(), download);
}
