// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "core/DataDirectory.h"
#include "core/FeedTree.h"
#include "platform/AddressForms.h"
#include "platform/Choice.h"

#include <QObject>

class Downloader;
struct CurrentFeed;

/// Opens a feed: from its cache file, from an address, or from a local file. It has no words for the user: it tells by
/// signals what it opened, and for which reason it refused.
class FeedOpener : public QObject
{
    Q_OBJECT

public:
    /// Where the feed on show came from.
    enum class Source { CacheFile, Network, LocalFile };

    enum class Reason {
        NoSuchFile,         ///< the local file isn't there
        UnreadableFeed,     ///< a cache file or local file that doesn't load
        SchemeNotFetched,   ///< the address is of a kind that can't be fetched
        HostNotFound,       ///< the server's host isn't known
        NotFoundOnServer,   ///< status 404
        UnexpectedStatus,   ///< any other status
        NothingDownloaded,  ///< no file where the download should have left one
        UnsupportedVersion, ///< a known family of formats in a version that isn't read
        UnknownFormat       ///< a document of another kind
    };

    /// Why nothing was opened.
    struct Refusal
    {
        Reason reason;
        QString address = {}; ///< for SchemeNotFetched: the text without "feed:" and slashes
        qint32 status = 0;    ///< for UnexpectedStatus: what the downloader reported
    };

    /// `dwlFeed` is this opener's own downloader. Nothing is owned.
    FeedOpener(DataDirectory directory, CurrentFeed &current, Downloader &dwlFeed,
               Choice<AddressForms> addresses = AddressForms::usual, QObject *parent = nullptr);

    /// Opens the cache file of a feed's node; every other node is ignored. Saves the feed on show first.
    void openFeedNode(const FeedNodePtr &node);

    /// Opens what the user entered: a feed's address, without credentials, or the path of a local file.
    void openEntered(const QString &text);

    /// Opens `text` through the network, with the credentials of the feed on show.
    void LoadFile(const QString &text);

    /// Whether what was opened last had faults that were mended.
    bool openedRepaired() const;

    /// What a text of the command line asks to open: a feed's address as it stands, or a path, less the quotes around
    /// it, whatever its first and last character are. Throws RunTimeError::invalidCall() for another text of fewer than
    /// 2 characters.
    QString enteredByCommandLine(const QString &text) const;

Q_SIGNALS:
    /// A fetch begins. When its address is refused no fetchEnded() follows.
    void fetchBegan();
    void progress(int percent);

    /// The server is done, whatever came of it; one of the signals below follows.
    void fetchEnded();

    /// A file is about to be read, and the feed on show perhaps to be saved, which are so many bytes together; one of
    /// the signals below follows, but for credentialsAsked(). Nothing has its events in between.
    void loadBegan(qint64 bytes);

    /// The feed on show is another one.
    void opened(FeedOpener::Source source);
    void refused(const FeedOpener::Refusal &refusal);

    /// The server wants credentials. With those set in the feed on show LoadFile() tries again.
    void credentialsAsked();

    /// What came from the network is no feed; a browser may show the address.
    void pageOffered();

private:
    void handleDownloadProgress(double percent);
    void handleDownloadComplete(qint32 status);
    void openDownloaded();
    void openLocalFile(const QString &path);
    void tellLoad(const QString &path);
    void refuse(Reason reason) { Q_EMIT refused({reason}); }

    DataDirectory m_directory;
    CurrentFeed &m_current;
    Downloader &m_dwlFeed;
    Choice<AddressForms> m_addresses;
    QString m_url; ///< what is fetched, or was last
};
