// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "engine/feed/CachedFeed.h"

#include <QDate>
#include <QString>

/// The rules of a cache file: which items are new, which age out, which tombstones go.
namespace ItemStore {

/// True when `target` has an item with the title of item `index` of `source`. Titles are compared exactly, and nothing
/// else is: neither link nor date nor identifier. Linear in the target's items.
bool ItemExists(qint16 index, const CachedFeed &source, const CachedFeed &target);

/// Merges the items of `fresh` into `store`, in front, in the order of `fresh`, those whose titles `store` doesn't hold
/// yet (of two with one title the first), then retention, then clearing of the tombstones that `fresh` no longer lists.
/// What is left to do is to save `store`. Returns the number of new items. Linear in the items of both.
///
/// Retention runs only when `havecache` is "0"; it marks as deleted the items downloaded more than `updatecache` days
/// before `today`, unless that number is negative, and sets `havecache` to "1". Throws RunTimeError when `updatecache`
/// is no 16-bit number.
qint16 merge(const CachedFeed &fresh, CachedFeed &store, const QString &updatecache, QString &havecache, QDate today);

} // namespace ItemStore
