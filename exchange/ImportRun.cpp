// SPDX-License-Identifier: GPL-3.0-or-later

#include "exchange/ImportRun.h"

#include "engine/feed/CachedFeed.h"
#include "platform/net/Downloader.h"

#include <QPointer>

namespace {

constexpr int passMs = 100;
constexpr int maxPasses = 100; // about ten seconds a feed, counted in passes and not by a clock

} // namespace

ImportRun::ImportRun(std::unique_ptr<Downloader> downloader, QString temporaryFile, Wait wait, AddFeed addFeed,
                     FeedRules rules)
    : m_dwlFeed(std::move(downloader)), m_temporaryFile(std::move(temporaryFile)), m_wait(std::move(wait)),
      m_addFeed(std::move(addFeed)), m_rules(rules)
{
    connect(m_dwlFeed.get(), &Downloader::DownloadComplete, this, &ImportRun::handleComplete);
}

ImportRun::~ImportRun() = default;

void ImportRun::run(const std::vector<Feed> &feeds)
{
    m_begun = true;
    int count = 0;
    for (const Feed &feed : feeds) {
        if (!fetch(feed))
            return;
        ++count;
        m_outcome.silent = count - m_outcome.added - m_outcome.noFeed;
        Q_EMIT passed(count);
    }
    m_complete = true;
    Q_EMIT ended();
}

bool ImportRun::fetch(const Feed &feed)
{
    Q_EMIT began(feed.name);
    m_feedBusy = true;
    m_currentFeedUrl = feed.address;
    m_dwlFeed->Download(m_currentFeedUrl, 0, m_temporaryFile, QString(), QString());

    const QPointer<ImportRun> self(this); // whatever runs nested in the wait
    int passes = 0;
    while (m_feedBusy) {
        m_wait(passMs);
        if (!self || m_stopped)
            return false;
        if (++passes == maxPasses) {
            m_dwlFeed->CancelDownload();
            m_feedBusy = false;
        }
    }
    return true;
}

void ImportRun::handleComplete(qint32 status)
{
    if (status == 200 && !m_stopped) {
        const auto document = std::make_shared<CachedFeed>(Waiting::systemClock(), m_rules);
        if (document->Load(m_temporaryFile) == LoadOk) {
            document->SetAddress(m_currentFeedUrl);
            m_addFeed(document, m_currentFeedUrl);
            ++m_outcome.added;
        } else {
            ++m_outcome.noFeed;
        }
    }
    m_feedBusy = false;
}

void ImportRun::stop()
{
    m_stopped = true;
    m_dwlFeed->CancelDownload();
}
