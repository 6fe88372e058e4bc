// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/feed/ItemTransfer.h"

#include "engine/feed/ItemMarks.h"
#include "engine/feed/ItemWriter.h"
#include "engine/feed/NamespaceScope.h"
#include "platform/xml/TreeWalk.h"
#include "platform/xml/XmlGate.h"

#include <libxml/parserInternals.h>

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

/// Lets every element and attribute below that uses `from` use `to`.
void replaceNamespace(xmlNode *top, const xmlNs *from, xmlNs *to)
{
    for (xmlNode *node = top; node != nullptr; node = nextInTree(node, top)) {
        if (node->type != XML_ELEMENT_NODE)
            continue;
        if (node->ns == from)
            node->ns = to;
        for (xmlAttr *attribute = node->properties; attribute != nullptr; attribute = attribute->next)
            if (attribute->ns == from)
                attribute->ns = to;
    }
}

/// A copy declares all namespaces it uses; those that are declared alike around it aren't needed.
void dropRepeatedDeclarations(xmlNode *item)
{
    xmlNs **link = &item->nsDef;
    while (*link != nullptr) {
        xmlNs *ns = *link;
        xmlNs *outer = xmlSearchNs(item->doc, item->parent, ns->prefix);
        if (outer != nullptr && outer != ns && xmlStrEqual(outer->href, ns->href) != 0) {
            replaceNamespace(item, ns, outer);
            *link = ns->next;
            xmlFreeNs(ns);
        } else {
            link = &ns->next;
        }
    }
}

bool hasDefaultDeclaration(const xmlNode *element)
{
    for (const xmlNs *ns = element->nsDef; ns != nullptr; ns = ns->next)
        if (ns->prefix == nullptr)
            return true;
    return false;
}

/// An element without namespace must not fall into a default namespace of the document it was copied into.
void keepOutOfDefaultNamespace(xmlNode *element)
{
    if (element->ns != nullptr || hasDefaultDeclaration(element))
        return;
    const xmlNs *around = xmlSearchNs(element->doc, element->parent, nullptr);
    if (around != nullptr && around->href != nullptr && *around->href != 0)
        xmlNewNs(element, xmlText(""), nullptr);
}

/// Takes out the elements whose prefix is declared nowhere: they mean nothing, but the prefix may mean something here.
void dropElementsOfUndeclaredPrefix(xmlNode *item)
{
    xmlNode *child = elementFrom(item->children);
    while (child != nullptr) {
        xmlNode *next = elementFrom(child->next);
        if (child->ns == nullptr && viewOf(child->name).find(':') != std::string_view::npos) {
            xmlUnlinkNode(child);
            xmlFreeNode(child);
        }
        child = next;
    }
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
    xmlNode *result = XmlGate::copyInto(parent->doc, original.item.parent());
    if (result == nullptr)
        throw std::bad_alloc();
    ItemMarks::clear(result);
    dropElementsOfUndeclaredPrefix(result);
    if (!XmlGate::holdsEveryCharacter(parent->doc))
        dissolveCdata(result);
    enter(result);
    dropRepeatedDeclarations(result);
    keepOutOfDefaultNamespace(result);
    for (xmlNode *child = elementFrom(result->children); child != nullptr; child = elementFrom(child->next))
        keepOutOfDefaultNamespace(child);
    if (reader.format().completeCopy != nullptr) {
        ItemWriter writer(result);
        reader.format().completeCopy(writer, original, reader);
    }
    return result;
}

xmlNode *ItemTransfer::convert(const ItemContent &content, const FeedFormat &format, xmlNode *parent,
                               const Enter &enter)
{
    xmlNode *item = xmlNewDocNode(parent->doc, nullptr, xmlText(format.itemName), nullptr);
    enter(item);
    takeOwnNamespace(item, format.ownNamespace);
    ItemWriter writer(item);
    format.write(writer, content);
    return item;
}
