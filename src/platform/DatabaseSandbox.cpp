#include "platform/Database.h"

#include <sqlcipher/sqlite3.h>

#include <cstring>

namespace {
// Pragmas that only read the schema's shape; every other one is denied.
bool isDescriptivePragma(const char *name)
{
    static const char *const allowed[] = {"table_info", "index_list", "index_info", "foreign_key_list"};
    for (const char *pragma : allowed)
        if (name && sqlite3_stricmp(name, pragma) == 0)
            return true;
    return false;
}

bool isOwnDatabase(const char *database)
{
    return !database || std::strcmp(database, "main") == 0 || std::strcmp(database, "temp") == 0;
}

// Progress is reported every this many virtual-machine steps.
constexpr int stepsPerCallback = 1000;

bool isInternalTable(const char *table) { return table && sqlite3_strnicmp(table, "sqlite_", 7) == 0; }

bool isDeniedFunction(const char *name)
{
    return name && (sqlite3_stricmp(name, "load_extension") == 0 || sqlite3_stricmp(name, "fts3_tokenizer") == 0);
}

// Rows only: reading anything of the file, and changing the rows of its own tables.
int authorizeRowsOnly(int action, const char *first, const char *second, const char *database)
{
    switch (action) {
    case SQLITE_INSERT:
    case SQLITE_UPDATE:
    case SQLITE_DELETE:
        return !database || std::strcmp(database, "main") == 0 ? (isInternalTable(first) ? SQLITE_DENY : SQLITE_OK) : SQLITE_DENY;
    case SQLITE_READ:
        return isOwnDatabase(database) ? SQLITE_OK : SQLITE_DENY;
    case SQLITE_SELECT:
    case SQLITE_RECURSIVE:
        return SQLITE_OK;
    case SQLITE_FUNCTION:
        return isDeniedFunction(second) ? SQLITE_DENY : SQLITE_OK;
    default:
        return SQLITE_DENY; // every schema change, pragma, transaction, attachment
    }
}
}

int Database::authorizeSandboxed(void *self, int action, const char *first, const char *second, const char *database, const char *)
{
    if (static_cast<Database *>(self)->m_sandbox.rowsOnly)
        return authorizeRowsOnly(action, first, second, database);
    switch (action) {
    case SQLITE_ATTACH:
    case SQLITE_DETACH:
    case SQLITE_TRANSACTION:
    case SQLITE_SAVEPOINT:
    case SQLITE_CREATE_VTABLE:
    case SQLITE_DROP_VTABLE:
        return SQLITE_DENY;
    case SQLITE_PRAGMA:
        return isDescriptivePragma(first) ? SQLITE_OK : SQLITE_DENY;
    case SQLITE_FUNCTION:
        // The function's name comes second.
        return isDeniedFunction(second) ? SQLITE_DENY : SQLITE_OK;
    default:
        return isOwnDatabase(database) ? SQLITE_OK : SQLITE_DENY;
    }
}

int Database::countSandboxedSteps(void *self)
{
    auto *database = static_cast<Database *>(self);
    database->m_steps += stepsPerCallback;
    if (database->m_steps > database->m_sandbox.maxStepsPerRun)
        return 1;
    return database->m_sandbox.maxMilliseconds > 0 && std::chrono::steady_clock::now() > database->m_sandboxDeadline ? 1 : 0;
}

bool Database::sandboxTimeIsUp() const
{
    return m_sandbox.maxMilliseconds > 0 && std::chrono::steady_clock::now() > m_sandboxDeadline;
}

void Database::enterSandbox(const SqlSandbox &limits)
{
    if (!m_db)
        return;
    m_sandbox = limits;
    m_sandboxed = true;
    m_sandboxDeadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(limits.maxMilliseconds);
    if (limits.maxFileBytes > 0) {
        // SQLite refuses to grow the file past this many pages ("database or disk is full").
        sqlite3_stmt *statement = nullptr;
        int pageSize = 4096;
        if (sqlite3_prepare_v2(m_db, "PRAGMA page_size", -1, &statement, nullptr) == SQLITE_OK && sqlite3_step(statement) == SQLITE_ROW)
            pageSize = qMax(512, sqlite3_column_int(statement, 0));
        sqlite3_finalize(statement);
        const QByteArray pragma = "PRAGMA max_page_count = " + QByteArray::number(qMax<qint64>(1, limits.maxFileBytes / pageSize));
        sqlite3_exec(m_db, pragma.constData(), nullptr, nullptr, nullptr);
    }
    sqlite3_limit(m_db, SQLITE_LIMIT_SQL_LENGTH, limits.maxStatementBytes);
    sqlite3_limit(m_db, SQLITE_LIMIT_ATTACHED, 0);
    sqlite3_set_authorizer(m_db, &Database::authorizeSandboxed, this);
    sqlite3_progress_handler(m_db, stepsPerCallback, &Database::countSandboxedSteps, this);
}

void Database::leaveSandbox()
{
    if (!m_db || !m_sandboxed)
        return;
    m_sandboxed = false;
    sqlite3_set_authorizer(m_db, nullptr, nullptr);
    sqlite3_progress_handler(m_db, 0, nullptr, nullptr);
}
