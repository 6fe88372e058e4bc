#include "engine/feed/FeedElements.h"

#include <algorithm>
#include <span>
#include <string_view>
#include <utility>

namespace {

using Named = std::pair<std::string_view, Element>;

// Both lists are in the order of their names.
constexpr Named ownElements[] = {{"author", Element::Author},
                                 {"category", Element::Category},
                                 {"comments", Element::Comments},
                                 {"content", Element::Content},
                                 {"copyright", Element::Copyright},
                                 {"created", Element::Created},
                                 {"description", Element::Description},
                                 {"enclosure", Element::Enclosure},
                                 {"guid", Element::Guid},
                                 {"height", Element::Height},
                                 {"image", Element::Image},
                                 {"issued", Element::Issued},
                                 {"items", Element::Items},
                                 {"language", Element::Language},
                                 {"link", Element::Link},
                                 {"managingEditor", Element::ManagingEditor},
                                 {"modified", Element::Modified},
                                 {"name", Element::Name},
                                 {"pubDate", Element::PubDate},
                                 {"source", Element::Source},
                                 {"summary", Element::Summary},
                                 {"tagline", Element::Tagline},
                                 {"title", Element::Title},
                                 {"ttl", Element::Ttl},
                                 {"url", Element::Url},
                                 {"webMaster", Element::WebMaster},
                                 {"width", Element::Width}};
constexpr Named dcElements[] = {{"creator", Element::DcCreator},         {"date", Element::DcDate},
                                {"description", Element::DcDescription}, {"language", Element::DcLanguage},
                                {"publisher", Element::DcPublisher},     {"rights", Element::DcRights},
                                {"subject", Element::DcSubject},         {"title", Element::DcTitle}};

static_assert(std::is_sorted(std::begin(ownElements), std::end(ownElements)));
static_assert(std::is_sorted(std::begin(dcElements), std::end(dcElements)));

Element find(std::span<const Named> names, std::string_view name)
{
    const auto found = std::lower_bound(names.begin(), names.end(), name,
                                        [](const Named &a, std::string_view b) { return a.first < b; });
    return found != names.end() && found->first == name ? found->second : Element::None;
}

bool isOwn(Family family, Namespace kind)
{
    switch (family) {
    case Family::Rss:
        return kind == Namespace::None || kind == Namespace::Rss || kind == Namespace::Rss090 ||
               kind == Namespace::Rss10;
    case Family::Rdf:
        return kind == Namespace::Rss10;
    case Family::Atom:
        return kind == Namespace::Atom03;
    }
    return false;
}

} // namespace

bool belongsTo(Family family, const xmlNode *element)
{
    return isOwn(family, kindOf(element->ns));
}

Element elementOf(Family family, const xmlNode *element)
{
    const std::string_view name(reinterpret_cast<const char *>(element->name));
    const Namespace kind = kindOf(element->ns);
    if (isOwn(family, kind))
        return find(ownElements, name);
    if (kind == Namespace::Dc)
        return find(dcElements, name);
    return kind == Namespace::Content && name == "encoded" ? Element::ContentEncoded : Element::None;
}

ChildElements::ChildElements(Family family, const xmlNode *parent)
{
    for (const xmlNode *child = parent->children; child != nullptr; child = child->next)
        add(family, child);
}

void ChildElements::add(Family family, const xmlNode *child)
{
    if (child->type != XML_ELEMENT_NODE)
        return;
    const Element element = elementOf(family, child);
    const xmlNode *&slot = m_first[static_cast<std::size_t>(element)];
    if (element != Element::None && slot == nullptr)
        slot = child;
}

const xmlNode *ChildElements::first(Element element) const
{
    return m_first[static_cast<std::size_t>(element)];
}

const xmlNode *nextOfKind(Family family, const xmlNode *element)
{
    const Element kind = elementOf(family, element);
    for (const xmlNode *node = element->next; node != nullptr; node = node->next)
        if (node->type == XML_ELEMENT_NODE && elementOf(family, node) == kind)
            return node;
    return nullptr;
}

xmlNode *elementFrom(xmlNode *node)
{
    while (node != nullptr && node->type != XML_ELEMENT_NODE)
        node = node->next;
    return node;
}

const xmlNode *elementFrom(const xmlNode *node)
{
    while (node != nullptr && node->type != XML_ELEMENT_NODE)
        node = node->next;
    return node;
}
