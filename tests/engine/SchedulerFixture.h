// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "core/FeedCatalogue.h"
#include "core/FeedTreeState.h"
#include "engine/UpdateScheduler.h"
#include "platform/Literals.h"
#include "support/clsDES.h"
#include "tests/fixtures/FakeDownloader.h"
#include "tests/fixtures/FeedTexts.h"
#include "tests/fixtures/TemporaryDataDirectory.h"

#include <QTest>

#include <functional>

/// A scheduler over a catalogue of its own, without a network; the clock stands unless a test moves it.
class SchedulerFixture
{
protected:
    void start()
    {
        m_scheduler.reset();
        m_catalogue.reset();
        m_folder = std::make_unique<TemporaryDataDirectory>();
        m_folder->write(u"feeds.xml"_s, "<favoris/>");
        m_downloader = std::make_unique<FakeDownloader>();
        m_tree = std::make_unique<FeedTree>();
        m_state = std::make_unique<FeedTreeState>(*m_tree);
        m_current = std::make_unique<CurrentFeed>();
        m_now = QDateTime(QDate(2004, 7, 1), QTime(12, 0));
        m_connected = true;
        m_waits = 0;
        m_slowness = 0;
        m_duringWait = [this] { m_downloader->answer(); };
        m_catalogue = std::make_unique<FeedCatalogue>(m_folder->directory(), *m_tree, *m_state, m_cipher,
                                                      [this] { return m_now; });
        m_catalogue->loadCatalogue();
        const Wait wait = [this](int milliseconds) {
            QCOMPARE(milliseconds, 100);
            m_now = m_now.addMSecs(milliseconds);
            ++m_waits;
            m_duringWait();
        };
        m_scheduler = std::make_unique<UpdateScheduler>(
            UpdateScheduler::Surroundings{m_folder->directory(), *m_tree, *m_state, m_catalogue->tables, *m_current,
                                          m_cipher, *m_downloader, [this] { return m_connected; },
                                          [this] {
                                              ++m_looks;
                                              return m_now = m_now.addMSecs(m_slowness);
                                          },
                                          wait, largestCacheFile});
        m_said.clear();
        const auto note = [this](const QString &text) { return [this, text] { m_said.append(text); }; };
        const UpdateScheduler *scheduler = m_scheduler.get();
        QObject::connect(scheduler, &UpdateScheduler::began, scheduler,
                         [this](const FeedNodePtr &n) { m_said.append(u"began "_s + n->text()); });
        QObject::connect(scheduler, &UpdateScheduler::fetchBegan, scheduler, note(u"fetch"_s));
        QObject::connect(scheduler, &UpdateScheduler::fetchEnded, scheduler, note(u"fetched"_s));
        QObject::connect(
            scheduler, &UpdateScheduler::newItemsFound, scheduler,
            [this](const QString &title, qint16 count) { m_said.append(u"found %1: %2"_s.arg(title).arg(count)); });
        QObject::connect(scheduler, &UpdateScheduler::feedOnShowReloaded, scheduler, [this](qint16 newItems) {
            QVERIFY(m_scheduler->updateRunning());
            m_said.append(u"reloaded %1"_s.arg(newItems));
        });
        QObject::connect(scheduler, &UpdateScheduler::ended, scheduler, [this](const FeedNodePtr &n, qint16 newItems) {
            m_said.append(u"ended %1: %2"_s.arg(n->text()).arg(newItems));
        });
        QObject::connect(scheduler, &UpdateScheduler::allBegan, scheduler, note(u"all began"_s));
        QObject::connect(scheduler, &UpdateScheduler::allEnded, scheduler, note(u"all ended"_s));
    }

    static constexpr qint64 largestCacheFile = 64 * 1024LL;

    void addFeed(int key, const QStringList &items, int ttl = 60)
    {
        m_folder->write(u"tmp.xml"_s, FeedTexts::rss(u"Feed"_s, items));
        m_catalogue->addFeed({name(key), QString::number(ttl), address(key), {}, {}});
        QCOMPARE(m_tree->find(QString::number(key))->tag, address(key));
        serve(key, items);
    }
    void serve(int key, const QStringList &items)
    {
        m_downloader->pages[address(key)] = FeedTexts::rss(name(key), items);
    }
    static QString name(int key) { return u"Feed %1"_s.arg(key); }
    static QString address(int key) { return u"http://example.org/%1"_s.arg(key); }
    FeedNodePtr node(int key) const { return m_tree->find(QString::number(key)); }
    QStringList fetched() const
    {
        QStringList keys;
        for (const FakeDownloader::Request &request : m_downloader->requests)
            keys.append(request.url.section(u'/', -1));
        return keys;
    }
    qint16 storedItems(int key) const
    {
        CachedFeed feed;
        return feed.Load(m_folder->cacheFile(QString::number(key))) == LoadOk ? feed.ItemCount() : qint16(-1);
    }
    void setUpdated(int key, const QDateTime &when)
    {
        m_catalogue->tables.updatedate.Replace(QString::number(key), UpdateDate(when));
    }

    std::unique_ptr<TemporaryDataDirectory> m_folder;
    std::unique_ptr<FakeDownloader> m_downloader;
    std::unique_ptr<FeedTree> m_tree;
    std::unique_ptr<FeedTreeState> m_state;
    std::unique_ptr<FeedCatalogue> m_catalogue;
    std::unique_ptr<CurrentFeed> m_current;
    std::unique_ptr<UpdateScheduler> m_scheduler;
    QStringList m_said; ///< the signals
    clsDES m_cipher;
    QDateTime m_now;
    bool m_connected = true;
    int m_waits = 0;
    int m_looks = 0;                    ///< at the clock
    int m_slowness = 0;                 ///< milliseconds that pass between two of them
    std::function<void()> m_duringWait; ///< what happens in a wait; by default the running download is answered
};
