// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/feed/FeedFormats.h"

#include "engine/feed/JsonFeed.h"
#include "engine/feed/MediaStandIns.h"

// One format a file. What is named here is read, and nothing else knows it.
extern const FeedFormat rss091Format, rss092Format, rss20Format, rdf10Format, atom03Format;
extern const FeedFormat atom10Format, rss090Format, rss11Format, otherRssFormat;

const FormatSet &usualFormats()
{
    static const FormatSet formats({FormatReader(rss091Format), FormatReader(rss092Format), FormatReader(rss20Format),
                                    FormatReader(rdf10Format), FormatReader(atom03Format)},
                                   nullptr);
    return formats;
}

const FormatSet &allFormats()
{
    static const FormatSet formats = [] {
        std::vector<FormatReader> readers;
        for (const FeedFormat *format : {&rss091Format, &rss092Format, &rss20Format, &rdf10Format, &atom03Format,
                                         &atom10Format, &rss090Format, &rss11Format, &otherRssFormat})
            readers.emplace_back(*format, MediaStandIns::fields());
        return FormatSet(std::move(readers), JsonFeed::toAtom);
    }();
    return formats;
}

static bool isHtml(const xmlChar *name)
{
    return xmlStrcasecmp(name, xmlText("html")) == 0;
}

Recognised FormatSet::recognise(const xmlDoc *document) const
{
    const xmlNode *root = xmlDocGetRootElement(document);
    if (nameOf(root->ns) == NamespaceName::xhtml || isHtml(root->name))
        return {LoadNotAFeed};
    FeedLoadResult known = LoadUnknownFormat;
    for (const FormatReader &reader : m_readers) {
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
