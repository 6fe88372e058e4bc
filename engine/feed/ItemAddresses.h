// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

#include <functional>

/// What becomes of the addresses of an item that say only a part of themselves, such as "/2004/pont".
class ItemAddresses
{
public:
    /// Tells the address that those of the item are relative to; "" when nothing tells.
    using Base = std::function<QString()>;

    ItemAddresses() = default;
    ItemAddresses(const ItemAddresses &) = delete;
    ItemAddresses &operator=(const ItemAddresses &) = delete;
    virtual ~ItemAddresses() = default;

    virtual QString address(const QString &written, const Base &base) const = 0;

    /// Likewise for the addresses in markup: links, pictures, sounds, frames. Those within the page ("#note") stay.
    virtual QString markup(const QString &written, const Base &base) const = 0;
};

/// They stay as they are written.
const ItemAddresses &writtenAddresses();

/// They are made whole.
const ItemAddresses &wholeAddresses();
