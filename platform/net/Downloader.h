// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QList>
#include <QNetworkAccessManager>
#include <QObject>
#include <QString>
#include <QTimer>
#include <QUrl>

#include <memory>

class QNetworkReply;
class QSaveFile;

/// Fetches one address at a time over HTTP or HTTPS into a file.
///
/// Every download that Download() starts ends in exactly one DownloadComplete, whatever happens to it, unless the
/// Downloader is destroyed before. Neither signal is ever raised inside Download().
///
/// Nothing is kept between downloads: no cookies, no cache, no credentials.
class Downloader : public QObject
{
    Q_OBJECT

public:
    /// What DownloadComplete tells besides HTTP statuses, which are 100 or more.
    enum Status : qint32 {
        HostNotFound = 3,         ///< the host has no address, or the address names no host
        AuthenticationAsked = 4,  ///< the server answered 401
        ConnectionRefused = 5,    ///< nobody listens there, or the network has no way to the host
        TimedOut = 6,             ///< one of the three time-outs of Limits ran out
        TooLarge = 7,             ///< more bytes than Limits allows, counted after decoding
        Cancelled = 8,            ///< CancelDownload(), or a new Download() before the old one had ended
        TooManyRedirections = 9,  ///< also a redirection without a target
        WriteFailed = 10,         ///< the destination can't be written
        AddressNotSupported = 11, ///< neither http nor https, at the start or after a redirection
        SecureConnectionFailed = 12,
        ConnectionLost = 13,     ///< the connection broke before the whole answer was there
        ContentNotReadable = 14, ///< a content coding that doesn't decode, or that swells beyond reason
        OtherFailure = 15,
    };

    struct Limits
    {
        int connectMs = 30000;                ///< from the start of a request until it has been sent
        int idleMs = 30000;                   ///< between two signs of life of the server
        int totalMs = 300000;                 ///< the whole download, redirections included
        qint64 maxBytes = 64LL * 1024 * 1024; ///< size of the body after decoding
        int maxRedirects = 10;
    };

    explicit Downloader(QObject *parent = nullptr);
    ~Downloader() override;

    /// Takes effect with the next Download().
    void setLimits(const Limits &limits);

    /// Starts fetching `url` into the file `destination`. Returns at once.
    ///
    /// The destination is replaced in one step, and only by a whole body that came with status 200; in every other
    /// case it stays what it was. Redirections are followed, also to HTTPS.
    ///
    /// `mode` has no meaning and is always 0. With a `username` that isn't empty the request carries it and `password`
    /// as Basic authentication (RFC 7617, UTF-8) to the host of `url` and to no other: after a redirection only to the
    /// same origin, or to the same host when a standard port moves from HTTP to HTTPS. Credentials within `url` serve
    /// likewise when `username` is empty. No other kind of authentication is ever answered.
    ///
    /// A download that still runs is abandoned: its DownloadComplete tells Cancelled, and comes before all events of
    /// the new one.
    virtual void Download(const QString &url, int mode, const QString &destination, const QString &username,
                          const QString &password);

    /// Abandons the running download. Its DownloadComplete, with Cancelled, is raised before this returns, so that it
    /// can't be taken for that of a later download. Does nothing when no download runs.
    virtual void CancelDownload();

Q_SIGNALS:
    /// The download has ended: an HTTP status such as 200 or 404, or a value of Status.
    void DownloadComplete(qint32 status);

    /// How much of the body has arrived, 0 to 100. Not raised when the server doesn't tell its size.
    void DownloadProgress(double percent);

private:
    void request(const QUrl &url);
    void redirect(const QUrl &target);
    bool mayCarryCredentials(const QUrl &url) const;
    void handleBytes();
    void handleProgress(qint64 received, qint64 total);
    void handleFinished();
    qint32 statusOf(const QNetworkReply &reply) const;
    void armStallTimer(int milliseconds);
    void dropReply();
    void finish(qint32 status);
    void announceEndings();

    QNetworkAccessManager m_network;
    Limits m_nextLimits;
    Limits m_limits;
    QTimer m_stallTimer;
    QTimer m_totalTimer;
    bool m_running = false;
    quint64 m_job = 0;
    QUrl m_askedUrl;
    QString m_destination;
    QByteArray m_authorization;
    int m_redirects = 0;
    qint64 m_written = 0;
    QNetworkReply *m_reply = nullptr;
    std::unique_ptr<QSaveFile> m_file;
    QList<qint32> m_endings;
};
