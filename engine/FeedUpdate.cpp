// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/FeedUpdate.h"

#include "engine/ItemStore.h"

namespace {

/// Asking the clock for each item costs about as much as copying the item.
Clock standingClock(const QDateTime &moment)
{
    return [moment] { return moment; };
}

} // namespace

FeedUpdate::FeedUpdate(Surroundings surroundings)
    : m_surroundings(std::move(surroundings)), m_fresh(standingClock(m_surroundings.moment), m_surroundings.rules),
      m_store(standingClock(m_surroundings.moment), m_surroundings.rules)
{}

FeedUpdate::State FeedUpdate::goOn()
{
    switch (m_part) {
    case Part::LoadFresh:
        return m_fresh.Load(m_surroundings.freshFile) == LoadOk ? goTo(Part::LoadStore) : State::Failed;
    case Part::LoadStore:
        return m_store.Load(m_surroundings.cacheFile) == LoadOk ? goTo(Part::Merge) : State::NoStore;
    case Part::Merge:
        return merge();
    case Part::Save:
        return save();
    case Part::End:
        break;
    }
    return State::Merged;
}

FeedUpdate::State FeedUpdate::goTo(Part part)
{
    m_part = part;
    return State::Unfinished;
}

FeedUpdate::State FeedUpdate::merge()
{
    const FeedTables &tables = m_surroundings.tables;
    m_havecache = tables.havecache.Item(m_surroundings.key);
    m_newItems = ItemStore::merge(m_fresh, m_store, tables.updatecache.Item(m_surroundings.key), m_havecache,
                                  m_surroundings.moment.date());
    return goTo(Part::Save);
}

FeedUpdate::State FeedUpdate::save()
{
    if (m_store.IsStale()) // the user marked or deleted something since it was loaded
        return goTo(Part::LoadStore);
    if (!m_store.SaveWithin(m_surroundings.largestCacheFile))
        return State::Failed;
    Dictionary<QString> &havecache = m_surroundings.tables.havecache;
    if (havecache.Item(m_surroundings.key) != m_havecache)
        havecache.Replace(m_surroundings.key, m_havecache);
    return goTo(Part::End);
}
