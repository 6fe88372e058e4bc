// SPDX-License-Identifier: GPL-3.0-or-later

#include "reading/ItemDelegate.h"

#include "reading/ItemListModel.h"

#include <QPainter>
#include <QStyle>
#include <QWidget>

#include <utility>

namespace {

/// Draws what is in the picture in one colour.
void colour(QPixmap &pixmap, const QColor &ink)
{
    QPainter painter(&pixmap);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(pixmap.rect(), ink);
}

} // namespace

QString ItemDelegate::displayText(const QVariant &value, const QLocale &locale) const
{
    constexpr qsizetype longestText = 1000;
    QString text = QStyledItemDelegate::displayText(value.toString().left(longestText), locale);
    for (QChar &c : text)
        if (c.isSpace())
            c = u' ';
    return text;
}

void ItemDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    QStyleOptionViewItem item = option;
    initStyleOption(&item, index);
    const bool readMark = static_cast<ItemColumn>(index.column()) == ItemColumn::Read;
    const QIcon picture = readMark ? std::exchange(item.icon, {}) : QIcon();
    if (readMark)
        item.text.clear();
    item.widget->style()->drawControl(QStyle::CE_ItemViewItem, &item, painter, item.widget);
    if (!readMark)
        return;
    // Without the margins of a text: the column is just as wide as its picture.
    QPixmap pixmap = picture.pixmap(item.rect.size(), painter->device()->devicePixelRatioF(), QIcon::Normal);
    if (item.state.testFlag(QStyle::State_Selected) && index.data(ItemListModel::ReadRole).toBool())
        colour(pixmap, item.palette.color(QPalette::HighlightedText)); // lines alone are lost on the selection's colour
    item.widget->style()->drawItemPixmap(painter, item.rect, Qt::AlignCenter, pixmap);
}

QSize ItemDelegate::sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    constexpr int air = 4; // pixels between the lines of two rows
    const QSize size = QStyledItemDelegate::sizeHint(option, index);
    return {size.width(), qMax(size.height(), option.fontMetrics.height() + air)};
}
