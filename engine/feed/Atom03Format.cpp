// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/feed/ElementText.h"
#include "engine/feed/FormatReader.h"
#include "platform/Literals.h"

#include <algorithm>
#include <iterator>

namespace {

constexpr const char *atom03Namespace = "http://purl.org/atom/ns#";

bool isOwn(std::string_view name)
{
    return name == atom03Namespace;
}

bool isSomeAtom(std::string_view name)
{
    constexpr std::string_view drafts[] = {"http://example.com/newformat#", "http://example.com/necho",
                                           "uri/of/echo/namespace#"};
    return name.starts_with("http://purl.org/atom/") || name.starts_with("http://purl.org/echo/") ||
           name.starts_with("http://purl.org/pie/") || name == "http://www.w3.org/2005/Atom" ||
           std::find(std::begin(drafts), std::end(drafts), name) != std::end(drafts);
}

FeedLoadResult recognise(const xmlNode *root)
{
    if (viewOf(root->name) != "feed")
        return LoadUnknownFormat;
    const QString version = attributeOf(root, "version");
    const std::string_view name = nameOf(root->ns);
    if (isOwn(name) && version == "0.3"_L1)
        return LoadOk;
    const bool isDraft = name.empty() && !version.isEmpty(); // the first drafts had no namespace, but a version
    return isSomeAtom(name) || isDraft ? LoadBadVersionOther : LoadUnknownFormat;
}

/// The text, decoded as the element says: what lists and boxes show.
QString content(const FoundElement &found)
{
    return atomTextOf(found.element);
}

/// The text as markup: what pages show.
QString markup(const FoundElement &found)
{
    return atomMarkupOf(found.element);
}

QString language(const FoundElement &found)
{
    return attributeOf(found.element, "lang", NamespaceName::xml);
}

/// The name of the first author.
QString authorName(const FoundElement &author)
{
    return textOf(author.vocabulary.ownChild(author.element, "name"));
}

/// The first link to the page itself that is HTML, or else the first of any type.
QString pageLink(const FoundElement &links)
{
    QString first;
    for (const xmlNode *link = links.element; link != nullptr; link = links.vocabulary.nextAlike(link)) {
        const QString relation = attributeOf(link, "rel");
        QString address = attributeOf(link, "href");
        if (address.isEmpty() || (!relation.isEmpty() && relation != "alternate"_L1))
            continue;
        if (mediaTypeOf(link) == "text/html"_L1)
            return address;
        if (first.isEmpty())
            first = address;
    }
    return first;
}

/// That attribute of the first link to an enclosure.
QString enclosure(const FoundElement &links)
{
    for (const xmlNode *link = links.element; link != nullptr; link = links.vocabulary.nextAlike(link))
        if (attributeOf(link, "rel") == "enclosure"_L1 && !attributeOf(link, "href").isEmpty())
            return attributeOf(link, links.detail);
    return {};
}

using From::dc;
using From::own;

constexpr FieldRow<ChannelField> channelFields[] = {
    {ChannelField::Title, {own("title", content)}},
    {ChannelField::Link, {own("link", pageLink)}},
    {ChannelField::Description, {own("tagline", markup)}},
    {ChannelField::Language, {From::itself(language), dc("language")}},
    {ChannelField::Copyright, {own("copyright", content), dc("rights", content)}},
    {ChannelField::ManagingEditor, {own("author", authorName)}},
};

constexpr FieldRow<ItemField> itemFields[] = {
    {ItemField::Title, {own("title", content)}},
    {ItemField::Link, {own("link", pageLink)}},
    {ItemField::Description, {own("content", markup), own("summary", markup)}},
    {ItemField::Category, {dc("subject", Readings::joinedTexts)}},
    {ItemField::Author, {own("author", authorName), From::feed("author", authorName)}},
    {ItemField::PubDate, {own("issued"), own("modified"), own("created")}},
    {ItemField::EnclosureUrl, {own("link", enclosure, "href")}},
    {ItemField::EnclosureType, {own("link", enclosure, "type")}},
    {ItemField::EnclosureLength, {own("link", enclosure, "length")}},
};

xmlNode *addLink(ItemWriter &item, const char *relation, const QString &address, const QString &type)
{
    xmlNode *link = item.addElement("link");
    ItemWriter::setAttribute(link, "rel", QLatin1String(relation));
    ItemWriter::setAttribute(link, "type", type);
    ItemWriter::setAttribute(link, "href", address);
    return link;
}

void write(ItemWriter &item, const ItemContent &content)
{
    item.addElement("title", content.title);
    if (!content.link.isEmpty())
        addLink(item, "alternate", content.link, u"text/html"_s);
    if (!content.author.isEmpty())
        ItemWriter::addInto(item.addElement("author"), "name", content.author);
    item.add("issued", content.pubDate);
    item.addDc("subject", content.category);
    if (xmlNode *text = item.add("content", content.description)) {
        ItemWriter::setAttribute(text, "type", u"text/html"_s);
        ItemWriter::setAttribute(text, "mode", u"escaped"_s);
    }
    if (content.enclosure) {
        xmlNode *link = addLink(item, "enclosure", content.enclosure->Url, content.enclosure->Extra);
        ItemWriter::setAttribute(link, "length", QString::number(content.enclosure->Length));
    }
}

/// An entry without author has that of its feed.
void completeCopy(ItemWriter &copy, const ItemElements &original, const FormatReader &reader)
{
    const auto itsAuthor = [&](const ChildElements &children) {
        return reader.text(ChannelField::ManagingEditor, children);
    };
    const QString fromFeed = itsAuthor(original.channel);
    if (fromFeed.isEmpty() || !itsAuthor(original.item).isEmpty())
        return;
    xmlNode *author = copy.addElement("author");
    ItemWriter::addInto(author, "name", fromFeed);
    if (author != copy.item()->children)
        xmlAddPrevSibling(copy.item()->children, author); // in front of an author without a name
}

} // namespace

/// Atom 0.3. Its texts say how they are encoded, and everything with an address is a link that says what it is for.
extern constexpr FeedFormat atom03Format{
    .version = Atom03,
    .isOwn = isOwn,
    .ownNamespace = atom03Namespace,
    .itemName = "entry",
    .recognise = recognise,
    .channelFields = channelFields,
    .itemFields = itemFields,
    .write = write,
    .completeCopy = completeCopy,
};
