#include "dialogs/frmAuthentification.h"

#include "dialogs/DialogParts.h"

#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

frmAuthentification::frmAuthentification(QWidget *owner, Port port)
    : DialogBase(QStringLiteral("Authentification"), owner), m_port(std::move(port)),
      m_txtUsername(DialogParts::lineEdit(QStringLiteral("txtUsername"))),
      m_txtPassword(DialogParts::passwordBox(QStringLiteral("txtPassword")))
{
    m_txtUsername->setMinimumWidth(40 * fontMetrics().averageCharWidth());

    auto *content = new QWidget;
    auto *grid = new QGridLayout(content);
    grid->setContentsMargins(0, 0, 0, 0);
    auto *text = DialogParts::named(
        new QLabel(
            QStringLiteral("Le flux auquel vous souhaitez accéder nécessité de vous authentifier, veuillez compléter "
                           "votre nom d'utilisateur et mot de passe.")),
        QStringLiteral("lblText"));
    text->setWordWrap(true);
    grid->addWidget(text, 0, 0, 1, 2);
    DialogParts::addRow(*grid, QStringLiteral("Nom d'utilisateur :"), m_txtUsername);
    // Spelled as users know it, like the text above.
    DialogParts::addRow(*grid, QStringLiteral("Mot de pase :"), m_txtPassword);

    auto *cmdOK = DialogParts::button(QStringLiteral("cmdOK"), QStringLiteral("OK"));
    auto *cmdAnnuler = DialogParts::button(QStringLiteral("cmdAnnuler"), QStringLiteral("Annuler"));
    DialogParts::layOut(*this, content, DialogParts::buttonRow({cmdOK, cmdAnnuler}));
    cmdOK->setDefault(true);
    m_txtUsername->setFocus();

    connect(cmdOK, &QPushButton::clicked, this, &frmAuthentification::handleOk);
    connect(cmdAnnuler, &QPushButton::clicked, this, &frmAuthentification::reject);
}

void frmAuthentification::handleOk()
{
    m_port.setCredentials(m_txtUsername->text(), m_txtPassword->text());
    m_port.LoadFile();
    accept();
}
