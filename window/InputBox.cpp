#include "window/InputBox.h"

#include <QInputDialog>

QString inputBox(QWidget *parent, const QString &prompt, const QString &title)
{
    QInputDialog dialog(parent);
    dialog.setWindowTitle(title);
    dialog.setLabelText(prompt);
    dialog.setOkButtonText(QStringLiteral("OK"));
    dialog.setCancelButtonText(QStringLiteral("Annuler"));
    return dialog.exec() == QDialog::Accepted ? dialog.textValue() : QString();
}
