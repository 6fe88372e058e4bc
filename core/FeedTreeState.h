// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "core/FeedTree.h"

#include <QSet>

/// What is selected and what is open in a FeedTree, apart from its nodes and without a widget: the view shows it and
/// reports what the user changes, the catalogue writes the folding down, and who acts on "the selected feed" asks here.
class FeedTreeState final : public QObject
{
    Q_OBJECT

public:
    /// Of `tree`, which must outlive this. Made before any view of the tree, so that a node that goes loses its
    /// selection before a view looks for another one.
    explicit FeedTreeState(FeedTree &tree, QObject *parent = nullptr);

    FeedNodePtr selected() const { return m_selected; }

    /// Makes `node` (or nothing) the selected one. A node that is gone selects nothing.
    void select(const FeedNodePtr &node);

    bool isExpanded(const FeedNodePtr &node) const { return m_expanded.contains(node.get()); }

    /// Opens or closes a node. Does nothing for a null node or one that is gone.
    void setExpanded(const FeedNodePtr &node, bool expanded);

    /// Opens all nodes above `node` and asks the view to scroll to it. Throws RunTimeError::objectNotSet() for a null
    /// node.
    void bringIntoView(const FeedNodePtr &node);

    /// The node of the row below, respectively above, `node` as they are shown (children of closed nodes are passed
    /// over); null at the ends.
    FeedNodePtr next(const FeedNodePtr &node) const;
    FeedNodePtr previous(const FeedNodePtr &node) const;

Q_SIGNALS:
    void selectionChanged(const FeedNodePtr &node);
    void expansionChanged(const FeedNodePtr &node, bool expanded);
    void bringIntoViewAsked(const FeedNodePtr &node);

private:
    void handleAboutToBeRemoved(const FeedNodePtr &node);
    void forgetFolding(const FeedNode &node);
    FeedNodePtr lastShownBelow(FeedNodePtr node) const;

    FeedNodePtr m_selected;
    QSet<const FeedNode *> m_expanded; ///< nodes of the tree only
};
