// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/net/CurlHandles.h"
#include "platform/net/SmtpLimits.h"

#include <QByteArray>
#include <QElapsedTimer>
#include <QString>

#include <atomic>
#include <mutex>
#include <optional>
#include <vector>

/// One attempt to hand one mail to a server, over the library's blocking calls.
class SmtpTransfer
{
public:
    struct Mail
    {
        QByteArray server; ///< as an address: smtp://host:port
        QByteArray sender; ///< this and the next as the envelope takes them, without angle brackets
        QByteArray recipient;
        QByteArray message;
    };

    SmtpTransfer(Mail mail, const SmtpLimits &limits);
    Q_DISABLE_COPY_MOVE(SmtpTransfer)

    /// Hands the mail over. Blocks, and belongs into a thread of its own. Gives nothing when the server has taken the
    /// mail, and otherwise why not, in words for the user; a refusal with the server's own words on lines of their own.
    /// To be called once. The server's answer to the good-bye isn't waited for.
    std::optional<QString> run();

    /// For the thread that waits for run(), every now and then: ends it when a limit has run out. The library looks at
    /// none as long as bytes keep coming.
    void watch();

    /// Ends run() at once, from any thread.
    void giveUp();

private:
    enum class End { None, GivenUp, TimedOut, TooMuch };

    void setUp(CURL *handle);
    bool isOver();
    void shutDown(int how);
    bool takeAnswer(const QByteArray &line);
    QString explanation(CURLcode code) const;

    static size_t handleRead(char *buffer, size_t size, size_t count, void *self);
    static size_t handleAnswer(char *buffer, size_t size, size_t count, void *self);
    static int handleProgress(void *self, curl_off_t, curl_off_t, curl_off_t, curl_off_t);
    static int handleOpened(void *self, curl_socket_t socket, curlsocktype purpose);
    static int handleClose(void *self, curl_socket_t socket);

    const Mail m_mail;
    const SmtpLimits m_limits;
    QElapsedTimer m_clock;
    std::atomic<qint64> m_lastSign = 0; ///< by m_clock
    std::atomic<End> m_end = End::None;
    std::mutex m_mutex; ///< over m_sockets
    std::vector<curl_socket_t> m_sockets;

    // What follows belongs to the thread of run().
    qsizetype m_given = 0;
    bool m_allGiven = false;
    bool m_taken = false;
    qsizetype m_answerBytes = 0;
    QByteArray m_answer; ///< the lines of one reply so far, its code in front of the first
    QByteArray m_refusal;
};
