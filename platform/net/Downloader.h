// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/net/DownloadStatus.h"

#include <QList>
#include <QObject>
#include <QString>
#include <QTimer>
#include <QUrl>

#include <memory>
#include <optional>

class CurlLoop;
class HttpExchange;
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
    using enum DownloadStatus;
    using Limits = DownloadLimits;

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
    /// The download has ended: an HTTP status such as 200 or 404, or a DownloadStatus.
    void DownloadComplete(qint32 status);

    /// How much of the body has arrived, 0 to 100, and 100 before each DownloadComplete with 200. Nothing comes in
    /// between when the server doesn't tell its size.
    void DownloadProgress(double percent);

private:
    /// What is still to be raised.
    struct Event
    {
        std::optional<qint32> status; ///< of an end; none for progress
        double percent = 0;
    };

    void request(const QUrl &url);
    void redirect(const QUrl &target);
    bool mayCarryCredentials(const QUrl &url) const;
    bool keepBytes(const char *bytes, qsizetype size);
    bool openFile();
    void handleEnded(qint32 status);
    void handleStall();
    void finish(qint32 status);
    void tell(const Event &event);
    void raiseEvents();

    Limits m_nextLimits;
    Limits m_limits;
    QTimer m_stallTimer;
    QTimer m_totalTimer;
    bool m_running = false;
    QUrl m_askedUrl;
    QUrl m_url; ///< of the request on its way
    QString m_destination;
    QByteArray m_authorization;
    int m_redirects = 0;
    std::unique_ptr<CurlLoop> m_loop;
    std::unique_ptr<HttpExchange> m_exchange;
    std::unique_ptr<QSaveFile> m_file;
    QList<Event> m_events;
};
