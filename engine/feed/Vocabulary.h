// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "engine/feed/Elements.h"
#include "engine/feed/FeedNamespaces.h"

#include <array>
#include <cstring>
#include <utility>
#include <vector>

/// An element as a format names it.
struct ElementName
{
    NamespaceTest in = nullptr; ///< null: one of the format's own
    std::string_view local;
};

/// The elements that a format reads fields from, each with a number.
class Vocabulary final
{
public:
    using Number = unsigned char;
    static constexpr Number none = 0;

    /// How many elements a format may name.
    static constexpr std::size_t most = 31;

    /// `ownNamespaces` tells those in which the format's own elements lie.
    explicit Vocabulary(NamespaceTest ownNamespaces) { m_groups.push_back({ownNamespaces, {}}); }

    /// The number of that element from now on.
    Number add(const ElementName &name);

    /// `none` for elements that were not added.
    Number numberOf(const xmlNode *element) const;

    /// True when an element is one of the format's own, and of that name.
    bool isOwn(const xmlNode *element, const char *name) const
    {
        return isOwn(element->name, nameOf(element->ns), name);
    }
    bool isOwn(const xmlChar *local, std::string_view space, const char *name) const
    {
        return std::strcmp(reinterpret_cast<const char *>(local), name) == 0 && m_groups.front().in(space);
    }

    /// The first child that is an own element of that name; null when there is none.
    template <class Node>
    Node *ownChild(Node *parent, const char *name) const
    {
        Node *child = elementFrom<Node>(parent->children);
        while (child != nullptr && !isOwn(child, name))
            child = elementFrom<Node>(child->next);
        return child;
    }

    /// The next sibling of the same number; null after the last.
    const xmlNode *nextAlike(const xmlNode *element) const;

private:
    /// The elements of one namespace, by name.
    struct Group
    {
        NamespaceTest in;
        std::vector<std::pair<std::string_view, Number>> names;
    };

    std::vector<Group> m_groups;
    Number m_last = none;
};

/// The children of an element that its format reads, the first of each name.
class ChildElements final
{
public:
    /// Of no child so far. `parent` may be null.
    ChildElements(const Vocabulary &vocabulary, const xmlNode *parent) : m_vocabulary(&vocabulary), m_parent(parent) {}

    /// Takes a child into account that follows those already given.
    void add(const xmlNode *child);

    /// Takes all children of the parent into account.
    void addAll();

    const xmlNode *parent() const { return m_parent; }
    const Vocabulary &vocabulary() const { return *m_vocabulary; }

    /// The first child of that number; null when there is none, and for Vocabulary::none.
    const xmlNode *first(Vocabulary::Number number) const { return m_first[number]; }

private:
    const Vocabulary *m_vocabulary;
    const xmlNode *m_parent;
    std::array<const xmlNode *, Vocabulary::most + 1> m_first{};
};
