// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/net/InstanceServer.h"

#include "platform/net/HandOver.h"

#include <QLocalSocket>
#include <QPointer>
#include <QTimer>
#include <QtEndian>

namespace {

constexpr int MaxSenders = 16;

} // namespace

InstanceServer::InstanceServer(const QString &directory, QObject *parent)
    : QObject(parent), m_path(directory.isEmpty() ? QString() : HandOverProtocol::socketPath(directory))
{
    m_server.setSocketOptions(QLocalServer::UserAccessOption);
    connect(&m_server, &QLocalServer::newConnection, this, &InstanceServer::handleConnection);
}

InstanceServer::~InstanceServer()
{
    close();
}

bool InstanceServer::listen()
{
    if (m_path.isEmpty())
        return false;
    if (m_server.isListening())
        return true;
    QLocalServer::removeServer(m_path);
    return m_server.listen(m_path);
}

void InstanceServer::close()
{
    m_server.close();
    const QList<QLocalSocket *> senders = m_server.findChildren<QLocalSocket *>(Qt::FindDirectChildrenOnly);
    for (QLocalSocket *sender : senders) {
        sender->disconnect(this);
        sender->abort();
        sender->deleteLater();
    }
}

void InstanceServer::handleConnection()
{
    while (QLocalSocket *socket = m_server.nextPendingConnection()) {
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        if (m_server.findChildren<QLocalSocket *>(Qt::FindDirectChildrenOnly).size() > MaxSenders) {
            socket->abort();
            continue;
        }
        socket->setReadBufferSize(sizeof(quint32) + HandOverProtocol::MaxBytes);
        connect(socket, &QLocalSocket::readyRead, this, [this, socket] { handleBytes(socket); });
        QTimer *const limit = new QTimer(socket);
        limit->setSingleShot(true);
        connect(limit, &QTimer::timeout, socket, &QLocalSocket::abort);
        limit->start(m_senderLimitMs);
        handleBytes(socket);
    }
}

void InstanceServer::handleBytes(QLocalSocket *socket)
{
    constexpr qint64 HeadSize = sizeof(quint32);
    if (socket->bytesAvailable() < HeadSize)
        return;
    const quint32 size = qFromBigEndian<quint32>(socket->peek(HeadSize).constData());
    if (size > HandOverProtocol::MaxBytes) {
        socket->abort();
        return;
    }
    if (socket->bytesAvailable() < HeadSize + size)
        return;
    socket->skip(HeadSize);
    const QByteArray bytes = socket->read(size);

    // From here on the sender waits for us, and not the other way round.
    socket->disconnect(this);
    delete socket->findChild<QTimer *>();
    // The slots may throw, which must not pass through the socket's own code.
    QMetaObject::invokeMethod(
        this, [this, sender = QPointer<QLocalSocket>(socket), bytes] { deliver(sender, bytes); }, Qt::QueuedConnection);
}

void InstanceServer::deliver(const QPointer<QLocalSocket> &sender, const QByteArray &bytes)
{
    if (!m_server.isListening())
        return;
    const QPointer<InstanceServer> self(this);
    if (bytes.isEmpty())
        Q_EMIT activationAsked();
    else
        Q_EMIT textReceived(QString::fromUtf8(bytes));
    if (!self || !sender)
        return;
    sender->putChar(HandOverProtocol::Acknowledged);
    sender->disconnectFromServer();
}
