// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/net/HandOver.h"

#include <QDeadlineTimer>
#include <QLocalSocket>
#include <QtEndian>

namespace {

QByteArray framed(const QByteArray &field)
{
    QByteArray frame(sizeof(quint32), '\0');
    qToBigEndian(static_cast<quint32>(field.size()), frame.data());
    return frame + field;
}

} // namespace

QString HandOverProtocol::socketPath(const QString &directory)
{
    return directory + u"/Quillwire3.0_APPLICATION";
}

HandOverResult handOver(const QString &commandLine, int timeoutMs, const QString &directory,
                        const QByteArray &activationToken)
{
    const QByteArray text = commandLine.toUtf8();
    if (directory.isEmpty() || text.size() > HandOverProtocol::MaxBytes)
        return HandOverResult::NoInstance;
    const bool isToken = activationToken.size() <= HandOverProtocol::MaxTokenBytes;
    const QByteArray frame = framed(text) + framed(isToken ? activationToken : QByteArray());

    const QDeadlineTimer deadline(timeoutMs);
    const auto left = [&deadline] { return static_cast<int>(deadline.remainingTime()); };
    QLocalSocket socket;
    socket.connectToServer(HandOverProtocol::socketPath(directory));
    if (!socket.waitForConnected(left()))
        return deadline.hasExpired() ? HandOverResult::TimedOut : HandOverResult::NoInstance;

    socket.write(frame);
    while (socket.bytesToWrite() > 0 || socket.bytesAvailable() == 0) {
        const bool moved =
            socket.bytesToWrite() > 0 ? socket.waitForBytesWritten(left()) : socket.waitForReadyRead(left());
        if (!moved)
            return deadline.hasExpired() ? HandOverResult::TimedOut : HandOverResult::NoInstance;
    }
    return socket.read(1) == QByteArray(1, HandOverProtocol::Acknowledged) ? HandOverResult::HandedOver
                                                                           : HandOverResult::NoInstance;
}
