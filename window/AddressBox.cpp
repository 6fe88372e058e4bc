// SPDX-License-Identifier: GPL-3.0-or-later

#include "window/AddressBox.h"

#include "platform/Literals.h"

#include <QAction>
#include <QClipboard>
#include <QFocusEvent>
#include <QGuiApplication>
#include <QKeyEvent>

#include <algorithm>

AddressBox::AddressBox(QWidget *parent) : QLineEdit(u"http://"_s, parent)
{
    setMaxLength(65535);
}

bool AddressBox::event(QEvent *event)
{
    if (event->type() == QEvent::ShortcutOverride) {
        const QKeySequence pressed(static_cast<QKeyEvent *>(event)->keyCombination());
        const QList<QAction *> commands = window()->actions();
        if (std::any_of(commands.begin(), commands.end(),
                        [&pressed](const QAction *command) { return command->shortcut() == pressed; })) {
            event->ignore();
            return true;
        }
    }
    return QLineEdit::event(event);
}

void AddressBox::focusInEvent(QFocusEvent *event)
{
    // A closed menu or a window that comes forward gives the focus back to the box; it had it all the time.
    const bool hadItBefore = event->reason() == Qt::PopupFocusReason || event->reason() == Qt::MenuBarFocusReason ||
                             event->reason() == Qt::ActiveWindowFocusReason;
    QClipboard *clipboard = QGuiApplication::clipboard();
    if (!hadItBefore) {
        const QString copied = clipboard->text();
        if (copied.startsWith("http://"_L1)) {
            setText(copied);
            clipboard->setText(QString());
        }
    }
    QLineEdit::focusInEvent(event);
}
