#include "dialogs/frmExport.h"

#include "dialogs/DialogParts.h"
#include "exchange/OpmlWriter.h"

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
    : DialogBase(QStringLiteral("Exporter mes flux RSS"), owner), m_catalogue(std::move(catalogue)),
      m_askPath(std::move(askPath)), m_txtTitre(DialogParts::lineEdit(QStringLiteral("txtTitre"))),
      m_txtNom(DialogParts::lineEdit(QStringLiteral("txtNom"))),
      m_txtEmail(DialogParts::lineEdit(QStringLiteral("txtEmail"))),
      m_chkStructure(DialogParts::named(new QCheckBox(QStringLiteral("Exporter avec l'arborescence")),
                                        QStringLiteral("chkStructure")))
{
    if (!m_askPath)
        m_askPath = [this] {
            return FileDialogs::askSaveFile(this, QStringLiteral("Choisir le fichier OPML"),
                                            QStringLiteral("Fichiers OPML (*.opml)"));
        };

    auto *frame =
        DialogParts::named(new QGroupBox(QStringLiteral("Paramètres de la liste de flux")), QStringLiteral("Frame1"));
    auto *grid = new QGridLayout(frame);
    DialogParts::addRow(*grid, QStringLiteral("Titre :"), m_txtTitre);
    DialogParts::addRow(*grid, QStringLiteral("Nom :"), m_txtNom);
    DialogParts::addRow(*grid, QStringLiteral("E-Mail :"), m_txtEmail);
    grid->addWidget(new QLabel(QStringLiteral("(Les paramètres d'exportation sont optionnels)")), grid->rowCount(), 0,
                    1, 2);
    m_txtNom->setText(currentUserName());

    auto *content = new QWidget;
    auto *column = new QVBoxLayout(content);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(frame);
    column->addWidget(m_chkStructure);

    auto *cmdExporter = DialogParts::button(QStringLiteral("cmdExporter"), QStringLiteral("Exporter"));
    auto *cmdAnnuler = DialogParts::button(QStringLiteral("cmdAnnuler"), QStringLiteral("Annuler"));
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
