// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/feed/FormatReader.h"

extern const FeedFormat rdf10Format;

namespace {

FeedLoadResult recognise(const xmlNode *root)
{
    if (viewOf(root->name) != "RDF" || nameOf(root->ns) != NamespaceName::rdf)
        return LoadUnknownFormat;
    for (const xmlNode *node = elementFrom<const xmlNode>(root->children); node != nullptr;
         node = elementFrom<const xmlNode>(node->next))
        if (viewOf(node->name) == "channel" && isRss090(nameOf(node->ns)))
            return LoadOk;
    return LoadUnknownFormat;
}

void write(ItemWriter &item, const ItemContent &content)
{
    item.addElement("title", content.title);
    item.addElement("link", content.link);
    item.add("description", content.description);
    item.addDc("subject", content.category);
    item.addDc("creator", content.author);
    item.addDc("date", content.pubDate);
}

} // namespace

/// RSS 0.90: RDF Site Summary 1.0 before its items had names and its channel a list of them.
extern const FeedFormat rss090Format = [] {
    FeedFormat format = rdf10Format;
    format.version = Rss090;
    format.isOwn = isRss090;
    format.ownNamespace = "http://my.netscape.com/rdf/simple/0.9/";
    format.recognise = recognise;
    format.write = write;
    format.completeCopy = nullptr;
    format.itemsChanged = nullptr;
    return format;
}();
