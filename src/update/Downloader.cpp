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
#include "update/PatchFiles.h"
#include "update/UpdateChecker.h"

#include <QDir>
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
        if (more)
            self->startUpdate();
        else
            self->failWith(1, message);
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
    qCInfo(lcUpdate).noquote() << "Fetching the patch" << patch.toString();
    m_session->download(patch);
}

void Downloader::startFullDownload(const std::optional<QUrl> &url)
{
    const QUrl target = url ? *url : QUrl(m_defaults.stringForKey(DefaultKeys::fullDbUrl));
    m_defaults.setString(downloadStateName(DownloadState::DownloadingDB), DefaultKeys::downloaderState);
    if (!target.isValid() || target.isEmpty())
        return;
    qCInfo(lcUpdate).noquote() << "Fetching the whole catalogue" << target.toString();
    m_session->download(target);
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
            installCatalogue(location);
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
    QPointer<Downloader> self(this);
    dispatchMain([self, errorCode, message] {
        if (self)
            self->failWith(errorCode, message);
    });
}

void Downloader::installCatalogue(const QString &location)
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
