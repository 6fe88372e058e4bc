// SPDX-License-Identifier: GPL-3.0-or-later

#include "dialogs/frmAuthentification.h"

#include "dialogs/DialogParts.h"
#include "platform/Literals.h"

#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

frmAuthentification::frmAuthentification(QWidget *owner, Port port)
    : DialogBase(u"Authentification"_s, owner), m_port(std::move(port)),
      m_txtUsername(DialogParts::lineEdit(u"txtUsername"_s)), m_txtPassword(DialogParts::passwordBox(u"txtPassword"_s))
{
    m_txtUsername->setMinimumWidth(40 * fontMetrics().averageCharWidth());

    auto *content = new QWidget;
    auto *grid = new QGridLayout(content);
    grid->setContentsMargins(0, 0, 0, 0);
    auto *text = DialogParts::named(
        new QLabel(u"Le flux auquel vous souhaitez accéder nécessité de vous authentifier, veuillez compléter "
                   "votre nom d'utilisateur et mot de passe."_s),
        u"lblText"_s);
    text->setWordWrap(true);
    grid->addWidget(text, 0, 0, 1, 2);
    DialogParts::addRow(*grid, u"Nom d'utilisateur :"_s, m_txtUsername);
    // Spelled as users know it, like the text above.
    DialogParts::addRow(*grid, u"Mot de pase :"_s, m_txtPassword);

    auto *cmdOK = DialogParts::button(u"cmdOK"_s, u"OK"_s);
    auto *cmdAnnuler = DialogParts::button(u"cmdAnnuler"_s, u"Annuler"_s);
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
