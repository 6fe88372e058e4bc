// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "engine/feed/FeedDocument.h"

/// An item's node, on its way from one document into another. It keeps its document alive.
class FeedItem final
{
public:
    FeedItem(std::shared_ptr<const FeedDocument> document, const xmlNode *node)
        : m_document(std::move(document)), m_node(node)
    {}

    const FeedDocument &document() const { return *m_document; }
    const xmlNode *node() const { return m_node; }

private:
    std::shared_ptr<const FeedDocument> m_document;
    const xmlNode *m_node;
};
