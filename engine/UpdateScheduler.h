#pragma once

#include "core/AppSettings.h"
#include "core/DataDirectory.h"
#include "core/FeedTables.h"
#include "core/FeedTree.h"
#include "engine/CurrentFeed.h"
#include "platform/Waiting.h"

#include <QObject>
#include <QTimer>

#include <functional>

class clsDES;
class Downloader;
class OpeningWindow;

/// Refreshes the feeds of the catalogue, one at a time: each on its own period, all at once, or one that the user asks
/// for.
class UpdateScheduler : public QObject
{
    Q_OBJECT

public:
    /// What the scheduler works with. Nothing is owned; `isConnected` tells whether a network connection exists.
    struct Surroundings
    {
        DataDirectory directory;
        FeedTree &tree;
        FeedTables &tables;
        CurrentFeed &current;
        const AppSettings &settings;
        clsDES &cipher;
        Downloader &dwlUpdate;
        OpeningWindow &window;
        std::function<bool()> isConnected;
        Clock clock;
        Wait wait;
    };

    explicit UpdateScheduler(Surroundings surroundings, QObject *parent = nullptr);

    /// Turns on exactly one timer: timGlobalUpdate (once, after 1000 ms) when all feeds are to be updated at the start,
    /// otherwise timUpdate (each 60000 ms).
    void start(bool updateAtStart);

    /// Starts the update of one node and returns. Returns without a word when there is no connection, when the node is
    /// no feed, or when an update runs.
    void updateFeed(const FeedNodePtr &node);

    /// Updates all feeds below a node, one after the other; returns when the last has ended. Events run meanwhile.
    void updateFolder(const FeedNodePtr &node);

    /// Updates the whole tree. Does nothing without a connection or while it runs already.
    void updateAllFeeds();

    bool updateRunning() const { return m_updateRunning; }
    bool updateAllRunning() const { return m_updateAllRunning; }

    /// One tick of timUpdate: updates the feeds that are due, in the order of the table.
    void handleUpdateTick();

    /// One tick of timGlobalUpdate.
    void handleGlobalUpdateTick();

    /// Ends all waiting loops as soon as they run again; called once when the window closes.
    void stop();

private:
    void handleDownloadProgress(double percent);
    void handleDownloadComplete(qint32 status);
    bool isOnShow(const QString &key) const;
    void refreshWhatIsOnShow(const QString &cacheFile, qint16 newItems);
    void endUpdate(qint16 newItems);
    void waitForUpdate();

    Surroundings m_s;
    QTimer m_timUpdate{this};
    QTimer m_timGlobalUpdate{this};
    FeedNodePtr m_updatingNode;
    bool m_updateRunning = false;
    bool m_updateAllRunning = false;
    bool m_stopped = false;
};
