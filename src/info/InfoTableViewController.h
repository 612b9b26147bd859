#pragma once

#include "info/ProgressCell.h"
#include "presentation/ViewController.h"
#include "update/DownloaderDelegate.h"

#include "update/Downloader.h"

#include <QPointer>
#include <QStringList>

class Restaurants;
class UpdateChecker;
class UserDefaults;

// The info screen: the versions of the app and the catalogue, the update offer (when the
// catalogue is expired, a newer one is known, or a developer asks), the progress of an update in
// the offer's place, and the ways to reach the makers.
class InfoTableViewController : public ViewController, public DownloaderDelegate
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made through the Storyboard registry")
    Q_PROPERTY(QStringList cells READ cells NOTIFY cellsChanged)
    Q_PROPERTY(QString appVersion READ appVersion NOTIFY cellsChanged)
    Q_PROPERTY(QString databaseVersion READ databaseVersion NOTIFY cellsChanged)
    Q_PROPERTY(bool offer READ offer NOTIFY cellsChanged)
    Q_PROPERTY(QString updateWarning READ updateWarning NOTIFY cellsChanged)
    Q_PROPERTY(ProgressCell *progressCell READ progressCell CONSTANT)

public:
    // The rows, by reuse identifier.
    static inline const QString versionHeader = QStringLiteral("info-version-header");
    static inline const QString update = QStringLiteral("info-update-cell");
    static inline const QString progress = QStringLiteral("info-progress-cell");
    static inline const QString contactHeader = QStringLiteral("info-contact-header");
    static inline const QString website = QStringLiteral("info-website-cell");
    static inline const QString email = QStringLiteral("info-email-cell");
    static inline const QString socialNetworks = QStringLiteral("info-social-cell");
    static inline const QString separator = QStringLiteral("info-separator-cell");
    static inline const QString rateApp = QStringLiteral("info-rateapp-cell");
    static inline const QString shake = QStringLiteral("info-shake-cell");

    InfoTableViewController(Restaurants &restaurants, UserDefaults &defaults, UpdateChecker *checker, Downloader *downloader,
                            QObject *parent = nullptr);
    ~InfoTableViewController() override;

    QUrl viewUrl() const override { return QUrl(QStringLiteral("qrc:/Velmora/info/InfoView.qml")); }

    QStringList cells() const { return m_cells; }
    QString appVersion() const;
    QString databaseVersion() const;
    // Whether the update is offered: an expired catalogue, a newer one known, or the developer switch.
    bool offer() const;
    // Why no update can be installed (a trusted key that doesn't parse, or none), for the user;
    // empty when updates may go ahead.
    QString updateWarning() const;
    ProgressCell *progressCell() { return &m_progressCell; }

    Q_INVOKABLE void didSelectRow(int row);
    Q_INVOKABLE void updateButtonTouched();
    Q_INVOKABLE void socialButtonTouched(const QString &network);
    void cancelButtonTouched();

    void downloadProgress(qint64 written, qint64 total) override;
    void patchStarted() override;
    void patchProgress(int done, int total) override;
    void patchSuceeded() override;
    void patchFailed(const QString &message) override;
    void downloadDidComplete() override;
    void downloadDidFinishWithError(const Error &error) override;

signals:
    void cellsChanged();

protected:
    void viewDidLoad() override;

private:
    void setupCells();
    void showProgressCell();
    void showInfoCell();
    void showDownloadError(const QString &message);
    void localize();

    Restaurants &m_restaurants;
    UserDefaults &m_defaults;
    UpdateChecker *m_checker;
    QPointer<Downloader> m_downloader;
    QStringList m_cells;
    ProgressCell m_progressCell;
};
