#include "platform/Database.h"

#include <utility>

#include "platform/DerivedKeys.h"
#include "platform/Logging.h"

#include "platform/ReadAheadVfs.h"

#include <sqlcipher/sqlite3.h>

std::atomic<int> Database::s_keyedConnections{0};
std::atomic<int> Database::s_preparedStatements{0};

namespace {
// A busy catalogue file (a patch being applied beside a reader) is waited for, not failed.
constexpr int busyTimeoutMs = 2000;

// SQLite counts every allocation under one process-wide lock unless told not to: with the
// catalogue read on several threads at once (the load, the listing, the screens), that lock
// had them queueing at every row. Nothing here reads those counts.
void configureOnce()
{
    static const bool configured = [] {
        sqlite3_config(SQLITE_CONFIG_MEMSTATUS, 0);
        return sqlite3_initialize() == SQLITE_OK;
    }();
    Q_UNUSED(configured);
}

bool bindArgument(sqlite3_stmt *statement, int index, const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::UnknownType:
    case QMetaType::Nullptr:
        return sqlite3_bind_null(statement, index) == SQLITE_OK;
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Long:
    case QMetaType::LongLong:
    case QMetaType::Short:
        return sqlite3_bind_int64(statement, index, value.toLongLong()) == SQLITE_OK;
    case QMetaType::Double:
    case QMetaType::Float:
        return sqlite3_bind_double(statement, index, value.toDouble()) == SQLITE_OK;
    case QMetaType::QByteArray: {
        const QByteArray bytes = value.toByteArray();
        return sqlite3_bind_blob(statement, index, bytes.constData(), int(bytes.size()), SQLITE_TRANSIENT) == SQLITE_OK;
    }
    default: {
        if (value.isNull())
            return sqlite3_bind_null(statement, index) == SQLITE_OK;
        const QByteArray text = value.toString().toUtf8();
        return sqlite3_bind_text(statement, index, text.constData(), int(text.size()), SQLITE_TRANSIENT) == SQLITE_OK;
    }
    }
}
}

Database::Database(QString path)
    : m_path(std::move(path))
{
}

Database::~Database() { close(); }

bool Database::openWithFlags(int flags)
{
    if (m_db)
        return true;
    clearError();
    configureOnce();
    const QByteArray path = m_path.toUtf8();
    sqlite3 *db = nullptr;
    // Read-only files are read ahead once read in order (a table scan).
    const int rc = sqlite3_open_v2(path.constData(), &db, (flags & OneThread) ? flags : flags | SQLITE_OPEN_FULLMUTEX,
                                   (flags & ReadOnly) ? ReadAheadVfs::name() : nullptr);
    if (rc != SQLITE_OK) {
        m_lastErrorCode = rc;
        m_lastError = db ? QString::fromUtf8(sqlite3_errmsg(db)) : QString::fromUtf8(sqlite3_errstr(rc));
        sqlite3_close(db);
        return false;
    }
    m_db = db;
    sqlite3_busy_timeout(m_db, busyTimeoutMs);
    return true;
}

void Database::close()
{
    if (m_db) {
        sqlite3_close_v2(m_db);
        m_db = nullptr;
    }
}

bool Database::setKey(const QString &key)
{
    // The key is a constant of the program, never user text, so building the statement is safe.
    if (!executeStatements(DerivedKeys::keyStatement(m_path, key)))
        return false;
    ++s_keyedConnections;
    return true;
}

bool Database::executeStatements(const QString &sql)
{
    if (!m_db) {
        m_lastErrorCode = SQLITE_MISUSE;
        m_lastError = QStringLiteral("database is not open");
        return false;
    }
    clearError();
    m_steps = 0;
    char *message = nullptr;
    const QByteArray utf8 = sql.toUtf8();
    const int rc = sqlite3_exec(m_db, utf8.constData(), nullptr, nullptr, &message);
    if (rc != SQLITE_OK) {
        m_lastErrorCode = rc;
        m_lastError = message ? QString::fromUtf8(message) : QString::fromUtf8(sqlite3_errstr(rc));
        sqlite3_free(message);
        return false;
    }
    return true;
}

sqlite3_stmt *Database::prepareStatement(const QString &sql)
{
    if (!m_db) {
        m_lastErrorCode = SQLITE_MISUSE;
        m_lastError = QStringLiteral("database is not open");
        return nullptr;
    }
    clearError();
    sqlite3_stmt *statement = nullptr;
    const QByteArray utf8 = sql.toUtf8();
    ++s_preparedStatements;
    if (sqlite3_prepare_v2(m_db, utf8.constData(), int(utf8.size()), &statement, nullptr) != SQLITE_OK) {
        recordError();
        sqlite3_finalize(statement);
        return nullptr;
    }
    if (!statement) { // only whitespace or a comment
        m_lastErrorCode = SQLITE_MISUSE;
        m_lastError = QStringLiteral("empty statement");
    }
    return statement;
}

bool Database::bindArguments(sqlite3_stmt *statement, const QVariantList &arguments)
{
    if (arguments.size() != sqlite3_bind_parameter_count(statement)) {
        m_lastErrorCode = SQLITE_RANGE;
        m_lastError = QStringLiteral("statement takes %1 arguments, %2 given")
                          .arg(sqlite3_bind_parameter_count(statement))
                          .arg(arguments.size());
        return false;
    }
    for (int i = 0; i < arguments.size(); ++i) {
        if (!bindArgument(statement, i + 1, arguments.at(i))) {
            recordError();
            return false;
        }
    }
    return true;
}

ResultSet Database::executeQuery(const QString &sql, const QVariantList &arguments)
{
    sqlite3_stmt *statement = prepareStatement(sql);
    if (!statement)
        return ResultSet();
    if (!bindArguments(statement, arguments)) {
        sqlite3_finalize(statement);
        return ResultSet();
    }
    return ResultSet(statement);
}

Statement Database::prepare(const QString &sql)
{
    sqlite3_stmt *statement = prepareStatement(sql);
    return statement ? Statement(this, statement) : Statement();
}

Statement::Statement(Database *database, sqlite3_stmt *statement)
    : m_database(database)
    , m_statement(statement)
{
}

Statement::~Statement()
{
    sqlite3_finalize(m_statement);
}

Statement::Statement(Statement &&other) noexcept
    : m_database(std::exchange(other.m_database, nullptr))
    , m_statement(std::exchange(other.m_statement, nullptr))
{
}

Statement &Statement::operator=(Statement &&other) noexcept
{
    if (this != &other) {
        sqlite3_finalize(m_statement);
        m_database = std::exchange(other.m_database, nullptr);
        m_statement = std::exchange(other.m_statement, nullptr);
    }
    return *this;
}

bool Statement::run(const QVariantList &arguments)
{
    if (!m_statement)
        return false;
    sqlite3_reset(m_statement);
    sqlite3_clear_bindings(m_statement);
    m_database->clearError();
    if (!m_database->bindArguments(m_statement, arguments))
        return false;
    int rc;
    while ((rc = sqlite3_step(m_statement)) == SQLITE_ROW) {
    }
    if (rc != SQLITE_DONE) {
        m_database->recordError();
        sqlite3_reset(m_statement);
        return false;
    }
    sqlite3_reset(m_statement);
    return true;
}

bool Database::forEachRow(const QString &sql, const QVariantList &arguments,
                          const std::function<bool(const ResultSet &)> &onRow)
{
    ResultSet rows = executeQuery(sql, arguments);
    if (!rows.isValid())
        return false;
    while (rows.next())
        if (!onRow(rows))
            return true;
    if (rows.failed()) {
        m_lastErrorCode = sqlite3_errcode(m_db);
        m_lastError = rows.errorMessage();
        return false;
    }
    return true;
}

bool Database::executeUpdate(const QString &sql, const QVariantList &arguments)
{
    return forEachRow(sql, arguments, [](const ResultSet &) { return true; });
}

bool Database::tableExists(const QString &table)
{
    ResultSet rows = executeQuery(
        QStringLiteral("SELECT name FROM sqlite_master WHERE type IN ('table','view') AND lower(name) = lower(?)"),
        {table});
    return rows.isValid() && rows.next();
}

bool Database::columnExists(const QString &column, const QString &table)
{
    // The table name can't be bound in a PRAGMA; quote it as an identifier instead.
    QString quoted = table;
    quoted.replace(QLatin1Char('"'), QLatin1String("\"\""));
    ResultSet rows = executeQuery(QStringLiteral("PRAGMA table_info(\"%1\")").arg(quoted));
    if (!rows.isValid())
        return false;
    while (rows.next())
        if (rows.stringForColumn(QStringLiteral("name")).compare(column, Qt::CaseInsensitive) == 0)
            return true;
    return false;
}

qint64 Database::lastInsertRowId() const { return m_db ? sqlite3_last_insert_rowid(m_db) : 0; }

void Database::recordError()
{
    m_lastErrorCode = sqlite3_errcode(m_db);
    m_lastError = QString::fromUtf8(sqlite3_errmsg(m_db));
}

void Database::clearError()
{
    m_lastErrorCode = 0;
    m_lastError.clear();
}
