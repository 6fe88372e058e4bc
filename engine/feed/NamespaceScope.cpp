// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/feed/NamespaceScope.h"

#include "engine/feed/Elements.h"

#include <string>

namespace {

bool declaresPrefix(const xmlNode *element, const xmlChar *prefix)
{
    for (const xmlNs *ns = element->nsDef; ns != nullptr; ns = ns->next)
        if (xmlStrEqual(ns->prefix, prefix) != 0)
            return true;
    return false;
}

/// True when an element from `element` up to, and without, `ancestor` binds the prefix anew.
bool isHidden(const xmlNode *element, const xmlNode *ancestor, const xmlChar *prefix)
{
    for (const xmlNode *node = element; node != nullptr && node != ancestor; node = node->parent)
        if (node->type == XML_ELEMENT_NODE && declaresPrefix(node, prefix))
            return true;
    return false;
}

bool hasAttributeOfPrefix(const xmlNode *element, const std::string &prefix)
{
    for (const xmlAttr *attribute = element->properties; attribute != nullptr; attribute = attribute->next)
        if (attribute->ns == nullptr && viewOf(attribute->name).starts_with(prefix + ':'))
            return true;
    return false;
}

} // namespace

xmlNs *namespaceInScope(xmlNode *element, const char *name, bool prefixed)
{
    for (xmlNode *node = element; node != nullptr && node->type == XML_ELEMENT_NODE; node = node->parent)
        for (xmlNs *ns = node->nsDef; ns != nullptr; ns = ns->next)
            if (viewOf(ns->href) == name && (!prefixed || ns->prefix != nullptr) &&
                !isHidden(element, node, ns->prefix))
                return ns;
    return nullptr;
}

xmlNs *prefixedNamespace(xmlNode *element, const char *name, const char *prefix)
{
    if (xmlNs *ns = namespaceInScope(element, name, true))
        return ns;
    xmlNode *root = xmlDocGetRootElement(element->doc);
    // An undeclared prefix is a part of the name in the tree; a declaration on the root would give it a meaning.
    const bool everyPrefixIsDeclared = (element->doc->properties & XML_DOC_NSVALID) != 0;
    for (int number = 1;; ++number) {
        const std::string candidate = number == 1 ? std::string(prefix) : prefix + std::to_string(number);
        const xmlChar *wish = xmlText(candidate.c_str());
        xmlNode *place = everyPrefixIsDeclared ? root : element;
        if (!declaresPrefix(place, wish) && !isHidden(element, place, wish) &&
            !hasAttributeOfPrefix(element, candidate))
            return xmlNewNs(place, xmlText(name), wish);
    }
}
