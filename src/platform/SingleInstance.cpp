#include "SingleInstance.h"

#include "Logging.h"

#include <QCryptographicHash>
#include <QDir>
#include <QLocalSocket>
#include <QPointer>

#include <unistd.h>

namespace {
// A message is its UTF-8 bytes and a newline; the receiver answers "ok\n" once it has it.
constexpr char ack[] = "ok\n";
}

SingleInstance::SingleInstance(const QString &home, QObject *parent)
    : QObject(parent)
{
    const QByteArray key = QString::number(::getuid()).toUtf8() + '\0' + QDir(home).absolutePath().toUtf8();
    m_name = QStringLiteral("velmora-") + QString::fromLatin1(QCryptographicHash::hash(key, QCryptographicHash::Sha256).toHex().left(16));
    connect(&m_server, &QLocalServer::newConnection, this, [this] {
        while (QLocalSocket *socket = m_server.nextPendingConnection()) {
            connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
            connect(socket, &QLocalSocket::readyRead, this, [this, socket = QPointer<QLocalSocket>(socket)] {
                if (!socket)
                    return;
                if (!socket->canReadLine()) {
                    if (socket->bytesAvailable() > maxMessageBytes)
                        socket->abort();
                    return;
                }
                const QString message = QString::fromUtf8(socket->readLine(maxMessageBytes + 2)).trimmed();
                socket->write(ack);
                socket->disconnectFromServer();
                emit messageReceived(message);
            });
        }
    });
}

bool SingleInstance::handOver(const QString &message, int timeoutMs)
{
    QLocalSocket socket;
    socket.connectToServer(m_name);
    if (!socket.waitForConnected(timeoutMs))
        return false;
    socket.write(message.left(maxMessageBytes).toUtf8() + '\n');
    if (!socket.waitForBytesWritten(timeoutMs))
        return false;
    QByteArray answer;
    while (!answer.contains('\n') && socket.waitForReadyRead(timeoutMs))
        answer += socket.readAll();
    return answer.startsWith("ok");
}

bool SingleInstance::listen()
{
    m_server.setSocketOptions(QLocalServer::UserAccessOption);
    if (m_server.listen(m_name))
        return true;
    // No one answered handOver, so a socket left by a process that died is stale: take it over.
    QLocalServer::removeServer(m_name);
    if (m_server.listen(m_name))
        return true;
    qCWarning(lcPlatform).noquote() << "Can't take links from other starts:" << m_server.errorString();
    return false;
}
