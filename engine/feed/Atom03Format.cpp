#include "engine/feed/ElementText.h"
#include "engine/feed/FeedFormat.h"
#include "engine/feed/ItemWriter.h"

namespace {

/// A media type without its parameters, in lower case.
QString mediaType(const xmlNode *link)
{
    return trimmedText(attributeOf(link, "type").section(u';', 0, 0)).toLower();
}

/// Atom 0.3. Its texts say how they are encoded, and everything with an address is a link that says what it is for.
class Atom03Format final : public FeedFormat
{
public:
    FeedVersion version() const override { return Atom03; }
    Family family() const override { return Family::Atom; }
    xmlNode *channel(xmlNode *root) const override { return root; }
    xmlNode *itemParent(xmlNode *root) const override { return root; }
    const char *itemName() const override { return "entry"; }

    QString channelText(ChannelField field, const ChildElements &channel, const xmlNode *element) const override
    {
        switch (field) {
        case ChannelField::Title:
            return firstContent(channel, {Element::Title});
        case ChannelField::Link:
            return pageLink(channel);
        case ChannelField::Description:
            return firstContent(channel, {Element::Tagline});
        case ChannelField::Language: {
            const QString language = attributeOf(element, "lang", xmlNamespace);
            return language.isEmpty() ? firstText(channel, {Element::DcLanguage}) : language;
        }
        case ChannelField::Copyright:
            return firstContent(channel, {Element::Copyright, Element::DcRights});
        case ChannelField::ManagingEditor:
            return authorName(channel);
        case ChannelField::WebMaster:
        case ChannelField::Ttl:
            return {};
        }
        return {};
    }

    QString itemText(ItemField field, const ChildElements &item, const ChildElements &channel) const override
    {
        switch (field) {
        case ItemField::Title:
            return firstContent(item, {Element::Title});
        case ItemField::Link:
            return pageLink(item);
        case ItemField::Description:
            return firstContent(item, {Element::Content, Element::Summary});
        case ItemField::Category:
            return joinedTexts(item, Element::DcSubject);
        case ItemField::Author: {
            const QString own = authorName(item);
            return own.isEmpty() ? authorName(channel) : own;
        }
        case ItemField::PubDate:
            return firstText(item, {Element::Issued, Element::Modified, Element::Created});
        case ItemField::Comments:
            return {};
        }
        return {};
    }

    std::optional<ItemEnclosure> enclosure(const ChildElements &item) const override
    {
        for (const xmlNode *link = item.first(Element::Link); link != nullptr; link = nextOfKind(family(), link)) {
            if (attributeOf(link, "rel") != QLatin1String("enclosure") || attributeOf(link, "href").isEmpty())
                continue;
            return ItemEnclosure{attributeOf(link, "href"), attributeOf(link, "type"),
                                 lengthOf(attributeOf(link, "length"))};
        }
        return std::nullopt;
    }

    void write(ItemWriter &item, const ItemContent &content) const override
    {
        item.addElement("title", content.title);
        if (!content.link.isEmpty())
            addLink(item, "alternate", content.link, QStringLiteral("text/html"));
        if (!content.author.isEmpty())
            ItemWriter::addInto(item.addElement("author"), "name", content.author);
        item.add("issued", content.pubDate);
        item.addDc("subject", content.category);
        if (xmlNode *text = item.add("content", content.description)) {
            ItemWriter::setAttribute(text, "type", QStringLiteral("text/html"));
            ItemWriter::setAttribute(text, "mode", QStringLiteral("escaped"));
        }
        if (content.enclosure) {
            xmlNode *link = addLink(item, "enclosure", content.enclosure->Url, content.enclosure->Extra);
            ItemWriter::setAttribute(link, "length", QString::number(content.enclosure->Length));
        }
    }

    void completeCopy(ItemWriter &copy, const ChildElements &original, const ChildElements &itsChannel) const override
    {
        const QString fromFeed = authorName(itsChannel);
        if (fromFeed.isEmpty() || !authorName(original).isEmpty())
            return;
        xmlNode *author = copy.addElement("author");
        ItemWriter::addInto(author, "name", fromFeed);
        if (author != copy.item()->children)
            xmlAddPrevSibling(copy.item()->children, author); // in front of an author without a name
    }

private:
    static constexpr const char *xmlNamespace = "http://www.w3.org/XML/1998/namespace";

    static QString firstContent(const ChildElements &children, std::initializer_list<Element> kinds)
    {
        for (const Element kind : kinds) {
            QString text = atomTextOf(children.first(kind));
            if (!text.isEmpty())
                return text;
        }
        return {};
    }

    /// The first link to the page itself that is HTML, or else the first of any type.
    QString pageLink(const ChildElements &children) const
    {
        QString first;
        for (const xmlNode *link = children.first(Element::Link); link != nullptr; link = nextOfKind(family(), link)) {
            const QString relation = attributeOf(link, "rel");
            const QString address = attributeOf(link, "href");
            if (address.isEmpty() || (!relation.isEmpty() && relation != QLatin1String("alternate")))
                continue;
            if (mediaType(link) == QLatin1String("text/html"))
                return address;
            if (first.isEmpty())
                first = address;
        }
        return first;
    }

    QString authorName(const ChildElements &children) const
    {
        const xmlNode *author = children.first(Element::Author);
        return author == nullptr ? QString() : textOf(ChildElements(family(), author).first(Element::Name));
    }

    static xmlNode *addLink(ItemWriter &item, const char *relation, const QString &address, const QString &type)
    {
        xmlNode *link = item.addElement("link");
        ItemWriter::setAttribute(link, "rel", QLatin1String(relation));
        ItemWriter::setAttribute(link, "type", type);
        ItemWriter::setAttribute(link, "href", address);
        return link;
    }
};

} // namespace

const FeedFormat &atom03Format()
{
    static const Atom03Format format;
    return format;
}
