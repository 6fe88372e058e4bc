// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/feed/FeedFormats.h"

// One format a file. What is named here is read, and nothing else knows it.
extern const FeedFormat rss091Format, rss092Format, rss20Format, rdf10Format, atom03Format;

static const std::vector<FormatReader> &readers()
{
    static const std::vector<FormatReader> all{FormatReader(rss091Format), FormatReader(rss092Format),
                                               FormatReader(rss20Format), FormatReader(rdf10Format),
                                               FormatReader(atom03Format)};
    return all;
}

static bool isHtml(const xmlChar *name)
{
    return xmlStrcasecmp(name, xmlText("html")) == 0;
}

Recognised recognise(const xmlDoc *document)
{
    const xmlNode *root = xmlDocGetRootElement(document);
    if (nameOf(root->ns) == NamespaceName::xhtml || isHtml(root->name))
        return {LoadNotAFeed};
    FeedLoadResult known = LoadUnknownFormat;
    for (const FormatReader &reader : readers()) {
        const FeedLoadResult result = reader.format().recognise(root);
        if (result == LoadOk)
            return {LoadOk, &reader};
        if (known == LoadUnknownFormat)
            known = result;
    }
    // The document type of web pages stands above feeds too; above what is nothing else it tells a page.
    const bool isPage =
        known == LoadUnknownFormat && document->intSubset != nullptr && isHtml(document->intSubset->name);
    return {isPage ? LoadNotAFeed : known};
}
