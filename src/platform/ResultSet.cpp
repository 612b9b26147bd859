#include "platform/ResultSet.h"

#include <sqlcipher/sqlite3.h>

#include <algorithm>
#include <utility>

ResultSet::ResultSet(sqlite3_stmt *statement)
    : m_statement(statement)
    , m_columnCount(statement ? sqlite3_column_count(statement) : 0)
{
}

ResultSet::~ResultSet() { close(); }

ResultSet::ResultSet(ResultSet &&other) noexcept
    : m_statement(std::exchange(other.m_statement, nullptr))
    , m_columnCount(std::exchange(other.m_columnCount, 0))
    , m_columns(std::move(other.m_columns))
    , m_failed(other.m_failed)
    , m_error(std::move(other.m_error))
{
}

ResultSet &ResultSet::operator=(ResultSet &&other) noexcept
{
    if (this != &other) {
        close();
        m_statement = std::exchange(other.m_statement, nullptr);
        m_columnCount = std::exchange(other.m_columnCount, 0);
        m_columns = std::move(other.m_columns);
        m_failed = other.m_failed;
        m_error = std::move(other.m_error);
    }
    return *this;
}

void ResultSet::close()
{
    if (m_statement) {
        sqlite3_finalize(m_statement);
        m_statement = nullptr;
        m_columnCount = 0;
    }
}

bool ResultSet::next()
{
    if (!m_statement)
        return false;
    const int rc = sqlite3_step(m_statement);
    if (rc == SQLITE_ROW)
        return true;
    if (rc != SQLITE_DONE) {
        m_failed = true;
        m_error = QString::fromUtf8(sqlite3_errmsg(sqlite3_db_handle(m_statement)));
    }
    return false;
}

int ResultSet::columnIndex(const QString &name) const
{
    if (!m_statement)
        return -1;
    if (m_columns.isEmpty()) {
        for (int i = 0; i < m_columnCount; ++i)
            m_columns.insert(QString::fromUtf8(sqlite3_column_name(m_statement, i)).toLower(), i);
    }
    return m_columns.value(name.toLower(), -1);
}

bool ResultSet::columnIsNull(int column) const
{
    return !hasColumn(column) || sqlite3_column_type(m_statement, column) == SQLITE_NULL;
}

// SQLite reads a NULL as 0 itself: the numbers need no look at the type first, which the
// catalogue's reads of a hundred thousand rows would pay at every one.
int ResultSet::intForColumn(int column) const { return hasColumn(column) ? sqlite3_column_int(m_statement, column) : 0; }

qint64 ResultSet::longForColumn(int column) const { return hasColumn(column) ? sqlite3_column_int64(m_statement, column) : 0; }

double ResultSet::doubleForColumn(int column) const { return hasColumn(column) ? sqlite3_column_double(m_statement, column) : 0.0; }

QString ResultSet::stringForColumn(int column) const
{
    if (columnIsNull(column))
        return QString();
    const auto *text = reinterpret_cast<const char *>(sqlite3_column_text(m_statement, column));
    const int bytes = sqlite3_column_bytes(m_statement, column);
    // An empty, non-NULL text stays distinguishable from NULL.
    return text ? QString::fromUtf8(text, bytes) : QString(QLatin1String(""));
}

bool ResultSet::appendStringForColumn(int column, QString &text) const
{
    const auto *utf8 = reinterpret_cast<const char *>(sqlite3_column_text(m_statement, column));
    if (!utf8)
        return false;
    const int bytes = sqlite3_column_bytes(m_statement, column);
    // Most names are ASCII, which Latin-1 appends without decoding.
    if (std::all_of(utf8, utf8 + bytes, [](char c) { return (c & 0x80) == 0; }))
        text.append(QLatin1StringView(utf8, bytes));
    else
        text.append(QString::fromUtf8(utf8, bytes));
    return true;
}

QByteArray ResultSet::dataForColumn(int column) const
{
    if (columnIsNull(column))
        return QByteArray();
    const void *blob = sqlite3_column_blob(m_statement, column);
    const int bytes = sqlite3_column_bytes(m_statement, column);
    return blob ? QByteArray(static_cast<const char *>(blob), bytes) : QByteArray();
}

QVariant ResultSet::valueForColumn(int column) const
{
    if (!m_statement || column < 0 || column >= columnCount())
        return QVariant();
    switch (sqlite3_column_type(m_statement, column)) {
    case SQLITE_INTEGER:
        return qlonglong(sqlite3_column_int64(m_statement, column));
    case SQLITE_FLOAT:
        return sqlite3_column_double(m_statement, column);
    case SQLITE_TEXT:
        return stringForColumn(column);
    case SQLITE_BLOB:
        return dataForColumn(column);
    default:
        return QVariant();
    }
}
