// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/net/RuntimeDirectory.h"

#include <QLockFile>
#include <QString>

#include <optional>

/// The lock that makes sure that only one instance of the program lives in a session of the user. It is taken first,
/// held for life and never waited on. One that no living process holds is taken over, whatever it says.
class InstanceLock
{
public:
    /// The lock is the file "Quillwire3.0_APPLICATION_MUTEX" in `directory`. Nothing is taken yet.
    explicit InstanceLock(const QString &directory = runtimeDirectory());

    /// Takes the lock; true when this process holds it now. False only when another living process holds it: where
    /// the file can't be made at all the answer is true, as a program that never starts would be worse than two.
    bool isFirstInstance();

    /// Gives the lock back. Does nothing when it isn't held. The destructor does the same.
    void release();

private:
    std::optional<QLockFile> m_lock;
};
