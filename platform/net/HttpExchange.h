// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/net/ContentDecoder.h"
#include "platform/net/CurlHandles.h"
#include "platform/net/DownloadStatus.h"

#include <QByteArray>
#include <QUrl>

#include <functional>
#include <optional>

/// One request and its answer: what is sent, and how much is taken of what a server sends. Somebody else drives it (see
/// CurlLoop) and watches the time.
///
/// Of an answer other than 200 only the head counts, whatever becomes of its body.
class HttpExchange
{
public:
    /// What is told while it runs. All functions must be set; they are called from within the library, so that they
    /// must not throw, nor begin or end a transfer.
    struct Listener
    {
        std::function<void()> sign;                                  ///< the request is out, or something came
        std::function<bool(const char *bytes, qsizetype size)> body; ///< of a 200, decoded; false: it can't be kept
        std::function<void()> flood; ///< messages of TLS without end: cut the connection, the library doesn't come back
        std::function<void(double percent)> progress; ///< of the body of a 200; not called when its size isn't told
    };

    struct Request
    {
        QUrl url;                 ///< HTTP or HTTPS, with a host
        QByteArray authorization; ///< the value of that header, "" for none
        bool first = true;        ///< of its download: no connection that served an earlier one is used
    };

    HttpExchange(const Request &request, const DownloadLimits &limits, Listener listener);

    CURL *handle() const { return m_easy.get(); }

    /// How it ended: an HTTP status or a DownloadStatus. 200 is a body that is whole. `result` is what the library
    /// says.
    qint32 status(CURLcode result) const;

    /// The Location of the answer, "" for none.
    QByteArray location() const { return header("location"); }

private:
    void setUp(const Request &request);
    QByteArray header(const char *name) const;
    qint32 httpStatus() const;
    bool takeHeaderLine(const QByteArray &line);
    bool beginBody();
    bool takeBody(const char *bytes, qsizetype size);
    bool fail(DownloadStatus status);
    void countTraffic(curl_infotype type, qsizetype size);

    static size_t handleHeader(char *bytes, size_t one, size_t count, void *self);
    static size_t handleBody(char *bytes, size_t one, size_t count, void *self);
    static int handleTraffic(CURL *, curl_infotype type, char *, size_t size, void *self);
    static int handleProgress(void *self, curl_off_t, curl_off_t, curl_off_t, curl_off_t);

    DownloadLimits m_limits;
    Listener m_listener;
    std::optional<DownloadStatus> m_failure; ///< what we gave it up for
    std::optional<ContentDecoder> m_decoder; ///< once the body of a 200 begins
    bool m_headEnded = false;
    int m_headerLines = 0;
    int m_tlsMessages = 0; ///< since the last byte of the answer
    qint64 m_headerBytes = 0;
    qint64 m_bytes = 0;    ///< of the connection, for this answer
    qint64 m_received = 0; ///< of the body
    qint64 m_decoded = 0;
    qint64 m_length = -1; ///< of the body, as told
    Curl::List m_headers;
    Curl::Easy m_easy;
};
