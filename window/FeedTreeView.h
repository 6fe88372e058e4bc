// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "core/FeedTreeState.h"
#include "window/NodeDrop.h"

#include <QTreeView>

#include <optional>

class ImageList;

/// The feed tree `tvwFavoris` on the screen: a view of a FeedTree and of what is selected and open in it. It tells what
/// the user does with the nodes, and reports selection and folding that the user changes.
///
/// A node counts as clicked when the left button is released over the node that it was pressed on; a drag neither
/// clicks nor selects.
class FeedTreeView : public QTreeView
{
    Q_OBJECT

public:
    /// `state` is that of `tree`; `pictures` are addressed by the nodes' image indices. Nothing is owned.
    FeedTreeView(FeedTree &tree, FeedTreeState &state, const ImageList &pictures, QWidget *parent = nullptr);

    /// The node under the pointer at the last mouse-down; null when there was none. Kept after a drop.
    FeedNodePtr draggedNode() const { return m_draggedNode; }

Q_SIGNALS:
    void nodeClicked(const FeedNodePtr &node);

    /// The context menu of a node was asked for, with the right button or the keyboard. The node isn't selected by
    /// that.
    void nodeRightClicked(const FeedNodePtr &node, const QPoint &globalPosition);

    /// Up or Down, before the selection moves to `node`.
    void arrowKeyTo(const FeedNodePtr &node);

    /// The dragged node was dropped on `target` (null: on no node); `insertAbove` when in its upper half. By keyboard a
    /// feed is cut (Ctrl+X), and pasted (Ctrl+V) above the selected one or into the selected folder.
    void nodeDropped(const FeedNodePtr &target, bool insertAbove);

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dragLeaveEvent(QDragLeaveEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void scrollContentsBy(int dx, int dy) override;
    void drawBranches(QPainter *painter, const QRect &rect, const QModelIndex &index) const override;
    void rowsAboutToBeRemoved(const QModelIndex &parent, int start, int end) override;
    QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex &index, const QEvent *event) const override;

private:
    FeedNodePtr nodeAt(const QPoint &position) const;
    bool carriesDraggedNode(const QMimeData &carried) const;
    void startNodeDrag();
    void pasteNode();
    void makeSelectedCurrent();
    void handleBringIntoView(const FeedNodePtr &node);
    void handleTreeSelection(const FeedNodePtr &node);
    void handleViewSelection();

    FeedTree &m_tree;
    FeedTreeState &m_state;
    QPersistentModelIndex m_wantedInView;
    FeedNodePtr m_draggedNode;
    FeedNodePtr m_cutNode;             ///< the next one to be pasted
    std::optional<QPoint> m_pressedAt; ///< of a left press over a node, until its release or drag
    NodeDrop m_drop;
};
