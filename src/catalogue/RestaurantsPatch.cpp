// The patch step of a load: a downloaded patch file turns a copy of the catalogue into the next
// one, which then replaces it in Documents.

#include "catalogue/CatalogueDates.h"
#include "catalogue/CatalogueFiles.h"
#include "catalogue/Restaurants.h"
#include "platform/Database.h"
#include "platform/DefaultKeys.h"
#include "platform/DurableFiles.h"
#include "platform/FaultInjection.h"
#include "platform/FileAttributes.h"
#include "platform/Logging.h"
#include "platform/UserDefaults.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>

#include <functional>

namespace {
constexpr qint64 progressIntervalMs = Restaurants::patchProgressIntervalMs;

struct PatchRun {
    int total = 0;
    int applied = 0;
    bool success = true;
    QString failure; // why, for the log
};

// Runs the scripts of `patch` in `number` order on `work`, in one transaction that is rolled
// back if any fails. The scripts run sandboxed: they came from the network.
PatchRun runScripts(Database &patch, Database &work, const SqlSandbox &sandbox, const std::function<void(int, int)> &progress)
{
    PatchRun run;
    if (!work.executeStatements(QStringLiteral("BEGIN"))) {
        run.success = false;
        run.failure = work.lastErrorMessage();
        return run;
    }
    QElapsedTimer sinceReport;
    bool reported = false;
    bool counted = patch.forEachRow(QStringLiteral("SELECT count(*) FROM updates"), {}, [&](const ResultSet &row) {
        run.total = row.intForColumn(0);
        return false;
    });
    if (counted && run.total > Restaurants::maximumPatchScripts) {
        run.success = false;
        run.failure = QStringLiteral("%1 scripts, more than the %2 a patch may hold").arg(run.total).arg(Restaurants::maximumPatchScripts);
    } else if (counted) {
        work.enterSandbox(sandbox);
        patch.forEachRow(QStringLiteral("SELECT patch FROM updates ORDER BY number"), {}, [&](const ResultSet &row) {
            const QVariant script = row.valueForColumn(0);
            if (!script.isNull() && !work.executeStatements(script.toString())) {
                run.success = false;
                run.failure = QStringLiteral("script %1 of %2: %3").arg(run.applied + 1).arg(run.total).arg(work.lastErrorMessage());
                if (work.sandboxTimeIsUp())
                    run.failure += QStringLiteral(" (the patch's time is up)");
                return false;
            }
            ++run.applied;
            crashPoint("patch-script");
            if (!reported || sinceReport.elapsed() > progressIntervalMs) {
                progress(run.applied, run.total);
                sinceReport.start();
                reported = true;
            }
            return true;
        });
        work.leaveSandbox();
    }
    if (!work.executeStatements(QLatin1String(run.success ? "COMMIT" : "ROLLBACK")) && run.success) {
        run.success = false;
        run.failure = work.lastErrorMessage();
        work.executeStatements(QStringLiteral("ROLLBACK"));
    }
    return run;
}

std::optional<QDate> versionDateOf(const QString &path)
{
    Database db(path);
    std::optional<QDate> date;
    if (!db.openWithFlags(Database::ReadOnly) || !db.setKey(Restaurants::dbkey))
        return date;
    db.forEachRow(QStringLiteral("SELECT val FROM extras WHERE key = 'version_date'"), {}, [&](const ResultSet &row) {
        date = CatalogueDates::parseCompact(row.stringForColumn(0));
        return false;
    });
    return date;
}
}

void Restaurants::setPatchDelegate(PatchDelegate *delegate)
{
    QMutexLocker lock(&m_mutex);
    m_patchDelegate = delegate;
}

void Restaurants::setPatchSandbox(const SqlSandbox &limits)
{
    QMutexLocker lock(&m_mutex);
    m_patchSandbox = std::make_unique<SqlSandbox>(limits);
}

bool Restaurants::applyPendingPatch(const QString &path, QDate date)
{
    UserDefaults *defaults = m_env.defaults;
    const QString patchPath = defaults ? defaults->stringForKey(DefaultKeys::patchAvailable) : QString();
    if (patchPath.isEmpty())
        return false;
    PatchDelegate *delegate;
    SqlSandbox sandbox;
    {
        QMutexLocker lock(&m_mutex);
        delegate = m_patchDelegate;
        if (m_patchSandbox)
            sandbox = *m_patchSandbox;
    }
    const auto failed = [&](const QString &message, PatchFailedAction action) {
        qCWarning(lcCatalogue).noquote() << "Patch" << patchPath << "not applied:" << message;
        if (delegate)
            delegate->patchFailed(message, action);
        else if (action == PatchFailedAction::downloadFullDB)
            defaults->setBool(true, DefaultKeys::fullDownloadWanted); // heard by the next Downloader made
        return false;
    };
    // Only a file of the patch folder is ever deleted: the setting names a path, and a path
    // anywhere else (the settings store itself) is nothing this step may touch.
    const QString patchFolder = m_env.applicationSupport.isEmpty()
                                    ? QString()
                                    : QDir(QDir(m_env.applicationSupport).filePath(QStringLiteral("patch"))).absolutePath();
    const bool inPatchFolder = !patchFolder.isEmpty() && QFileInfo(patchPath).absolutePath() == patchFolder;
    const auto forgetPatch = [&] {
        defaults->removeObjectForKey(DefaultKeys::patchAvailable);
        if (inPatchFolder)
            QFile::remove(patchPath);
    };
    if (!inPatchFolder) {
        qCWarning(lcCatalogue).noquote() << "Ignoring a patch outside" << patchFolder << ":" << patchPath;
        forgetPatch();
        return false;
    }

    if (!QFileInfo::exists(patchPath))
        defaults->removeObjectForKey(DefaultKeys::patchAvailable);
    const QString from = CatalogueDates::formatCompact(date);
    const auto dates = CatalogueFiles::patchDates(patchPath);
    if (!dates || dates->from != from) {
        qCInfo(lcCatalogue).noquote() << "Patch" << patchPath << "is not for the catalogue of" << from << "and goes";
        forgetPatch();
        return false;
    }
    if (m_env.applicationSupport.isEmpty())
        return false;

    // The catalogue in use is never changed: the work is done on a copy.
    const QString work = QDir(m_env.applicationSupport).filePath(QStringLiteral("velmora-") + from + QStringLiteral(".db"));
    QFile::remove(work);
    if (!QFile::copy(path, work) || !QFile::setPermissions(work, QFileDevice::ReadOwner | QFileDevice::WriteOwner
                                                                     | QFileDevice::ReadGroup | QFileDevice::ReadOther))
        return false;
    markExcludedFromBackup(work);
    crashPoint("patch-copied");

    // The scripts came from the network: rows only, a few seconds when nobody follows (a start
    // waits for this), and the file no bigger than a multiple of the catalogue it starts from.
    sandbox.rowsOnly = true;
    if (sandbox.maxMilliseconds == 0)
        sandbox.maxMilliseconds = delegate ? patchTimeBudgetMs : patchTimeBudgetAtStartMs;
    if (sandbox.maxFileBytes == 0)
        sandbox.maxFileBytes = qMax<qint64>(QFileInfo(path).size() * maximumPatchGrowth, minimumPatchedFileBytes);
    PatchRun run;
    {
        Database patch(patchPath);
        Database copy(work);
        patch.openWithFlags(Database::ReadOnly);
        if (!copy.openWithFlags(Database::ReadWrite) || !copy.setKey(dbkey)) {
            QFile::remove(work);
            return false;
        }
        run = runScripts(patch, copy, sandbox, [delegate](int done, int total) {
            if (delegate)
                delegate->patchProgress(done, total);
        });
    }
    if (!run.success) {
        // The transaction was rolled back. A script that failed once fails again, and one that
        // never ends would hold up every start: the patch goes, the whole file is fetched.
        qCWarning(lcCatalogue).noquote() << "Patch script failed:" << run.failure;
        forgetPatch();
        QFile::remove(work);
        return failed(QStringLiteral("failed to apply patches"), PatchFailedAction::downloadFullDB);
    }
    if (delegate)
        delegate->patchProgress(run.applied, run.total);
    forgetPatch();
    crashPoint("patch-applied");

    if (m_env.documents.isEmpty())
        return failed(QStringLiteral("Couldn't find Documents to move new db into"), PatchFailedAction::doNothing);
    // From here a failure leaves nothing worth keeping: the patch is gone, the copy goes too.
    const std::optional<QDate> version = versionDateOf(work);
    if (!version) {
        QFile::remove(work);
        return failed(QStringLiteral("Couldn't read version from new db"), PatchFailedAction::downloadFullDB);
    }
    // The result is a candidate like a downloaded file: newer than the catalogue it came from,
    // and passing every check the load makes (the key, the tables and columns the screens read,
    // every page), before it takes that catalogue's place.
    QString fault = *version > date ? catalogueFault(work)
                                    : QStringLiteral("its date %1 is not after %2").arg(CatalogueDates::formatCompact(*version), from);
    if (!fault.isEmpty()) {
        QFile::remove(work);
        qCWarning(lcCatalogue).noquote() << "The patched catalogue is refused:" << fault;
        return failed(QStringLiteral("the patched catalogue fails its checks"), PatchFailedAction::downloadFullDB);
    }
    const QString finalPath = QDir(m_env.documents).filePath(CatalogueFiles::catalogueFileName(*version));
    QString error;
    if (!DurableFiles::moveFile(work, finalPath, false, &error)) {
        qCWarning(lcCatalogue).noquote() << error;
        QFile::remove(work);
        return failed(QStringLiteral("Couldn't move new db to Documents"), PatchFailedAction::doNothing);
    }
    markExcludedFromBackup(finalPath);
    crashPoint("patch-moved");
    qCInfo(lcCatalogue).noquote() << "Patched the catalogue of" << from << "into" << finalPath << "with" << run.applied << "scripts";
    if (delegate)
        delegate->patchSuceeded();
    return true;
}
