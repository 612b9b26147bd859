#pragma once

#include "update/SignedFiles.h"
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

    // The least time between two checks of the Internet while no newer catalogue is known.
    static constexpr double internetCheckInterval = 6 * 60 * 60;

    // Fetches and stores as the rules say; `done` (optional) learns whether an answer came.
    void checkInternet(double minInterval, std::function<void(bool answered)> done = {});
    bool isNewerDatabaseKnown() const;
    // Remembers `date` in "newest-database-known" when it is later than the catalogue's and than
    // what is remembered already. Only the Internet's answer writes it: a local server could
    // otherwise pin an offer, and stop the Internet's checks, with a date of its choosing.
    void noteAnnouncedDate(const QDate &date);

    // One fetch of update information: `completion` only for a body that parses, else `failed`
    // with the network error's description or the parser's message. The status plays no part;
    // bodies are read up to a few kilobytes and decoded by their declared charset.
    void fetchUpdateInfo(const QUrl &url, std::function<void(const UpdateInfo &)> completion,
                         std::function<void(const QString &message)> failed = {});

    static constexpr qint64 maximumBody = 4096;
    // A fetch of update information (or of a signature) gives up after this long.
    static constexpr int fetchTimeoutMs = 60'000;

    // Signed updates: update information, catalogues and patches count only with a valid
    // signature from a trusted key (SignedFiles). Only a home that trusts no key at all, with the
    // developer setting for unsigned updates on, takes files unsigned.
    const QList<QByteArray> &trustedKeys() const { return m_trust.keys; }
    bool requiresSignatures() const;
    // Why no update can be taken at all: a trusted key file that doesn't parse, or no key with
    // unsigned updates not allowed. Empty when updates may go ahead.
    QString trustProblem() const;
    enum class Trust { Ok, BrokenKey, NoKey };
    Trust trust() const;
    // An announced date further ahead of this device's clock than this is refused from anyone.
    static constexpr int maximumDaysAhead = 365;
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
    SignedFiles::Trust m_trust;
    QHash<QString, QString> m_refused; // source -> why
};
