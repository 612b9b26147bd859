// velmora-catalogue: makes, patches, publishes and inspects catalogues with the app's own code.
// See tools/README.md. Reports go to standard output as JSON; a failure is one line on standard
// error and a non-zero exit.

#include "toolkit/BaseMap.h"
#include "toolkit/CatalogueData.h"
#include "toolkit/CatalogueWriter.h"
#include "toolkit/DemoGenerator.h"
#include "toolkit/DemoStreetMap.h"
#include "toolkit/StreetMap.h"
#include "toolkit/CatalogueQueries.h"
#include "toolkit/PatchBuilder.h"
#include "toolkit/Publisher.h"
#include "toolkit/SourceReader.h"
#include "catalogue/CatalogueDates.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QElapsedTimer>
#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>
#include <QLoggingCategory>
#include <QTextStream>

#include "toolkit/collector/HitCollector.h"
#include "toolkit/Signing.h"
#include "platform/Signatures.h"
#include "catalogue/Restaurants.h"
#include "update/SignedFiles.h"
#include "toolkit/UpdateServer.h"

#include <QSysInfo>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <optional>

namespace {

const char usage[] = R"(usage:
  velmora-catalogue --help | --version
  velmora-catalogue build SOURCE.json -o OUT.db
  velmora-catalogue demo -o DIR [--places N] [--seed S] [--date YYYYMMDD] [--streets FILE.osm]
  velmora-catalogue patch OLD.db NEW.db -o OUT.zip
  velmora-catalogue publish NEW.db [OLD.db ...] --to DIR --base-url URL [--key SECRET]
  velmora-catalogue keygen -o DIR
  velmora-catalogue verify FILE --pub KEY
  velmora-catalogue serve DIR [--port N] [--listen ADDRESS] [--name NAME] [--priority P] [--advertise]
  velmora-catalogue info FILE
  velmora-catalogue query FILE search TEXT
  velmora-catalogue query FILE list --province ID [--text T] [--municipality ID]... [--cuisine ID]...
                                    [--price ID]... [--show-closed]
  velmora-catalogue query FILE place ID
  velmora-catalogue basemap -o FILE.mbtiles [--max-zoom Z] [--resolution c|l|i|h|f]
  velmora-catalogue basemap --osm EXTRACT.osm.pbf -o FILE.mbtiles [--max-zoom Z]
  velmora-catalogue collect --db FILE|sqlite:FILE|postgresql://... [--port N] [--listen ADDRESS]
  velmora-catalogue hits [--db] FILE|sqlite:FILE|postgresql://...
)";

int fail(const QString &message)
{
    QTextStream(stderr) << "velmora-catalogue: " << message << "\n";
    return 1;
}

int report(const QJsonValue &value)
{
    const QJsonDocument document = value.isArray() ? QJsonDocument(value.toArray()) : QJsonDocument(value.toObject());
    QTextStream(stdout) << document.toJson(QJsonDocument::Indented);
    return 0;
}

// Options after the command's positional arguments: "--name value" pairs, repeatable, and flags.
struct Arguments {
    QStringList positional;
    QMultiMap<QString, QString> options;
    QStringList flags;
    QString error;

    Arguments(const QStringList &arguments, const QStringList &valued, const QStringList &allowedFlags)
    {
        for (qsizetype i = 0; i < arguments.size(); ++i) {
            const QString &argument = arguments.at(i);
            if (valued.contains(argument)) {
                if (i + 1 >= arguments.size()) {
                    error = argument + QStringLiteral(" needs a value");
                    return;
                }
                options.insert(argument, arguments.at(++i));
            } else if (allowedFlags.contains(argument)) {
                flags.append(argument);
            } else if (argument.startsWith(QLatin1String("--")) || (argument.startsWith(QLatin1Char('-')) && argument.size() == 2)) {
                error = QStringLiteral("unknown option ") + argument;
                return;
            } else {
                positional.append(argument);
            }
        }
    }
    QString value(const QString &name) const { return options.value(name); }
    bool intValues(const QString &name, QList<int> &into)
    {
        for (const QString &text : options.values(name)) {
            bool ok = false;
            into.prepend(text.toInt(&ok));
            if (!ok) {
                error = QStringLiteral("%1 takes a number, not \"%2\"").arg(name, text);
                return false;
            }
        }
        return true;
    }
};

int build(const QStringList &arguments)
{
    Arguments args(arguments, {QStringLiteral("-o")}, {});
    if (!args.error.isEmpty() || args.positional.size() != 1 || args.value(QStringLiteral("-o")).isEmpty())
        return fail(args.error.isEmpty() ? QStringLiteral("build SOURCE.json -o OUT.db") : args.error);
    CatalogueData data;
    QString error;
    if (!readSource(args.positional.first(), data, &error) || !writeCatalogue(data, args.value(QStringLiteral("-o")), &error))
        return fail(error);
    return report(catalogueInfo(args.value(QStringLiteral("-o")), &error));
}

int demo(const QStringList &arguments)
{
    Arguments args(arguments,
                   {QStringLiteral("-o"), QStringLiteral("--places"), QStringLiteral("--seed"), QStringLiteral("--date"), QStringLiteral("--streets")},
                   {});
    if (!args.error.isEmpty() || !args.positional.isEmpty() || args.value(QStringLiteral("-o")).isEmpty())
        return fail(args.error.isEmpty() ? QStringLiteral("demo -o DIR [--places N] [--seed S] [--date YYYYMMDD] [--streets FILE.osm]")
                                         : args.error);
    DemoOptions options;
    bool ok = true;
    if (args.options.contains(QStringLiteral("--places")))
        options.places = args.value(QStringLiteral("--places")).toInt(&ok);
    if (ok && args.options.contains(QStringLiteral("--seed")))
        options.seed = args.value(QStringLiteral("--seed")).toUInt(&ok);
    if (!ok || options.places < 1)
        return fail(QStringLiteral("--places and --seed take positive numbers"));
    if (args.options.contains(QStringLiteral("--date"))) {
        const auto date = CatalogueDates::parseCompact(args.value(QStringLiteral("--date")));
        if (!date)
            return fail(QStringLiteral("--date takes a date written YYYYMMDD"));
        options.date = *date;
    }
    QElapsedTimer timer;
    timer.start();
    // With GMT the towns, and so the places, stand on the country's land.
    options.onLand = countryLand();
    const CatalogueData data = makeDemo(options);
    const QString path = args.value(QStringLiteral("-o")) + QStringLiteral("/velmora-%1.db").arg(CatalogueDates::formatCompact(options.date));
    QString error;
    // The folder is made as needed, as the README's examples expect.
    if (!QDir().mkpath(args.value(QStringLiteral("-o"))))
        return fail(QStringLiteral("can't create %1").arg(args.value(QStringLiteral("-o"))));
    if (!writeCatalogue(data, path, &error))
        return fail(error);
    QJsonObject info = catalogueInfo(path, &error);
    if (args.options.contains(QStringLiteral("--streets"))) {
        DemoStreetMapStats streets;
        if (!writeDemoStreetMap(demoTowns(options.onLand), args.value(QStringLiteral("--streets")), streets, &error))
            return fail(error);
        info.insert(QStringLiteral("streets"), QJsonObject{{QStringLiteral("file"), args.value(QStringLiteral("--streets"))},
                                                           {QStringLiteral("nodes"), streets.nodes},
                                                           {QStringLiteral("ways"), streets.ways}});
    }
    info.insert(QStringLiteral("bytes"), QFileInfo(path).size());
    info.insert(QStringLiteral("milliseconds"), timer.elapsed());
    return report(info);
}

int patch(const QStringList &arguments)
{
    Arguments args(arguments, {QStringLiteral("-o")}, {});
    if (!args.error.isEmpty() || args.positional.size() != 2 || args.value(QStringLiteral("-o")).isEmpty())
        return fail(args.error.isEmpty() ? QStringLiteral("patch OLD.db NEW.db -o OUT.zip") : args.error);
    PatchStats stats;
    QString error;
    if (!buildPatch(args.positional.at(0), args.positional.at(1), args.value(QStringLiteral("-o")), &error, &stats))
        return fail(error);
    return report(QJsonObject{{QStringLiteral("archive"), args.value(QStringLiteral("-o"))},
                              {QStringLiteral("bytes"), QFileInfo(args.value(QStringLiteral("-o"))).size()},
                              {QStringLiteral("from"), CatalogueDates::formatCompact(stats.from)},
                              {QStringLiteral("to"), CatalogueDates::formatCompact(stats.to)},
                              {QStringLiteral("scripts"), stats.scripts},
                              {QStringLiteral("inserted"), stats.inserted},
                              {QStringLiteral("updated"), stats.updated},
                              {QStringLiteral("deleted"), stats.deleted}});
}

int publishCommand(const QStringList &arguments)
{
    Arguments args(arguments, {QStringLiteral("--to"), QStringLiteral("--base-url"), QStringLiteral("--key")}, {});
    if (!args.error.isEmpty() || args.positional.isEmpty() || args.value(QStringLiteral("--to")).isEmpty()
        || args.value(QStringLiteral("--base-url")).isEmpty())
        return fail(args.error.isEmpty() ? QStringLiteral("publish NEW.db [OLD.db ...] --to DIR --base-url URL [--key SECRET]") : args.error);
    QJsonObject result;
    QString error;
    QByteArray secretKey;
    if (args.options.contains(QStringLiteral("--key"))) {
        secretKey = SignedFiles::readKeyFile(args.value(QStringLiteral("--key")), true, &error);
        if (secretKey.isEmpty())
            return fail(error);
    }
    if (!publish(args.positional.first(), args.positional.mid(1), args.value(QStringLiteral("--to")),
                 args.value(QStringLiteral("--base-url")), result, &error, secretKey))
        return fail(error);
    return report(result);
}

// A new Ed25519 key pair for signing what `publish` writes.
int keygen(const QStringList &arguments)
{
    Arguments args(arguments, {QStringLiteral("-o")}, {});
    if (!args.error.isEmpty() || !args.positional.isEmpty() || args.value(QStringLiteral("-o")).isEmpty())
        return fail(args.error.isEmpty() ? QStringLiteral("keygen -o DIR") : args.error);
    QString error;
    const QDir dir(args.value(QStringLiteral("-o")));
    if (!writeKeyPair(dir.path(), &error))
        return fail(error);
    return report(QJsonObject{{QStringLiteral("secret_key"), dir.absoluteFilePath(SignedFiles::secretKeyFile)},
                              {QStringLiteral("public_key"), dir.absoluteFilePath(SignedFiles::publicKeyFile)}});
}

// Checks FILE against FILE.sig as the app would with KEY trusted; a catalogue's own date must be
// the one signed.
int verify(const QStringList &arguments)
{
    Arguments args(arguments, {QStringLiteral("--pub")}, {});
    if (!args.error.isEmpty() || args.positional.size() != 1 || args.value(QStringLiteral("--pub")).isEmpty())
        return fail(args.error.isEmpty() ? QStringLiteral("verify FILE --pub KEY") : args.error);
    const QString file = args.positional.first();
    QString error;
    const QByteArray publicKey = SignedFiles::readKeyFile(args.value(QStringLiteral("--pub")), false, &error);
    if (publicKey.isEmpty())
        return fail(error);
    QFile signature(file + SignedFiles::suffix);
    if (!signature.open(QIODevice::ReadOnly))
        return fail(QStringLiteral("no signature %1").arg(signature.fileName()));
    QDate signedDate;
    const QString why = SignedFiles::check(signature.read(SignedFiles::maximumSignatureBytes + 1), QFileInfo(file).size(),
                                           Signatures::sha256OfFile(file), {QFileInfo(file).fileName(), std::nullopt, std::nullopt},
                                           {publicKey}, &signedDate);
    if (!why.isEmpty())
        return fail(QStringLiteral("%1: %2").arg(file, why));
    if (file.endsWith(QLatin1String(".db"))) {
        const VerificationResult verified = Restaurants(Restaurants::Environment{}).verifyDatabase(file);
        if (verified.date != signedDate)
            return fail(QStringLiteral("%1: the catalogue's own date is not the one signed").arg(file));
    }
    return report(QJsonObject{{QStringLiteral("file"), QFileInfo(file).absoluteFilePath()},
                              {QStringLiteral("date"), CatalogueDates::formatCompact(signedDate)},
                              {QStringLiteral("valid"), true}});
}

int info(const QStringList &arguments)
{
    if (arguments.size() != 1)
        return fail(QStringLiteral("info FILE"));
    QString error;
    const QJsonObject result = catalogueInfo(arguments.first(), &error);
    report(result);
    return error.isEmpty() ? 0 : fail(error);
}

// Where a server listens: every address of the machine, or the one --listen names (127.0.0.1
// keeps it to this machine). Nothing, with the arguments' error set, for one that isn't an address.
std::optional<QHostAddress> listenAddress(Arguments &args)
{
    if (!args.options.contains(QStringLiteral("--listen")))
        return QHostAddress(QHostAddress::Any);
    const QHostAddress address(args.value(QStringLiteral("--listen")));
    if (address.isNull()) {
        args.error = QStringLiteral("--listen needs an IP address, not \"%1\"").arg(args.value(QStringLiteral("--listen")));
        return std::nullopt;
    }
    return address;
}

// Serves a published tree on the local network until stopped; prints where, once listening.
int serve(const QStringList &arguments)
{
    Arguments args(arguments, {QStringLiteral("--port"), QStringLiteral("--listen"), QStringLiteral("--name"), QStringLiteral("--priority")},
                   {QStringLiteral("--advertise")});
    bool portOk = true, priorityOk = true;
    const int port = args.options.contains(QStringLiteral("--port")) ? args.value(QStringLiteral("--port")).toInt(&portOk) : 0;
    const int priority = args.options.contains(QStringLiteral("--priority")) ? args.value(QStringLiteral("--priority")).toInt(&priorityOk) : 500;
    const std::optional<QHostAddress> address = listenAddress(args);
    if (!args.error.isEmpty() || args.positional.size() != 1 || !portOk || port < 0 || port > 65535 || !priorityOk || !address)
        return fail(args.error.isEmpty() ? QStringLiteral("serve DIR [--port N] [--listen ADDRESS] [--name NAME] [--priority P] [--advertise]")
                                         : args.error);
    UpdateServer server(args.positional.first());
    QString error;
    const quint16 listening = server.listen(*address, quint16(port), &error);
    if (!listening)
        return fail(error);
    const QString name = args.options.contains(QStringLiteral("--name")) ? args.value(QStringLiteral("--name"))
                                                                         : QStringLiteral("Velmora updates on %1").arg(QSysInfo::machineHostName());
    if (args.flags.contains(QStringLiteral("--advertise")) && !server.advertise(name, priority, &error))
        return fail(error);
    QTextStream(stdout) << "serving " << QDir(args.positional.first()).absolutePath() << " on port " << listening
                        << (args.flags.contains(QStringLiteral("--advertise")) ? QStringLiteral(" as \"%1\" (priority %2)").arg(name).arg(priority) : QString())
                        << Qt::endl;
    return QCoreApplication::exec();
}

// Receives the app's analytics on /collect and /batch until stopped, keeping each hit in an SQLite
// file or a PostgreSQL database.
int collect(const QStringList &arguments)
{
    Arguments args(arguments, {QStringLiteral("--port"), QStringLiteral("--listen"), QStringLiteral("--db")}, {});
    bool portOk = true;
    const int port = args.options.contains(QStringLiteral("--port")) ? args.value(QStringLiteral("--port")).toInt(&portOk) : 0;
    const std::optional<QHostAddress> address = listenAddress(args);
    if (!args.error.isEmpty() || !args.positional.isEmpty() || args.value(QStringLiteral("--db")).isEmpty() || !portOk || port < 0
        || port > 65535 || !address)
        return fail(args.error.isEmpty() ? QStringLiteral("collect --db FILE|postgresql://... [--port N] [--listen ADDRESS]") : args.error);
    HitCollector collector(args.value(QStringLiteral("--db")));
    QString error;
    if (!collector.open(&error))
        return fail(error);
    const quint16 listening = collector.listen(*address, quint16(port), &error);
    if (!listening)
        return fail(error);
    QTextStream(stdout) << "collecting into " << collector.describe() << " on port " << listening << Qt::endl;
    return QCoreApplication::exec();
}

int hits(const QStringList &arguments)
{
    const bool named = arguments.size() == 2 && arguments.first() == QLatin1String("--db");
    if (!(arguments.size() == 1 || named) || arguments.last().startsWith(QLatin1Char('-')))
        return fail(QStringLiteral("hits [--db] FILE|postgresql://..."));
    QJsonObject summary;
    QString error;
    if (!HitCollector::summary(arguments.last(), summary, &error))
        return fail(error);
    return report(summary);
}

int query(const QStringList &arguments)
{
    if (arguments.size() < 2)
        return fail(QStringLiteral("query FILE search|list|place ..."));
    const QString file = arguments.at(0);
    const QString what = arguments.at(1);
    QString error;
    if (what == QLatin1String("search")) {
        QJsonArray ids;
        if (arguments.size() != 3 || !querySearch(file, arguments.at(2), ids, &error))
            return fail(error.isEmpty() ? QStringLiteral("query FILE search TEXT") : error);
        return report(ids);
    }
    if (what == QLatin1String("place")) {
        bool ok = false;
        const int id = arguments.value(2).toInt(&ok);
        QJsonObject place;
        if (arguments.size() != 3 || !ok || !queryPlace(file, id, place, &error))
            return fail(error.isEmpty() ? QStringLiteral("query FILE place ID") : error);
        return report(place);
    }
    if (what == QLatin1String("list")) {
        Arguments args(arguments.mid(2),
                       {QStringLiteral("--province"), QStringLiteral("--text"), QStringLiteral("--municipality"),
                        QStringLiteral("--cuisine"), QStringLiteral("--price")},
                       {QStringLiteral("--show-closed")});
        ListQuery list;
        bool ok = false;
        list.province = args.value(QStringLiteral("--province")).toInt(&ok);
        list.text = args.value(QStringLiteral("--text"));
        list.showClosed = args.flags.contains(QStringLiteral("--show-closed"));
        if (!args.error.isEmpty() || !ok || !args.positional.isEmpty() || !args.intValues(QStringLiteral("--municipality"), list.municipalities)
            || !args.intValues(QStringLiteral("--cuisine"), list.cuisines) || !args.intValues(QStringLiteral("--price"), list.prices))
            return fail(args.error.isEmpty() ? QStringLiteral("query FILE list --province ID ...") : args.error);
        QJsonArray entries;
        if (!queryList(file, list, entries, &error))
            return fail(error);
        return report(entries);
    }
    return fail(QStringLiteral("query FILE search|list|place ..."));
}

QJsonObject zoomCounts(const QMap<int, int> &counts)
{
    QJsonObject perZoom;
    for (auto it = counts.cbegin(); it != counts.cend(); ++it)
        perZoom.insert(QString::number(it.key()), it.value());
    return perZoom;
}

// The street map: vector tiles of an OpenStreetMap extract, made by tilemaker.
int streetmap(const Arguments &args)
{
    StreetMapOptions options;
    bool ok = true;
    if (args.options.contains(QStringLiteral("--max-zoom")))
        options.maxZoom = args.value(QStringLiteral("--max-zoom")).toInt(&ok);
    if (!ok || args.value(QStringLiteral("-o")).isEmpty() || args.options.contains(QStringLiteral("--resolution")))
        return fail(QStringLiteral("basemap --osm EXTRACT.osm.pbf -o FILE.mbtiles [--max-zoom Z]"));
    StreetMapStats stats;
    QString error;
    if (!writeStreetMap(args.value(QStringLiteral("--osm")), args.value(QStringLiteral("-o")), options, stats, &error))
        return fail(error);
    return report(QJsonObject{{QStringLiteral("file"), args.value(QStringLiteral("-o"))},
                              {QStringLiteral("extract"), args.value(QStringLiteral("--osm"))},
                              {QStringLiteral("maxZoom"), options.maxZoom},
                              {QStringLiteral("tiles"), stats.tiles},
                              {QStringLiteral("tilesPerZoom"), zoomCounts(stats.tilesPerZoom)},
                              {QStringLiteral("bytes"), stats.bytes},
                              {QStringLiteral("milliseconds"), stats.milliseconds}});
}

// Renders the base map's tiles with GMT's shapes (GMT is needed here only, never by the app).
int basemap(const QStringList &arguments)
{
    Arguments args(arguments, {QStringLiteral("-o"), QStringLiteral("--max-zoom"), QStringLiteral("--resolution"), QStringLiteral("--osm")}, {});
    if (args.error.isEmpty() && args.positional.isEmpty() && args.options.contains(QStringLiteral("--osm")))
        return streetmap(args);
    BaseMapOptions options;
    bool ok = true;
    if (args.options.contains(QStringLiteral("--max-zoom")))
        options.maxZoom = args.value(QStringLiteral("--max-zoom")).toInt(&ok);
    if (args.options.contains(QStringLiteral("--resolution")))
        options.resolution = args.value(QStringLiteral("--resolution"));
    if (!args.error.isEmpty() || !args.positional.isEmpty() || args.value(QStringLiteral("-o")).isEmpty() || !ok
        || !QStringList{QStringLiteral("c"), QStringLiteral("l"), QStringLiteral("i"), QStringLiteral("h"), QStringLiteral("f")}.contains(options.resolution))
        return fail(args.error.isEmpty() ? QStringLiteral("basemap -o FILE.mbtiles [--max-zoom Z] [--resolution c|l|i|h|f]") : args.error);
    BaseMapData data;
    BaseMapStats stats;
    QString error;
    if (!loadBaseMapData(options, data, &error) || !writeBaseMap(data, options, args.value(QStringLiteral("-o")), stats, &error))
        return fail(error);
    return report(QJsonObject{{QStringLiteral("file"), args.value(QStringLiteral("-o"))},
                              {QStringLiteral("maxZoom"), options.maxZoom},
                              {QStringLiteral("resolution"), options.resolution},
                              {QStringLiteral("tiles"), stats.tiles},
                              {QStringLiteral("images"), stats.images},
                              {QStringLiteral("tilesPerZoom"), zoomCounts(stats.tilesPerZoom)},
                              {QStringLiteral("bytes"), stats.bytes},
                              {QStringLiteral("milliseconds"), stats.milliseconds}});
}

}

int main(int argc, char *argv[])
{
    // Only the base map draws text, which needs a font database; it works without a display.
    // The street map is made by tilemaker: that base map draws nothing here.
    const bool drawing = argc > 1 && qstrcmp(argv[1], "basemap") == 0
                         && std::none_of(argv + 2, argv + argc, [](const char *argument) { return qstrcmp(argument, "--osm") == 0; });
    if (drawing && qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    std::unique_ptr<QCoreApplication> application(drawing ? new QGuiApplication(argc, argv) : new QCoreApplication(argc, argv));
    // The app's own code logs what a device would; a command-line tool speaks only on failure.
    QLoggingCategory::setFilterRules(QStringLiteral("velmora.*.info=false\nvelmora.*.debug=false\nvelmora.*.warning=false"));
    const QStringList arguments = QCoreApplication::arguments().mid(1);
    if (arguments.contains(QStringLiteral("--help")) || arguments.contains(QStringLiteral("-h"))) {
        std::fputs(usage, stdout);
        return 0;
    }
    if (arguments.contains(QStringLiteral("--version"))) {
        std::printf("velmora-catalogue %s\n", VELMORA_VERSION);
        return 0;
    }
    // An option no command knows is refused before any command runs, with the usage.
    static const QStringList known = {QStringLiteral("-o"), QStringLiteral("--base-url"), QStringLiteral("--cuisine"),
                                      QStringLiteral("--date"), QStringLiteral("--municipality"), QStringLiteral("--places"),
                                      QStringLiteral("--price"), QStringLiteral("--province"), QStringLiteral("--seed"),
                                      QStringLiteral("--show-closed"), QStringLiteral("--text"), QStringLiteral("--to"),
                                      QStringLiteral("--port"), QStringLiteral("--listen"), QStringLiteral("--name"), QStringLiteral("--priority"),
                                      QStringLiteral("--advertise"), QStringLiteral("--max-zoom"), QStringLiteral("--resolution"),
                                      QStringLiteral("--db"), QStringLiteral("--key"), QStringLiteral("--pub"), QStringLiteral("--osm"),
                                      QStringLiteral("--streets")};
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString &argument = arguments.at(i);
        const bool valueOfText = i > 0 && arguments.at(i - 1) == QLatin1String("--text");
        if (argument.startsWith(QLatin1Char('-')) && argument.size() > 1 && !known.contains(argument) && !valueOfText) {
            QTextStream(stderr) << "velmora-catalogue: unknown option " << argument << "\n\n";
            std::fputs(usage, stderr);
            return 2;
        }
    }
    const QString command = arguments.value(0);
    const QStringList rest = arguments.mid(1);
    if (command == QLatin1String("build"))
        return build(rest);
    if (command == QLatin1String("demo"))
        return demo(rest);
    if (command == QLatin1String("patch"))
        return patch(rest);
    if (command == QLatin1String("publish"))
        return publishCommand(rest);
    if (command == QLatin1String("info"))
        return info(rest);
    if (command == QLatin1String("serve"))
        return serve(rest);
    if (command == QLatin1String("query"))
        return query(rest);
    if (command == QLatin1String("basemap"))
        return basemap(rest);
    if (command == QLatin1String("keygen"))
        return keygen(rest);
    if (command == QLatin1String("verify"))
        return verify(rest);
    if (command == QLatin1String("collect"))
        return collect(rest);
    if (command == QLatin1String("hits"))
        return hits(rest);
    // No command prints the usage; an unknown one is refused with it.
    std::fputs(usage, command.isEmpty() ? stdout : stderr);
    return command.isEmpty() ? 0 : 2;
}
