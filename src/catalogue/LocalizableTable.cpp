#include "catalogue/LocalizableTable.h"

#include "catalogue/LanguageColumns.h"
#include "platform/DatabaseQueue.h"
#include "platform/Logging.h"

LocalizableTable::LocalizableTable(QString tableName)
    : m_tableName(std::move(tableName))
{
}

std::optional<QString> LocalizableTable::name(int id)
{
    if (!loadIfEmpty())
        return std::nullopt;
    QMutexLocker lock(&m_mutex);
    const auto it = m_contents.constFind(id);
    if (it == m_contents.constEnd())
        return std::nullopt;
    return *it;
}

void LocalizableTable::ensureLoaded()
{
    loadIfEmpty();
}

void LocalizableTable::setLanguage(const QString &language)
{
    QMutexLocker lock(&m_mutex);
    m_lang = language;
    m_contents.clear();
}

void LocalizableTable::setQueue(std::shared_ptr<DatabaseQueue> queue)
{
    QMutexLocker lock(&m_mutex);
    m_dbq = std::move(queue);
}

QMap<int, QString> LocalizableTable::contents() const
{
    QMutexLocker lock(&m_mutex);
    return m_contents;
}

bool LocalizableTable::loadIfEmpty()
{
    std::shared_ptr<DatabaseQueue> queue;
    QString language;
    {
        QMutexLocker lock(&m_mutex);
        if (!m_dbq)
            return false;
        if (!m_contents.isEmpty())
            return true;
        queue = m_dbq;
        language = m_lang;
    }
    // The read runs without this table's lock: readers of other records hold the catalogue's
    // queue while they ask for names, so taking the two locks in the other order would deadlock.
    const QString column = LanguageColumns::localized(QStringLiteral("name"), language);
    QMap<int, QString> loaded;
    queue->inDatabase([&](Database &db) {
        if (!db.tableExists(m_tableName))
            return;
        const bool read = db.forEachRow(QStringLiteral("SELECT id,name_en,name FROM `%1`").arg(m_tableName), {},
                                        [&](const ResultSet &row) {
                                            const int id = row.intForColumn(QStringLiteral("id"));
                                            const QString name = row.stringForColumn(column);
                                            if (name.isNull())
                                                loaded.remove(id);
                                            else
                                                loaded.insert(id, name);
                                            return true;
                                        });
        if (!read) {
            loaded.clear();
            qCCritical(lcCatalogue) << "Damaged catalogue: reading" << m_tableName << "failed:" << db.lastErrorMessage();
        }
    });
    QMutexLocker lock(&m_mutex);
    // A language change during the read makes it stale; the next call loads again.
    if (m_contents.isEmpty() && m_lang == language && m_dbq == queue)
        m_contents = loaded;
    return true;
}
