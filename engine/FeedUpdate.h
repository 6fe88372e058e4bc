// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "core/FeedTables.h"
#include "engine/feed/CachedFeed.h"

#include <QDateTime>
#include <QString>

/// A finished download on its way into its feed's cache file, one part after the other. What happens between two parts
/// is lost to nobody: where the cache file was replaced meanwhile, the update begins anew with the newer one.
class FeedUpdate final
{
public:
    struct Surroundings
    {
        QString key;             ///< the feed's
        QString freshFile;       ///< what was downloaded
        QString cacheFile;       ///< where it goes
        FeedTables &tables;      ///< retention is read there, and that it ran is noted
        QDateTime moment;        ///< now, for all items of the update
        qint64 largestCacheFile; ///< bytes
        FeedRules rules;
    };

    enum class State {
        Unfinished,
        Merged,
        Failed,  ///< no feed was downloaded, or the cache file would grow too large; the cache file is as it was
        NoStore, ///< the cache file doesn't load
    };

    explicit FeedUpdate(Surroundings surroundings);

    /// Does the next part. Throws as ItemStore::merge() and CachedFeed::Save().
    State goOn();

    QString title() const { return m_fresh.Title(); } ///< of the feed as it was downloaded
    bool isRepaired() const { return m_fresh.IsRepaired(); }
    qint16 newItems() const { return m_newItems; }

private:
    enum class Part { LoadFresh, LoadStore, Merge, Save, End };

    State goTo(Part part);
    State merge();
    State save();

    Surroundings m_surroundings;
    CachedFeed m_fresh;
    CachedFeed m_store;
    Part m_part = Part::LoadFresh;
    QString m_havecache; ///< what it will be
    qint16 m_newItems = 0;
};
