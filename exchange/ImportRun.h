// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "engine/feed/FeedRules.h"
#include "platform/Waiting.h"

#include <QObject>
#include <QString>

#include <functional>
#include <memory>
#include <vector>

class CachedFeed;
class Downloader;

/// The run of an import: downloads feeds one after the other and hands on each one that is a feed. One that fails is
/// passed over without a word.
class ImportRun final : public QObject
{
    Q_OBJECT

public:
    struct Feed
    {
        QString name;
        QString address;
    };

    /// What became of the feeds that are done with.
    struct Outcome
    {
        int added = 0;
        int noFeed = 0; ///< they answered, but with something else
        int silent = 0; ///< no answer in time, or a refusal
    };

    /// Subscribes to a feed that was fetched from `url`.
    using AddFeed = std::function<void(const std::shared_ptr<CachedFeed> &document, const QString &url)>;

    /// Each feed is downloaded to `temporaryFile`, which AddFeed finds there too. `wait` is the wait of 100 ms between
    /// two looks at a running download.
    ImportRun(std::unique_ptr<Downloader> downloader, QString temporaryFile, Wait wait, AddFeed addFeed,
              FeedRules rules = {});
    ~ImportRun() override;

    /// Fetches `feeds`, without credentials; a feed that takes 100 waits is given up. Returns at the end of the run, or
    /// once it was stopped or this object destroyed in a wait. To be called once. What AddFeed throws leaves through
    /// the downloader's event.
    void run(const std::vector<Feed> &feeds);

    /// Gives up the feed that is being fetched and all that would follow. Feeds that were added stay.
    void stop();

    /// True from the call of run() on, for good.
    bool hasBegun() const { return m_begun; }

    /// True once all feeds are done with.
    bool isComplete() const { return m_complete; }

    const Outcome &outcome() const { return m_outcome; }

Q_SIGNALS:
    void began(const QString &name); ///< the download of the feed of that name is about to start
    void passed(int count);          ///< so many feeds are done with, failures among them
    void ended();                    ///< all feeds are done with; not told of a run that was stopped

private:
    bool fetch(const Feed &feed);
    void handleComplete(qint32 status);

    std::unique_ptr<Downloader> m_dwlFeed;
    QString m_temporaryFile;
    Wait m_wait;
    AddFeed m_addFeed;
    FeedRules m_rules;
    QString m_currentFeedUrl;
    Outcome m_outcome;
    bool m_begun = false;
    bool m_feedBusy = false;
    bool m_stopped = false;
    bool m_complete = false;
};
