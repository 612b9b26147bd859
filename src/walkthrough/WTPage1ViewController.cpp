#include "walkthrough/WTPage1ViewController.h"

#include "update/Downloader.h"

#include <QPointer>

WTPage1ViewController::WTPage1ViewController(Restaurants &restaurants, Downloader *downloader,
                                             DatabaseReadyDelegate *databaseReadyDelegate, const QString &documents,
                                             QObject *parent)
    : QObject(parent)
    , m_downloader(downloader)
    , m_databaseReadyDelegate(databaseReadyDelegate)
    , m_itunes(restaurants, documents)
    , m_download(restaurants, downloader)
{
    m_select.walkthroughDelegate = this;
    m_itunes.walkthroughDelegate = this;
    m_download.walkthroughDelegate = this;
}

void WTPage1ViewController::viewDidLoad()
{
    // A download an earlier run left going is shown where it stands.
    if (!m_downloader)
        return;
    QPointer<WTPage1ViewController> self(this);
    m_downloader->isDownloading([self](bool running) {
        if (self && running)
            self->showView(QStringLiteral("download"));
    });
}

void WTPage1ViewController::viewDidAppear()
{
    if (!m_firstTime)
        return;
    m_firstTime = false;
    emit firstTimeChanged();
}

void WTPage1ViewController::showView(const QString &step)
{
    // A file dropped on the copy step asks for the step it is on: what it shows stays.
    if (m_step == step)
        return;
    if (step == QLatin1String("itunes"))
        m_itunes.viewWillAppear();
    else if (step == QLatin1String("download"))
        m_download.viewWillAppear();
    m_step = step;
    emit stepChanged();
}

void WTPage1ViewController::didSelectDownload()
{
    showView(QStringLiteral("download"));
    if (m_downloader)
        m_downloader->startUpdate();
}

void WTPage1ViewController::didSelectiTunes() { showView(QStringLiteral("itunes")); }

void WTPage1ViewController::iTunesCanceled() { showView(QStringLiteral("select")); }

void WTPage1ViewController::downloadCanceled() { showView(QStringLiteral("select")); }

void WTPage1ViewController::databaseReady()
{
    if (m_databaseReadyDelegate)
        m_databaseReadyDelegate->databaseReady();
}
