// SPDX-License-Identifier: GPL-3.0-or-later

#include "controls/DialogBase.h"

#include <QScreen>

#include <algorithm>

DialogBase::DialogBase(const QString &caption, QWidget *frame)
    : QDialog(frame, Qt::Dialog | Qt::WindowTitleHint | Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint),
      m_frame(frame)
{
    setWindowTitle(caption);
    setModal(true);
}

void DialogBase::centre()
{
    const QScreen *screen = m_frame ? m_frame->screen() : this->screen();
    const QRect area = screen->availableGeometry();
    const QRect frame = m_frame ? m_frame->window()->frameGeometry() : area;
    const QSize size = frameGeometry().size();
    QPoint position = centredPosition(frame, size);
    position.setX(std::max(area.left(), std::min(position.x(), area.left() + area.width() - size.width())));
    position.setY(std::max(area.top(), std::min(position.y(), area.top() + area.height() - size.height())));
    move(position);
}

QPoint DialogBase::centredPosition(const QRect &frame, const QSize &size)
{
    return {frame.left() + (frame.width() - size.width()) / 2, frame.top() + (frame.height() - size.height()) / 2};
}

void DialogBase::showEvent(QShowEvent *event)
{
    if (!m_centred) {
        m_centred = true;
        centre();
    }
    QDialog::showEvent(event);
}
