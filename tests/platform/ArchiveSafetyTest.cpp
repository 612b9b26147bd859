#include "platform/DurableFiles.h"
#include "platform/ZipArchive.h"

#include <QDir>
#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {
const QString password = QStringLiteral("s3cret-Pa55");

struct Unpacked {
    bool ok = false;
    QString entry;
    QString error;
};

Unpacked unpack(const QString &zip, const QString &destination, const ZipArchive::ExtractLimits &limits = {},
                const QString &secret = password)
{
    Unpacked result;
    result.ok = ZipArchive::extractSingle(zip, destination, secret, limits, &result.entry, &result.error);
    return result;
}

QString makeZip(const QTemporaryDir &dir, const QString &name, const QList<ZipArchive::Entry> &entries,
                ZipArchive::Encryption encryption = ZipArchive::Encryption::Aes256)
{
    const QString path = dir.filePath(name);
    QString error;
    EXPECT_TRUE(ZipArchive::create(path, entries, password, encryption, &error)) << error.toStdString();
    return path;
}

QByteArray randomBytes(qsizetype size)
{
    QByteArray bytes(size, Qt::Uninitialized);
    QRandomGenerator generator(42);
    generator.fillRange(reinterpret_cast<quint32 *>(bytes.data()), size / 4);
    return bytes;
}

// Everything below `dir`, so a test can see that nothing at all was written.
QStringList filesUnder(const QString &dir)
{
    QStringList files;
    for (const QFileInfo &info : QDir(dir).entryInfoList(QDir::Files | QDir::Hidden | QDir::NoDotAndDotDot))
        files << info.fileName();
    return files;
}
}

// Catches: the older ZIP encryption no longer read (archives made by other tools use it), a
// wrong password taken for a damaged file silently, and a half-written file left behind.
TEST(ArchiveSafety, UnpacksTheOneFileWithEitherEncryptionAndNothingWithAWrongPassword)
{
    QTemporaryDir dir, out;
    const QByteArray body = randomBytes(200 * 1024);
    for (const auto encryption : {ZipArchive::Encryption::Aes256, ZipArchive::Encryption::Traditional}) {
        const QString zip = makeZip(dir, QStringLiteral("patch.zip"), {{QStringLiteral("velmora-20261101-20261201.db"), body, {}}},
                                    encryption);
        const Unpacked done = unpack(zip, out.path());
        ASSERT_TRUE(done.ok) << done.error.toStdString();
        EXPECT_EQ(done.entry, QStringLiteral("velmora-20261101-20261201.db"));
        QFile file(QDir(out.path()).filePath(done.entry));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        EXPECT_EQ(file.readAll(), body);
        file.close();
        file.remove();

        const Unpacked wrong = unpack(zip, out.path(), {}, QStringLiteral("guess"));
        EXPECT_FALSE(wrong.ok);
        EXPECT_EQ(filesUnder(out.path()), QStringList());
    }
}

// Catches: an archive from the network writing outside the app's folder (zip-slip), or more
// files than the one expected, or an entry with a hidden or path-like name.
TEST(ArchiveSafety, RefusesNamesThatAreNotAPlainFileAndMoreThanOneEntry)
{
    QTemporaryDir dir, out;
    QTemporaryDir outside;
    const QString escape = QDir(out.path()).relativeFilePath(QDir(outside.path()).filePath(QStringLiteral("evil.db")));
    const QStringList badNames = {QStringLiteral("../evil.db"), escape, QDir(outside.path()).filePath(QStringLiteral("evil.db")),
                                  QStringLiteral("sub\\evil.db"), QStringLiteral("sub/evil.db"), QStringLiteral(".hidden.db")};
    for (const QString &name : badNames) {
        const QString zip = makeZip(dir, QStringLiteral("bad.zip"), {{name, QByteArray("x"), {}}});
        const Unpacked refused = unpack(zip, out.path());
        EXPECT_FALSE(refused.ok) << name.toStdString();
        EXPECT_TRUE(refused.error.contains(QLatin1String("not a plain file name"))) << refused.error.toStdString();
    }
    const QString two = makeZip(dir, QStringLiteral("two.zip"),
                                {{QStringLiteral("a.db"), QByteArray("a"), {}}, {QStringLiteral("b.db"), QByteArray("b"), {}}});
    EXPECT_FALSE(unpack(two, out.path()).ok);
    const QString none = makeZip(dir, QStringLiteral("none.zip"), {});
    EXPECT_FALSE(QFile::exists(none) && unpack(none, out.path()).ok);
    EXPECT_EQ(filesUnder(out.path()), QStringList());
    EXPECT_EQ(filesUnder(outside.path()), QStringList());
}

// Catches: a zip bomb filling the disk; the size is judged from the archive's directory before a
// byte is unpacked, by an absolute cap and by the ratio to the archive's own size.
TEST(ArchiveSafety, RefusesSizesBeyondTheCapOrTheRatioBeforeWriting)
{
    QTemporaryDir dir, out;
    const QString bomb = makeZip(dir, QStringLiteral("bomb.zip"), {{QStringLiteral("zeros.db"), QByteArray(40 * 1024 * 1024, '\0'), {}}});
    ASSERT_LT(QFileInfo(bomb).size(), 200 * 1024);
    const Unpacked ratio = unpack(bomb, out.path());
    EXPECT_FALSE(ratio.ok);
    EXPECT_TRUE(ratio.error.contains(QLatin1String("would unpack to"))) << ratio.error.toStdString();

    const QString big = makeZip(dir, QStringLiteral("big.zip"), {{QStringLiteral("big.db"), randomBytes(3 * 1024 * 1024), {}}});
    ZipArchive::ExtractLimits limits;
    limits.maxBytes = 2 * 1024 * 1024;
    EXPECT_FALSE(unpack(big, out.path(), limits).ok);
    limits.maxBytes = 4 * 1024 * 1024;
    EXPECT_TRUE(unpack(big, out.path(), limits).ok);

    QFile damaged(dir.filePath(QStringLiteral("damaged.zip")));
    ASSERT_TRUE(damaged.open(QIODevice::WriteOnly));
    damaged.write(randomBytes(4096));
    damaged.close();
    EXPECT_FALSE(unpack(damaged.fileName(), out.path()).ok);
    EXPECT_EQ(filesUnder(out.path()), QStringList{QStringLiteral("big.db")});
}

// Catches: a move that replaces a file it was told to keep (a catalogue already in Documents),
// or a durable write that leaves its temporary name behind.
TEST(DurableFiles, MovesWithoutReplacingWhenToldAndLeavesNoTemporaryName)
{
    QTemporaryDir dir;
    const QString kept = dir.filePath(QStringLiteral("velmora-20261201.db"));
    QString error;
    ASSERT_TRUE(DurableFiles::writeFile(kept, "good", &error)) << error.toStdString();
    const QString incoming = dir.filePath(QStringLiteral("incoming"));
    ASSERT_TRUE(DurableFiles::writeFile(incoming, "other", &error));
    EXPECT_FALSE(DurableFiles::moveFile(incoming, kept, false, &error));
    QFile file(kept);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), QByteArray("good"));
    file.close();
    EXPECT_TRUE(QFile::exists(incoming));

    EXPECT_TRUE(DurableFiles::moveFile(incoming, dir.filePath(QStringLiteral("moved")), false, &error)) << error.toStdString();
    EXPECT_FALSE(QFile::exists(incoming));
    EXPECT_EQ(filesUnder(dir.path()).size(), 2);
}
