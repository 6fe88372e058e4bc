// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

#include <libxml/tree.h>

/// What relative addresses stand for (XML Base).
namespace BaseAddress {

/// The address that those in `element` are relative to, as it and the elements around it say by xml:base; "" when they
/// say none.
QString of(const xmlNode *element);

/// `address` resolved against `base`; as it stands where it is absolute or no address, and where `base` is none.
QString resolvedAgainst(const QString &base, const QString &address);

/// `address` as an element says it, resolved against the element's base; as it stands where there is none, and where it
/// is an absolute one or none at all.
QString resolved(const xmlNode *element, const QString &address);

} // namespace BaseAddress
