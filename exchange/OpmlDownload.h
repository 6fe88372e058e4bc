// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QObject>
#include <QString>

#include <memory>

class Downloader;

/// Fetches an OPML file from the web into a file of the program's, which stays when the download is over.
class OpmlDownload final : public QObject
{
    Q_OBJECT

public:
    /// Each download that succeeds replaces the file `destination`.
    OpmlDownload(std::unique_ptr<Downloader> downloader, QString destination);
    ~OpmlDownload() override;

    /// Starts fetching `url`, without credentials, and returns at once. A download that still runs is given up without
    /// a signal.
    void start(const QString &url);

Q_SIGNALS:
    /// The file lies at `path`. What is in it isn't known.
    void fetched(const QString &path);

    /// There is no file: an HTTP status such as 404, or another value that Downloader tells.
    void failed(qint32 status);

private:
    void handleComplete(qint32 status);

    std::unique_ptr<Downloader> m_dwlOPML;
    QString m_destination;
};
