// SPDX-License-Identifier: GPL-3.0-or-later

#include "dialogs/FileDialogs.h"

#include "platform/Literals.h"

#include <QFileDialog>

namespace {

QString ask(QFileDialog &dialog, const QString &filter, const QString &accept)
{
    if (!filter.isEmpty())
        dialog.setNameFilter(filter);
    dialog.setLabelText(QFileDialog::Accept, accept);
    dialog.setLabelText(QFileDialog::Reject, u"Annuler"_s);
    dialog.setLabelText(QFileDialog::LookIn, u"Dossier :"_s);
    dialog.setLabelText(QFileDialog::FileName, u"Nom du fichier :"_s);
    dialog.setLabelText(QFileDialog::FileType, u"Type :"_s);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return {};
    return dialog.selectedFiles().constFirst();
}

} // namespace

QString FileDialogs::askOpenFile(QWidget *parent, const QString &title, const QString &filter)
{
    QFileDialog dialog(parent, title);
    dialog.setFileMode(QFileDialog::ExistingFile);
    return ask(dialog, filter, u"Ouvrir"_s);
}

QString FileDialogs::askSaveFile(QWidget *parent, const QString &title, const QString &filter)
{
    QFileDialog dialog(parent, title);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    return ask(dialog, filter, u"Enregistrer"_s);
}
