#include "catalogue/CatalogueDates.h"
#include "catalogue/CatalogueFiles.h"

#include <gtest/gtest.h>

// Catches: a case-sensitive name test missing a file the user copied in, or any ".db" being
// taken for a catalogue.
TEST(CatalogueFiles, CandidateNamesFollowTheLowerCasedName)
{
    for (const char *name : {"velmora-20170101.db", "VELMORA-20170101.DB", "Velmora.db", "havana.vmr", "GUIDE.VMR", ".vmr"})
        EXPECT_TRUE(CatalogueFiles::isCandidateName(QString::fromLatin1(name))) << name;
    for (const char *name : {"velmora-20170101.txt", "velmora-20170101.db.part", "catalogue.db", "fts.db", "velmora.vmr.zip"})
        EXPECT_FALSE(CatalogueFiles::isCandidateName(QString::fromLatin1(name))) << name;
    EXPECT_EQ(CatalogueFiles::catalogueFileName(QDate(2017, 3, 1)), QStringLiteral("velmora-20170301.db"));
}

TEST(CatalogueFiles, PatchNamesGiveTheirTwoDates)
{
    const auto dates = CatalogueFiles::patchDates(QStringLiteral("/x/velmora-20170101-20170301.db"));
    ASSERT_TRUE(dates);
    EXPECT_EQ(dates->from, QStringLiteral("20170101"));
    EXPECT_EQ(dates->to, QStringLiteral("20170301"));
    EXPECT_FALSE(CatalogueFiles::patchDates(QStringLiteral("velmora-20170101.db")));
    EXPECT_FALSE(CatalogueFiles::patchDates(QStringLiteral("velmora-2017010-20170301.db")));
}

// Catches: loose parsing that lets a dashed or padded value pass as a version date.
TEST(CatalogueDates, OnlyTheExactPatternParses)
{
    EXPECT_EQ(CatalogueDates::parseCompact(QStringLiteral("20170301")), QDate(2017, 3, 1));
    for (const char *bad : {"2017-03-01", " 20170301", "20170301 ", "20171301", "20170230", "", "2017031"})
        EXPECT_FALSE(CatalogueDates::parseCompact(QString::fromLatin1(bad))) << bad;
    EXPECT_EQ(CatalogueDates::parseDashed(QStringLiteral("2017-03-01")), QDate(2017, 3, 1));
    EXPECT_FALSE(CatalogueDates::parseDashed(QStringLiteral("20170301")));
    EXPECT_EQ(CatalogueDates::formatDashed(QDate(2017, 3, 1)), QStringLiteral("2017-03-01"));
}
