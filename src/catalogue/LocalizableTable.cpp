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
    QMutexLocker lock(&m_mutex);
    if (!m_dbq)
        return std::nullopt;
    loadIfEmpty();
    const auto it = m_contents.constFind(id);
    if (it == m_contents.constEnd())
        return std::nullopt;
    return *it;
}

void LocalizableTable::ensureLoaded()
{
    QMutexLocker lock(&m_mutex);
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

void LocalizableTable::loadIfEmpty()
{
    if (!m_contents.isEmpty() || !m_dbq)
        return;
    const QString column = LanguageColumns::localized(QStringLiteral("name"), m_lang);
    m_dbq->inDatabase([&](Database &db) {
        if (!db.tableExists(m_tableName))
            return;
        ResultSet rows = db.executeQuery(QStringLiteral("SELECT id,name_en,name FROM `%1`").arg(m_tableName));
        if (!rows.isValid()) {
            qCCritical(lcCatalogue) << "Damaged catalogue: reading" << m_tableName << "failed:" << db.lastErrorMessage();
            return;
        }
        while (rows.next()) {
            const int id = rows.intForColumn(QStringLiteral("id"));
            const QString name = rows.stringForColumn(column);
            if (name.isNull())
                m_contents.remove(id);
            else
                m_contents.insert(id, name);
        }
        if (rows.failed())
            qCCritical(lcCatalogue) << "Damaged catalogue: reading" << m_tableName << "failed:" << rows.errorMessage();
    });
}
