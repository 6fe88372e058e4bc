// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/RunTimeError.h"
#include "tests/engine/SchedulerFixture.h"

#include <QTest>

class UpdateSchedulerTest : public QObject, private SchedulerFixture
{
    Q_OBJECT

private Q_SLOTS:
    void init() { start(); }

    void anUpdateMergesAnnouncesAndReports()
    {
        addFeed(1, {u"a"_s});
        m_state->select(nullptr);
        m_scheduler->updateFeed(node(1));
        QCOMPARE(node(1)->selectedImage(), NodeImage::FeedUpdating);
        QVERIFY(m_scheduler->updateRunning());
        m_now = m_now.addSecs(300);
        serve(1, {u"b"_s, u"a"_s, u"c"_s});
        m_downloader->answer();
        QCOMPARE(node(1)->selectedImage(), NodeImage::Feed);
        QVERIFY(!m_scheduler->updateRunning());
        QCOMPARE(storedItems(1), qint16(3));
        QCOMPARE(m_said, (QStringList{u"began Feed 1"_s, u"fetch"_s, u"fetched"_s, u"found Feed 1: 2"_s,
                                      u"ended Feed 1: 2"_s}));
        QCOMPARE(m_catalogue->tables.updatedate.Item(u"1"_s).date(), m_now);
        QCOMPARE(m_catalogue->tables.havecache.Item(u"1"_s), u"1"_s);
    }

    void anUpdateThatCannotBeginReturnsWithoutAWord()
    {
        addFeed(1, {});
        addFeed(2, {});
        m_connected = false;
        m_scheduler->updateFeed(node(1));
        m_scheduler->updateAllFeeds();
        m_connected = true;
        m_scheduler->updateFeed(m_tree->root());
        m_scheduler->updateFeed(nullptr);
        QVERIFY(m_downloader->requests.empty());
        m_scheduler->updateFeed(node(1));
        m_scheduler->updateFeed(node(2)); // one is in flight
        QCOMPARE(m_downloader->requests.size(), std::size_t(1));
        QCOMPARE(m_said, (QStringList{u"began Feed 1"_s, u"fetch"_s}));
        QCOMPARE(node(2)->image(), NodeImage::Feed);
    }

    void failuresEndQuietlyAndCountAsUpdated_data()
    {
        QTest::addColumn<int>("status");
        QTest::addColumn<QByteArray>("body");
        QTest::newRow("host not found") << 3 << QByteArray();
        QTest::newRow("authentication") << 4 << QByteArray();
        QTest::newRow("not modified") << 304 << QByteArray();
        QTest::newRow("not a feed") << 200 << QByteArray("<html>");
        QTest::newRow("more than a cache file may hold")
            << 200 << FeedTexts::rss(u"Feed"_s, FeedTexts::titles(u"new"_s, 0, 1000));
    }

    void failuresEndQuietlyAndCountAsUpdated()
    {
        QFETCH(int, status);
        QFETCH(QByteArray, body);
        addFeed(1, {u"a"_s});
        const QByteArray cache = m_folder->read(u"feeds/1.xml"_s);
        m_scheduler->updateFeed(node(1));
        m_now = m_now.addSecs(120);
        m_downloader->finish(status, body);
        QCOMPARE(node(1)->image(), NodeImage::Feed);
        QVERIFY(!m_scheduler->updateRunning());
        QCOMPARE(m_said.mid(2), (QStringList{u"fetched"_s, u"ended Feed 1: 0"_s}));
        QCOMPARE(m_catalogue->tables.updatedate.Item(u"1"_s).date(), m_now);
        QCOMPARE(m_catalogue->tables.havecache.Item(u"1"_s), u"0"_s);
        QCOMPARE(m_folder->read(u"feeds/1.xml"_s), cache);
    }

    void aFeedWithoutItsCacheFileHangsTheUpdates()
    {
        addFeed(1, {});
        addFeed(2, {});
        m_folder->write(u"feeds/1.xml"_s, "<rss");
        const QDateTime before = m_now;
        m_scheduler->updateFeed(node(1));
        m_now = m_now.addSecs(60);
        m_downloader->answer();
        QVERIFY(m_scheduler->updateRunning());
        QCOMPARE(m_said.back(), u"fetched"_s);
        QCOMPARE(node(1)->image(), NodeImage::FeedUpdating);
        QCOMPARE(m_catalogue->tables.updatedate.Item(u"1"_s).date(), before);
        m_scheduler->updateFeed(node(2));
        QCOMPARE(m_downloader->requests.size(), std::size_t(1));
        m_duringWait = [this] { // the scan waits for ever; here until the window closes
            if (m_waits == 1000)
                m_scheduler->stop();
        };
        m_now = m_now.addSecs(7200);
        m_scheduler->handleUpdateTick();
        QCOMPARE(m_waits, 1000);
        QCOMPARE(m_folder->read(u"feeds/1.xml"_s), QByteArray("<rss"));
    }

    void storedCredentialsAreDecipheredAndFeedAddressesResolved()
    {
        addFeed(1, {});
        node(1)->tag = u"feed://example.org/feed://"_s;
        m_catalogue->tables.usernames.Add(u"1"_s, u"user"_s);
        m_catalogue->tables.passwords.Add(u"1"_s, m_cipher.EncryptString(u"pässword"_s, u"%%K9:Tm411"_s, true));
        m_scheduler->updateFeed(node(1));
        QCOMPARE(m_downloader->requests[0].url, u"http://example.org/feed://"_s);
        QCOMPARE(m_downloader->requests[0].username, u"user"_s);
        QCOMPARE(m_downloader->requests[0].password, u"pässword"_s);
    }

    void aFeedIsDueOnlyAfterItsWholePeriod()
    {
        addFeed(1, {});
        addFeed(2, {});
        addFeed(3, {}, 0);
        m_now = QDateTime(QDate(2004, 7, 1), QTime(14, 0, 59));
        setUpdated(1, m_now.addSecs(-3600 - 59)); // 60 boundaries
        setUpdated(2, m_now.addSecs(-3600 - 60)); // 61
        setUpdated(3, m_now.addSecs(-59));        // none
        m_scheduler->handleUpdateTick();
        QCOMPARE(fetched(), QStringList{u"2"_s});
        QCOMPARE(m_waits, 2); // one before the update, one for it
        m_now = QDateTime(QDate(2004, 7, 1), QTime(14, 2));
        m_scheduler->handleUpdateTick();
        QCOMPARE(fetched(), (QStringList{u"2"_s, u"1"_s, u"3"_s}));
    }

    void numbersPastSixteenBitsRaiseAnError()
    {
        addFeed(1, {});
        const auto errorOfTick = [this] {
            try {
                m_scheduler->handleUpdateTick();
                return 0;
            } catch (const RunTimeError &error) {
                return error.number();
            }
        };
        setUpdated(1, m_now.addSecs(-32768LL * 60));
        QCOMPARE(errorOfTick(), RunTimeError::overflow().number());
        setUpdated(1, m_now.addSecs(-32767LL * 60));
        QCOMPARE(errorOfTick(), 0);
        setUpdated(1, m_now.addYears(50));
        QCOMPARE(errorOfTick(), RunTimeError::overflow().number());
        setUpdated(1, m_now);
        m_catalogue->tables.updatettl.Replace(u"1"_s, u"32768"_s);
        QCOMPARE(errorOfTick(), RunTimeError::overflow().number());
        m_catalogue->tables.updatettl.Replace(u"1"_s, u"often"_s);
        QCOMPARE(errorOfTick(), RunTimeError::typeMismatch().number());
        m_catalogue->tables.updatedate.Replace(u"1"_s, UpdateDate(u"yesterday"_s));
        QCOMPARE(errorOfTick(), RunTimeError::typeMismatch().number());
    }

    void allFeedsAreTakenInTheOrderOfTheTree()
    {
        m_catalogue->createFolder(m_tree->root(), u"D"_s); // 1
        m_catalogue->createFolder(node(1), u"E"_s);        // 2
        addFeed(3, {});
        m_state->select(node(2));
        addFeed(4, {});
        m_state->select(node(1));
        addFeed(5, {});
        bool nested = false;
        m_duringWait = [&] {
            QVERIFY(m_scheduler->updateAllRunning());
            if (!nested)
                m_scheduler->updateAllFeeds(); // does nothing while it runs
            nested = true;
            m_downloader->answer();
        };
        m_scheduler->updateAllFeeds();
        QCOMPARE(fetched(), (QStringList{u"4"_s, u"5"_s, u"3"_s}));
        QCOMPARE(m_waits, 5 + 3); // one before each child, one for each update
        QVERIFY(!m_scheduler->updateAllRunning());
        QCOMPARE(m_said.filter(u"all"_s), (QStringList{u"all began"_s, u"all ended"_s}));
        QCOMPARE(m_said.back(), u"all ended"_s);
    }

    void whatIsDeletedDuringAWaitIsPassedOver()
    {
        m_catalogue->createFolder(m_tree->root(), u"D"_s); // 1
        m_state->select(node(1));
        for (int key = 2; key <= 5; ++key)
            addFeed(key, {});
        m_state->select(nullptr);
        addFeed(6, {});
        const FeedNodePtr folder = node(1);
        m_duringWait = [&] {
            m_downloader->answer();
            if (fetched() == QStringList{u"2"_s}) {
                m_tree->remove(node(2)); // the one that was just updated: the next one isn't skipped
                m_tree->remove(node(4));
            } else if (fetched().endsWith(u"3"_s)) {
                m_tree->remove(folder); // the folder that the walk is in
            }
        };
        m_scheduler->updateAllFeeds();
        QCOMPARE(fetched(), (QStringList{u"2"_s, u"3"_s, u"6"_s}));
    }

    void aDeletedFeedInFlightEndsItsUpdate()
    {
        addFeed(1, {});
        addFeed(2, {});
        m_state->select(node(1));
        m_scheduler->updateFeed(node(1));
        m_tree->remove(node(1));
        m_downloader->answer();
        QVERIFY(!m_scheduler->updateRunning());
        QCOMPARE(m_said.filter(u"reloaded"_s), QStringList());
        QCOMPARE(m_said.back(), u"ended Feed 1: 0"_s);
        m_now = m_now.addSecs(7200); // the tables keep the entry, and the scan visits it
        m_scheduler->handleUpdateTick();
        QCOMPARE(fetched(), (QStringList{u"1"_s, u"2"_s}));
    }

    void aTickBesideAnUpdateOfAllTakesWhatIsFree()
    {
        for (int key = 1; key <= 3; ++key)
            addFeed(key, {});
        m_now = m_now.addSecs(7200);
        bool ticked = false;
        m_duringWait = [&] {
            if (!ticked && m_downloader->requests.size() == 1) {
                ticked = true;
                m_scheduler->handleUpdateTick(); // runs to its end within this wait
            }
            m_downloader->answer();
        };
        m_scheduler->updateAllFeeds();
        QVERIFY(ticked && !m_scheduler->updateRunning());
        // The first is fetched twice: it ended in the wait between being found due and being taken.
        QCOMPARE(fetched().join(u' '), u"1 1 2 3 2 3"_s);
    }

    void closingTheWindowEndsEveryLoop()
    {
        for (int key = 1; key <= 3; ++key)
            addFeed(key, {});
        const QByteArray cache = m_folder->read(u"feeds/1.xml"_s);
        serve(1, {u"late"_s});
        m_duringWait = [&] {
            if (m_waits == 5)
                m_scheduler->stop();
            QVERIFY(m_waits <= 5);
        };
        m_scheduler->start(true);
        m_scheduler->handleGlobalUpdateTick();
        QCOMPARE(m_downloader->requests.size(), std::size_t(1));
        const QStringList said = m_said;
        m_downloader->answer(); // the end of a download that nothing waited for
        QCOMPARE(m_folder->read(u"feeds/1.xml"_s), cache);
        QCOMPARE(m_said, said);
        m_scheduler->updateFeed(node(2));
        m_scheduler->updateAllFeeds();
        m_scheduler->start(false);
        QCOMPARE(m_downloader->requests.size(), std::size_t(1));
        for (const QTimer *timer : m_scheduler->findChildren<QTimer *>())
            QVERIFY(!timer->isActive());
    }

    void exactlyOneTimerRuns()
    {
        const auto intervals = [this] {
            QList<int> active;
            for (const QTimer *timer : m_scheduler->findChildren<QTimer *>())
                if (timer->isActive())
                    active.append(timer->interval());
            return active;
        };
        m_scheduler->start(true);
        QCOMPARE(intervals(), QList<int>{1000});
        addFeed(1, {});
        m_duringWait = [&] {
            QCOMPARE(intervals(), QList<int>()); // off during its own tick
            m_downloader->answer();
        };
        m_scheduler->handleGlobalUpdateTick();
        m_now = m_now.addSecs(7200);
        m_scheduler->handleUpdateTick();
        QCOMPARE(intervals(), QList<int>{60000});
        QCOMPARE(m_downloader->requests.size(), std::size_t(2));
    }

    void aWalkTellsHowFarItIs()
    {
        m_catalogue->createFolder(m_tree->root(), u"D"_s); // 1
        addFeed(2, {});
        addFeed(3, {});
        m_state->select(node(1));
        addFeed(4, {});
        addFeed(5, {});
        QStringList told;
        connect(m_scheduler.get(), &UpdateScheduler::walkReached, m_scheduler.get(),
                [&](int place, int count) { told.append(u"%1/%2"_s.arg(place).arg(count)); });
        connect(m_scheduler.get(), &UpdateScheduler::walkEnded, m_scheduler.get(), [&] { told.append(u"end"_s); });
        const auto tellings = [&told] { return std::exchange(told, {}).join(u' '); };
        m_scheduler->updateAllFeeds();
        QCOMPARE(tellings(), u"1/4 2/4 3/4 4/4 end"_s);
        m_scheduler->updateFolder(node(1));
        QCOMPARE(tellings(), u"1/2 2/2 end"_s);
        setUpdated(3, m_now.addDays(1));
        m_now = m_now.addSecs(7200);
        m_scheduler->handleUpdateTick();
        QCOMPARE(tellings(), u"1/3 2/3 3/3 end"_s);
        m_scheduler->handleUpdateTick();
        QCOMPARE(tellings(), QString());
        m_now = m_now.addSecs(7200);
        m_duringWait = [this] {
            if (m_downloader->isRunning())
                m_scheduler->stop();
        };
        m_scheduler->updateAllFeeds();
        QCOMPARE(tellings(), u"1/4"_s);
    }

    void aDayOfTwoHundredFeeds()
    {
        constexpr int feeds = 200;
        for (int key = 1; key <= feeds; ++key)
            addFeed(key, {u"first"_s}, 360 + key); // periods from six to more than nine hours
        const QDateTime begin = m_now;
        int serial = 0;
        m_duringWait = [&] {
            if (!m_downloader->isRunning())
                return;
            const int key = m_downloader->requests.back().url.section(u'/', -1).toInt();
            serve(key, {u"item%1"_s.arg(++serial), u"first"_s});
            m_downloader->answer();
        };
        while (begin.secsTo(m_now) < 86400) {
            m_now = m_now.addSecs(60);
            m_scheduler->handleUpdateTick();
        }
        QHash<QString, int> updates;
        for (const QString &key : fetched())
            ++updates[key];
        for (int key = 1; key <= feeds; ++key) {
            const int count = updates[QString::number(key)];
            const int atMost = 1440 / (360 + key);
            QVERIFY2(count <= atMost && count >= atMost - 1, qPrintable(name(key)));
            QCOMPARE(storedItems(key), qint16(1 + count));
        }
    }
};

QTEST_GUILESS_MAIN(UpdateSchedulerTest)
#include "tst_UpdateScheduler.moc"
