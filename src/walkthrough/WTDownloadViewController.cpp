#include "walkthrough/WTDownloadViewController.h"

#include <QPointer>

#include "catalogue/Restaurants.h"
#include "presentation/TransferFigures.h"
#include "update/Downloader.h"
#include "walkthrough/WalkthroughDelegate.h"

namespace {
// Progress crosses from the transfer at every packet; the bar needs far fewer.
constexpr qint64 progressIntervalMs = 50;
}

WTDownloadViewController::WTDownloadViewController(Restaurants &restaurants, Downloader *downloader, QObject *parent)
    : QObject(parent)
    , m_restaurants(restaurants)
    , m_downloader(downloader)
{
}

WTDownloadViewController::~WTDownloadViewController()
{
    if (m_downloader && m_downloader->delegate() == this)
        m_downloader->setDelegate(nullptr);
}

void WTDownloadViewController::viewWillAppear()
{
    if (m_downloader)
        m_downloader->setDelegate(this);
    m_downloadLabel.clear();
    m_progress = -1;
    m_finished = false;
    m_failed = false;
    m_sinceProgress.invalidate();
    emit stateChanged();
}

void WTDownloadViewController::downloadProgress(qint64 written, qint64 total)
{
    const bool done = total > 0 && written >= total;
    if (!done && m_sinceProgress.isValid() && m_sinceProgress.elapsed() < progressIntervalMs)
        return;
    m_sinceProgress.start();
    m_progress = total > 0 ? double(float(written) / float(total)) : -1;
    m_downloadLabel = total > 0 ? transferFigures(written, total) : QString();
    emit stateChanged();
}

void WTDownloadViewController::downloadDidComplete()
{
    m_progress = 1;
    m_downloadLabel = qtTrId("wt_checking_database");
    emit stateChanged();
    // The load reads the new file's every page: off the main thread, so the step keeps moving.
    m_restaurants.reloadInBackground([self = QPointer(this)](bool ready) {
        if (!self)
            return;
        if (!ready) {
            self->showError(qtTrId("wt_loading_failed"));
            return;
        }
        self->m_finished = true;
        self->m_downloadLabel.clear();
        emit self->stateChanged();
    });
}

void WTDownloadViewController::downloadDidFinishWithError(const Error &error) { showError(error.message); }

void WTDownloadViewController::patchFailed(const QString &message) { showError(message); }

void WTDownloadViewController::showError(const QString &message)
{
    m_failed = true;
    m_progress = 0;
    m_downloadLabel = qtTrId("update_error").arg(message);
    emit stateChanged();
}

void WTDownloadViewController::cancelTouched()
{
    if (m_downloader)
        m_downloader->cancel();
    if (walkthroughDelegate)
        walkthroughDelegate->downloadCanceled();
}

void WTDownloadViewController::startButtonTouched()
{
    if (m_finished && walkthroughDelegate)
        walkthroughDelegate->databaseReady();
}

void WTDownloadViewController::retryTouched()
{
    viewWillAppear();
    if (m_downloader)
        m_downloader->startUpdate();
}
