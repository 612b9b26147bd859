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
// Progress crosses to the main thread; scripts can be many and short.
constexpr qint64 progressIntervalMs = 50;

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
    if (counted) {
        work.enterSandbox(sandbox);
        patch.forEachRow(QStringLiteral("SELECT patch FROM updates ORDER BY number"), {}, [&](const ResultSet &row) {
            const QVariant script = row.valueForColumn(0);
            if (!script.isNull() && !work.executeStatements(script.toString())) {
                run.success = false;
                run.failure = QStringLiteral("script %1 of %2: %3").arg(run.applied + 1).arg(run.total).arg(work.lastErrorMessage());
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
        return false;
    };
    const auto forgetPatch = [&] {
        defaults->removeObjectForKey(DefaultKeys::patchAvailable);
        QFile::remove(patchPath);
    };

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

    PatchRun run;
    {
        Database patch(patchPath);
        Database copy(work);
        patch.openWithFlags(Database::ReadOnly);
        if (!copy.openWithFlags(Database::ReadWrite) || !copy.setKey(dbkey))
            return false;
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
