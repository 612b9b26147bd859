#include "CatalogueWriter.h"

#include "CatalogueSchema.h"
#include "catalogue/Restaurants.h"
#include "platform/Database.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QUuid>

#include <cstdio>

bool writeAtomically(const QString &path, QString *error, const std::function<bool(const QString &temporary)> &write)
{
    const QFileInfo target(path);
    if (!target.absoluteDir().exists()) {
        *error = QStringLiteral("the directory %1 does not exist").arg(target.absolutePath());
        return false;
    }
    const QString temporary = target.absolutePath() + QStringLiteral("/.") + target.fileName() + QLatin1Char('.')
        + QUuid::createUuid().toString(QUuid::Id128).left(8) + QStringLiteral(".part");
    const bool written = write(temporary);
    if (written && std::rename(QFile::encodeName(temporary).constData(), QFile::encodeName(path).constData()) == 0)
        return true;
    if (written)
        *error = QStringLiteral("could not move the result to %1").arg(path);
    QFile::remove(temporary);
    QFile::remove(temporary + QStringLiteral("-journal"));
    return false;
}

bool writeCatalogue(const CatalogueData &data, const QString &path, QString *error)
{
    return writeAtomically(path, error, [&](const QString &temporary) {
        Database db(temporary);
        const auto fail = [&](const QString &what) {
            *error = what + QStringLiteral(": ") + db.lastErrorMessage();
            return false;
        };
        if (!db.open() || !db.setKey(Restaurants::dbkey))
            return fail(QStringLiteral("creating the catalogue"));
        if (!db.executeStatements(QStringLiteral("BEGIN")))
            return fail(QStringLiteral("starting the transaction"));
        for (const CatalogueSchema::Table &table : CatalogueSchema::tables()) {
            if (!db.executeStatements(CatalogueSchema::createStatement(table)))
                return fail(QStringLiteral("creating ") + table.name);
            QStringList marks(table.columns.size(), QStringLiteral("?"));
            Statement insert = db.prepare(QStringLiteral("INSERT INTO %1 VALUES(%2)").arg(table.name, marks.join(QLatin1Char(','))));
            if (!insert.isValid())
                return fail(QStringLiteral("preparing ") + table.name);
            for (const QVariantMap &row : data.rows(table.name)) {
                QVariantList values;
                for (const QString &column : table.columns)
                    values.append(row.value(column));
                if (!insert.run(values))
                    return fail(QStringLiteral("writing ") + table.name);
            }
        }
        for (const auto &[table, create] : CatalogueSchema::indexStatements())
            if (!db.executeStatements(create))
                return fail(QStringLiteral("indexing ") + table);
        if (!db.executeStatements(QStringLiteral("COMMIT")))
            return fail(QStringLiteral("committing"));
        return true;
    });
}
