// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/feed/Vocabulary.h"

#include <QtGlobal>

#include <algorithm>

namespace {

template <class Names>
auto placeOf(Names &names, std::string_view name)
{
    return std::lower_bound(names.begin(), names.end(), name,
                            [](const auto &entry, std::string_view wanted) { return entry.first < wanted; });
}

} // namespace

Vocabulary::Number Vocabulary::add(const ElementName &name)
{
    auto group = m_groups.begin();
    if (name.in != nullptr)
        group = std::find_if(group + 1, m_groups.end(), [&](const Group &other) { return other.in == name.in; });
    if (group == m_groups.end())
        group = m_groups.insert(group, {name.in, {}});
    const auto place = placeOf(group->names, name.local);
    if (place != group->names.end() && place->first == name.local)
        return place->second;
    Q_ASSERT(m_last < most);
    group->names.insert(place, {name.local, ++m_last});
    return m_last;
}

Vocabulary::Number Vocabulary::numberOf(const xmlNode *element) const
{
    const std::string_view space = nameOf(element->ns);
    for (const Group &group : m_groups) {
        if (!group.in(space))
            continue;
        const std::string_view name = viewOf(element->name);
        const auto place = placeOf(group.names, name);
        return place != group.names.end() && place->first == name ? place->second : none;
    }
    return none;
}

const xmlNode *Vocabulary::nextAlike(const xmlNode *element) const
{
    const Number number = numberOf(element);
    do
        element = elementFrom<const xmlNode>(element->next);
    while (element != nullptr && numberOf(element) != number);
    return element;
}

void ChildElements::add(const xmlNode *child)
{
    const Vocabulary::Number number = m_vocabulary->numberOf(child);
    if (number != Vocabulary::none && m_first[number] == nullptr)
        m_first[number] = child;
}

void ChildElements::addAll()
{
    for (const xmlNode *child = elementFrom<const xmlNode>(m_parent->children); child != nullptr;
         child = elementFrom<const xmlNode>(child->next))
        add(child);
}
