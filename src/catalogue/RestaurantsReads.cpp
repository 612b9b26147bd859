// The read operations of Restaurants that the screens call: places, pictures, offers,
// promotions, campaigns and menus, with their caches.

#include "catalogue/Restaurants.h"

#include "catalogue/CatalogueDates.h"
#include "catalogue/LanguageColumns.h"
#include "platform/DatabaseQueue.h"
#include "platform/Logging.h"
#include "platform/Shuffle.h"

#include <QRegularExpression>

#include <algorithm>
#include <tuple>

namespace {

// A statement that fails on a catalogue that passed its key probe means the file is damaged.
// The process goes on: the read answers its empty form.
void reportDamage(const QString &what, const Database &db)
{
    qCCritical(lcCatalogue).noquote() << "Damaged catalogue:" << what << "failed:" << db.lastErrorMessage();
}

// Text of a nullable cell, empty (not null) for NULL.
template <typename Column>
QString textOf(const ResultSet &row, const Column &column)
{
    const QString text = row.stringForColumn(column);
    return text.isNull() ? QStringLiteral("") : text;
}

bool hasPhoneText(const QString &phone)
{
    return !phone.trimmed().isEmpty();
}

// A catalogue date, or the present moment when it is missing or malformed.
QDateTime dateOrNow(const QString &text)
{
    const auto date = CatalogueDates::parseDashed(text);
    return date ? date->startOfDay() : QDateTime::currentDateTime();
}

}

std::optional<Brief> Restaurants::brief(int id)
{
    const auto queue = dbq();
    if (!queue)
        return std::nullopt;
    if (auto hit = m_briefCache.find(id))
        return hit;
    std::optional<Brief> result;
    queue->inDatabase([&](Database &db) {
        // Writers meet in the queue: a second look here keeps two missing readers from both storing.
        if ((result = m_briefCache.find(id)))
            return;
        Brief brief;
        brief.id = id;
        bool namePresent = true;
        const bool read = db.forEachRow(QStringLiteral("SELECT name,oof,address,phone FROM restaurants WHERE id = ? LIMIT 1"),
                                        {id}, [&](const ResultSet &row) {
                                            brief.name = row.stringForColumn(0);
                                            namePresent = !brief.name.isNull();
                                            brief.outOfService = row.intForColumn(1) == 1;
                                            brief.address = textOf(row, QStringLiteral("address"));
                                            brief.hasPhone = hasPhoneText(row.stringForColumn(3));
                                            return false;
                                        });
        if (!read)
            return reportDamage(QStringLiteral("reading place %1").arg(id), db);
        if (!namePresent) {
            qCCritical(lcCatalogue) << "Damaged catalogue: place" << id << "has no name";
            return;
        }
        // A place that isn't there keeps its empty brief too: lists ask for it again and again.
        for (int cuisine : cuisinesOfRestaurant(id))
            if (const auto name = m_cuisines.name(cuisine))
                brief.cuisines.append(*name);
        m_briefCache.store(id, brief);
        result = brief;
    });
    return result;
}

QList<PlaceLocation> Restaurants::allLocations() const
{
    QList<PlaceLocation> locations;
    const auto queue = dbq();
    if (!queue)
        return locations;
    queue->inDatabase([&](Database &db) {
        const bool read = db.forEachRow(
            // A catalogue with an index on the position answers from it alone, in latitude order.
            QStringLiteral("SELECT id,latitud,longitud FROM restaurants WHERE latitud IS NOT NULL AND longitud IS NOT NULL"
                           " ORDER BY latitud"), {},
            [&](const ResultSet &row) {
                // Out-of-range positions are data errors: such a place has no pin.
                if (Location::isMappable(row.doubleForColumn(1), row.doubleForColumn(2)))
                    locations.append({row.doubleForColumn(1), row.doubleForColumn(2), row.intForColumn(0)});
                return true;
            });
        if (!read) {
            locations.clear();
            reportDamage(QStringLiteral("reading the places' positions"), db);
        }
    });
    return locations;
}

QStringList Restaurants::phones(int id) const
{
    QStringList numbers;
    const auto queue = dbq();
    if (!queue)
        return numbers;
    queue->inDatabase([&](Database &db) {
        const bool read = db.forEachRow(QStringLiteral("SELECT phone FROM restaurants WHERE id = ?"), {id},
                                        [&](const ResultSet &row) {
                                            // Parts are kept as they stand: a blank after a comma stays.
                                            numbers += row.stringForColumn(0).split(QLatin1Char(','), Qt::SkipEmptyParts);
                                            return true;
                                        });
        if (!read) {
            numbers.clear();
            reportDamage(QStringLiteral("reading the phones of place %1").arg(id), db);
        }
    });
    return numbers;
}

QStringList Restaurants::namesThroughLink(Database &db, const QString &sql, int placeId, LocalizableTable &table, bool &ok)
{
    table.ensureLoaded();
    QStringList names;
    ok = db.forEachRow(sql, {placeId}, [&](const ResultSet &row) {
        if (const auto name = table.name(row.intForColumn(0)))
            names.append(*name);
        return true;
    });
    if (!ok)
        reportDamage(QStringLiteral("reading the names of \"%1\"").arg(sql), db);
    return names;
}

std::optional<RestaurantInfo> Restaurants::restaurantInfo(int id)
{
    const auto queue = dbq();
    if (!queue)
        return std::nullopt;
    const QString lang = language();
    RestaurantInfo info;
    info.id = id;
    bool ok = true;
    queue->inDatabase([&](Database &db) {
        info.cuisines = namesThroughLink(db, QStringLiteral("SELECT cuisine_id FROM restaurants_cuisines WHERE restaurant_id = ?"),
                                         id, m_cuisines, ok)
                            .join(QStringLiteral(", "));
    });
    if (!ok)
        return std::nullopt;

    std::optional<RestaurantInfo> result;
    queue->inDatabase([&](Database &db) {
        m_price_ranks.ensureLoaded();
        // A catalogue without offers has none; this read alone may fail quietly.
        db.forEachRow(QStringLiteral("SELECT count(*) FROM offers WHERE restaurant_id = ?"), {id}, [&](const ResultSet &row) {
            info.offers = row.intForColumn(0);
            return false;
        });
        const QString sql = QStringLiteral("SELECT price_rank_id,name,address,oof,has_menu,has_gallery,phone,latitud,longitud,")
            + LanguageColumns::localized(QStringLiteral("horario"), lang) + QLatin1Char(',')
            + LanguageColumns::localized(QStringLiteral("description"), lang) + QLatin1Char(',')
            + LanguageColumns::localized(QStringLiteral("oof_reason"), lang) + QStringLiteral(" FROM restaurants WHERE id = ?");
        bool found = false;
        const bool read = db.forEachRow(sql, {id}, [&](const ResultSet &row) {
            found = true;
            info.priceRank = m_price_ranks.name(row.intForColumn(0)).value_or(QString());
            info.name = row.stringForColumn(1);
            info.address = textOf(row, QStringLiteral("address"));
            info.outOfService = row.intForColumn(3) == 1;
            info.hasMenu = row.intForColumn(4) != 0;
            info.hasGallery = row.intForColumn(5) != 0;
            info.hasPhone = hasPhoneText(row.stringForColumn(6));
            if (!row.columnIsNull(7) && !row.columnIsNull(8) && Location::isMappable(row.doubleForColumn(7), row.doubleForColumn(8)))
                info.location = Location{row.doubleForColumn(7), row.doubleForColumn(8)};
            info.hours = row.stringForColumn(9).trimmed();
            info.description = row.stringForColumn(10).trimmed();
            info.outOfServiceReason = textOf(row, 11);
            return false;
        });
        if (!read)
            return reportDamage(QStringLiteral("reading place %1").arg(id), db);
        if (!found)
            return;
        if (info.name.isNull()) {
            qCCritical(lcCatalogue) << "Damaged catalogue: place" << id << "has no name";
            return;
        }
        result = info;
    });
    return result;
}

MoreInfo Restaurants::moreInfo(int id)
{
    MoreInfo info;
    const auto queue = dbq();
    if (!queue)
        return info;
    bool ok = true;
    queue->inDatabase([&](Database &db) {
        m_restaurant_groups.ensureLoaded();
        const bool hasWebsite = db.columnExists(QStringLiteral("profile_url"), QStringLiteral("restaurants"));
        const QString sql = QStringLiteral("SELECT name,email,rest_group_id")
            + (hasWebsite ? QStringLiteral(",profile_url") : QString()) + QStringLiteral(" FROM restaurants WHERE id = ?");
        ok = db.forEachRow(sql, {id}, [&](const ResultSet &row) {
            info.name = row.stringForColumn(0);
            static const QRegularExpression separators(QStringLiteral("[, ]"));
            info.emails = row.stringForColumn(1).split(separators, Qt::SkipEmptyParts);
            info.rest_group = m_restaurant_groups.name(row.intForColumn(2)).value_or(QString());
            if (hasWebsite)
                info.website = textOf(row, QStringLiteral("profile_url"));
            return true;
        });
        if (!ok)
            reportDamage(QStringLiteral("reading place %1").arg(id), db);
    });
    const std::tuple<const char *, QStringList MoreInfo::*, LocalizableTable *> links[] = {
        {"SELECT service_type_id FROM restaurants_service_types WHERE restaurant_id = ?", &MoreInfo::service_types, &m_service_types},
        {"SELECT payment_type_id FROM restaurants_payment_types WHERE restaurant_id = ?", &MoreInfo::payment_options, &m_payment_options},
        {"SELECT place_option_id FROM restaurants_place_options WHERE restaurant_id = ?", &MoreInfo::place_options, &m_place_options},
    };
    for (const auto &[sql, field, table] : links) {
        if (!ok)
            return MoreInfo{};
        queue->inDatabase([&](Database &db) { info.*field = namesThroughLink(db, QString::fromLatin1(sql), id, *table, ok); });
    }
    return ok ? info : MoreInfo{};
}

QByteArray Restaurants::cachedImage(FifoCache<QByteArray> &cache, int id, const QString &sql, OnFailure onFailure)
{
    // One rule for every read: with no catalogue open, the empty form, cached or not.
    const auto queue = dbq();
    if (!queue)
        return {};
    if (auto hit = cache.find(id))
        return *hit;
    QByteArray data;
    queue->inDatabase([&](Database &db) {
        if (auto hit = cache.find(id)) {
            data = *hit;
            return;
        }
        QByteArray last;
        const bool read = db.forEachRow(sql, {id}, [&](const ResultSet &row) {
            last = row.dataForColumn(0);
            return true;
        });
        if (!read) {
            if (onFailure == OnFailure::Damage)
                reportDamage(QStringLiteral("reading picture %1").arg(id), db);
            return; // nothing stored: the next request tries again
        }
        cache.store(id, last);
        data = last;
    });
    return data;
}

QByteArray Restaurants::profileImage(int id)
{
    return cachedImage(m_profileImageCache, id,
                       QStringLiteral("SELECT data FROM restaurants_profiles WHERE restaurant_id = ? LIMIT 1"), OnFailure::Damage);
}

QByteArray Restaurants::galleryImage(int id)
{
    return cachedImage(m_galleryImageCache, id, QStringLiteral("SELECT data FROM gallery WHERE id = ? LIMIT 1"),
                       OnFailure::Damage);
}

QByteArray Restaurants::promoImage(int promoId)
{
    return cachedImage(m_promoImageCache, promoId,
                       QStringLiteral("SELECT data FROM restaurants_promoted WHERE id == ? LIMIT 1"), OnFailure::Quiet);
}

QByteArray Restaurants::adImage(int imageId)
{
    return cachedImage(m_adImageCache, imageId, QStringLiteral("SELECT data FROM app_campaign_images WHERE id=?"),
                       OnFailure::Quiet);
}

QList<int> Restaurants::galleryImageIds(int placeId) const
{
    QList<int> ids;
    const auto queue = dbq();
    if (!queue)
        return ids;
    queue->inDatabase([&](Database &db) {
        if (!db.forEachRow(QStringLiteral("SELECT id FROM gallery WHERE restaurant_id = ?"), {placeId}, [&](const ResultSet &row) {
                ids.append(row.intForColumn(0));
                return true;
            })) {
            ids.clear();
            reportDamage(QStringLiteral("reading the gallery of place %1").arg(placeId), db);
        }
    });
    return ids;
}

QString Restaurants::galleryImageCaption(int id) const
{
    QString caption;
    const auto queue = dbq();
    if (!queue)
        return caption;
    const QString column = LanguageColumns::localized(QStringLiteral("description"), language());
    queue->inDatabase([&](Database &db) {
        if (!db.forEachRow(QStringLiteral("SELECT ") + column + QStringLiteral(" FROM gallery WHERE id = ?"), {id},
                           [&](const ResultSet &row) {
                               caption = textOf(row, column);
                               return true;
                           })) {
            caption.clear();
            reportDamage(QStringLiteral("reading the caption of picture %1").arg(id), db);
        }
    });
    return caption;
}

QList<Oferta> Restaurants::offers(int provinceId, int restaurant) const
{
    QList<Oferta> result;
    const auto queue = dbq();
    if (!queue || !provinceHasOffers(provinceId))
        return result;
    const QString lang = language();
    const QString sql = QStringLiteral("SELECT   restaurant_id,   restaurants.name AS rest_name,   offers.")
        + LanguageColumns::localized(QStringLiteral("name"), lang) + QStringLiteral(" AS name_col,   offers.")
        + LanguageColumns::localized(QStringLiteral("description"), lang)
        + QStringLiteral(" AS desc_col,    county_id,    price,    valid_from,    valid_to "
                         "FROM offers JOIN restaurants ON restaurant_id = restaurants.id")
        + (restaurant != -1 ? QStringLiteral(" WHERE restaurant_id = ?") : QString()) + QStringLiteral(" ORDER BY restaurant_id");
    const QVariantList arguments = restaurant != -1 ? QVariantList{restaurant} : QVariantList{};
    queue->inDatabase([&](Database &db) {
        const bool read = db.forEachRow(sql, arguments, [&](const ResultSet &row) {
            // The province narrows the list only when no single place was asked for.
            if (restaurant == -1 && provinceOfMunicipality(row.intForColumn(QStringLiteral("county_id"))) != provinceId)
                return true;
            result.append(Oferta{row.intForColumn(QStringLiteral("restaurant_id")), textOf(row, QStringLiteral("name_col")),
                                 textOf(row, QStringLiteral("rest_name")), textOf(row, QStringLiteral("desc_col")),
                                 row.doubleForColumn(QStringLiteral("price")),
                                 dateOrNow(row.stringForColumn(QStringLiteral("valid_from"))),
                                 dateOrNow(row.stringForColumn(QStringLiteral("valid_to")))});
            return true;
        });
        if (!read) {
            result.clear();
            qCDebug(lcCatalogue) << "No offers:" << db.lastErrorMessage();
        }
    });
    return result;
}

QList<Promo> Restaurants::promos(int provinceId) const
{
    QList<Promo> result;
    const auto queue = dbq();
    if (!queue)
        return result;
    queue->inDatabase([&](Database &db) {
        // valid_to is selected but not read: the catalogue's producer drops old promotions.
        const bool read = db.forEachRow(QStringLiteral("SELECT id,restaurant_id,valid_to FROM restaurants_promoted"), {},
                                        [&](const ResultSet &row) {
                                            const int rid = row.intForColumn(1);
                                            if (provinceOfRestaurant(rid) == provinceId)
                                                result.append(Promo{row.intForColumn(0), rid, QDateTime::currentDateTime()});
                                            return true;
                                        });
        if (!read) {
            result.clear();
            qCDebug(lcCatalogue) << "No promotions:" << db.lastErrorMessage();
        }
    });
    shuffle(result);
    return result;
}

QList<Ad> Restaurants::ads() const
{
    QList<Ad> result;
    const auto queue = dbq();
    if (!queue)
        return result;
    const QString lang = language();
    const QString today = CatalogueDates::formatDashed(QDate::currentDate());
    const QString sql = QStringLiteral("SELECT a.id, b.id as image_id, a.action, a.") + LanguageColumns::actionValue(lang)
        + QStringLiteral(" as value, a.position from app_campaign_images b, app_campaigns a where b.campaign_id=a.id"
                         " and a.valid_to >= ? and b.lang in ('any', ?) order by a.position");
    queue->inDatabase([&](Database &db) {
        // Consecutive rows of one campaign form a group; each group shows one picture at random.
        QList<Ad> group;
        const auto closeGroup = [&] {
            if (group.isEmpty())
                return;
            shuffle(group);
            result.append(group.first());
            group.clear();
        };
        const bool read = db.forEachRow(sql, {today, lang}, [&](const ResultSet &row) {
            const Ad ad{row.intForColumn(0), textOf(row, QStringLiteral("action")), row.intForColumn(1),
                        textOf(row, QStringLiteral("value"))};
            if (!group.isEmpty() && group.first().ad_id != ad.ad_id)
                closeGroup();
            group.append(ad);
            return true;
        });
        closeGroup();
        if (!read) {
            result.clear();
            qCDebug(lcCatalogue) << "No campaigns:" << db.lastErrorMessage();
        }
    });
    return result;
}

std::optional<Ad> Restaurants::randomAd() const
{
    QList<Ad> all = ads();
    shuffle(all);
    return all.isEmpty() ? std::nullopt : std::optional<Ad>(all.first());
}

std::optional<Menu> Restaurants::menu(int id) const
{
    const auto queue = dbq();
    if (!queue)
        return std::nullopt;
    const QString lang = language();
    const QString category = LanguageColumns::localized(QStringLiteral("custom_category"), lang);
    std::optional<Menu> result;
    queue->inDatabase([&](Database &db) {
        std::optional<int> menuId;
        Menu menu;
        const bool read = db.forEachRow(QStringLiteral("SELECT id,") + LanguageColumns::localized(QStringLiteral("description"), lang)
                                            + QStringLiteral(" FROM menu WHERE restaurant_id = ?"),
                                        {id}, [&](const ResultSet &row) {
                                            // With several menus the last one read counts.
                                            menuId = row.intForColumn(0);
                                            menu.desc = textOf(row, 1);
                                            return true;
                                        });
        if (!read)
            return reportDamage(QStringLiteral("reading the menu of place %1").arg(id), db);
        if (!menuId)
            return;
        QString current;
        QString fault;
        const bool entries = db.forEachRow(
            QStringLiteral("SELECT ") + LanguageColumns::localized(QStringLiteral("name"), lang) + QLatin1Char(',') + category
                + QStringLiteral(",price FROM menu_entries WHERE menu_id = ? ORDER BY ") + category + QStringLiteral(",price"),
            {*menuId}, [&](const ResultSet &row) {
                const QString section = row.stringForColumn(1);
                if (section.isNull()) {
                    fault = QStringLiteral("an entry without category");
                    return false;
                }
                if (section != current) {
                    menu.sections.append(MenuSection{section, {}});
                    current = section;
                }
                if (menu.sections.isEmpty()) {
                    fault = QStringLiteral("an entry before any section");
                    return false;
                }
                menu.sections.last().entries.append({textOf(row, 0), row.doubleForColumn(2)});
                return true;
            });
        if (!entries)
            return reportDamage(QStringLiteral("reading menu %1").arg(*menuId), db);
        if (!fault.isEmpty()) {
            qCCritical(lcCatalogue).noquote() << "Damaged catalogue: menu" << *menuId << "has" << fault;
            return;
        }
        result = menu;
    });
    return result;
}

QString Restaurants::subscriptionPhoneNumber() const
{
    QMutexLocker lock(&m_mutex);
    return m_subscriptionNumber;
}
