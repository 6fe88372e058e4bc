// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/MailSender.h"
#include "platform/net/MailMessage.h"
#include "platform/net/SmtpLimits.h"

#include <QString>

#include <functional>
#include <optional>

/// Sends one plain text mail through an SMTP server, without authentication or encryption. What becomes of fields that
/// a mail can't hold: see MailMessage.
class SmtpMail : public MailSender
{
    Q_OBJECT

public:
    using Limits = SmtpLimits;

    /// `keepAlive` is called at least every 50 ms while Send() works, so that the window can be repainted (as
    /// Waiting::repaintWindows() does). False from it gives the attempt up,
    /// which fails then. May be empty.
    explicit SmtpMail(std::function<bool()> keepAlive = {}, QObject *parent = nullptr);

    void setSmtpHost(const QString &host) override { m_host = host; }
    void setFrom(const QString &address) override { m_fields.from = address; }
    void setFromDisplayName(const QString &name) override { m_fields.fromName = name; }
    void setRecipient(const QString &address) override { m_fields.recipient = address; }
    void setRecipientDisplayName(const QString &name) override { m_fields.recipientName = name; }
    void setSubject(const QString &subject) override { m_fields.subject = subject; }
    void setMessage(const QString &text) override { m_fields.text = text; }

    /// The server's port; 25 unless set. The port of the program's settings isn't meant to come here.
    void setPort(quint16 port) { m_port = port; }
    void setLimits(const Limits &limits) { m_limits = limits; }

    /// A call from within another one (through keepAlive) fails and leaves that other one alone. The object may be
    /// destroyed from within keepAlive. The explanation of a failure is French; a refusal is followed by the server's
    /// own words, on lines of their own.
    void Send() override;

private:
    std::optional<QString> attempt();

    QString m_host;
    quint16 m_port = 25;
    MailMessage::Fields m_fields;
    Limits m_limits;
    std::function<bool()> m_keepAlive;
    bool m_sending = false;
};
