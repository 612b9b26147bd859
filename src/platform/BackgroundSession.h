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
// Events, all on the session's thread, in the order a task produces them:
//   didWriteData       bytes arrived (so far, expected or -1), for an HTTP status 200..299 only
//   didFinishDownloading  the whole body is in `location`, with the response's status; the task
//                      is over already (a new one may start), and the file is deleted when the
//                      handler returns, so the handler moves what it wants to keep
//   didComplete        the task is over: `errorCode` 0, or a URL error code and its message
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
    };

    BackgroundSession(const QString &identifier, const QString &directory, QObject *parent = nullptr);
    ~BackgroundSession() override;

    // Continues the task an earlier process left running. Call once the handlers are connected.
    void resumePendingTask();
    // Starts a task for `url`, ending any other without an event.
    void download(const QUrl &url);
    // Ends the task with Cancelled and deletes its file.
    void cancelAll();
    bool isRunning() const { return m_reply || m_retry.isActive(); }

    // How often a lost connection is resumed before the task fails.
    static constexpr int maximumResumes = 3;

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

    QString m_recordPath;
    QString m_bodyPath;
    QString m_finishedPath; // a complete body while its handler runs
    QNetworkAccessManager *m_manager;
    QPointer<QNetworkReply> m_reply;
    QFile m_body;
    QTimer m_retry;
    std::unique_ptr<Task> m_task;
};
