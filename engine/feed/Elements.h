// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <libxml/tree.h>

#include <string_view>

/// Small views of a tree of libxml2.

/// A text of the library; a null pointer says "".
inline std::string_view viewOf(const xmlChar *text)
{
    return text == nullptr ? std::string_view() : std::string_view(reinterpret_cast<const char *>(text));
}

inline const xmlChar *xmlText(const char *text)
{
    return reinterpret_cast<const xmlChar *>(text);
}

/// The name of a namespace; "" stands for none.
inline std::string_view nameOf(const xmlNs *ns)
{
    return ns == nullptr ? std::string_view() : viewOf(ns->href);
}

/// The next element among the siblings from `node` on, itself included; null when there is none.
template <class Node>
Node *elementFrom(Node *node)
{
    while (node != nullptr && node->type != XML_ELEMENT_NODE)
        node = node->next;
    return node;
}
