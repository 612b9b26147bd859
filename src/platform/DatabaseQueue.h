#pragma once

#include "platform/Database.h"

#include <functional>
#include <memory>
#include <mutex>

// Serialises all use of one connection: each block runs on the caller's thread while it holds
// the queue's lock. A block may call inDatabase again on the same queue from within itself.
class DatabaseQueue
{
public:
    DatabaseQueue(const QString &path, int openFlags);
    // Takes over a connection that is already open (and keyed), so the key derivation a probe
    // paid for is not paid again.
    explicit DatabaseQueue(std::unique_ptr<Database> openConnection);

    QString path() const { return m_db->databasePath(); }
    bool isOpen() const { return m_db->isOpen(); }

    void inDatabase(const std::function<void(Database &)> &block);
    // Runs the block in a transaction; the block sets `rollback` to undo it.
    bool inTransaction(const std::function<void(Database &, bool &rollback)> &block);

private:
    std::unique_ptr<Database> m_db;
    std::recursive_mutex m_mutex;
};
