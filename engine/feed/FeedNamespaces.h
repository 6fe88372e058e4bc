#pragma once

#include <libxml/tree.h>

/// The namespaces that a feed document is read by, and the declaring of those that it lacks.

/// What an element's namespace name says about it.
enum class Namespace : unsigned char {
    None,      ///< no namespace
    Rss,       ///< one that RSS 0.91 to 2.0 documents were given as a default namespace
    Rss090,    ///< RSS 0.90, an RDF format
    Rss10,     ///< RDF Site Summary 1.0
    Rss11,     ///< RSS 1.1, an RDF format
    Atom03,    ///< Atom 0.3
    AtomOther, ///< any other Atom
    Rdf,
    Xhtml,
    Dc,
    Content,
    Wfw,
    Itunes,
    Other
};

namespace NamespaceName {

inline constexpr const char *rdf = "http://www.w3.org/1999/02/22-rdf-syntax-ns#";
inline constexpr const char *rss10 = "http://purl.org/rss/1.0/";
inline constexpr const char *atom03 = "http://purl.org/atom/ns#";
inline constexpr const char *dc = "http://purl.org/dc/elements/1.1/";

} // namespace NamespaceName

/// The kind of a namespace; None for the null pointer and for the empty name.
Namespace kindOf(const xmlNs *ns);

/// The declaration of `name` that is in scope at `element` and isn't hidden there, or null. A default declaration
/// counts only when `prefixed` is false: attributes can't use it.
xmlNs *namespaceInScope(xmlNode *element, const char *name, bool prefixed);

/// As namespaceInScope(), but declares the namespace when it isn't in scope: on the document element, or, in a
/// document that uses prefixes without declaring them, on `element` itself. `prefix` is the one wished for; the one
/// used bears a number where that is taken.
xmlNs *declaredNamespace(xmlNode *element, const char *name, const char *prefix, bool prefixed);

/// True when the local name and namespace name of an attribute are these; a null `name` stands for no namespace.
bool isAttribute(const xmlAttr *attribute, const char *local, const char *name);
