// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/feed/RdfFamily.h"

extern const FeedFormat rdf10Format;

namespace {

FeedLoadResult recognise(const xmlNode *root)
{
    const bool isOurs = RdfFamily::isRdfElement(root, "RDF") && RdfFamily::holdsChannel(root, isRss090);
    return isOurs ? LoadOk : LoadUnknownFormat;
}

} // namespace

/// RSS 0.90: RDF Site Summary 1.0 before its items had names and its channel a list of them.
extern const FeedFormat rss090Format = [] {
    FeedFormat format = rdf10Format;
    format.version = Rss090;
    format.isOwn = isRss090;
    format.ownNamespace = "http://my.netscape.com/rdf/simple/0.9/";
    format.recognise = recognise;
    format.write = RdfFamily::addTexts;
    format.completeCopy = nullptr;
    format.itemsChanged = nullptr;
    return format;
}();
