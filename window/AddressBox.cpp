// SPDX-License-Identifier: GPL-3.0-or-later

#include "window/AddressBox.h"

#include "platform/Literals.h"

#include <QClipboard>
#include <QFocusEvent>
#include <QGuiApplication>

AddressBox::AddressBox(Choice<AddressForms> addresses, QWidget *parent)
    : QLineEdit(u"http://"_s, parent), m_addresses(addresses)
{
    setMaxLength(65535);
}

void AddressBox::focusInEvent(QFocusEvent *event)
{
    // A closed menu or a window that comes forward gives the focus back to the box; it had it all the time.
    const bool hadItBefore = event->reason() == Qt::PopupFocusReason || event->reason() == Qt::MenuBarFocusReason ||
                             event->reason() == Qt::ActiveWindowFocusReason;
    QClipboard *clipboard = QGuiApplication::clipboard();
    if (!hadItBefore) {
        const QString copied = clipboard->text();
        if (m_addresses->isWebAddress(copied)) {
            setText(copied);
            clipboard->setText(QString());
        }
    }
    QLineEdit::focusInEvent(event);
}
