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
}

int Database::authorizeSandboxed(void *, int action, const char *first, const char *second, const char *database, const char *)
{
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
        return second && (sqlite3_stricmp(second, "load_extension") == 0 || sqlite3_stricmp(second, "fts3_tokenizer") == 0)
                   ? SQLITE_DENY
                   : SQLITE_OK;
    default:
        return isOwnDatabase(database) ? SQLITE_OK : SQLITE_DENY;
    }
}

int Database::countSandboxedSteps(void *self)
{
    auto *database = static_cast<Database *>(self);
    database->m_steps += stepsPerCallback;
    return database->m_steps > database->m_sandbox.maxStepsPerRun ? 1 : 0;
}

void Database::enterSandbox(const SqlSandbox &limits)
{
    if (!m_db)
        return;
    m_sandbox = limits;
    m_sandboxed = true;
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
