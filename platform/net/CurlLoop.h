// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/net/CurlHandles.h"

#include <QObject>
#include <QSocketNotifier>
#include <QTimer>

#include <map>

/// Drives one transfer of the library at a time by the event loop of its thread. Nothing here waits, and there is no
/// thread but the one in which the library looks a host name up, which is left behind when it is slow.
class CurlLoop : public QObject
{
    Q_OBJECT

public:
    explicit CurlLoop(QObject *parent = nullptr);
    ~CurlLoop() override;

    /// Begins the transfer of `handle`, which must live until stop() or ended(). No other one may be running.
    void start(CURL *handle);

    /// Gives the running transfer up: its connection is closed at once. Does nothing when none is running.
    void stop();

    /// Cuts the running transfer's connection. The one operation that may be called from within the library: what it
    /// reads for itself and never hands on would hold it for ever. The transfer ends by itself then.
    void cut();

    /// Takes at once what has come for the transfer. For the case that the event loop was held.
    void serve();

Q_SIGNALS:
    /// The transfer is over, and its handle free.
    void ended(CURLcode result);

private:
    struct LaterDeleter // a socket goes in the middle of its own event
    {
        void operator()(QSocketNotifier *notifier) const;
    };
    using Notifier = std::unique_ptr<QSocketNotifier, LaterDeleter>;
    struct Watch
    {
        Notifier read;
        Notifier write;
    };

    static int handleSocket(CURL *, curl_socket_t socket, int what, void *self, void *);
    static int handleTimer(CURLM *, long milliseconds, void *self);
    void watch(Notifier &notifier, curl_socket_t socket, QSocketNotifier::Type type, bool wanted);
    void act(curl_socket_t socket, int events);
    void handleEnd();

    std::map<curl_socket_t, Watch> m_sockets;
    QTimer m_timer;
    Curl::Multi m_multi; ///< made with the first transfer; goes before what it calls
    CURL *m_running = nullptr;
};
