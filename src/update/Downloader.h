#pragma once

#include "catalogue/PatchDelegate.h"
#include "update/DownloaderDelegate.h"
#include "update/ServiceCenter.h"

#include <QObject>
#include <QUrl>

#include <functional>
#include <memory>
#include <optional>

class BackgroundSession;
struct TransferLimits;
class OperationQueue;
class Restaurants;
class UpdateChecker;
class UserDefaults;

// What the background transfer is for; persisted by name in "downloader-state" so that its end
// is routed right also in a later run of the process.
enum class DownloadState { Idle = 0, DownloadingLastTxt = 1, DownloadingDB = 2, DownloadingPatch = 3 };
QString downloadStateName(DownloadState state);
DownloadState downloadStateFromName(const QString &name); // Idle for anything unknown

// Brings a newer catalogue onto the device: asks the sources in order of priority for their
// update information, fetches the patch from the present catalogue to the announced one, and
// falls back to the whole file. One exists per process, made by the application at start so that
// a transfer left by an earlier run reaches it.
class Downloader : public QObject, public PatchDelegate
{
    Q_OBJECT

public:
    static inline const QString backgroundID = QStringLiteral("com.brenvistaco.ios.velmora.download_db");
    static inline const QString errorDomain = QStringLiteral("Velmora");
    // The Internet source's place among the local servers.
    static constexpr int internetPriority = 100;

    struct Folders {
        QString caches;             // the transfer's file and record
        QString applicationSupport; // a patch archive is unpacked into its folder "patch"
    };
    static inline const QString patchFolderName = QStringLiteral("patch");

    // The local servers known at the moment of asking (the ServiceCenter's, in the app).
    using LocalSources = std::function<QList<UpdateURL>()>;

    Downloader(Restaurants &restaurants, UserDefaults &defaults, UpdateChecker &checker, LocalSources localSources,
               Folders folders, QObject *parent = nullptr);
    ~Downloader() override;

    // The one the screens use; set by whoever made it, null before.
    static Downloader *shared();
    static void setShared(Downloader *downloader);

    // Not owned; the delegate clears itself before it goes.
    void setDelegate(DownloaderDelegate *delegate) { m_delegate = delegate; }
    DownloaderDelegate *delegate() const { return m_delegate; }
    void setBackgroundDownloadCompletionHandler(std::function<void()> handler) { m_completionHandler = std::move(handler); }

    DownloadState state() const;
    const QList<UpdateURL> &pendingURLs() const { return m_pendingURLs; }

    void startUpdate();
    void cancel();
    // Whether a transfer is running, told on the main thread.
    void isDownloading(std::function<void(bool)> completion) const;
    void startFullDownload(const std::optional<QUrl> &url = std::nullopt);
    // Whether a transfer runs or a patch is being applied, now (on the main thread).
    bool isBusy() const;
    // The bounds of every transfer; tests shrink them.
    void setTransferLimits(const TransferLimits &limits);

    // PatchDelegate: called on the thread that applies the patch.
    void patchProgress(int done, int total) override;
    void patchSuceeded() override;
    void patchFailed(const QString &message, PatchFailedAction action) override;

signals:
    // The reload that follows an unpacked patch is over (the catalogue patched, or not).
    void reloadFinished();

private:
    // What the transfer under way must turn out to be; kept in the settings with the transfer,
    // so that a transfer finishing in a later run is checked the same way.
    struct Expected {
        QUrl url;
        QDate date;                // the announced date (the patch's "to")
        std::optional<QDate> from; // a patch's starting date
        QByteArray signature;      // the .sig text, when signatures are required
    };
    void saveExpected(const Expected &expected);
    std::optional<Expected> loadExpected() const;

    void fillPendingURLs();
    void tryNextSource(const QString &message);
    // The source of the file under way served something that can't be used: the next source is
    // asked, or with none left the update fails with `code` and `message`.
    void sourceFailed(int code, const QString &message);
    void startPatchDownload(const QDate &date, const QUrl &url);
    void failWith(int code, const QString &message);
    void sessionDidFinishDownloading(const QString &location, int status, bool isHttp);
    void sessionDidComplete(int errorCode, const QString &message);
    // Checks and installs a downloaded catalogue on the reload queue; catalogueChecked() acts on
    // what that found, on the main thread.
    void installCatalogue(const QString &location, bool signatures);
    void catalogueChecked(const struct CatalogueInstall &install);
    // Where a downloaded catalogue waits while it is checked.
    QString heldDownloadPath() const;
    // Fetches what `expected` names, with its signature first when signatures are required;
    // `unsigned_` runs instead when there is none to be had.
    void downloadSigned(Expected expected, std::function<void(const QString &why)> unsigned_);
    // Why the file at `location` isn't the one expected (its signature, size and bytes); empty
    // if it is.
    QString signatureProblem(const QString &location, QDate *signedDate = nullptr) const;
    static QString signatureProblemOf(const std::optional<Expected> &expected, const QList<QByteArray> &trustedKeys,
                                      const QString &location, QDate *signedDate);
    // Deletes the refused file, skips its source for the rest of the run, and asks the next.
    void refuseDownload(const QString &location, const QString &what, const QString &why);
    void installPatch(const QString &location);
    void failLater(int code, const QString &message);
    // Runs `call` on the delegate on the main thread, if there is one by then.
    void toDelegate(std::function<void(DownloaderDelegate &)> call);

    Restaurants &m_restaurants;
    UserDefaults &m_defaults;
    UpdateChecker &m_checker;
    LocalSources m_localSources;
    const Folders m_folders;
    DownloaderDelegate *m_delegate = nullptr;
    std::function<void()> m_completionHandler;
    QList<UpdateURL> m_pendingURLs; // the last is next
    quint64 m_attempt = 0;          // a cancel makes answers to earlier fetches stale
    BackgroundSession *m_session;
    std::unique_ptr<OperationQueue> m_reloadQueue;
};
