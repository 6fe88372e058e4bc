#pragma once

#include "platform/net/MailMessage.h"

#include <QObject>
#include <QString>

#include <functional>
#include <optional>

/// Sends one plain text mail through an SMTP server, without authentication or encryption.
///
/// The fields may hold anything a user types or a feed brings: see MailMessage for what becomes of it.
class SmtpMail : public QObject
{
    Q_OBJECT

public:
    struct Limits
    {
        int connectMs = 30000; ///< until the server's address is found and the connection stands
        int idleMs = 60000;    ///< between two signs of life of the server, to the second
        int totalMs = 300000;  ///< the whole attempt
    };

    /// `keepAlive` is called at least every 50 ms while Send() works, so that the window can be repainted (typically it
    /// runs the pending events less the user's input). May be empty.
    explicit SmtpMail(std::function<void()> keepAlive = {}, QObject *parent = nullptr);

    void setSmtpHost(const QString &host) { m_host = host; }
    void setFrom(const QString &address) { m_fields.from = address; }
    void setFromDisplayName(const QString &name) { m_fields.fromName = name; }
    void setRecipient(const QString &address) { m_fields.recipient = address; }
    void setRecipientDisplayName(const QString &name) { m_fields.recipientName = name; }
    void setSubject(const QString &subject) { m_fields.subject = subject; }
    void setMessage(const QString &text) { m_fields.text = text; }

    /// The server's port; 25 unless set. The port of the program's settings isn't meant to come here.
    void setPort(quint16 port) { m_port = port; }
    void setLimits(const Limits &limits) { m_limits = limits; }

    /// Sends the mail. Returns when the attempt is over, having emitted exactly one of the two signals. A call from
    /// within another one (through keepAlive) fails and leaves that other one alone. The object may be destroyed from
    /// within keepAlive; Send() then returns without a signal.
    void Send();

Q_SIGNALS:
    void SendSuccesful();

    /// `Explanation`: the library's text, and on a line of its own the server's answer where there is one; or, before
    /// anything was sent, what is wrong with an address.
    void SendFailed(const QString &Explanation);

private:
    std::optional<QString> attempt();

    QString m_host;
    quint16 m_port = 25;
    MailMessage::Fields m_fields;
    Limits m_limits;
    std::function<void()> m_keepAlive;
    bool m_sending = false;
};
