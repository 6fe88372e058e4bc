// SPDX-License-Identifier: GPL-3.0-or-later

#include "dialogs/frmOptions.h"

#include "controls/PictureButton.h"
#include "controls/TabControl.h"
#include "controls/UpDown.h"
#include "core/AppSettings.h"
#include "dialogs/DialogParts.h"
#include "platform/Literals.h"
#include "platform/Numbers.h"
#include "platform/RunTimeError.h"

#include <QAbstractItemView>
#include <QCheckBox>
#include <QComboBox>
#include <QFocusEvent>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include <cmath>

using namespace DialogParts;

namespace {

QCheckBox *checkBox(const QString &name, const QString &caption)
{
    return named(new QCheckBox(caption), name);
}

} // namespace

frmOptions::frmOptions(QWidget *owner, AppSettings &settings, RunAtStartup runAtStartup, AskFile askSound)
    : DialogBase(u"Options"_s, owner), m_settings(settings), m_runAtStartup(std::move(runAtStartup)),
      m_askSound(std::move(askSound))
{
    if (!m_askSound)
        m_askSound = [this] { return FileDialogs::askOpenFile(this, u"Ouvrir"_s, QString()); };

    m_tstrOpt = named(new TabControl, u"tstrOpt"_s);
    m_tstrOpt->addTab(u"general"_s, u"Général"_s, buildGeneralPage());
    m_tstrOpt->addTab(u"flux"_s, u"Flux"_s, buildFluxPage());
    m_tstrOpt->addTab(u"mail"_s, u"Mails"_s, buildMailsPage());

    m_cmdAppliquer = button(u"cmdAppliquer"_s, u"Appliquer"_s);
    auto *cmdFermer = button(u"cmdFermer"_s, u"&Fermer"_s);
    layOut(*this, m_tstrOpt, buttonRow({m_cmdAppliquer, cmdFermer}));
    m_cmdAppliquer->setDefault(true);
    connect(m_cmdAppliquer, &QPushButton::clicked, this, &frmOptions::handleApply);
    connect(cmdFermer, &QPushButton::clicked, this, &frmOptions::reject);

    connectControls();
    load();
}

QWidget *frmOptions::buildGeneralPage()
{
    auto *page = named(new QWidget, u"picGeneral"_s);
    m_chkDemWin = checkBox(u"chkDemWin"_s, u"Lancer Quillwire au démarrage de Windows"_s);
    m_cmbMode = named(new QComboBox, u"cmbMode"_s);
    m_cmbMode->view()->setAccessibleName(u"Choix"_s);
    m_cmbMode->addItems({u"Plein écran"_s, u"Minimisé"_s});
    m_lblMode = named(label(u"En mode"_s, m_cmbMode), u"lblMode"_s);
    auto *grid = new QGridLayout(page);
    grid->addWidget(m_chkDemWin, 0, 0, 1, 3);
    grid->addWidget(m_lblMode, 1, 0);
    grid->addWidget(m_cmbMode, 1, 1);
    grid->setColumnStretch(2, 1);
    grid->setRowStretch(2, 1);
    return page;
}

QWidget *frmOptions::buildFluxPage()
{
    auto *page = named(new QWidget, u"picFlux"_s);
    m_chkAutoUpdate = checkBox(u"chkAutoUpdate"_s, u"Mettre à jour les flux automatiquement au démarrage"_s);
    m_chkNotify = checkBox(u"chkNotify"_s, u"Notifier de l'arrivée de nouveau messages"_s);
    m_txtSon = lineEdit(u"txtSon"_s);
    auto *image = named(new PictureButton(u"ouvrir-fichier"_s, u"Choisir un fichier de son"_s), u"Image1"_s);
    m_txtRead = numberBox(u"txtRead"_s);
    auto *arrows = named(new UpDown(m_txtRead, 0, 3600, 1, 60), u"UpDown1"_s);
    m_chkNoRead = checkBox(u"chkNoRead"_s, u"Jamais"_s);

    auto *sound = new QHBoxLayout;
    sound->addWidget(label(u"Son :"_s, m_txtSon));
    sound->addWidget(m_txtSon, 1);
    sound->addWidget(image);
    auto *read = new QHBoxLayout;
    read->setSpacing(0);
    read->addWidget(label(u"Marquer les messages comme lus après (secondes)"_s, m_txtRead));
    read->addSpacing(edge);
    read->addWidget(m_txtRead);
    read->addWidget(arrows);
    read->addSpacing(edge);
    read->addWidget(m_chkNoRead);

    auto *column = new QVBoxLayout(page);
    column->addWidget(m_chkAutoUpdate);
    column->addWidget(m_chkNotify);
    column->addLayout(sound);
    column->addLayout(read);
    column->addStretch();
    connect(image, &PictureButton::clicked, this, [this] {
        if (const QString path = m_askSound(); !path.isEmpty())
            m_txtSon->setText(path);
    });
    return page;
}

QWidget *frmOptions::buildMailsPage()
{
    auto *page = named(new QWidget, u"picMails"_s);
    auto *grid = new QGridLayout(page);
    addRow(*grid, u"Serveur SMTP :"_s, m_txtSMTPServer = lineEdit(u"txtSMTPServer"_s));
    addRow(*grid, u"Port :"_s, m_txtSMTPPort = lineEdit(u"txtSMTPPort"_s));
    addRow(*grid, u"Email de l'expéditeur :"_s, m_txtFromMail = lineEdit(u"txtFromMail"_s));
    addRow(*grid, u"Nom de l'expéditeur :"_s, m_txtFromName = lineEdit(u"txtFromName"_s));
    grid->setRowStretch(grid->rowCount(), 1);
    return page;
}

void frmOptions::connectControls()
{
    const auto enableApply = [this] { m_cmdAppliquer->setEnabled(true); };
    for (QLineEdit *const box : {m_txtSon, m_txtRead, m_txtSMTPServer, m_txtSMTPPort, m_txtFromMail, m_txtFromName})
        connect(box, &QLineEdit::textChanged, this, enableApply);
    connect(m_cmbMode, &QComboBox::currentTextChanged, this, enableApply);
    for (QCheckBox *const box : {m_chkAutoUpdate, m_chkDemWin, m_chkNoRead, m_chkNotify})
        connect(box, &QCheckBox::toggled, this, enableApply);

    connect(m_chkNotify, &QCheckBox::toggled, m_txtSon, &QLineEdit::setEnabled);
    connect(m_chkNoRead, &QCheckBox::toggled, m_txtRead, &QLineEdit::setDisabled);
    connect(m_chkDemWin, &QCheckBox::toggled, this, &frmOptions::showMode);
    m_txtRead->installEventFilter(this);
    m_txtSMTPPort->installEventFilter(this);
}

void frmOptions::load()
{
    m_chkNotify->setChecked(m_settings.notifyNew);
    m_txtSon->setEnabled(m_settings.notifyNew);
    m_txtSon->setText(m_settings.soundPath);

    m_chkNoRead->setChecked(m_settings.readDelay < 0);
    m_txtRead->setEnabled(m_settings.readDelay >= 0);
    const qint32 magnitude = Numbers::roundToInt32(std::abs(static_cast<double>(m_settings.readDelay)));
    m_txtRead->setText(QString::number(magnitude / 1000.0, 'g', 15));

    showMode(m_chkDemWin->isChecked());
    m_chkAutoUpdate->setChecked(m_settings.updateAtStart);
    const int mode = m_cmbMode->findText(m_settings.startMode);
    if (mode < 0)
        throw RunTimeError::invalidProperty();
    m_cmbMode->setCurrentIndex(mode);
    m_wasRunAtStartup = m_runAtStartup.isRunAtStartup() == 2;
    m_chkDemWin->setChecked(m_wasRunAtStartup);

    m_txtSMTPServer->setText(m_settings.smtpServer);
    m_txtSMTPPort->setText(QString::number(m_settings.smtpPort));
    m_txtFromMail->setText(m_settings.fromMail);
    m_txtFromName->setText(m_settings.fromName);
    // Last: filling the controls has enabled it.
    m_cmdAppliquer->setEnabled(false);
}

void frmOptions::showMode(bool shown)
{
    m_lblMode->setVisible(shown);
    m_cmbMode->setVisible(shown);
}

bool frmOptions::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::FocusOut) {
        // A box isn't left while its window only gives way to another one, or closes.
        const Qt::FocusReason reason = static_cast<QFocusEvent *>(event)->reason();
        const bool left = reason != Qt::ActiveWindowFocusReason && reason != Qt::PopupFocusReason && isVisible();
        if (left && watched == m_txtRead)
            handleReadLeft();
        else if (left && watched == m_txtSMTPPort)
            handlePortLeft();
    }
    return DialogBase::eventFilter(watched, event);
}

void frmOptions::handleReadLeft()
{
    if (!Numbers::isNumeric(m_txtRead->text())) {
        // What is stored comes back as it is stored, in milliseconds, so that a wrong entry is seen for what it is;
        // the steps of frmOptions hold it.
        m_txtRead->setText(QString::number(m_settings.readDelay));
        return;
    }
    const qint16 seconds = Numbers::toInt16(m_txtRead->text());
    if (seconds < 0)
        m_txtRead->setText(u"0"_s);
    else if (seconds > 3600)
        m_txtRead->setText(u"3600"_s);
}

void frmOptions::handlePortLeft()
{
    if (!Numbers::isNumeric(m_txtSMTPPort->text()))
        m_txtSMTPPort->setText(u"25"_s);
    else if (Numbers::toInt16(m_txtSMTPPort->text()) < 0)
        m_txtSMTPPort->setText(u"0"_s);
}

void frmOptions::handleApply()
{
    m_cmdAppliquer->setEnabled(false);
    m_settings.notifyNew = m_chkNotify->isChecked();
    m_settings.soundPath = m_txtSon->text();
    const qint32 seconds = Numbers::toInt32(m_txtRead->text());
    m_settings.readDelay = Numbers::roundToInt32((m_chkNoRead->isChecked() ? -1000.0 : 1000.0) * seconds);
    m_settings.updateAtStart = m_chkAutoUpdate->isChecked();
    m_settings.startMode = m_cmbMode->currentText();
    // The state at opening stays the measure: ticking, applying, clearing and applying leaves the entry in place.
    if (m_chkDemWin->isChecked() != m_wasRunAtStartup)
        m_runAtStartup.setRunAtStartup(m_chkDemWin->isChecked() ? 2 : 0);
    m_settings.smtpServer = m_txtSMTPServer->text();
    m_settings.smtpPort = Numbers::toInt16(m_txtSMTPPort->text());
    m_settings.fromMail = m_txtFromMail->text();
    m_settings.fromName = m_txtFromName->text();
}
