// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "core/AppSettings.h"
#include "window/PaneLayout.h"

#include <QWidget>

#include <functional>

/// A bar between two panes: `picHorizontalSplit`, which moves sideways, and `picVerticalSplit`, which moves up and
/// down. While it is dragged only the bar moves; who owns it places the panes when it is released. It can be reached
/// with Tab and moved with the arrow keys, and tells tools that read the screen what it is and where it stands.
class SplitBar : public QWidget
{
    Q_OBJECT

public:
    /// `moves` is the direction in which the bar moves. `bounds` tells, at each step, where its edge may go.
    SplitBar(Qt::Orientation moves, ScreenScale scale, std::function<SplitBounds()> bounds, QWidget *parent);

    /// The bar's left, respectively top, edge in twips.
    double positionTwips() const;

    /// The same in pixels, and the range that it may be in at present.
    int position() const;
    int lowest() const;
    int highest() const;

    /// Moves the bar there, or as near as it may go, as a drag does that ends there.
    void moveAndRelease(int pixels);

    static constexpr int keyStep = 10; ///< pixels

Q_SIGNALS:
    /// The bar was let go, moved or not.
    void released();

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void moveEvent(QMoveEvent *event) override;

private:
    void moveTo(int pixels);
    double twipsPerPixel() const;

    Qt::Orientation m_moves;
    ScreenScale m_scale;
    std::function<SplitBounds()> m_bounds;
    bool m_dragging = false;
};
