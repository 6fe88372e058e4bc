// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QObject>
#include <QString>

/// Sends one plain text mail: the fields first, in any order, then Send(). The fields may hold anything a user types or
/// a feed brings.
class MailSender : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    virtual void setSmtpHost(const QString &host) = 0;
    virtual void setFrom(const QString &address) = 0;
    virtual void setFromDisplayName(const QString &name) = 0;
    virtual void setRecipient(const QString &address) = 0;
    virtual void setRecipientDisplayName(const QString &name) = 0;
    virtual void setSubject(const QString &subject) = 0;
    virtual void setMessage(const QString &text) = 0;

    /// Sends the mail. Returns when the attempt is over, having emitted exactly one of the two signals; or none, when
    /// the object was destroyed meanwhile.
    virtual void Send() = 0;

Q_SIGNALS:
    void SendSuccesful();

    /// `Explanation`: why, in words for the user.
    void SendFailed(const QString &Explanation);
};
