#include "dialogs/FileDialogs.h"

#include <QFileDialog>

namespace {

QString ask(QFileDialog &dialog, const QString &filter, const QString &accept)
{
    if (!filter.isEmpty())
        dialog.setNameFilter(filter);
    dialog.setLabelText(QFileDialog::Accept, accept);
    dialog.setLabelText(QFileDialog::Reject, QStringLiteral("Annuler"));
    dialog.setLabelText(QFileDialog::LookIn, QStringLiteral("Dossier :"));
    dialog.setLabelText(QFileDialog::FileName, QStringLiteral("Nom du fichier :"));
    dialog.setLabelText(QFileDialog::FileType, QStringLiteral("Type :"));
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return {};
    return dialog.selectedFiles().constFirst();
}

} // namespace

QString FileDialogs::askOpenFile(QWidget *parent, const QString &title, const QString &filter)
{
    QFileDialog dialog(parent, title);
    dialog.setFileMode(QFileDialog::ExistingFile);
    return ask(dialog, filter, QStringLiteral("Ouvrir"));
}

QString FileDialogs::askSaveFile(QWidget *parent, const QString &title, const QString &filter)
{
    QFileDialog dialog(parent, title);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    return ask(dialog, filter, QStringLiteral("Enregistrer"));
}
