// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QPointer>
#include <QRect>
#include <QString>

class QPainter;
class QToolButton;
class QWidget;

/// One band of a rebar: a gripper, a caption, the control that it holds, and a chevron where that doesn't fit. Measures
/// are pixels.
struct ReBarBand
{
    QPointer<QWidget> child;
    QPointer<QWidget> owner; ///< the child's parent before it came here
    QString caption;
    QString data;
    bool fixed = false;
    int width = 0;              ///< of the whole band, as it was last wanted
    int minimumChildWidth = -1; ///< -1: what the child itself needs
    int minHeight = 0;
    QToolButton *chevron = nullptr; ///< a child of the rebar
    QRect rect;

    /// The gripper and the caption.
    int headWidth() const;

    /// What shows all of the child, and what it can do with.
    int idealChildWidth() const;
    int minChildWidth() const;
    int childHeight() const;

    int minWidth() const;

    /// With all of the child.
    int fullWidth() const { return headWidth() + idealChildWidth(); }

    bool headContains(const QPoint &position) const;

    /// Puts child and chevron where `rect` says.
    void placeChild();

    /// Draws the chevron as the toolbar is drawn that the band holds.
    void dressChevron() const;

    /// Gives the child back, hidden. Where its owner is gone it has no parent then.
    void letChildGo() const;
};
