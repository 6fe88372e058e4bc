#pragma once

#include "engine/feed/FeedNamespaces.h"

#include <array>

/// Which namespace a format's own elements lie in.
enum class Family : unsigned char {
    Rss, ///< none, or one of the RSS namespaces
    Rdf, ///< that of RSS 1.0
    Atom ///< that of Atom 0.3
};

/// True when an element is one of the family's own.
bool belongsTo(Family family, const xmlNode *element);

/// The elements that fields are read from, whatever the format.
enum class Element : unsigned char {
    Author,
    Category,
    Comments,
    Content,
    Copyright,
    Created,
    Description,
    Enclosure,
    Guid,
    Height,
    Image,
    Issued,
    Items,
    Language,
    Link,
    ManagingEditor,
    Modified,
    Name,
    PubDate,
    Source,
    Summary,
    Tagline,
    Title,
    Ttl,
    Url,
    WebMaster,
    Width,
    DcCreator,
    DcDate,
    DcDescription,
    DcLanguage,
    DcPublisher,
    DcRights,
    DcSubject,
    DcTitle,
    ContentEncoded,
    None ///< no such element; also the number of the others
};

/// The kind of an element, as a document of that family reads it.
Element elementOf(Family family, const xmlNode *element);

/// The first child element of each kind, found in one pass.
class ChildElements final
{
public:
    ChildElements() = default;
    ChildElements(Family family, const xmlNode *parent);

    /// Takes a child into account that follows those already given.
    void add(Family family, const xmlNode *child);

    /// The first child of that kind; null when there is none, and for Element::None.
    const xmlNode *first(Element element) const;

private:
    std::array<const xmlNode *, static_cast<std::size_t>(Element::None) + 1> m_first{};
};

/// The next sibling of the same kind; null after the last.
const xmlNode *nextOfKind(Family family, const xmlNode *element);

/// The next element among the siblings from `node` on, itself included; null when there is none.
xmlNode *elementFrom(xmlNode *node);
const xmlNode *elementFrom(const xmlNode *node);
