// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "engine/feed/FeedFormat.h"

/// What other namespaces say about an item, for fields that its format leaves empty: the first picture, sound or film
/// of the media namespace (Media RSS 1.5.1) for the enclosure, the author of the iTunes namespace for the author.
namespace MediaStandIns {

std::span<const FieldRow<ItemField>> fields();

} // namespace MediaStandIns
