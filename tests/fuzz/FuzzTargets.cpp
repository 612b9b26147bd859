#include "FuzzTargets.h"

#include "catalogue/CatalogueDates.h"
#include "catalogue/CatalogueFiles.h"
#include "catalogue/Filters.h"
#include "catalogue/PlaceListing.h"
#include "catalogue/SearchTerms.h"
#include "richtext/RichString.h"
#include "catalogue/Restaurants.h"
#include "map/VectorTile.h"
#include "map/VectorTileRenderer.h"
#include "platform/Database.h"
#include "platform/DefaultKeys.h"
#include "platform/Signatures.h"
#include "platform/UserDefaults.h"
#include "platform/ZipArchive.h"
#include "update/PatchFiles.h"
#include "update/SignedFiles.h"
#include "update/UpdateInfo.h"
#include "update/UpdateService.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QTemporaryDir>

#include <cstdlib>

namespace {
QString text(const QByteArray &bytes)
{
    return QString::fromUtf8(bytes);
}

void writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    if (file.open(QIODevice::WriteOnly))
        file.write(bytes);
}

// The smallest catalogue the load takes: one province, one place, the tables the screens read.
bool writeTinyCatalogue(const QString &path)
{
    Database db(path);
    return db.open() && db.setKey(Restaurants::dbkey)
        && db.executeStatements(QStringLiteral(
            "CREATE TABLE states(id INTEGER PRIMARY KEY, name TEXT);"
            "CREATE TABLE counties(id INTEGER PRIMARY KEY, state_id INTEGER, name TEXT);"
            "CREATE TABLE restaurants(id INTEGER PRIMARY KEY, name TEXT, search_name TEXT, address TEXT, phone TEXT, email TEXT,"
            " county_id INTEGER, price_rank_id INTEGER, rest_group_id INTEGER, oof INTEGER, oof_reason TEXT, oof_reason_en TEXT,"
            " has_menu INTEGER, has_gallery INTEGER, latitud REAL, longitud REAL, horario TEXT, horario_en TEXT, description TEXT,"
            " description_en TEXT);"
            "CREATE TABLE restaurants_cuisines(restaurant_id INTEGER, cuisine_id INTEGER);"
            "CREATE TABLE price_ranks(id INTEGER PRIMARY KEY, name TEXT, name_en TEXT);"
            "CREATE TABLE cuisines(id INTEGER PRIMARY KEY, name TEXT, name_en TEXT);"
            "CREATE TABLE restaurants_profiles(restaurant_id INTEGER, data BLOB);"
            "CREATE TABLE gallery(id INTEGER PRIMARY KEY, restaurant_id INTEGER, data BLOB, description TEXT, description_en TEXT);"
            "CREATE TABLE extras(key TEXT, val TEXT);"
            "INSERT INTO states VALUES (1, 'La Habana'); INSERT INTO counties VALUES (10, 1, 'Centro');"
            "INSERT INTO restaurants (id, name, search_name, county_id, price_rank_id, oof) VALUES (1, 'Viejo', 'viejo', 10, 1, 0);"
            "INSERT INTO price_ranks VALUES (1, 'Barato', 'Cheap'); INSERT INTO cuisines VALUES (1, 'Criolla', 'Creole');"
            "INSERT INTO restaurants_cuisines VALUES (1, 1); INSERT INTO extras VALUES ('version_date', '20170101');"));
}

// A finding the sanitizers can't see: the update path wrote where it must not.
void findingIf(bool wrong, const char *what)
{
    if (wrong) {
        qCritical("fuzz finding: %s", what);
        std::abort();
    }
}
}

const QList<FuzzTarget> &fuzzTargets()
{
    static const QList<FuzzTarget> targets = {
        {QStringLiteral("stylesheet"),
         [](const QByteArray &bytes) {
             RichString sheet(QStringList{text(bytes)});
             sheet.render(QStringLiteral("<body><p>a</p><b>b</b></body>"));
         }},
        {QStringLiteral("color"),
         [](const QByteArray &bytes) {
             RichString::parseColor(text(bytes));
             RichString::parseHexColor(text(bytes));
             RichString::parseNumber(text(bytes));
         }},
        {QStringLiteral("markup"),
         [](const QByteArray &bytes) {
             static const RichString sheet({QStringLiteral("p { font-name: OpenSans; font-size: 13; color: #d95b43; }"),
                                            QStringLiteral("b { font-name: OpenSans-Bold; line-height: 1.4; align: center; }")});
             sheet.render(text(bytes));
         }},
        {QStringLiteral("catalogue-name"),
         [](const QByteArray &bytes) {
             CatalogueFiles::isCandidateName(text(bytes));
             CatalogueFiles::patchDates(text(bytes));
             // A name also goes through the index's expansion and the scan's folding.
             searchTerms(text(bytes), text(bytes));
             foldForSearch(text(bytes));
         }},
        {QStringLiteral("dates"),
         [](const QByteArray &bytes) {
             CatalogueDates::parseCompact(text(bytes));
             CatalogueDates::parseDashed(text(bytes));
         }},
        {QStringLiteral("last-txt"),
         [](const QByteArray &bytes) {
             QString error;
             parseUpdateInfo(text(bytes), &error);
         }},
        {QStringLiteral("txt-record"),
         [](const QByteArray &bytes) {
             UpdateService::parseTXTRecord(bytes);
             UpdateService::resolved(QStringLiteral("local"), QStringLiteral("_t._tcp"), QStringLiteral("n"), QStringLiteral("h"), 80, bytes);
         }},
        // A street map tile from a pack: decoded within its limits, and drawn when it decodes.
        {QStringLiteral("vector-tile"),
         [](const QByteArray &bytes) {
             VectorTile tile;
             QString error;
             if (decodeVectorTile(bytes, tile, &error))
                 renderVectorTile(tile, {16, QRectF(0.25, 0.5, 0.25, 0.25), 256, 1});
             else
                 findingIf(error.isEmpty(), "a refused tile without a reason");
         }},
        {QStringLiteral("signature"),
         [](const QByteArray &bytes) {
             static const QByteArray key = Signatures::generateKeyPair().publicKey;
             QString why;
             SignedFiles::parse(bytes, &why);
             SignedFiles::checkBeforeTransfer(bytes, {QStringLiteral("update-20170101-20170201.zip"), QDate(2017, 2, 1), QDate(2017, 1, 1)},
                                              {key}, &why);
             SignedFiles::check(bytes, 10, QByteArray(32, 'a'), {QStringLiteral("a"), std::nullopt, std::nullopt}, {key});
         }},
        // A patch archive from the network: only the expected file, in its own folder, or nothing.
        {QStringLiteral("patch-archive"),
         [](const QByteArray &bytes) {
             QTemporaryDir work;
             const QString zip = work.filePath(QStringLiteral("in.zip"));
             writeFile(zip, bytes);
             QDir(work.path()).mkpath(QStringLiteral("home/patch"));
             const QString expected = PatchFiles::patchFileName(QDate(2017, 1, 1), QDate(2017, 2, 1));
             QString entry, error;
             const bool unpacked = ZipArchive::extractSingle(zip, work.filePath(QStringLiteral("home/patch")), PatchFiles::archivePassword, {},
                                                             &entry, &error, expected);
             const QStringList written = QDir(work.filePath(QStringLiteral("home/patch"))).entryList(QDir::Files | QDir::Hidden | QDir::System);
             findingIf(unpacked ? written != QStringList{expected} : !written.isEmpty(), "an archive wrote something else");
             findingIf(QDir(work.filePath(QStringLiteral("home"))).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden).size() != 1,
                       "an archive wrote outside its folder");
         }},
        // A patch database applied to a tiny catalogue, as a start does: whatever it holds, the
        // catalogue in use stays readable and nothing outside the patch folder goes.
        {QStringLiteral("patch-db"),
         [](const QByteArray &bytes) {
             QTemporaryDir work;
             QDir(work.path()).mkpath(QStringLiteral("Documents"));
             QDir(work.path()).mkpath(QStringLiteral("Application Support/patch"));
             QDir(work.path()).mkpath(QStringLiteral("Caches"));
             const QString catalogue = work.filePath(QStringLiteral("Documents/velmora-20170101.db"));
             if (!writeTinyCatalogue(catalogue))
                 return;
             const QString patch = work.filePath(QStringLiteral("Application Support/patch/") + PatchFiles::patchFileName(QDate(2017, 1, 1), QDate(2017, 2, 1)));
             writeFile(patch, bytes);
             UserDefaults defaults(work.filePath(QStringLiteral("Application Support/UserDefaults.ini")));
             defaults.setString(QStringLiteral("kept"), QStringLiteral("canary"));
             defaults.setString(patch, DefaultKeys::patchAvailable);
             Restaurants restaurants({work.filePath(QStringLiteral("Documents")), work.filePath(QStringLiteral("Caches")), &defaults,
                                      QStringLiteral("es"), work.filePath(QStringLiteral("Application Support"))});
             restaurants.waitForSearchIndex();
             findingIf(!restaurants.ready(), "no catalogue is ready after a patch");
             findingIf(!QFile::exists(work.filePath(QStringLiteral("Application Support/UserDefaults.ini"))), "the settings store went");
             findingIf(QFile::exists(QStringLiteral("/tmp/planted.db")), "a patch wrote outside its catalogue");
         }},
        {QStringLiteral("filters"),
         [](const QByteArray &bytes) {
             Filters filters;
             filters.load(QJsonDocument::fromJson(bytes).toVariant().toMap());
             filters.dictionary();
         }},
    };
    return targets;
}

const FuzzTarget *fuzzTarget(const QString &name)
{
    for (const FuzzTarget &target : fuzzTargets())
        if (target.name == name)
            return &target;
    return nullptr;
}
