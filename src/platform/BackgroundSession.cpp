#include "platform/BackgroundSession.h"

#include "platform/DurableFiles.h"
#include "platform/FaultInjection.h"
#include "platform/Logging.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QRegularExpression>

struct BackgroundSession::Task {
    QUrl url;
    QByteArray etag;
    QByteArray lastModified;
    qint64 expected = -1; // the whole body's size, when the server said
    int status = 0;
    bool isHttp = false;
    qint64 size = -1;      // the signed size the body must have; -1 when unknown
    qint64 startedMs = 0;  // when the task began, for its overall deadline
    int resumes = 0;       // lost connections resumed since the file last grew well
    qint64 resumedAt = 0;  // the file's size at the last resume
    int restarts = 0;      // times the server sent the file from its start again
    qint64 offset = 0;     // where the body of the reply under way starts in the file
};

namespace {

// What the network thread may hold for the session at a time (see start()).
constexpr qint64 readChunkBytes = 1024 * 1024;

int urlErrorCode(QNetworkReply::NetworkError error)
{
    switch (error) {
    case QNetworkReply::OperationCanceledError: return BackgroundSession::Cancelled;
    case QNetworkReply::TimeoutError: return BackgroundSession::TimedOut;
    case QNetworkReply::HostNotFoundError: return BackgroundSession::CannotFindHost;
    case QNetworkReply::ConnectionRefusedError: return BackgroundSession::CannotConnectToHost;
    case QNetworkReply::RemoteHostClosedError:
    case QNetworkReply::ProtocolFailure: return BackgroundSession::NetworkConnectionLost;
    case QNetworkReply::TemporaryNetworkFailureError:
    case QNetworkReply::NetworkSessionFailedError: return BackgroundSession::NotConnectedToInternet;
    case QNetworkReply::ContentNotFoundError: return BackgroundSession::FileDoesNotExist;
    default: return BackgroundSession::Unknown;
    }
}

// Worth resuming: the connection went, the server didn't refuse.
bool isLostConnection(int code)
{
    return code == BackgroundSession::NetworkConnectionLost || code == BackgroundSession::TimedOut
           || code == BackgroundSession::NotConnectedToInternet || code == BackgroundSession::CannotConnectToHost;
}

// "bytes 100-199/1000": where the part starts and the whole's size (-1 for "*").
std::optional<std::pair<qint64, qint64>> contentRange(const QByteArray &header)
{
    static const QRegularExpression pattern(QStringLiteral("^bytes (\\d+)-\\d+/(\\d+|\\*)$"));
    const auto match = pattern.match(QString::fromLatin1(header.trimmed()));
    if (!match.hasMatch())
        return std::nullopt;
    const QString total = match.captured(2);
    return std::make_pair(match.captured(1).toLongLong(), total == QLatin1String("*") ? -1 : total.toLongLong());
}
}

BackgroundSession::BackgroundSession(const QString &identifier, const QString &directory, QObject *parent)
    : QObject(parent)
    , m_recordPath(QDir(directory).filePath(identifier + QStringLiteral(".task")))
    , m_bodyPath(QDir(directory).filePath(identifier + QStringLiteral(".download")))
    , m_finishedPath(QDir(directory).filePath(identifier + QStringLiteral(".finished")))
    , m_manager(new QNetworkAccessManager(this))
{
    // A body whose handler was cut short by the end of the process is of no use to anyone.
    QFile::remove(m_finishedPath);
    m_retry.setSingleShot(true);
    connect(&m_retry, &QTimer::timeout, this, &BackgroundSession::start);
    connect(&m_throughput, &QTimer::timeout, this, &BackgroundSession::checkThroughput);
}

BackgroundSession::~BackgroundSession()
{
    // The record stays: the next process picks the task up.
    if (m_reply) {
        m_reply->disconnect(this);
        m_reply->abort();
    }
}

bool BackgroundSession::saveRecord() const
{
    const QJsonObject record{
        {QStringLiteral("url"), m_task->url.toString()},
        {QStringLiteral("etag"), QString::fromLatin1(m_task->etag)},
        {QStringLiteral("last-modified"), QString::fromLatin1(m_task->lastModified)},
        {QStringLiteral("expected"), m_task->expected},
        {QStringLiteral("status"), m_task->status},
        {QStringLiteral("http"), m_task->isHttp},
        {QStringLiteral("size"), m_task->size},
        {QStringLiteral("started"), m_task->startedMs},
        {QStringLiteral("restarts"), m_task->restarts},
    };
    QString error;
    if (!DurableFiles::writeFile(m_recordPath, QJsonDocument(record).toJson(QJsonDocument::Compact), &error)) {
        qCWarning(lcUpdate).noquote() << "Transfer record not written:" << error;
        return false;
    }
    return true;
}

std::unique_ptr<BackgroundSession::Task> BackgroundSession::loadRecord() const
{
    QFile file(m_recordPath);
    if (!file.open(QIODevice::ReadOnly))
        return nullptr;
    const QJsonObject record = QJsonDocument::fromJson(file.readAll()).object();
    auto task = std::make_unique<Task>();
    task->url = QUrl(record.value(QStringLiteral("url")).toString());
    task->etag = record.value(QStringLiteral("etag")).toString().toLatin1();
    task->lastModified = record.value(QStringLiteral("last-modified")).toString().toLatin1();
    task->expected = qint64(record.value(QStringLiteral("expected")).toDouble(-1));
    task->status = record.value(QStringLiteral("status")).toInt();
    task->isHttp = record.value(QStringLiteral("http")).toBool();
    task->size = qint64(record.value(QStringLiteral("size")).toDouble(-1));
    task->startedMs = qint64(record.value(QStringLiteral("started")).toDouble(0));
    task->restarts = record.value(QStringLiteral("restarts")).toInt();
    return task->url.isValid() ? std::move(task) : nullptr;
}

bool BackgroundSession::hasTask() const { return isRunning() || (!m_task && loadRecord() != nullptr); }

void BackgroundSession::resumePendingTask()
{
    if (m_task)
        return;
    m_task = loadRecord();
    if (!m_task) {
        QFile::remove(m_recordPath);
        return;
    }
    qCInfo(lcUpdate).noquote() << "Resuming the transfer of" << m_task->url.toString() << "at" << QFileInfo(m_bodyPath).size() << "bytes";
    start();
}

void BackgroundSession::download(const QUrl &url, qint64 size)
{
    if (m_reply) {
        m_reply->disconnect(this);
        m_reply->abort();
        m_reply->deleteLater();
    }
    m_retry.stop();
    m_body.close();
    // A partial file of the same URL, from this run or an earlier one, is resumed; of another, it goes.
    if (!m_task)
        m_task = loadRecord();
    if (!m_task || m_task->url != url || m_task->size != size) {
        QFile::remove(m_bodyPath);
        m_task = std::make_unique<Task>();
        m_task->url = url;
        m_task->size = size;
    }
    // A new request: its own deadline and counts, whatever an earlier one spent.
    m_task->startedMs = QDateTime::currentMSecsSinceEpoch();
    m_task->resumes = 0;
    m_task->restarts = 0;
    m_task->resumedAt = QFileInfo(m_bodyPath).size();
    saveRecord();
    start();
}

qint64 BackgroundSession::cap() const { return m_task && m_task->size >= 0 ? m_task->size : m_limits.hardCapBytes; }

void BackgroundSession::start()
{
    if (m_task->startedMs > 0 && QDateTime::currentMSecsSinceEpoch() - m_task->startedMs > m_limits.overallMilliseconds)
        return failTask(TimedOut, QStringLiteral("the transfer took longer than allowed"), true);
    const qint64 have = QFileInfo(m_bodyPath).size();
    QNetworkRequest request(m_task->url);
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
    request.setAttribute(QNetworkRequest::CacheSaveControlAttribute, false);
    request.setMaximumRedirectsAllowed(5);
    // No transfer time-out of the network stack's: it ends a reply as if the user had cancelled
    // it. The throughput check below calls a stall what it is, a lost connection.
    request.setRawHeader("Accept-Encoding", "identity");
    const QByteArray validator = !m_task->etag.isEmpty() && !m_task->etag.startsWith("W/") ? m_task->etag : m_task->lastModified;
    m_task->offset = 0;
    m_task->isHttp = false;
    m_task->status = 0;
    if (have > 0 && !validator.isEmpty()) {
        request.setRawHeader("Range", "bytes=" + QByteArray::number(have) + '-');
        request.setRawHeader("If-Range", validator);
        m_task->offset = have;
    } else if (have > 0 && ++m_task->restarts > m_limits.maximumRestarts) {
        // Nothing to resume by: each try fetches the whole file again, and that is counted.
        return failTask(NetworkConnectionLost, QStringLiteral("the server keeps sending the file from its start"), false);
    }
    m_abortCode = 0;
    m_abortMessage.clear();
    m_windowBytes = 0;
    m_throughput.start(m_limits.stallMilliseconds);
    m_reply = m_manager->get(request);
    // The network thread holds at most this much for the session's thread at a time: a fast
    // network would otherwise hand over tens of megabytes to write in one go.
    m_reply->setReadBufferSize(readChunkBytes);
    connect(m_reply, &QNetworkReply::metaDataChanged, this, &BackgroundSession::headersArrived);
    connect(m_reply, &QNetworkReply::readyRead, this, &BackgroundSession::readBody);
    connect(m_reply, &QNetworkReply::finished, this, &BackgroundSession::finished);
}

void BackgroundSession::headersArrived()
{
    const QVariant status = m_reply->attribute(QNetworkRequest::HttpStatusCodeAttribute);
    m_task->isHttp = status.isValid();
    m_task->status = status.toInt();
    qint64 partStart = 0;
    qint64 expected = m_reply->header(QNetworkRequest::ContentLengthHeader).isValid()
                          ? m_reply->header(QNetworkRequest::ContentLengthHeader).toLongLong()
                          : -1;
    if (m_task->status == 416 && m_task->offset > 0) {
        // Nothing lies beyond what the file holds: it is whole if that is the size the server
        // gave before, and otherwise starts again.
        const bool whole = m_task->expected == m_task->offset;
        m_reply->disconnect(this);
        m_reply->abort();
        m_reply->deleteLater();
        m_reply = nullptr;
        if (whole) {
            m_task->isHttp = true;
            deliverFinished(200, true);
            return;
        }
        if (++m_task->restarts > m_limits.maximumRestarts)
            return failTask(NetworkConnectionLost, QStringLiteral("the server keeps sending the file from its start"), false);
        QFile::remove(m_bodyPath);
        m_task->etag.clear();
        m_task->lastModified.clear();
        start();
        return;
    }
    if (m_task->status == 206) {
        const auto range = contentRange(m_reply->rawHeader("Content-Range"));
        // A part that doesn't start where the file ends can't be appended: start again.
        if (!range || range->first != m_task->offset) {
            qCWarning(lcUpdate) << "Unusable partial answer; starting the transfer again";
            m_reply->disconnect(this);
            m_reply->abort();
            m_reply->deleteLater();
            m_reply = nullptr;
            if (++m_task->restarts > m_limits.maximumRestarts)
                return failTask(NetworkConnectionLost, QStringLiteral("the server keeps sending the file from its start"), false);
            QFile::remove(m_bodyPath);
            m_task->etag.clear();
            m_task->lastModified.clear();
            start();
            return;
        }
        partStart = range->first;
        expected = range->second;
        m_task->status = 200; // the whole body, once this part is appended
    } else if (m_task->offset > 0) {
        qCInfo(lcUpdate) << "The file changed on the server: the transfer starts again from zero";
        if (++m_task->restarts > m_limits.maximumRestarts) {
            m_task->offset = 0;
            return abortReply(NetworkConnectionLost, QStringLiteral("the server keeps sending the file from its start"));
        }
    }
    // Known too big before a byte is kept: the signed size, or the cap, says no.
    const bool success = m_task->isHttp && m_task->status >= 200 && m_task->status <= 299;
    if (success && expected >= 0 && (expected > cap() || (m_task->size >= 0 && expected != m_task->size))) {
        m_task->offset = 0;
        return abortReply(DataLengthExceedsMaximum,
                          QStringLiteral("the server announces %1 bytes where %2 are allowed").arg(expected).arg(cap()));
    }
    m_task->offset = partStart;
    m_task->expected = expected;
    m_task->etag = m_reply->rawHeader("ETag");
    m_task->lastModified = m_reply->rawHeader("Last-Modified");
    m_body.close();
    m_body.setFileName(m_bodyPath);
    if (!m_body.open(partStart > 0 ? QIODevice::Append : QIODevice::WriteOnly | QIODevice::Truncate))
        qCWarning(lcUpdate).noquote() << "Can't write" << m_bodyPath << m_body.errorString();
    saveRecord();
}

void BackgroundSession::readBody()
{
    if (!m_body.isOpen())
        headersArrived(); // not every scheme announces its headers
    if (!m_body.isOpen() || !m_reply)
        return;
    const bool success = m_task->isHttp && m_task->status >= 200 && m_task->status <= 299;
    // An error page is read whole only up to a modest size; a body up to the cap.
    const qint64 limit = success ? cap() : 64 * 1024;
    const QByteArray bytes = m_reply->read(qMax<qint64>(0, limit - m_body.size()) + 1);
    if (bytes.isEmpty())
        return;
    if (m_body.size() + bytes.size() > limit)
        return abortReply(DataLengthExceedsMaximum, QStringLiteral("the body goes past the %1 bytes allowed").arg(limit));
    if (m_body.write(bytes) != bytes.size() || !m_body.flush())
        return abortReply(CannotWriteToFile, QStringLiteral("the download can't be stored: ") + m_body.errorString());
    m_windowBytes += bytes.size();
    if (m_body.size() - m_task->resumedAt >= m_limits.progressThatResetsResumes)
        m_task->resumes = 0;
    crashPoint("transfer-data");
    if (m_task->isHttp && m_task->status >= 200 && m_task->status <= 299)
        emit didWriteData(m_body.size(), m_task->expected);
}

void BackgroundSession::finished()
{
    QNetworkReply *reply = m_reply;
    reply->deleteLater();
    if (reply->bytesAvailable() > 0 && !m_abortCode)
        readBody();
    // Headers seen only now may have ended the task or started it afresh: nothing more to do here.
    if (m_reply != reply)
        return;
    m_reply = nullptr;
    m_throughput.stop();
    const qint64 have = m_body.isOpen() ? m_body.size() : QFileInfo(m_bodyPath).size();
    m_body.close();

    // Too big, the disk full, or sent from the start once too often: a second try ends the
    // same way, so the task ends here and its partial file goes.
    if (const int aborted = std::exchange(m_abortCode, 0))
        return failTask(aborted, m_abortMessage, false);
    int code = reply->error() == QNetworkReply::NoError ? 0 : urlErrorCode(reply->error());
    if (m_abortMessage.size() && code == Cancelled)
        code = TimedOut;
    const QString errorText = code == TimedOut && !m_abortMessage.isEmpty() ? std::exchange(m_abortMessage, QString()) : reply->errorString();
    // An HTTP answer with an error status is still a finished download; only transport faults fail.
    if (m_task->isHttp && reply->error() > QNetworkReply::UnknownProxyError)
        code = 0;
    // A body shorter than announced is a lost connection, however the socket closed.
    if (code == 0 && m_task->isHttp && m_task->status == 200 && m_task->expected >= 0 && have < m_task->expected)
        code = NetworkConnectionLost;
    if (code != 0) {
        if (isLostConnection(code) && m_task->resumes < m_limits.maximumResumes) {
            ++m_task->resumes;
            m_task->resumedAt = have;
            qCInfo(lcUpdate).noquote() << "Transfer interrupted at" << have << "bytes:" << errorText << "- resuming";
            m_retry.start(500 * (1 << m_task->resumes));
            return;
        }
        // The partial file and its record stay for a later task of the same URL.
        return failTask(code, errorText, true);
    }
    // The signed size is the whole body: anything else is no use (a short body resumes above).
    if (m_task->size >= 0 && m_task->isHttp && m_task->status == 200 && have != m_task->size)
        return failTask(DataLengthExceedsMaximum, QStringLiteral("the body has %1 bytes, not the %2 signed").arg(have).arg(m_task->size), false);
    deliverFinished(m_task->status, m_task->isHttp);
}

void BackgroundSession::deliverFinished(int status, bool isHttp)
{
    // The task is over before its handler runs: the body leaves the transfer's name and the
    // record goes, so that the handler may start the next task at once, and a process killed
    // in the handler leaves no task behind (the update is simply asked for again).
    crashPoint("transfer-finished");
    QFile::remove(m_finishedPath);
    QFile::rename(m_bodyPath, m_finishedPath);
    QFile::remove(m_recordPath);
    m_task.reset();
    emit didFinishDownloading(m_finishedPath, status, isHttp);
    QFile::remove(m_finishedPath);
    emit didComplete(0, QString());
}

void BackgroundSession::abortReply(int code, const QString &message)
{
    m_abortCode = code;
    m_abortMessage = message;
    qCWarning(lcUpdate).noquote() << "Transfer of" << m_task->url.toString() << "stopped:" << message;
    if (m_reply)
        m_reply->abort(); // finished() follows and ends the task
}

void BackgroundSession::checkThroughput()
{
    if (!m_reply) {
        m_throughput.stop();
        return;
    }
    // A trickle is a stall: ended as the lost connection it is, and resumed from where it got.
    if (m_windowBytes < m_limits.minimumBytesPerWindow) {
        m_abortCode = 0;
        m_abortMessage = QStringLiteral("the connection stalled (%1 bytes in %2 ms)").arg(m_windowBytes).arg(m_limits.stallMilliseconds);
        qCInfo(lcUpdate).noquote() << "Transfer of" << m_task->url.toString() << m_abortMessage;
        m_reply->abort();
        return;
    }
    m_windowBytes = 0;
}

void BackgroundSession::failTask(int code, QString message, bool keepPartial)
{
    m_retry.stop();
    m_throughput.stop();
    m_abortMessage.clear();
    if (m_reply) {
        m_reply->disconnect(this);
        m_reply->abort();
        m_reply->deleteLater();
        m_reply = nullptr;
    }
    m_body.close();
    qCWarning(lcUpdate).noquote() << "Transfer of" << m_task->url.toString() << "failed:" << message;
    if (keepPartial)
        saveRecord();
    else
        endTask();
    emit didComplete(code, message);
}

void BackgroundSession::endTask()
{
    QFile::remove(m_bodyPath);
    QFile::remove(m_recordPath);
    m_task.reset();
}

void BackgroundSession::cancelAll()
{
    m_retry.stop();
    m_throughput.stop();
    m_abortCode = 0;
    m_abortMessage.clear();
    if (m_reply) {
        m_reply->disconnect(this);
        m_reply->abort();
        m_reply->deleteLater();
    }
    m_body.close();
    const bool hadTask = m_task != nullptr;
    endTask();
    if (hadTask)
        emit didComplete(Cancelled, QStringLiteral("cancelled"));
}
