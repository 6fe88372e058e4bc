// SPDX-License-Identifier: GPL-3.0-or-later

#include "reading/ItemListView.h"

#include "controls/CaptionHeader.h"
#include "controls/CutTips.h"
#include "controls/ImageList.h"
#include "controls/ScreenReader.h"
#include "platform/Literals.h"
#include "reading/ItemDelegate.h"

#include <QContextMenuEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>

#include <algorithm>
#include <utility>
#include <vector>

namespace {

constexpr int ascending = 1;
constexpr int descending = 2;
constexpr int descendingIcon = 8;
constexpr int ascendingIcon = 9;
constexpr double widestColumn = 10000; ///< pixels

} // namespace

ItemListView::ItemListView(Choice<DateReader> dates, ScreenScale scale, QWidget *parent)
    : QTreeView(parent), m_items(dates), m_scale(scale)
{
    setHeader(new CaptionHeader(this));
    setModel(&m_items);
    setItemDelegate(new ItemDelegate(this));
    setAccessibleName(u"Messages du flux"_s);
    setRootIsDecorated(false);
    setItemsExpandable(false);
    setUniformRowHeights(true);
    setAllColumnsShowFocus(true);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);

    header()->setStretchLastSection(false);
    header()->setMinimumSectionSize(0);
    header()->setSectionsMovable(false);
    header()->setSectionsClickable(true);
    header()->setHighlightSections(false);
    header()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    new CutTips(*this, header());
    header()->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(header(), &QHeaderView::sectionClicked, this, &ItemListView::handleHeaderClicked);
    connect(header(), &QHeaderView::customContextMenuRequested, this, &ItemListView::handleHeaderMenuRequested);
}

int ItemListView::selectedRow() const
{
    const QModelIndexList rows = selectionModel()->selectedRows();
    return rows.isEmpty() ? -1 : rows.first().row();
}

void ItemListView::selectRow(int row)
{
    const QModelIndex index = m_items.index(row, qMax(0, currentIndex().column()));
    if (!index.isValid()) {
        clearSelection();
        return;
    }
    selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    scrollTo(index);
}

double ItemListView::columnWidthTwips(int column) const
{
    return columnWidth(column - 1) * m_scale.twipsPerPixelX;
}

void ItemListView::setColumnWidthTwips(int column, double twips)
{
    const double pixels = twips / m_scale.twipsPerPixelX;
    const bool shown = pixels >= 0.5;
    setColumnHidden(column - 1, !shown);
    if (static_cast<ItemColumn>(column - 1) == ItemColumn::Read)
        m_items.setMarkShown(shown);
    if (shown)
        setColumnWidth(column - 1, qRound(qMin(pixels, widestColumn)));
}

int ItemListView::NextSortOrder(int column)
{
    if (m_arrowColumn != column && m_arrowColumn != 0)
        m_items.setHeaderIcon(m_arrowColumn - 1, {});
    int &order = m_order[static_cast<std::size_t>(column)];
    order = order == ascending ? descending : ascending;
    m_items.setHeaderIcon(column - 1,
                          ImageLists::vbalImageList1().icon(order == ascending ? ascendingIcon : descendingIcon));
    m_arrowColumn = column;
    return order;
}

void ItemListView::mousePressEvent(QMouseEvent *event)
{
    event->accept();
    const QModelIndex index = indexAt(event->pos());
    if (index.isValid())
        selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    else
        clearSelection();

    if (selectedRow() >= 0)
        Q_EMIT clickedWithSelection();
    if (index.isValid())
        Q_EMIT rowClicked(index.row(), index.column() + 1, event->button());
    else if (event->button() == Qt::RightButton)
        Q_EMIT rightClickedWithoutSelection();
}

void ItemListView::mouseMoveEvent(QMouseEvent *event)
{
    // With a button down the base class would carry the selection along, away from the item on show.
    if (event->buttons() == Qt::NoButton)
        QTreeView::mouseMoveEvent(event);
}

void ItemListView::mouseReleaseEvent(QMouseEvent *event)
{
    event->accept(); // all was done at the press, and the base class would select again
}

void ItemListView::mouseDoubleClickEvent(QMouseEvent *event)
{
    mousePressEvent(event); // the second of two quick clicks
}

void ItemListView::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_T && (event->modifiers() & ~Qt::ShiftModifier) == Qt::ControlModifier) {
        sortByKey(event->modifiers().testFlag(Qt::ShiftModifier));
        return;
    }
    if (selectedRow() >= 0) {
        if (event->key() == Qt::Key_Delete) {
            event->accept();
            Q_EMIT deletePressed();
            return;
        }
        if (event->key() == Qt::Key_Up)
            Q_EMIT upPressed();
        else if (event->key() == Qt::Key_Down)
            Q_EMIT downPressed();
    }
    QTreeView::keyPressEvent(event);
}

void ItemListView::contextMenuEvent(QContextMenuEvent *event)
{
    event->accept();
    if (event->reason() == QContextMenuEvent::Mouse)
        return; // the press has done it
    if (selectedRow() >= 0) {
        Q_EMIT clickedWithSelection();
        Q_EMIT rowClicked(selectedRow(), 1, Qt::RightButton);
    } else
        Q_EMIT rightClickedWithoutSelection();
}

void ItemListView::sortByKey(bool sameColumn)
{
    std::vector<int> shown;
    for (int section = 0; section < itemColumnCount; ++section)
        if (!isColumnHidden(section))
            shown.push_back(section);
    if (shown.empty())
        return;
    auto place = std::find(shown.begin(), shown.end(), m_arrowColumn - 1);
    if (place != shown.end() && !sameColumn)
        ++place;
    const int section = place == shown.end() ? shown.front() : *place;
    handleHeaderClicked(section);
    const QString column = m_items.headerData(section, Qt::Horizontal, Qt::AccessibleTextRole).toString();
    const bool rises = m_order[static_cast<std::size_t>(m_arrowColumn)] == ascending;
    ScreenReader::announce(*window(), u"Tri par "_s + column + (rises ? u", croissant"_s : u", décroissant"_s));
}

void ItemListView::handleHeaderClicked(int section)
{
    const int order = NextSortOrder(section + 1);
    m_items.sort(section, order == ascending ? Qt::AscendingOrder : Qt::DescendingOrder);
}

void ItemListView::handleHeaderMenuRequested()
{
    if (selectedRow() < 0)
        Q_EMIT rightClickedWithoutSelection();
}
