#include "platform/net/SmtpMail.h"

#include <QElapsedTimer>
#include <QHostAddress>
#include <QPointer>
#include <QUrl>
#include <QUuid>

#include <curl/curl.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>

namespace {

constexpr int KeepAliveMs = 40;

struct EasyDeleter
{
    void operator()(CURL *handle) const { curl_easy_cleanup(handle); }
};
struct MultiDeleter
{
    void operator()(CURLM *handle) const { curl_multi_cleanup(handle); }
};
struct UrlDeleter
{
    void operator()(CURLU *handle) const { curl_url_cleanup(handle); }
};
struct ListDeleter
{
    void operator()(curl_slist *list) const { curl_slist_free_all(list); }
};
struct TextDeleter
{
    void operator()(char *text) const { curl_free(text); }
};

/// What the library's callbacks work on during one attempt.
struct Transfer
{
    QByteArray message;
    qsizetype sent = 0;
    QByteArray lastAnswer;
    QElapsedTimer sinceLastSign;
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
    transfer.lastAnswer = QByteArray(buffer, static_cast<qsizetype>(size * count)).trimmed();
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
    const std::unique_ptr<CURLU, UrlDeleter> url(curl_url());
    char *text = nullptr;
    const bool made = !name.isEmpty() && curl_url_set(url.get(), CURLUPART_SCHEME, "smtp", 0) == CURLUE_OK &&
                      curl_url_set(url.get(), CURLUPART_HOST, name.constData(), 0) == CURLUE_OK &&
                      curl_url_set(url.get(), CURLUPART_PORT, QByteArray::number(port).constData(), 0) == CURLUE_OK &&
                      curl_url_get(url.get(), CURLUPART_URL, &text, 0) == CURLUE_OK;
    const std::unique_ptr<char, TextDeleter> owned(text);
    return made ? QByteArray(text) : QByteArray();
}

/// Runs the transfer to its end. `pause` is called between its steps and tells whether to go on.
CURLcode drive(CURLM *multi, Transfer &transfer, int idleMs, const std::function<bool()> &pause)
{
    transfer.sinceLastSign.start();
    int running = 1;
    while (running > 0) {
        if (curl_multi_perform(multi, &running) != CURLM_OK)
            return CURLE_FAILED_INIT;
        if (running == 0)
            break;
        if (transfer.sinceLastSign.hasExpired(idleMs))
            return CURLE_OPERATION_TIMEDOUT;
        if (!pause())
            return CURLE_ABORTED_BY_CALLBACK;
        curl_multi_poll(multi, nullptr, 0, KeepAliveMs, nullptr);
    }
    int left = 0;
    const CURLMsg *const end = curl_multi_info_read(multi, &left);
    return end ? end->data.result : CURLE_FAILED_INIT;
}

QByteArray newMessageId(const QByteArray &sender)
{
    return QUuid::createUuid().toByteArray(QUuid::WithoutBraces) + sender.mid(sender.lastIndexOf('@'));
}

} // namespace

SmtpMail::SmtpMail(std::function<void()> keepAlive, QObject *parent)
    : QObject(parent), m_keepAlive(std::move(keepAlive))
{
    static const CURLcode initialised = curl_global_init(CURL_GLOBAL_DEFAULT);
    Q_UNUSED(initialised);
}

void SmtpMail::Send()
{
    if (m_sending) {
        Q_EMIT SendFailed(u"Un envoi est déjà en cours."_qs);
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
        return u"L'adresse de l'expéditeur est incorrecte : "_qs + m_fields.from;
    const QByteArray recipient = MailMessage::envelopeAddress(m_fields.recipient);
    if (recipient.isEmpty())
        return u"L'adresse du destinataire est incorrecte : "_qs + m_fields.recipient;
    const QByteArray server = serverUrl(m_host, m_port);
    if (server.isEmpty())
        return u"Le nom du serveur SMTP est incorrect : "_qs + m_host;

    Transfer transfer;
    transfer.message = MailMessage::compose(m_fields, QDateTime::currentDateTime(), newMessageId(sender));
    std::array<char, CURL_ERROR_SIZE> errorText{};
    const std::unique_ptr<curl_slist, ListDeleter> recipients(curl_slist_append(nullptr, recipient.constData()));
    const std::unique_ptr<CURLM, MultiDeleter> multi(curl_multi_init());
    const std::unique_ptr<CURL, EasyDeleter> easy(curl_easy_init());
    CURL *const handle = easy.get();
    curl_easy_setopt(handle, CURLOPT_URL, server.constData());
    curl_easy_setopt(handle, CURLOPT_PROTOCOLS_STR, "smtp");
    curl_easy_setopt(handle, CURLOPT_PROXY, "");
    curl_easy_setopt(handle, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(handle, CURLOPT_MAIL_FROM, sender.constData());
    curl_easy_setopt(handle, CURLOPT_MAIL_RCPT, recipients.get());
    curl_easy_setopt(handle, CURLOPT_UPLOAD, 1L);
    curl_easy_setopt(handle, CURLOPT_READFUNCTION, giveMessage);
    curl_easy_setopt(handle, CURLOPT_READDATA, &transfer);
    curl_easy_setopt(handle, CURLOPT_HEADERFUNCTION, takeAnswer);
    curl_easy_setopt(handle, CURLOPT_HEADERDATA, &transfer);
    curl_easy_setopt(handle, CURLOPT_WRITEFUNCTION, takeAnswer);
    curl_easy_setopt(handle, CURLOPT_WRITEDATA, &transfer);
    curl_easy_setopt(handle, CURLOPT_ERRORBUFFER, errorText.data());
    curl_easy_setopt(handle, CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(m_limits.connectMs));
    curl_easy_setopt(handle, CURLOPT_TIMEOUT_MS, static_cast<long>(m_limits.totalMs));

    CURLcode result = CURLE_FAILED_INIT;
    if (curl_multi_add_handle(multi.get(), handle) == CURLM_OK) {
        // From here on this object may be gone.
        const auto pause = [self = QPointer<SmtpMail>(this), keepAlive = m_keepAlive] {
            if (keepAlive)
                keepAlive();
            return !self.isNull();
        };
        result = drive(multi.get(), transfer, m_limits.idleMs, pause);
        curl_multi_remove_handle(multi.get(), handle);
    }
    if (result == CURLE_OK)
        return std::nullopt;
    QString explanation = QString::fromUtf8(errorText[0] ? errorText.data() : curl_easy_strerror(result));
    if (!transfer.lastAnswer.isEmpty())
        explanation += u'\n' + QString::fromUtf8(transfer.lastAnswer);
    return explanation;
}
