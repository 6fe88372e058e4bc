// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/net/SmtpMail.h"

#include "platform/Literals.h"
#include "platform/net/CurlHandles.h"
#include "platform/net/SmtpTransfer.h"

#include <QHostAddress>
#include <QPointer>
#include <QUrl>
#include <QUuid>

#include <chrono>
#include <future>
#include <memory>

namespace {

constexpr std::chrono::milliseconds KeepAliveEvery(10);

/// The server's address for the library; "" when `host` can't be the name of one.
QByteArray serverUrl(const QString &host, quint16 port)
{
    const QHostAddress number(host.trimmed());
    const QByteArray name = number.protocol() == QAbstractSocket::IPv6Protocol
                                ? '[' + number.toString().toLatin1() + ']'
                                : QUrl::toAce(host.trimmed());
    const Curl::Url url(curl_url());
    char *text = nullptr;
    const bool made = !name.isEmpty() && curl_url_set(url.get(), CURLUPART_SCHEME, "smtp", 0) == CURLUE_OK &&
                      curl_url_set(url.get(), CURLUPART_HOST, name.constData(), 0) == CURLUE_OK &&
                      curl_url_set(url.get(), CURLUPART_PORT, QByteArray::number(port).constData(), 0) == CURLUE_OK &&
                      curl_url_get(url.get(), CURLUPART_URL, &text, 0) == CURLUE_OK;
    const Curl::Text owned(text);
    return made ? QByteArray(text) : QByteArray();
}

QByteArray newMessageId(const QByteArray &sender)
{
    return QUuid::createUuid().toByteArray(QUuid::WithoutBraces) + sender.mid(sender.lastIndexOf('@'));
}

} // namespace

SmtpMail::SmtpMail(std::function<bool()> keepAlive, QObject *parent)
    : MailSender(parent), m_keepAlive(std::move(keepAlive))
{
    Curl::initialise();
}

void SmtpMail::Send()
{
    if (m_sending) {
        Q_EMIT SendFailed(u"Un envoi est déjà en cours."_s);
        return;
    }
    const QPointer<SmtpMail> self(this);
    m_sending = true;
    const std::optional<QString> failure = attempt();
    if (!self)
        return;
    m_sending = false;
    if (failure)
        Q_EMIT SendFailed(*failure);
    else
        Q_EMIT SendSuccesful();
}

std::optional<QString> SmtpMail::attempt()
{
    const QByteArray sender = MailMessage::envelopeAddress(m_fields.from);
    if (sender.isEmpty())
        return u"L'adresse de l'expéditeur est incorrecte : "_s + m_fields.from;
    const QByteArray recipient = MailMessage::envelopeAddress(m_fields.recipient);
    if (recipient.isEmpty())
        return u"L'adresse du destinataire est incorrecte : "_s + m_fields.recipient;
    const QByteArray server = serverUrl(m_host, m_port);
    if (server.isEmpty())
        return u"Le nom du serveur SMTP est incorrect : "_s + m_host;

    const QByteArray message = MailMessage::compose(m_fields, QDateTime::currentDateTime(), newMessageId(sender));
    SmtpTransfer transfer({server, sender, recipient, message}, m_limits);
    // The library waits for the server's last answers without giving way, so that it gets a thread of its own. Nothing
    // of the program but the transfer is touched from there, and the thread has ended when this returns.
    std::future<std::optional<QString>> outcome =
        std::async(std::launch::async, [&transfer] { return transfer.run(); });
    const QPointer<SmtpMail> self(this);
    const std::function<bool()> keepAlive = m_keepAlive;
    do {
        transfer.watch();
        if (!self || (keepAlive && !keepAlive()) || !self)
            transfer.giveUp();
    } while (outcome.wait_for(KeepAliveEvery) != std::future_status::ready);
    return outcome.get();
}
