// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/RegistryStore.h"

qint32 RegistryStore::connect(const QString &, qint32, qint32 &)
{
    return RegistryResult::BadNetworkPath;
}
