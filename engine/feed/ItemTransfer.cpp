// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/feed/ItemTransfer.h"

#include "engine/feed/ItemMarks.h"
#include "engine/feed/ItemWriter.h"
#include "engine/feed/NamespaceScope.h"
#include "platform/xml/TreeWalk.h"
#include "platform/xml/XmlGate.h"

#include <libxml/parserInternals.h>

#include <vector>

namespace {

/// Gives a new element the namespace of the format's own elements, as the elements around it have it.
void takeOwnNamespace(xmlNode *item, const char *name)
{
    if (name == nullptr) {
        xmlSetNs(item, item->parent->ns);
        return;
    }
    xmlNs *ns = namespaceInScope(item, name, false);
    xmlSetNs(item, ns != nullptr ? ns : xmlNewNs(item, xmlText(name), nullptr));
}

void exchange(xmlNs *&ns)
{
    if (ns != nullptr && ns->_private != nullptr)
        ns = static_cast<xmlNs *>(ns->_private);
}

/// A copy declares all namespaces it uses; those that are declared alike around it aren't needed.
void dropRepeatedDeclarations(xmlNode *item)
{
    std::vector<xmlNs *> dropped; // each points to the one in its place
    xmlNs **link = &item->nsDef;
    while (*link != nullptr) {
        xmlNs *ns = *link;
        xmlNs *outer = xmlSearchNs(item->doc, item->parent, ns->prefix);
        if (outer != nullptr && xmlStrEqual(outer->href, ns->href) != 0) {
            ns->_private = outer;
            dropped.push_back(ns);
            *link = ns->next;
        } else {
            link = &ns->next;
        }
    }
    for (xmlNode *node = dropped.empty() ? nullptr : item; node != nullptr; node = nextInTree(node, item)) {
        if (node->type != XML_ELEMENT_NODE)
            continue;
        exchange(node->ns);
        for (xmlAttr *attribute = node->properties; attribute != nullptr; attribute = attribute->next)
            exchange(attribute->ns);
    }
    for (xmlNs *ns : dropped)
        xmlFreeNs(ns);
}

bool hasDefaultDeclaration(const xmlNode *element)
{
    for (const xmlNs *ns = element->nsDef; ns != nullptr; ns = ns->next)
        if (ns->prefix == nullptr)
            return true;
    return false;
}

bool isInDefaultNamespace(xmlNode *place)
{
    const xmlNs *around = xmlSearchNs(place->doc, place, nullptr);
    return around != nullptr && around->href != nullptr && *around->href != 0;
}

/// True when `top` or an element below has no namespace and would fall into one by where it stands.
bool fallsIntoDefaultNamespace(xmlNode *top)
{
    for (xmlNode *node = top; node != nullptr; node = nextInTree(node, top))
        if (node->type == XML_ELEMENT_NODE && node->ns == nullptr && isInDefaultNamespace(node))
            return true;
    return false;
}

/// An element without namespace must not fall into a default namespace of the document it was copied into. It is kept
/// out by the item or its child, since what stands below these is read as markup.
void keepOutOfDefaultNamespace(xmlNode *item)
{
    if (!isInDefaultNamespace(item->parent))
        return;
    const auto keepOut = [](xmlNode *element) {
        const bool isPrefixed = element->ns == nullptr || element->ns->prefix != nullptr;
        if (isPrefixed && !hasDefaultDeclaration(element) && fallsIntoDefaultNamespace(element))
            xmlNewNs(element, xmlText(""), nullptr);
    };
    if (item->ns == nullptr)
        keepOut(item);
    for (xmlNode *child = elementFrom(item->children); child != nullptr; child = elementFrom(child->next))
        keepOut(child);
}

/// Formats keep addresses in texts, which have no bound, or in attributes, which have one.
bool addressesFitAttributes(const ItemContent &content)
{
    constexpr qsizetype most = 200000; // each, so that the three of an enclosure fit one tag in any encoding
    const auto fits = [](const QString &text) { return text.size() <= most; };
    return fits(content.link) && (!content.source || fits(content.source->Url)) &&
           (!content.enclosure || (fits(content.enclosure->Url) && fits(content.enclosure->Extra)));
}

/// Lets CDATA be plain text: the document's encoding may lack some of its characters, and CDATA can't hold references.
void dissolveCdata(xmlNode *top)
{
    for (xmlNode *node = top; node != nullptr; node = nextInTree(node, top)) {
        if (node->type == XML_CDATA_SECTION_NODE) {
            node->type = XML_TEXT_NODE;
            node->name = xmlStringText;
        }
    }
}

} // namespace

xmlNode *ItemTransfer::copy(const ItemElements &original, const FormatReader &reader, xmlNode *parent,
                            const Enter &enter)
{
    xmlNode *result = XmlGate::copyInto(parent, original.item.parent());
    if (result == nullptr)
        return nullptr;
    ItemMarks::clear(result);
    if (!XmlGate::holdsEveryCharacter(parent->doc))
        dissolveCdata(result);
    enter(result);
    dropRepeatedDeclarations(result);
    keepOutOfDefaultNamespace(result);
    if (reader.format().completeCopy != nullptr) {
        ItemWriter writer(result);
        reader.format().completeCopy(writer, original, reader);
    }
    if (XmlGate::tagIsWithinBounds(result))
        return result;
    xmlUnlinkNode(result);
    xmlFreeNode(result);
    return nullptr;
}

xmlNode *ItemTransfer::convert(const ItemContent &content, const FeedFormat &format, xmlNode *parent,
                               const Enter &enter)
{
    if (!XmlGate::hasRoom(parent) || !addressesFitAttributes(content))
        return nullptr;
    xmlNode *item = xmlNewDocNode(parent->doc, nullptr, xmlText(format.itemName), nullptr);
    enter(item);
    takeOwnNamespace(item, format.ownNamespace);
    ItemWriter writer(item);
    format.write(writer, content);
    return item;
}
