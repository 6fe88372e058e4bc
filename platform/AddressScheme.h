// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/Literals.h"

#include <QString>

#include <array>

/// What becomes of an address, by its scheme: the one table of the browser pane and of what goes to the system.
/// Addresses come from feeds and pages, so that whatever isn't named here is refused.
namespace AddressScheme {

enum class Use {
    Pane,   ///< a page of the web: the pane goes there; the system's browser opens it too
    Feed,   ///< a feed's address: the pane asks whether to open it as one
    System, ///< another program's: it is handed to the system
    None
};

struct Entry
{
    QLatin1String scheme;
    Use use;
};

/// Those of the system are the ones that browsers hand over too: programs expect addresses of strangers there.
inline constexpr std::array<Entry, 19> table{{
    {"http"_L1, Use::Pane},     {"https"_L1, Use::Pane},    {"feed"_L1, Use::Feed},     {"mailto"_L1, Use::System},
    {"news"_L1, Use::System},   {"nntp"_L1, Use::System},   {"ftp"_L1, Use::System},    {"ftps"_L1, Use::System},
    {"tel"_L1, Use::System},    {"sms"_L1, Use::System},    {"callto"_L1, Use::System}, {"sip"_L1, Use::System},
    {"sips"_L1, Use::System},   {"xmpp"_L1, Use::System},   {"irc"_L1, Use::System},    {"ircs"_L1, Use::System},
    {"magnet"_L1, Use::System}, {"webcal"_L1, Use::System}, {"geo"_L1, Use::System},
}};

/// `scheme` is in lower case, as QUrl tells it.
inline Use useOf(const QString &scheme)
{
    for (const Entry &entry : table)
        if (scheme == entry.scheme)
            return entry.use;
    return Use::None;
}

} // namespace AddressScheme
