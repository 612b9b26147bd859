#include "PatchBuilder.h"

#include "CatalogueSchema.h"
#include "CatalogueWriter.h"
#include "catalogue/CatalogueDates.h"
#include "catalogue/Restaurants.h"
#include "platform/Database.h"
#include "platform/ZipArchive.h"
#include "update/PatchFiles.h"

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QTemporaryDir>

#include <memory>

namespace {

// A row as the comparison sees it: every value, pictures by their digest.
using Row = QVariantList;

QString literal(const QVariant &value)
{
    if (value.isNull())
        return QStringLiteral("NULL");
    switch (value.typeId()) {
    case QMetaType::QByteArray:
        return QStringLiteral("X'") + QString::fromLatin1(value.toByteArray().toHex()) + QLatin1Char('\'');
    case QMetaType::LongLong:
    case QMetaType::Int:
        return QString::number(value.toLongLong());
    case QMetaType::Double:
        return QString::number(value.toDouble(), 'g', 17);
    default: {
        QString text = value.toString();
        text.replace(QLatin1Char('\''), QStringLiteral("''"));
        return QLatin1Char('\'') + text + QLatin1Char('\'');
    }
    }
}

QVariant cell(const ResultSet &row, int column, bool digestBlobs)
{
    const QVariant value = row.valueForColumn(column);
    if (digestBlobs && value.typeId() == QMetaType::QByteArray)
        return QCryptographicHash::hash(value.toByteArray(), QCryptographicHash::Sha1);
    return value;
}

std::unique_ptr<Database> openCatalogue(const QString &path, bool writable, QString *error)
{
    auto db = std::make_unique<Database>(path);
    if (!db->openWithFlags(writable ? Database::ReadWrite : Database::ReadOnly) || !db->setKey(Restaurants::dbkey)) {
        *error = QStringLiteral("%1: can't open: %2").arg(path, db->lastErrorMessage());
        return nullptr;
    }
    return db;
}

// The rows of one table keyed by its identity column, in table order within a key; pictures as
// digests so that two big catalogues compare in modest memory.
struct TableRows {
    bool exists = false;
    QHash<QString, QList<Row>> byKey;
    QStringList keyOrder;

    void remove(const QString &key)
    {
        byKey.remove(key);
        keyOrder.removeAll(key);
    }
};

// Rows in a fixed order, for comparing groups whose table order may differ.
QList<Row> sorted(QList<Row> rows)
{
    const auto text = [](const Row &row) {
        QStringList parts;
        for (const QVariant &value : row)
            parts.append(value.typeId() == QMetaType::QByteArray ? QString::fromLatin1(value.toByteArray().toHex())
                                                                 : value.toString());
        return parts.join(QChar(1));
    };
    std::sort(rows.begin(), rows.end(), [&](const Row &x, const Row &y) { return text(x) < text(y); });
    return rows;
}

bool readTable(Database &db, const CatalogueSchema::Table &table, TableRows &rows, QString *error)
{
    rows.exists = db.tableExists(table.name);
    if (!rows.exists)
        return true;
    const int keyColumn = int(table.columns.indexOf(table.identity));
    const bool ok = db.forEachRow(QStringLiteral("SELECT %1 FROM %2").arg(table.columns.join(QLatin1Char(',')), table.name), {},
                                  [&](const ResultSet &result) {
                                      Row row;
                                      for (int c = 0; c < table.columns.size(); ++c)
                                          row.append(cell(result, c, true));
                                      const QString key = row.at(keyColumn).toString();
                                      if (!rows.byKey.contains(key))
                                          rows.keyOrder.append(key);
                                      rows.byKey[key].append(row);
                                      return true;
                                  });
    if (!ok)
        *error = QStringLiteral("reading %1: %2").arg(table.name, db.lastErrorMessage());
    return ok;
}

// Collects statements into numbered scripts of a bounded size, so the app can report progress.
class ScriptWriter
{
public:
    void add(const QString &statement)
    {
        m_current += statement;
        m_current += QStringLiteral(";\n");
        if (m_current.size() > 256 * 1024)
            flush();
    }
    void flush()
    {
        if (!m_current.isEmpty())
            scripts.append(m_current);
        m_current.clear();
    }
    QStringList scripts;

private:
    QString m_current;
};

// Statements that turn OLD's rows of one table into NEW's. Rows with an id are inserted,
// updated column by column or deleted; rows grouped under another key are replaced group by
// group. Pictures are read from NEW only for the rows that need them.
bool diffTable(Database &newDb, const CatalogueSchema::Table &table, const TableRows &before, const TableRows &after,
               ScriptWriter &out, PatchStats &stats, QString *error)
{
    if (before.exists && !after.exists) {
        out.add(QStringLiteral("DROP TABLE ") + table.name);
        return true;
    }
    if (!before.exists && after.exists)
        out.add(CatalogueSchema::createStatement(table));

    const QString columns = table.columns.join(QLatin1Char(','));
    const auto insertFromNew = [&](const QString &key) {
        return newDb.forEachRow(QStringLiteral("SELECT %1 FROM %2 WHERE %3 = ?").arg(columns, table.name, table.identity),
                                {after.byKey.value(key).first().at(table.columns.indexOf(table.identity))},
                                [&](const ResultSet &result) {
                                    QStringList values;
                                    for (int c = 0; c < table.columns.size(); ++c)
                                        values.append(literal(cell(result, c, false)));
                                    out.add(QStringLiteral("INSERT INTO %1(%2) VALUES(%3)")
                                                .arg(table.name, columns, values.join(QLatin1Char(','))));
                                    return true;
                                });
    };
    const bool byId = table.identity == QLatin1String("id");
    const int keyColumn = int(table.columns.indexOf(table.identity));
    for (const QString &key : before.keyOrder) {
        if (after.byKey.contains(key))
            continue;
        out.add(QStringLiteral("DELETE FROM %1 WHERE %2 = %3")
                    .arg(table.name, table.identity, literal(before.byKey.value(key).first().at(keyColumn))));
        ++stats.deleted;
    }
    for (const QString &key : after.keyOrder) {
        const QList<Row> newRows = after.byKey.value(key);
        const QList<Row> oldRows = before.byKey.value(key);
        if (newRows == oldRows)
            continue;
        if (!oldRows.isEmpty() && byId && newRows.size() == 1 && oldRows.size() == 1) {
            // Only the columns that changed; pictures come from NEW itself.
            QStringList changes;
            QStringList blobColumns;
            for (int c = 0; c < table.columns.size(); ++c) {
                if (newRows.first().at(c) == oldRows.first().at(c))
                    continue;
                if (table.types.at(c) == QLatin1String("BLOB"))
                    blobColumns.append(table.columns.at(c));
                else
                    changes.append(table.columns.at(c) + QLatin1Char('=') + literal(newRows.first().at(c)));
            }
            for (const QString &blob : blobColumns) {
                const bool read = newDb.forEachRow(QStringLiteral("SELECT %1 FROM %2 WHERE id = ?").arg(blob, table.name),
                                                   {newRows.first().at(keyColumn)}, [&](const ResultSet &result) {
                                                       changes.append(blob + QLatin1Char('=') + literal(cell(result, 0, false)));
                                                       return false;
                                                   });
                if (!read) {
                    *error = QStringLiteral("reading %1: %2").arg(table.name, newDb.lastErrorMessage());
                    return false;
                }
            }
            out.add(QStringLiteral("UPDATE %1 SET %2 WHERE id = %3")
                        .arg(table.name, changes.join(QLatin1Char(',')), literal(newRows.first().at(keyColumn))));
            ++stats.updated;
            continue;
        }
        if (!oldRows.isEmpty()) {
            out.add(QStringLiteral("DELETE FROM %1 WHERE %2 = %3").arg(table.name, table.identity, literal(oldRows.first().at(keyColumn))));
            ++stats.updated;
        } else {
            ++stats.inserted;
        }
        if (!insertFromNew(key)) {
            *error = QStringLiteral("reading %1: %2").arg(table.name, newDb.lastErrorMessage());
            return false;
        }
    }
    return true;
}

std::optional<QDate> versionOf(Database &db)
{
    std::optional<QDate> date;
    db.forEachRow(QStringLiteral("SELECT val FROM extras WHERE key = 'version_date'"), {}, [&](const ResultSet &row) {
        date = CatalogueDates::parseCompact(row.stringForColumn(0));
        return false;
    });
    return date;
}

bool writePatchDatabase(const QString &path, const QStringList &scripts, QString *error)
{
    Database db(path);
    if (!db.open() || !db.executeStatements(QStringLiteral("BEGIN; CREATE TABLE updates(number INTEGER, patch TEXT)"))) {
        *error = QStringLiteral("writing the patch: ") + db.lastErrorMessage();
        return false;
    }
    Statement insert = db.prepare(QStringLiteral("INSERT INTO updates VALUES(?, ?)"));
    for (qsizetype i = 0; i < scripts.size(); ++i)
        if (!insert.run({qlonglong(i + 1), scripts.at(i)})) {
            *error = QStringLiteral("writing the patch: ") + db.lastErrorMessage();
            return false;
        }
    insert = Statement();
    if (!db.executeStatements(QStringLiteral("COMMIT"))) {
        *error = QStringLiteral("writing the patch: ") + db.lastErrorMessage();
        return false;
    }
    return true;
}

}

QString firstDifference(const QString &leftPath, const QString &rightPath, QString *error)
{
    auto left = openCatalogue(leftPath, false, error);
    auto right = left ? openCatalogue(rightPath, false, error) : nullptr;
    if (!right)
        return QStringLiteral("can't compare");
    for (const CatalogueSchema::Table &table : CatalogueSchema::tables()) {
        TableRows a;
        TableRows b;
        if (!readTable(*left, table, a, error) || !readTable(*right, table, b, error))
            return QStringLiteral("can't compare");
        if (a.exists != b.exists)
            return table.name + QStringLiteral(": present in only one");
        for (auto it = a.byKey.begin(); it != a.byKey.end(); ++it)
            if (sorted(it.value()) != sorted(b.byKey.value(it.key())))
                return QStringLiteral("%1: rows of %2 %3 differ").arg(table.name, table.identity, it.key());
        if (a.byKey.size() != b.byKey.size())
            return QStringLiteral("%1: %2 keys against %3").arg(table.name).arg(a.byKey.size()).arg(b.byKey.size());
    }
    return {};
}

bool buildPatch(const QString &oldPath, const QString &newPath, const QString &outZip, QString *error, PatchStats *stats)
{
    PatchStats counts;
    auto oldDb = openCatalogue(oldPath, false, error);
    auto newDb = oldDb ? openCatalogue(newPath, false, error) : nullptr;
    if (!newDb)
        return false;
    const auto from = versionOf(*oldDb);
    const auto to = versionOf(*newDb);
    if (!from || !to) {
        *error = QStringLiteral("%1: no version date, or the key does not open it").arg(!from ? oldPath : newPath);
        return false;
    }
    if (*to <= *from) {
        *error = QStringLiteral("the new catalogue (%1) must be later than the old one (%2)")
                     .arg(CatalogueDates::formatCompact(*to), CatalogueDates::formatCompact(*from));
        return false;
    }

    ScriptWriter scripts;
    for (const CatalogueSchema::Table &table : CatalogueSchema::tables()) {
        TableRows before;
        TableRows after;
        if (!readTable(*oldDb, table, before, error) || !readTable(*newDb, table, after, error))
            return false;
        // The version date changes last, once every other row is in place.
        if (table.name == QLatin1String("extras")) {
            before.remove(QStringLiteral("version_date"));
            after.remove(QStringLiteral("version_date"));
        }
        if (!diffTable(*newDb, table, before, after, scripts, counts, error))
            return false;
    }
    scripts.flush();
    scripts.add(QStringLiteral("UPDATE extras SET val = '%1' WHERE key = 'version_date'").arg(CatalogueDates::formatCompact(*to)));
    scripts.flush();
    oldDb.reset();
    newDb.reset();

    // Prove the patch before publishing it: OLD plus the scripts must be NEW, table for table.
    QTemporaryDir work;
    const QString patchDb = work.filePath(PatchFiles::patchFileName(*from, *to));
    const QString replay = work.filePath(QStringLiteral("replay.db"));
    if (!writePatchDatabase(patchDb, scripts.scripts, error))
        return false;
    if (!QFile::copy(oldPath, replay)) {
        *error = QStringLiteral("can't copy %1 to check the patch").arg(oldPath);
        return false;
    }
    {
        auto target = openCatalogue(replay, true, error);
        if (!target)
            return false;
        bool applied = target->executeStatements(QStringLiteral("BEGIN"));
        for (const QString &script : scripts.scripts)
            applied = applied && target->executeStatements(script);
        if (!applied || !target->executeStatements(QStringLiteral("COMMIT"))) {
            *error = QStringLiteral("the patch does not apply: ") + target->lastErrorMessage();
            return false;
        }
    }
    const QString difference = firstDifference(replay, newPath, error);
    if (!difference.isEmpty()) {
        *error = QStringLiteral("the patch does not reproduce the new catalogue: ") + difference;
        return false;
    }

    if (!writeAtomically(outZip, error, [&](const QString &temporary) {
            return ZipArchive::writeEncrypted(temporary, QFileInfo(patchDb).fileName(), patchDb, PatchFiles::archivePassword, error);
        }))
        return false;
    counts.scripts = int(scripts.scripts.size());
    counts.from = *from;
    counts.to = *to;
    if (stats)
        *stats = counts;
    return true;
}
