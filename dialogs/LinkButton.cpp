// SPDX-License-Identifier: GPL-3.0-or-later

#include "dialogs/LinkButton.h"

#include <QPainter>
#include <QStyle>
#include <QStyleOptionFocusRect>

namespace {
constexpr int margin = 2; // room for the focus frame
}

LinkButton::LinkButton(const QString &text, QWidget *parent) : QPushButton(text, parent)
{
    setFlat(true);
    setCursor(Qt::PointingHandCursor);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    QFont underlined = font();
    underlined.setUnderline(true);
    setFont(underlined);
}

QSize LinkButton::sizeHint() const
{
    return fontMetrics().size(Qt::TextShowMnemonic, text()) + QSize(2 * margin, 2 * margin);
}

void LinkButton::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setPen(palette().color(QPalette::Link));
    painter.drawText(rect().adjusted(margin, margin, -margin, -margin), Qt::AlignLeft | Qt::AlignVCenter, text());
    if (!hasFocus())
        return;
    QStyleOptionFocusRect frame;
    frame.initFrom(this);
    style()->drawPrimitive(QStyle::PE_FrameFocusRect, &frame, &painter, this);
}
