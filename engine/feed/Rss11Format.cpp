// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/feed/FormatReader.h"
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

using From::dc;
using From::own;
using Readings::childText;

constexpr FieldRow<ChannelField> channelFields[] = {
    {ChannelField::Title, {own("title"), dc("title")}},
    {ChannelField::Link, {own("link")}},
    {ChannelField::Description, {own("description"), dc("description")}},
    {ChannelField::Language, {dc("language")}},
    {ChannelField::Copyright, {dc("rights")}},
    {ChannelField::ManagingEditor, {dc("creator")}},
    {ChannelField::WebMaster, {dc("publisher")}},
    {ChannelField::ImageUrl, {own("image", childText, "url")}},
    {ChannelField::ImageTitle, {own("image", childText, "title")}},
    {ChannelField::ImageLink, {own("image", childText, "link")}},
};

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
    format.channelFields = channelFields;
    format.itemsChanged = nullptr;
    return format;
}();
