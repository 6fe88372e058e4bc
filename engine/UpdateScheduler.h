// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "core/DataDirectory.h"
#include "core/FeedTables.h"
#include "core/FeedTree.h"
#include "engine/CurrentFeed.h"
#include "platform/AddressForms.h"
#include "platform/Choice.h"
#include "platform/Waiting.h"

#include <QObject>
#include <QTimer>

#include <functional>
#include <memory>

class clsDES;
class Downloader;
class FeedTreeState;
class FeedUpdate;

/// Refreshes the feeds of the catalogue, one at a time: each on its own period, all at once, or one that the user asks
/// for. It tells by signals what it does and has no words for the user.
class UpdateScheduler : public QObject
{
    Q_OBJECT

public:
    /// What the scheduler works with. Nothing is owned; `isConnected` tells whether a network connection exists.
    struct Surroundings
    {
        DataDirectory directory;
        FeedTree &tree;
        const FeedTreeState &treeState;
        FeedTables &tables;
        CurrentFeed &current;
        clsDES &cipher;
        Downloader &dwlUpdate;
        std::function<bool()> isConnected;
        Clock clock;
        Wait wait;
        Choice<AddressForms> addresses = AddressForms::usual;
        FeedRules rules = {};
        qint64 largestCacheFile = 256LL * 1024 * 1024; ///< bytes; a merge that would carry one past it is left out
    };

    explicit UpdateScheduler(Surroundings surroundings, QObject *parent = nullptr);
    ~UpdateScheduler() override;

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

    /// Ends all waiting loops as soon as they run again, and tells nothing more; called once when the program ends.
    void stop();

Q_SIGNALS:
    /// The update of a feed begins.
    void began(const FeedNodePtr &node);

    /// Its file is asked for.
    void fetchBegan();
    void progress(int percent);

    /// The server is done, whatever came of it.
    void fetchEnded();

    /// The update found at least one new item in the feed called `title`.
    void newItemsFound(const QString &title, qint16 count);

    /// What the server sent had small faults, which were mended.
    void feedRepaired();

    /// The feed on show was loaded afresh, with `newItems` in front. updateRunning() still holds.
    void feedOnShowReloaded(qint16 newItems);

    /// The update of the feed is over, a failed one too. `node` may have been deleted meanwhile.
    void ended(const FeedNodePtr &node, qint16 newItems);

    /// All feeds are updated, respectively were.
    void allBegan();
    void allEnded();

    /// A walk over several feeds (all, those of a folder, those that are due) has come to its `place`th of `count`.
    /// What is added or deleted meanwhile may make the count a little wrong; the place never exceeds it.
    void walkReached(int place, int count);
    /// `asked` is false where it went to the feeds that were due.
    void walkEnded(bool asked);

private:
    void handleDownloadProgress(double percent);
    void handleDownloadComplete(qint32 status);
    bool isOnShow(const QString &key) const;
    bool shouldBeShown(const QString &key) const;
    bool showAfresh(const QString &key);
    void goOnWithUpdate();
    void showUpdate(const QString &title, qint16 newItems);
    void endUpdate(qint16 newItems);
    void waitForUpdate();
    int dueFeeds() const;
    bool beginWalk(int count);
    void goOnWithWalk();
    void endWalk(bool asked);

    Surroundings m_surroundings;
    QTimer m_timUpdate{this};
    QTimer m_timGlobalUpdate{this};
    FeedNodePtr m_updatingNode;
    std::unique_ptr<FeedUpdate> m_update; ///< from the end of the download to that of the update
    bool m_updateRunning = false;
    bool m_updateAllRunning = false;
    bool m_stopped = false;
    int m_walkPlace = 0;
    int m_walkCount = 0; ///< 0 while there is no walk
};
