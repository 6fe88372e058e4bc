// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

#include <memory>

class CachedFeed;
class FeedCatalogue;
struct CurrentFeed;

/// Subscribes to `document` at `address`, in the folder that the tree's selection decides; the document becomes the one
/// on show. Without a document the feed on show is meant, if it was opened by address; otherwise nothing happens.
/// Throws as FeedCatalogue::addFeed().
void AddFeed(const std::shared_ptr<CachedFeed> &document, const QString &address, CurrentFeed &current,
             FeedCatalogue &catalogue);
