#pragma once

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QPair>
#include <QPointer>
#include <QTimer>
#include <QUrl>

class QTcpSocket;

// One HTTP/1.1 request and the status of its answer, over a connection of its own: no retry, no
// redirect, no cache, no cookies. For a sender that must know whether the bytes it sent were
// answered: the general network stack silently sends a request again when its connection closes
// early, which would deliver the same data twice.
class HttpExchange : public QObject
{
    Q_OBJECT
public:
    struct Request {
        QByteArray method = "GET";
        QUrl url;                                   // http or https
        QList<QPair<QByteArray, QByteArray>> headers;
        QByteArray body;
        int timeoutMs = 30000;                      // for the whole exchange
    };

    explicit HttpExchange(Request request, QObject *parent = nullptr);
    ~HttpExchange() override;

    void start();
    // The answer's status code, once finished; 0 when no HTTP answer came (refused, cut, timed
    // out, or something that isn't HTTP).
    int status() const { return m_status; }
    QString errorString() const { return m_error; }

signals:
    // Exactly once per start.
    void finished();

private:
    void send();
    void read();
    void fail(const QString &why);
    void finish();

    Request m_request;
    QPointer<QTcpSocket> m_socket;
    QTimer m_deadline;
    QByteArray m_head;
    int m_status = 0;
    QString m_error;
    bool m_finished = false;
};
