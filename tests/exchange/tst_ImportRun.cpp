#include "exchange/ImportRun.h"

#include "engine/feed/CachedFeed.h"
#include "exchange/OpmlDocument.h"
#include "exchange/OpmlDownload.h"
#include "tests/fixtures/FakeDownloader.h"
#include "tests/fixtures/FeedTexts.h"
#include "tests/fixtures/LocalHttpServer.h"
#include "tests/fixtures/TemporaryDataDirectory.h"

#include <QSignalSpy>
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
        connect(m_run.get(), &ImportRun::ended, this, [this] { m_log += QStringLiteral("end"); });
    }

    void feedsAreFetchedOneByOneAndThoseThatFailArePassedOver()
    {
        m_downloader->pages[QStringLiteral("http://h/0")] = FeedTexts::rss(QStringLiteral("Zero"), {});
        m_downloader->pages[QStringLiteral("http://h/2")] = "<html/>";
        m_downloader->pages[QStringLiteral("http://h/4")] = FeedTexts::rss(QStringLiteral("Four"), {});
        QVERIFY(!m_run->hasBegun());
        m_run->run(feeds({0, 2, 3, 4}));
        QCOMPARE(m_log.join(u' '), QStringLiteral(">F0 +Zero:http://h/0 1 >F2 2 >F3 3 >F4 +Four:http://h/4 4 end"));
        for (const FakeDownloader::Request &request : m_downloader->requests) {
            QCOMPARE(request.destination, temporaryFile());
            QVERIFY(request.username.isEmpty() && request.password.isEmpty());
        }
        QVERIFY(m_run->hasBegun());
    }

    void aFeedThatStallsIsGivenUpAfterAHundredPasses()
    {
        m_downloader->pages[QStringLiteral("http://h/1")] = FeedTexts::rss(QStringLiteral("One"), {});
        m_onPass = [&](int pass) {
            if (pass == 100)
                QCOMPARE(m_downloader->requests.size(), 1U);
            if (pass > 100)
                m_downloader->answer();
        };
        m_run->run(feeds({0, 1}));
        QCOMPARE(m_passes, 101);
        QCOMPARE(m_log.join(u' '), QStringLiteral(">F0 1 >F1 +One:http://h/1 2 end"));
    }

    void aStoppedRunKeepsWhatWasAdded()
    {
        m_downloader->pages[QStringLiteral("http://h/0")] = FeedTexts::rss(QStringLiteral("Zero"), {});
        m_onPass = [&](int pass) {
            if (pass == 1)
                m_downloader->answer();
            else
                m_run->stop();
        };
        m_run->run(feeds({0, 1, 2}));
        QVERIFY(!m_downloader->isRunning());
        QCOMPARE(m_log.join(u' '), QStringLiteral(">F0 +Zero:http://h/0 1 >F1"));
    }

    void aRunMayBeDestroyedInItsWait()
    {
        m_onPass = [&](int) { m_run.reset(); };
        m_run->run(feeds({0, 1}));
        QCOMPARE(m_log.join(u' '), QStringLiteral(">F0"));
    }

    void aListFromTheWebIsImportedThroughARealServer()
    {
        LocalHttpServer server;
        server.setBody(QStringLiteral("/a.xml"), FeedTexts::rss(QStringLiteral("A"), {QStringLiteral("one")}));
        QByteArray list = "<opml><head><title/></head><body>";
        for (const char *const path : {"/a.xml", "/none.xml"})
            list += "<outline text=\"x\" xmlUrl=\"" + server.url(QString::fromLatin1(path)).toUtf8() + "\"/>";
        server.setBody(QStringLiteral("/list.opml"), list + "</body></opml>");

        OpmlDownload download(std::make_unique<Downloader>(), m_data.file(QStringLiteral("tmp.opml")));
        QSignalSpy fetched(&download, &OpmlDownload::fetched);
        download.start(server.url(QStringLiteral("/list.opml")));
        QVERIFY(fetched.wait());
        OpmlDocument document;
        QVERIFY(document.load(fetched[0][0].toString()));
        std::vector<ImportRun::Feed> found;
        for (const OpmlDocument::Feed &feed : document.list().feeds)
            found.push_back({feed.text, feed.address});
        ImportRun(std::make_unique<Downloader>(), temporaryFile(), Waiting::eventLoopWait(), add()).run(found);
        QCOMPARE(m_log, QStringList{QStringLiteral("+A:") + server.url(QStringLiteral("/a.xml"))});
        QCOMPARE(server.hits(QStringLiteral("/none.xml")), 1);
        QVERIFY(m_data.exists(QStringLiteral("tmp.opml")));
    }

private:
    QString temporaryFile() const { return m_data.file(QStringLiteral("tmp.xml")); }
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
            list.push_back({u'F' + QString::number(number), QStringLiteral("http://h/") + QString::number(number)});
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
