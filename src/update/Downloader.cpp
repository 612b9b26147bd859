#include "update/Downloader.h"

#include "catalogue/CatalogueDates.h"
#include "catalogue/Restaurants.h"
#include "platform/BackgroundSession.h"
#include "platform/DefaultKeys.h"
#include "platform/Dispatch.h"
#include "platform/DurableFiles.h"
#include "platform/FaultInjection.h"
#include "platform/FileAttributes.h"
#include "platform/Logging.h"
#include "platform/OperationQueue.h"
#include "platform/UserDefaults.h"
#include "platform/ZipArchive.h"
#include "platform/Signatures.h"
#include "update/CatalogueInstall.h"
#include "update/PatchFiles.h"
#include "update/SignedFiles.h"
#include "update/UpdateChecker.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QPointer>
#include <QTimer>

#include <algorithm>

namespace {
Downloader *sharedDownloader = nullptr;

const char *const stateNames[] = {"Idle", "DownloadingLastTxt", "DownloadingDB", "DownloadingPatch"};
}

QString downloadStateName(DownloadState state) { return QString::fromLatin1(stateNames[int(state)]); }

DownloadState downloadStateFromName(const QString &name)
{
    for (int i = 0; i < 4; ++i)
        if (name == QLatin1String(stateNames[i]))
            return DownloadState(i);
    return DownloadState::Idle;
}

Downloader::Downloader(Restaurants &restaurants, UserDefaults &defaults, UpdateChecker &checker, LocalSources localSources,
                       Folders folders, QObject *parent)
    : QObject(parent)
    , m_restaurants(restaurants)
    , m_defaults(defaults)
    , m_checker(checker)
    , m_localSources(std::move(localSources))
    , m_folders(std::move(folders))
    , m_session(new BackgroundSession(backgroundID, m_folders.caches, this))
    , m_reloadQueue(std::make_unique<OperationQueue>(1))
{
    connect(m_session, &BackgroundSession::didWriteData, this, [this](qint64 written, qint64 expected) {
        toDelegate([=](DownloaderDelegate &d) { d.downloadProgress(written, expected); });
    });
    connect(m_session, &BackgroundSession::didFinishDownloading, this, &Downloader::sessionDidFinishDownloading);
    // A catalogue being checked when an earlier run ended is not known to be good: it goes.
    if (!m_folders.caches.isEmpty())
        QFile::remove(heldDownloadPath());
    connect(m_session, &BackgroundSession::didComplete, this, &Downloader::sessionDidComplete);
    // A transfer of an earlier run continues once whoever made this has had the chance to listen.
    QTimer::singleShot(0, m_session, &BackgroundSession::resumePendingTask);
    // A patch given up at a start, with nobody following: the whole file, as the patch's own
    // failure would have asked.
    if (m_defaults.boolForKey(DefaultKeys::fullDownloadWanted)) {
        m_defaults.removeObjectForKey(DefaultKeys::fullDownloadWanted);
        QTimer::singleShot(0, this, [this] {
            if (!m_session->isRunning() && m_checker.trustProblem().isEmpty())
                startFullDownload();
        });
    }
}

Downloader::~Downloader()
{
    if (sharedDownloader == this)
        sharedDownloader = nullptr;
    m_reloadQueue->waitUntilAllOperationsAreFinished();
    m_restaurants.setPatchDelegate(nullptr);
}

Downloader *Downloader::shared() { return sharedDownloader; }

void Downloader::setShared(Downloader *downloader) { sharedDownloader = downloader; }

DownloadState Downloader::state() const { return downloadStateFromName(m_defaults.stringForKey(DefaultKeys::downloaderState)); }

void Downloader::toDelegate(std::function<void(DownloaderDelegate &)> call)
{
    QPointer<Downloader> self(this);
    dispatchMain([self, call = std::move(call)] {
        if (self && self->m_delegate)
            call(*self->m_delegate);
    });
}

void Downloader::fillPendingURLs()
{
    m_pendingURLs.append({m_checker.internetURL(), internetPriority});
    QList<UpdateURL> local = m_localSources ? m_localSources() : QList<UpdateURL>();
    std::stable_sort(local.begin(), local.end(), [](const UpdateURL &a, const UpdateURL &b) { return a.priority < b.priority; });
    m_pendingURLs.append(local);
}

void Downloader::startUpdate()
{
    // A broken trusted key, or no key at all: nothing is fetched, and the user is told why.
    if (const QString problem = m_checker.trustProblem(); !problem.isEmpty()) {
        m_pendingURLs.clear();
        failLater(10, QStringLiteral("refused: ") + problem);
        return;
    }
    if (m_pendingURLs.isEmpty())
        fillPendingURLs();
    const UpdateURL next = m_pendingURLs.takeLast();
    qCInfo(lcUpdate).noquote() << "Asking" << next.url.toString() << "(priority" << next.priority << ") for update information";
    const quint64 attempt = m_attempt;
    QPointer<Downloader> self(this);
    m_checker.fetchUpdateInfo(
        next.url,
        [self, attempt, next](const UpdateInfo &info) {
            if (!self || self->m_attempt != attempt)
                return;
            // Nothing is fetched from a source that has nothing newer: the next one may. (A
            // developer keeping old catalogues may fetch the same one again.)
            const std::optional<QDate> current = self->m_restaurants.ready() ? self->m_restaurants.databaseVersionDate() : std::nullopt;
            if (current && info.date <= *current && !self->m_defaults.boolForKey(DefaultKeys::devKeepOldDbs)) {
                qCInfo(lcUpdate).noquote() << next.url.toString() << "announces" << info.date.toString(Qt::ISODate) << "- nothing newer";
                return self->tryNextSource(QStringLiteral("no source has a catalogue newer than %1").arg(current->toString(Qt::ISODate)));
            }
            self->startPatchDownload(info.date, info.url);
        },
        [self, attempt](const QString &message) {
            if (self && self->m_attempt == attempt)
                self->tryNextSource(message);
        });
}

void Downloader::tryNextSource(const QString &message)
{
    // A cancel between here and the next turn of the main loop ends the attempt.
    const quint64 attempt = m_attempt;
    QPointer<Downloader> self(this);
    dispatchMain([self, attempt, message, more = !m_pendingURLs.isEmpty()] {
        if (!self || self->m_attempt != attempt)
            return;
        // Refused sources say why: the last source's word alone would hide it.
        const QStringList refusals = self->m_checker.refusals();
        if (more)
            self->startUpdate();
        else if (refusals.isEmpty())
            self->failWith(1, message);
        else
            self->failWith(1, QStringLiteral("refused: ") + refusals.join(QStringLiteral("; ")));
    });
}

void Downloader::sourceFailed(int code, const QString &message)
{
    m_defaults.removeObjectForKey(DefaultKeys::downloadSignature);
    const quint64 attempt = m_attempt;
    QPointer<Downloader> self(this);
    dispatchMain([self, attempt, code, message] {
        if (!self || self->m_attempt != attempt)
            return;
        if (self->m_pendingURLs.isEmpty()) {
            self->failWith(code, message);
            return;
        }
        qCInfo(lcUpdate).noquote() << "Skipping that source for this update (" + message + "); asking the next";
        self->startUpdate();
    });
}

void Downloader::saveExpected(const Expected &expected)
{
    QVariantMap record{{QStringLiteral("url"), expected.url.toString(QUrl::FullyEncoded)},
                       {QStringLiteral("date"), CatalogueDates::formatCompact(expected.date)}};
    if (expected.from)
        record.insert(QStringLiteral("from"), CatalogueDates::formatCompact(*expected.from));
    if (!expected.signature.isEmpty())
        record.insert(QStringLiteral("signature"), expected.signature);
    m_defaults.setObject(record, DefaultKeys::downloadSignature);
}

std::optional<Downloader::Expected> Downloader::loadExpected() const
{
    const QVariantMap record = m_defaults.dictionaryForKey(DefaultKeys::downloadSignature);
    Expected expected{QUrl(record.value(QStringLiteral("url")).toString()),
                      CatalogueDates::parseCompact(record.value(QStringLiteral("date")).toString()).value_or(QDate()),
                      CatalogueDates::parseCompact(record.value(QStringLiteral("from")).toString()),
                      record.value(QStringLiteral("signature")).toByteArray()};
    if (expected.url.isEmpty())
        return std::nullopt;
    return expected;
}

void Downloader::startPatchDownload(const QDate &date, const QUrl &url)
{
    if (!m_restaurants.ready()) {
        startFullDownload(url);
        return;
    }
    const QDate from = m_restaurants.databaseVersionDate().value_or(QDate(1970, 1, 1));
    const QUrl patch = url.resolved(QUrl(PatchFiles::archivePath(from, date)));
    m_defaults.setString(url.toString(QUrl::FullyEncoded), DefaultKeys::fullDbUrl);
    m_defaults.setString(downloadStateName(DownloadState::DownloadingPatch), DefaultKeys::downloaderState);
    // A patch without a signature is most likely no patch at all: the whole file then, which
    // must be signed.
    downloadSigned({patch, date, from, {}}, [this](const QString &) { startFullDownload(); });
}

void Downloader::downloadSigned(Expected expected, std::function<void(const QString &)> unsigned_)
{
    if (!m_checker.requiresSignatures()) {
        qCInfo(lcUpdate).noquote() << "Fetching" << expected.url.toString() << "(unsigned, as the developer setting allows)";
        saveExpected(expected);
        m_session->download(expected.url);
        return;
    }
    // The signature first: small, checked for everything but the bytes (name, dates, key, size)
    // before a byte of the file is kept, and kept with the transfer so that a transfer finishing
    // in a later run is checked against it.
    const quint64 attempt = m_attempt;
    QPointer<Downloader> self(this);
    m_checker.fetchSmall(QUrl(expected.url.toString() + SignedFiles::suffix), [self, attempt, expected, unsigned_](const QByteArray &text,
                                                                                                                 const QString &, const QString &problem) mutable {
        if (!self || self->m_attempt != attempt)
            return;
        QString why;
        if (!problem.isEmpty() || !SignedFiles::parse(text, &why))
            return unsigned_(QStringLiteral("no signature (%1)").arg(problem.isEmpty() ? why : problem));
        const std::optional<QDate> date = expected.from ? std::optional<QDate>(expected.date) : std::nullopt;
        const auto signature = SignedFiles::checkBeforeTransfer(text, {expected.url.fileName(), date, expected.from},
                                                                self->m_checker.trustedKeys(), &why);
        if (!signature) {
            self->m_checker.refuseSource(expected.url, expected.from ? QStringLiteral("the patch") : QStringLiteral("the catalogue"), why);
            return self->sourceFailed(10, QStringLiteral("refused %1 from %2: %3")
                                              .arg(expected.from ? QStringLiteral("the patch") : QStringLiteral("the catalogue"),
                                                   UpdateChecker::sourceOf(expected.url), why));
        }
        expected.signature = text;
        self->saveExpected(expected);
        qCInfo(lcUpdate).noquote() << "Fetching" << expected.url.toString() << "(signed," << signature->size << "bytes)";
        self->m_session->download(expected.url, signature->size);
    });
}

QString Downloader::signatureProblem(const QString &location, QDate *signedDate) const
{
    return signatureProblemOf(loadExpected(), m_checker.trustedKeys(), location, signedDate);
}

QString Downloader::signatureProblemOf(const std::optional<Expected> &expected, const QList<QByteArray> &trustedKeys,
                                       const QString &location, QDate *signedDate)
{
    if (!expected || expected->signature.isEmpty())
        return QStringLiteral("no signature was fetched for it");
    const std::optional<QDate> date = expected->from ? std::optional<QDate>(expected->date) : std::nullopt;
    return SignedFiles::check(expected->signature, QFileInfo(location).size(), Signatures::sha256OfFile(location),
                              {expected->url.fileName(), date, expected->from}, trustedKeys, signedDate);
}

void Downloader::refuseDownload(const QString &location, const QString &what, const QString &why)
{
    const std::optional<Expected> expected = loadExpected();
    const QUrl url = expected ? expected->url : QUrl();
    QFile::remove(location);
    m_checker.refuseSource(url, what, why);
    sourceFailed(10, QStringLiteral("refused %1 from %2: %3").arg(what, UpdateChecker::sourceOf(url), why));
}

void Downloader::startFullDownload(const std::optional<QUrl> &url)
{
    const QUrl target = url ? *url : QUrl(m_defaults.stringForKey(DefaultKeys::fullDbUrl));
    m_defaults.setString(downloadStateName(DownloadState::DownloadingDB), DefaultKeys::downloaderState);
    if (!target.isValid() || target.isEmpty())
        return;
    downloadSigned({target, QDate(), std::nullopt, {}}, [this, target](const QString &why) {
        m_checker.refuseSource(target, QStringLiteral("the catalogue"), why);
        sourceFailed(10, QStringLiteral("refused the catalogue from %1: %2").arg(UpdateChecker::sourceOf(target), why));
    });
}

void Downloader::failWith(int code, const QString &message)
{
    qCWarning(lcUpdate).noquote() << "Update failed:" << code << message;
    if (m_delegate)
        m_delegate->downloadDidFinishWithError(Error{errorDomain, code, message});
}

void Downloader::failLater(int code, const QString &message)
{
    QPointer<Downloader> self(this);
    dispatchMain([self, code, message] {
        if (self)
            self->failWith(code, message);
    });
}

void Downloader::sessionDidFinishDownloading(const QString &location, int status, bool isHttp)
{
    const bool success = status == 200 || status == 206;
    const bool signatures = m_checker.requiresSignatures();
    switch (state()) {
    case DownloadState::DownloadingPatch:
        if (!isHttp)
            return;
        if (success) {
            if (const QString why = signatures ? signatureProblem(location) : QString(); !why.isEmpty())
                return refuseDownload(location, QStringLiteral("the patch"), why);
            toDelegate([](DownloaderDelegate &d) { d.patchStarted(); });
            installPatch(location);
        } else {
            // The server has no such patch: the whole file, without a word to the user.
            qCInfo(lcUpdate) << "No patch on the server (status" << status << "); fetching the whole catalogue";
            startFullDownload();
        }
        return;
    case DownloadState::DownloadingDB:
        if (!isHttp)
            return;
        if (success)
            installCatalogue(location, signatures);
        else
            failWith(3, QStringLiteral("download finished with code ") + QString::number(status));
        return;
    default:
        return;
    }
}

void Downloader::sessionDidComplete(int errorCode, const QString &message)
{
    if (errorCode == 0)
        return;
    if (state() == DownloadState::DownloadingPatch && errorCode == BackgroundSession::FileDoesNotExist) {
        startFullDownload();
        return;
    }
    // More than the signed size (or the cap): that source serves something else.
    if (errorCode == BackgroundSession::DataLengthExceedsMaximum) {
        if (const std::optional<Expected> expected = loadExpected())
            m_checker.refuseSource(expected->url, QStringLiteral("a file"), message);
        sourceFailed(errorCode, message);
        return;
    }
    failLater(errorCode, message);
}

void Downloader::installCatalogue(const QString &location, bool signatures)
{
    // The checks read the whole file: on the reload queue, the screens going on meanwhile. The
    // session deletes its file once this returns, so the file is first set aside (same folder,
    // a rename); one left there by a run that ended meanwhile goes at the next start.
    const QString held = heldDownloadPath();
    QFile::remove(held);
    if (!QFile::rename(location, held))
        return failLater(8, QStringLiteral("couldn't move temporary DB to final path."));
    std::function<QString(const QString &, QDate *)> signatureCheck;
    if (signatures)
        signatureCheck = [expected = loadExpected(), keys = m_checker.trustedKeys()](const QString &path, QDate *signedDate) {
            return signatureProblemOf(expected, keys, path, signedDate);
        };
    const bool keepOutdated = m_defaults.boolForKey(DefaultKeys::devKeepOldDbs);
    Restaurants *restaurants = &m_restaurants;
    QPointer<Downloader> self(this);
    m_reloadQueue->addOperation([self, restaurants, held, keepOutdated, signatureCheck] {
        const CatalogueInstall install = CatalogueInstall::run(*restaurants, held, keepOutdated, signatureCheck);
        dispatchMain([self, install] {
            if (self)
                self->catalogueChecked(install);
        });
    });
}

void Downloader::catalogueChecked(const CatalogueInstall &install)
{
    switch (install.outcome) {
    case CatalogueInstall::Outcome::Refused:
        return refuseDownload(QString(), QStringLiteral("the catalogue"), install.message);
    case CatalogueInstall::Outcome::SourceFailed:
        return sourceFailed(install.code, install.message);
    case CatalogueInstall::Outcome::Failed:
        return failWith(install.code, install.message);
    case CatalogueInstall::Outcome::Installed:
        break;
    }
    m_defaults.removeObjectForKey(DefaultKeys::downloadSignature);
    if (m_delegate)
        m_delegate->downloadDidComplete();
    if (m_completionHandler)
        m_completionHandler();
}

QString Downloader::heldDownloadPath() const
{
    return QDir(m_folders.caches).filePath(QStringLiteral("velmora-download-checking.db"));
}

void Downloader::installPatch(const QString &location)
{
    const std::optional<Expected> expected = loadExpected();
    m_defaults.removeObjectForKey(DefaultKeys::downloadSignature);
    if (m_folders.applicationSupport.isEmpty())
        return;
    if (!expected || !expected->from) {
        // What the archive must hold is no longer known: it can't be judged, so it isn't used.
        qCWarning(lcUpdate) << "A patch arrived with no record of what it must be; fetching the whole catalogue";
        startFullDownload();
        return;
    }
    // The archive came from the network: it unpacks into a folder of its own, emptied first,
    // and only as the one file this patch must be; anything else is refused before a byte is
    // written, and the whole file fetched instead.
    QDir folder(QDir(m_folders.applicationSupport).filePath(patchFolderName));
    folder.removeRecursively();
    QString entry, error;
    const QString expectedName = PatchFiles::patchFileName(*expected->from, expected->date);
    if (!QDir().mkpath(folder.path())
        || !ZipArchive::extractSingle(location, folder.path(), PatchFiles::archivePassword, {}, &entry, &error, expectedName)) {
        qCWarning(lcUpdate).noquote() << "Patch archive refused:" << error << "- fetching the whole catalogue";
        folder.removeRecursively();
        startFullDownload();
        return;
    }
    const QString path = folder.filePath(entry);
    markExcludedFromBackup(path);
    crashPoint("patch-unpacked");
    toDelegate([](DownloaderDelegate &d) { d.downloadingPatch(); });
    m_defaults.setString(path, DefaultKeys::patchAvailable);
    m_restaurants.setPatchDelegate(this);
    Restaurants *restaurants = &m_restaurants;
    QPointer<Downloader> self(this);
    m_reloadQueue->addOperation([restaurants, self] {
        restaurants->reload();
        dispatchMain([self] {
            if (self)
                emit self->reloadFinished();
        });
    });
}

void Downloader::patchProgress(int done, int total)
{
    toDelegate([=](DownloaderDelegate &d) { d.patchProgress(done, total); });
}

void Downloader::patchSuceeded()
{
    toDelegate([](DownloaderDelegate &d) { d.patchSuceeded(); });
}

void Downloader::patchFailed(const QString &message, PatchFailedAction action)
{
    QPointer<Downloader> self(this);
    if (action == PatchFailedAction::downloadFullDB) {
        dispatchMain([self] {
            if (self)
                self->startFullDownload();
        });
        return;
    }
    toDelegate([message](DownloaderDelegate &d) { d.patchFailed(message); });
}

void Downloader::cancel()
{
    m_pendingURLs.clear();
    ++m_attempt;
    m_session->cancelAll();
}

bool Downloader::isBusy() const { return m_session->isRunning() || m_reloadQueue->operationCount() > 0; }

void Downloader::setTransferLimits(const TransferLimits &limits) { m_session->setLimits(limits); }

void Downloader::isDownloading(std::function<void(bool)> completion) const
{
    // An earlier run's transfer counts before its resume, which waits for the listeners.
    const bool running = m_session->hasTask();
    dispatchMain([completion = std::move(completion), running] { completion(running); });
}
