// SPDX-License-Identifier: GPL-3.0-or-later

#include "dialogs/frmExport.h"

#include "dialogs/DialogParts.h"
#include "exchange/OpmlWriter.h"
#include "platform/Literals.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include <pwd.h>
#include <unistd.h>

namespace {

/// The name of the logged-on user; "" when the system knows none.
QString currentUserName()
{
    if (const passwd *const user = getpwuid(geteuid()))
        return QString::fromLocal8Bit(user->pw_name);
    return qEnvironmentVariable("USER");
}

} // namespace

frmExport::frmExport(QWidget *owner, QString catalogue, AskFile askPath)
    : DialogBase(u"Exporter mes flux RSS"_s, owner), m_catalogue(std::move(catalogue)), m_askPath(std::move(askPath)),
      m_txtTitre(DialogParts::lineEdit(u"txtTitre"_s)), m_txtNom(DialogParts::lineEdit(u"txtNom"_s)),
      m_txtEmail(DialogParts::lineEdit(u"txtEmail"_s)),
      m_chkStructure(DialogParts::named(new QCheckBox(u"Exporter avec l'arborescence"_s), u"chkStructure"_s))
{
    if (!m_askPath)
        m_askPath = [this] {
            return FileDialogs::askSaveFile(this, u"Choisir le fichier OPML"_s, u"Fichiers OPML (*.opml)"_s);
        };

    auto *frame = DialogParts::named(new QGroupBox(u"Paramètres de la liste de flux"_s), u"Frame1"_s);
    auto *grid = new QGridLayout(frame);
    DialogParts::addRow(*grid, u"Titre :"_s, m_txtTitre);
    DialogParts::addRow(*grid, u"Nom :"_s, m_txtNom);
    DialogParts::addRow(*grid, u"E-Mail :"_s, m_txtEmail);
    grid->addWidget(new QLabel(u"(Les paramètres d'exportation sont optionnels)"_s), grid->rowCount(), 0, 1, 2);
    m_txtNom->setText(currentUserName());

    auto *content = new QWidget;
    auto *column = new QVBoxLayout(content);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(frame);
    column->addWidget(m_chkStructure);

    auto *cmdExporter = DialogParts::button(u"cmdExporter"_s, u"Exporter"_s);
    auto *cmdAnnuler = DialogParts::button(u"cmdAnnuler"_s, u"Annuler"_s);
    DialogParts::layOut(*this, content, DialogParts::buttonRow({cmdExporter, cmdAnnuler}));
    layout()->setSizeConstraint(QLayout::SetFixedSize);
    cmdExporter->setDefault(true);
    m_txtTitre->setFocus();

    connect(cmdExporter, &QPushButton::clicked, this, &frmExport::handleExport);
    connect(cmdAnnuler, &QPushButton::clicked, this, &frmExport::reject);
}

void frmExport::handleExport()
{
    const QString path = m_askPath();
    if (path.isEmpty())
        return;
    const OpmlExport what{m_catalogue, m_txtTitre->text(), m_txtNom->text(), m_txtEmail->text(),
                          m_chkStructure->isChecked()};
    if (writeOpml(what, path))
        accept();
}
