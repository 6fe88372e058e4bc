// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/feed/MediaStandIns.h"

#include "engine/feed/ElementText.h"

namespace {

bool isMedia(const xmlNode *element, std::string_view name)
{
    const std::string_view space = nameOf(element->ns);
    return viewOf(element->name) == name &&
           (space == "http://search.yahoo.com/mrss/" || space == "http://search.yahoo.com/mrss");
}

/// The first such element with an address among the children, or in a group among them.
const xmlNode *firstMedium(const xmlNode *parent, std::string_view name)
{
    for (const xmlNode *child = elementFrom<const xmlNode>(parent->children); child != nullptr;
         child = elementFrom<const xmlNode>(child->next)) {
        if (isMedia(child, name) && !attributeOf(child, "url").isEmpty())
            return child;
        if (!isMedia(child, "group"))
            continue;
        for (const xmlNode *member = elementFrom<const xmlNode>(child->children); member != nullptr;
             member = elementFrom<const xmlNode>(member->next))
            if (isMedia(member, name) && !attributeOf(member, "url").isEmpty())
                return member;
    }
    return nullptr;
}

/// That attribute of the item's medium.
QString medium(const FoundElement &item)
{
    const xmlNode *content = firstMedium(item.element, "content");
    return attributeOf(content != nullptr ? content : firstMedium(item.element, "thumbnail"), item.detail);
}

constexpr FieldRow<ItemField> rows[] = {
    {ItemField::Author, {From::itunes("author")}},
    {ItemField::MediumUrl, {From::itself(medium, "url")}},
    {ItemField::MediumType, {From::itself(medium, "type")}},
    {ItemField::MediumLength, {From::itself(medium, "fileSize")}},
};

} // namespace

std::span<const FieldRow<ItemField>> MediaStandIns::fields()
{
    return rows;
}
