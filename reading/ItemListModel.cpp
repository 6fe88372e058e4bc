// SPDX-License-Identifier: GPL-3.0-or-later

#include "reading/ItemListModel.h"

#include "controls/ImageList.h"
#include "platform/DateText.h"
#include "platform/Literals.h"

#include <QCollator>
#include <QGuiApplication>
#include <QHash>

#include <algorithm>
#include <limits>
#include <numeric>
#include <utility>

namespace {

constexpr int unreadIcon = 6;
constexpr int readIcon = 7;
constexpr int fontSize = 8; ///< points
constexpr qint64 noDate = std::numeric_limits<qint64>::min();

QFont listFont(bool bold)
{
    QFont font;
    font.setFamilies({u"MS Sans Serif"_s, QGuiApplication::font().family()});
    font.setPointSize(fontSize);
    font.setBold(bold);
    return font;
}

/// A date as one number, in seconds: what the shown text tells, and without a look at the time zone.
qint64 dateKey(const QDateTime &date)
{
    constexpr qint64 secondsPerDay = 86400;
    if (!date.isValid())
        return noDate;
    return date.date().toJulianDay() * secondsPerDay + date.time().msecsSinceStartOfDay() / 1000;
}

QCollator textOrder()
{
    const QLocale system = QLocale::system();
    QCollator collator(system.language() == QLocale::C ? QLocale(QLocale::French) : system);
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    return collator;
}

/// The places of `keys` in sorted order. Each row's key was made once, since making it costs far more than comparing.
template <typename Key>
std::vector<int> orderOf(const std::vector<Key> &keys, Qt::SortOrder direction)
{
    std::vector<int> order(keys.size());
    std::iota(order.begin(), order.end(), 0);
    const auto at = [&keys](int row) -> const Key & { return keys[static_cast<std::size_t>(row)]; };
    if (direction == Qt::AscendingOrder)
        std::stable_sort(order.begin(), order.end(), [&at](int a, int b) { return at(a) < at(b); });
    else
        std::stable_sort(order.begin(), order.end(), [&at](int a, int b) { return at(b) < at(a); });
    return order;
}

} // namespace

struct ItemListModel::Row
{
    qint16 key;
    bool read;       ///< as shown
    bool readAtFill; ///< as the column's text says
    QString title;
    QDateTime published;
    QString downloaded;
    QString author;
    QString category;
};

ItemListModel::ItemListModel(Choice<DateReader> dates, QObject *parent)
    : QAbstractTableModel(parent), m_dates(dates), m_readFont(listFont(false)), m_unreadFont(listFont(true))
{}

ItemListModel::~ItemListModel() = default;

void ItemListModel::fill(const CachedFeed &feed)
{
    clear();
    const qint16 count = feed.ItemCount();
    std::vector<Row> rows;
    rows.reserve(static_cast<std::size_t>(count));
    for (qint16 i = 0; i < count; ++i) {
        if (feed.IsItemDeleted(i))
            continue;
        const bool read = feed.IsItemRead(i);
        rows.push_back({i, read, read, feed.ItemTitle(i), m_dates->NormaliseDate(feed.ItemPubDate(i)),
                        feed.ItemDownloadDate(i), feed.ItemAuthor(i), feed.ItemCategory(i)});
    }
    beginResetModel();
    m_rows = std::move(rows);
    endResetModel();
}

void ItemListModel::clear()
{
    beginResetModel();
    m_rows.clear();
    endResetModel();
}

bool ItemListModel::isRow(int row) const
{
    return row >= 0 && static_cast<std::size_t>(row) < m_rows.size();
}

qint16 ItemListModel::key(int row) const
{
    return isRow(row) ? m_rows[static_cast<std::size_t>(row)].key : qint16(-1);
}

void ItemListModel::setRead(int row, bool read)
{
    if (!isRow(row))
        return;
    m_rows[static_cast<std::size_t>(row)].read = read;
    Q_EMIT dataChanged(index(row, 0), index(row, itemColumnCount - 1),
                       {Qt::FontRole, Qt::DecorationRole, Qt::AccessibleTextRole, Qt::AccessibleDescriptionRole});
}

bool ItemListModel::isShownRead(int row) const
{
    return isRow(row) && m_rows[static_cast<std::size_t>(row)].read;
}

void ItemListModel::removeRow(int row)
{
    if (!isRow(row))
        return;
    beginRemoveRows({}, row, row);
    m_rows.erase(m_rows.begin() + row);
    endRemoveRows();
}

std::vector<int> ItemListModel::sortedOrder(ItemColumn column, Qt::SortOrder order) const
{
    if (column == ItemColumn::PubDate || column == ItemColumn::DownloadDate) {
        std::vector<qint64> keys;
        keys.reserve(m_rows.size());
        QHash<QString, qint64> known; // the items of one download share their text
        for (const Row &row : m_rows) {
            if (column == ItemColumn::PubDate) {
                keys.push_back(dateKey(row.published));
                continue;
            }
            auto found = known.constFind(row.downloaded);
            if (found == known.constEnd()) {
                const bool isDate = DateText::isDate(row.downloaded);
                found = known.insert(row.downloaded, isDate ? dateKey(DateText::fromText(row.downloaded)) : noDate);
            }
            keys.push_back(*found);
        }
        return orderOf(keys, order);
    }
    const QCollator collator = textOrder();
    std::vector<QCollatorSortKey> keys;
    keys.reserve(m_rows.size());
    for (const Row &row : m_rows)
        keys.push_back(collator.sortKey(text(row, column)));
    return orderOf(keys, order);
}

void ItemListModel::sort(int column, Qt::SortOrder order)
{
    if (column < 0 || column >= itemColumnCount)
        return;
    Q_EMIT layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
    const std::vector<int> oldRows = sortedOrder(static_cast<ItemColumn>(column), order);
    std::vector<Row> rows;
    rows.reserve(m_rows.size());
    std::vector<int> newRows(m_rows.size());
    for (const int oldRow : oldRows) {
        newRows[static_cast<std::size_t>(oldRow)] = static_cast<int>(rows.size());
        rows.push_back(std::move(m_rows[static_cast<std::size_t>(oldRow)]));
    }
    m_rows = std::move(rows);

    const QModelIndexList before = persistentIndexList();
    QModelIndexList after;
    after.reserve(before.size());
    for (const QModelIndex &old : before)
        after.append(index(newRows[static_cast<std::size_t>(old.row())], old.column()));
    changePersistentIndexList(before, after);
    Q_EMIT layoutChanged({}, QAbstractItemModel::VerticalSortHint);
}

void ItemListModel::setHeaderIcon(int column, const QIcon &icon)
{
    m_headerIcons[static_cast<std::size_t>(column)] = icon;
    Q_EMIT headerDataChanged(Qt::Horizontal, column, column);
}

int ItemListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

int ItemListModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : itemColumnCount;
}

QString ItemListModel::text(const Row &row, ItemColumn column) const
{
    switch (column) {
    case ItemColumn::Title:
        return row.title;
    case ItemColumn::Read:
        return row.readAtFill ? u"r"_s : u"u"_s;
    case ItemColumn::PubDate:
        return DateText::toText(row.published);
    case ItemColumn::DownloadDate:
        return row.downloaded;
    case ItemColumn::Author:
        return row.author;
    case ItemColumn::Category:
        return row.category;
    }
    return {};
}

QVariant ItemListModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || !isRow(index.row()))
        return {};
    const Row &row = m_rows[static_cast<std::size_t>(index.row())];
    const auto column = static_cast<ItemColumn>(index.column());
    const bool isMark = column == ItemColumn::Read;
    const auto state = [&row] { return row.read ? u"Lu"_s : u"Non lu"_s; };
    switch (role) {
    case Qt::DisplayRole:
        return text(row, column);
    case Qt::FontRole:
        return row.read ? m_readFont : m_unreadFont;
    case Qt::DecorationRole:
        if (isMark)
            return ImageLists::vbalImageList1().icon(row.read ? readIcon : unreadIcon);
        return {};
    case ReadRole:
        return row.read;
    case Qt::ToolTipRole:
        return isMark ? state() : QVariant();
    case Qt::AccessibleDescriptionRole: // which screen readers say after the row, where the mark itself isn't in it
        return m_markShown ? QVariant() : state();
    case Qt::AccessibleTextRole:
        if (isMark)
            return state();
        if (text(row, column).trimmed().isEmpty())
            return QString(u"Sans "_s + headerData(index.column(), Qt::Horizontal, role).toString().toLower());
        return {};
    default:
        return {};
    }
}

QVariant ItemListModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    static const std::array<QString, itemColumnCount> captions = {
        u"Titre"_s, QString(), u"Date de publication"_s, u"Date de téléchargement"_s, u"Auteur"_s, u"Catégorie"_s};
    if (orientation != Qt::Horizontal || section < 0 || section >= itemColumnCount)
        return {};
    const auto place = static_cast<std::size_t>(section);
    switch (role) {
    case Qt::DisplayRole:
        return captions[place];
    case Qt::DecorationRole:
        return m_headerIcons[place].isNull() ? QVariant() : QVariant(m_headerIcons[place]);
    case Qt::ToolTipRole:
    case Qt::AccessibleTextRole:
        return captions[place].isEmpty() ? u"Lu/Non-Lu"_s : captions[place];
    default:
        return {};
    }
}
