#include "catalogue/CatalogueChecks.h"

#include "platform/Database.h"

#include <QStringList>

QString CatalogueChecks::integrityFault(Database &db)
{
    QString verdict;
    const bool read = db.forEachRow(QStringLiteral("PRAGMA quick_check"), {}, [&](const ResultSet &row) {
        verdict = row.stringForColumn(0);
        return false; // the first line says "ok" or names the first fault
    });
    if (!read)
        return QStringLiteral("the page check failed: ") + db.lastErrorMessage();
    return verdict == QLatin1String("ok") ? QString() : QStringLiteral("the page check found: ") + verdict.left(200);
}

QString CatalogueChecks::readsFault(Database &db)
{
    // Both languages' columns: the user may switch language at any moment.
    static const QStringList statements = {
        QStringLiteral("SELECT id,name,search_name,address,phone,email,county_id,price_rank_id,rest_group_id,oof,"
                       "oof_reason,oof_reason_en,has_menu,has_gallery,latitud,longitud,horario,horario_en,"
                       "description,description_en FROM restaurants LIMIT 0"),
        QStringLiteral("SELECT restaurant_id,cuisine_id FROM restaurants_cuisines LIMIT 0"),
        QStringLiteral("SELECT id,name,name_en FROM price_ranks LIMIT 0"),
        QStringLiteral("SELECT id,name,name_en FROM cuisines LIMIT 0"),
        QStringLiteral("SELECT restaurant_id,data FROM restaurants_profiles LIMIT 0"),
        QStringLiteral("SELECT id,restaurant_id,data,description,description_en FROM gallery LIMIT 0"),
    };
    for (const QString &sql : statements)
        if (!db.prepare(sql).isValid())
            return QStringLiteral("\"%1\" can't run: %2").arg(sql.left(60), db.lastErrorMessage());
    return QString();
}
