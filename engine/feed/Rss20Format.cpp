#include "engine/feed/ElementText.h"
#include "engine/feed/ItemWriter.h"
#include "engine/feed/RssFormat.h"

namespace {

/// True for "scheme://something". A guid such as "tag:example.org,2004:1" is absolute, but no address to go to.
bool isAddress(const QString &text)
{
    const qsizetype colon = text.indexOf(QLatin1String("://"));
    if (colon <= 0 || colon + 3 >= text.size())
        return false;
    const auto isLetter = [](QChar c) { return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z'); };
    const auto mayFollow = [&](QChar c) {
        return isLetter(c) || (c >= u'0' && c <= u'9') || c == u'+' || c == u'-' || c == u'.';
    };
    return isLetter(text[0]) && std::all_of(text.begin() + 1, text.begin() + colon, mayFollow);
}

QString permanentLink(const xmlNode *guid)
{
    if (guid == nullptr || attributeOf(guid, "isPermaLink").compare(QLatin1String("false"), Qt::CaseInsensitive) == 0)
        return {};
    const QString text = textOf(guid);
    return isAddress(text) ? text : QString();
}

/// RSS 2.0: adds authors and guids to 0.92, and lets the Dublin Core stand in for everything.
class Rss20Format final : public RssFormat
{
public:
    FeedVersion version() const override { return Rss20; }

    QString channelText(ChannelField field, const ChildElements &channel, const xmlNode *) const override
    {
        switch (field) {
        case ChannelField::Title:
            return firstText(channel, {Element::Title, Element::DcTitle});
        case ChannelField::Link:
            return firstText(channel, {Element::Link});
        case ChannelField::Description:
            return firstText(channel, {Element::Description, Element::DcDescription});
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
            return firstText(item, {Element::Title, Element::DcTitle});
        case ItemField::Link: {
            const QString link = firstText(item, {Element::Link});
            return link.isEmpty() ? permanentLink(item.first(Element::Guid)) : link;
        }
        case ItemField::Description:
            return firstText(item, {Element::ContentEncoded, Element::Description, Element::DcDescription});
        case ItemField::Author:
            return firstText(item, {Element::Author, Element::DcCreator});
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
        // The format's own element is for mail addresses.
        if (content.author.contains(u'@'))
            item.add("author", content.author);
        else
            item.addDc("creator", content.author);
        item.add("comments", content.comments);
        item.addRssDate(content.pubDate);
        writeSharedElements(item, content);
    }
};

} // namespace

const FeedFormat &rss20Format()
{
    static const Rss20Format format;
    return format;
}
