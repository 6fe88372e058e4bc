// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/feed/BaseAddress.h"
#include "engine/feed/ElementText.h"
#include "engine/feed/FormatReader.h"
#include "engine/feed/HtmlText.h"
#include "platform/Literals.h"

#include <QStringList>

namespace {

constexpr const char *atom10Namespace = "http://www.w3.org/2005/Atom";

bool isOwn(std::string_view name)
{
    return name == atom10Namespace;
}

FeedLoadResult recognise(const xmlNode *root)
{
    return viewOf(root->name) == "feed" && isOwn(nameOf(root->ns)) ? LoadOk : LoadUnknownFormat;
}

// --- Texts (RFC 4287, 3.1 and 4.1.3)

enum class TextKind { Plain, Html, Xhtml, Foreign };

TextKind kindOf(const xmlNode *element)
{
    const QString type = mediaTypeOf(element);
    if (type.isEmpty() || type == "text"_L1 || type == "text/plain"_L1)
        return TextKind::Plain;
    if (type == "html"_L1 || type == "text/html"_L1)
        return TextKind::Html;
    return type == "xhtml"_L1 || type == "application/xhtml+xml"_L1 ? TextKind::Xhtml : TextKind::Foreign;
}

/// The element that holds what an xhtml text says; the text's own where it lacks it.
const xmlNode *divisionOf(const xmlNode *text)
{
    const xmlNode *child = elementFrom<const xmlNode>(text->children);
    while (child != nullptr && viewOf(child->name) != "div")
        child = elementFrom<const xmlNode>(child->next);
    return child == nullptr ? text : child;
}

/// As lists and boxes show it.
QString shown(const FoundElement &found)
{
    switch (kindOf(found.element)) {
    case TextKind::Html:
        return trimmedText(HtmlText::bare(textOf(found.element)));
    case TextKind::Xhtml:
        return trimmedText(bareTextOf(divisionOf(found.element)).simplified());
    default:
        return textOf(found.element);
    }
}

/// As pages show it. What is no text for a page, or lies elsewhere, is none.
QString markup(const FoundElement &found)
{
    if (!attributeOf(found.element, "src").isEmpty())
        return {};
    switch (kindOf(found.element)) {
    case TextKind::Plain:
        return HtmlText::escaped(textOf(found.element));
    case TextKind::Html:
        return textOf(found.element);
    case TextKind::Xhtml:
        return htmlMarkupOf(divisionOf(found.element));
    case TextKind::Foreign:
        break;
    }
    return {};
}

QString language(const FoundElement &found)
{
    return attributeOf(found.element, "lang", NamespaceName::xml);
}

// --- Persons

QString nameOfPerson(const xmlNode *person, const Vocabulary &vocabulary)
{
    for (const char *part : {"name", "email", "uri"})
        if (QString text = textOf(vocabulary.ownChild(person, part)); !text.isEmpty())
            return text;
    return {};
}

QString joinedNames(const xmlNode *first, const Vocabulary &vocabulary)
{
    QStringList names;
    for (const xmlNode *person = first; person != nullptr; person = vocabulary.nextAlike(person))
        names += nameOfPerson(person, vocabulary);
    names.removeAll(QString());
    return names.join(", "_L1);
}

QString authors(const FoundElement &found)
{
    return joinedNames(found.element, found.vocabulary);
}

QString sourceAuthors(const FoundElement &source)
{
    return joinedNames(source.vocabulary.ownChild(source.element, "author"), source.vocabulary);
}

// --- Links

/// A relation has a short name, or an address in the registry that says the same. None stands for "alternate".
bool isRelation(const xmlNode *link, QLatin1String name)
{
    constexpr QLatin1String registry("http://www.iana.org/assignments/relation/");
    const QString relation = attributeOf(link, "rel");
    if (relation.isEmpty())
        return name == "alternate"_L1;
    return relation == name || (relation.startsWith(registry) && QStringView(relation).sliced(registry.size()) == name);
}

QString addressOf(const xmlNode *element, const char *attribute)
{
    return BaseAddress::resolved(element, attributeOf(element, attribute));
}

/// The first link of that relation with an address that `isWanted`; null when there is none.
template <class IsWanted>
const xmlNode *firstLink(const FoundElement &links, QLatin1String relation, IsWanted isWanted)
{
    const xmlNode *link = links.element;
    while (link != nullptr &&
           (!isRelation(link, relation) || attributeOf(link, "href").isEmpty() || !isWanted(mediaTypeOf(link))))
        link = links.vocabulary.nextAlike(link);
    return link;
}

bool isAnyType(const QString &)
{
    return true;
}

/// The link to the page itself, one of HTML before others.
QString pageLink(const FoundElement &links)
{
    const xmlNode *page = firstLink(links, "alternate"_L1, [](const QString &type) { return type == "text/html"_L1; });
    return addressOf(page != nullptr ? page : firstLink(links, "alternate"_L1, isAnyType), "href");
}

QString enclosure(const FoundElement &links)
{
    const xmlNode *link = firstLink(links, "enclosure"_L1, isAnyType);
    return std::string_view(links.detail) == "href" ? addressOf(link, "href") : attributeOf(link, links.detail);
}

QString replies(const FoundElement &links)
{
    const auto isPage = [](const QString &type) { return type.isEmpty() || type == "text/html"_L1; };
    return addressOf(firstLink(links, "replies"_L1, isPage), "href");
}

/// An id that leads somewhere.
QString webAddress(const FoundElement &id)
{
    const QString text = textOf(id.element);
    const bool leads =
        text.startsWith("http://"_L1, Qt::CaseInsensitive) || text.startsWith("https://"_L1, Qt::CaseInsensitive);
    return leads ? text : QString();
}

QString address(const FoundElement &found)
{
    return BaseAddress::resolved(found.element, textOf(found.element));
}

// --- The rest

QString sourceTitle(const FoundElement &source)
{
    const xmlNode *title = source.vocabulary.ownChild(source.element, "title");
    return title == nullptr ? QString() : shown({title, source.vocabulary, ""});
}

QString sourceLink(const FoundElement &source)
{
    const xmlNode *first = source.vocabulary.ownChild(source.element, "link");
    if (first == nullptr)
        return {};
    const FoundElement links{first, source.vocabulary, ""};
    const QString page = pageLink(links);
    return page.isEmpty() ? addressOf(firstLink(links, "self"_L1, isAnyType), "href") : page;
}

QString categories(const FoundElement &found)
{
    QStringList names;
    for (const xmlNode *node = found.element; node != nullptr; node = found.vocabulary.nextAlike(node)) {
        const QString label = attributeOf(node, "label");
        names += label.isEmpty() ? attributeOf(node, "term") : label;
    }
    names.removeAll(QString());
    names.removeDuplicates();
    return names.join(", "_L1);
}

using From::dc;
using From::own;

constexpr FieldRow<ChannelField> channelFields[] = {
    {ChannelField::Title, {own("title", shown)}},
    {ChannelField::Link, {own("link", pageLink)}},
    {ChannelField::Description, {own("subtitle", markup)}},
    {ChannelField::Language, {From::itself(language)}},
    {ChannelField::Copyright, {own("rights", shown)}},
    {ChannelField::ManagingEditor, {own("author", authors)}},
    {ChannelField::ImageUrl, {own("logo", address), own("icon", address)}},
    {ChannelField::ImageTitle, {own("title", shown)}},
    {ChannelField::ImageLink, {own("link", pageLink)}},
};

constexpr FieldRow<ItemField> itemFields[] = {
    {ItemField::Title, {own("title", shown)}},
    {ItemField::Link, {own("link", pageLink), own("id", webAddress)}},
    {ItemField::Description, {own("content", markup), own("summary", markup)}},
    {ItemField::Category, {own("category", categories), dc("subject", Readings::joinedTexts)}},
    {ItemField::Author,
     {own("author", authors), dc("creator"), own("source", sourceAuthors), From::feed("author", authors)}},
    {ItemField::Comments, {own("link", replies)}},
    {ItemField::PubDate, {own("published"), own("updated")}},
    {ItemField::SourceName, {own("source", sourceTitle)}},
    {ItemField::SourceUrl, {own("source", sourceLink)}},
    {ItemField::EnclosureUrl, {own("link", enclosure, "href")}},
    {ItemField::EnclosureType, {own("link", enclosure, "type")}},
    {ItemField::EnclosureLength, {own("link", enclosure, "length")}},
};

// --- Writing

xmlNode *addLink(ItemWriter &item, const char *relation, const QString &address, const QString &type)
{
    xmlNode *link = item.addElement("link");
    ItemWriter::setAttribute(link, "rel", QLatin1String(relation));
    if (!type.isEmpty())
        ItemWriter::setAttribute(link, "type", type);
    ItemWriter::setAttribute(link, "href", address);
    return link;
}

void write(ItemWriter &item, const ItemContent &content)
{
    item.addElement("id", ItemWriter::nameFor(content));
    item.addElement("title", content.title);
    if (!content.link.isEmpty())
        addLink(item, "alternate", content.link, QString());
    if (!content.author.isEmpty())
        ItemWriter::addInto(item.addElement("author"), "name", content.author);
    item.add("published", content.pubDate);
    item.addElement("updated", content.pubDate);
    if (!content.category.isEmpty())
        ItemWriter::setAttribute(item.addElement("category"), "term", content.category);
    if (xmlNode *text = item.add("content", content.description))
        ItemWriter::setAttribute(text, "type", u"html"_s);
    if (!content.comments.isEmpty())
        addLink(item, "replies", content.comments, u"text/html"_s);
    if (content.source) {
        xmlNode *source = item.addElement("source");
        ItemWriter::addInto(source, "title", content.source->Name);
        xmlNode *link = xmlNewChild(source, source->ns, xmlText("link"), nullptr);
        ItemWriter::setAttribute(link, "href", content.source->Url);
    }
    if (content.enclosure) {
        xmlNode *link = addLink(item, "enclosure", content.enclosure->Url, content.enclosure->Extra);
        ItemWriter::setAttribute(link, "length", QString::number(content.enclosure->Length));
    }
}

/// An entry keeps the base of its addresses, and one without author that of its feed.
void completeCopy(ItemWriter &copy, const ItemElements &original, const FormatReader &reader)
{
    const QString base = BaseAddress::of(original.item.parent());
    if (!base.isEmpty() && base != BaseAddress::of(copy.item()))
        xmlNodeSetBase(copy.item(), xmlText(base.toUtf8().constData()));
    const QString author = reader.text(ItemField::Author, original);
    const ChildElements nothing(reader.vocabulary(), nullptr);
    const bool isOfFeed = !author.isEmpty() && reader.text(ItemField::Author, {original.item, nothing}) != author;
    if (isOfFeed)
        ItemWriter::addInto(copy.addElement("author"), "name", author);
}

} // namespace

/// Atom 1.0 (RFC 4287). Its texts say of which kind they are, addresses may be relative, and everything with an address
/// is a link that says what it is for.
extern constexpr FeedFormat atom10Format{
    .version = Atom10,
    .isOwn = isOwn,
    .ownNamespace = atom10Namespace,
    .itemName = "entry",
    .recognise = recognise,
    .channelFields = channelFields,
    .itemFields = itemFields,
    .write = write,
    .completeCopy = completeCopy,
};
