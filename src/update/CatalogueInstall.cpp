#include "update/CatalogueInstall.h"

#include "catalogue/Restaurants.h"
#include "catalogue/VerificationResult.h"
#include "platform/DurableFiles.h"
#include "platform/FaultInjection.h"
#include "platform/FileAttributes.h"
#include "platform/Logging.h"
#include "platform/Signatures.h"

#include <QFile>
#include <QFileInfo>

namespace {
CatalogueInstall failed(CatalogueInstall::Outcome outcome, int code, const QString &message)
{
    return {outcome, code, message, QString()};
}
}

CatalogueInstall CatalogueInstall::run(Restaurants &restaurants, const QString &location, bool keepOutdated,
                                       const std::function<QString(const QString &, QDate *)> &signatureProblem)
{
    CatalogueInstall result = [&] {
        QDate signedDate;
        if (signatureProblem)
            if (const QString why = signatureProblem(location, &signedDate); !why.isEmpty())
                return failed(Outcome::Refused, 10, why);
        const VerificationResult verification = restaurants.verifyDatabase(location);
        switch (verification.kind) {
        case VerificationResult::outdated:
            if (!keepOutdated)
                return failed(Outcome::SourceFailed, 4, QStringLiteral("new DB is outdated (baffled!)"));
            break;
        case VerificationResult::cipherError: return failed(Outcome::SourceFailed, 5, QStringLiteral("failed to decipher new DB"));
        case VerificationResult::openError: return failed(Outcome::SourceFailed, 6, QStringLiteral("couldn't open new DB"));
        case VerificationResult::noVersionDate:
            return failed(Outcome::SourceFailed, 8, QStringLiteral("DB file has no version information"));
        case VerificationResult::unknownError:
            return failed(Outcome::SourceFailed, 7, QStringLiteral("something unexpected happened"));
        case VerificationResult::ok: break;
        }
        // A signed file from an older day renamed and announced as newer: its own date gives it away.
        if (signedDate.isValid() && verification.date != signedDate)
            return failed(Outcome::Refused, 10, QStringLiteral("its own date is not the one signed"));
        // Every check the load makes, the page check included: a file that would not be used
        // never takes a catalogue's place in Documents.
        if (const QString fault = restaurants.catalogueFault(location); !fault.isEmpty())
            return failed(Outcome::SourceFailed, 7, QStringLiteral("something unexpected happened: ") + fault);
        const QString finalPath = restaurants.databasePathForVersionDate(verification.date);
        if (QFileInfo::exists(finalPath)) {
            // The very file, installed already (by an earlier run whose end nobody heard): done.
            if (Signatures::sha256OfFile(finalPath) == Signatures::sha256OfFile(location)) {
                qCInfo(lcUpdate).noquote() << finalPath << "is installed already";
                return CatalogueInstall{Outcome::Installed, 0, QString(), finalPath};
            }
            return failed(Outcome::Failed, 9, QStringLiteral("file ") + QFileInfo(finalPath).fileName() + QStringLiteral(" already exists"));
        }
        crashPoint("install-verified");
        QString error;
        if (!DurableFiles::moveFile(location, finalPath, false, &error)) {
            qCWarning(lcUpdate).noquote() << error;
            return failed(Outcome::Failed, 8, QStringLiteral("couldn't move temporary DB to final path."));
        }
        markExcludedFromBackup(finalPath);
        crashPoint("install-moved");
        qCInfo(lcUpdate).noquote() << "Installed" << finalPath;
        return CatalogueInstall{Outcome::Installed, 0, QString(), finalPath};
    }();
    QFile::remove(location); // gone once moved; otherwise no longer wanted
    return result;
}
