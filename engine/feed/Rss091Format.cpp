#include "engine/feed/ItemWriter.h"
#include "engine/feed/RssFormat.h"

namespace {

/// RSS 0.91, as Netscape and UserLand defined it: no element of an item but title, link, description and, by custom,
/// comments; author and date by the Dublin Core.
class Rss091Format final : public RssFormat
{
public:
    FeedVersion version() const override { return Rss091; }

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
            return firstText(channel, {Element::Language});
        case ChannelField::Copyright:
            return firstText(channel, {Element::Copyright});
        case ChannelField::ManagingEditor:
            return firstText(channel, {Element::ManagingEditor});
        case ChannelField::WebMaster:
            return firstText(channel, {Element::WebMaster});
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
            return firstText(item, {Element::Description});
        case ItemField::Author:
            return firstText(item, {Element::DcCreator});
        case ItemField::Comments:
            return firstText(item, {Element::Comments});
        case ItemField::PubDate:
            return firstText(item, {Element::PubDate, Element::DcDate});
        case ItemField::Category:
            return {};
        }
        return {};
    }

    void write(ItemWriter &item, const ItemContent &content) const override
    {
        item.addElement("title", content.title);
        item.add("link", content.link);
        item.add("description", content.description);
        item.addDc("creator", content.author);
        item.add("comments", content.comments);
        item.addRssDate(content.pubDate);
    }
};

} // namespace

const FeedFormat &rss091Format()
{
    static const Rss091Format format;
    return format;
}
