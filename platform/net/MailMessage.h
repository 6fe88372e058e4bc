// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>

/// The text of a mail as it travels (RFC 5322, RFC 2045, RFC 2047): pure ASCII, lines of at most 76 characters (a
/// long address aside) ended by CR LF.
namespace MailMessage {

struct Fields
{
    QString from;
    QString fromName;
    QString recipient;
    QString recipientName;
    QString subject;
    QString text;
};

/// The address as an SMTP envelope takes it, without angle brackets: control characters and surrounding blanks left
/// out, the domain in its ASCII form. "" when `address` isn't of the form local@domain, isn't pure ASCII before the
/// "@", is too long, or holds a character that would lead out of the brackets (blanks, quotes, commas and the like).
QByteArray envelopeAddress(const QString &address);

/// The whole message. Both addresses must be good ones (see envelopeAddress()). Control characters in names and the
/// subject become blanks. The text's line ends (CR LF, CR or LF) become CR LF and zero characters are left out, as a
/// mail can't carry them; all else arrives as it is.
QByteArray compose(const Fields &fields, const QDateTime &date, const QByteArray &messageId);

} // namespace MailMessage
