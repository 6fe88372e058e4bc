// SPDX-License-Identifier: GPL-3.0-or-later

#include "controls/ToolbarButton.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QStyleOptionToolButton>

ToolbarButton::ToolbarButton(bool withArrow, std::function<void()> press, QWidget *parent)
    : QToolButton(parent), m_press(std::move(press)), m_withArrow(withArrow)
{
    setAutoRaise(true);
    if (withArrow)
        setPopupMode(QToolButton::MenuButtonPopup);
}

void ToolbarButton::mousePressEvent(QMouseEvent *event)
{
    if (m_withArrow && event->button() == Qt::LeftButton && arrowRect().contains(event->position().toPoint())) {
        m_press();
        return;
    }
    QToolButton::mousePressEvent(event);
}

void ToolbarButton::mouseDoubleClickEvent(QMouseEvent *event)
{
    mousePressEvent(event); // two quick presses are two presses
}

void ToolbarButton::keyPressEvent(QKeyEvent *event)
{
    if (m_withArrow && (event->key() == Qt::Key_Down || event->key() == Qt::Key_F4)) {
        m_press();
        return;
    }
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        click();
        return;
    }
    QToolButton::keyPressEvent(event);
}

QRect ToolbarButton::arrowRect() const
{
    QStyleOptionToolButton option;
    initStyleOption(&option);
    return style()->subControlRect(QStyle::CC_ToolButton, &option, QStyle::SC_ToolButtonMenu, this);
}
