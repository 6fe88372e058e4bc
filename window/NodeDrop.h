// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "core/FeedTree.h"

#include <QPoint>
#include <QTimer>

#include <optional>

class QPainter;
class QTreeView;

/// A node that is dragged over the tree: where it would go, the mark that shows it, and the rows that come into sight
/// while the pointer rests near an edge.
class NodeDrop : public QObject
{
    Q_OBJECT

public:
    struct Place
    {
        FeedNodePtr target; ///< null: on no node
        bool insertAbove = false;
    };

    /// `view` shows `tree`. Nothing is owned.
    NodeDrop(QTreeView &view, const FeedTree &tree);

    /// False for a feed right under the root: beside it there is no place that the catalogue could keep.
    static bool lands(const FeedNodePtr &target);

    Place placeAt(const QPoint &position) const;

    /// The drag of `dragged` has come to `position` of the viewport. True when a drop there moves it.
    bool moveTo(const FeedNodePtr &dragged, const QPoint &position);

    /// The drag is over, or has left the tree.
    void end();

    /// The rows have moved under the pointer.
    void follow();

    void paint(QPainter &painter) const;

private:
    void scroll();

    QTreeView &m_view;
    const FeedTree &m_tree;
    FeedNodePtr m_dragged;
    std::optional<QPoint> m_position;
    std::optional<Place> m_mark;
    QTimer m_scrolling;
};
