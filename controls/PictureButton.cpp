// SPDX-License-Identifier: GPL-3.0-or-later

#include "controls/PictureButton.h"

#include <QKeyEvent>

PictureButton::PictureButton(const QString &iconName, const QString &text, QWidget *parent) : QToolButton(parent)
{
    setIcon(QIcon(u":/icons/" + iconName + u".svg"));
    setIconSize(QSize(16, 16));
    setAutoRaise(true);
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::PointingHandCursor);
    setToolTip(text);
    setAccessibleName(text);
}

void PictureButton::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        click();
        return;
    }
    QToolButton::keyPressEvent(event);
}
