// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/net/InstanceServer.h"

#include "platform/net/HandOver.h"

#include <QLocalSocket>
#include <QPointer>
#include <QTimer>
#include <QtEndian>

namespace {

constexpr int MaxSenders = 16;
constexpr qsizetype headSize = sizeof(quint32);
constexpr qint64 largestFrame = 2 * headSize + HandOverProtocol::MaxBytes + HandOverProtocol::MaxTokenBytes;

/// What stands in a frame from some place on: a length and as many bytes.
struct Field
{
    enum State { Incomplete, TooLong, Complete } state;
    QByteArray bytes = {};
    qsizetype end = 0; ///< where the next one begins
};

Field fieldAt(const QByteArray &frame, qsizetype start, quint32 longest)
{
    const qsizetype begin = start + headSize;
    if (frame.size() < begin)
        return {Field::Incomplete};
    const auto size = qFromBigEndian<quint32>(frame.constData() + start);
    if (size > longest)
        return {Field::TooLong};
    if (frame.size() < begin + size)
        return {Field::Incomplete};
    return {Field::Complete, frame.mid(begin, size), begin + size};
}

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
        socket->setReadBufferSize(largestFrame);
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
    const QByteArray all = socket->peek(largestFrame);
    const Field text = fieldAt(all, 0, HandOverProtocol::MaxBytes);
    const Field token = text.state == Field::Complete ? fieldAt(all, text.end, HandOverProtocol::MaxTokenBytes) : text;
    if (token.state == Field::TooLong)
        socket->abort();
    if (token.state != Field::Complete)
        return;
    socket->skip(token.end);

    // From here on the sender waits for us, and not the other way round.
    socket->disconnect(this);
    delete socket->findChild<QTimer *>();
    // The slots may throw, which must not pass through the socket's own code.
    QMetaObject::invokeMethod(
        this,
        [this, sender = QPointer<QLocalSocket>(socket), text = text.bytes, token = token.bytes] {
            deliver(sender, text, token);
        },
        Qt::QueuedConnection);
}

void InstanceServer::deliver(const QPointer<QLocalSocket> &sender, const QByteArray &text, const QByteArray &token)
{
    if (!m_server.isListening())
        return;
    const QPointer<InstanceServer> self(this);
    if (text.isEmpty())
        Q_EMIT activationAsked(token);
    else
        Q_EMIT textReceived(QString::fromUtf8(text), token);
    if (!self || !sender)
        return;
    sender->putChar(HandOverProtocol::Acknowledged);
    sender->disconnectFromServer();
}
