#include "engine/feed/ElementText.h"
#include "engine/feed/FeedDocument.h"

#include <cstring>

namespace {

QLatin1String localName(const xmlNode *element)
{
    return QLatin1String(reinterpret_cast<const char *>(element->name));
}

bool isWebPage(const xmlDoc *document, const xmlNode *root)
{
    if (kindOf(root->ns) == Namespace::Xhtml ||
        localName(root).compare(QLatin1String("html"), Qt::CaseInsensitive) == 0)
        return true;
    const xmlDtd *type = document->intSubset;
    return type != nullptr && xmlStrcasecmp(type->name, reinterpret_cast<const xmlChar *>("html")) == 0;
}

const FeedFormat *rssOfVersion(const QString &version)
{
    if (version == QLatin1String("0.91"))
        return &rss091Format();
    if (version == QLatin1String("0.92"))
        return &rss092Format();
    return version == QLatin1String("2.0") ? &rss20Format() : nullptr;
}

/// RDF is told by the namespace of its channel.
FeedLoadResult recogniseRdf(const xmlNode *root, const FeedFormat *&format)
{
    FeedLoadResult result = LoadUnknownFormat;
    for (const xmlNode *node = elementFrom(std::as_const(root->children)); node != nullptr;
         node = elementFrom(std::as_const(node->next))) {
        const Namespace kind = kindOf(node->ns);
        if (kind == Namespace::Rss10 && localName(node) == QLatin1String("channel")) {
            format = &rdf10Format();
            return LoadOk;
        }
        if (kind == Namespace::Rss090 || kind == Namespace::Rss11)
            result = LoadBadVersionOther;
    }
    return result;
}

bool isSomeAtom(const xmlNode *feed)
{
    switch (kindOf(feed->ns)) {
    case Namespace::Atom03:
    case Namespace::AtomOther:
        return true;
    case Namespace::None: // the first drafts had no namespace, but a version
        return !attributeOf(feed, "version").isEmpty();
    default:
        return false;
    }
}

} // namespace

FeedLoadResult recognise(const xmlDoc *document, const FeedFormat *&format)
{
    format = nullptr;
    const xmlNode *root = xmlDocGetRootElement(document);
    if (isWebPage(document, root))
        return LoadNotAFeed;
    const QLatin1String name = localName(root);
    const Namespace kind = kindOf(root->ns);
    if (name == QLatin1String("rss") && belongsTo(Family::Rss, root)) {
        format = rssOfVersion(attributeOf(root, "version"));
        return format != nullptr ? LoadOk : LoadBadVersion;
    }
    if (name == QLatin1String("RDF") && kind == Namespace::Rdf)
        return recogniseRdf(root, format);
    if (kind == Namespace::Rss11 && name == QLatin1String("Channel"))
        return LoadBadVersionOther;
    if (name == QLatin1String("feed") && isSomeAtom(root)) {
        if (kind != Namespace::Atom03 || attributeOf(root, "version") != QLatin1String("0.3"))
            return LoadBadVersionOther;
        format = &atom03Format();
        return LoadOk;
    }
    return LoadUnknownFormat;
}
