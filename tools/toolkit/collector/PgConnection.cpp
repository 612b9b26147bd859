#include "PgConnection.h"

#include <QUrl>

#include <libpq-fe.h>

#include <memory>
#include <vector>

PgConnection::PgConnection(QString url)
    : m_url(std::move(url))
{
}

PgConnection::~PgConnection()
{
    disconnect();
}

void PgConnection::disconnect()
{
    if (m_connection)
        PQfinish(m_connection);
    m_connection = nullptr;
}

bool PgConnection::isConnected() const
{
    return m_connection && PQstatus(m_connection) == CONNECTION_OK;
}

QString PgConnection::redactedUrl() const
{
    QUrl url(m_url);
    if (!url.password().isEmpty())
        url.setPassword(QStringLiteral("..."));
    return url.toString();
}

bool PgConnection::connect(QString *error)
{
    disconnect();
    // Our defaults first: the URL's own settings, expanded from "dbname", override them.
    const QByteArray url = m_url.toUtf8(), timeout = QByteArray::number(connectTimeoutSeconds),
                     options = "-c statement_timeout=" + QByteArray::number(statementTimeoutMs);
    const char *keys[] = {"connect_timeout", "application_name", "options", "dbname", nullptr};
    const char *values[] = {timeout.constData(), "velmora-collect", options.constData(), url.constData(), nullptr};
    m_connection = PQconnectdbParams(keys, values, 1);
    if (PQstatus(m_connection) == CONNECTION_OK) {
        // The server's notices ("relation already exists, skipping") are no news to anyone.
        PQsetNoticeProcessor(m_connection, [](void *, const char *) {}, nullptr);
        return true;
    }
    *error = QString::fromUtf8(PQerrorMessage(m_connection)).trimmed();
    disconnect();
    return false;
}

std::optional<QList<PgConnection::Row>> PgConnection::run(const QByteArray &sql, const QList<QByteArray> &parameters, QString *error)
{
    if (!m_connection) {
        *error = QStringLiteral("not connected");
        return std::nullopt;
    }
    std::vector<const char *> values;
    values.reserve(size_t(parameters.size()));
    for (const QByteArray &parameter : parameters)
        values.push_back(parameter.isNull() ? nullptr : parameter.constData());
    const std::unique_ptr<PGresult, decltype(&PQclear)> result(
        PQexecParams(m_connection, sql.constData(), int(values.size()), nullptr, values.data(), nullptr, nullptr, 0), &PQclear);
    const ExecStatusType status = PQresultStatus(result.get());
    if (status != PGRES_COMMAND_OK && status != PGRES_TUPLES_OK) {
        *error = QString::fromUtf8(result ? PQresultErrorMessage(result.get()) : PQerrorMessage(m_connection)).trimmed();
        return std::nullopt;
    }
    QList<Row> rows;
    const int columns = PQnfields(result.get());
    for (int r = 0, count = PQntuples(result.get()); r < count; ++r) {
        Row row;
        for (int c = 0; c < columns; ++c)
            row.append(PQgetisnull(result.get(), r, c) ? QByteArray() : QByteArray(PQgetvalue(result.get(), r, c)));
        rows.append(row);
    }
    return rows;
}
