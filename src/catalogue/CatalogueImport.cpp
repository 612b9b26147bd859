#include "catalogue/CatalogueImport.h"

#include "catalogue/CatalogueFiles.h"
#include "catalogue/Restaurants.h"
#include "platform/DurableFiles.h"
#include "platform/Logging.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace {
using CatalogueImport::Outcome;
using CatalogueImport::Result;

// A ciphered catalogue has no plain header and is made of whole pages; anything else is some
// other kind of file.
bool looksCiphered(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const qint64 size = file.size();
    return size >= 1024 && size % 1024 == 0 && !file.read(16).startsWith("SQLite format 3");
}

Result refused(Outcome outcome, const QString &detail) { return {outcome, QString(), detail}; }
}

Result CatalogueImport::importFile(const Restaurants &restaurants, const QString &source, const QString &documents)
{
    if (!QFileInfo(source).isFile() || !looksCiphered(source))
        return refused(Outcome::NotACatalogue, QStringLiteral("%1 is not a ciphered catalogue").arg(source));
    const VerificationResult verification = restaurants.verifyDatabase(source);
    switch (verification.kind) {
    case VerificationResult::ok: break;
    case VerificationResult::outdated:
        return refused(Outcome::NotNewer, QStringLiteral("%1 is not newer than the catalogue in use").arg(source));
    case VerificationResult::noVersionDate: return refused(Outcome::NoDate, QStringLiteral("%1 has no version date").arg(source));
    case VerificationResult::cipherError:
    case VerificationResult::openError:
        return refused(Outcome::OtherKey, QStringLiteral("%1 doesn't open with the app's key").arg(source));
    case VerificationResult::unknownError: return refused(Outcome::Damaged, QStringLiteral("%1 can't be read").arg(source));
    }
    if (const QString fault = restaurants.catalogueFault(source); !fault.isEmpty())
        return refused(Outcome::Damaged, fault);

    const QString finalPath = QDir(documents).filePath(CatalogueFiles::catalogueFileName(verification.date));
    if (QFileInfo::exists(finalPath))
        return refused(Outcome::NotNewer, QStringLiteral("%1 is there already").arg(finalPath));
    // Copied under a hidden name that no load takes for a catalogue, then given its own name
    // without replacing anything.
    const QString staging = DurableFiles::temporaryPathFor(finalPath + QStringLiteral(".import"));
    QString error;
    if (!DurableFiles::copyFile(source, staging, &error) || !DurableFiles::moveFile(staging, finalPath, false, &error)) {
        QFile::remove(staging);
        return refused(Outcome::CopyFailed, error);
    }
    qCInfo(lcCatalogue).noquote() << "Imported" << source << "as" << finalPath;
    return {Outcome::Imported, finalPath, QString()};
}
