#include "reading/ItemDelegate.h"

#include "reading/ItemListModel.h"

QString ItemDelegate::displayText(const QVariant &value, const QLocale &locale) const
{
    constexpr qsizetype longestText = 1000;
    QString text = QStyledItemDelegate::displayText(value.toString().left(longestText), locale);
    for (QChar &c : text)
        if (c.isSpace())
            c = u' ';
    return text;
}

void ItemDelegate::initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const
{
    QStyledItemDelegate::initStyleOption(option, index);
    if (static_cast<ItemColumn>(index.column()) != ItemColumn::Read)
        return;
    option->features &= ~QStyleOptionViewItem::HasDisplay;
    option->text.clear();
    option->decorationAlignment = Qt::AlignCenter;
    option->decorationSize = option->decorationSize.boundedTo(option->rect.size());
}

QSize ItemDelegate::sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    constexpr int air = 4; // pixels between the lines of two rows
    const QSize size = QStyledItemDelegate::sizeHint(option, index);
    return {size.width(), qMax(size.height(), option.fontMetrics.height() + air)};
}
