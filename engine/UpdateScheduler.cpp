// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/UpdateScheduler.h"

#include "core/FeedCatalogue.h"
#include "core/FeedTreeState.h"
#include "engine/FeedUpdate.h"
#include "platform/Literals.h"
#include "platform/Numbers.h"
#include "platform/RunTimeError.h"
#include "platform/net/Downloader.h"
#include "support/clsDES.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr int tickMs = 60000;
constexpr int globalTickMs = 1000;
constexpr int stepMs = 100;
constexpr int breathMs = 10; // enough for what was asked meanwhile, and for a window to be painted

/// Whole-minute boundaries between two times: from 12:00:59 to 12:01:00 there is one.
qint64 allMinuteBoundaries(const QDateTime &from, const QDateTime &to)
{
    const auto minute = [](const QDateTime &when) {
        const qint64 seconds = when.toSecsSinceEpoch();
        return seconds >= 0 ? seconds / 60 : -((59 - seconds) / 60);
    };
    return minute(to) - minute(from);
}

/// Likewise, as the scheduler counts them. Throws RunTimeError::overflow() past 16 bits.
qint16 minuteBoundaries(const QDateTime &from, const QDateTime &to)
{
    const qint64 minutes = allMinuteBoundaries(from, to);
    if (minutes < std::numeric_limits<qint16>::min() || minutes > std::numeric_limits<qint16>::max())
        throw RunTimeError::overflow();
    return static_cast<qint16>(minutes);
}

/// The place of the child to look at after `child`, which stood at `place`; the list may have changed meanwhile.
std::size_t placeAfter(const FeedNodePtr &child, const std::vector<FeedNodePtr> &children, std::size_t place)
{
    const auto found = std::find(children.begin(), children.end(), child);
    return found == children.end() ? place : static_cast<std::size_t>(found - children.begin()) + 1;
}

int feedsBelow(const FeedNodePtr &folder)
{
    int count = 0;
    for (const FeedNodePtr &child : folder->children())
        count += child->image() == NodeImage::Folder ? feedsBelow(child) : 1;
    return count;
}

} // namespace

UpdateScheduler::UpdateScheduler(Surroundings surroundings, QObject *parent)
    : QObject(parent), m_surroundings(std::move(surroundings))
{
    m_timUpdate.setInterval(tickMs);
    m_timGlobalUpdate.setInterval(globalTickMs);
    connect(&m_timUpdate, &QTimer::timeout, this, &UpdateScheduler::handleUpdateTick);
    connect(&m_timGlobalUpdate, &QTimer::timeout, this, &UpdateScheduler::handleGlobalUpdateTick);
    connect(&m_surroundings.dwlUpdate, &Downloader::DownloadProgress, this, &UpdateScheduler::handleDownloadProgress);
    connect(&m_surroundings.dwlUpdate, &Downloader::DownloadComplete, this, &UpdateScheduler::handleDownloadComplete);
}

UpdateScheduler::~UpdateScheduler() = default;

void UpdateScheduler::start(bool updateAtStart)
{
    if (m_stopped)
        return;
    (updateAtStart ? m_timGlobalUpdate : m_timUpdate).start();
}

void UpdateScheduler::stop()
{
    m_stopped = true;
    m_timUpdate.stop();
    m_timGlobalUpdate.stop();
}

void UpdateScheduler::handleGlobalUpdateTick()
{
    m_timGlobalUpdate.stop();
    updateAllFeeds();
    start(false);
}

void UpdateScheduler::handleUpdateTick()
{
    m_timUpdate.stop();
    const qsizetype count = m_surroundings.tables.updatettl.Count();
    QStringList keys = m_surroundings.tables.updatettl.Keys();
    const bool ownWalk = beginWalk(dueFeeds());
    for (qsizetype i = 0; i < count && i < keys.size() && !m_stopped; ++i) {
        const QString key = keys[i];
        const qint16 minutes =
            minuteBoundaries(m_surroundings.tables.updatedate.Item(key).date(), m_surroundings.clock());
        if (minutes <= Numbers::toInt16(m_surroundings.tables.updatettl.Item(key)))
            continue;
        const FeedNodePtr node = m_surroundings.tables.nodeByKey.Item(key);
        m_surroundings.wait(stepMs);
        goOnWithWalk();
        updateFeed(node);
        waitForUpdate();
        keys = m_surroundings.tables.updatettl.Keys(); // entries may have come or changed places during the waits
    }
    if (ownWalk)
        endWalk(false);
    start(false);
}

/// How many feeds the scan is going to find due, for show: it takes no offence at entries over which the scan itself
/// may stumble.
int UpdateScheduler::dueFeeds() const
{
    const FeedTables &tables = m_surroundings.tables;
    const QDateTime now = m_surroundings.clock();
    const QStringList keys = tables.updatettl.Keys();
    return static_cast<int>(std::count_if(keys.begin(), keys.end(), [&](const QString &key) {
        return tables.updatedate.Exists(key) && tables.updatedate.Item(key).isDate() &&
               allMinuteBoundaries(tables.updatedate.Item(key).date(), now) > tables.updatettl.Item(key).toInt();
    }));
}

/// False when a walk is under way already, of which this one becomes a part, or when it won't get anywhere.
bool UpdateScheduler::beginWalk(int count)
{
    if (m_walkCount > 0 || count == 0 || !m_surroundings.isConnected())
        return false;
    m_walkPlace = 0;
    m_walkCount = count;
    return true;
}

void UpdateScheduler::goOnWithWalk()
{
    if (m_stopped || m_walkCount == 0)
        return;
    m_walkCount = std::max(m_walkCount, ++m_walkPlace);
    Q_EMIT walkReached(m_walkPlace, m_walkCount);
}

void UpdateScheduler::endWalk(bool asked)
{
    m_walkCount = 0;
    if (!m_stopped)
        Q_EMIT walkEnded(asked);
}

void UpdateScheduler::waitForUpdate()
{
    while (m_updateRunning && !m_stopped)
        m_surroundings.wait(stepMs);
}

void UpdateScheduler::updateAllFeeds()
{
    if (m_stopped || !m_surroundings.isConnected() || m_updateAllRunning)
        return;
    m_updateAllRunning = true;
    Q_EMIT allBegan();
    updateFolder(m_surroundings.tree.root());
    m_updateAllRunning = false;
    if (!m_stopped)
        Q_EMIT allEnded();
}

void UpdateScheduler::updateFolder(const FeedNodePtr &node)
{
    // A copy: the argument may be a reference into a list that changes during the waits.
    const FeedNodePtr folder = node; // NOLINT(performance-unnecessary-copy-initialization)
    const bool ownWalk = folder && beginWalk(feedsBelow(folder));
    for (std::size_t place = 0; folder && place < folder->children().size() && !m_stopped;) {
        const FeedNodePtr child = folder->children()[place];
        m_surroundings.wait(stepMs);
        if (child->image() == NodeImage::Feed) {
            goOnWithWalk();
            updateFeed(child);
        } else if (child->image() == NodeImage::Folder)
            updateFolder(child);
        waitForUpdate();
        place = placeAfter(child, folder->children(), place);
    }
    if (ownWalk)
        endWalk(true);
}

void UpdateScheduler::updateFeed(const FeedNodePtr &node)
{
    if (m_stopped || !node || !m_surroundings.isConnected() || node->image() != NodeImage::Feed || m_updateRunning)
        return;
    m_updatingNode = node;
    m_surroundings.tree.setImages(m_updatingNode, NodeImage::FeedUpdating, NodeImage::FeedUpdating);
    m_updateRunning = true;
    Q_EMIT began(m_updatingNode);
    const QString key = m_updatingNode->key();
    if (isOnShow(key))
        m_surroundings.current.document->Save(); // its marks have to reach the file before the merge
    Q_EMIT fetchBegan();

    const QString url = m_surroundings.addresses->addressToUpdate(m_updatingNode->tag);
    QString username;
    QString password;
    if (m_surroundings.tables.usernames.Exists(key)) {
        username = m_surroundings.tables.usernames.Item(key);
        QString enciphered = m_surroundings.tables.passwords.Item(key);
        password = m_surroundings.cipher.DecryptString(enciphered, FeedCatalogue::cipherKey(key), true);
    }
    m_surroundings.dwlUpdate.Download(url, 0, m_surroundings.directory.file(u"tmpupd.xml"_s), username, password);
}

bool UpdateScheduler::isOnShow(const QString &key) const
{
    return m_surroundings.current.document->Path() == m_surroundings.directory.cacheFile(key);
}

/// The feed is to be seen with its new items: it is on show and selected, or was selected while it was in flight, when
/// it couldn't be opened. An address or a local file stays on show whatever is selected.
bool UpdateScheduler::shouldBeShown(const QString &key) const
{
    const FeedNodePtr selected = m_surroundings.treeState.selected();
    return selected && selected->key() == key && !m_surroundings.current.addressFeedShown &&
           m_surroundings.current.document->Path() != m_surroundings.directory.file(u"tmp.xml"_s);
}

/// Loads the feed into the document on show, whose marks are saved but for those given up.
bool UpdateScheduler::showAfresh(const QString &key)
{
    CachedFeed &document = *m_surroundings.current.document;
    document.Save();
    if (document.Load(m_surroundings.directory.cacheFile(key)) != LoadOk)
        return false;
    document.SetAddress(m_surroundings.addresses->addressToUpdate(m_updatingNode->tag));
    return true;
}

void UpdateScheduler::handleDownloadProgress(double percent)
{
    if (!m_stopped)
        Q_EMIT progress(static_cast<int>(std::nearbyint(std::clamp(percent, 0.0, 100.0))));
}

void UpdateScheduler::handleDownloadComplete(qint32 status)
{
    if (m_stopped || !m_updateRunning)
        return;
    Q_EMIT fetchEnded();
    if (status != 200) {
        endUpdate(0);
        return;
    }
    const QString key = m_updatingNode->key();
    const DataDirectory &directory = m_surroundings.directory;
    m_update = std::make_unique<FeedUpdate>(
        FeedUpdate::Surroundings{key, directory.file(u"tmpupd.xml"_s), directory.cacheFile(key), m_surroundings.tables,
                                 m_surroundings.clock(), m_surroundings.largestCacheFile, m_surroundings.rules});
    // What was marked in a feed during its own download goes when it is loaded afresh, as ever; what is marked between
    // the parts of the update doesn't.
    if (isOnShow(key) && shouldBeShown(key))
        m_surroundings.current.document->GiveUpMarks();
    goOnWithUpdate();
}

/// Does the parts of the update in one go as long as they are quick. Where they aren't, the window has its events
/// before the next one; the update still runs then, so that no other begins.
void UpdateScheduler::goOnWithUpdate()
{
    if (m_stopped)
        return;
    const QDateTime begin = m_surroundings.clock();
    FeedUpdate::State state = m_update->goOn();
    while (state == FeedUpdate::State::Unfinished) {
        if (begin.msecsTo(m_surroundings.clock()) > stepMs) {
            QTimer::singleShot(breathMs, this, &UpdateScheduler::goOnWithUpdate);
            return;
        }
        state = m_update->goOn();
    }
    const QString title = m_update->title();
    if (state == FeedUpdate::State::Merged && m_update->isRepaired())
        Q_EMIT feedRepaired();
    const qint16 newItems = state == FeedUpdate::State::Merged ? m_update->newItems() : qint16(0);
    m_update.reset(); // before the feed is loaded afresh: a large one should not be held three times
    // Without its cache file the feed stays in flight, and no other update begins until the program ends: a store that
    // can't be read isn't started anew over the user's items (the scheduler's tests hold it).
    if (state == FeedUpdate::State::NoStore)
        return;
    if (state == FeedUpdate::State::Merged)
        showUpdate(title, newItems);
    endUpdate(newItems);
}

void UpdateScheduler::showUpdate(const QString &title, qint16 newItems)
{
    if (newItems >= 1)
        Q_EMIT newItemsFound(title, newItems);
    const QString key = m_updatingNode->key();
    if (shouldBeShown(key) && showAfresh(key))
        Q_EMIT feedOnShowReloaded(newItems);
}

void UpdateScheduler::endUpdate(qint16 newItems)
{
    m_surroundings.tree.setImages(m_updatingNode, NodeImage::Feed, NodeImage::Feed);
    m_updateRunning = false;
    Q_EMIT ended(m_updatingNode, newItems);
    m_surroundings.tables.updatedate.Replace(m_updatingNode->key(), UpdateDate(m_surroundings.clock()));
}
