#include "CatalogueQueries.h"

#include "CatalogueSchema.h"
#include "catalogue/CatalogueDates.h"
#include "catalogue/Restaurants.h"
#include "platform/Database.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <memory>

namespace {

// The app's catalogue store over a private copy of the file, as a device that just received it.
class TemporaryHome
{
public:
    bool open(const QString &path, QString *error)
    {
        if (!m_dir.isValid() || !QDir(m_dir.path()).mkpath(QStringLiteral("Documents"))
            || !QDir(m_dir.path()).mkpath(QStringLiteral("Caches"))) {
            *error = QStringLiteral("can't make a temporary home");
            return false;
        }
        if (!QFile::copy(path, m_dir.filePath(QStringLiteral("Documents/copy.vmr")))) {
            *error = QStringLiteral("can't read %1").arg(path);
            return false;
        }
        restaurants = std::make_unique<Restaurants>(Restaurants::Environment{
            m_dir.filePath(QStringLiteral("Documents")), m_dir.filePath(QStringLiteral("Caches")), nullptr, QStringLiteral("es"), QString()});
        if (!restaurants->ready()) {
            *error = QStringLiteral("%1 is not a readable catalogue").arg(path);
            return false;
        }
        restaurants->waitForSearchIndex(); // answers come from the index, as on a device later on
        return true;
    }
    std::unique_ptr<Restaurants> restaurants;

private:
    QTemporaryDir m_dir;
};

QJsonArray sortedArray(const QSet<int> &ids)
{
    QList<int> list(ids.begin(), ids.end());
    std::sort(list.begin(), list.end());
    QJsonArray array;
    for (int id : list)
        array.append(id);
    return array;
}

}

QJsonObject catalogueInfo(const QString &path, QString *error)
{
    const Restaurants verifier(Restaurants::Environment{});
    // The app's own judgement: the update check, then every check its load makes.
    const QString verification = verifier.verifyDatabase(path).kindName();
    const QString fault = QFile::exists(path) ? verifier.catalogueFault(path) : QStringLiteral("no such file");
    // The design's verdict first (cipherError for another key, ...); "refused" only for a file
    // that passes it and fails a deeper check of the load; the fault beside it either way.
    const bool verdictPasses = verification == QLatin1String("ok") || verification == QLatin1String("outdated");
    QJsonObject info{{QStringLiteral("file"), path},
                     {QStringLiteral("verification"), fault.isEmpty() || !verdictPasses ? verification : QStringLiteral("refused")}};
    if (!fault.isEmpty()) {
        info.insert(QStringLiteral("fault"), fault);
        *error = QStringLiteral("the app would not use %1: %2").arg(path, fault);
        return info;
    }
    Database db(path);
    if (!QFile::exists(path) || !db.openWithFlags(Database::ReadOnly) || !db.setKey(Restaurants::dbkey)) {
        *error = QStringLiteral("can't open %1").arg(path);
        return info;
    }
    db.forEachRow(QStringLiteral("SELECT key, val FROM extras"), {}, [&](const ResultSet &row) {
        const QString key = row.stringForColumn(0);
        if (key == QLatin1String("version_date") || key == QLatin1String("db_version") || key == QLatin1String("expire_date"))
            info.insert(key, row.stringForColumn(1));
        return true;
    });
    QJsonObject counts;
    for (const CatalogueSchema::Table &table : CatalogueSchema::tables()) {
        if (!db.tableExists(table.name))
            continue;
        db.forEachRow(QStringLiteral("SELECT count(*) FROM ") + table.name, {}, [&](const ResultSet &row) {
            counts.insert(table.name, row.longForColumn(0));
            return false;
        });
    }
    info.insert(QStringLiteral("tables"), counts);
    return info;
}

bool querySearch(const QString &path, const QString &text, QJsonArray &ids, QString *error)
{
    TemporaryHome home;
    if (!home.open(path, error))
        return false;
    ids = sortedArray(home.restaurants->searchIds(text));
    return true;
}

bool queryList(const QString &path, const ListQuery &query, QJsonArray &entries, QString *error)
{
    TemporaryHome home;
    if (!home.open(path, error))
        return false;
    Restaurants &restaurants = *home.restaurants;
    const auto province = restaurants.province(query.province);
    if (!province) {
        *error = QStringLiteral("no province %1").arg(query.province);
        return false;
    }
    // As the search screen: all the province's municipalities when none is chosen.
    Filters filters;
    filters.municipalities = QSet<int>(query.municipalities.begin(), query.municipalities.end());
    if (filters.municipalities.isEmpty())
        filters.municipalities = province->municipalityIds();
    filters.cuisines = QSet<int>(query.cuisines.begin(), query.cuisines.end());
    filters.prices = QSet<int>(query.prices.begin(), query.prices.end());
    QSet<int> ids = restaurants.filteredIds(filters, !query.showClosed);
    if (!query.text.isEmpty())
        ids.intersect(restaurants.searchIds(query.text));
    for (const SortedEntry &entry : restaurants.sortedEntries(ids, query.text))
        entries.append(QJsonObject{{QStringLiteral("id"), entry.id}, {QStringLiteral("letter"), entry.letter}});
    return true;
}

bool queryPlace(const QString &path, int id, QJsonObject &place, QString *error)
{
    TemporaryHome home;
    if (!home.open(path, error))
        return false;
    const auto info = home.restaurants->restaurantInfo(id);
    if (!info) {
        *error = QStringLiteral("no place %1").arg(id);
        return false;
    }
    place = {{QStringLiteral("id"), info->id},
             {QStringLiteral("name"), info->name},
             {QStringLiteral("priceRank"), info->priceRank},
             {QStringLiteral("address"), info->address},
             {QStringLiteral("hours"), info->hours},
             {QStringLiteral("cuisines"), info->cuisines},
             {QStringLiteral("description"), info->description},
             {QStringLiteral("offers"), info->offers},
             {QStringLiteral("hasMenu"), info->hasMenu},
             {QStringLiteral("hasGallery"), info->hasGallery},
             {QStringLiteral("hasPhone"), info->hasPhone},
             {QStringLiteral("outOfService"), info->outOfService},
             {QStringLiteral("outOfServiceReason"), info->outOfServiceReason}};
    if (info->location)
        place.insert(QStringLiteral("location"), QJsonArray{info->location->latitude, info->location->longitude});
    return true;
}
