#include "catalogue/Restaurants.h"
#include "fixtures/TestHome.h"
#include "info/InfoTableViewController.h"
#include "platform/DefaultKeys.h"
#include "platform/Localize.h"
#include "platform/Paths.h"
#include "platform/UserDefaults.h"
#include "update/Downloader.h"
#include "update/UpdateChecker.h"

#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

namespace {
// A catalogue that expires long after the test.
CatalogueFixture current()
{
    CatalogueFixture fixture = CatalogueFixture::small();
    fixture.expireDate = QStringLiteral("20991231");
    return fixture;
}

struct InfoScreen {
    explicit InfoScreen(const CatalogueFixture &fixture = current())
    {
        Localize::loadCurrentLanguage();
        restaurants = home.openCatalogue(fixture);
        checker = std::make_unique<UpdateChecker>(home.defaults(), *restaurants);
        downloader = std::make_unique<Downloader>(*restaurants, home.defaults(), *checker, Downloader::LocalSources{},
                                                  Downloader::Folders{Paths::caches(), Paths::applicationSupport()});
        screen = std::make_unique<InfoTableViewController>(*restaurants, home.defaults(), checker.get(), downloader.get());
        screen->loadViewIfNeeded();
    }
    QString secondRow() const { return screen->cells().value(1); }

    TestHome home;
    std::unique_ptr<Restaurants> restaurants;
    std::unique_ptr<UpdateChecker> checker;
    std::unique_ptr<Downloader> downloader;
    std::unique_ptr<InfoTableViewController> screen;
};
}

// Catches: the update offered with nothing to offer, or not offered for an expired catalogue, a
// newer one known (also when learnt while the screen is open) or the developer's switch.
TEST(InfoScreen, TheOfferFollowsExpiryNewerCataloguesAndTheDeveloperSwitch)
{
    {
        InfoScreen info;
        EXPECT_EQ(info.screen->cells(), (QStringList{InfoTableViewController::versionHeader, InfoTableViewController::update,
                                                     InfoTableViewController::contactHeader, InfoTableViewController::website,
                                                     InfoTableViewController::email, InfoTableViewController::socialNetworks,
                                                     InfoTableViewController::separator, InfoTableViewController::rateApp,
                                                     InfoTableViewController::shake}));
        EXPECT_FALSE(info.screen->offer());
        EXPECT_TRUE(info.screen->databaseVersion().endsWith(QLatin1Char('(') + qtTrId("info_db_up_to_date") + QLatin1Char(')')));
        EXPECT_TRUE(info.screen->databaseVersion().contains(QStringLiteral("1.20170101")));

        QSignalSpy changed(info.screen.get(), &InfoTableViewController::cellsChanged);
        info.checker->noteAnnouncedDate(QDate(2017, 3, 1));
        EXPECT_GE(changed.count(), 1);
        EXPECT_TRUE(info.screen->offer());
        EXPECT_TRUE(info.screen->databaseVersion().contains(qtTrId("info_db_outdated")));
    }
    {
        InfoScreen info;
        info.home.defaults().setBool(true, DefaultKeys::devUpdateAlwaysEnabled);
        EXPECT_TRUE(info.screen->offer());
    }
    {
        CatalogueFixture expired = CatalogueFixture::small();
        expired.expireDate = QStringLiteral("20170201");
        InfoScreen info(expired);
        EXPECT_TRUE(info.screen->offer());
    }
}

// Catches: the progress row not replacing the offer, a patch that can be cancelled half-way,
// percentages that don't end on 100, an error that leaves the row, and a cancel that doesn't
// bring the offer back.
TEST(InfoScreen, TheProgressRowFollowsTheUpdateAndItsFailures)
{
    InfoScreen info;
    ProgressCell *cell = info.screen->progressCell();
    info.screen->updateButtonTouched();
    EXPECT_EQ(info.secondRow(), InfoTableViewController::progress);
    EXPECT_EQ(cell->title(), qtTrId("info_updating"));
    EXPECT_LT(cell->progress(), 0);

    info.screen->downloadProgress(500000, 2000000);
    EXPECT_EQ(cell->statusText(), QStringLiteral("0.5 / 2.0 MB"));
    info.screen->downloadProgress(12000, 48000); // a patch's few kilobytes
    EXPECT_EQ(cell->statusText(), QStringLiteral("12 / 48 kB"));
    info.screen->patchStarted();
    EXPECT_FALSE(cell->cancelEnabled());
    info.screen->patchProgress(1, 3);
    EXPECT_EQ(cell->statusText(), QStringLiteral("33.3%"));
    EXPECT_EQ(cell->title(), qtTrId("info_applying_patches"));
    cell->cancelButtonTouched(); // disabled: nothing happens
    EXPECT_EQ(info.secondRow(), InfoTableViewController::progress);
    info.screen->patchProgress(3, 3);
    EXPECT_EQ(cell->statusText(), QStringLiteral("100.0%"));
    info.screen->patchSuceeded();
    EXPECT_EQ(info.secondRow(), InfoTableViewController::update);
    EXPECT_TRUE(cell->cancelEnabled());

    info.screen->updateButtonTouched();
    info.screen->downloadDidFinishWithError(Error{QStringLiteral("Velmora"), 3, QStringLiteral("download finished with code 500")});
    EXPECT_EQ(info.secondRow(), InfoTableViewController::progress);
    EXPECT_EQ(cell->statusText(), qtTrId("update_error").arg(QStringLiteral("download finished with code 500")));
    EXPECT_EQ(cell->progress(), 0);
    cell->cancelButtonTouched();
    EXPECT_EQ(info.secondRow(), InfoTableViewController::update);
}
