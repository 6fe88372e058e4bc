#include "dialogs/frmOptions.h"

#include "controls/PictureButton.h"
#include "controls/TabControl.h"
#include "controls/UpDown.h"
#include "core/AppSettings.h"
#include "dialogs/DialogParts.h"
#include "platform/Numbers.h"
#include "platform/RunTimeError.h"

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
    : DialogBase(QStringLiteral("Options"), owner), m_settings(settings), m_runAtStartup(std::move(runAtStartup)),
      m_askSound(std::move(askSound))
{
    if (!m_askSound)
        m_askSound = [this] { return FileDialogs::askOpenFile(this, QStringLiteral("Ouvrir"), QString()); };

    m_tstrOpt = named(new TabControl, QStringLiteral("tstrOpt"));
    m_tstrOpt->addTab(QStringLiteral("general"), QStringLiteral("Général"), buildGeneralPage());
    m_tstrOpt->addTab(QStringLiteral("flux"), QStringLiteral("Flux"), buildFluxPage());
    m_tstrOpt->addTab(QStringLiteral("mail"), QStringLiteral("Mails"), buildMailsPage());

    m_cmdAppliquer = button(QStringLiteral("cmdAppliquer"), QStringLiteral("Appliquer"));
    auto *cmdFermer = button(QStringLiteral("cmdFermer"), QStringLiteral("&Fermer"));
    layOut(*this, m_tstrOpt, buttonRow({m_cmdAppliquer, cmdFermer}));
    m_cmdAppliquer->setDefault(true);
    connect(m_cmdAppliquer, &QPushButton::clicked, this, &frmOptions::handleApply);
    connect(cmdFermer, &QPushButton::clicked, this, &frmOptions::reject);

    connectControls();
    load();
}

QWidget *frmOptions::buildGeneralPage()
{
    auto *page = named(new QWidget, QStringLiteral("picGeneral"));
    m_chkDemWin = checkBox(QStringLiteral("chkDemWin"), QStringLiteral("Lancer Quillwire au démarrage de Windows"));
    m_cmbMode = named(new QComboBox, QStringLiteral("cmbMode"));
    m_cmbMode->addItems({QStringLiteral("Plein écran"), QStringLiteral("Minimisé")});
    m_lblMode = named(label(QStringLiteral("En mode"), m_cmbMode), QStringLiteral("lblMode"));
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
    auto *page = named(new QWidget, QStringLiteral("picFlux"));
    m_chkAutoUpdate = checkBox(QStringLiteral("chkAutoUpdate"),
                               QStringLiteral("Mettre à jour les flux automatiquement au démarrage"));
    m_chkNotify = checkBox(QStringLiteral("chkNotify"), QStringLiteral("Notifier de l'arrivée de nouveau messages"));
    m_txtSon = lineEdit(QStringLiteral("txtSon"));
    auto *image =
        named(new PictureButton(QStringLiteral("ouvrir-fichier"), QStringLiteral("Choisir un fichier de son")),
              QStringLiteral("Image1"));
    m_txtRead = numberBox(QStringLiteral("txtRead"));
    auto *arrows = named(new UpDown(m_txtRead, 0, 3600, 1, 60), QStringLiteral("UpDown1"));
    m_chkNoRead = checkBox(QStringLiteral("chkNoRead"), QStringLiteral("Jamais"));

    auto *sound = new QHBoxLayout;
    sound->addWidget(label(QStringLiteral("Son :"), m_txtSon));
    sound->addWidget(m_txtSon, 1);
    sound->addWidget(image);
    auto *read = new QHBoxLayout;
    read->setSpacing(0);
    read->addWidget(label(QStringLiteral("Marquer les messages comme lus après (secondes)"), m_txtRead));
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
    auto *page = named(new QWidget, QStringLiteral("picMails"));
    auto *grid = new QGridLayout(page);
    addRow(*grid, QStringLiteral("Serveur SMTP :"), m_txtSMTPServer = lineEdit(QStringLiteral("txtSMTPServer")));
    addRow(*grid, QStringLiteral("Port :"), m_txtSMTPPort = lineEdit(QStringLiteral("txtSMTPPort")));
    addRow(*grid, QStringLiteral("Email de l'expéditeur :"), m_txtFromMail = lineEdit(QStringLiteral("txtFromMail")));
    addRow(*grid, QStringLiteral("Nom de l'expéditeur :"), m_txtFromName = lineEdit(QStringLiteral("txtFromName")));
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
        // leavingABoxMendsItsNumber holds it.
        m_txtRead->setText(QString::number(m_settings.readDelay));
        return;
    }
    const qint16 seconds = Numbers::toInt16(m_txtRead->text());
    if (seconds < 0)
        m_txtRead->setText(QStringLiteral("0"));
    else if (seconds > 3600)
        m_txtRead->setText(QStringLiteral("3600"));
}

void frmOptions::handlePortLeft()
{
    if (!Numbers::isNumeric(m_txtSMTPPort->text()))
        m_txtSMTPPort->setText(QStringLiteral("25"));
    else if (Numbers::toInt16(m_txtSMTPPort->text()) < 0)
        m_txtSMTPPort->setText(QStringLiteral("0"));
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
