#include "StreetMap.h"

#include "platform/Database.h"
#include "platform/ResultSet.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

#include <cstdio>

namespace {

bool run(const QString &program, const QStringList &arguments, const QString &install, QString *error)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, arguments);
    if (!process.waitForStarted()) {
        *error = QStringLiteral("could not run %1 (install the Debian package %2)").arg(program, install);
        return false;
    }
    process.closeWriteChannel();
    // A national extract takes minutes; a day is "stuck".
    if (!process.waitForFinished(24 * 3600 * 1000) || process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0) {
        const QStringList lines = QString::fromUtf8(process.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
        *error = QStringLiteral("%1 refused the extract: %2").arg(program, lines.mid(std::max<qsizetype>(0, lines.size() - 3)).join(QStringLiteral("; ")));
        return false;
    }
    return true;
}

// Our layer config, with the zooms asked for.
bool writeConfig(const QString &path, const StreetMapOptions &options, QString *error)
{
    QFile resource(QStringLiteral(":/streetmap/streets.json"));
    resource.open(QIODevice::ReadOnly);
    QJsonObject config = QJsonDocument::fromJson(resource.readAll()).object();
    QJsonObject layers = config.value(QStringLiteral("layers")).toObject();
    for (auto it = layers.begin(); it != layers.end(); ++it) {
        QJsonObject layer = it.value().toObject();
        layer.insert(QStringLiteral("maxzoom"), options.maxZoom);
        layer.insert(QStringLiteral("minzoom"), std::min(layer.value(QStringLiteral("minzoom")).toInt(), options.maxZoom));
        *it = layer;
    }
    config.insert(QStringLiteral("layers"), layers);
    QJsonObject settings = config.value(QStringLiteral("settings")).toObject();
    settings.insert(QStringLiteral("minzoom"), options.minZoom);
    settings.insert(QStringLiteral("maxzoom"), options.maxZoom);
    settings.insert(QStringLiteral("basezoom"), options.maxZoom);
    config.insert(QStringLiteral("settings"), settings);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(QJsonDocument(config).toJson()) < 0) {
        *error = QStringLiteral("can't write %1").arg(path);
        return false;
    }
    return true;
}

// What tilemaker wrote: vector tiles, and some of them.
bool checkPack(const QString &path, StreetMapStats &stats, QString *error)
{
    Database database(path);
    if (!database.openWithFlags(Database::ReadOnly)) {
        *error = QStringLiteral("tilemaker wrote no readable file: %1").arg(database.lastErrorMessage());
        return false;
    }
    QString format;
    database.forEachRow(QStringLiteral("SELECT value FROM metadata WHERE name = 'format'"), {}, [&](const ResultSet &row) {
        format = row.stringForColumn(0);
        return false;
    });
    if (format != QLatin1String("pbf")) {
        *error = QStringLiteral("tilemaker wrote tiles of format \"%1\", not vector tiles").arg(format);
        return false;
    }
    database.forEachRow(QStringLiteral("SELECT zoom_level, COUNT(*), SUM(LENGTH(tile_data)) FROM tiles GROUP BY zoom_level"), {},
                        [&](const ResultSet &row) {
                            stats.tilesPerZoom.insert(row.intForColumn(0), row.intForColumn(1));
                            stats.tiles += row.intForColumn(1);
                            return true;
                        });
    if (stats.tiles == 0) {
        *error = QStringLiteral("the extract holds nothing the street map keeps (no streets, water, parks or buildings)");
        return false;
    }
    return true;
}

}

bool writeStreetMap(const QString &extract, const QString &path, const StreetMapOptions &options, StreetMapStats &stats, QString *error)
{
    if (options.maxZoom < options.minZoom || options.maxZoom > 16) {
        *error = QStringLiteral("--max-zoom takes a zoom from %1 to 16").arg(options.minZoom);
        return false;
    }
    if (!QFileInfo(extract).isFile()) {
        *error = QStringLiteral("no extract at %1").arg(extract);
        return false;
    }
    QElapsedTimer timer;
    timer.start();
    QTemporaryDir scratch(QFileInfo(path).absoluteDir().filePath(QStringLiteral(".streetmap-XXXXXX")));
    if (!scratch.isValid()) {
        *error = QStringLiteral("can't make a scratch folder beside %1").arg(path);
        return false;
    }
    QString input = extract;
    // tilemaker reads PBF, nodes first: osmium sorts anything else into that.
    if (!extract.endsWith(QLatin1String(".pbf"))) {
        input = scratch.filePath(QStringLiteral("extract.osm.pbf"));
        if (!run(QStringLiteral("osmium"), {QStringLiteral("sort"), extract, QStringLiteral("-o"), input, QStringLiteral("--overwrite")},
                 QStringLiteral("osmium-tool"), error))
            return false;
    }
    const QString config = scratch.filePath(QStringLiteral("streets.json"));
    const QString script = scratch.filePath(QStringLiteral("streets.lua"));
    if (!writeConfig(config, options, error) || !QFile::copy(QStringLiteral(":/streetmap/streets.lua"), script))
        return false;
    const QString temporary = scratch.filePath(QStringLiteral("streets.mbtiles"));
    if (!run(QStringLiteral("tilemaker"),
             {QStringLiteral("--input"), input, QStringLiteral("--output"), temporary, QStringLiteral("--config"), config,
              QStringLiteral("--process"), script},
             QStringLiteral("tilemaker"), error))
        return false;
    if (!checkPack(temporary, stats, error))
        return false;
    stats.bytes = QFileInfo(temporary).size();
    // Same file system, so the rename replaces the old file in one step.
    if (std::rename(QFile::encodeName(temporary).constData(), QFile::encodeName(path).constData()) != 0) {
        *error = QStringLiteral("can't write %1").arg(path);
        return false;
    }
    stats.milliseconds = timer.elapsed();
    return true;
}
