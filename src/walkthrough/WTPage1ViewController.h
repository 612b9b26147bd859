#pragma once

#include "walkthrough/WTDownloadViewController.h"
#include "walkthrough/WTSelectViewController.h"
#include "walkthrough/WTiTunesViewController.h"
#include "walkthrough/WalkthroughDelegate.h"

#include <QObject>
#include "update/Downloader.h"

#include <QPointer>
#include <QtQml/qqmlregistration.h>

class Restaurants;

// The first run's screen: the splash and one step at a time (select, copy, download). A
// download an earlier run left going is picked up on the download step.
class WTPage1ViewController : public QObject, public WalkthroughDelegate
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the application")
    Q_PROPERTY(QString step READ step NOTIFY stepChanged)
    Q_PROPERTY(WTSelectViewController *selectVC READ selectVC CONSTANT)
    Q_PROPERTY(WTiTunesViewController *itunesVC READ itunesVC CONSTANT)
    Q_PROPERTY(WTDownloadViewController *downloadVC READ downloadVC CONSTANT)
    Q_PROPERTY(bool firstTime READ firstTime NOTIFY firstTimeChanged)

public:
    WTPage1ViewController(Restaurants &restaurants, Downloader *downloader, DatabaseReadyDelegate *databaseReadyDelegate,
                          const QString &documents, QObject *parent = nullptr);

    // "select", "itunes" or "download".
    QString step() const { return m_step; }
    WTSelectViewController *selectVC() { return &m_select; }
    WTiTunesViewController *itunesVC() { return &m_itunes; }
    WTDownloadViewController *downloadVC() { return &m_download; }
    bool firstTime() const { return m_firstTime; }

    void viewDidLoad();
    // The view ran its opening animation: it runs once.
    Q_INVOKABLE void viewDidAppear();

    void didSelectDownload() override;
    void didSelectiTunes() override;
    void iTunesCanceled() override;
    void downloadCanceled() override;
    void databaseReady() override;

signals:
    void stepChanged();
    void firstTimeChanged();

private:
    void showView(const QString &step);

    QPointer<Downloader> m_downloader;
    DatabaseReadyDelegate *m_databaseReadyDelegate;
    WTSelectViewController m_select;
    WTiTunesViewController m_itunes;
    WTDownloadViewController m_download;
    QString m_step = QStringLiteral("select");
    bool m_firstTime = true;
};
