// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/net/RuntimeDirectory.h"

#include <QLocalServer>
#include <QObject>
#include <QPointer>
#include <QString>

class QLocalSocket;

/// The receiving end of the hand-over: the first instance listens here once its window can take a text. See
/// platform/net/HandOver.h for the sending end and for the form of what travels.
///
/// Any process of the user can connect, so that no sender is trusted: one that sends too much, too slowly or nothing
/// is cut off, holds nothing up meanwhile, and only a few can wait at once.
class InstanceServer : public QObject
{
    Q_OBJECT

public:
    /// The socket is "Quillwire3.0_APPLICATION" in `directory`; nobody but the user can reach it.
    explicit InstanceServer(const QString &directory = runtimeDirectory(), QObject *parent = nullptr);
    ~InstanceServer() override;

    /// Starts listening; a socket that a crashed process has left behind is replaced, so that the instance lock must
    /// be held. False when the socket can't be made.
    bool listen();

    /// Stops listening, and drops the senders that wait. Those that come later find no instance.
    void close();

    /// How long a sender may take until its text is complete, in milliseconds.
    void setSenderLimit(int milliseconds) { m_senderLimitMs = milliseconds; }

Q_SIGNALS:
    /// A second start has handed its command line over, unchanged and never empty, and the token by which the desktop
    /// lets a window come to the front ("" when it had none). The sender waits until the slots
    /// have returned. Slots run from the event loop of this object's thread, in nested loops too, and may throw.
    void textReceived(const QString &text, const QByteArray &activationToken);

    /// A second start without a command line: the window is only to come forward.
    void activationAsked(const QByteArray &activationToken);

private:
    void handleConnection();
    void handleBytes(QLocalSocket *socket);
    void deliver(const QPointer<QLocalSocket> &sender, const QByteArray &text, const QByteArray &token);

    QString m_path;
    QLocalServer m_server;
    int m_senderLimitMs = 5000;
};
