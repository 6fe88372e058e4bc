// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "core/AppSettings.h"
#include "reading/ItemListModel.h"

#include <QTreeView>

#include <array>

/// The item list `lvwItems`: its columns, header arrows, clicks and keys. It tells what the user did; ReadingPane acts.
class ItemListView : public QTreeView
{
    Q_OBJECT

public:
    /// `scale` turns the widths of the settings (twips) into pixels.
    ItemListView(Choice<DateReader> dates, ScreenScale scale, QWidget *parent = nullptr);

    ItemListModel &items() { return m_items; }

    /// The selected row; -1 when none is selected.
    int selectedRow() const;

    /// Selects the row (and scrolls to it), or nothing for a row outside.
    void selectRow(int row);

    /// The column's width in twips, 0 when it is hidden. `column` counts from 1.
    double columnWidthTwips(int column) const;

    /// Sets the column's width; 0 hides it. A width that is no length of a screen is brought into bounds.
    void setColumnWidthTwips(int column, double twips);

    /// Steps the column's order (none, ascending, descending, ascending, ...), sets its header arrow, clearing those of
    /// all other columns when it had none, and returns the new order: 1 ascending, 2 descending. `column` counts
    /// from 1.
    int NextSortOrder(int column);

Q_SIGNALS:
    /// A row was pressed with that button; the row is then the selected one. `column` counts from 1. The menu key
    /// counts as the right button on column 1 of the selected row.
    void rowClicked(int row, int column, Qt::MouseButton button);

    /// The mouse, or the menu key, was pressed with a row selected (before rowClicked).
    void clickedWithSelection();

    /// The right button was pressed with no row selected, on the header too.
    void rightClickedWithoutSelection();

    void deletePressed(); ///< key Delete with a selected row
    void upPressed();     ///< key Up with a selected row, before the selection moves
    void downPressed();   ///< key Down likewise

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;

private:
    /// Steps the order of the sorted column, or sorts by the next one that is shown. By keyboard that is Ctrl+Shift+T
    /// and Ctrl+T.
    void sortByKey(bool sameColumn);
    void handleHeaderClicked(int section);
    void handleHeaderMenuRequested();

    ItemListModel m_items;
    ScreenScale m_scale;
    std::array<int, itemColumnCount + 1> m_order{}; ///< by column counted from 1
    int m_arrowColumn = 0;                          ///< the column with the header arrow; 0 for none
};
