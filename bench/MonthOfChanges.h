#pragma once

#include "toolkit/CatalogueWriter.h"
#include "toolkit/DemoGenerator.h"

#include <QDir>
#include <QProcess>
#include <QSet>
#include <QString>

// Two demo catalogues a month apart in which one place in a hundred was renamed and given new
// hours and a new picture: what a typical update carries. Written into `dir` as
// velmora-20261101.db and velmora-20261201.db.
struct MonthOfChanges {
    QString oldPath;
    QString newPath;
    int changed = 0;

    MonthOfChanges(const QString &dir, int places)
    {
        DemoOptions options;
        options.places = places;
        QString error;
        oldPath = QDir(dir).filePath(QStringLiteral("velmora-20261101.db"));
        if (!writeCatalogue(makeDemo(options), oldPath, &error))
            qFatal("%s", qPrintable(error));

        CatalogueData next = makeDemo(options);
        next.setExtra(QStringLiteral("version_date"), QStringLiteral("20261201"));
        QList<QVariantMap> &rows = next.rows(QStringLiteral("restaurants"));
        QSet<int> ids;
        for (int i = 0; i < rows.size(); i += 100) {
            rows[i].insert(QStringLiteral("name"), rows[i].value(QStringLiteral("name")).toString() + QStringLiteral(" Nuevo"));
            rows[i].insert(QStringLiteral("horario"), QStringLiteral("De 10:00 a 22:00"));
            ids.insert(rows[i].value(QStringLiteral("id")).toInt());
        }
        for (QVariantMap &profile : next.rows(QStringLiteral("restaurants_profiles")))
            if (ids.contains(profile.value(QStringLiteral("restaurant_id")).toInt()))
                profile.insert(QStringLiteral("data"), profile.value(QStringLiteral("data")).toByteArray() + QByteArray("\xff\xd9"));
        newPath = QDir(dir).filePath(QStringLiteral("velmora-20261201.db"));
        if (!writeCatalogue(next, newPath, &error))
            qFatal("%s", qPrintable(error));
        changed = int(ids.size());
    }
};

// The toolkit's update server on 127.0.0.1 serving `root`, for the month's shelves; stopped with it.
struct ToolkitServer {
    QProcess process;
    QString base; // "http://127.0.0.1:PORT/"

    ToolkitServer(const QString &tool, const QString &root)
    {
        process.start(tool, {QStringLiteral("serve"), root});
        if (!process.waitForReadyRead(10000))
            qFatal("the server did not start");
        const QByteArray banner = process.readAllStandardOutput();
        base = QStringLiteral("http://127.0.0.1:%1/").arg(banner.mid(banner.lastIndexOf(' ') + 1).trimmed().toInt());
    }
    ~ToolkitServer()
    {
        process.kill();
        process.waitForFinished();
    }
};
