#include "CatalogueSchema.h"

namespace CatalogueSchema {

namespace {
Table make(const char *name, std::initializer_list<std::pair<const char *, const char *>> columns, const char *identity,
           bool optional = false)
{
    Table table{QString::fromLatin1(name), {}, {}, QString::fromLatin1(identity), optional};
    for (const auto &[column, type] : columns) {
        table.columns.append(QString::fromLatin1(column));
        table.types.append(QString::fromLatin1(type));
    }
    return table;
}

Table nameTable(const char *name)
{
    return make(name, {{"id", "INTEGER PRIMARY KEY"}, {"name", "TEXT"}, {"name_en", "TEXT"}}, "id");
}

Table linkTable(const char *name, const char *other)
{
    return make(name, {{"restaurant_id", "INTEGER"}, {other, "INTEGER"}}, "restaurant_id");
}
}

const QList<Table> &tables()
{
    static const QList<Table> all = {
        make("extras", {{"key", "TEXT"}, {"val", "TEXT"}}, "key"),
        make("states", {{"id", "INTEGER PRIMARY KEY"}, {"name", "TEXT"}}, "id"),
        make("counties", {{"id", "INTEGER PRIMARY KEY"}, {"state_id", "INTEGER"}, {"name", "TEXT"}}, "id"),
        nameTable("price_ranks"),
        nameTable("cuisines"),
        nameTable("restaurant_groups"),
        nameTable("service_types"),
        nameTable("place_options"),
        nameTable("payment_options"),
        make("restaurants",
             {{"id", "INTEGER PRIMARY KEY"}, {"name", "TEXT"}, {"search_name", "TEXT"}, {"address", "TEXT"},
              {"phone", "TEXT"}, {"email", "TEXT"}, {"county_id", "INTEGER"}, {"price_rank_id", "INTEGER"},
              {"rest_group_id", "INTEGER"}, {"oof", "INTEGER"}, {"oof_reason", "TEXT"}, {"oof_reason_en", "TEXT"},
              {"has_menu", "INTEGER"}, {"has_gallery", "INTEGER"}, {"latitud", "REAL"}, {"longitud", "REAL"},
              {"horario", "TEXT"}, {"horario_en", "TEXT"}, {"description", "TEXT"}, {"description_en", "TEXT"},
              {"profile_url", "TEXT"}},
             "id"),
        linkTable("restaurants_cuisines", "cuisine_id"),
        linkTable("restaurants_service_types", "service_type_id"),
        linkTable("restaurants_payment_types", "payment_type_id"),
        linkTable("restaurants_place_options", "place_option_id"),
        make("restaurants_profiles", {{"restaurant_id", "INTEGER"}, {"data", "BLOB"}}, "restaurant_id"),
        make("gallery",
             {{"id", "INTEGER PRIMARY KEY"}, {"restaurant_id", "INTEGER"}, {"data", "BLOB"}, {"description", "TEXT"},
              {"description_en", "TEXT"}},
             "id"),
        make("offers",
             {{"restaurant_id", "INTEGER"}, {"name", "TEXT"}, {"name_en", "TEXT"}, {"description", "TEXT"},
              {"description_en", "TEXT"}, {"price", "REAL"}, {"valid_from", "TEXT"}, {"valid_to", "TEXT"}},
             "restaurant_id", true),
        make("restaurants_promoted",
             {{"id", "INTEGER PRIMARY KEY"}, {"restaurant_id", "INTEGER"}, {"valid_to", "TEXT"}, {"data", "BLOB"}}, "id",
             true),
        make("app_campaigns",
             {{"id", "INTEGER PRIMARY KEY"}, {"action", "TEXT"}, {"action_value", "TEXT"}, {"action_value_en", "TEXT"},
              {"valid_to", "TEXT"}, {"position", "INTEGER"}},
             "id"),
        make("app_campaign_images",
             {{"id", "INTEGER PRIMARY KEY"}, {"campaign_id", "INTEGER"}, {"lang", "TEXT"}, {"data", "BLOB"}}, "id"),
        make("menu",
             {{"id", "INTEGER PRIMARY KEY"}, {"restaurant_id", "INTEGER"}, {"description", "TEXT"}, {"description_en", "TEXT"}},
             "id"),
        make("menu_entries",
             {{"menu_id", "INTEGER"}, {"name", "TEXT"}, {"name_en", "TEXT"}, {"custom_category", "TEXT"},
              {"custom_category_en", "TEXT"}, {"price", "REAL"}},
             "menu_id"),
    };
    return all;
}

const Table *table(const QString &name)
{
    for (const Table &t : tables())
        if (t.name == name)
            return &t;
    return nullptr;
}

QString createStatement(const Table &table)
{
    QStringList columns;
    for (qsizetype i = 0; i < table.columns.size(); ++i)
        columns.append(table.columns.at(i) + QLatin1Char(' ') + table.types.at(i));
    return QStringLiteral("CREATE TABLE %1(%2)").arg(table.name, columns.join(QStringLiteral(", ")));
}

QList<std::pair<QString, QString>> indexStatements()
{
    // The filter query reads only the first index, and the map's pins only the second, already
    // in latitude order; the rest serve look-ups by place or menu.
    QList<std::pair<QString, QString>> indexes = {
        {QStringLiteral("restaurants"),
         QStringLiteral("CREATE INDEX restaurants_filter ON restaurants(county_id, price_rank_id, oof)")},
        {QStringLiteral("restaurants"), QStringLiteral("CREATE INDEX restaurants_location ON restaurants(latitud, longitud)")},
        {QStringLiteral("menu_entries"), QStringLiteral("CREATE INDEX menu_entries_menu ON menu_entries(menu_id)")},
    };
    for (const char *name : {"restaurants_cuisines", "restaurants_service_types", "restaurants_payment_types",
                             "restaurants_place_options", "restaurants_profiles", "gallery", "offers", "menu"}) {
        const QString table = QString::fromLatin1(name);
        indexes.append({table, QStringLiteral("CREATE INDEX %1_place ON %1(restaurant_id)").arg(table)});
    }
    return indexes;
}

}
