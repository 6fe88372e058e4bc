#pragma once

#include "engine/feed/FeedFormat.h"

#include <functional>

/// Items on their way into another document.
namespace ItemTransfer {

/// Puts an item element into its place in the tree.
using Enter = std::function<void(xmlNode *item)>;

/// A copy of an item of the same format, all that isn't known included, but without marks. `original` are the item's
/// elements, `itsChannel` those of the channel it comes from. What the copy says reads as the original does, after the
/// document was written and read again too.
xmlNode *copy(const xmlNode *item, const FeedFormat &format, const ChildElements &original,
              const ChildElements &itsChannel, xmlNode *parent, const Enter &enter);

/// A new item that says the same in `format`, as far as that has a place for it.
xmlNode *convert(const ItemContent &content, const FeedFormat &format, xmlNode *parent, const Enter &enter);

} // namespace ItemTransfer
