// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/feed/ElementText.h"
#include "engine/feed/RssFamily.h"
#include "platform/Literals.h"

#include <algorithm>
#include <iterator>

extern const FeedFormat rss20Format;

namespace {

/// 0.93 and 0.94 were drafts on the way to 2.0; 2.01 and 2.1 are 2.0 under other numbers, and so is what tells none.
FeedLoadResult recognise(const xmlNode *root)
{
    constexpr std::string_view versions[] = {"", "0.93", "0.94", "2.01", "2.1"};
    const std::string version = attributeOf(root, "version").toStdString();
    const bool isKnown = std::find(std::begin(versions), std::end(versions), version) != std::end(versions);
    return RssFamily::recognise(root, isKnown ? version : std::string("2.01"));
}

QString writtenVersion(const xmlNode *root)
{
    return attributeOf(root, "version");
}

} // namespace

/// The other versions of RSS, read and written as RSS 2.0.
extern const FeedFormat otherRssFormat = [] {
    FeedFormat format = rss20Format;
    format.version = OtherRss;
    format.recognise = recognise;
    format.writtenVersion = writtenVersion;
    return format;
}();
