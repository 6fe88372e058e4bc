// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "core/AppSettings.h"

#include <QRect>

/// The places of the panes below the rebar, as a pure function of the window's measures. All lengths are twips.
struct FrameMeasures
{
    double width = 0;        ///< inner width of the window
    double height = 0;       ///< inner height of the window
    double rebarHeight = 0;  ///< height of the bands at the top
    double statusHeight = 0; ///< height of the status bar at the bottom
    double hostHeight = 0;   ///< height of the browser's toolbar
    double barWidth = 0;     ///< thickness of a splitter bar
    double margin = 0;       ///< space left free at the right and at the bottom
    double horizontal = 0;   ///< asked width of the tree
    double vertical = 0;     ///< asked height of the list
};

/// The range in which a splitter bar may be moved, in twips; both ends belong to it.
struct SplitBounds
{
    double lowest = 0;
    double highest = 0;

    bool allows(double candidate) const { return candidate >= lowest && candidate <= highest; }

    /// `wanted` brought into the range; the lower end wins in a range that is empty.
    double bounded(double wanted) const
    {
        return wanted > highest ? (highest > lowest ? highest : lowest) : (wanted < lowest ? lowest : wanted);
    }
};

struct PaneLayout
{
    QRectF tree;
    QRectF horizontalBar; ///< `picHorizontalSplit`; its left is the tree's width
    QRectF list;
    QRectF verticalBar; ///< `picVerticalSplit`; its top is the rebar's height and the list's
    QRectF toolbarHost;
    QRectF browser;

    /// Panes that don't fit get no extent, never a negative one. A splitter position that the window has no room for is
    /// brought to the nearest that it has.
    static PaneLayout of(const FrameMeasures &m);

    /// Bounds of the left edge of `picHorizontalSplit`.
    static SplitBounds horizontalBounds(double width);

    /// Bounds of the top edge of `picVerticalSplit`.
    static SplitBounds verticalBounds(double height, double rebarHeight, double statusHeight);

    /// The rectangle in pixels. Edges are rounded, not extents, so that neighbours meet without a gap.
    static QRect toPixels(const QRectF &twips, const ScreenScale &scale);
};
