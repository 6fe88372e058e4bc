// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/feed/RssFamily.h"

namespace {

using From::dc;
using From::own;
using Readings::childText;

constexpr FieldRow<ChannelField> channelFields[] = {
    {ChannelField::Title, {own("title")}},
    {ChannelField::Link, {own("link")}},
    {ChannelField::Description, {own("description")}},
    {ChannelField::Language, {own("language")}},
    {ChannelField::Copyright, {own("copyright")}},
    {ChannelField::ManagingEditor, {own("managingEditor")}},
    {ChannelField::WebMaster, {own("webMaster")}},
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
    {ItemField::Description, {own("description")}},
    {ItemField::Author, {dc("creator")}},
    {ItemField::Comments, {own("comments")}},
    {ItemField::PubDate, {own("pubDate"), dc("date")}},
};

FeedLoadResult recognise(const xmlNode *root)
{
    return RssFamily::recognise(root, "0.91");
}

void write(ItemWriter &item, const ItemContent &content)
{
    item.addElement("title", content.title);
    item.add("link", content.link);
    item.add("description", content.description);
    item.addDc("creator", content.author);
    item.add("comments", content.comments);
    RssFamily::addDate(item, content.pubDate);
}

} // namespace

/// RSS 0.91, as Netscape and UserLand defined it: no element of an item but title, link, description and, by custom,
/// comments; author and date by the Dublin Core.
extern constexpr FeedFormat rss091Format{
    .version = Rss091,
    .isOwn = RssFamily::isOwn,
    .channelName = "channel",
    .itemsAreInChannel = true,
    .itemName = "item",
    .recognise = recognise,
    .channelFields = channelFields,
    .itemFields = itemFields,
    .write = write,
};
