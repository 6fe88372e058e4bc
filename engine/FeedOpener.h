#pragma once

#include "core/DataDirectory.h"
#include "core/FeedTree.h"
#include "engine/CurrentFeed.h"

#include <QObject>

class Downloader;
class Messages;
class OpeningWindow;

/// Opens a feed: from its cache file, from an address, or from a local file named in the address box.
class FeedOpener : public QObject
{
    Q_OBJECT

public:
    /// `dwlFeed` is this opener's own downloader; it is not owned.
    FeedOpener(DataDirectory directory, CurrentFeed &current, Downloader &dwlFeed, OpeningWindow &window,
               Messages &messages, QObject *parent = nullptr);

    /// Opens the cache file of a feed's node; every other node is ignored. Saves the feed on show first.
    void openFeedNode(const FeedNodePtr &node);

    /// Enter in the address box.
    void handleAddressEntered();

    /// Opens a text of the command line: an address that begins with "http://" or "feed:", or a path in quotes,
    /// whatever its first and last character are. Throws RunTimeError::invalidCall() for another text of fewer than 2
    /// characters.
    void openCommandLine(const QString &text);

    /// Opens through the network what the address box holds.
    void LoadFile();

    /// The address that `text` asks to fetch: "feed:" in its forms is resolved to "http://". "" when its scheme is one
    /// that can't be fetched.
    static QString addressToFetch(const QString &text);

private:
    void handleDownloadProgress(double percent);
    void handleDownloadComplete(qint32 status);
    void openDownloaded();
    void openLocalFile(const QString &path);
    void warn(const QString &text, const QString &title);

    DataDirectory m_directory;
    CurrentFeed &m_current;
    Downloader &m_dwlFeed;
    OpeningWindow &m_window;
    Messages &m_messages;
};
