// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/net/NetworkState.h"

#include <QNetworkInterface>

#include <algorithm>

namespace {

bool reachesBeyondItsLink(const QNetworkAddressEntry &entry)
{
    return !entry.ip().isLoopback() && !entry.ip().isLinkLocal();
}

bool isUsable(const QNetworkInterface &candidate)
{
    const QNetworkInterface::InterfaceFlags flags = candidate.flags();
    return flags.testFlag(QNetworkInterface::IsUp) && flags.testFlag(QNetworkInterface::IsRunning) &&
           !flags.testFlag(QNetworkInterface::IsLoopBack) &&
           std::ranges::any_of(candidate.addressEntries(), reachesBeyondItsLink);
}

} // namespace

bool isConnected()
{
    return std::ranges::any_of(QNetworkInterface::allInterfaces(), isUsable);
}
