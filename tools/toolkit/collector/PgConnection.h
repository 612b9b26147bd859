#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <optional>

struct pg_conn;
struct pg_result;

// One libpq connection, blocking: the collector's statements are short and its event loop
// waits for the database anyway before it may answer. Nothing else of the program sees libpq.
class PgConnection
{
public:
    explicit PgConnection(QString url);
    ~PgConnection();
    PgConnection(const PgConnection &) = delete;
    PgConnection &operator=(const PgConnection &) = delete;

    // Connects, or reconnects a connection that went bad. Gives up after `connectTimeoutSeconds`.
    bool connect(QString *error);
    bool isConnected() const;
    void disconnect();

    // Runs one statement with text parameters (a null QByteArray is SQL NULL); the rows of its
    // answer as text, or nothing with `error` set.
    using Row = QList<QByteArray>;
    std::optional<QList<Row>> run(const QByteArray &sql, const QList<QByteArray> &parameters, QString *error);
    bool run(const QByteArray &sql, QString *error) { return run(sql, {}, error).has_value(); }

    // The URL with its password blanked, for messages.
    QString redactedUrl() const;

    static constexpr int connectTimeoutSeconds = 3;
    // A statement the database takes longer than this over is cancelled: a collector waiting on a
    // stuck database holds its clients, who are better told nothing and sending again later.
    static constexpr int statementTimeoutMs = 10'000;

private:
    QString m_url;
    pg_conn *m_connection = nullptr;
};
