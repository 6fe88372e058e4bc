// SPDX-License-Identifier: GPL-3.0-or-later

#include "window/PaneLayout.h"

#include <algorithm>

namespace {

/// The positions are kept as signed 16-bit numbers.
constexpr double furthestPosition = 32767;

QRectF between(double left, double top, double right, double bottom)
{
    return {left, top, std::max(0.0, right - left), std::max(0.0, bottom - top)};
}

} // namespace

SplitBounds PaneLayout::horizontalBounds(double width)
{
    return {201, std::min(width - 201, furthestPosition)};
}

SplitBounds PaneLayout::verticalBounds(double height, double rebarHeight, double statusHeight)
{
    return {rebarHeight + 201, std::min(height - statusHeight - 501, rebarHeight + furthestPosition)};
}

PaneLayout PaneLayout::of(const FrameMeasures &m)
{
    const double top = m.rebarHeight;
    const double bottom = m.height - m.statusHeight - m.margin;
    const double right = m.width - m.margin;
    const double barLeft = horizontalBounds(m.width).bounded(m.horizontal);
    const double barTop = verticalBounds(m.height, m.rebarHeight, m.statusHeight).bounded(top + m.vertical);
    const double paneLeft = barLeft + m.barWidth;
    const double hostTop = barTop + m.barWidth;

    PaneLayout layout;
    layout.tree = between(0, top, barLeft, bottom);
    layout.horizontalBar = between(barLeft, top, paneLeft, bottom);
    layout.list = between(paneLeft, top, right, barTop);
    layout.verticalBar = between(paneLeft, barTop, right, hostTop);
    layout.toolbarHost = between(paneLeft, hostTop, right, hostTop + m.hostHeight);
    layout.browser = between(paneLeft, hostTop + m.hostHeight, right, bottom);
    return layout;
}

QRect PaneLayout::toPixels(const QRectF &twips, const ScreenScale &scale)
{
    const int left = qRound(twips.left() / scale.twipsPerPixelX);
    const int top = qRound(twips.top() / scale.twipsPerPixelY);
    const int right = qRound(twips.right() / scale.twipsPerPixelX);
    const int bottom = qRound(twips.bottom() / scale.twipsPerPixelY);
    return {left, top, right - left, bottom - top};
}
