#include "platform/Database.h"
#include "platform/DatabaseQueue.h"

#include <QMap>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {
const QString key = QStringLiteral("Kr4{]%Tgpw");

std::unique_ptr<Database> makeKeyed(const QString &path)
{
    auto db = std::make_unique<Database>(path);
    EXPECT_TRUE(db->open());
    EXPECT_TRUE(db->setKey(key));
    return db;
}
}

// Catches: bound values changing type or NULL-ness on the way (a NULL name must stay NULL, an
// empty one empty), and blobs being cut at a zero byte.
TEST(Database, BindsAndReadsEveryValueKind)
{
    QTemporaryDir dir;
    auto db = makeKeyed(dir.filePath(QStringLiteral("a.db")));
    ASSERT_TRUE(db->executeStatements(QStringLiteral("CREATE TABLE t(i INTEGER, r REAL, s TEXT, b BLOB, n TEXT)")));
    const QByteArray blob("\x89PNG\0\x01\x02", 7);
    ASSERT_TRUE(db->executeUpdate(QStringLiteral("INSERT INTO t VALUES(?, ?, ?, ?, ?)"),
                                  {qint64(1) << 40, 2.5, QStringLiteral("ñandú"), blob, QVariant()}));
    ASSERT_TRUE(db->executeUpdate(QStringLiteral("INSERT INTO t VALUES(?, ?, ?, ?, ?)"),
                                  {1, 0.0, QString(QLatin1String("")), QByteArray(), QStringLiteral("x")}));
    ResultSet rows = db->executeQuery(QStringLiteral("SELECT * FROM t ORDER BY i DESC"));
    ASSERT_TRUE(rows.next());
    EXPECT_EQ(rows.longForColumn(QStringLiteral("i")), qint64(1) << 40);
    EXPECT_DOUBLE_EQ(rows.doubleForColumn(QStringLiteral("r")), 2.5);
    EXPECT_EQ(rows.stringForColumn(QStringLiteral("S")), QStringLiteral("ñandú"));
    EXPECT_EQ(rows.dataForColumn(QStringLiteral("b")), blob);
    EXPECT_TRUE(rows.stringForColumn(QStringLiteral("n")).isNull());
    ASSERT_TRUE(rows.next());
    EXPECT_FALSE(rows.stringForColumn(QStringLiteral("s")).isNull());
    EXPECT_TRUE(rows.stringForColumn(QStringLiteral("s")).isEmpty());
    EXPECT_FALSE(rows.next());
    EXPECT_FALSE(rows.failed());
}

// Catches: a wrong key or a broken statement going unnoticed, and optional tables or columns
// being reported present.
TEST(Database, ReportsFailuresAndSchema)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("b.db"));
    {
        auto db = makeKeyed(path);
        ASSERT_TRUE(db->executeStatements(QStringLiteral("CREATE TABLE restaurants(id INTEGER, name TEXT)")));
        EXPECT_TRUE(db->tableExists(QStringLiteral("restaurants")));
        EXPECT_FALSE(db->tableExists(QStringLiteral("offers")));
        EXPECT_TRUE(db->columnExists(QStringLiteral("name"), QStringLiteral("restaurants")));
        EXPECT_FALSE(db->columnExists(QStringLiteral("profile_url"), QStringLiteral("restaurants")));
        EXPECT_FALSE(db->executeQuery(QStringLiteral("SELECT nope FROM restaurants")).isValid());
        EXPECT_FALSE(db->lastErrorMessage().isEmpty());
        EXPECT_FALSE(db->executeQuery(QStringLiteral("SELECT ? FROM restaurants"), {}).isValid());
    }
    Database wrongKey(path);
    ASSERT_TRUE(wrongKey.openWithFlags(Database::ReadOnly));
    ASSERT_TRUE(wrongKey.setKey(QStringLiteral("not-the-key")));
    EXPECT_FALSE(wrongKey.executeQuery(QStringLiteral("SELECT id FROM restaurants")).isValid());

    Database missing(dir.filePath(QStringLiteral("missing.db")));
    EXPECT_FALSE(missing.openWithFlags(Database::ReadOnly));
}

// Catches: a rolled-back transaction leaving its rows, and nested use of a queue deadlocking.
TEST(DatabaseQueue, TransactionsCommitOrRollBackAndBlocksMayNest)
{
    QTemporaryDir dir;
    DatabaseQueue queue(makeKeyed(dir.filePath(QStringLiteral("q.db"))));
    queue.inDatabase([](Database &db) { db.executeStatements(QStringLiteral("CREATE TABLE t(x)")); });
    EXPECT_TRUE(queue.inTransaction([](Database &db, bool &) { db.executeUpdate(QStringLiteral("INSERT INTO t VALUES(1)")); }));
    EXPECT_FALSE(queue.inTransaction([](Database &db, bool &rollback) {
        db.executeUpdate(QStringLiteral("INSERT INTO t VALUES(2)"));
        rollback = true;
    }));
    int count = -1;
    queue.inDatabase([&](Database &) {
        queue.inDatabase([&](Database &db) {
            ResultSet rows = db.executeQuery(QStringLiteral("SELECT count(*) FROM t"));
            if (rows.next())
                count = rows.intForColumn(0);
        });
    });
    EXPECT_EQ(count, 1);
}

// Catches read-only connections (which read the file ahead in blocks) serving what they read
// before another connection changed the file, or cutting a read at a block's end or at the
// file's: a table many blocks long is scanned, rewritten and grown by a second connection, and
// scanned again, each scan seeing exactly the rows there are; in WAL mode too, where the reader
// keeps its lock between reads.
class ReadOnlyConnections : public testing::TestWithParam<const char *>
{
};

TEST_P(ReadOnlyConnections, SeeEveryChangeBetweenReads)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("c.db"));
    auto writer = makeKeyed(path);
    ASSERT_TRUE(writer->executeStatements(QStringLiteral("PRAGMA journal_mode=%1").arg(QString::fromLatin1(GetParam()))));
    ASSERT_TRUE(writer->executeStatements(QStringLiteral("CREATE TABLE t(id INTEGER PRIMARY KEY, v TEXT)")));
    QMap<int, QString> rows;
    const auto write = [&](int round, int count) {
        ASSERT_TRUE(writer->executeStatements(QStringLiteral("BEGIN")));
        for (int id = 1; id <= count; ++id) {
            rows[id] = QStringLiteral("%1:%2:").arg(round).arg(id).leftJustified(40 + (id * 7 + round) % 300, QLatin1Char('x'));
            ASSERT_TRUE(writer->executeUpdate(QStringLiteral("INSERT OR REPLACE INTO t VALUES(?, ?)"), {id, rows[id]}));
        }
        ASSERT_TRUE(writer->executeStatements(QStringLiteral("COMMIT")));
        // In WAL mode, the changes then reach the file itself while the reader stays open.
        ASSERT_TRUE(writer->executeStatements(QStringLiteral("PRAGMA wal_checkpoint(TRUNCATE)")));
    };
    write(0, 3000);

    Database reader(path);
    ASSERT_TRUE(reader.openWithFlags(Database::ReadOnly) && reader.setKey(key));
    for (int round = 1; round <= 4; ++round) {
        QMap<int, QString> read;
        ASSERT_TRUE(reader.forEachRow(QStringLiteral("SELECT id,v FROM t"), {}, [&](const ResultSet &row) {
            read.insert(row.intForColumn(0), row.stringForColumn(1));
            return true;
        }));
        EXPECT_EQ(read.size(), rows.size()) << "round " << round;
        EXPECT_TRUE(read == rows) << "round " << round;
        write(round, 3000 + 400 * round);
        // One row alone, read where the scan ended.
        const int last = rows.lastKey();
        QString value;
        ASSERT_TRUE(reader.forEachRow(QStringLiteral("SELECT v FROM t WHERE id = ?"), {last - 400}, [&](const ResultSet &row) {
            value = row.stringForColumn(0);
            return false;
        }));
        EXPECT_EQ(value.toStdString(), rows[last - 400].toStdString()) << "round " << round;
    }
}

INSTANTIATE_TEST_SUITE_P(Database, ReadOnlyConnections, testing::Values("DELETE", "WAL"));
