#pragma once

#include <QDir>
#include <QHttpServer>
#include <QString>

#include <memory>
#include <optional>
#include <utility>

class ServiceAdvertiser;

// A byte range asked for with "Range: bytes=a-b" (one range; "a-" to the end, "-n" the last n
// bytes) within a file of `size` bytes: the first and last byte, or nothing if it can't be met.
std::optional<std::pair<qint64, qint64>> parseByteRange(const QByteArray &header, qint64 size);

// Serves a tree laid out by `publish` over HTTP on one port: GET and HEAD of its files, with
// single byte ranges answered 206 so that a transfer can resume, and, when asked, the DNS-SD
// announcement that lets apps on the local network find it.
class UpdateServer
{
public:
    explicit UpdateServer(const QString &directory);
    ~UpdateServer();

    // The port listened on (a free one for 0), or 0 with `error` set.
    quint16 listen(const QHostAddress &address, quint16 port, QString *error);
    bool advertise(const QString &name, int priority, QString *error);

private:
    QDir m_root;
    QHttpServer m_server;
    quint16 m_port = 0;
    std::unique_ptr<ServiceAdvertiser> m_advertiser;
};
