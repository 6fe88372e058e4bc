// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/net/InstanceLock.h"

InstanceLock::InstanceLock(const QString &directory)
{
    if (directory.isEmpty())
        return;
    m_lock.emplace(directory + u"/Quillwire3.0_APPLICATION_MUTEX");
    // No age makes a lock stale, only the death of its process does.
    m_lock->setStaleLockTime(0);
}

bool InstanceLock::isFirstInstance()
{
    if (!m_lock || m_lock->isLocked())
        return true;
    if (m_lock->tryLock(0) || m_lock->error() != QLockFile::LockFailedError)
        return true;
    // What the file says (nothing, garbage, a number that was given to another process since) doesn't count. It goes
    // unless a living process holds the system's own lock on it.
    return m_lock->removeStaleLockFile() && m_lock->tryLock(0);
}

void InstanceLock::release()
{
    if (m_lock)
        m_lock->unlock();
}
