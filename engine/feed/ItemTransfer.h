// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "engine/feed/FormatReader.h"

#include <functional>

/// Items on their way into another document.
namespace ItemTransfer {

/// Puts an item element into its place in the tree.
using Enter = std::function<void(xmlNode *item)>;

/// A copy of an item of the same format, all that isn't known included, but without marks. What the copy says reads as
/// the original does, after the document was written and read again too. Null when the document has no room for it.
xmlNode *copy(const ItemElements &original, const FormatReader &reader, xmlNode *parent, const Enter &enter);

/// A new item that says the same in `format`, as far as that has a place for it. Null when the document has no room for
/// it, or when its addresses are too long for attributes.
xmlNode *convert(const ItemContent &content, const FeedFormat &format, xmlNode *parent, const Enter &enter);

} // namespace ItemTransfer
