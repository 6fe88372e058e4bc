// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/Literals.h"

#include <array>

/// What goes beyond the program's own format rules, for who asks for it: all off until then. docs/extensions.md tells
/// what each departs from. It is read live: a change holds from the next use on.
struct Extensions
{
    bool https = false;   ///< "https://" is taken wherever "http://" is
    bool formats = false; ///< Atom 1.0, JSON Feed and the other versions of RSS are read
    bool repair = false;  ///< feeds with small faults are read
    bool pages = false;   ///< pages are in UTF-8, and relative addresses are made whole
    bool dates = false;   ///< the dates of items are read in all forms of their standards
};

/// A key of the file of extensions.
struct ExtensionKey
{
    QLatin1String name;
    bool Extensions::*isOn;
};

/// All of them, in the order in which they are offered.
inline constexpr std::array extensionKeys{
    ExtensionKey{"https"_L1, &Extensions::https},   ExtensionKey{"formats"_L1, &Extensions::formats},
    ExtensionKey{"repair"_L1, &Extensions::repair}, ExtensionKey{"pages"_L1, &Extensions::pages},
    ExtensionKey{"dates"_L1, &Extensions::dates},
};
