#pragma once

#include <QFile>
#include <QObject>
#include <QPointer>
#include <QTimer>
#include <QUrl>

#include <memory>

class QNetworkAccessManager;
#include <QNetworkReply>

// A download that outlives the process, as a phone's background transfer does. One task at a
// time: its body goes to a file in `directory`, and a small record beside it says what the task
// is. A task left running by a killed process is picked up by the next session of the same
// identifier and continues where the file ends, with "Range" and "If-Range" so that a file that
// changed on the server meanwhile starts again from zero. A connection lost mid-file is resumed
// the same way a few times before the task fails; the partial file is kept, and a later task for
// the same URL resumes from it.
//
// Every task is bounded: its body never grows past a cap (the signed size, or a hard cap), a
// connection that brings almost nothing for a while is a stall (a lost connection, resumed), a
// task ends after an overall deadline, and a server that sends the file from the start again
// and again, or a disk that fills, ends the task once with its partial file removed.
//
// Events, all on the session's thread, in the order a task produces them:
//   didWriteData       bytes arrived (so far, expected or -1), for an HTTP status 200..299 only
//   didFinishDownloading  the whole body is in `location`, with the response's status; the task
//                      is over already (a new one may start), and the file is deleted when the
//                      handler returns, so the handler moves what it wants to keep
//   didComplete        the task is over: `errorCode` 0, or a URL error code and its message
// The bounds of every task; tests shrink them, the defaults are what the app runs with.
struct TransferLimits {
    qint64 hardCapBytes = 512ll * 1024 * 1024; // the body's cap when no size is known
    int stallMilliseconds = 30'000;            // a window of this length...
    qint64 minimumBytesPerWindow = 4096;       // ...bringing fewer bytes than this is a stall
    qint64 overallMilliseconds = 4ll * 60 * 60 * 1000; // one task, resumes included
    int maximumResumes = 3;                    // lost connections resumed without real progress
    qint64 progressThatResetsResumes = 1024 * 1024;
    int maximumRestarts = 3;                   // times the server sends the file from its start again
};

class BackgroundSession : public QObject
{
    Q_OBJECT

public:
    // The URL error codes a task can end with, as the phone's platform numbers them.
    enum ErrorCode {
        Unknown = -1,
        Cancelled = -999,
        TimedOut = -1001,
        CannotFindHost = -1003,
        CannotConnectToHost = -1004,
        NetworkConnectionLost = -1005,
        NotConnectedToInternet = -1009,
        FileDoesNotExist = -1100,
        DataLengthExceedsMaximum = -1103,
        CannotWriteToFile = -3003,
    };

    BackgroundSession(const QString &identifier, const QString &directory, QObject *parent = nullptr);
    void setLimits(const TransferLimits &limits) { m_limits = limits; }
    const TransferLimits &limits() const { return m_limits; }
    ~BackgroundSession() override;

    // Continues the task an earlier process left running. Call once the handlers are connected.
    void resumePendingTask();
    // Starts a task for `url`, ending any other without an event. `size`, when known (signed),
    // is exactly what the body must be; otherwise the hard cap bounds it.
    void download(const QUrl &url, qint64 size = -1);
    // Ends the task with Cancelled and deletes its file.
    void cancelAll();
    bool isRunning() const { return m_reply || m_retry.isActive(); }
    // Running, or left by an earlier process and about to be resumed.
    bool hasTask() const;

signals:
    void didWriteData(qint64 written, qint64 expected);
    void didFinishDownloading(const QString &location, int status, bool isHttp);
    void didComplete(int errorCode, const QString &message);

private:
    struct Task;
    std::unique_ptr<Task> loadRecord() const;
    void start();
    void headersArrived();
    void readBody();
    void finished();
    void deliverFinished(int status, bool isHttp);
    void endTask();
    bool saveRecord() const;
    // Ends the task now with `code`; the partial file goes too unless it may be resumed later.
    void failTask(int code, QString message, bool keepPartial);
    // Aborts the reply under way; finished() then ends or resumes the task as `code` says.
    void abortReply(int code, const QString &message);
    void checkThroughput();
    qint64 cap() const;

    QString m_recordPath;
    QString m_bodyPath;
    QString m_finishedPath; // a complete body while its handler runs
    QNetworkAccessManager *m_manager;
    QPointer<QNetworkReply> m_reply;
    QFile m_body;
    QTimer m_retry;
    QTimer m_throughput;
    qint64 m_windowBytes = 0;
    int m_abortCode = 0; // why the reply under way was aborted by the session itself
    QString m_abortMessage;
    TransferLimits m_limits;
    std::unique_ptr<Task> m_task;
};
