// SPDX-License-Identifier: GPL-3.0-or-later

#include "controls/FileDialogs.h"

#include "platform/Literals.h"

#include <QDateTime>
#include <QFileDialog>
#include <QFileSystemModel>
#include <QHeaderView>
#include <QIdentityProxyModel>
#include <QLocale>
#include <QTreeView>

namespace {

/// Sizes and dates as the program writes them, where the library goes by the system's language.
class FrenchDetails final : public QIdentityProxyModel
{
public:
    using QIdentityProxyModel::QIdentityProxyModel;

    QVariant data(const QModelIndex &index, int role) const override
    {
        constexpr int sizeColumn = 1;
        constexpr int dateColumn = 3;
        const auto *files = qobject_cast<const QFileSystemModel *>(sourceModel());
        if (!files || role != Qt::DisplayRole || (index.column() != sizeColumn && index.column() != dateColumn))
            return QIdentityProxyModel::data(index, role);
        const QModelIndex file = mapToSource(index);
        if (index.column() == dateColumn)
            return QLocale().toString(files->lastModified(file), QLocale::ShortFormat);
        return files->isDir(file) ? QString() : QLocale().formattedDataSize(files->size(file));
    }
};

QString ask(QFileDialog &dialog, const QString &filter, const QString &accept)
{
    if (!filter.isEmpty())
        dialog.setNameFilter(filter);
    dialog.setLabelText(QFileDialog::Accept, accept);
    dialog.setLabelText(QFileDialog::Reject, u"Annuler"_s);
    dialog.setLabelText(QFileDialog::LookIn, u"Dossier :"_s);
    dialog.setLabelText(QFileDialog::FileName, u"Nom du fichier :"_s);
    dialog.setLabelText(QFileDialog::FileType, u"Type :"_s);
    if (auto *const details = dialog.findChild<QTreeView *>(u"treeView"_s)) { // not in the desktop's own dialog
        dialog.setProxyModel(new FrenchDetails(&dialog));
        details->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
        details->header()->setSectionResizeMode(0, QHeaderView::Stretch);
        dialog.resize(dialog.sizeHint().expandedTo({dialog.fontMetrics().averageCharWidth() * 110, 0}));
    }
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

QString FileDialogs::askSaveFile(QWidget *parent, const QString &title, const QString &filter, const QString &proposed)
{
    QFileDialog dialog(parent, title);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    if (!proposed.isEmpty())
        dialog.selectFile(proposed);
    return ask(dialog, filter, u"Enregistrer"_s);
}
