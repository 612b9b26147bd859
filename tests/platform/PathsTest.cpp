#include "platform/Paths.h"

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

// Catches: the command line losing to the environment, and the three directories landing
// outside the chosen root.
TEST(Paths, HomeComesFromTheCommandLineThenTheEnvironment)
{
    qputenv("VELMORA_HOME", "/from/env");
    EXPECT_EQ(Paths::rootFromArguments({QStringLiteral("velmora"), QStringLiteral("--home"), QStringLiteral("/from/args")}),
              QStringLiteral("/from/args"));
    EXPECT_EQ(Paths::rootFromArguments({QStringLiteral("velmora"), QStringLiteral("--home")}), QStringLiteral("/from/env"));
    qunsetenv("VELMORA_HOME");
    EXPECT_TRUE(Paths::rootFromArguments({QStringLiteral("velmora")}).isEmpty());

    QTemporaryDir dir;
    Paths::setRoot(dir.path());
    for (const QString &sub : {Paths::documents(), Paths::caches(), Paths::applicationSupport()}) {
        EXPECT_TRUE(sub.startsWith(dir.path()));
        EXPECT_TRUE(QDir(sub).exists());
    }
    EXPECT_NE(Paths::documents(), Paths::caches());
    Paths::setRoot(QString());
}
