// SPDX-License-Identifier: GPL-3.0-or-later

#include "window/InputBox.h"

#include "platform/Literals.h"

#include <QInputDialog>

QString inputBox(QWidget *parent, const QString &prompt, const QString &title)
{
    QInputDialog dialog(parent);
    dialog.setWindowTitle(title);
    dialog.setLabelText(prompt);
    dialog.setOkButtonText(u"OK"_s);
    dialog.setCancelButtonText(u"Annuler"_s);
    return dialog.exec() == QDialog::Accepted ? dialog.textValue() : QString();
}
