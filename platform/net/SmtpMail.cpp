// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/net/SmtpMail.h"

#include "platform/Literals.h"
#include "platform/net/CurlHandles.h"

#include <QElapsedTimer>
#include <QHostAddress>
#include <QPointer>
#include <QUrl>
#include <QUuid>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstring>
#include <future>
#include <memory>

namespace {

constexpr std::chrono::milliseconds KeepAliveEvery(10);

/// One attempt. All but `abandoned` belongs to the thread that runs it.
struct Transfer
{
    QByteArray server;
    QByteArray sender;
    QByteArray recipient;
    QByteArray message;
    SmtpMail::Limits limits;

    qsizetype sent = 0;
    QByteArray refusal;
    QElapsedTimer sinceLastSign;
    bool stalled = false;
    std::atomic<bool> abandoned = false;
};

size_t giveMessage(char *buffer, size_t size, size_t count, void *data)
{
    Transfer &transfer = *static_cast<Transfer *>(data);
    const qsizetype portion = std::min(static_cast<qsizetype>(size * count), transfer.message.size() - transfer.sent);
    std::memcpy(buffer, transfer.message.constData() + transfer.sent, static_cast<size_t>(portion));
    transfer.sent += portion;
    transfer.sinceLastSign.restart();
    return static_cast<size_t>(portion);
}

size_t takeAnswer(char *buffer, size_t size, size_t count, void *data)
{
    Transfer &transfer = *static_cast<Transfer *>(data);
    const QByteArray answer = QByteArray(buffer, static_cast<qsizetype>(size * count)).trimmed();
    // A refusal is followed by good-byes that explain nothing.
    if (answer.startsWith('4') || answer.startsWith('5'))
        transfer.refusal = answer;
    transfer.sinceLastSign.restart();
    return size * count;
}

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

/// The library calls this at least once a second; any answer but 0 ends the transfer.
int watch(void *data, curl_off_t, curl_off_t, curl_off_t, curl_off_t)
{
    Transfer &transfer = *static_cast<Transfer *>(data);
    transfer.stalled = transfer.sinceLastSign.hasExpired(transfer.limits.idleMs);
    return transfer.stalled || transfer.abandoned ? 1 : 0;
}

/// Runs the transfer to its end, and gives the explanation of its failure, if it failed.
std::optional<QString> run(Transfer &transfer)
{
    std::array<char, CURL_ERROR_SIZE> errorText{};
    const Curl::List recipients(curl_slist_append(nullptr, transfer.recipient.constData()));
    const Curl::Easy easy(curl_easy_init());
    CURL *const handle = easy.get();
    curl_easy_setopt(handle, CURLOPT_URL, transfer.server.constData());
    curl_easy_setopt(handle, CURLOPT_PROTOCOLS_STR, "smtp");
    curl_easy_setopt(handle, CURLOPT_PROXY, "");
    curl_easy_setopt(handle, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(handle, CURLOPT_QUICK_EXIT, 1L);
    curl_easy_setopt(handle, CURLOPT_MAIL_FROM, transfer.sender.constData());
    curl_easy_setopt(handle, CURLOPT_MAIL_RCPT, recipients.get());
    curl_easy_setopt(handle, CURLOPT_UPLOAD, 1L);
    curl_easy_setopt(handle, CURLOPT_READFUNCTION, giveMessage);
    curl_easy_setopt(handle, CURLOPT_READDATA, &transfer);
    curl_easy_setopt(handle, CURLOPT_HEADERFUNCTION, takeAnswer);
    curl_easy_setopt(handle, CURLOPT_HEADERDATA, &transfer);
    curl_easy_setopt(handle, CURLOPT_WRITEFUNCTION, takeAnswer);
    curl_easy_setopt(handle, CURLOPT_WRITEDATA, &transfer);
    curl_easy_setopt(handle, CURLOPT_NOPROGRESS, 0L);
    curl_easy_setopt(handle, CURLOPT_XFERINFOFUNCTION, watch);
    curl_easy_setopt(handle, CURLOPT_XFERINFODATA, &transfer);
    curl_easy_setopt(handle, CURLOPT_ERRORBUFFER, errorText.data());
    curl_easy_setopt(handle, CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(transfer.limits.connectMs));
    curl_easy_setopt(handle, CURLOPT_TIMEOUT_MS, static_cast<long>(transfer.limits.totalMs));
    // The good-bye at the end is outside of watch(): it is given within the transfer, and this limits the wait for it.
    curl_easy_setopt(handle, CURLOPT_FORBID_REUSE, 1L);
    curl_easy_setopt(handle, CURLOPT_SERVER_RESPONSE_TIMEOUT, transfer.limits.idleMs / 1000L + 1);

    transfer.sinceLastSign.start();
    CURLcode result = curl_easy_perform(handle);
    if (result == CURLE_OK)
        return std::nullopt;
    if (transfer.stalled) {
        result = CURLE_OPERATION_TIMEDOUT;
        errorText[0] = '\0';
    }
    QString explanation = QString::fromUtf8(errorText[0] ? errorText.data() : curl_easy_strerror(result));
    if (!transfer.refusal.isEmpty())
        explanation += u'\n' + QString::fromUtf8(transfer.refusal);
    return explanation;
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

    Transfer transfer;
    transfer.server = server;
    transfer.sender = sender;
    transfer.recipient = recipient;
    transfer.message = MailMessage::compose(m_fields, QDateTime::currentDateTime(), newMessageId(sender));
    transfer.limits = m_limits;
    // The library waits for the server's last answers without giving way, so that it gets a thread of its own. Nothing
    // of the program but the transfer is touched from there, and the thread has ended when this returns.
    std::future<std::optional<QString>> outcome = std::async(std::launch::async, run, std::ref(transfer));
    const QPointer<SmtpMail> self(this);
    const std::function<bool()> keepAlive = m_keepAlive;
    while (outcome.wait_for(KeepAliveEvery) != std::future_status::ready) {
        if (!self || (keepAlive && !keepAlive()) || !self)
            transfer.abandoned = true;
    }
    const std::optional<QString> failure = outcome.get();
    return failure && transfer.abandoned ? u"L'envoi a été interrompu."_s : failure;
}
