// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/net/Downloader.h"

#include "platform/net/CurlLoop.h"
#include "platform/net/HttpExchange.h"

#include <QPointer>
#include <QSaveFile>

#include <utility>

namespace {

bool isHttp(const QUrl &url)
{
    return url.scheme() == u"http" || url.scheme() == u"https";
}

int portOf(const QUrl &url)
{
    return url.port(url.scheme() == u"https" ? 443 : 80);
}

bool isRedirection(qint32 status)
{
    return status == 301 || status == 302 || status == 303 || status == 307 || status == 308;
}

} // namespace

Downloader::Downloader(QObject *parent) : QObject(parent), m_loop(std::make_unique<CurlLoop>())
{
    m_stallTimer.setSingleShot(true);
    m_totalTimer.setSingleShot(true);
    connect(&m_stallTimer, &QTimer::timeout, this, &Downloader::handleStall);
    connect(&m_totalTimer, &QTimer::timeout, this, [this] { finish(TimedOut); });
    connect(m_loop.get(), &CurlLoop::ended, this, [this](CURLcode result) { handleEnded(m_exchange->status(result)); });
}

Downloader::~Downloader()
{
    m_loop->stop();
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
    else if (m_events.isEmpty())
        return;
    else
        m_events.last() = {Cancelled};
    raiseEvents();
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
    HttpExchange::Listener listener;
    listener.sign = [this] { m_stallTimer.start(m_limits.idleMs); };
    listener.body = [this](const char *bytes, qsizetype size) { return keepBytes(bytes, size); };
    listener.flood = [this] { m_loop->cut(); };
    listener.progress = [this](double percent) { tell({{}, percent}); };
    const bool trusted = !m_authorization.isEmpty() && mayCarryCredentials(url);
    m_url = url;
    const HttpExchange::Request request{url, trusted ? m_authorization : QByteArray(), m_redirects == 0};
    m_exchange = std::make_unique<HttpExchange>(request, m_limits, listener);
    m_stallTimer.start(m_limits.connectMs);
    m_loop->start(m_exchange->handle());
}

void Downloader::redirect(const QUrl &target)
{
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

bool Downloader::keepBytes(const char *bytes, qsizetype size)
{
    return openFile() && m_file->write(bytes, size) == size;
}

bool Downloader::openFile()
{
    if (m_file)
        return true;
    m_file = std::make_unique<QSaveFile>(m_destination);
    return m_file->open(QIODevice::WriteOnly);
}

void Downloader::handleEnded(qint32 status)
{
    if (isRedirection(status)) {
        const QUrl target = QUrl::fromEncoded(m_exchange->location().trimmed());
        redirect(target.isEmpty() ? target : m_url.resolved(target));
        return;
    }
    // commit() alone would put a file cut short in place when its last bytes, still in a buffer, find no room.
    if (status == 200 && !(openFile() && m_file->flush() && m_file->commit()))
        finish(WriteFailed);
    else
        finish(status);
}

void Downloader::handleStall()
{
    // When it was us who were held, what has come meanwhile counts first.
    m_loop->serve();
    if (m_running && !m_stallTimer.isActive())
        finish(TimedOut);
}

void Downloader::finish(qint32 status)
{
    m_stallTimer.stop();
    m_totalTimer.stop();
    m_loop->stop();
    m_exchange.reset();
    m_file.reset();
    m_running = false;
    if (status == 200)
        tell({{}, 100});
    tell({status});
}

/// Slots may throw and begin whatever they like, which must not pass through the library's own code.
void Downloader::tell(const Event &event)
{
    if (m_events.isEmpty() || event.status)
        QMetaObject::invokeMethod(this, &Downloader::raiseEvents, Qt::QueuedConnection);
    if (!m_events.isEmpty() && !m_events.last().status && event.status != 200) // progress that nobody saw is old by now
        m_events.removeLast();
    m_events.append(event);
}

void Downloader::raiseEvents()
{
    const QPointer<Downloader> self(this);
    while (self && !m_events.isEmpty()) {
        const Event event = m_events.takeFirst();
        if (event.status)
            Q_EMIT DownloadComplete(*event.status);
        else
            Q_EMIT DownloadProgress(event.percent);
    }
}
