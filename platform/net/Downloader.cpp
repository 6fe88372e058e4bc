// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/net/Downloader.h"

#include "platform/Build.h"
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QPointer>
#include <QSaveFile>

#include <chrono>

namespace {

constexpr qint64 ChunkSize = 64LL * 1024;
constexpr qint64 UnreadLimit = 1024LL * 1024;

bool isHttp(const QUrl &url)
{
    return url.scheme() == u"http" || url.scheme() == u"https";
}

int portOf(const QUrl &url)
{
    return url.port(url.scheme() == u"https" ? 443 : 80);
}

bool isRedirection(int httpStatus)
{
    return httpStatus == 301 || httpStatus == 302 || httpStatus == 303 || httpStatus == 307 || httpStatus == 308;
}

int httpStatusOf(const QNetworkReply &reply)
{
    return reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
}

qint32 statusOfError(QNetworkReply::NetworkError error)
{
    switch (error) {
    case QNetworkReply::HostNotFoundError:
        return Downloader::HostNotFound;
    case QNetworkReply::ConnectionRefusedError:
    case QNetworkReply::NetworkSessionFailedError:
    case QNetworkReply::TemporaryNetworkFailureError:
        return Downloader::ConnectionRefused;
    case QNetworkReply::TimeoutError:
        return Downloader::TimedOut;
    case QNetworkReply::SslHandshakeFailedError:
        return Downloader::SecureConnectionFailed;
    case QNetworkReply::RemoteHostClosedError:
        return Downloader::ConnectionLost;
    case QNetworkReply::UnknownContentError:
        return Downloader::ContentNotReadable;
    default:
        return Downloader::OtherFailure;
    }
}

} // namespace

Downloader::Downloader(QObject *parent) : QObject(parent)
{
    m_stallTimer.setSingleShot(true);
    m_totalTimer.setSingleShot(true);
    connect(&m_stallTimer, &QTimer::timeout, this, [this] { finish(TimedOut); });
    connect(&m_totalTimer, &QTimer::timeout, this, [this] { finish(TimedOut); });
}

Downloader::~Downloader()
{
    dropReply();
}

void Downloader::setLimits(const Limits &limits)
{
    m_nextLimits = limits;
}

void Downloader::Download(const QString &url, int, const QString &destination, const QString &username,
                          const QString &password)
{
    if (m_running)
        finish(Cancelled);

    m_running = true;
    m_limits = m_nextLimits;
    m_destination = destination;
    m_redirects = 0;
    m_askedUrl = QUrl(url.trimmed());
    const QString user = username.isEmpty() ? m_askedUrl.userName(QUrl::FullyDecoded) : username;
    const QString secret = username.isEmpty() ? m_askedUrl.password(QUrl::FullyDecoded) : password;
    m_authorization = user.isEmpty() ? QByteArray() : "Basic " + (user + u':' + secret).toUtf8().toBase64();
    m_totalTimer.start(m_limits.totalMs);
    request(m_askedUrl);
}

void Downloader::CancelDownload()
{
    if (m_running)
        finish(Cancelled);
    else if (m_endings.isEmpty())
        return;
    else
        m_endings.last() = Cancelled;
    announceEndings();
}

void Downloader::request(const QUrl &url)
{
    if (!isHttp(url) && !url.scheme().isEmpty()) {
        finish(AddressNotSupported);
        return;
    }
    if (!isHttp(url) || url.host().isEmpty()) {
        finish(HostNotFound);
        return;
    }

    // Credentials in the address would be sent by the library on its own, to whatever host asks for them.
    QNetworkRequest request(url.adjusted(QUrl::RemoveUserInfo | QUrl::RemoveFragment));
    request.setHeader(QNetworkRequest::UserAgentHeader, QString(u"Quillwire/" + Build::shortVersion));
    request.setRawHeader("Accept", "*/*");
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
    request.setAttribute(QNetworkRequest::AuthenticationReuseAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::Http2AllowedAttribute, false);
    request.setDecompressedSafetyCheckThreshold(qMin<qint64>(m_limits.maxBytes, 10 * 1024 * 1024));
    if (!m_authorization.isEmpty() && mayCarryCredentials(url))
        request.setRawHeader("Authorization", m_authorization);

    m_written = 0;
    m_file.reset();
    m_reply = m_network.get(request);
    m_reply->setReadBufferSize(UnreadLimit);
    connect(m_reply, &QNetworkReply::requestSent, this, [this] { armStallTimer(m_limits.idleMs); });
    connect(m_reply, &QNetworkReply::metaDataChanged, this, [this] { armStallTimer(m_limits.idleMs); });
    connect(m_reply, &QNetworkReply::readyRead, this, &Downloader::handleBytes);
    connect(m_reply, &QNetworkReply::downloadProgress, this, &Downloader::handleProgress);
    connect(m_reply, &QNetworkReply::finished, this, &Downloader::handleFinished);
    armStallTimer(m_limits.connectMs);
}

void Downloader::redirect(const QUrl &target)
{
    dropReply();
    if (target.isEmpty() || ++m_redirects > m_limits.maxRedirects)
        finish(TooManyRedirections);
    else
        request(target);
}

bool Downloader::mayCarryCredentials(const QUrl &url) const
{
    if (url.host() != m_askedUrl.host())
        return false;
    if (url.scheme() == m_askedUrl.scheme())
        return portOf(url) == portOf(m_askedUrl);
    return url.scheme() == u"https" && portOf(url) == 443 && portOf(m_askedUrl) == 80;
}

void Downloader::handleBytes()
{
    armStallTimer(m_limits.idleMs);
    const bool wanted = httpStatusOf(*m_reply) == 200;
    if (wanted && !m_file) {
        m_file = std::make_unique<QSaveFile>(m_destination);
        if (!m_file->open(QIODevice::WriteOnly)) {
            finish(WriteFailed);
            return;
        }
    }
    char chunk[ChunkSize];
    for (;;) {
        const qint64 size = m_reply->read(chunk, ChunkSize);
        if (size <= 0)
            return;
        m_written += size;
        if (m_written > m_limits.maxBytes) {
            finish(TooLarge);
            return;
        }
        if (wanted && m_file->write(chunk, size) != size) {
            finish(WriteFailed);
            return;
        }
    }
}

void Downloader::handleProgress(qint64 received, qint64 total)
{
    armStallTimer(m_limits.idleMs);
    if (total <= 0 || httpStatusOf(*m_reply) != 200)
        return;
    const double percent = 100.0 * static_cast<double>(received) / static_cast<double>(total);
    // Slots may throw, which must not pass through the library's own code.
    QMetaObject::invokeMethod(
        this,
        [this, percent, job = m_job] {
            if (m_running && job == m_job)
                Q_EMIT DownloadProgress(qBound(0.0, percent, 100.0));
        },
        Qt::QueuedConnection);
}

void Downloader::handleFinished()
{
    const int httpStatus = httpStatusOf(*m_reply);
    if (isRedirection(httpStatus)) {
        const QUrl target = QUrl::fromEncoded(m_reply->rawHeader("Location").trimmed());
        redirect(target.isEmpty() ? target : m_reply->url().resolved(target));
        return;
    }
    handleBytes();
    if (!m_running)
        return;
    const qint32 status = statusOf(*m_reply);
    // commit() alone would put a file cut short in place when its last bytes, still in a buffer, find no room.
    if (status == 200 && !(m_file->flush() && m_file->commit()))
        finish(WriteFailed);
    else
        finish(status);
}

qint32 Downloader::statusOf(const QNetworkReply &reply) const
{
    const int httpStatus = httpStatusOf(reply);
    if (httpStatus == 401)
        return AuthenticationAsked;
    // The library reports every status from 400 on as an error, so that only its errors below count in their own right.
    if (httpStatus >= 400 || reply.error() == QNetworkReply::NoError)
        return httpStatus >= 100 ? httpStatus : OtherFailure;
    return statusOfError(reply.error());
}

void Downloader::armStallTimer(int milliseconds)
{
    m_stallTimer.start(milliseconds);
}

void Downloader::dropReply()
{
    if (!m_reply)
        return;
    QNetworkReply *const reply = std::exchange(m_reply, nullptr);
    reply->disconnect(this);
    reply->abort();
    reply->deleteLater();
}

void Downloader::finish(qint32 status)
{
    m_stallTimer.stop();
    m_totalTimer.stop();
    dropReply();
    m_file.reset();
    m_running = false;
    ++m_job;
    m_endings.append(status);
    QMetaObject::invokeMethod(this, &Downloader::announceEndings, Qt::QueuedConnection);
}

void Downloader::announceEndings()
{
    const QPointer<Downloader> self(this);
    while (self && !m_endings.isEmpty())
        Q_EMIT DownloadComplete(m_endings.takeFirst());
}
