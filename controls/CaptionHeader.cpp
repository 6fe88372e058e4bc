// SPDX-License-Identifier: GPL-3.0-or-later

#include "controls/CaptionHeader.h"

#include <QStyleOptionHeader>

CaptionHeader::CaptionHeader(QWidget *parent) : QHeaderView(Qt::Horizontal, parent) {}

QString CaptionHeader::shownCaption(int section) const
{
    QStyleOptionHeaderV2 option;
    initStyleOption(&option);
    initStyleOptionForIndex(&option, section);
    return option.text;
}

void CaptionHeader::initStyleOptionForIndex(QStyleOptionHeader *option, int section) const
{
    QHeaderView::initStyleOptionForIndex(option, section);
    // Qt's own eliding takes the width of the whole header for that of the section.
    const int margin = style()->pixelMetric(QStyle::PM_HeaderMargin, option, this);
    const int picture = style()->pixelMetric(QStyle::PM_SmallIconSize, option, this) + margin;
    const int room = sectionSize(section) - 2 * margin - (option->icon.isNull() ? 0 : picture);
    option->text = option->fontMetrics.elidedText(option->text, Qt::ElideRight, room);
}
