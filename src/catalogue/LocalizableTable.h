#pragma once

#include <QMap>
#include <QMutex>
#include <mutex>
#include <QString>

#include <memory>
#include <optional>

class DatabaseQueue;

// One of the catalogue's id-to-name tables, read whole in the current language on first need.
// An empty `contents` means "not loaded yet", so a table that really is empty is queried again
// at each call; that is the intended cost of keeping the rule simple.
class LocalizableTable
{
public:
    explicit LocalizableTable(QString tableName);

    const QString &tableName() const { return m_tableName; }
    // Loads when empty, then answers; absent with no queue or no name in this language.
    std::optional<QString> name(int id);
    void ensureLoaded();
    // Stores the language and forgets the contents; the next read loads anew.
    void setLanguage(const QString &language);
    void setQueue(std::shared_ptr<DatabaseQueue> queue);
    // What has been loaded so far; reading it never loads.
    QMap<int, QString> contents() const;

private:
    // False with no queue.
    bool loadIfEmpty();

    const QString m_tableName;
    mutable std::mutex m_mutex;
    QMap<int, QString> m_contents;
    std::shared_ptr<DatabaseQueue> m_dbq;
    QString m_lang;
};
