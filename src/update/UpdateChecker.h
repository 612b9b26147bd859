#pragma once

#include "update/UpdateInfo.h"

#include <QObject>
#include <QHash>
#include <QPointer>
#include <QTimer>
#include <QUrl>

#include <functional>

class QNetworkAccessManager;
class Restaurants;
class UserDefaults;

// Is there a catalogue newer than the one here? Asks the Internet endpoint (at most every six
// hours while none is known) and any local server, reading their small `last.txt`; the answer is
// only remembered, in "newest-database-known".
class UpdateChecker : public QObject
{
    Q_OBJECT

public:
    UpdateChecker(UserDefaults &defaults, Restaurants &restaurants, QObject *parent = nullptr);
    ~UpdateChecker() override;

    // The Internet endpoint: the deployment value "update-url", unless the command line set one.
    QUrl internetURL() const;
    static void setInternetURLOverride(const QUrl &url);

    // Watches for the update host becoming reachable and checks then. Where the platform reports
    // reachability (QNetworkInformation with a backend) it follows that; elsewhere it tries now
    // and every `probeInterval` ms.
    void startMonitoring(int probeInterval = 15 * 60 * 1000);
    bool monitorsReachability() const { return m_reachabilityBackend; }

    // Fetches and stores as the rules say; `done` (optional) learns whether an answer came.
    void checkInternet(double minInterval, std::function<void(bool answered)> done = {});
    bool isNewerDatabaseKnown() const;
    // Remembers `date` in "newest-database-known" when it is later than the catalogue's and than
    // what is remembered already; from the Internet's answer or a local server's.
    void noteAnnouncedDate(const QDate &date);

    // One fetch of update information: `completion` only for a body that parses, else `failed`
    // with the network error's description or the parser's message. The status plays no part;
    // bodies are read up to a few kilobytes and decoded by their declared charset.
    void fetchUpdateInfo(const QUrl &url, std::function<void(const UpdateInfo &)> completion,
                         std::function<void(const QString &message)> failed = {});

    static constexpr qint64 maximumBody = 4096;

    // Signed updates: with at least one key trusted, update information, catalogues and patches
    // count only with a valid signature from one of them (SignedFiles).
    const QList<QByteArray> &trustedKeys() const { return m_trustedKeys; }
    bool requiresSignatures() const { return !m_trustedKeys.isEmpty(); }
    // A source that served something refused is skipped for the rest of the run.
    void refuseSource(const QUrl &url, const QString &what, const QString &why);
    bool isRefused(const QUrl &url) const;
    // "source: why" for each source refused in this run.
    QStringList refusals() const;
    // A source is its scheme, host and port.
    static QString sourceOf(const QUrl &url);

    // A small document: the raw body, the text in its declared charset, and what went wrong (a
    // network failure with an empty body, or an HTTP error status beside its body).
    void fetchSmall(const QUrl &url, std::function<void(const QByteArray &body, const QString &text, const QString &problem)> done);

private:
    void reachable();
    QNetworkAccessManager &manager();

    UserDefaults &m_defaults;
    Restaurants &m_restaurants;
    QNetworkAccessManager *m_manager = nullptr;
    QTimer m_probe;
    bool m_reachabilityBackend = false;
    QList<QByteArray> m_trustedKeys;
    QHash<QString, QString> m_refused; // source -> why
};
