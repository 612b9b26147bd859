#include "update/UpdateChecker.h"

#include "catalogue/Restaurants.h"
#include "platform/DefaultKeys.h"
#include "platform/Logging.h"
#include "platform/Paths.h"
#include "platform/UserDefaults.h"
#include "update/SignedFiles.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QNetworkAccessManager>
#include <QNetworkInformation>
#include <QNetworkReply>
#include <QStringDecoder>

namespace {
QUrl &internetOverride()
{
    static QUrl url;
    return url;
}

QDate catalogueDate(Restaurants &restaurants)
{
    // No catalogue counts as the oldest possible one.
    return restaurants.databaseVersionDate().value_or(QDate(1970, 1, 1));
}

// The body in the charset its answer declares; UTF-8 when it declares none or one unknown.
QString decodedBody(QNetworkReply *reply, const QByteArray &body)
{
    const QString contentType = reply->header(QNetworkRequest::ContentTypeHeader).toString();
    QString charset;
    for (const QString &part : contentType.split(QLatin1Char(';')))
        if (part.trimmed().startsWith(QLatin1String("charset="), Qt::CaseInsensitive))
            charset = part.trimmed().mid(8).remove(QLatin1Char('"'));
    QStringDecoder decoder(charset.isEmpty() ? "UTF-8" : charset.toLatin1().constData());
    if (!decoder.isValid())
        decoder = QStringDecoder(QStringDecoder::Utf8);
    return decoder.decode(body);
}
}

UpdateChecker::UpdateChecker(UserDefaults &defaults, Restaurants &restaurants, QObject *parent)
    : QObject(parent)
    , m_defaults(defaults)
    , m_restaurants(restaurants)
    , m_trust(SignedFiles::trustedKeys(Paths::applicationSupport() + QStringLiteral("/trusted-keys")))
{
    static bool told = false;
    if (const QString problem = trustProblem(); !problem.isEmpty() && !std::exchange(told, true))
        qCWarning(lcUpdate).noquote() << "No update will be installed:" << problem;
}

bool UpdateChecker::requiresSignatures() const
{
    return !m_trust.keys.isEmpty() || !m_trust.problems.isEmpty() || !m_defaults.boolForKey(DefaultKeys::devAllowUnsignedUpdates);
}

UpdateChecker::Trust UpdateChecker::trust() const
{
    if (!m_trust.problems.isEmpty())
        return Trust::BrokenKey;
    return m_trust.keys.isEmpty() && requiresSignatures() ? Trust::NoKey : Trust::Ok;
}

QString UpdateChecker::trustProblem() const
{
    if (!m_trust.problems.isEmpty())
        return QStringLiteral("a trusted signing key is broken (%1); updates are refused until it is fixed")
            .arg(m_trust.problems.join(QStringLiteral("; ")));
    if (m_trust.keys.isEmpty() && requiresSignatures())
        return QStringLiteral("no update signing key is trusted");
    return {};
}

UpdateChecker::~UpdateChecker() = default;

void UpdateChecker::setInternetURLOverride(const QUrl &url) { internetOverride() = url; }

QUrl UpdateChecker::internetURL() const
{
    if (internetOverride().isValid())
        return internetOverride();
    // Tests point the endpoint at this machine through the environment.
    if (const QString fromEnvironment = qEnvironmentVariable("VELMORA_UPDATE_URL"); !fromEnvironment.isEmpty())
        return QUrl(fromEnvironment);
    return QUrl(m_defaults.stringForKey(QStringLiteral("update-url")));
}

QNetworkAccessManager &UpdateChecker::manager()
{
    // Made on first use: a process that never checks never opens the network stack.
    if (!m_manager) {
        m_manager = new QNetworkAccessManager(this);
        m_manager->setCookieJar(nullptr);
    }
    return *m_manager;
}

void UpdateChecker::startMonitoring(int probeInterval)
{
    const QUrl url = internetURL();
    if (url.host().isEmpty())
        return;
    if (QNetworkInformation::loadBackendByFeatures(QNetworkInformation::Feature::Reachability)) {
        m_reachabilityBackend = true;
        QNetworkInformation *information = QNetworkInformation::instance();
        connect(information, &QNetworkInformation::reachabilityChanged, this, [this](QNetworkInformation::Reachability reachability) {
            if (reachability == QNetworkInformation::Reachability::Online)
                reachable();
        });
        if (information->reachability() == QNetworkInformation::Reachability::Online)
            QTimer::singleShot(0, this, &UpdateChecker::reachable);
        qCInfo(lcUpdate) << "Update checks follow the network's reachability:" << information->backendName();
        return;
    }
    // No reachability backend (a desktop without NetworkManager, a container): a modest probe.
    qCInfo(lcUpdate) << "No reachability backend: update checks are tried every" << probeInterval / 60000 << "minutes";
    m_probe.setInterval(probeInterval);
    connect(&m_probe, &QTimer::timeout, this, &UpdateChecker::reachable, Qt::UniqueConnection);
    m_probe.start();
    QTimer::singleShot(0, this, &UpdateChecker::reachable);
}

void UpdateChecker::reachable()
{
    // Once a newer catalogue is known, nothing is asked until it has been installed.
    if (!isNewerDatabaseKnown())
        checkInternet(internetCheckInterval);
}

void UpdateChecker::checkInternet(double minInterval, std::function<void(bool)> done)
{
    const QDateTime last = m_defaults.dateForKey(DefaultKeys::lastInternetUpdateCheck);
    if (last.isValid() && last.secsTo(QDateTime::currentDateTime()) < minInterval) {
        if (done)
            done(false);
        return;
    }
    fetchUpdateInfo(
        internetURL(),
        [this, done](const UpdateInfo &info) {
            noteAnnouncedDate(info.date);
            m_defaults.setDate(QDateTime::currentDateTime(), DefaultKeys::lastInternetUpdateCheck);
            if (done)
                done(true);
        },
        [done](const QString &) {
            if (done)
                done(false);
        });
}

void UpdateChecker::noteAnnouncedDate(const QDate &date)
{
    const QDateTime known = m_defaults.dateForKey(DefaultKeys::newestDatabaseKnown);
    if (catalogueDate(m_restaurants) < date && !(known.isValid() && known.date() >= date))
        m_defaults.setDate(date.startOfDay(), DefaultKeys::newestDatabaseKnown);
}

bool UpdateChecker::isNewerDatabaseKnown() const
{
    const QDateTime known = m_defaults.dateForKey(DefaultKeys::newestDatabaseKnown);
    return known.isValid() && catalogueDate(m_restaurants) < known.date();
}

void UpdateChecker::fetchSmall(const QUrl &url, std::function<void(const QByteArray &, const QString &, const QString &)> done)
{
    QNetworkRequest request(url);
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
    request.setAttribute(QNetworkRequest::CacheSaveControlAttribute, false);
    request.setTransferTimeout(fetchTimeoutMs);
    request.setMaximumRedirectsAllowed(5);
    QNetworkReply *reply = manager().get(request);
    // A body beyond a few kilobytes is no announcement: stop reading, count it as failed.
    connect(reply, &QNetworkReply::downloadProgress, reply, [reply](qint64 received, qint64) {
        if (received > maximumBody)
            reply->abort();
    });
    connect(reply, &QNetworkReply::finished, this, [reply, done = std::move(done)] {
        reply->deleteLater();
        const QByteArray body = reply->read(maximumBody + 1);
        if (reply->error() != QNetworkReply::NoError && reply->error() < QNetworkReply::ContentAccessDenied)
            return done({}, {}, reply->errorString());
        if (body.size() > maximumBody)
            return done({}, {}, QStringLiteral("update info is too long"));
        const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
        done(body, decodedBody(reply, body), status >= 400 ? QStringLiteral("HTTP status %1").arg(status) : QString());
    });
}

void UpdateChecker::fetchUpdateInfo(const QUrl &url, std::function<void(const UpdateInfo &)> completion,
                                    std::function<void(const QString &)> failed)
{
    const auto fail = [url, failed](const QString &why) {
        qCDebug(lcUpdate).noquote() << "No update information from" << url.toString() << why;
        if (failed)
            failed(why);
    };
    if (const QString refusal = m_refused.value(sourceOf(url)); !refusal.isEmpty()) {
        QTimer::singleShot(0, this, [fail, refusal] { fail(QStringLiteral("refused earlier: ") + refusal); });
        return;
    }
    if (const QString problem = trustProblem(); !problem.isEmpty()) {
        QTimer::singleShot(0, this, [fail, problem] { fail(problem); });
        return;
    }
    fetchSmall(url, [this, url, completion = std::move(completion), fail](const QByteArray &body, const QString &text, const QString &problem) {
        QString why;
        // The status plays no part: an answer that parses is an announcement.
        const auto info = body.isEmpty() && !problem.isEmpty() ? std::nullopt : parseUpdateInfo(text, &why);
        if (!info)
            return fail(body.isEmpty() && !problem.isEmpty() ? problem : why);
        // However it is signed: a date this far ahead would pin every later check.
        if (info->date > QDate::currentDate().addDays(maximumDaysAhead)) {
            const QString refusal = QStringLiteral("the announced date %1 is more than a year ahead").arg(info->date.toString(Qt::ISODate));
            refuseSource(url, QStringLiteral("the update information"), refusal);
            return fail(refusal);
        }
        if (!requiresSignatures())
            return completion(*info);
        const QUrl signatureUrl(url.toString() + SignedFiles::suffix);
        fetchSmall(signatureUrl, [this, url, info = *info, body, completion, fail](const QByteArray &signature, const QString &, const QString &problem) {
            const QString refusal = signature.isEmpty() || !problem.isEmpty()
                ? QStringLiteral("no signature (%1)").arg(problem.isEmpty() ? QStringLiteral("empty") : problem)
                : SignedFiles::check(signature, body.size(), QCryptographicHash::hash(body, QCryptographicHash::Sha256),
                                     {url.fileName(), info.date, std::nullopt}, m_trust.keys);
            if (!refusal.isEmpty()) {
                refuseSource(url, QStringLiteral("the update information"), refusal);
                return fail(refusal);
            }
            completion(info);
        });
    });
}

QString UpdateChecker::sourceOf(const QUrl &url) { return url.adjusted(QUrl::RemovePath | QUrl::RemoveQuery | QUrl::RemoveFragment | QUrl::RemoveUserInfo).toString(); }

void UpdateChecker::refuseSource(const QUrl &url, const QString &what, const QString &why)
{
    qCWarning(lcUpdate).noquote() << "Refused" << what << "from" << sourceOf(url) << "(" + url.toString() + "):" << why
                                  << "- that source is skipped until the app restarts";
    m_refused.insert(sourceOf(url), why);
}

bool UpdateChecker::isRefused(const QUrl &url) const { return m_refused.contains(sourceOf(url)); }

QStringList UpdateChecker::refusals() const
{
    QStringList list;
    for (auto it = m_refused.constBegin(); it != m_refused.constEnd(); ++it)
        list.append(it.key() + QStringLiteral(": ") + it.value());
    list.sort();
    return list;
}
