// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "engine/DateReader.h"
#include "engine/feed/CachedFeed.h"
#include "platform/Choice.h"

#include <QAbstractTableModel>
#include <QFont>
#include <QIcon>

#include <array>
#include <vector>

/// The columns of the item list, at their fixed places; settings count them from 1.
enum class ItemColumn { Title = 0, Read, PubDate, DownloadDate, Author, Category };
constexpr int itemColumnCount = 6;

/// The rows of the item list: one for each item of a feed document that isn't deleted, with its texts as they stood at
/// the last fill. Quick at 32,767 rows.
class ItemListModel final : public QAbstractTableModel
{
    Q_OBJECT

public:
    static constexpr int ReadRole = Qt::UserRole; ///< whether the row looks read

    explicit ItemListModel(Choice<DateReader> dates, QObject *parent = nullptr);
    ~ItemListModel() override;

    /// Replaces the rows by those of `feed`, in document order. Throws the RunTimeErrors of the dates; the rows are
    /// then empty.
    void fill(const CachedFeed &feed);
    void clear();

    /// The row's key: the item's index in the document; -1 for a row outside.
    qint16 key(int row) const;

    /// The look of a row: read is shown by the icon of the read column and by a font that isn't bold. The text of that
    /// column ("r", "u"), by which it is sorted, stays that of the last fill, so that no row moves away from who has
    /// just read it.
    void setRead(int row, bool read);
    bool isShownRead(int row) const;

    /// Whether the column with the marks is shown. Where it isn't screen readers are told the marks with each cell.
    void setMarkShown(bool shown) { m_markShown = shown; }

    void removeRow(int row);

    /// Sorts the rows by a column's text, or by date for the two date columns; equal rows keep their order. Texts sort
    /// as in a dictionary, without regard to case; a text of a date column that is no date comes before all dates.
    void sort(int column, Qt::SortOrder order) override;

    /// Shows `icon` in the header of a column (from 0); a null icon takes it away.
    void setHeaderIcon(int column, const QIcon &icon);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    struct Row;
    bool isRow(int row) const;
    QString text(const Row &row, ItemColumn column) const;
    std::vector<int> sortedOrder(ItemColumn column, Qt::SortOrder order) const;

    Choice<DateReader> m_dates;
    std::vector<Row> m_rows;
    std::array<QIcon, itemColumnCount> m_headerIcons;
    bool m_markShown = true;
    QFont m_readFont;
    QFont m_unreadFont;
};
