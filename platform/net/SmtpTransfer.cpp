// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/net/SmtpTransfer.h"

#include "platform/AnsiText.h"
#include "platform/Literals.h"

#include <algorithm>
#include <cstring>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

namespace {

constexpr qsizetype answerLimit = 64LL * 1024; ///< of all that a server says in one attempt
constexpr qsizetype shownLimit = 1000;         ///< of a refusal

/// The server's words as a text for a box.
QString shown(const QByteArray &words)
{
    QString text = QString::fromUtf8(words);
    if (text.contains(QChar::ReplacementCharacter))
        text = AnsiText::fromBytes(words);
    std::ranges::replace_if(
        text, [](QChar c) { return c != u'\n' && c.category() == QChar::Other_Control; }, QChar(u' '));
    return text.size() > shownLimit ? text.left(shownLimit) + u"\u2026"_s : text;
}

} // namespace

SmtpTransfer::SmtpTransfer(Mail mail, const SmtpLimits &limits) : m_mail(std::move(mail)), m_limits(limits)
{
    m_clock.start();
}

std::optional<QString> SmtpTransfer::run()
{
    const Curl::List recipients(curl_slist_append(nullptr, m_mail.recipient.constData()));
    const Curl::Easy easy(curl_easy_init());
    setUp(easy.get());
    curl_easy_setopt(easy.get(), CURLOPT_MAIL_RCPT, recipients.get());
    const CURLcode code = curl_easy_perform(easy.get());
    return m_taken ? std::nullopt : std::optional(explanation(code));
}

void SmtpTransfer::setUp(CURL *handle)
{
    const auto set = [handle](CURLoption option, auto value) { curl_easy_setopt(handle, option, value); };
    set(CURLOPT_URL, m_mail.server.constData());
    set(CURLOPT_PROTOCOLS_STR, "smtp");
    set(CURLOPT_PROXY, "");
    set(CURLOPT_NOSIGNAL, 1L);
    set(CURLOPT_QUICK_EXIT, 1L);
    set(CURLOPT_FORBID_REUSE, 1L); // the good-bye is said within the transfer
    set(CURLOPT_MAIL_FROM, m_mail.sender.constData());
    set(CURLOPT_UPLOAD, 1L);
    set(CURLOPT_READFUNCTION, handleRead);
    set(CURLOPT_READDATA, this);
    set(CURLOPT_HEADERFUNCTION, handleAnswer);
    set(CURLOPT_HEADERDATA, this);
    set(CURLOPT_WRITEFUNCTION, handleAnswer);
    set(CURLOPT_WRITEDATA, this);
    set(CURLOPT_NOPROGRESS, 0L);
    set(CURLOPT_XFERINFOFUNCTION, handleProgress);
    set(CURLOPT_XFERINFODATA, this);
    set(CURLOPT_SOCKOPTFUNCTION, handleOpened);
    set(CURLOPT_SOCKOPTDATA, this);
    set(CURLOPT_CLOSESOCKETFUNCTION, handleClose);
    set(CURLOPT_CLOSESOCKETDATA, this);
    set(CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(m_limits.connectMs));
    // Beside isOver(), for the good-bye of a failed attempt, in which nobody is asked.
    set(CURLOPT_SERVER_RESPONSE_TIMEOUT, m_limits.idleMs / 1000L + 1);
}

bool SmtpTransfer::isOver()
{
    const qint64 now = m_clock.elapsed();
    if (m_end == End::None && (now - m_lastSign > m_limits.idleMs || now > m_limits.totalMs))
        m_end = End::TimedOut;
    return m_end != End::None;
}

void SmtpTransfer::watch()
{
    if (isOver())
        shutDown(SHUT_RDWR);
}

void SmtpTransfer::giveUp()
{
    m_end = End::GivenUp;
    shutDown(SHUT_RDWR);
}

void SmtpTransfer::shutDown(int how)
{
    const std::lock_guard lock(m_mutex);
    for (const curl_socket_t socket : m_sockets)
        ::shutdown(socket, how);
}

bool SmtpTransfer::takeAnswer(const QByteArray &line)
{
    m_lastSign = m_clock.elapsed();
    m_answerBytes += line.size();
    const bool goesOn = line.size() > 3 && line[3] == '-';
    const QByteArray words = line.mid(4).trimmed();
    m_answer += m_answer.isEmpty() ? line.left(3) + ' ' + words : words.isEmpty() ? words : '\n' + words;
    // A refusal is followed by good-byes that explain nothing.
    if (m_answer.startsWith('4') || m_answer.startsWith('5'))
        m_refusal = m_answer.trimmed();
    if (m_answerBytes > answerLimit) {
        m_end = End::TooMuch;
        return false;
    }
    if (goesOn)
        return true;
    m_taken = m_taken || (std::exchange(m_allGiven, false) && m_answer.startsWith('2'));
    if (m_taken)
        shutDown(SHUT_RD); // the good-bye can still be said, and nobody waits for its answer
    m_answer.clear();
    return true;
}

QString SmtpTransfer::explanation(CURLcode code) const
{
    if (m_end == End::GivenUp)
        return u"L'envoi a été interrompu."_s;
    if (!m_refusal.isEmpty())
        return u"Le serveur SMTP a refusé le mail\u00a0:\n"_s + shown(m_refusal);
    if (m_end == End::TooMuch)
        return u"La réponse du serveur SMTP n'a pas de fin."_s;
    if (m_end == End::TimedOut)
        return u"Le serveur SMTP n'a pas répondu à temps."_s;
    switch (code) {
    case CURLE_COULDNT_RESOLVE_HOST:
        return u"Le serveur SMTP est introuvable."_s;
    case CURLE_COULDNT_CONNECT:
        return u"Le serveur SMTP ne peut pas être joint."_s;
    case CURLE_OPERATION_TIMEDOUT:
        return u"Le serveur SMTP n'a pas répondu à temps."_s;
    case CURLE_SEND_ERROR:
    case CURLE_RECV_ERROR:
    case CURLE_GOT_NOTHING:
        return u"La connexion avec le serveur SMTP a été coupée."_s;
    case CURLE_WEIRD_SERVER_REPLY:
    case CURLE_REMOTE_ACCESS_DENIED:
        return u"La réponse du serveur SMTP n'est pas compréhensible."_s;
    default:
        return u"La remise du mail n'a pas abouti (erreur %1)."_s.arg(code);
    }
}

size_t SmtpTransfer::handleRead(char *buffer, size_t size, size_t count, void *self)
{
    auto &transfer = *static_cast<SmtpTransfer *>(self);
    const QByteArray &message = transfer.m_mail.message;
    const qsizetype portion = std::min(static_cast<qsizetype>(size * count), message.size() - transfer.m_given);
    std::memcpy(buffer, message.constData() + transfer.m_given, static_cast<size_t>(portion));
    transfer.m_given += portion;
    transfer.m_allGiven = portion == 0;
    transfer.m_lastSign = transfer.m_clock.elapsed();
    return static_cast<size_t>(portion);
}

size_t SmtpTransfer::handleAnswer(char *buffer, size_t size, size_t count, void *self)
{
    const QByteArray line(buffer, static_cast<qsizetype>(size * count));
    return static_cast<SmtpTransfer *>(self)->takeAnswer(line) ? size * count : 0;
}

int SmtpTransfer::handleProgress(void *self, curl_off_t, curl_off_t, curl_off_t, curl_off_t)
{
    return static_cast<SmtpTransfer *>(self)->isOver() ? 1 : 0;
}

int SmtpTransfer::handleOpened(void *self, curl_socket_t socket, curlsocktype)
{
    auto &transfer = *static_cast<SmtpTransfer *>(self);
    const std::lock_guard lock(transfer.m_mutex);
    transfer.m_sockets.push_back(socket);
    return CURL_SOCKOPT_OK;
}

int SmtpTransfer::handleClose(void *self, curl_socket_t socket)
{
    auto &transfer = *static_cast<SmtpTransfer *>(self);
    const std::lock_guard lock(transfer.m_mutex);
    std::erase(transfer.m_sockets, socket);
    return ::close(socket);
}
