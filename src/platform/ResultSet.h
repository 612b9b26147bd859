#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QVariant>

struct sqlite3_stmt;

// The rows of one query. Move-only; finalises its statement when it goes. Columns are read by
// name (the catalogue readers' way) or by index. A NULL text reads as a null QString.
class ResultSet
{
public:
    ResultSet() = default;
    explicit ResultSet(sqlite3_stmt *statement);
    ~ResultSet();
    ResultSet(ResultSet &&other) noexcept;
    ResultSet &operator=(ResultSet &&other) noexcept;
    ResultSet(const ResultSet &) = delete;
    ResultSet &operator=(const ResultSet &) = delete;

    bool isValid() const { return m_statement != nullptr; }
    // Steps to the next row. False at the end, and on an error (`failed()` then tells).
    bool next();
    bool failed() const { return m_failed; }
    QString errorMessage() const { return m_error; }
    void close();

    int columnCount() const { return m_columnCount; }
    int columnIndex(const QString &name) const;
    bool columnIsNull(int column) const;
    bool columnIsNull(const QString &name) const { return columnIsNull(columnIndex(name)); }

    int intForColumn(int column) const;
    qint64 longForColumn(int column) const;
    double doubleForColumn(int column) const;
    QString stringForColumn(int column) const;
    // Adds a text column to the end of `text` without a string of its own; false for NULL.
    bool appendStringForColumn(int column, QString &text) const;
    QByteArray dataForColumn(int column) const;
    // The value in its stored type: qlonglong, double, QString, QByteArray, or null.
    QVariant valueForColumn(int column) const;

    int intForColumn(const QString &name) const { return intForColumn(columnIndex(name)); }
    qint64 longForColumn(const QString &name) const { return longForColumn(columnIndex(name)); }
    double doubleForColumn(const QString &name) const { return doubleForColumn(columnIndex(name)); }
    QString stringForColumn(const QString &name) const { return stringForColumn(columnIndex(name)); }
    QByteArray dataForColumn(const QString &name) const { return dataForColumn(columnIndex(name)); }

private:
    bool hasColumn(int column) const { return column >= 0 && column < m_columnCount; }

    sqlite3_stmt *m_statement = nullptr;
    int m_columnCount = 0;
    mutable QHash<QString, int> m_columns;
    bool m_failed = false;
    QString m_error;
};
