#pragma once

#include "platform/ResultSet.h"

#include <QString>
#include <QVariantList>

#include <atomic>
#include <chrono>
#include <functional>

struct sqlite3;
struct sqlite3_stmt;
class Database;

// One statement prepared once and run again and again with new arguments: bulk writes without
// a parse per row. Move-only; finalized when destroyed, which must happen before its database closes.
class Statement
{
public:
    Statement() = default;
    Statement(Database *database, sqlite3_stmt *statement);
    ~Statement();
    Statement(Statement &&other) noexcept;
    Statement &operator=(Statement &&other) noexcept;
    Statement(const Statement &) = delete;
    Statement &operator=(const Statement &) = delete;

    bool isValid() const { return m_statement != nullptr; }
    // Binds the arguments, runs to completion and resets. False with the database's
    // lastErrorMessage() set.
    bool run(const QVariantList &arguments);

private:
    Database *m_database = nullptr;
    sqlite3_stmt *m_statement = nullptr;
};

// How far SQL from outside the program (a patch's scripts) may reach: see Database::enterSandbox.
struct SqlSandbox {
    int maxStatementBytes = 8 * 1024 * 1024;
    qint64 maxStepsPerRun = 2'000'000'000; // virtual-machine steps of one executeStatements call
    // Only rows of the file's existing tables may be inserted, updated and deleted: no schema
    // change of any kind (tables, views, triggers, indexes), nothing temporary.
    bool rowsOnly = false;
    // Wall-clock budget from enterSandbox on, across every statement; 0 for none.
    qint64 maxMilliseconds = 0;
    // The file may grow to this many bytes and no further; 0 for no limit.
    qint64 maxFileBytes = 0;
};

// One connection to an SQLite or SQLCipher file. Nothing outside the platform layer sees
// sqlite3 itself: callers open, key, run statements and read rows through this class.
class Database
{
public:
    // The values of SQLITE_OPEN_READONLY, _READWRITE and _CREATE, which the catalogue rules name.
    // OneThread (SQLITE_OPEN_NOMUTEX) is for a connection only ever used by the thread that
    // opened it: it spares a lock around every call. Others are serialized by SQLite.
    enum OpenFlag { ReadOnly = 0x1, ReadWrite = 0x2, Create = 0x4, OneThread = 0x8000 };

    explicit Database(QString path);
    ~Database();
    Database(const Database &) = delete;
    Database &operator=(const Database &) = delete;

    const QString &databasePath() const { return m_path; }

    bool open() { return openWithFlags(ReadWrite | Create); }
    bool openWithFlags(int flags);
    bool isOpen() const { return m_db != nullptr; }
    void close();

    // Keys the connection with `key`, or with the key already derived from it for this file
    // (DerivedKeys). SQLCipher checks the key lazily, on the first read, so a wrong key only
    // shows in the first query.
    bool setKey(const QString &key);

    // Runs one or more statements separated by ';' with no parameters.
    bool executeStatements(const QString &sql);
    // Runs one statement with bound parameters; true when it completed.
    bool executeUpdate(const QString &sql, const QVariantList &arguments = {});
    // Prepares one statement with bound parameters. On failure the set is invalid
    // (`isValid()` false) and lastErrorMessage() says why.
    ResultSet executeQuery(const QString &sql, const QVariantList &arguments = {});
    // Prepares one statement for repeated runs; invalid, with lastErrorMessage() set, on failure.
    Statement prepare(const QString &sql);

    // Runs a query and hands each row to `onRow`, which returns false to stop early. False when
    // the statement could not run or a step failed; lastErrorMessage() then says why.
    bool forEachRow(const QString &sql, const QVariantList &arguments,
                    const std::function<bool(const ResultSet &)> &onRow);

    bool tableExists(const QString &table);
    bool columnExists(const QString &column, const QString &table);

    // From now on statements may read and write the tables of this file (and temporary ones),
    // nothing more: ATTACH, DETACH, transactions and savepoints (so VACUUM, which needs to be
    // outside one, too), virtual tables, extension loading and every pragma but a few that only
    // describe the schema are denied; a statement longer than the limit is refused, and a run
    // that takes more steps than the limit is interrupted.
    void enterSandbox(const SqlSandbox &limits);
    // Back to the program's own statements (to commit what the sandboxed ones did).
    void leaveSandbox();
    // Whether the sandbox's wall-clock budget is spent (always false without one).
    bool sandboxTimeIsUp() const;

    QString lastErrorMessage() const { return m_lastError; }
    int lastErrorCode() const { return m_lastErrorCode; }
    bool hadError() const { return m_lastErrorCode != 0; }
    qint64 lastInsertRowId() const;

    // How many connections were given a key in this process.
    static int keyedConnectionCount() { return s_keyedConnections.load(); }
    // How many statements were prepared in this process: tells a cache hit from a query.
    static int preparedStatementCount() { return s_preparedStatements.load(); }

private:
    friend class Statement;
    sqlite3_stmt *prepareStatement(const QString &sql);
    bool bindArguments(sqlite3_stmt *statement, const QVariantList &arguments);
    void recordError();
    void clearError();

    static int authorizeSandboxed(void *self, int action, const char *first, const char *second, const char *database, const char *);
    static int countSandboxedSteps(void *database);

    QString m_path;
    sqlite3 *m_db = nullptr;
    bool m_sandboxed = false;
    SqlSandbox m_sandbox;
    qint64 m_steps = 0;
    std::chrono::steady_clock::time_point m_sandboxDeadline;
    QString m_lastError;
    int m_lastErrorCode = 0;
    static std::atomic<int> s_keyedConnections;
    static std::atomic<int> s_preparedStatements;
};
