#include "Publisher.h"

#include "CatalogueWriter.h"
#include "PatchBuilder.h"
#include "Signing.h"
#include "catalogue/CatalogueDates.h"
#include "catalogue/Restaurants.h"
#include "update/PatchFiles.h"
#include "update/UpdateInfo.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>

#include <cstdio>

bool publish(const QString &newPath, const QStringList &oldPaths, const QString &directory, const QString &baseUrl,
             QJsonObject &report, QString *error, const QByteArray &secretKey)
{
    const bool signing = !secretKey.isEmpty();
    const Restaurants verifier(Restaurants::Environment{});
    const VerificationResult verified = verifier.verifyDatabase(newPath);
    if (!verified.date.isValid()) {
        *error = QStringLiteral("%1 is not a catalogue (%2)").arg(newPath, verified.kindName());
        return false;
    }
    const QDate date = verified.date;
    const QDir ios(directory + QStringLiteral("/ios"));
    if (!QDir(directory).exists()) {
        *error = QStringLiteral("the directory %1 does not exist").arg(directory);
        return false;
    }
    if (!ios.mkpath(QStringLiteral("u2"))) {
        *error = QStringLiteral("can't create %1").arg(ios.filePath(QStringLiteral("u2")));
        return false;
    }
    const QString fileName = QStringLiteral("velmora-%1.db").arg(CatalogueDates::formatCompact(date));
    if (!writeAtomically(ios.filePath(fileName), error,
                         [&](const QString &temporary) { return QFile::copy(newPath, temporary); })
        || (signing && !signPublishedFile(ios.filePath(fileName), date, secretKey, error)))
        return false;

    QJsonArray patches;
    for (const QString &oldPath : oldPaths) {
        const VerificationResult old = verifier.verifyDatabase(oldPath);
        if (!old.date.isValid()) {
            *error = QStringLiteral("%1 is not a catalogue (%2)").arg(oldPath, old.kindName());
            return false;
        }
        const QString archive = ios.filePath(PatchFiles::archivePath(old.date, date));
        PatchStats stats;
        if (!buildPatch(oldPath, newPath, archive, error, &stats) || (signing && !signPublishedFile(archive, date, secretKey, error, {}, old.date)))
            return false;
        patches.append(QJsonObject{{QStringLiteral("from"), CatalogueDates::formatCompact(old.date)},
                                   {QStringLiteral("archive"), archive},
                                   {QStringLiteral("bytes"), QFile(archive).size()}});
    }

    QString base = baseUrl;
    while (base.endsWith(QLatin1Char('/')))
        base.chop(1);
    const UpdateInfo info{date, QUrl(base + QStringLiteral("/ios/") + fileName)};
    if (!info.url.isValid() || info.url.isRelative()) {
        *error = QStringLiteral("invalid base URL %1").arg(baseUrl);
        return false;
    }
    const QString lastTxt = ios.filePath(QStringLiteral("last.txt"));
    // The announcement goes out last: a reader never sees it before what it points to.
    const QString staged = lastTxt + QStringLiteral(".new");
    if (!writeAtomically(staged, error, [&](const QString &temporary) {
            QFile file(temporary);
            return file.open(QIODevice::WriteOnly) && file.write(formatUpdateInfo(info).toUtf8()) > 0;
        }))
        return false;
    if (signing && !signPublishedFile(staged, date, secretKey, error, lastTxt))
        return false;
    if (std::rename(QFile::encodeName(staged).constData(), QFile::encodeName(lastTxt).constData()) != 0) {
        *error = QStringLiteral("can't write %1").arg(lastTxt);
        return false;
    }
    report = {{QStringLiteral("version_date"), CatalogueDates::formatCompact(date)},
              {QStringLiteral("catalogue"), ios.filePath(fileName)},
              {QStringLiteral("last_txt"), lastTxt},
              {QStringLiteral("url"), info.url.toString()},
              {QStringLiteral("patches"), patches},
              {QStringLiteral("signed"), signing}};
    return true;
}
