#pragma once

#include "update/DownloaderDelegate.h"

#include <QElapsedTimer>
#include <QObject>
#include "update/Downloader.h"

#include <QPointer>
#include <QtQml/qqmlregistration.h>

class Restaurants;
class WalkthroughDelegate;

// The download step: the Downloader's progress as a bar and figures, then the check mark and
// the start button, or the failure with a way to try again.
class WTDownloadViewController : public QObject, public DownloaderDelegate
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the walkthrough")
    Q_PROPERTY(double progress READ progress NOTIFY stateChanged)
    Q_PROPERTY(QString downloadLabel READ downloadLabel NOTIFY stateChanged)
    Q_PROPERTY(bool finished READ finished NOTIFY stateChanged)
    Q_PROPERTY(QString caption READ caption NOTIFY stateChanged)
    Q_PROPERTY(bool failed READ failed NOTIFY stateChanged)

public:
    WTDownloadViewController(Restaurants &restaurants, Downloader *downloader, QObject *parent = nullptr);
    ~WTDownloadViewController() override;

    WalkthroughDelegate *walkthroughDelegate = nullptr;

    // Below 0 the bar is indeterminate.
    double progress() const { return m_progress; }
    QString downloadLabel() const { return m_downloadLabel; }
    bool finished() const { return m_finished; }
    // The heading: what is under way, then that the catalogue is here.
    QString caption() const { return m_finished ? qtTrId("wt_catalogue_downloaded") : qtTrId("downloading_database"); }
    bool failed() const { return m_failed; }

    void viewWillAppear();
    Q_INVOKABLE void cancelTouched();
    Q_INVOKABLE void startButtonTouched();
    Q_INVOKABLE void retryTouched();

    void downloadProgress(qint64 written, qint64 total) override;
    void downloadDidComplete() override;
    void downloadDidFinishWithError(const Error &error) override;
    void patchFailed(const QString &message) override;

signals:
    void stateChanged();

private:
    void showError(const QString &message);

    Restaurants &m_restaurants;
    QPointer<Downloader> m_downloader; // may go first when the application object ends
    double m_progress = -1;
    QString m_downloadLabel;
    bool m_finished = false;
    bool m_failed = false;
    QElapsedTimer m_sinceProgress;
};
