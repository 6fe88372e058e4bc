// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <libxml/tree.h>

/// The node after `node` in document order, among those below `top`; null at the end. Walks without recursion, as
/// documents choose their depth. What lies within entity declarations isn't visited.
template <class Node>
Node *nextInTree(Node *node, const xmlNode *top)
{
    if (node->type == XML_ELEMENT_NODE && node->children != nullptr)
        return node->children;
    while (node != top && node->next == nullptr)
        node = node->parent;
    return node == top ? nullptr : node->next;
}
