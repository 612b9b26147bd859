#include "platform/Database.h"
#include "platform/DatabaseQueue.h"

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
