// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/xml/ParserGuard.h"
#include "platform/xml/TreeWalk.h"
#include "platform/xml/UndeclaredPrefixes.h"
#include "platform/xml/XmlLimits.h"

#include <libxml/SAX2.h>
#include <libxml/parserInternals.h>

#include <algorithm>

namespace {

/// What stands in an entity is parsed apart, where the library knows the namespaces around it and doesn't find their
/// declarations: it makes some without address, or leaves the prefix out.
void giveNamespaces(xmlNode *element, const xmlChar *prefix, const xmlChar *address, const xmlChar **values)
{
    const auto declared = [element](const xmlChar *itsPrefix, const xmlChar *itsAddress) {
        for (xmlNs *ns = element->nsDef; ns != nullptr; ns = ns->next)
            if (ns->href == nullptr && xmlStrEqual(ns->prefix, itsPrefix) != 0)
                ns->href = xmlStrdup(itsAddress);
        xmlNs *ns = xmlSearchNs(element->doc, element, itsPrefix);
        return ns != nullptr ? ns : xmlNewNs(element, itsAddress, itsPrefix);
    };
    if (address != nullptr && element->ns == nullptr)
        element->ns = declared(prefix, address);
    for (xmlAttr *attribute = element->properties; attribute != nullptr; attribute = attribute->next, values += 5)
        if (values[2] != nullptr && attribute->ns == nullptr)
            attribute->ns = declared(values[1], values[2]);
}

void startElement(void *context, const xmlChar *name, const xmlChar *prefix, const xmlChar *address, int namespaces,
                  const xmlChar **declared, int attributes, int defaulted, const xmlChar **values)
{
    if (!ParserGuard::of(context).admits(context,
                                         {prefix, address, namespaces, declared, attributes, defaulted, values}))
        return;
    xmlSAX2StartElementNs(context, name, prefix, address, namespaces, declared, attributes, defaulted, values);
    auto *parser = static_cast<xmlParserCtxt *>(context);
    if (!ParserGuard::of(context).isMain(context)) {
        giveNamespaces(parser->node, prefix, address, values);
        int &declarations = ParserGuard::of(context).notes().declarations;
        declarations = std::max(declarations, parser->nsNr); // twice as many: those in force may be declared again
    }
    ParserGuard::forgetTag(context);
}

/// The library lets one node grow by all that follows, up to a bound that depends on the form in which a text is
/// written; here a long text goes on in another node.
void addText(void *context, const xmlChar *text, int size)
{
    auto *parser = static_cast<xmlParserCtxt *>(context);
    xmlNode *last = parser->node == nullptr ? nullptr : parser->node->last;
    const bool goesOn = last != nullptr && last->type == XML_TEXT_NODE && parser->nodemem > 0;
    xmlNode *piece = goesOn && parser->nodelen > XmlLimits::pieceOfText - size
                         ? xmlNewDocTextLen(parser->myDoc, text, size)
                         : nullptr;
    if (piece == nullptr) {
        xmlSAX2Characters(context, text, size);
        return;
    }
    piece->parent = parser->node;
    piece->prev = last;
    last->next = parser->node->last = piece;
    parser->nodelen = size;
    parser->nodemem = size + 1;
}

/// What entities hold doesn't count against the bound on depth while it is parsed, but it does once it was written out
/// in their place: such a document could be saved, but not read again.
bool isTooDeep(const xmlDoc *document)
{
    if (document->intSubset == nullptr || document->intSubset->entities == nullptr)
        return false;
    const xmlNode *root = xmlDocGetRootElement(document);
    unsigned depth = 1;
    const xmlNode *node = root;
    while (const xmlNode *next = nextInTree(node, root)) {
        if (next->parent == node) {
            if (++depth >= xmlParserMaxDepth)
                return true;
        } else {
            for (const xmlNode *parent = node->parent; parent != next->parent; parent = parent->parent)
                --depth;
        }
        node = next;
    }
    return false;
}

/// A document that begins with the byte order mark of UTF-16, declared or not, is written back as that.
void noteByteOrderMark(xmlDoc *document, const QByteArray &bytes)
{
    if (document->encoding == nullptr && (bytes.startsWith("\xFF\xFE") || bytes.startsWith("\xFE\xFF")))
        document->encoding = xmlStrdup(reinterpret_cast<const xmlChar *>("UTF-16"));
}

} // namespace

void XmlDocDeleter::operator()(xmlDoc *document) const
{
    delete static_cast<DocumentNotes *>(document->_private);
    xmlFreeDoc(document);
}

XmlDocPtr XmlGate::parse(const QByteArray &bytes, const XmlBounds &bounds, const char *encoding)
{
    ParserGuard guard(bounds);
    guard.handlers().startElementNs = startElement;
    guard.handlers().characters = guard.handlers().ignorableWhitespace = addText;
    XmlDocPtr document;
    if (!guard.read(bytes, encoding, document) || xmlDocGetRootElement(document.get()) == nullptr ||
        isTooDeep(document.get()))
        return nullptr;
    DocumentNotes &notes = DocumentNotes::of(*document);
    notes = guard.notes();
    noteByteOrderMark(document.get(), bytes);
    if (guard.usesUndeclaredPrefixes() && bounds.undeclaredPrefixesAreBound &&
        !UndeclaredPrefixes::bind(document.get()))
        return nullptr;
    return document;
}

bool XmlGate::mustBeTried(const xmlDoc *document)
{
    return DocumentNotes::of(*document).mustBeTried;
}
