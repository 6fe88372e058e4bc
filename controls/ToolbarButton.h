// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QToolButton>

#include <functional>

/// A toolbar's button whose arrow, if it has one, acts on its own: there is no menu behind it but an event.
class ToolbarButton final : public QToolButton
{
    Q_OBJECT

public:
    /// `press` is called when the arrow is pressed, by mouse or with the Down key.
    ToolbarButton(bool withArrow, std::function<void()> press, QWidget *parent);

    bool withArrow() const { return m_withArrow; }

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    QRect arrowRect() const;

    std::function<void()> m_press;
    bool m_withArrow;
};
