#include "engine/feed/FeedNamespaces.h"

#include <QByteArray>

#include <cstring>
#include <string>
#include <string_view>

namespace {

bool startsWith(std::string_view text, std::string_view beginning)
{
    return text.substr(0, beginning.size()) == beginning;
}

bool isRssFamily(std::string_view name)
{
    return startsWith(name, "http://backend.userland.com/rss") || startsWith(name, "http://backend.userland.com/RSS") ||
           startsWith(name, "http://blogs.law.harvard.edu/tech/rss") ||
           startsWith(name, "http://cyber.law.harvard.edu/rss") || startsWith(name, "http://www.rssboard.org/rss") ||
           name == "http://purl.org/rss/2.0/" || name == "http://my.netscape.com/publish/formats/rss-0.91.dtd";
}

Namespace kindOfName(std::string_view name)
{
    if (name.empty())
        return Namespace::None;
    if (startsWith(name, "http://purl.org/")) {
        if (name == NamespaceName::rss10)
            return Namespace::Rss10;
        if (name == NamespaceName::atom03)
            return Namespace::Atom03;
        if (name == NamespaceName::dc || name == "http://purl.org/dc/elements/1.0/")
            return Namespace::Dc;
        if (name == "http://purl.org/rss/1.0/modules/content/")
            return Namespace::Content;
        if (startsWith(name, "http://purl.org/net/rss1.1"))
            return Namespace::Rss11;
        if (startsWith(name, "http://purl.org/atom/"))
            return Namespace::AtomOther;
    } else {
        if (name == NamespaceName::rdf)
            return Namespace::Rdf;
        if (name == "http://www.w3.org/1999/xhtml")
            return Namespace::Xhtml;
        if (name == "http://wellformedweb.org/CommentAPI/")
            return Namespace::Wfw;
        // Feeds write this address in several ways: "DTDs/Podcast", "dtds/podcast".
        if (qstricmp(name.data(), "http://www.itunes.com/dtds/podcast-1.0.dtd") == 0)
            return Namespace::Itunes;
        if (name == "http://my.netscape.com/rdf/simple/0.9/" || name == "http://channel.netscape.com/rdf/simple/0.9/")
            return Namespace::Rss090;
        if (name == "http://www.w3.org/2005/Atom" || name == "http://example.com/newformat#" ||
            name == "uri/of/echo/namespace#")
            return Namespace::AtomOther;
    }
    return isRssFamily(name) ? Namespace::Rss : Namespace::Other;
}

const char *chars(const xmlChar *text)
{
    return reinterpret_cast<const char *>(text);
}

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

bool hasAttributeOfPrefix(const xmlNode *element, const std::string &prefix)
{
    for (const xmlAttr *attribute = element->properties; attribute != nullptr; attribute = attribute->next)
        if (attribute->ns == nullptr && startsWith(chars(attribute->name), prefix + ':'))
            return true;
    return false;
}

} // namespace

Namespace kindOf(const xmlNs *ns)
{
    return ns == nullptr || ns->href == nullptr ? Namespace::None : kindOfName(chars(ns->href));
}

xmlNs *namespaceInScope(xmlNode *element, const char *name, bool prefixed)
{
    for (xmlNode *node = element; node != nullptr && node->type == XML_ELEMENT_NODE; node = node->parent)
        for (xmlNs *ns = node->nsDef; ns != nullptr; ns = ns->next)
            if (ns->href != nullptr && std::strcmp(chars(ns->href), name) == 0 &&
                (!prefixed || ns->prefix != nullptr) && !isHidden(element, node, ns->prefix))
                return ns;
    return nullptr;
}

xmlNs *declaredNamespace(xmlNode *element, const char *name, const char *prefix, bool prefixed)
{
    if (xmlNs *ns = namespaceInScope(element, name, prefixed))
        return ns;
    const xmlChar *href = reinterpret_cast<const xmlChar *>(name);
    xmlNode *root = xmlDocGetRootElement(element->doc);
    // An undeclared prefix is a part of the name in the tree; a declaration on the root would give it a meaning.
    const bool everyPrefixIsDeclared = (element->doc->properties & XML_DOC_NSVALID) != 0;
    for (int number = 1;; ++number) {
        const std::string candidate = number == 1 ? std::string(prefix) : prefix + std::to_string(number);
        const xmlChar *wish = reinterpret_cast<const xmlChar *>(candidate.c_str());
        xmlNode *place = everyPrefixIsDeclared ? root : element;
        if (!declaresPrefix(place, wish) && !isHidden(element, place, wish) &&
            !hasAttributeOfPrefix(element, candidate))
            return xmlNewNs(place, href, wish);
    }
}

bool isAttribute(const xmlAttr *attribute, const char *local, const char *name)
{
    if (std::strcmp(chars(attribute->name), local) != 0)
        return false;
    if (name == nullptr)
        return attribute->ns == nullptr;
    return attribute->ns != nullptr && attribute->ns->href != nullptr &&
           std::strcmp(chars(attribute->ns->href), name) == 0;
}
