// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/feed/FeedFormat.h"
#include "platform/Literals.h"

extern const FeedFormat rdf10Format;

namespace {

bool isOwn(std::string_view name)
{
    return name.starts_with(NamespaceName::rss11);
}

FeedLoadResult recognise(const xmlNode *root)
{
    return viewOf(root->name) == "Channel" && isOwn(nameOf(root->ns)) ? LoadOk : LoadUnknownFormat;
}

QString writtenVersion(const xmlNode *)
{
    return u"1.1"_s; // by its namespace
}

} // namespace

/// RSS 1.1: RDF Site Summary 1.0 with the channel at the root, and the items in an element of it.
extern const FeedFormat rss11Format = [] {
    FeedFormat format = rdf10Format;
    format.version = OtherRss;
    format.isOwn = isOwn;
    format.ownNamespace = "http://purl.org/net/rss1.1#";
    format.channelName = nullptr;
    format.itemsName = "items";
    format.recognise = recognise;
    format.writtenVersion = writtenVersion;
    format.itemsChanged = nullptr;
    return format;
}();
