// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/feed/RssFamily.h"

namespace {

using From::dc;
using From::own;
using Readings::attribute;
using Readings::childText;
using Readings::joinedTexts;

constexpr FieldRow<ChannelField> channelFields[] = {
    {ChannelField::Title, {own("title")}},
    {ChannelField::Link, {own("link")}},
    {ChannelField::Description, {own("description")}},
    {ChannelField::Language, {own("language"), dc("language")}},
    {ChannelField::Copyright, {own("copyright"), dc("rights")}},
    {ChannelField::ManagingEditor, {own("managingEditor"), dc("creator")}},
    {ChannelField::WebMaster, {own("webMaster"), dc("publisher")}},
    {ChannelField::Ttl, {own("ttl")}},
    {ChannelField::ImageUrl, {own("image", childText, "url")}},
    {ChannelField::ImageTitle, {own("image", childText, "title")}},
    {ChannelField::ImageLink, {own("image", childText, "link")}},
    {ChannelField::ImageWidth, {own("image", childText, "width")}},
    {ChannelField::ImageHeight, {own("image", childText, "height")}},
    {ChannelField::ImageDescription, {own("image", childText, "description")}},
};

constexpr FieldRow<ItemField> itemFields[] = {
    {ItemField::Title, {own("title")}},
    {ItemField::Link, {own("link")}},
    {ItemField::Description, {From::contentEncoded(), own("description")}},
    {ItemField::Category, {own("category", joinedTexts), dc("subject", joinedTexts)}},
    {ItemField::Author, {dc("creator")}},
    {ItemField::Comments, {own("comments")}},
    {ItemField::PubDate, {own("pubDate"), dc("date")}},
    {ItemField::SourceName, {own("source")}},
    {ItemField::SourceUrl, {own("source", attribute, "url")}},
    {ItemField::EnclosureUrl, {own("enclosure", attribute, "url")}},
    {ItemField::EnclosureType, {own("enclosure", attribute, "type")}},
    {ItemField::EnclosureLength, {own("enclosure", attribute, "length")}},
};

FeedLoadResult recognise(const xmlNode *root)
{
    return RssFamily::recognise(root, "0.92");
}

void write(ItemWriter &item, const ItemContent &content)
{
    item.addElement("title", content.title);
    item.add("link", content.link);
    item.add("description", content.description);
    item.add("category", content.category);
    item.addDc("creator", content.author);
    item.add("comments", content.comments);
    RssFamily::addDate(item, content.pubDate);
    RssFamily::addSourceAndEnclosure(item, content);
}

} // namespace

/// RSS 0.92: items have source, enclosure and categories.
extern constexpr FeedFormat rss092Format{
    .version = Rss092,
    .isOwn = RssFamily::isOwn,
    .channelName = "channel",
    .itemsAreInChannel = true,
    .itemName = "item",
    .recognise = recognise,
    .channelFields = channelFields,
    .itemFields = itemFields,
    .write = write,
};
