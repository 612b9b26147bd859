#include "catalogue/Restaurants.h"
#include "fixtures/CatalogueFixture.h"
#include "fixtures/ServiceProcesses.h"
#include "platform/Compression.h"
#include "platform/Database.h"
#include "platform/ZipArchive.h"
#include "toolkit/CatalogueData.h"
#include "toolkit/CatalogueWriter.h"
#include "toolkit/DemoGenerator.h"
#include "toolkit/DemoPictures.h"
#include "toolkit/CatalogueQueries.h"
#include "toolkit/PatchBuilder.h"
#include "toolkit/Publisher.h"
#include "toolkit/SourceReader.h"
#include "update/PatchFiles.h"
#include "update/UpdateInfo.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QPainter>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

namespace {
const char tool[] = VELMORA_CATALOGUE_TOOL;

// A small source with one of everything, its pictures beside it.
QJsonObject smallSource()
{
    const auto parse = [](const char *json) { return QJsonDocument::fromJson(json).object(); };
    return parse(R"({
      "extras": {"version_date": "20261101", "db_version": "test", "expire_date": "20990101", "phone_number": "8888"},
      "states": [{"id": 1, "name": "La Habana"}, {"id": 2, "name": "Matanzas"}],
      "counties": [{"id": 101, "state_id": 1, "name": "Plaza de la Revolución"},
                   {"id": 102, "state_id": 1, "name": "La Habana Vieja"},
                   {"id": 201, "state_id": 2, "name": "Cárdenas"}],
      "price_ranks": [{"id": 2, "name": "Económico", "name_en": "Budget"}, {"id": 3, "name": "Moderado", "name_en": "Moderate"}],
      "cuisines": [{"id": 1, "name": "Criolla", "name_en": "Creole"}, {"id": 2, "name": "Mariscos", "name_en": "Seafood"}],
      "restaurants": [
        {"id": 10, "name": "Ñico's Paladar", "address": "Obispo 305", "phone": "78671374", "county_id": 102,
         "price_rank_id": 3, "oof": 0, "horario": "De 12 a 23", "horario_en": "Noon to 11 pm",
         "cuisines": [1, 2], "profile": "profile.jpg",
         "gallery": [{"id": 1, "picture": "profile.jpg", "description": "Patio", "description_en": "Courtyard"}],
         "offers": [{"name": "Menú", "name_en": "Set menu", "price": 8.5, "valid_from": "2026-11-01", "valid_to": "2026-12-01"}],
         "menu": {"id": 1, "description": "Carta", "description_en": "Menu",
                  "entries": [{"name": "Mojito", "name_en": "Mojito", "custom_category": "Bebidas",
                               "custom_category_en": "Drinks", "price": 4}]}},
        {"id": 11, "name": "Bodeguita", "address": "Empedrado 207", "county_id": 102, "price_rank_id": 2, "oof": 1,
         "cuisines": [1]},
        {"id": 12, "name": "Café Cárdenas", "address": "Calle Real 5", "county_id": 201, "price_rank_id": 2, "cuisines": [2]}
      ],
      "restaurants_promoted": [{"id": 1, "restaurant_id": 10, "valid_to": "2026-12-31", "picture": "profile.jpg"}],
      "app_campaigns": [{"id": 1, "action": "url", "action_value": "https://a.example/es", "action_value_en": "https://a.example/en",
                         "valid_to": "2027-01-01", "position": 1, "pictures": [{"id": 1, "lang": "any", "picture": "profile.jpg"}]}]
    })");
}

struct SourceDir {
    QTemporaryDir dir;
    QString write(const QJsonObject &source)
    {
        std::mt19937 random(1);
        QFile picture(dir.filePath(QStringLiteral("profile.jpg")));
        picture.open(QIODevice::WriteOnly);
        picture.write(DemoPictures::dish(random, 160, 90));
        QFile json(dir.filePath(QStringLiteral("source.json")));
        json.open(QIODevice::WriteOnly);
        json.write(QJsonDocument(source).toJson());
        return json.fileName();
    }
    QString path(const char *name) const { return dir.filePath(QString::fromLatin1(name)); }
};

struct ToolRun {
    int exitCode;
    QByteArray out;
    QByteArray err;
};

ToolRun runTool(const QStringList &arguments)
{
    QProcess process;
    process.start(QString::fromLatin1(tool), arguments);
    process.waitForFinished(120000);
    return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
}

// Applies a patch archive's scripts to a copy of `oldPath`, as the app's patch step will.
QString applyPatchArchive(const QString &oldPath, const QString &archive, const QString &workDir)
{
    QString entry;
    QString error;
    if (!ZipArchive::extractSingle(archive, workDir, PatchFiles::archivePassword, {}, &entry, &error))
        return QStringLiteral("extract: ") + error;
    const QString copy = workDir + QStringLiteral("/applied.db");
    QFile::remove(copy);
    QFile::copy(oldPath, copy);
    Database patch(workDir + QLatin1Char('/') + entry);
    Database target(copy);
    if (!patch.openWithFlags(Database::ReadOnly) || !target.open() || !target.setKey(Restaurants::dbkey))
        return QStringLiteral("open");
    bool ok = target.executeStatements(QStringLiteral("BEGIN"));
    patch.forEachRow(QStringLiteral("SELECT patch FROM updates ORDER BY number"), {}, [&](const ResultSet &row) {
        ok = ok && target.executeStatements(row.stringForColumn(0));
        return ok;
    });
    if (!ok || !target.executeStatements(QStringLiteral("COMMIT")))
        return QStringLiteral("apply: ") + target.lastErrorMessage();
    return copy;
}
}

// Catches: columns lost between source and file, search_name not folded, the app unable to read
// what the toolkit wrote, and the command line not reporting JSON.
TEST(Toolkit, BuildThenReadWithTheAppsCode)
{
    SourceDir source;
    const QString json = source.write(smallSource());
    const ToolRun built = runTool({QStringLiteral("build"), json, QStringLiteral("-o"), source.path("out.db")});
    ASSERT_EQ(built.exitCode, 0) << built.err.toStdString();
    const QJsonObject info = QJsonDocument::fromJson(built.out).object();
    EXPECT_EQ(info.value(QStringLiteral("verification")).toString(), QStringLiteral("ok"));
    EXPECT_EQ(info.value(QStringLiteral("version_date")).toString(), QStringLiteral("20261101"));
    EXPECT_EQ(info.value(QStringLiteral("tables")).toObject().value(QStringLiteral("restaurants")).toInt(), 3);
    EXPECT_EQ(info.value(QStringLiteral("tables")).toObject().value(QStringLiteral("menu_entries")).toInt(), 1);

    QJsonArray ids;
    QString error;
    ASSERT_TRUE(querySearch(source.path("out.db"), QStringLiteral("nico"), ids, &error)) << error.toStdString();
    EXPECT_EQ(ids, QJsonArray{10});
    QJsonArray listed;
    ListQuery capital;
    capital.province = 1;
    ASSERT_TRUE(queryList(source.path("out.db"), capital, listed, &error));
    EXPECT_EQ(listed, (QJsonArray{QJsonObject{{QStringLiteral("id"), 10}, {QStringLiteral("letter"), QStringLiteral("N")}}}));
    ListQuery withClosed = capital;
    withClosed.showClosed = true;
    listed = {};
    ASSERT_TRUE(queryList(source.path("out.db"), withClosed, listed, &error));
    EXPECT_EQ(listed.size(), 2);
    QJsonObject place;
    ASSERT_TRUE(queryPlace(source.path("out.db"), 10, place, &error));
    EXPECT_EQ(place.value(QStringLiteral("cuisines")).toString(), QStringLiteral("Criolla, Mariscos"));
    EXPECT_EQ(place.value(QStringLiteral("offers")).toInt(), 1);
    EXPECT_TRUE(place.value(QStringLiteral("hasMenu")).toBool() && place.value(QStringLiteral("hasGallery")).toBool());

    const ToolRun search = runTool({QStringLiteral("query"), source.path("out.db"), QStringLiteral("search"), QStringLiteral("bode")});
    EXPECT_EQ(QJsonDocument::fromJson(search.out).array(), QJsonArray{11});

    // The verdict is the app's load: a file with a table the screens read gone is refused.
    QFile::copy(source.path("out.db"), source.path("broken.db"));
    {
        Database db(source.path("broken.db"));
        ASSERT_TRUE(db.openWithFlags(Database::ReadWrite) && db.setKey(Restaurants::dbkey));
        ASSERT_TRUE(db.executeStatements(QStringLiteral("DROP TABLE gallery")));
    }
    const ToolRun refused = runTool({QStringLiteral("info"), source.path("broken.db")});
    EXPECT_EQ(refused.exitCode, 1);
    const QJsonObject verdict = QJsonDocument::fromJson(refused.out).object();
    EXPECT_EQ(verdict.value(QStringLiteral("verification")).toString(), QStringLiteral("refused"));
    EXPECT_TRUE(verdict.value(QStringLiteral("fault")).toString().contains(QStringLiteral("gallery")));

    // A file under another key gets the design's verdict, the load's fault beside it.
    {
        Database other(source.path("other-key.db"));
        ASSERT_TRUE(other.open() && other.setKey(QStringLiteral("another publisher"))
                    && other.executeStatements(QStringLiteral("CREATE TABLE price_ranks(id INTEGER); INSERT INTO price_ranks VALUES (1)")));
    }
    const ToolRun otherKey = runTool({QStringLiteral("info"), source.path("other-key.db")});
    EXPECT_EQ(otherKey.exitCode, 1);
    const QJsonObject otherVerdict = QJsonDocument::fromJson(otherKey.out).object();
    EXPECT_EQ(otherVerdict.value(QStringLiteral("verification")).toString(), QStringLiteral("cipherError"));
    EXPECT_FALSE(otherVerdict.value(QStringLiteral("fault")).toString().isEmpty());
}

// Catches: a broken source half-written to disk, or refused without naming the record.
TEST(Toolkit, BadSourcesAreRefusedByName)
{
    const auto refused = [](QJsonObject source, const char *expected) {
        SourceDir dir;
        const ToolRun run = runTool({QStringLiteral("build"), dir.write(source), QStringLiteral("-o"), dir.path("out.db")});
        EXPECT_NE(run.exitCode, 0);
        EXPECT_TRUE(run.out.isEmpty());
        EXPECT_TRUE(QString::fromUtf8(run.err).contains(QLatin1String(expected))) << run.err.toStdString();
        EXPECT_EQ(run.err.count('\n'), 1);
        EXPECT_EQ(QDir(dir.dir.path()).entryList(QDir::Files | QDir::Hidden),
                  (QStringList{QStringLiteral("profile.jpg"), QStringLiteral("source.json")}));
    };
    const auto withPlaces = [](const std::function<void(QJsonArray &)> &change) {
        QJsonObject source = smallSource();
        QJsonArray places = source.value(QStringLiteral("restaurants")).toArray();
        change(places);
        source.insert(QStringLiteral("restaurants"), places);
        return source;
    };
    refused(withPlaces([](QJsonArray &places) {
                QJsonObject p = places[1].toObject();
                p.insert(QStringLiteral("profile"), QStringLiteral("missing.jpg"));
                places[1] = p;
            }),
            "restaurants id=11: picture \"missing.jpg\" not found");
    refused(withPlaces([](QJsonArray &places) {
                QJsonObject p = places[2].toObject();
                p.insert(QStringLiteral("id"), 10);
                places[2] = p;
            }),
            "restaurants id=10: duplicate id");
    refused(withPlaces([](QJsonArray &places) {
                QJsonObject p = places[1].toObject();
                p.insert(QStringLiteral("name"), QJsonValue::Null);
                places[1] = p;
            }),
            "restaurants id=11: the name is missing");
    refused(withPlaces([](QJsonArray &places) {
                QJsonObject p = places[1].toObject();
                p.insert(QStringLiteral("profile_url"), QStringLiteral("https://demo.example/11"));
                places[1] = p;
            }),
            "restaurants id=11: profile_url must be a path on the product's web site");
    QJsonObject strayMunicipality = smallSource();
    QJsonArray counties = strayMunicipality.value(QStringLiteral("counties")).toArray();
    counties.append(QJsonObject{{QStringLiteral("id"), 901}, {QStringLiteral("state_id"), 9}, {QStringLiteral("name"), QStringLiteral("X")}});
    strayMunicipality.insert(QStringLiteral("counties"), counties);
    refused(strayMunicipality, "counties id=901: unknown province 9");

    SourceDir dir;
    const ToolRun nowhere = runTool({QStringLiteral("build"), dir.write(smallSource()), QStringLiteral("-o"), dir.path("no/such/out.db")});
    EXPECT_NE(nowhere.exitCode, 0);
    EXPECT_TRUE(nowhere.err.contains("does not exist")) << nowhere.err.toStdString();
}

// Catches: a demo that differs between runs of one seed, or lacks what the guide's screens need.
TEST(Toolkit, DemoIsDeterministicAndComplete)
{
    QTemporaryDir dir;
    DemoOptions options;
    options.places = 400;
    options.seed = 9;
    QString error;
    ASSERT_TRUE(writeCatalogue(makeDemo(options), dir.filePath(QStringLiteral("a.db")), &error)) << error.toStdString();
    ASSERT_TRUE(writeCatalogue(makeDemo(options), dir.filePath(QStringLiteral("b.db")), &error));
    EXPECT_EQ(firstDifference(dir.filePath(QStringLiteral("a.db")), dir.filePath(QStringLiteral("b.db")), &error), QString());
    options.seed = 10;
    ASSERT_TRUE(writeCatalogue(makeDemo(options), dir.filePath(QStringLiteral("c.db")), &error));
    EXPECT_NE(firstDifference(dir.filePath(QStringLiteral("a.db")), dir.filePath(QStringLiteral("c.db")), &error), QString());

    const QJsonObject tables = catalogueInfo(dir.filePath(QStringLiteral("a.db")), &error).value(QStringLiteral("tables")).toObject();
    EXPECT_EQ(tables.value(QStringLiteral("restaurants")).toInt(), 400);
    EXPECT_EQ(tables.value(QStringLiteral("states")).toInt(), 16);
    EXPECT_EQ(tables.value(QStringLiteral("counties")).toInt(), 168);
    EXPECT_EQ(tables.value(QStringLiteral("price_ranks")).toInt(), 5);
    EXPECT_EQ(tables.value(QStringLiteral("app_campaigns")).toInt(), 4);
    for (const char *table : {"menu_entries", "offers", "restaurants_promoted", "gallery", "restaurants_profiles"})
        EXPECT_GT(tables.value(QLatin1String(table)).toInt(), 0) << table;
    EXPECT_EQ(validate(makeDemo(options)), QString()) << "the demo's pages are paths on the site, as the app composes them";
    // The English hours say what the Spanish ones do: opening at 12:00 is noon, "12 pm".
    int noon = 0;
    const CatalogueData demo = makeDemo(options);
    for (const QVariantMap &place : demo.rows(QStringLiteral("restaurants"))) {
        const QString spanish = place.value(QStringLiteral("horario")).toString(), english = place.value(QStringLiteral("horario_en")).toString();
        if (spanish.startsWith(QLatin1String("De 12:00"))) {
            ++noon;
            EXPECT_TRUE(english.startsWith(QLatin1String("12 pm to "))) << english.toStdString();
        }
        EXPECT_FALSE(english.contains(QLatin1String("12 am"))) << english.toStdString();
    }
    EXPECT_GT(noon, 0);
}

// Catches: patches that miss inserts, updates or deletes of places, offers or pictures, that
// change the date before the rows, or that can't be opened with the shared password.
TEST(Toolkit, PatchReproducesTheNewCatalogue)
{
    QTemporaryDir dir;
    DemoOptions options;
    options.places = 300;
    QString error;
    const QString oldPath = dir.filePath(QStringLiteral("old.db"));
    ASSERT_TRUE(writeCatalogue(makeDemo(options), oldPath, &error));
    CatalogueData changed = makeDemo(options);
    changed.setExtra(QStringLiteral("version_date"), QStringLiteral("20261201"));
    QList<QVariantMap> &places = changed.rows(QStringLiteral("restaurants"));
    places[0].insert(QStringLiteral("name"), QStringLiteral("Renamed Paladar"));
    places[1].insert(QStringLiteral("oof"), 1);
    QVariantMap added = places[2];
    added.insert(QStringLiteral("id"), 5000);
    places.append(added);
    changed.rows(QStringLiteral("restaurants_cuisines")).append({{QStringLiteral("restaurant_id"), 5000}, {QStringLiteral("cuisine_id"), 1}});
    changed.rows(QStringLiteral("offers")).removeFirst();
    changed.rows(QStringLiteral("gallery")).removeLast();
    changed.rows(QStringLiteral("restaurants_profiles"))[0].insert(QStringLiteral("data"), QByteArray("new picture"));
    const QString newPath = dir.filePath(QStringLiteral("new.db"));
    ASSERT_TRUE(writeCatalogue(changed, newPath, &error));

    const QString archive = dir.filePath(QStringLiteral("patch.zip"));
    PatchStats stats;
    ASSERT_TRUE(buildPatch(oldPath, newPath, archive, &error, &stats)) << error.toStdString();
    EXPECT_GE(stats.updated, 3);
    EXPECT_GE(stats.inserted, 1);
    const QString applied = applyPatchArchive(oldPath, archive, dir.path());
    ASSERT_TRUE(applied.endsWith(QLatin1String("applied.db"))) << applied.toStdString();
    EXPECT_EQ(firstDifference(applied, newPath, &error), QString());
    EXPECT_TRUE(QFile::exists(dir.filePath(QStringLiteral("velmora-20261101-20261201.db"))));
    QString entry;
    EXPECT_FALSE(ZipArchive::extractSingle(archive, dir.path(), QStringLiteral("wrong"), {}, &entry, &error));

    // Same date, or going back in time: refused, nothing written.
    EXPECT_FALSE(buildPatch(oldPath, oldPath, dir.filePath(QStringLiteral("same.zip")), &error));
    EXPECT_FALSE(buildPatch(newPath, oldPath, dir.filePath(QStringLiteral("back.zip")), &error));
    EXPECT_TRUE(error.contains(QLatin1String("must be later"))) << error.toStdString();
    EXPECT_FALSE(QFile::exists(dir.filePath(QStringLiteral("back.zip"))));
}

// Catches: an announcement the app can't parse, or a patch laid out where the app won't look.
TEST(Toolkit, PublishLaysOutWhatTheAppFetches)
{
    QTemporaryDir dir;
    DemoOptions options;
    options.places = 120;
    QString error;
    const QString oldPath = dir.filePath(QStringLiteral("old.db"));
    ASSERT_TRUE(writeCatalogue(makeDemo(options), oldPath, &error));
    options.date = QDate(2026, 12, 1);
    const QString newPath = dir.filePath(QStringLiteral("new.db"));
    ASSERT_TRUE(writeCatalogue(makeDemo(options), newPath, &error));
    QDir().mkpath(dir.filePath(QStringLiteral("site")));
    const ToolRun run = runTool({QStringLiteral("publish"), newPath, oldPath, QStringLiteral("--to"), dir.filePath(QStringLiteral("site")),
                             QStringLiteral("--base-url"), QStringLiteral("http://127.0.0.1:8080/")});
    ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();
    QFile lastTxt(dir.filePath(QStringLiteral("site/ios/last.txt")));
    ASSERT_TRUE(lastTxt.open(QIODevice::ReadOnly));
    const auto info = parseUpdateInfo(QString::fromUtf8(lastTxt.readAll()), &error);
    ASSERT_TRUE(info) << error.toStdString();
    EXPECT_EQ(info->date, QDate(2026, 12, 1));
    EXPECT_EQ(info->url, QUrl(QStringLiteral("http://127.0.0.1:8080/ios/velmora-20261201.db")));
    EXPECT_TRUE(QFile::exists(dir.filePath(QStringLiteral("site/ios/velmora-20261201.db"))));
    const QString archive = dir.filePath(QStringLiteral("site/ios/u2/update-20261101-20261201.zip"));
    ASSERT_TRUE(QFile::exists(archive));
    EXPECT_EQ(firstDifference(applyPatchArchive(oldPath, archive, dir.path()), newPath, &error), QString());
}

// Draws the demo's kinds of picture side by side, to look at. Catches an encoder that fails.
TEST(Toolkit, DemoPicturesContactSheet)
{
    std::mt19937 random(4);
    QImage sheet(820, 520, QImage::Format_RGB32);
    sheet.fill(Qt::white);
    QPainter painter(&sheet);
    for (int i = 0; i < 4; ++i) {
        const QImage dish = QImage::fromData(DemoPictures::dish(random, 400, 225));
        ASSERT_FALSE(dish.isNull());
        painter.drawImage(QPoint(8 + (i % 2) * 408, 8 + (i / 2) * 233), dish);
    }
    const QImage terrace = QImage::fromData(DemoPictures::terrace(random, 400, 200)).scaled(400, 50, Qt::IgnoreAspectRatio);
    const QImage banner = QImage::fromData(DemoPictures::banner(random, 400, 50));
    ASSERT_FALSE(terrace.isNull() || banner.isNull());
    painter.drawImage(QPoint(8, 470), terrace);
    painter.drawImage(QPoint(416, 470), banner);
    painter.end();
    QDir().mkpath(QStringLiteral(VELMORA_TEST_OUTPUT));
    EXPECT_TRUE(sheet.save(QStringLiteral(VELMORA_TEST_OUTPUT "/demo-pictures.png")));
}

// Catches: --help or --version refused or run as a command, and unknown options or commands
// accepted, or refused without the usage or with another status than 2.
TEST(Toolkit, CommandLineExplainsItself)
{
    for (const QStringList &arguments : {QStringList{QStringLiteral("--help")}, QStringList{QStringLiteral("demo"), QStringLiteral("-h")}}) {
        const ToolRun help = runTool(arguments);
        EXPECT_EQ(help.exitCode, 0);
        EXPECT_TRUE(help.out.contains("velmora-catalogue publish"));
    }
    const ToolRun version = runTool({QStringLiteral("--version")});
    EXPECT_EQ(version.exitCode, 0);
    EXPECT_TRUE(version.out.startsWith("velmora-catalogue "));
    for (const QStringList &arguments : {QStringList{QStringLiteral("frobnicate")},
                                         QStringList{QStringLiteral("demo"), QStringLiteral("-o"), QStringLiteral("x"), QStringLiteral("--colour")}}) {
        const ToolRun refused = runTool(arguments);
        EXPECT_EQ(refused.exitCode, 2) << arguments.join(QLatin1Char(' ')).toStdString();
        EXPECT_TRUE(refused.err.contains("usage:"));
        EXPECT_TRUE(refused.out.isEmpty());
    }
}

// Catches: a collector that doesn't answer like a measurement service (a GET hit, a gzip batch,
// a body that doesn't inflate, a wrong path or method), invalid hits stored as if valid, and a
// summary that counts screens, events, days or duplicates wrongly.
TEST(Toolkit, CollectReceivesHitsAndHitsSummarisesThem)
{
    QTemporaryDir dir;
    const QString db = dir.filePath(QStringLiteral("collected.sqlite"));
    CollectorProcess collector(QString::fromLatin1(tool), db);
    ASSERT_TRUE(collector.isRunning()) << collector.errors().constData();
    const QByteArray base = "http://127.0.0.1:" + QByteArray::number(collector.port());

    QNetworkAccessManager network;
    const auto ask = [&network](const QNetworkRequest &request, const QByteArray &method, const QByteArray &body = {}) {
        QNetworkReply *reply = network.sendCustomRequest(request, method, body);
        EXPECT_TRUE(QTest::qWaitFor([reply] { return reply->isFinished(); }, 10000));
        reply->deleteLater();
        return reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    };
    const QByteArray event = "t=event&tid=T&cid=C&ec=Navigation&ea=Tapped&el=Place&ev=1&ht=1764000000000";
    EXPECT_EQ(ask(QNetworkRequest(QUrl(QString::fromLatin1(base + "/collect?" + event + "&z=1"))), "GET"), 200);
    QNetworkRequest batch(QUrl(QString::fromLatin1(base + "/batch")));
    batch.setRawHeader("Content-Encoding", "gzip");
    const QByteArray lines = event + "&z=1\n" + "t=screenview&tid=T&cid=C&cd=RestaurantView&ht=1764086400000&z=2\nt=event&tid=T\n";
    EXPECT_EQ(ask(batch, "POST", Compression::compress(lines, Compression::Format::Gzip)), 200);
    EXPECT_EQ(ask(batch, "POST", "not gzip at all"), 400);
    EXPECT_EQ(ask(QNetworkRequest(QUrl(QString::fromLatin1(base + "/collect?t=nonsense"))), "GET"), 400);
    EXPECT_EQ(ask(QNetworkRequest(QUrl(QString::fromLatin1(base + "/elsewhere"))), "GET"), 404);
    EXPECT_EQ(ask(QNetworkRequest(QUrl(QString::fromLatin1(base + "/batch"))), "GET"), 405);
    collector.kill();

    const ToolRun summary = runTool({QStringLiteral("hits"), db});
    ASSERT_EQ(summary.exitCode, 0) << summary.err.constData();
    const QJsonObject hits = QJsonDocument::fromJson(summary.out).object();
    EXPECT_EQ(hits.value(QStringLiteral("total")).toInt(), 2) << "the same z twice is one hit";
    EXPECT_EQ(hits.value(QStringLiteral("rejected")).toInt(), 2);
    EXPECT_EQ(hits.value(QStringLiteral("duplicates")).toInt(), 1) << "the copy is counted";
    EXPECT_EQ(hits.value(QStringLiteral("events")).toObject().value(QStringLiteral("Navigation / Tapped / Place")).toInt(), 1);
    EXPECT_EQ(hits.value(QStringLiteral("screens")).toObject().value(QStringLiteral("RestaurantView")).toInt(), 1);
    EXPECT_EQ(hits.value(QStringLiteral("days")).toObject(),
              (QJsonObject{{QStringLiteral("2025-11-24"), 1}, {QStringLiteral("2025-11-25"), 1}}));

    const ToolRun notHits = runTool({QStringLiteral("hits"), dir.filePath(QStringLiteral("missing.sqlite"))});
    EXPECT_EQ(notHits.exitCode, 1);
    EXPECT_TRUE(notHits.err.contains("not a file of collected hits"));
    EXPECT_NE(runTool({QStringLiteral("collect")}).exitCode, 0) << "no --db";

    // A file an earlier collect wrote, without the hit identities: refused as it is, not changed.
    const QString earlier = dir.filePath(QStringLiteral("earlier.sqlite"));
    {
        Database old(earlier);
        ASSERT_TRUE(old.open() && old.executeStatements(QStringLiteral("CREATE TABLE hits (id INTEGER PRIMARY KEY, payload TEXT);"
                                                                       "INSERT INTO hits (payload) VALUES ('t=event')")));
    }
    const QByteArray before = [&earlier] { QFile f(earlier); f.open(QIODevice::ReadOnly); return f.readAll(); }();
    const ToolRun refused = runTool({QStringLiteral("collect"), QStringLiteral("--db"), earlier});
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_TRUE(refused.err.contains("written by an earlier collect")) << refused.err.constData();
    QFile after(earlier);
    ASSERT_TRUE(after.open(QIODevice::ReadOnly));
    EXPECT_EQ(after.readAll(), before);
}

// Catches: a key pair that replaces one in use, a published file left unsigned, a signature that
// verifies under another key or after a byte changed, and a secret key taken for a public one.
TEST(Toolkit, KeygenPublishKeyAndVerify)
{
    QTemporaryDir dir;
    const QString keys = dir.filePath(QStringLiteral("keys")), other = dir.filePath(QStringLiteral("other"));
    ASSERT_EQ(runTool({QStringLiteral("keygen"), QStringLiteral("-o"), keys}).exitCode, 0);
    ASSERT_EQ(runTool({QStringLiteral("keygen"), QStringLiteral("-o"), other}).exitCode, 0);
    const ToolRun again = runTool({QStringLiteral("keygen"), QStringLiteral("-o"), keys});
    EXPECT_EQ(again.exitCode, 1);
    EXPECT_TRUE(again.err.contains("holds a key already"));
    EXPECT_EQ(QFile(keys + QStringLiteral("/velmora-signing.key")).permissions() & (QFileDevice::ReadOther | QFileDevice::ReadGroup), 0);

    CatalogueFixture fixture = CatalogueFixture::small();
    fixture.versionDate = QStringLiteral("20170201");
    const QString newPath = dir.filePath(QStringLiteral("velmora-20170201.db")), oldPath = dir.filePath(QStringLiteral("velmora-20170101.db"));
    QString error;
    ASSERT_TRUE(fixture.write(newPath, &error) && CatalogueFixture::small().write(oldPath, &error)) << error.toStdString();
    const QString shelf = dir.filePath(QStringLiteral("shelf"));
    QDir().mkpath(shelf);
    const ToolRun published = runTool({QStringLiteral("publish"), newPath, oldPath, QStringLiteral("--to"), shelf, QStringLiteral("--base-url"),
                                       QStringLiteral("http://127.0.0.1:1"), QStringLiteral("--key"), keys + QStringLiteral("/velmora-signing.key")});
    ASSERT_EQ(published.exitCode, 0) << published.err.constData();
    const QString pub = keys + QStringLiteral("/velmora-signing.pub");
    for (const char *file : {"ios/last.txt", "ios/velmora-20170201.db", "ios/u2/update-20170101-20170201.zip"}) {
        const ToolRun verified = runTool({QStringLiteral("verify"), shelf + QLatin1Char('/') + QLatin1String(file), QStringLiteral("--pub"), pub});
        EXPECT_EQ(verified.exitCode, 0) << file << ": " << verified.err.constData();
        EXPECT_TRUE(verified.out.contains("\"20170201\"")) << file;
        EXPECT_NE(runTool({QStringLiteral("verify"), shelf + QLatin1Char('/') + QLatin1String(file), QStringLiteral("--pub"),
                           other + QStringLiteral("/velmora-signing.pub")})
                      .exitCode,
                  0)
            << file << " verified under another key";
    }
    QFile last(shelf + QStringLiteral("/ios/last.txt"));
    ASSERT_TRUE(last.open(QIODevice::Append));
    last.write(" ");
    last.close();
    const ToolRun tampered = runTool({QStringLiteral("verify"), last.fileName(), QStringLiteral("--pub"), pub});
    EXPECT_EQ(tampered.exitCode, 1);
    EXPECT_TRUE(tampered.err.contains("bytes, not the")) << "a longer file is caught by its signed size: " << tampered.err.constData();
    const ToolRun secretAsPublic = runTool({QStringLiteral("verify"), newPath, QStringLiteral("--pub"), keys + QStringLiteral("/velmora-signing.key")});
    EXPECT_TRUE(secretAsPublic.err.contains("is not a public key")) << secretAsPublic.err.constData();
}
