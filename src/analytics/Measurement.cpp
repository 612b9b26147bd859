#include "analytics/Measurement.h"

#include "analytics/BatchingDispatcher.h"
#include "platform/Logging.h"
#include "platform/Paths.h"
#include "platform/UserDefaults.h"

#include <QCoreApplication>
#include <QNetworkInformation>
#include <QSemaphore>
#include <QThread>
#include <QUuid>

#include <exception>

namespace {
Measurement *installed = nullptr;
Measurement *own = nullptr;
QUrl endpointOverride;
std::terminate_handler previousTerminate = nullptr;

// The command line's, else the environment's (how tests keep reports on this machine), else the
// deployment's.
QUrl endpoint(const UserDefaults &defaults)
{
    if (endpointOverride.isValid())
        return endpointOverride;
    if (const QString fromEnvironment = qEnvironmentVariable("VELMORA_ANALYTICS_URL"); !fromEnvironment.isEmpty())
        return QUrl(fromEnvironment);
    return QUrl(defaults.stringForKey(QStringLiteral("analytics-url")));
}

QString describeCurrentException()
{
    try {
        if (const std::exception_ptr current = std::current_exception())
            std::rethrow_exception(current);
    } catch (const std::exception &exception) {
        return QString::fromLocal8Bit(exception.what());
    } catch (...) {
        return QStringLiteral("unknown exception");
    }
    return QStringLiteral("terminated");
}

void reportTermination()
{
    Measurement &measurement = Measurement::sharedInstance();
    if (BatchingDispatcher *dispatcher = measurement.dispatcher(); dispatcher && QThread::currentThread() != dispatcher->thread()) {
        measurement.defaultTracker().send({{QStringLiteral("&t"), QStringLiteral("exception")},
                                           {QStringLiteral("&exd"), describeCurrentException().left(150)},
                                           {QStringLiteral("&exf"), QStringLiteral("1")}});
        // The hit was queued before this; once the measurement thread reaches this, it is stored.
        QSemaphore stored;
        QMetaObject::invokeMethod(dispatcher, [&stored] { stored.release(); }, Qt::QueuedConnection);
        stored.tryAcquire(1, 1000);
    }
    if (previousTerminate)
        previousTerminate();
    std::abort();
}
}

Measurement &Measurement::sharedInstance()
{
    if (installed)
        return *installed;
    if (!own) {
        own = new Measurement;
        // Gone before the application object, while its threads can still be stopped cleanly.
        qAddPostRoutine([] {
            delete own;
            own = nullptr;
        });
    }
    return *own;
}

void Measurement::setShared(Measurement *measurement) { installed = measurement; }

Measurement::Measurement()
    : m_tracker([this](const HitParameters &hit) { queueModel(hit); })
{
}

Measurement::~Measurement()
{
    if (!m_thread)
        return;
    BatchingDispatcher *dispatcher = m_dispatcher;
    m_dispatcher = nullptr;
    QMetaObject::invokeMethod(dispatcher, [dispatcher] { delete dispatcher; }, Qt::BlockingQueuedConnection);
    m_thread->quit();
    m_thread->wait();
    delete m_thread;
}

bool Measurement::start(const MeasurementConfiguration &configuration, QString *error)
{
    if (m_dispatcher) {
        *error = QStringLiteral("analytics already started");
        return false;
    }
    const QString scheme = configuration.endpoint.scheme();
    if (!configuration.endpoint.isValid() || configuration.endpoint.host().isEmpty()
        || (scheme != QLatin1String("http") && scheme != QLatin1String("https"))) {
        *error = QStringLiteral("no usable analytics endpoint (\"%1\")").arg(configuration.endpoint.toString());
        return false;
    }
    m_tracker.set(QStringLiteral("&tid"), configuration.trackingId);
    m_tracker.set(QStringLiteral("&cid"), configuration.clientId);
    // An endpoint without TLS (a collector on the local network) takes every hit in plain HTTP.
    if (scheme == QLatin1String("http"))
        m_tracker.set(QStringLiteral("useSecure"), QStringLiteral("0"));

    m_dispatcher = new BatchingDispatcher(configuration.storePath, configuration.endpoint);
    m_dispatcher->setDispatchInterval(configuration.dispatchInterval);
    m_dispatcher->setOptOut(m_optOut);
    m_thread = new QThread;
    m_thread->setObjectName(QStringLiteral("MeasurementThread"));
    m_dispatcher->moveToThread(m_thread);
    m_thread->start();
    m_dispatcher->setUp();
    return true;
}

void Measurement::watchReachability()
{
    if (!m_dispatcher || m_watchingReachability
        || !QNetworkInformation::loadBackendByFeatures(QNetworkInformation::Feature::Reachability))
        return;
    m_watchingReachability = true;
    BatchingDispatcher *dispatcher = m_dispatcher;
    connect(QNetworkInformation::instance(), &QNetworkInformation::reachabilityChanged, this,
            [dispatcher](QNetworkInformation::Reachability reachability) {
                dispatcher->setHostReachable(reachability != QNetworkInformation::Reachability::Disconnected);
            });
}

void Measurement::setOptOut(bool optOut)
{
    if (m_optOut == optOut)
        return;
    m_optOut = optOut;
    qCInfo(lcAnalytics) << (optOut ? "Analytics opted out" : "Analytics opted in");
    if (m_dispatcher)
        m_dispatcher->setOptOut(optOut);
    emit optOutChanged(optOut);
}

void Measurement::setTrackUncaughtExceptions(bool track)
{
    if (track && !previousTerminate)
        previousTerminate = std::set_terminate(reportTermination);
    else if (!track && previousTerminate)
        std::set_terminate(std::exchange(previousTerminate, nullptr));
}

void Measurement::queueModel(const HitParameters &hit)
{
    if (m_dispatcher)
        m_dispatcher->queueDispatch(hit);
}

void Measurement::dispatchAndWait(int timeoutMs)
{
    if (!m_dispatcher || m_optOut)
        return;
    auto answered = std::make_shared<QSemaphore>();
    m_dispatcher->dispatchWithCompletionHandler([answered](BatchingDispatcher::DispatchResult) { answered->release(); });
    answered->tryAcquire(1, timeoutMs);
}

MeasurementContext &MeasurementContext::sharedInstance()
{
    static MeasurementContext context;
    return context;
}

void MeasurementContext::setEndpointOverride(const QUrl &endpoint) { endpointOverride = endpoint; }

bool MeasurementContext::configureWithError(QString *error)
{
    UserDefaults &defaults = UserDefaults::standard();
    QString clientId = defaults.stringForKey(QStringLiteral("analytics-client-id"));
    if (clientId.isEmpty()) {
        // A random id, made once: it tells one device's hits apart and says nothing about it.
        clientId = QUuid::createUuid().toString(QUuid::WithoutBraces);
        defaults.setString(clientId, QStringLiteral("analytics-client-id"));
    }
    Measurement &measurement = Measurement::sharedInstance();
    TrackerImpl &tracker = measurement.defaultTracker();
    tracker.set(QStringLiteral("&v"), QStringLiteral("1"));
    tracker.set(QStringLiteral("&an"), QStringLiteral("Velmora"));
    tracker.set(QStringLiteral("&av"), QCoreApplication::applicationVersion());
    const MeasurementConfiguration configuration{
        endpoint(defaults),
        defaults.stringForKey(QStringLiteral("analytics-tracking-id")), clientId,
        Paths::applicationSupport() + QStringLiteral("/analytics/hits.sqlite"),
        defaults.doubleForKey(QStringLiteral("analytics-dispatch-interval"))};
    return measurement.start(configuration, error);
}
