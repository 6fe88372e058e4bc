// SPDX-License-Identifier: GPL-3.0-or-later

#include "exchange/ImportRun.h"

#include "engine/feed/CachedFeed.h"
#include "exchange/OpmlDownload.h"
#include "platform/Literals.h"
#include "tests/fixtures/FakeDownloader.h"
#include "tests/fixtures/FeedTexts.h"
#include "tests/fixtures/TemporaryDataDirectory.h"

#include <QTest>

class ImportRunTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        auto downloader = std::make_unique<FakeDownloader>();
        m_downloader = downloader.get();
        m_run = std::make_unique<ImportRun>(
            std::move(downloader), temporaryFile(),
            [this](int milliseconds) {
                QCOMPARE(milliseconds, 100);
                m_onPass(++m_passes);
            },
            add());
        m_passes = 0;
        m_onPass = [this](int) { m_downloader->answer(); };
        m_log.clear();
        connect(m_run.get(), &ImportRun::began, this, [this](const QString &name) { m_log += u'>' + name; });
        connect(m_run.get(), &ImportRun::passed, this, [this](int count) { m_log += QString::number(count); });
        connect(m_run.get(), &ImportRun::ended, this, [this] { m_log += u"end"_s; });
    }

    void feedsAreFetchedOneByOneAndThoseThatFailArePassedOver()
    {
        m_downloader->pages[u"http://h/0"_s] = FeedTexts::rss(u"Zero"_s, {});
        m_downloader->pages[u"http://h/2"_s] = "<html/>";
        m_downloader->pages[u"http://h/4"_s] = FeedTexts::rss(u"Four"_s, {});
        QVERIFY(!m_run->hasBegun());
        m_run->run(feeds({0, 2, 3, 4}));
        QCOMPARE(m_log.join(u' '), u">F0 +Zero:http://h/0 1 >F2 2 >F3 3 >F4 +Four:http://h/4 4 end"_s);
        for (const FakeDownloader::Request &request : m_downloader->requests) {
            QCOMPARE(request.destination, temporaryFile());
            QVERIFY(request.username.isEmpty() && request.password.isEmpty());
        }
        QVERIFY(m_run->hasBegun() && m_run->isComplete());
        const ImportRun::Outcome outcome = m_run->outcome();
        QVERIFY(outcome.added == 2 && outcome.noFeed == 1 && outcome.silent == 1);
    }

    void aFeedThatStallsIsGivenUpAfterAHundredPasses()
    {
        m_downloader->pages[u"http://h/1"_s] = FeedTexts::rss(u"One"_s, {});
        m_onPass = [&](int pass) {
            if (pass == 100)
                QCOMPARE(m_downloader->requests.size(), 1U);
            if (pass > 100)
                m_downloader->answer();
        };
        m_run->run(feeds({0, 1}));
        QCOMPARE(m_passes, 101);
        QCOMPARE(m_log.join(u' '), u">F0 1 >F1 +One:http://h/1 2 end"_s);
        QCOMPARE(m_run->outcome().silent, 1);
    }

    void aStoppedRunKeepsWhatWasAdded()
    {
        m_downloader->pages[u"http://h/0"_s] = FeedTexts::rss(u"Zero"_s, {});
        m_onPass = [&](int pass) {
            if (pass == 1)
                m_downloader->answer();
            else
                m_run->stop();
        };
        m_run->run(feeds({0, 1, 2}));
        QVERIFY(!m_downloader->isRunning() && !m_run->isComplete());
        QCOMPARE(m_log.join(u' '), u">F0 +Zero:http://h/0 1 >F1"_s);
    }

    void aRunMayBeDestroyedInItsWait()
    {
        m_onPass = [&](int) { m_run.reset(); };
        m_run->run(feeds({0, 1}));
        QCOMPARE(m_log.join(u' '), u">F0"_s);
    }

    void aListIsFetchedFromTheWeb()
    {
        auto downloader = std::make_unique<FakeDownloader>();
        m_downloader = downloader.get();
        OpmlDownload download(std::move(downloader), m_data.file(u"tmp.opml"_s));
        connect(&download, &OpmlDownload::fetched, this,
                [this](const QString &path) { m_log += QString::fromUtf8(Files::read(path).bytes); });
        connect(&download, &OpmlDownload::failed, this, [this](int status) { m_log += QString::number(status); });
        for (const int status : {200, 404, int(Downloader::TimedOut), int(Downloader::Cancelled)}) {
            download.start(u"http://h/%1"_s.arg(status));
            m_downloader->finish(status, "list");
        }
        QCOMPARE(m_log.join(u' '), u"list 404 6"_s); // what was given up for another one isn't told
        const FakeDownloader::Request &request = m_downloader->requests.front();
        QCOMPARE((QStringList{request.url, request.destination, request.username + request.password}),
                 (QStringList{u"http://h/200"_s, m_data.file(u"tmp.opml"_s), QString()}));
    }

private:
    QString temporaryFile() const { return m_data.file(u"tmp.xml"_s); }
    ImportRun::AddFeed add()
    {
        return [this](const std::shared_ptr<CachedFeed> &document, const QString &url) {
            m_log += u'+' + document->Title() + u':' + url;
        };
    }
    static std::vector<ImportRun::Feed> feeds(std::initializer_list<int> numbers)
    {
        std::vector<ImportRun::Feed> list;
        for (const int number : numbers)
            list.push_back({u'F' + QString::number(number), u"http://h/"_s + QString::number(number)});
        return list;
    }

    TemporaryDataDirectory m_data;
    std::unique_ptr<ImportRun> m_run;
    FakeDownloader *m_downloader = nullptr; ///< the run's
    std::function<void(int pass)> m_onPass;
    int m_passes = 0;
    QStringList m_log; ///< what was told, and what was added
};

QTEST_GUILESS_MAIN(ImportRunTest)
#include "tst_ImportRun.moc"
