// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/net/RuntimeDirectory.h"

#include <QString>

/// The hand-over of a second start's command line to the first instance.
///
/// What travels over the socket: the length of the text in bytes (32 bits, high byte first), then the text in UTF-8;
/// likewise the token by which the desktop lets a window come to the front, which may be empty; then one byte back,
/// HandOverProtocol::Acknowledged, once the first instance has dealt with it.
namespace HandOverProtocol {

inline constexpr quint32 MaxBytes = 1024 * 1024;
inline constexpr quint32 MaxTokenBytes = 1024;
inline constexpr int TimeoutMs = 5000;
inline constexpr char Acknowledged = 6;

/// The path of the socket in that directory.
QString socketPath(const QString &directory);

} // namespace HandOverProtocol

enum class HandOverResult {
    HandedOver, ///< the first instance has dealt with the text
    NoInstance, ///< nobody listens (or the one who did broke off)
    TimedOut,   ///< the time ran out; the first instance may still deal with the text
};

/// Hands `commandLine` over, unchanged; an empty one asks the first instance to come forward. Blocks for `timeoutMs` at
/// most, and runs no event loop. A text longer than HandOverProtocol::MaxBytes in UTF-8 isn't taken: NoInstance.
/// `activationToken` is what the desktop gave this start so that its window may come to the front; one that is longer
/// than any real one is left out.
HandOverResult handOver(const QString &commandLine, int timeoutMs = HandOverProtocol::TimeoutMs,
                        const QString &directory = runtimeDirectory(), const QByteArray &activationToken = {});
