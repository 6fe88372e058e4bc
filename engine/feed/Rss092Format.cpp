#include "engine/feed/ItemWriter.h"
#include "engine/feed/RssFormat.h"

namespace {

/// RSS 0.92: items have source, enclosure and categories.
class Rss092Format final : public RssFormat
{
public:
    FeedVersion version() const override { return Rss092; }

    QString channelText(ChannelField field, const ChildElements &channel, const xmlNode *) const override
    {
        switch (field) {
        case ChannelField::Title:
            return firstText(channel, {Element::Title});
        case ChannelField::Link:
            return firstText(channel, {Element::Link});
        case ChannelField::Description:
            return firstText(channel, {Element::Description});
        case ChannelField::Language:
            return firstText(channel, {Element::Language, Element::DcLanguage});
        case ChannelField::Copyright:
            return firstText(channel, {Element::Copyright, Element::DcRights});
        case ChannelField::ManagingEditor:
            return firstText(channel, {Element::ManagingEditor, Element::DcCreator});
        case ChannelField::WebMaster:
            return firstText(channel, {Element::WebMaster, Element::DcPublisher});
        case ChannelField::Ttl:
            return firstText(channel, {Element::Ttl});
        }
        return {};
    }

    QString itemText(ItemField field, const ChildElements &item, const ChildElements &) const override
    {
        switch (field) {
        case ItemField::Title:
            return firstText(item, {Element::Title});
        case ItemField::Link:
            return firstText(item, {Element::Link});
        case ItemField::Description:
            return firstText(item, {Element::ContentEncoded, Element::Description});
        case ItemField::Author:
            return firstText(item, {Element::DcCreator});
        case ItemField::Comments:
            return firstText(item, {Element::Comments});
        case ItemField::PubDate:
            return firstText(item, {Element::PubDate, Element::DcDate});
        case ItemField::Category:
            return categories(item);
        }
        return {};
    }

    std::optional<ItemSource> source(const ChildElements &item) const override { return sourceElement(item); }
    std::optional<ItemEnclosure> enclosure(const ChildElements &item) const override { return enclosureElement(item); }

    void write(ItemWriter &item, const ItemContent &content) const override
    {
        item.addElement("title", content.title);
        item.add("link", content.link);
        item.add("description", content.description);
        item.add("category", content.category);
        item.addDc("creator", content.author);
        item.add("comments", content.comments);
        item.addRssDate(content.pubDate);
        writeSharedElements(item, content);
    }
};

} // namespace

const FeedFormat &rss092Format()
{
    static const Rss092Format format;
    return format;
}
