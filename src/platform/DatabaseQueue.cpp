#include "platform/DatabaseQueue.h"

#include "platform/Logging.h"

DatabaseQueue::DatabaseQueue(const QString &path, int openFlags)
    : m_db(std::make_unique<Database>(path))
{
    if (!m_db->openWithFlags(openFlags))
        qCWarning(lcPlatform) << "Could not open" << path << m_db->lastErrorMessage();
}

DatabaseQueue::DatabaseQueue(std::unique_ptr<Database> openConnection)
    : m_db(std::move(openConnection))
{
}

void DatabaseQueue::inDatabase(const std::function<void(Database &)> &block)
{
    std::lock_guard lock(m_mutex);
    block(*m_db);
}

bool DatabaseQueue::inTransaction(const std::function<void(Database &, bool &)> &block)
{
    std::lock_guard lock(m_mutex);
    if (!m_db->executeStatements(QStringLiteral("BEGIN EXCLUSIVE TRANSACTION")))
        return false;
    bool rollback = false;
    block(*m_db, rollback);
    const bool ok = m_db->executeStatements(rollback ? QStringLiteral("ROLLBACK") : QStringLiteral("COMMIT"));
    if (!ok)
        qCWarning(lcPlatform) << "Ending a transaction on" << path() << "failed:" << m_db->lastErrorMessage();
    return ok && !rollback;
}
