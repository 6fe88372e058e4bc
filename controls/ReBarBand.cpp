// SPDX-License-Identifier: GPL-3.0-or-later

#include "controls/ReBarBand.h"

#include "controls/OfficeXpStyle.h"
#include "controls/ReBarMeasures.h"
#include "controls/cToolbar.h"

#include <algorithm>

using namespace ReBarMeasures;

int ReBarBand::headWidth() const
{
    const int gripper = fixed ? 2 : gripperWidth;
    if (caption.isEmpty())
        return gripper;
    return gripper + chevron->parentWidget()->fontMetrics().horizontalAdvance(caption) + 2 * captionGap;
}

int ReBarBand::idealChildWidth() const
{
    if (!child)
        return 0;
    if (const auto *toolbar = qobject_cast<const cToolbar *>(child))
        return toolbar->idealWidth();
    return child->minimumSizeHint().expandedTo(child->minimumSize()).width();
}

int ReBarBand::minChildWidth() const
{
    return std::min(idealChildWidth(), std::max(smallestChild, minimumChildWidth));
}

int ReBarBand::childHeight() const
{
    return child ? std::max(child->sizeHint().height(), child->minimumHeight()) : 0;
}

int ReBarBand::minWidth() const
{
    return headWidth() + minChildWidth() + columnGap;
}

bool ReBarBand::headContains(const QPoint &position) const
{
    return rect.contains(position) && position.x() < rect.left() + headWidth();
}

void ReBarBand::placeChild()
{
    if (!child)
        return;
    QRect room = rect;
    room.setLeft(room.left() + headWidth());
    const bool cut = room.width() < idealChildWidth();
    chevron->setVisible(cut);
    if (cut) {
        chevron->setGeometry(room.right() - chevronWidth + 1, room.top(), chevronWidth, room.height());
        room.setRight(room.right() - chevronWidth);
    }
    const int tall = std::min(room.height(), childHeight());
    child->setGeometry(room.left(), room.top() + (room.height() - tall) / 2, std::max(0, room.width()), tall);
}

void ReBarBand::dressChevron() const
{
    const auto *toolbar = qobject_cast<const cToolbar *>(child);
    const bool officeXp = toolbar && toolbar->drawStyle() == DrawStyle::OfficeXp;
    chevron->setStyle(officeXp ? OfficeXpStyle::shared() : nullptr);
}

void ReBarBand::letChildGo() const
{
    child->hide();
    child->setParent(owner);
}
