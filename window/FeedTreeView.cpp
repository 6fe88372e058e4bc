// SPDX-License-Identifier: GPL-3.0-or-later

#include "window/FeedTreeView.h"

#include "controls/CutTips.h"
#include "controls/ImageList.h"
#include "controls/ScreenReader.h"
#include "platform/Literals.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QDrag>
#include <QMimeData>
#include <QPainter>
#include <QStyledItemDelegate>
#include <QTimer>

#include <utility>

namespace {

constexpr int pictureAside = 16; // pixels
constexpr int markHeight = 4;    // pixels
const QString nodeMimeType = u"application/x-quillwire-node"_s;

class NodeDelegate final : public QStyledItemDelegate
{
public:
    NodeDelegate(const FeedTree &tree, const ImageList &pictures, QObject *parent)
        : QStyledItemDelegate(parent), m_tree(tree), m_pictures(pictures)
    {}

protected:
    void initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const override
    {
        QStyledItemDelegate::initStyleOption(option, index);
        const FeedNodePtr node = m_tree.node(index);
        if (!node)
            return;
        const bool selected = option->state.testFlag(QStyle::State_Selected) && node->selectedImage() >= 0;
        option->features |= QStyleOptionViewItem::HasDecoration;
        option->icon = m_pictures.icon(selected ? node->selectedImage() : node->image());
        option->decorationSize = QSize(m_pictures.size(), m_pictures.size());
    }

private:
    const FeedTree &m_tree;
    const ImageList &m_pictures;
};

} // namespace

FeedTreeView::FeedTreeView(FeedTree &tree, FeedTreeState &state, const ImageList &pictures, QWidget *parent)
    : QTreeView(parent), m_tree(tree), m_state(state), m_drop(*this, tree)
{
    setModel(&tree);
    setItemDelegate(new NodeDelegate(tree, pictures, this));
    setIconSize(QSize(pictures.size(), pictures.size()));
    setHeaderHidden(true);
    setUniformRowHeights(true);
    setEditTriggers(NoEditTriggers);
    setSelectionMode(SingleSelection);
    setAcceptDrops(true);
    viewport()->setAcceptDrops(true);
    setAutoScroll(true);
    setTextElideMode(Qt::ElideRight);
    new CutTips(*this);
    setAccessibleName(u"Favoris"_s);

    connect(&state, &FeedTreeState::expansionChanged, this,
            [this](const FeedNodePtr &node, bool expanded) { setExpanded(m_tree.indexOf(node), expanded); });
    connect(&state, &FeedTreeState::bringIntoViewAsked, this, &FeedTreeView::handleBringIntoView);
    connect(&state, &FeedTreeState::selectionChanged, this, &FeedTreeView::handleTreeSelection);
    connect(selectionModel(), &QItemSelectionModel::selectionChanged, this, &FeedTreeView::handleViewSelection);
    connect(this, &QTreeView::expanded, this,
            [this](const QModelIndex &index) { m_state.setExpanded(m_tree.node(index), true); });
    connect(this, &QTreeView::collapsed, this,
            [this](const QModelIndex &index) { m_state.setExpanded(m_tree.node(index), false); });
}

FeedNodePtr FeedTreeView::nodeAt(const QPoint &position) const
{
    const QModelIndex index = indexAt(position);
    // Left of the icon there are the lines and the arrow that opens the node.
    return index.isValid() && position.x() >= visualRect(index).left() ? m_tree.node(index) : nullptr;
}

void FeedTreeView::handleBringIntoView(const FeedNodePtr &node)
{
    // Only the last of many requests is seen; a large catalogue makes one for each feed.
    if (!m_wantedInView.isValid())
        QTimer::singleShot(0, this, [this] {
            scrollTo(m_wantedInView, EnsureVisible);
            m_wantedInView = QPersistentModelIndex();
        });
    m_wantedInView = m_tree.indexOf(node);
}

void FeedTreeView::handleTreeSelection(const FeedNodePtr &node)
{
    if (node)
        selectionModel()->setCurrentIndex(m_tree.indexOf(node), QItemSelectionModel::ClearAndSelect);
    else
        selectionModel()->clearSelection();
}

void FeedTreeView::handleViewSelection()
{
    const QModelIndexList selected = selectionModel()->selectedIndexes();
    const FeedNodePtr node = selected.isEmpty() ? nullptr : m_tree.node(selected.first());
    if (node != m_state.selected())
        m_state.select(node);
}

void FeedTreeView::makeSelectedCurrent()
{
    selectionModel()->setCurrentIndex(m_tree.indexOf(m_state.selected()), QItemSelectionModel::NoUpdate);
}

QItemSelectionModel::SelectionFlags FeedTreeView::selectionCommand(const QModelIndex &index, const QEvent *event) const
{
    // The mouse selects on release only, and not after a drag: see mouseReleaseEvent().
    if (event && (event->type() == QEvent::MouseButtonPress || event->type() == QEvent::MouseButtonRelease ||
                  event->type() == QEvent::MouseMove))
        return QItemSelectionModel::NoUpdate;
    return QTreeView::selectionCommand(index, event);
}

void FeedTreeView::mousePressEvent(QMouseEvent *event)
{
    const QPoint position = event->position().toPoint();
    m_draggedNode = nodeAt(position);
    m_pressedAt.reset();
    if (event->button() != Qt::LeftButton)
        return;
    if (m_draggedNode)
        m_pressedAt = position;
    QTreeView::mousePressEvent(event);
    makeSelectedCurrent();
}

void FeedTreeView::mouseMoveEvent(QMouseEvent *event)
{
    if (!m_pressedAt || !event->buttons().testFlag(Qt::LeftButton))
        return;
    if ((event->position().toPoint() - *m_pressedAt).manhattanLength() < QApplication::startDragDistance())
        return;
    m_pressedAt.reset();
    startNodeDrag();
}

void FeedTreeView::mouseReleaseEvent(QMouseEvent *event)
{
    QTreeView::mouseReleaseEvent(event);
    if (event->button() != Qt::LeftButton || !m_pressedAt)
        return;
    m_pressedAt.reset();
    const FeedNodePtr node = nodeAt(event->position().toPoint());
    if (!node || node != m_draggedNode)
        return;
    m_state.select(node);
    Q_EMIT nodeClicked(node);
}

void FeedTreeView::contextMenuEvent(QContextMenuEvent *event)
{
    if (event->reason() == QContextMenuEvent::Mouse) {
        if (const FeedNodePtr node = nodeAt(event->pos()))
            Q_EMIT nodeRightClicked(node, event->globalPos());
        return;
    }
    if (const FeedNodePtr node = m_state.selected()) {
        const QRect rect = visualRect(m_tree.indexOf(node));
        Q_EMIT nodeRightClicked(node, viewport()->mapToGlobal(rect.isValid() ? rect.bottomLeft() : QPoint()));
    }
}

void FeedTreeView::keyPressEvent(QKeyEvent *event)
{
    const FeedNodePtr selected = m_state.selected();
    if (selected && (event->key() == Qt::Key_Down || event->key() == Qt::Key_Up)) {
        const FeedNodePtr node = event->key() == Qt::Key_Down ? m_state.next(selected) : m_state.previous(selected);
        if (node)
            Q_EMIT arrowKeyTo(node);
    }
    if (event->matches(QKeySequence::Cut)) {
        m_cutNode = selected && selected->image() == NodeImage::Feed ? selected : nullptr;
        if (m_cutNode)
            ScreenReader::announce(*window(), u"Ctrl+V déplace "_s + m_cutNode->text());
        return;
    }
    if (event->matches(QKeySequence::Paste)) {
        pasteNode();
        return;
    }
    makeSelectedCurrent();
    QTreeView::keyPressEvent(event);
}

/// A drag without the mouse. What a drop beside a feed right under the root costs is for who drops it there: no mark
/// warns who pastes, so that nothing comes of it.
void FeedTreeView::pasteNode()
{
    const FeedNodePtr target = m_state.selected();
    if (!m_cutNode || !target || !NodeDrop::lands(target))
        return;
    m_draggedNode = std::exchange(m_cutNode, nullptr);
    Q_EMIT nodeDropped(target, true);
}

void FeedTreeView::startNodeDrag()
{
    auto *carried = new QMimeData;
    carried->setData(nodeMimeType, m_draggedNode->key().toUtf8());
    auto *drag = new QDrag(this);
    drag->setMimeData(carried);
    const QModelIndex index = m_tree.indexOf(m_draggedNode);
    const QPixmap picture = viewport()->grab(visualRect(index).intersected(viewport()->rect()));
    drag->setPixmap(picture);
    // Below the pointer and to its right, so that neither the target nor its mark is covered.
    drag->setHotSpot(QPoint(-pictureAside, -picture.height() / qCeil(picture.devicePixelRatio()) - markHeight));
    drag->exec(Qt::MoveAction, Qt::MoveAction);
    m_drop.end();
    setState(NoState);
}

bool FeedTreeView::carriesDraggedNode(const QMimeData &carried) const
{
    return m_draggedNode && carried.data(nodeMimeType) == m_draggedNode->key().toUtf8();
}

void FeedTreeView::dragEnterEvent(QDragEnterEvent *event)
{
    if (carriesDraggedNode(*event->mimeData()))
        event->acceptProposedAction();
    else
        event->ignore();
}

void FeedTreeView::dragMoveEvent(QDragMoveEvent *event)
{
    const bool acts = m_drop.moveTo(m_draggedNode, event->position().toPoint());
    if (acts && carriesDraggedNode(*event->mimeData()))
        event->acceptProposedAction();
    else
        event->ignore();
}

void FeedTreeView::dragLeaveEvent(QDragLeaveEvent *)
{
    m_drop.end();
}

void FeedTreeView::dropEvent(QDropEvent *event)
{
    m_drop.end();
    if (!carriesDraggedNode(*event->mimeData())) {
        event->ignore();
        return;
    }
    event->acceptProposedAction();
    const NodeDrop::Place place = m_drop.placeAt(event->position().toPoint());
    Q_EMIT nodeDropped(place.target, place.insertAbove);
}

void FeedTreeView::paintEvent(QPaintEvent *event)
{
    QTreeView::paintEvent(event);
    QPainter painter(viewport());
    m_drop.paint(painter);
}

void FeedTreeView::scrollContentsBy(int dx, int dy)
{
    QTreeView::scrollContentsBy(dx, dy);
    m_drop.follow();
}

void FeedTreeView::drawBranches(QPainter *painter, const QRect &rect, const QModelIndex &index) const
{
    painter->save();
    painter->setPen(QPen(palette().color(QPalette::Dark), 1, Qt::DotLine));
    const auto hasNextSibling = [](const QModelIndex &i) { return i.siblingAtRow(i.row() + 1).isValid(); };
    int right = rect.right();
    for (QModelIndex level = index; level.isValid() && right > rect.left(); level = level.parent()) {
        const int x = right - indentation() / 2;
        const int middle = rect.center().y();
        const bool own = level == index;
        if (own) {
            painter->drawLine(x, middle, right, middle);
            if (level.parent().isValid())
                painter->drawLine(x, rect.top(), x, middle);
        }
        if (hasNextSibling(level))
            painter->drawLine(x, own ? middle : rect.top(), x, rect.bottom());
        right -= indentation();
    }
    painter->restore();
    QTreeView::drawBranches(painter, rect, index);
}

void FeedTreeView::rowsAboutToBeRemoved(const QModelIndex &parent, int start, int end)
{
    // The view would select a neighbour of a removed current row; here a selection that is removed goes to nothing.
    for (QModelIndex current = currentIndex(); current.isValid(); current = current.parent())
        if (current.parent() == parent && current.row() >= start && current.row() <= end) {
            selectionModel()->setCurrentIndex(QModelIndex(), QItemSelectionModel::NoUpdate);
            break;
        }
    QTreeView::rowsAboutToBeRemoved(parent, start, end);
}
