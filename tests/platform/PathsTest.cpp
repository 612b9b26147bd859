#include "platform/Paths.h"

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

// Catches: the three directories landing outside the chosen root.
TEST(Paths, DirectoriesLieUnderTheRoot)
{
    QTemporaryDir dir;
    Paths::setRoot(dir.path());
    for (const QString &sub : {Paths::documents(), Paths::caches(), Paths::applicationSupport()}) {
        EXPECT_TRUE(sub.startsWith(dir.path()));
        EXPECT_TRUE(QDir(sub).exists());
    }
    EXPECT_NE(Paths::documents(), Paths::caches());
    Paths::setRoot(QString());
}
