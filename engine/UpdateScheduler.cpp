#include "engine/UpdateScheduler.h"

#include "core/FeedCatalogue.h"
#include "engine/ItemStore.h"
#include "engine/OpeningWindow.h"
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

/// Whole-minute boundaries between two times: from 12:00:59 to 12:01:00 there is one.
qint16 minuteBoundaries(const QDateTime &from, const QDateTime &to)
{
    const auto minute = [](const QDateTime &when) {
        const qint64 seconds = when.toSecsSinceEpoch();
        return seconds >= 0 ? seconds / 60 : -((59 - seconds) / 60);
    };
    const qint64 minutes = minute(to) - minute(from);
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

} // namespace

UpdateScheduler::UpdateScheduler(Surroundings surroundings, QObject *parent)
    : QObject(parent), m_s(std::move(surroundings))
{
    m_timUpdate.setInterval(tickMs);
    m_timGlobalUpdate.setInterval(globalTickMs);
    connect(&m_timUpdate, &QTimer::timeout, this, &UpdateScheduler::handleUpdateTick);
    connect(&m_timGlobalUpdate, &QTimer::timeout, this, &UpdateScheduler::handleGlobalUpdateTick);
    connect(&m_s.dwlUpdate, &Downloader::DownloadProgress, this, &UpdateScheduler::handleDownloadProgress);
    connect(&m_s.dwlUpdate, &Downloader::DownloadComplete, this, &UpdateScheduler::handleDownloadComplete);
}

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
    const qsizetype count = m_s.tables.updatettl.Count();
    QStringList keys = m_s.tables.updatettl.Keys();
    for (qsizetype i = 0; i < count && i < keys.size() && !m_stopped; ++i) {
        const QString key = keys[i];
        const qint16 minutes = minuteBoundaries(m_s.tables.updatedate.Item(key).date(), m_s.clock());
        if (minutes <= Numbers::toInt16(m_s.tables.updatettl.Item(key)))
            continue;
        const FeedNodePtr node = m_s.tables.nodeByKey.Item(key);
        m_s.wait(stepMs);
        updateFeed(node);
        waitForUpdate();
        keys = m_s.tables.updatettl.Keys(); // entries may have come or changed places during the waits
    }
    start(false);
}

void UpdateScheduler::waitForUpdate()
{
    while (m_updateRunning && !m_stopped)
        m_s.wait(stepMs);
}

void UpdateScheduler::updateAllFeeds()
{
    if (m_stopped || !m_s.isConnected() || m_updateAllRunning)
        return;
    m_updateAllRunning = true;
    m_s.window.enableUpdateButton(false);
    updateFolder(m_s.tree.root());
    m_updateAllRunning = false;
    if (!m_stopped)
        m_s.window.enableUpdateButton(true);
}

void UpdateScheduler::updateFolder(const FeedNodePtr &node)
{
    const FeedNodePtr folder = node; // the argument may be a reference into a list that changes during the waits
    for (std::size_t place = 0; folder && place < folder->children().size() && !m_stopped;) {
        const FeedNodePtr child = folder->children()[place];
        m_s.wait(stepMs);
        if (child->image() == NodeImage::Feed)
            updateFeed(child);
        else if (child->image() == NodeImage::Folder)
            updateFolder(child);
        waitForUpdate();
        place = placeAfter(child, folder->children(), place);
    }
}

void UpdateScheduler::updateFeed(const FeedNodePtr &node)
{
    if (m_stopped || !node || !m_s.isConnected() || node->image() != NodeImage::Feed || m_updateRunning)
        return;
    m_updatingNode = node;
    m_s.tree.setImages(m_updatingNode, NodeImage::FeedUpdating, NodeImage::FeedUpdating);
    m_updateRunning = true;
    m_s.window.enableUpdateButton(false);
    m_s.window.setStatusText(QStringLiteral("Mise à jour de ") + m_updatingNode->text());
    const QString key = m_updatingNode->key();
    if (isOnShow(key))
        m_s.current.document->Save(); // its marks have to reach the file before the merge
    m_s.window.showProgress(true);

    QString url = m_updatingNode->tag;
    if (url.startsWith(QLatin1String("feed://")))
        url = QStringLiteral("http://") + url.mid(7);
    QString username;
    QString password;
    if (m_s.tables.usernames.Exists(key)) {
        username = m_s.tables.usernames.Item(key);
        QString enciphered = m_s.tables.passwords.Item(key);
        password = m_s.cipher.DecryptString(enciphered, FeedCatalogue::cipherKey(key), true);
    }
    m_s.dwlUpdate.Download(url, 0, m_s.directory.file(QStringLiteral("tmpupd.xml")), username, password);
}

bool UpdateScheduler::isOnShow(const QString &key) const
{
    const FeedNodePtr selected = m_s.tree.selected();
    return selected && selected->key() == key && !m_s.current.addressFeedShown;
}

void UpdateScheduler::handleDownloadProgress(double percent)
{
    if (!m_stopped)
        m_s.window.setProgress(static_cast<int>(std::nearbyint(std::clamp(percent, 0.0, 100.0))));
}

void UpdateScheduler::handleDownloadComplete(qint32 status)
{
    if (m_stopped || !m_updateRunning)
        return;
    m_s.window.showProgress(false);
    // One moment for all items of the update: asking the clock for each costs about as much as copying the item.
    const Clock now = [moment = m_s.clock()] { return moment; };
    CachedFeed fresh(now);
    if (status != 200 || fresh.Load(m_s.directory.file(QStringLiteral("tmpupd.xml"))) != LoadOk) {
        endUpdate(0);
        return;
    }
    const QString key = m_updatingNode->key();
    const QString cacheFile = m_s.directory.cacheFile(key);
    CachedFeed store(now);
    // Without its cache file the feed stays in flight, and no other update begins until the program ends. So wanted.
    if (store.Load(cacheFile) != LoadOk)
        return;
    QString havecache = m_s.tables.havecache.Item(key);
    const QString before = havecache;
    const qint16 newItems = ItemStore::merge(fresh, store, m_s.tables.updatecache.Item(key), havecache, now().date());
    if (havecache != before)
        m_s.tables.havecache.Replace(key, havecache);

    if (newItems >= 1 && m_s.settings.notifyNew)
        m_s.window.addMessageToQueue(fresh.Title(), newItems);
    if (isOnShow(key))
        refreshWhatIsOnShow(cacheFile, newItems);
    endUpdate(newItems);
}

void UpdateScheduler::refreshWhatIsOnShow(const QString &cacheFile, qint16 newItems)
{
    if (m_s.current.document->Load(cacheFile) != LoadOk)
        return;
    const int row = m_s.window.selectedRow();
    m_s.window.FillItemList();
    if (row >= 0)
        m_s.window.selectRow(row + newItems); // the same item as before, now further down
}

void UpdateScheduler::endUpdate(qint16 newItems)
{
    m_s.tree.setImages(m_updatingNode, NodeImage::Feed, NodeImage::Feed);
    if (!m_updateAllRunning)
        m_s.window.enableUpdateButton(true);
    m_updateRunning = false;
    m_s.window.setStatusText(QStringLiteral("Mise à jour de ") + m_updatingNode->text() +
                             QStringLiteral(" terminée (") + QString::number(newItems) +
                             QStringLiteral(" nouveaux messages)"));
    m_s.tables.updatedate.Replace(m_updatingNode->key(), UpdateDate(m_s.clock()));
}
