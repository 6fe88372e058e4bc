// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QtGlobal>

/// What the end of a download tells besides HTTP statuses, which are 100 or more.
enum DownloadStatus : qint32 {
    HostNotFound = 3,         ///< the host has no address, or the address names no host
    AuthenticationAsked = 4,  ///< the server answered 401
    ConnectionRefused = 5,    ///< nobody listens there, or the network has no way to the host
    TimedOut = 6,             ///< one of the three time-outs of DownloadLimits ran out
    TooLarge = 7,             ///< more bytes or lines than DownloadLimits allows
    Cancelled = 8,            ///< given up from our side, or another download took its place
    TooManyRedirections = 9,  ///< also a redirection without a target
    WriteFailed = 10,         ///< the destination can't be written
    AddressNotSupported = 11, ///< neither http nor https, at the start or after a redirection
    SecureConnectionFailed = 12,
    ConnectionLost = 13,     ///< the answer broke off or lost its form before it was whole
    ContentNotReadable = 14, ///< a content coding that doesn't decode, or ends before its end
    OtherFailure = 15,
};

/// How far a server is followed.
struct DownloadLimits
{
    int connectMs = 30000;                ///< from the start of a request until it has been sent
    int idleMs = 30000;                   ///< between two header lines or portions of the body
    int totalMs = 300000;                 ///< the whole download, redirections included
    qint64 maxBytes = 32LL * 1024 * 1024; ///< size of the body, as it comes and after decoding
    qint64 maxHeaderBytes = 256LL * 1024; ///< of one answer, with its interim answers and trailers
    int maxHeaderLines = 1000;            ///< likewise
    int maxRedirects = 10;
};
