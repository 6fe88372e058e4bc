// SPDX-License-Identifier: GPL-3.0-or-later

#include "dialogs/frmSendMail.h"

#include "core/AppSettings.h"
#include "dialogs/DialogParts.h"
#include "platform/Literals.h"
#include "platform/MailSender.h"
#include "platform/Messages.h"

#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTextDocument>

namespace {

/// What stands in the box. Its own plain text has ordinary blanks in place of those that don't break.
QString textOf(const QPlainTextEdit &box)
{
    QString text = box.document()->toRawText();
    return text.replace(QChar::ParagraphSeparator, u'\n').replace(QChar::LineSeparator, u'\n');
}

} // namespace

frmSendMail::frmSendMail(QWidget *owner, const AppSettings &settings, Messages &messages, const QString &body,
                         Wait wait, MakeMail makeMail)
    : DialogBase(u"Envoyer une news par mail"_s, owner), m_settings(settings), m_messages(messages),
      m_wait(std::move(wait)), m_makeMail(std::move(makeMail))
{
    m_txtDestMail = DialogParts::lineEdit(u"txtDestMail"_s);
    m_txtDestName = DialogParts::lineEdit(u"txtDestName"_s);
    m_txtSujet = DialogParts::lineEdit(u"txtSujet"_s);
    m_txtContent = DialogParts::textBox(u"txtContent"_s);
    QFont typewriter(u"Courier New"_s, font().pointSize());
    typewriter.setStyleHint(QFont::Monospace);
    m_txtContent->setFont(typewriter);
    m_txtContent->setMinimumSize(QFontMetrics(typewriter).averageCharWidth() * 64, fontMetrics().lineSpacing() * 12);
    m_txtContent->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    DialogParts::showText(*m_txtContent, QString(body).remove(QChar(u'\0')));

    auto *content = new QWidget;
    auto *grid = new QGridLayout(content);
    grid->setContentsMargins(0, 0, 0, 0);
    DialogParts::addRow(*grid, u"Email :"_s, m_txtDestMail);
    DialogParts::addRow(*grid, u"Nom (optionnel) :"_s, m_txtDestName);
    DialogParts::addRow(*grid, u"Sujet :"_s, m_txtSujet);
    DialogParts::addRow(*grid, u"Message :"_s, m_txtContent);
    grid->setRowStretch(grid->rowCount() - 1, 1);

    m_lblEtat = DialogParts::named(new QLabel, u"lblEtat"_s);
    m_lblEtat->setTextFormat(Qt::PlainText);
    m_cmdEnvoyer = DialogParts::button(u"cmdEnvoyer"_s, u"&Envoyer"_s);
    m_cmdAnnuler = DialogParts::button(u"cmdAnnuler"_s, u"&Annuler"_s);
    // No button is the default one: Enter in a box sends nothing.
    m_cmdEnvoyer->setAutoDefault(false);
    m_cmdAnnuler->setAutoDefault(false);
    auto *buttons = new QHBoxLayout;
    buttons->setSpacing(DialogParts::edge);
    buttons->addWidget(m_lblEtat, 1);
    buttons->addWidget(m_cmdEnvoyer);
    buttons->addWidget(m_cmdAnnuler);
    DialogParts::layOut(*this, content, buttons);
    m_txtDestMail->setFocus();

    connect(m_cmdEnvoyer, &QPushButton::clicked, this, &frmSendMail::handleSend);
    connect(m_cmdAnnuler, &QPushButton::clicked, this, &frmSendMail::reject);
}

frmSendMail::~frmSendMail() = default;

void frmSendMail::handleSend()
{
    if (m_txtDestMail->text().isEmpty()) {
        m_messages.show({u"Veuillez spécifier l'email du destinataire"_s, u"Attention"_s, Message::Icon::Exclamation});
        return;
    }
    enableButtons(false); // nothing gets through to "Annuler" either
    m_lblEtat->setText(u"Connexion au serveur"_s);

    // All else waits until the attempt is over: an update that began in here would hold it, and let the user's input
    // in again.
    m_poSendMail = m_makeMail(Waiting::repaintWindows);
    connect(m_poSendMail.get(), &MailSender::SendSuccesful, this, &frmSendMail::poSendMail_SendSuccesful);
    connect(m_poSendMail.get(), &MailSender::SendFailed, this, &frmSendMail::poSendMail_SendFailed);

    m_poSendMail->setSmtpHost(m_settings.smtpServer);
    m_poSendMail->setFrom(m_settings.fromMail);
    m_poSendMail->setFromDisplayName(m_settings.fromName);
    m_poSendMail->setRecipient(m_txtDestMail->text());
    m_poSendMail->setRecipientDisplayName(m_txtDestName->text());
    m_poSendMail->setSubject(m_txtSujet->text());
    m_poSendMail->setMessage(textOf(*m_txtContent));
    // The port of the settings is only kept: mail goes by the mail object's own, which servers listen on whatever
    // a user has put there.
    m_poSendMail->Send();
    m_poSendMail.reset();
}

void frmSendMail::poSendMail_SendSuccesful()
{
    m_lblEtat->setText(u"Envoi réussi"_s);
    Waiting::repaintWindows();
    m_wait(1000); // so that the words can be read
    accept();
}

void frmSendMail::poSendMail_SendFailed(const QString &Explanation)
{
    m_messages.show({u"Une erreur est survenue pendant l'envoi du mail :\n\n"_s + Explanation, u"Erreur"_s,
                     Message::Icon::Critical});
    m_lblEtat->clear();
    enableButtons(true);
}

void frmSendMail::showConnectionState(bool connected)
{
    if (connected) {
        m_lblEtat->setText(u"Envoi du message en cours ..."_s);
        return;
    }
    m_messages.show({u"L'envoi du message a échoué, la connexion avec le serveur est impossible !"_s,
                     u"Connexion impossible"_s, Message::Icon::Exclamation});
    m_lblEtat->clear();
    enableButtons(true);
}

void frmSendMail::enableButtons(bool enabled)
{
    m_cmdEnvoyer->setEnabled(enabled);
    m_cmdAnnuler->setEnabled(enabled);
}

void frmSendMail::reject()
{
    if (m_cmdAnnuler->isEnabled())
        DialogBase::reject();
}

void frmSendMail::keyPressEvent(QKeyEvent *event)
{
    auto *const button = qobject_cast<QPushButton *>(focusWidget());
    if (button && (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter))
        button->click();
    else
        DialogBase::keyPressEvent(event);
}
