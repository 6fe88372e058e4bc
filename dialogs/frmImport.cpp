// SPDX-License-Identifier: GPL-3.0-or-later

#include "dialogs/frmImport.h"

#include "controls/PictureButton.h"
#include "controls/ProgressBar.h"
#include "dialogs/DialogParts.h"
#include "dialogs/ImportList.h"
#include "exchange/ImportRun.h"
#include "exchange/OpmlDownload.h"
#include "platform/Literals.h"
#include "platform/Messages.h"
#include "platform/Numbers.h"

#include <QCloseEvent>
#include <QGridLayout>
#include <QGroupBox>
#include <QIcon>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QStackedLayout>

using namespace DialogParts;

namespace {

QGroupBox *page(int index, const QString &caption)
{
    return named(new QGroupBox(caption), arrayName(u"fraWizard"_s, index));
}

} // namespace

frmImport::frmImport(QWidget *owner, Messages &messages, OpmlDownload &download, ImportRun &run, AskFile askPath)
    : DialogBase(u"Importer des flux RSS"_s, owner), m_messages(messages), m_download(download), m_run(run),
      m_askPath(std::move(askPath))
{
    if (!m_askPath)
        m_askPath = [this] { return FileDialogs::askOpenFile(this, u"Ouvrir"_s, u"Fichier OPML (*.opml)"_s); };
    // No close box: the wizard is left through its buttons.
    setWindowFlags(Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint);

    auto *content = new QWidget;
    m_pages = new QStackedLayout(content);
    m_list = named(new ImportList(u"Sélectionner les flux à importer"_s, m_opmlDocument), arrayName(u"fraWizard"_s, 3));
    m_pages->addWidget(buildSourcePage());
    m_pages->addWidget(buildFilePage());
    m_pages->addWidget(buildWebPage());
    m_pages->addWidget(m_list);
    m_pages->addWidget(buildRunPanel());
    layOut(*this, content, buildButtons());
    m_cmdPrecedent->setEnabled(false);
    m_cmdTerminer->hide();
    m_cmdCanceller->hide();
    connectImport();
}

frmImport::~frmImport()
{
    m_run.stop();
}

void frmImport::connectImport()
{
    connect(&m_download, &OpmlDownload::fetched, this, &frmImport::handleFetched);
    connect(&m_download, &OpmlDownload::failed, this, &frmImport::handleDownloadFailed);
    connect(&m_run, &ImportRun::began, this, [this](const QString &name) {
        m_lblTitre->setText(u"Téléchargement de "_s + name.left(ImportList::maxShownName));
    });
    connect(&m_run, &ImportRun::passed, this, &frmImport::handlePassed);
    connect(&m_run, &ImportRun::ended, this, [this] { done(Accepted); });
}

QWidget *frmImport::buildSourcePage()
{
    auto *frame = page(0, u"Sélectionner une source"_s);
    m_optFromFile = named(new QRadioButton(u"À partir d'un fichier"_s), u"optSource_0"_s);
    auto *fromWeb = named(new QRadioButton(u"À partir d'un site web"_s), u"optSource_1"_s);
    m_optFromFile->setChecked(true);
    auto *picture = new QLabel;
    const int side = fontMetrics().height() * 4;
    picture->setPixmap(QIcon(u":/icons/wizard.svg"_s).pixmap(QSize(side, side), devicePixelRatio()));

    auto *grid = new QGridLayout(frame);
    grid->setHorizontalSpacing(2 * edge);
    grid->addWidget(picture, 0, 0, 2, 1, Qt::AlignTop);
    grid->addWidget(m_optFromFile, 0, 1);
    grid->addWidget(fromWeb, 1, 1);
    grid->setColumnStretch(1, 1);
    grid->setRowStretch(2, 1);
    return frame;
}

QWidget *frmImport::buildFilePage()
{
    auto *frame = page(1, u"À partir d'un fichier"_s);
    m_txtOPMLPath = lineEdit(u"txtOPMLPath"_s);
    auto *image = named(new PictureButton(u"ouvrir-fichier"_s, u"Choisir le fichier OPML"_s), u"Image1"_s);
    auto *grid = new QGridLayout(frame);
    addRow(*grid, u"Chemin :"_s, m_txtOPMLPath);
    grid->addWidget(image, grid->rowCount() - 1, 2);
    grid->setRowStretch(grid->rowCount(), 1);
    connect(image, &PictureButton::clicked, this, [this] {
        if (const QString path = m_askPath(); !path.isEmpty())
            m_txtOPMLPath->setText(path);
    });
    return frame;
}

QWidget *frmImport::buildWebPage()
{
    auto *frame = page(2, u"À partir d'un site web"_s);
    m_txtURL = lineEdit(u"txtURL"_s);
    m_txtURL->setText(u"http://"_s);
    auto *grid = new QGridLayout(frame);
    addRow(*grid, u"Adresse :"_s, m_txtURL);
    grid->setRowStretch(grid->rowCount(), 1);
    return frame;
}

QWidget *frmImport::buildRunPanel()
{
    auto *panel = named(new QGroupBox(u"Importation en cours"_s), u"fraImportation"_s);
    m_lblTitre = named(new QLabel(u"Téléchargement de "_s), u"lblTitre"_s);
    m_lblTitre->setTextFormat(Qt::PlainText); // names come from the OPML file
    m_lblTitre->setWordWrap(true);
    m_lblTitre->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred); // no name widens the window
    m_vbalProgressBar1 = named(new ProgressBar, u"vbalProgressBar1"_s);
    m_vbalProgressBar1->setAccessibleName(u"Importation en cours"_s);
    m_vbalProgressBar1->setFocusPolicy(Qt::TabFocus);
    m_cmdCanceller = button(u"cmdCanceller"_s, u"Annuler"_s);
    auto *column = new QVBoxLayout(panel);
    column->addWidget(m_lblTitre);
    column->addWidget(m_vbalProgressBar1);
    column->addWidget(m_cmdCanceller, 0, Qt::AlignRight);
    column->addStretch();
    connect(m_cmdCanceller, &QPushButton::clicked, this, &frmImport::handleStop);
    return panel;
}

QLayout *frmImport::buildButtons()
{
    m_cmdPrecedent = button(u"cmdPrecedent"_s, u"&Précédent"_s);
    m_cmdSuivant = button(u"cmdSuivant"_s, u"&Suivant"_s);
    m_cmdTerminer = button(u"cmdTerminer"_s, u"Terminer"_s);
    m_cmdAnnuler = button(u"cmdAnnuler"_s, u"&Annuler"_s);
    m_cmdSuivant->setDefault(true);
    // "Terminer" takes the place of "Suivant"; hidden buttons keep theirs.
    auto *grid = new QGridLayout;
    grid->setHorizontalSpacing(edge);
    grid->setColumnStretch(0, 1);
    grid->addWidget(m_cmdPrecedent, 0, 1);
    grid->addWidget(m_cmdSuivant, 0, 2);
    grid->addWidget(m_cmdTerminer, 0, 2);
    grid->addWidget(m_cmdAnnuler, 0, 3);
    for (QPushButton *const shown : {m_cmdPrecedent, m_cmdSuivant, m_cmdTerminer, m_cmdAnnuler}) {
        QSizePolicy policy = shown->sizePolicy();
        policy.setRetainSizeWhenHidden(true);
        shown->setSizePolicy(policy);
    }
    connect(m_cmdPrecedent, &QPushButton::clicked, this, &frmImport::handleBack);
    connect(m_cmdSuivant, &QPushButton::clicked, this, &frmImport::handleNext);
    connect(m_cmdTerminer, &QPushButton::clicked, this, &frmImport::handleFinish);
    connect(m_cmdAnnuler, &QPushButton::clicked, this, [this] { done(Rejected); });
    return grid;
}

void frmImport::showPage(qint16 number)
{
    m_wizardPage = number;
    m_pages->setCurrentIndex(number);
}

void frmImport::handleNext()
{
    m_previousPage = m_wizardPage;
    switch (m_wizardPage) {
    case 0:
        m_cmdPrecedent->setEnabled(true);
        showPage(m_optFromFile->isChecked() ? 1 : 2);
        break;
    case 1:
        takeOpmlFile(m_txtOPMLPath->text());
        break;
    case 2:
        // Nothing is disabled meanwhile: pressing again starts the download again.
        m_download.start(m_txtURL->text());
        break;
    default:
        break;
    }
}

void frmImport::openFile(const QString &path)
{
    handleNext();
    m_txtOPMLPath->setText(path);
    handleNext();
}

void frmImport::handleBack()
{
    showPage(m_previousPage);
    switch (m_wizardPage) {
    case 0:
        m_cmdPrecedent->setEnabled(false);
        break;
    case 1:
    case 2:
        m_previousPage = 0;
        m_cmdTerminer->hide();
        m_cmdSuivant->show();
        break;
    default:
        m_previousPage = 2;
        break;
    }
}

void frmImport::refuse(const QString &reason)
{
    m_messages.show({reason, u"Avertissement"_s, Message::Icon::Exclamation});
    showPage(m_previousPage);
}

void frmImport::takeOpmlFile(const QString &path)
{
    if (!m_opmlDocument.load(path)) {
        refuse(u"Le fichier "_s + path + u" est incorrect"_s);
        return;
    }
    if (!m_list->fill()) {
        refuse(u"Ce document n'est pas une liste OPML que Quillwire sait importer.\n\n"
               "Il faut un fichier OPML dont l'en-tête porte un titre (« title ») et dont chaque flux porte un nom "
               "(« text »)."_s);
        return;
    }
    m_cmdSuivant->hide();
    m_cmdTerminer->show();
    showPage(3);
}

void frmImport::handleFetched(const QString &path)
{
    if (!m_run.hasBegun()) // what comes later comes too late
        takeOpmlFile(path);
}

void frmImport::handleDownloadFailed(qint32 status)
{
    if (m_run.hasBegun())
        return;
    if (status == 404)
        m_messages.show(
            {u"Le fichier n'a pas été trouvé sur le serveur"_s, u"Erreur 404"_s, Message::Icon::Exclamation});
    else
        m_messages.show({QString::number(status), QString()});
}

void frmImport::handleFinish()
{
    m_pages->setCurrentWidget(m_cmdCanceller->parentWidget());
    m_cmdPrecedent->hide();
    m_cmdAnnuler->hide();
    m_cmdTerminer->hide();
    m_cmdCanceller->show();
    // Not on the button: the key that pressed "Terminer" may still be held, and would press this one.
    m_vbalProgressBar1->setFocus();

    m_run.run(m_list->ticked()); // ends by closing the dialog
}

void frmImport::handlePassed(int count)
{
    m_vbalProgressBar1->setValue(Numbers::roundToInt16(static_cast<double>(count) / m_list->checkedCount() * 100));
}

void frmImport::handleStop()
{
    m_run.stop();
    done(Rejected);
}

void frmImport::reject()
{
    if (!m_run.hasBegun())
        done(Rejected);
}

void frmImport::closeEvent(QCloseEvent *event)
{
    event->ignore();
}
