// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "engine/feed/FeedFormat.h"

/// What the formats of RSS 0.91 to 2.0 have in common.
namespace RssFamily {

/// None, or one that such documents were given as a default namespace, those of the RDF formats included.
bool isOwn(std::string_view name);

/// As FeedFormat::recognise, for a document element `rss` of that version.
FeedLoadResult recognise(const xmlNode *root, std::string_view version);

/// Adds `date` in the element that such a date belongs into: pubDate, or dc:date when it begins with a year.
void addDate(ItemWriter &item, const QString &date);

/// Adds source and enclosure.
void addSourceAndEnclosure(ItemWriter &item, const ItemContent &content);

} // namespace RssFamily
