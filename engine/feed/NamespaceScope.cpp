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

bool declaresAddress(const xmlNode *element, const char *name)
{
    for (const xmlNs *ns = element->nsDef; ns != nullptr; ns = ns->next)
        if (ns->prefix != nullptr && viewOf(ns->href) == name)
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
    const bool onRoot = !declaresAddress(root, name);
    for (int number = 1;; ++number) {
        const std::string candidate = number == 1 ? std::string(prefix) : prefix + std::to_string(number);
        const xmlChar *wish = xmlText(candidate.c_str());
        if (onRoot ? !declaresPrefix(root, wish) && !isHidden(element, root, wish)
                   : xmlSearchNs(element->doc, element, wish) == nullptr)
            return xmlNewNs(onRoot ? root : element, xmlText(name), wish);
    }
}
