// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/feed/ElementText.h"
#include "engine/feed/FormatReader.h"
#include "engine/feed/NamespaceScope.h"
#include "engine/feed/RdfFamily.h"
#include "platform/Literals.h"

#include <QSet>

namespace {

constexpr const char *channelName = "channel";
constexpr const char *itemName = "item";

bool isOwn(std::string_view name)
{
    return name == NamespaceName::rss10;
}

bool isOwnElement(const xmlNode *element, std::string_view name)
{
    return viewOf(element->name) == name && isOwn(nameOf(element->ns));
}

/// The documents of the family are told apart by the namespace of what stands in them. RSS 1.1 has a root of its own
/// besides.
FeedLoadResult recognise(const xmlNode *root)
{
    const auto isRss11 = [](std::string_view name) { return name.starts_with(NamespaceName::rss11); };
    if (viewOf(root->name) == "Channel" && isRss11(nameOf(root->ns)))
        return LoadBadVersionOther;
    if (!RdfFamily::isRdfElement(root, "RDF"))
        return LoadUnknownFormat;
    if (RdfFamily::holdsChannel(root, isOwn))
        return LoadOk;
    FeedLoadResult result = LoadUnknownFormat;
    for (const xmlNode *node = elementFrom<const xmlNode>(root->children); node != nullptr;
         node = elementFrom<const xmlNode>(node->next)) {
        if (isRss090(nameOf(node->ns)) || isRss11(nameOf(node->ns)))
            result = LoadBadVersionOther;
    }
    return result;
}

/// The text of a child of the picture that stands beside the channel; the channel's own image element only points at
/// it, but where the channel is the root.
QString imageChild(const FoundElement &channel)
{
    const xmlNode *around = channel.element->parent;
    const xmlNode *place = around->type == XML_ELEMENT_NODE ? around : channel.element;
    const xmlNode *image = channel.vocabulary.ownChild(place, "image");
    return image == nullptr ? QString() : textOf(channel.vocabulary.ownChild(image, channel.detail));
}

using From::dc;
using From::own;

constexpr FieldRow<ChannelField> channelFields[] = {
    {ChannelField::Title, {own("title"), dc("title")}},
    {ChannelField::Link, {own("link")}},
    {ChannelField::Description, {own("description"), dc("description")}},
    {ChannelField::Language, {dc("language")}},
    {ChannelField::Copyright, {dc("rights")}},
    {ChannelField::ManagingEditor, {dc("creator")}},
    {ChannelField::WebMaster, {dc("publisher")}},
    {ChannelField::ImageUrl, {From::itself(imageChild, "url")}},
    {ChannelField::ImageTitle, {From::itself(imageChild, "title")}},
    {ChannelField::ImageLink, {From::itself(imageChild, "link")}},
};

constexpr FieldRow<ItemField> itemFields[] = {
    {ItemField::Title, {own("title"), dc("title")}},
    {ItemField::Link, {own("link")}},
    {ItemField::Description, {From::contentEncoded(), own("description"), dc("description")}},
    {ItemField::Category, {dc("subject", Readings::joinedTexts)}},
    {ItemField::Author, {dc("creator")}},
    {ItemField::PubDate, {dc("date")}},
};

xmlNs *rdfNamespace(xmlNode *element)
{
    return prefixedNamespace(element, NamespaceName::rdf, "rdf");
}

QString aboutOf(const xmlNode *item)
{
    return attributeOf(item, "about", NamespaceName::rdf);
}

QString resourceOf(const xmlNode *entry)
{
    const QString resource = attributeOf(entry, "resource", NamespaceName::rdf);
    return resource.isEmpty() ? attributeOf(entry, "resource") : resource; // old feeds leave out the prefix
}

void write(ItemWriter &item, const ItemContent &content)
{
    ItemWriter::setAttribute(item.item(), "about", ItemWriter::nameFor(content), rdfNamespace(item.item()));
    RdfFamily::addTexts(item, content);
}

void completeCopy(ItemWriter &copy, const ItemElements &original, const FormatReader &reader)
{
    if (aboutOf(copy.item()).isEmpty())
        ItemWriter::setAttribute(copy.item(), "about", ItemWriter::nameFor(reader.content(original)),
                                 rdfNamespace(copy.item()));
}

template <class IsWanted>
xmlNode *firstChild(xmlNode *parent, IsWanted isWanted)
{
    xmlNode *child = parent == nullptr ? nullptr : elementFrom(parent->children);
    while (child != nullptr && !isWanted(child))
        child = elementFrom(child->next);
    return child;
}

/// The element of the channel in which the addresses of all items are listed.
xmlNode *itemsElement(xmlNode *root)
{
    xmlNode *channel = firstChild(root, [](const xmlNode *node) { return isOwnElement(node, channelName); });
    return firstChild(channel, [](const xmlNode *node) { return isOwnElement(node, "items"); });
}

xmlNode *existingList(xmlNode *root)
{
    return firstChild(itemsElement(root), [](const xmlNode *node) { return RdfFamily::isRdfElement(node, "Seq"); });
}

/// The list, made when the channel has none.
xmlNode *listOfItems(xmlNode *root)
{
    if (xmlNode *list = existingList(root))
        return list;
    xmlNode *items = itemsElement(root);
    if (items == nullptr) {
        xmlNode *channel = firstChild(root, [](const xmlNode *node) { return isOwnElement(node, channelName); });
        items = xmlNewChild(channel, channel->ns, xmlText("items"), nullptr);
    }
    return xmlNewChild(items, rdfNamespace(items), xmlText("Seq"), nullptr);
}

void enterInFront(xmlNode *list, std::span<xmlNode *const> items)
{
    xmlNode *last = nullptr;
    for (const xmlNode *item : items) {
        xmlNode *entry = xmlNewDocNode(list->doc, rdfNamespace(list), xmlText("li"), nullptr);
        if (last != nullptr)
            xmlAddNextSibling(last, entry);
        else if (list->children != nullptr)
            xmlAddPrevSibling(list->children, entry);
        else
            xmlAddChild(list, entry);
        ItemWriter::setAttribute(entry, "resource", aboutOf(item), rdfNamespace(entry));
        last = entry;
    }
}

/// Takes those out of the list that stand in the document no longer.
void removeFromList(xmlNode *root, std::span<xmlNode *const> items)
{
    QSet<QString> gone;
    for (const xmlNode *item : items)
        gone.insert(aboutOf(item));
    for (const xmlNode *node = elementFrom(root->children); node != nullptr;
         node = elementFrom<const xmlNode>(node->next))
        if (isOwnElement(node, itemName))
            gone.remove(aboutOf(node));
    xmlNode *list = gone.isEmpty() ? nullptr : existingList(root);
    xmlNode *entry = list == nullptr ? nullptr : elementFrom(list->children);
    while (entry != nullptr) {
        xmlNode *next = elementFrom(entry->next);
        if (RdfFamily::isRdfElement(entry, "li") && gone.contains(resourceOf(entry))) {
            xmlUnlinkNode(entry);
            xmlFreeNode(entry);
        }
        entry = next;
    }
}

/// The channel lists the addresses of its items.
void itemsChanged(xmlNode *root, std::span<xmlNode *const> added, std::span<xmlNode *const> dropped)
{
    if (!added.empty())
        enterInFront(listOfItems(root), added);
    if (!dropped.empty())
        removeFromList(root, dropped);
}

} // namespace

/// RDF Site Summary 1.0. Items stand beside the channel, which lists them by address; their order is that of the
/// document.
extern constexpr FeedFormat rdf10Format{
    .version = Rdf10,
    .isOwn = isOwn,
    .ownNamespace = NamespaceName::rss10,
    .channelName = channelName,
    .itemName = itemName,
    .recognise = recognise,
    .channelFields = channelFields,
    .itemFields = itemFields,
    .write = write,
    .completeCopy = completeCopy,
    .itemsChanged = itemsChanged,
};
