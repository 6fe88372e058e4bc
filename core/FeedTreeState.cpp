// SPDX-License-Identifier: GPL-3.0-or-later

#include "core/FeedTreeState.h"

#include "platform/RunTimeError.h"

#include <algorithm>

namespace {

bool isGone(const FeedNodePtr &node)
{
    return !node || node->image() == NodeImage::Gone;
}

bool isWithin(const FeedNodePtr &node, const FeedNodePtr &top)
{
    for (FeedNodePtr above = node; above; above = above->parent())
        if (above == top)
            return true;
    return false;
}

} // namespace

FeedTreeState::FeedTreeState(FeedTree &tree, QObject *parent) : QObject(parent)
{
    connect(&tree, &FeedTree::aboutToBeRemoved, this, &FeedTreeState::handleAboutToBeRemoved);
    connect(&tree, &FeedTree::rowsRemoved, this, [this] {
        if (m_selected && isGone(m_selected)) // a view may have chosen within the subtree while the rows went
            select(nullptr);
    });
}

void FeedTreeState::handleAboutToBeRemoved(const FeedNodePtr &node)
{
    if (isWithin(m_selected, node))
        select(nullptr);
    forgetFolding(*node);
}

void FeedTreeState::forgetFolding(const FeedNode &node)
{
    m_expanded.remove(&node);
    for (const FeedNodePtr &child : node.children())
        forgetFolding(*child);
}

void FeedTreeState::select(const FeedNodePtr &node)
{
    const FeedNodePtr chosen = isGone(node) ? nullptr : node;
    if (m_selected == chosen)
        return;
    m_selected = chosen;
    Q_EMIT selectionChanged(chosen);
}

void FeedTreeState::setExpanded(const FeedNodePtr &node, bool expanded)
{
    if (isGone(node) || isExpanded(node) == expanded)
        return;
    if (expanded)
        m_expanded.insert(node.get());
    else
        m_expanded.remove(node.get());
    Q_EMIT expansionChanged(node, expanded);
}

void FeedTreeState::bringIntoView(const FeedNodePtr &node)
{
    if (!node)
        throw RunTimeError::objectNotSet();
    for (FeedNodePtr above = node->parent(); above; above = above->parent())
        setExpanded(above, true);
    Q_EMIT bringIntoViewAsked(node);
}

FeedNodePtr FeedTreeState::next(const FeedNodePtr &node) const
{
    if (isGone(node))
        return nullptr;
    if (isExpanded(node) && !node->children().empty())
        return node->children().front();
    FeedNodePtr from = node;
    while (const FeedNodePtr parent = from->parent()) {
        const std::vector<FeedNodePtr> &siblings = parent->children();
        const auto after = std::find(siblings.begin(), siblings.end(), from) + 1;
        if (after != siblings.end())
            return *after;
        from = parent;
    }
    return nullptr;
}

FeedNodePtr FeedTreeState::lastShownBelow(FeedNodePtr node) const
{
    while (isExpanded(node) && !node->children().empty())
        node = node->children().back();
    return node;
}

FeedNodePtr FeedTreeState::previous(const FeedNodePtr &node) const
{
    const FeedNodePtr parent = isGone(node) ? nullptr : node->parent();
    if (!parent)
        return nullptr;
    const std::vector<FeedNodePtr> &siblings = parent->children();
    const auto place = std::find(siblings.begin(), siblings.end(), node);
    return place == siblings.begin() ? parent : lastShownBelow(*(place - 1));
}
