// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/SignalWatch.h"

#include <array>
#include <csignal>
#include <sys/socket.h>
#include <unistd.h>

namespace {

constexpr std::array<int, 3> endingSignals = {SIGTERM, SIGINT, SIGHUP};
std::array<int, 2> sockets = {-1, -1}; // written by the handler, read by the event loop

volatile std::sig_atomic_t endIsAsked = 0;

void handleSignal(int)
{
    endIsAsked = 1;
    const char byte = 1;
    [[maybe_unused]] const ssize_t written = ::write(sockets[0], &byte, sizeof byte);
}

} // namespace

SignalWatch::SignalWatch(QObject *parent) : QObject(parent)
{
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, sockets.data()) != 0)
        return;
    m_notifier = std::make_unique<QSocketNotifier>(sockets[1], QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &SignalWatch::handleActivated);
    struct sigaction action = {};
    action.sa_handler = handleSignal;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    for (const int number : endingSignals)
        ::sigaction(number, &action, nullptr);
}

SignalWatch::~SignalWatch()
{
    if (!m_notifier)
        return;
    for (const int number : endingSignals)
        std::signal(number, SIG_DFL);
    m_notifier.reset();
    for (int &socket : sockets) {
        ::close(socket);
        socket = -1;
    }
}

bool SignalWatch::isEndAsked()
{
    return endIsAsked != 0;
}

void SignalWatch::handleActivated()
{
    char byte = 0;
    if (::read(sockets[1], &byte, sizeof byte) == sizeof byte)
        Q_EMIT endAsked();
}
