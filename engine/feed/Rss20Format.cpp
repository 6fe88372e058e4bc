// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/feed/ElementText.h"
#include "engine/feed/RssFamily.h"
#include "platform/Literals.h"

#include <algorithm>

namespace {

/// True for "scheme://something". A guid such as "tag:example.org,2004:1" is absolute, but no address to go to.
bool isAddress(const QString &text)
{
    const qsizetype colon = text.indexOf("://"_L1);
    if (colon <= 0 || colon + 3 >= text.size())
        return false;
    const auto isLetter = [](QChar c) { return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z'); };
    const auto mayFollow = [&](QChar c) {
        return isLetter(c) || (c >= u'0' && c <= u'9') || c == u'+' || c == u'-' || c == u'.';
    };
    return isLetter(text[0]) && std::all_of(text.begin() + 1, text.begin() + colon, mayFollow);
}

QString permanentLink(const FoundElement &guid)
{
    if (attributeOf(guid.element, "isPermaLink").compare("false"_L1, Qt::CaseInsensitive) == 0)
        return {};
    const QString text = textOf(guid.element);
    return isAddress(text) ? text : QString();
}

using From::dc;
using From::own;
using Readings::attribute;
using Readings::childText;
using Readings::joinedTexts;

constexpr FieldRow<ChannelField> channelFields[] = {
    {ChannelField::Title, {own("title"), dc("title")}},
    {ChannelField::Link, {own("link")}},
    {ChannelField::Description, {own("description"), dc("description")}},
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
    {ItemField::Title, {own("title"), dc("title")}},
    {ItemField::Link, {own("link"), own("guid", permanentLink)}},
    {ItemField::Description, {From::contentEncoded(), own("description"), dc("description")}},
    {ItemField::Category, {own("category", joinedTexts), dc("subject", joinedTexts)}},
    {ItemField::Author, {own("author"), dc("creator")}},
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
    return RssFamily::recognise(root, "2.0");
}

void write(ItemWriter &item, const ItemContent &content)
{
    item.addElement("title", content.title);
    item.add("link", content.link);
    item.add("description", content.description);
    item.add("category", content.category);
    // The format's own element is for mail addresses.
    if (content.author.contains(u'@'))
        item.add("author", content.author);
    else
        item.addDc("creator", content.author);
    item.add("comments", content.comments);
    RssFamily::addDate(item, content.pubDate);
    RssFamily::addSourceAndEnclosure(item, content);
}

} // namespace

/// RSS 2.0: adds authors and guids to 0.92, and lets the Dublin Core stand in for everything.
extern constexpr FeedFormat rss20Format{
    .version = Rss20,
    .isOwn = RssFamily::isOwn,
    .channelName = "channel",
    .itemsAreInChannel = true,
    .itemName = "item",
    .recognise = recognise,
    .channelFields = channelFields,
    .itemFields = itemFields,
    .write = write,
};
