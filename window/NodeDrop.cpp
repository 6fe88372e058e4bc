// SPDX-License-Identifier: GPL-3.0-or-later

#include "window/NodeDrop.h"

#include <QPainter>
#include <QScrollBar>
#include <QTreeView>

#include <chrono>

namespace {

constexpr std::chrono::milliseconds scrollInterval(60); // a row each time
constexpr int edge = 16;                                // pixels

/// Only feeds move, and only onto another node.
bool acts(const FeedNodePtr &dragged, const FeedNodePtr &target)
{
    return dragged && target && dragged != target && dragged->image() == NodeImage::Feed;
}

} // namespace

bool NodeDrop::lands(const FeedNodePtr &target)
{
    return target->image() != NodeImage::Feed || !target->parent() || target->parent()->image() != NodeImage::Root;
}

NodeDrop::NodeDrop(QTreeView &view, const FeedTree &tree) : m_view(view), m_tree(tree)
{
    m_scrolling.setInterval(scrollInterval);
    connect(&m_scrolling, &QTimer::timeout, this, &NodeDrop::scroll);
}

NodeDrop::Place NodeDrop::placeAt(const QPoint &position) const
{
    const QModelIndex index = m_view.indexAt(position);
    if (!index.isValid())
        return {};
    return {m_tree.node(index), position.y() < m_view.visualRect(index).center().y()};
}

bool NodeDrop::moveTo(const FeedNodePtr &dragged, const QPoint &position)
{
    m_dragged = dragged;
    m_position = position;
    const bool nearEdge = position.y() < edge || position.y() >= m_view.viewport()->height() - edge;
    if (!nearEdge)
        m_scrolling.stop();
    else if (!m_scrolling.isActive())
        m_scrolling.start();
    const Place place = placeAt(position);
    const bool moves = acts(dragged, place.target);
    m_mark = moves && lands(place.target) ? std::optional(place) : std::nullopt;
    m_view.viewport()->update();
    return moves;
}

void NodeDrop::end()
{
    m_scrolling.stop();
    m_position.reset();
    m_mark.reset();
    m_dragged.reset();
    m_view.viewport()->update();
}

void NodeDrop::follow()
{
    if (m_position)
        moveTo(m_dragged, *m_position);
}

void NodeDrop::scroll()
{
    QScrollBar *bar = m_view.verticalScrollBar();
    bar->triggerAction(m_position->y() < edge ? QScrollBar::SliderSingleStepSub : QScrollBar::SliderSingleStepAdd);
}

void NodeDrop::paint(QPainter &painter) const
{
    if (!m_mark)
        return;
    const QRect rect = m_view.visualRect(m_tree.indexOf(m_mark->target));
    painter.setPen(QPen(m_view.palette().color(QPalette::Highlight), 2));
    if (m_mark->target->image() == NodeImage::Feed) {
        const int y = m_mark->insertAbove ? rect.top() : rect.bottom();
        painter.drawLine(rect.left(), y, m_view.viewport()->width() - 4, y);
    } else {
        painter.drawRect(rect.adjusted(1, 1, -1, -1));
    }
}
