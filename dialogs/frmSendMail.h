// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "controls/DialogBase.h"
#include "platform/Waiting.h"

#include <functional>
#include <memory>

class MailSender;
class Messages;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;
struct AppSettings;

/// Sends one item as a plain text mail. For one showing: construct, exec().
class frmSendMail final : public DialogBase
{
    Q_OBJECT

public:
    /// Makes the mail object of one send. `keepAlive` is to be called while it sends, so that the window is repainted.
    using MakeMail = std::function<std::unique_ptr<MailSender>(std::function<void()> keepAlive)>;

    /// `body` is the text to begin with; zero characters are left out of it, as no text box and no mail can hold them.
    /// `wait` is the pause after a sent mail, in which nothing but paints may happen. Server and sender come from
    /// `settings`.
    frmSendMail(QWidget *owner, const AppSettings &settings, Messages &messages, const QString &body, Wait wait,
                MakeMail makeMail);
    ~frmSendMail() override;

    /// What "Envoyer" does; returns when the attempt is over.
    void handleSend();

    /// For a mail object that tells by itself whether it could connect; none does at present.
    void showConnectionState(bool connected);

    /// Escape is "Annuler", and like it does nothing while that button is disabled.
    void reject() override;

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    void enableButtons(bool enabled);
    void poSendMail_SendSuccesful();
    void poSendMail_SendFailed(const QString &Explanation);

    const AppSettings &m_settings;
    Messages &m_messages;
    Wait m_wait;
    MakeMail m_makeMail;
    std::unique_ptr<MailSender> m_poSendMail;
    QLineEdit *m_txtDestMail = nullptr;
    QLineEdit *m_txtDestName = nullptr;
    QLineEdit *m_txtSujet = nullptr;
    QPlainTextEdit *m_txtContent = nullptr;
    QLabel *m_lblEtat = nullptr;
    QPushButton *m_cmdEnvoyer = nullptr;
    QPushButton *m_cmdAnnuler = nullptr;
};
