// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/feed/RdfFamily.h"

bool RdfFamily::isRdfElement(const xmlNode *element, std::string_view name)
{
    return viewOf(element->name) == name && nameOf(element->ns) == NamespaceName::rdf;
}

bool RdfFamily::holdsChannel(const xmlNode *root, NamespaceTest isOwn)
{
    for (const xmlNode *node = elementFrom<const xmlNode>(root->children); node != nullptr;
         node = elementFrom<const xmlNode>(node->next))
        if (viewOf(node->name) == "channel" && isOwn(nameOf(node->ns)))
            return true;
    return false;
}

void RdfFamily::addTexts(ItemWriter &item, const ItemContent &content)
{
    item.addElement("title", content.title);
    item.addElement("link", content.link);
    item.add("description", content.description);
    item.addDc("subject", content.category);
    item.addDc("creator", content.author);
    item.addDc("date", content.pubDate);
}
