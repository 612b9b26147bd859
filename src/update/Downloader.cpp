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
    connect(m_session, &BackgroundSession::didComplete, this, &Downloader::sessionDidComplete);
    // A transfer of an earlier run continues once whoever made this has had the chance to listen.
    QTimer::singleShot(0, m_session, &BackgroundSession::resumePendingTask);
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
    if (m_pendingURLs.isEmpty())
        fillPendingURLs();
    const UpdateURL next = m_pendingURLs.takeLast();
    qCInfo(lcUpdate).noquote() << "Asking" << next.url.toString() << "(priority" << next.priority << ") for update information";
    const quint64 attempt = m_attempt;
    QPointer<Downloader> self(this);
    m_checker.fetchUpdateInfo(
        next.url,
        [self, attempt](const UpdateInfo &info) {
            if (self && self->m_attempt == attempt)
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
    downloadSigned(patch, date, [this](const QString &) { startFullDownload(); });
}

void Downloader::downloadSigned(const QUrl &url, const std::optional<QDate> &date, std::function<void(const QString &)> unsigned_)
{
    if (!m_checker.requiresSignatures()) {
        qCInfo(lcUpdate).noquote() << "Fetching" << url.toString();
        m_session->download(url);
        return;
    }
    // The signature first: small, and kept with the transfer so that a transfer finishing in a
    // later run is checked against it.
    const quint64 attempt = m_attempt;
    QPointer<Downloader> self(this);
    m_checker.fetchSmall(QUrl(url.toString() + SignedFiles::suffix), [self, attempt, url, date, unsigned_](const QByteArray &signature,
                                                                                                       const QString &, const QString &problem) {
        if (!self || self->m_attempt != attempt)
            return;
        QString why;
        if (!problem.isEmpty() || !SignedFiles::parse(signature, &why))
            return unsigned_(QStringLiteral("no signature (%1)").arg(problem.isEmpty() ? why : problem));
        QVariantMap pending{{QStringLiteral("url"), url.toString(QUrl::FullyEncoded)}, {QStringLiteral("signature"), signature}};
        if (date)
            pending.insert(QStringLiteral("date"), CatalogueDates::formatCompact(*date));
        self->m_defaults.setObject(pending, DefaultKeys::downloadSignature);
        qCInfo(lcUpdate).noquote() << "Fetching" << url.toString() << "(signed)";
        self->m_session->download(url);
    });
}

QString Downloader::signatureProblem(const QString &location, QDate *signedDate) const
{
    const QVariantMap pending = m_defaults.dictionaryForKey(DefaultKeys::downloadSignature);
    const QUrl url(pending.value(QStringLiteral("url")).toString());
    if (url.isEmpty())
        return QStringLiteral("no signature was fetched for it");
    const auto date = CatalogueDates::parseCompact(pending.value(QStringLiteral("date")).toString());
    return SignedFiles::check(pending.value(QStringLiteral("signature")).toByteArray(), Signatures::sha256OfFile(location), url.fileName(),
                              date, m_checker.trustedKeys(), signedDate);
}

void Downloader::refuseDownload(const QString &location, const QString &what, const QString &why)
{
    const QUrl url(m_defaults.dictionaryForKey(DefaultKeys::downloadSignature).value(QStringLiteral("url")).toString());
    QFile::remove(location);
    m_defaults.removeObjectForKey(DefaultKeys::downloadSignature);
    m_checker.refuseSource(url, what, why);
    failWith(10, QStringLiteral("refused %1 from %2: %3").arg(what, UpdateChecker::sourceOf(url), why));
}

void Downloader::startFullDownload(const std::optional<QUrl> &url)
{
    const QUrl target = url ? *url : QUrl(m_defaults.stringForKey(DefaultKeys::fullDbUrl));
    m_defaults.setString(downloadStateName(DownloadState::DownloadingDB), DefaultKeys::downloaderState);
    if (!target.isValid() || target.isEmpty())
        return;
    downloadSigned(target, std::nullopt, [this, target](const QString &why) {
        m_checker.refuseSource(target, QStringLiteral("the catalogue"), why);
        failWith(10, QStringLiteral("refused the catalogue from %1: %2").arg(UpdateChecker::sourceOf(target), why));
    });
}

void Downloader::failWith(int code, const QString &message)
{
    qCWarning(lcUpdate).noquote() << "Update failed:" << code << message;
    if (m_delegate)
        m_delegate->downloadDidFinishWithError(Error{errorDomain, code, message});
}

void Downloader::sessionDidFinishDownloading(const QString &location, int status, bool isHttp)
{
    const bool success = status == 200 || status == 206;
    switch (state()) {
    case DownloadState::DownloadingPatch:
        if (!isHttp)
            return;
        if (success) {
            if (const QString why = m_checker.requiresSignatures() ? signatureProblem(location) : QString(); !why.isEmpty())
                return refuseDownload(location, QStringLiteral("the patch"), why);
            m_defaults.removeObjectForKey(DefaultKeys::downloadSignature);
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
        if (success) {
            QDate signedDate;
            if (const QString why = m_checker.requiresSignatures() ? signatureProblem(location, &signedDate) : QString(); !why.isEmpty())
                return refuseDownload(location, QStringLiteral("the catalogue"), why);
            m_defaults.removeObjectForKey(DefaultKeys::downloadSignature);
            installCatalogue(location, signedDate);
        } else
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
    QPointer<Downloader> self(this);
    dispatchMain([self, errorCode, message] {
        if (self)
            self->failWith(errorCode, message);
    });
}

void Downloader::installCatalogue(const QString &location, const QDate &signedDate)
{
    const VerificationResult verification = m_restaurants.verifyDatabase(location);
    const auto fail = [this](int code, const QString &message) {
        QPointer<Downloader> self(this);
        dispatchMain([self, code, message] {
            if (self)
                self->failWith(code, message);
        });
    };
    switch (verification.kind) {
    case VerificationResult::outdated:
        if (!m_defaults.boolForKey(DefaultKeys::devKeepOldDbs))
            return fail(4, QStringLiteral("new DB is outdated (baffled!)"));
        break;
    case VerificationResult::cipherError: return fail(5, QStringLiteral("failed to decipher new DB"));
    case VerificationResult::openError: return fail(6, QStringLiteral("couldn't open new DB"));
    case VerificationResult::noVersionDate: return fail(8, QStringLiteral("DB file has no version information"));
    case VerificationResult::unknownError: return fail(7, QStringLiteral("something unexpected happened"));
    case VerificationResult::ok: break;
    }
    // A signed file from an older day renamed and announced as newer: its own date gives it away.
    if (signedDate.isValid() && verification.date != signedDate)
        return refuseDownload(location, QStringLiteral("the catalogue"), QStringLiteral("its own date is not the one signed"));
    const QString finalPath = m_restaurants.databasePathForVersionDate(verification.date);
    if (QFileInfo::exists(finalPath))
        return fail(9, QStringLiteral("file ") + QFileInfo(finalPath).fileName() + QStringLiteral(" already exists"));
    crashPoint("install-verified");
    QString error;
    if (!DurableFiles::moveFile(location, finalPath, false, &error)) {
        qCWarning(lcUpdate).noquote() << error;
        return fail(8, QStringLiteral("couldn't move temporary DB to final path."));
    }
    markExcludedFromBackup(finalPath);
    crashPoint("install-moved");
    qCInfo(lcUpdate).noquote() << "Installed" << finalPath;
    QPointer<Downloader> self(this);
    dispatchMain([self] {
        if (!self)
            return;
        if (self->m_delegate)
            self->m_delegate->downloadDidComplete();
        if (self->m_completionHandler)
            self->m_completionHandler();
    });
}

void Downloader::installPatch(const QString &location)
{
    if (m_folders.applicationSupport.isEmpty())
        return;
    // The archive came from the network: anything but the one plain file it should hold, within
    // sensible sizes, is refused before a byte is written, and the whole file fetched instead.
    QString entry, error;
    if (!ZipArchive::extractSingle(location, m_folders.applicationSupport, PatchFiles::archivePassword, {}, &entry, &error)) {
        qCWarning(lcUpdate).noquote() << "Patch archive refused:" << error << "- fetching the whole catalogue";
        startFullDownload();
        return;
    }
    const QString path = QDir(m_folders.applicationSupport).filePath(entry);
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

void Downloader::isDownloading(std::function<void(bool)> completion) const
{
    const bool running = m_session->isRunning();
    dispatchMain([completion = std::move(completion), running] { completion(running); });
}
