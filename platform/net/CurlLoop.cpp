// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/net/CurlLoop.h"

#include <algorithm>
#include <sys/socket.h>
#include <utility>
#include <vector>

namespace {

constexpr long idleConnections = 1; // for a redirection to the same host

} // namespace

void CurlLoop::LaterDeleter::operator()(QSocketNotifier *notifier) const
{
    notifier->setEnabled(false);
    notifier->deleteLater();
}

CurlLoop::CurlLoop(QObject *parent) : QObject(parent)
{
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, [this] { act(CURL_SOCKET_TIMEOUT, 0); });
}

CurlLoop::~CurlLoop()
{
    stop();
}

void CurlLoop::start(CURL *handle)
{
    if (!m_multi) {
        Curl::initialise();
        m_multi.reset(curl_multi_init());
        curl_multi_setopt(m_multi.get(), CURLMOPT_SOCKETFUNCTION, handleSocket);
        curl_multi_setopt(m_multi.get(), CURLMOPT_SOCKETDATA, this);
        curl_multi_setopt(m_multi.get(), CURLMOPT_TIMERFUNCTION, handleTimer);
        curl_multi_setopt(m_multi.get(), CURLMOPT_TIMERDATA, this);
        curl_multi_setopt(m_multi.get(), CURLMOPT_MAXCONNECTS, idleConnections);
    }
    m_running = handle;
    curl_multi_add_handle(m_multi.get(), handle);
}

void CurlLoop::stop()
{
    if (m_running)
        curl_multi_remove_handle(m_multi.get(), std::exchange(m_running, nullptr));
}

void CurlLoop::cut()
{
    for (const auto &[socket, watch] : m_sockets)
        ::shutdown(socket, SHUT_RDWR);
}

void CurlLoop::serve()
{
    if (!m_running)
        return;
    std::vector<curl_socket_t> sockets;
    for (const auto &[socket, watch] : m_sockets)
        sockets.push_back(socket);
    for (const curl_socket_t socket : sockets)
        act(socket, 0);
    act(CURL_SOCKET_TIMEOUT, 0);
}

int CurlLoop::handleSocket(CURL *, curl_socket_t socket, int what, void *self, void *)
{
    CurlLoop &loop = *static_cast<CurlLoop *>(self);
    if (what == CURL_POLL_REMOVE) {
        loop.m_sockets.erase(socket);
        return 0;
    }
    Watch &watch = loop.m_sockets[socket];
    loop.watch(watch.read, socket, QSocketNotifier::Read, what & CURL_POLL_IN);
    loop.watch(watch.write, socket, QSocketNotifier::Write, what & CURL_POLL_OUT);
    return 0;
}

int CurlLoop::handleTimer(CURLM *, long milliseconds, void *self)
{
    QTimer &timer = static_cast<CurlLoop *>(self)->m_timer;
    if (milliseconds < 0)
        timer.stop();
    else
        timer.start(static_cast<int>(milliseconds));
    return 0;
}

void CurlLoop::watch(Notifier &notifier, curl_socket_t socket, QSocketNotifier::Type type, bool wanted)
{
    if (wanted == static_cast<bool>(notifier))
        return;
    notifier.reset(wanted ? new QSocketNotifier(socket, type, this) : nullptr);
    if (wanted) {
        const int events = type == QSocketNotifier::Read ? CURL_CSELECT_IN : CURL_CSELECT_OUT;
        connect(notifier.get(), &QSocketNotifier::activated, this, [this, socket, events] { act(socket, events); });
    }
}

void CurlLoop::act(curl_socket_t socket, int events)
{
    int running = 0;
    curl_multi_socket_action(m_multi.get(), socket, events, &running);
    // A time-out that is still to come when it is asked for a trifle too early isn't told a second time.
    long milliseconds = -1;
    if (!m_timer.isActive() && curl_multi_timeout(m_multi.get(), &milliseconds) == CURLM_OK && milliseconds >= 0)
        m_timer.start(static_cast<int>(std::max(milliseconds, 1L)));
    handleEnd();
}

void CurlLoop::handleEnd()
{
    int left = 0;
    const CURLMsg *const message = curl_multi_info_read(m_multi.get(), &left);
    if (!message || message->msg != CURLMSG_DONE)
        return;
    const CURLcode result = message->data.result;
    stop();
    Q_EMIT ended(result);
}
