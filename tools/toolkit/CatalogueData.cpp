#include "CatalogueData.h"

#include "catalogue/CatalogueDates.h"

#include <QHash>
#include <QSet>

void CatalogueData::setExtra(const QString &key, const QString &value)
{
    QList<QVariantMap> &extras = rows(QStringLiteral("extras"));
    for (QVariantMap &row : extras)
        if (row.value(QStringLiteral("key")) == key) {
            row.insert(QStringLiteral("val"), value);
            return;
        }
    extras.append({{QStringLiteral("key"), key}, {QStringLiteral("val"), value}});
}

QString CatalogueData::extra(const QString &key) const
{
    for (const QVariantMap &row : tables.value(QStringLiteral("extras")))
        if (row.value(QStringLiteral("key")) == key)
            return row.value(QStringLiteral("val")).toString();
    return {};
}

QString searchName(const QString &name)
{
    const QString decomposed = name.normalized(QString::NormalizationForm_D);
    QString folded;
    folded.reserve(decomposed.size());
    for (const QChar c : decomposed)
        if (c.category() != QChar::Mark_NonSpacing)
            folded.append(c);
    return folded.toLower().simplified();
}

namespace {

QString describe(const QString &table, const QVariantMap &row)
{
    for (const char *key : {"id", "restaurant_id", "menu_id", "campaign_id", "key"})
        if (row.contains(QLatin1String(key)))
            return QStringLiteral("%1 %2=%3").arg(table, QLatin1String(key), row.value(QLatin1String(key)).toString());
    return table;
}

QSet<int> idsOf(const CatalogueData &data, const QString &table, QString *duplicate)
{
    QSet<int> ids;
    for (const QVariantMap &row : data.rows(table)) {
        const int id = row.value(QStringLiteral("id")).toInt();
        if (ids.contains(id) && duplicate->isEmpty())
            *duplicate = QStringLiteral("%1: duplicate id").arg(describe(table, row));
        ids.insert(id);
    }
    return ids;
}

bool isBlank(const QVariant &value)
{
    return value.isNull() || value.toString().trimmed().isEmpty();
}

}

QString validate(const CatalogueData &data)
{
    if (!CatalogueDates::parseCompact(data.extra(QStringLiteral("version_date"))))
        return QStringLiteral("extras: version_date must be a date written yyyyMMdd");

    QString fault;
    QHash<QString, QSet<int>> ids;
    for (const char *table : {"states", "counties", "price_ranks", "cuisines", "restaurant_groups", "service_types",
                              "place_options", "payment_options", "restaurants", "gallery", "restaurants_promoted",
                              "app_campaigns", "app_campaign_images", "menu"})
        ids.insert(QString::fromLatin1(table), idsOf(data, QString::fromLatin1(table), &fault));
    if (!fault.isEmpty())
        return fault;
    const auto known = [&](const char *table, const QVariant &id) { return ids.value(QString::fromLatin1(table)).contains(id.toInt()); };

    for (const char *table : {"states", "counties", "restaurants", "price_ranks", "cuisines", "restaurant_groups",
                              "service_types", "place_options", "payment_options"})
        for (const QVariantMap &row : data.rows(QString::fromLatin1(table)))
            if (isBlank(row.value(QStringLiteral("name"))))
                return QStringLiteral("%1: the name is missing").arg(describe(QString::fromLatin1(table), row));

    QSet<int> provincesWithMunicipalities;
    for (const QVariantMap &row : data.rows(QStringLiteral("counties"))) {
        if (!known("states", row.value(QStringLiteral("state_id"))))
            return QStringLiteral("%1: unknown province %2").arg(describe(QStringLiteral("counties"), row),
                                                                 row.value(QStringLiteral("state_id")).toString());
        provincesWithMunicipalities.insert(row.value(QStringLiteral("state_id")).toInt());
    }
    for (const QVariantMap &row : data.rows(QStringLiteral("states")))
        if (!provincesWithMunicipalities.contains(row.value(QStringLiteral("id")).toInt()))
            return QStringLiteral("%1: a province needs at least one municipality").arg(describe(QStringLiteral("states"), row));

    for (const QVariantMap &row : data.rows(QStringLiteral("restaurants"))) {
        if (!known("counties", row.value(QStringLiteral("county_id"))))
            return QStringLiteral("%1: unknown municipality %2").arg(describe(QStringLiteral("restaurants"), row),
                                                                     row.value(QStringLiteral("county_id")).toString());
        const QVariant rank = row.value(QStringLiteral("price_rank_id"));
        if (!rank.isNull() && !known("price_ranks", rank))
            return QStringLiteral("%1: unknown price rank %2").arg(describe(QStringLiteral("restaurants"), row), rank.toString());
        // The app composes the site's address, its language and this path; a whole URL here
        // would become a link to nowhere.
        const QString page = row.value(QStringLiteral("profile_url")).toString().trimmed();
        if (page.contains(QLatin1String("://")) || page.startsWith(QLatin1Char('/')) || page.startsWith(QLatin1String("www.")))
            return QStringLiteral("%1: profile_url must be a path on the product's web site, such as \"habana/bodeguita\", not %2")
                .arg(describe(QStringLiteral("restaurants"), row), page.left(80));
    }

    struct Reference {
        const char *table;
        const char *column;
        const char *target;
    };
    static const Reference references[] = {
        {"restaurants_cuisines", "restaurant_id", "restaurants"}, {"restaurants_cuisines", "cuisine_id", "cuisines"},
        {"restaurants_service_types", "service_type_id", "service_types"},
        {"restaurants_payment_types", "payment_type_id", "payment_options"},
        {"restaurants_place_options", "place_option_id", "place_options"},
        {"restaurants_profiles", "restaurant_id", "restaurants"}, {"gallery", "restaurant_id", "restaurants"},
        {"offers", "restaurant_id", "restaurants"}, {"restaurants_promoted", "restaurant_id", "restaurants"},
        {"app_campaign_images", "campaign_id", "app_campaigns"}, {"menu", "restaurant_id", "restaurants"},
        {"menu_entries", "menu_id", "menu"},
    };
    for (const Reference &reference : references)
        for (const QVariantMap &row : data.rows(QString::fromLatin1(reference.table)))
            if (!known(reference.target, row.value(QLatin1String(reference.column))))
                return QStringLiteral("%1: unknown %2 %3")
                    .arg(describe(QString::fromLatin1(reference.table), row), QString::fromLatin1(reference.column),
                         row.value(QLatin1String(reference.column)).toString());

    // The app reads a menu ordered by section, so an empty section would come first, before any
    // section exists: every entry needs one, in both languages.
    for (const QVariantMap &row : data.rows(QStringLiteral("menu_entries")))
        for (const char *column : {"custom_category", "custom_category_en"})
            if (isBlank(row.value(QLatin1String(column))))
                return QStringLiteral("%1 (%2): the menu section is missing")
                    .arg(describe(QStringLiteral("menu_entries"), row), row.value(QStringLiteral("name")).toString());

    QSet<int> withCuisine;
    for (const QVariantMap &row : data.rows(QStringLiteral("restaurants_cuisines")))
        withCuisine.insert(row.value(QStringLiteral("restaurant_id")).toInt());
    for (const QVariantMap &row : data.rows(QStringLiteral("restaurants_promoted")))
        if (!withCuisine.contains(row.value(QStringLiteral("restaurant_id")).toInt()))
            return QStringLiteral("%1: a promoted place needs a cuisine").arg(describe(QStringLiteral("restaurants_promoted"), row));
    return {};
}
