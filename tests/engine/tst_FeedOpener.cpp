// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/CurrentFeed.h"
#include "engine/FeedOpener.h"
#include "platform/Literals.h"
#include "platform/RunTimeError.h"
#include "tests/fixtures/FakeDownloader.h"
#include "tests/fixtures/FeedTexts.h"
#include "tests/fixtures/TemporaryDataDirectory.h"

#include <QTest>

class FeedOpenerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_opener.reset();
        m_folder = std::make_unique<TemporaryDataDirectory>();
        m_downloader = std::make_unique<FakeDownloader>();
        m_tree = std::make_unique<FeedTree>();
        m_tree->addRoot(u"root"_s, {}, NodeImage::Root);
        m_current = std::make_unique<CurrentFeed>();
        m_opener = std::make_unique<FeedOpener>(m_folder->directory(), *m_current, *m_downloader);
        m_said.clear();
        connect(m_opener.get(), &FeedOpener::fetchBegan, this, [this] { m_said.append(u"began"_s); });
        connect(m_opener.get(), &FeedOpener::fetchEnded, this, [this] { m_said.append(u"fetched"_s); });
        connect(m_opener.get(), &FeedOpener::opened, this, [this](FeedOpener::Source source) {
            m_said.append(u"opened %1: %2"_s.arg(int(source)).arg(m_current->document->Title()));
        });
        connect(m_opener.get(), &FeedOpener::refused, this, [this](const FeedOpener::Refusal &refusal) {
            m_said.append(u"refused %1 %2"_s.arg(int(refusal.reason)).arg(refusal.status) + refusal.address);
        });
        connect(m_opener.get(), &FeedOpener::credentialsAsked, this, [this] { m_said.append(u"credentials"_s); });
        connect(m_opener.get(), &FeedOpener::pageOffered, this, [this] { m_said.append(u"page"_s); });
    }

    void addressesAreResolvedToHttp()
    {
        const QList<QPair<QString, QString>> addresses = {
            {u"http://a/b"_s, u"http://a/b"_s},
            {u"feed:http://a/b"_s, u"http://a/b"_s},
            {u"feed://a/b"_s, u"http://a/b"_s},
            {u"feed:a/b"_s, u"http://a/b"_s},
            {u"feed://http://a/b"_s, u"http://a/b"_s},
            {u"feed:https://a/b"_s, QString()},
            {u"feed:////a"_s, QString()},
            {u"HTTP://a/b"_s, u"http://a/b"_s}, // five characters are dropped, whatever they are
            {u"abc"_s, u"http://"_s},
        };
        for (const auto &[text, address] : addresses)
            QCOMPARE(FeedOpener::addressToFetch(text), address);
    }

    void aSchemeThatCannotBeFetchedIsRefusedBeforeAnythingIsFetched()
    {
        m_folder->write(u"tmp.xml"_s, "old");
        m_opener->openEntered(u"feed:ftp://a/b"_s);
        QVERIFY(m_downloader->requests.empty());
        QCOMPARE(said(), (QStringList{u"began"_s, refusal(FeedOpener::Reason::SchemeNotFetched) + u"ftp://a/b"_s}));
        QVERIFY(!m_folder->exists(u"tmp.xml"_s));
    }

    void aDownloadedFeedIsShownAsUnsubscribed()
    {
        m_current->strUsername = u"stale"_s;
        m_folder->write(u"tmp.xml"_s, "old");
        m_opener->openEntered(u"feed://a/b"_s);
        QCOMPARE(said(), QStringList{u"began"_s});
        QCOMPARE(m_downloader->requests[0].destination, m_folder->file(u"tmp.xml"_s));
        QCOMPARE(m_downloader->requests[0].username, QString());
        QVERIFY(!m_folder->exists(u"tmp.xml"_s));
        connect(m_opener.get(), &FeedOpener::opened, this, [this] { // what is told is so already
            QVERIFY(m_current->addressFeedShown);
        });
        m_downloader->finish(200, FeedTexts::rss(u"T"_s, {u"one"_s}));
        QCOMPARE(said(), (QStringList{u"fetched"_s, opened(FeedOpener::Source::Network, u"T"_s)}));
        m_opener->openEntered(u"http://c/"_s);
        QVERIFY(!m_current->addressFeedShown);
    }

    void everyOutcomeOfADownloadHasItsReason_data()
    {
        using Reason = FeedOpener::Reason;
        QTest::addColumn<int>("status");
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QString>("told");
        const auto row = [](const char *name, int status, const QByteArray &body, const QString &told) {
            QTest::newRow(name) << status << body << told;
        };
        row("host", 3, {}, refusal(Reason::HostNotFound));
        row("404", 404, {}, refusal(Reason::NotFoundOnServer));
        row("401 is no prompt", 401, {}, refusal(Reason::UnexpectedStatus, 401));
        row("no feed", 200, "<html>", u"page"_s);
        row("RSS version", 200, "<rss version='3.0'><channel/></rss>", refusal(Reason::UnsupportedVersion));
        row("Atom version", 200, "<feed version='0.2'/>", refusal(Reason::UnsupportedVersion));
        row("other format", 200, "<opml/>", refusal(Reason::UnknownFormat));
    }

    void everyOutcomeOfADownloadHasItsReason()
    {
        QFETCH(int, status);
        QFETCH(QByteArray, body);
        QFETCH(QString, told);
        m_opener->openEntered(u"http://a/b"_s);
        m_downloader->finish(status, body);
        QCOMPARE(said(), (QStringList{u"began"_s, u"fetched"_s, told}));
        QVERIFY(!m_current->addressFeedShown);
    }

    void credentialsAreAskedForUntilTheServerIsContent()
    {
        int prompts = 0;
        connect(m_opener.get(), &FeedOpener::credentialsAsked, this, [&] {
            m_current->strUsername = u"u%1"_s.arg(++prompts);
            m_opener->LoadFile(u"http://a/b"_s);
        });
        m_opener->openEntered(u"http://a/b"_s);
        m_downloader->finish(4);
        m_downloader->finish(4);
        QCOMPARE(prompts, 2);
        QCOMPARE(m_downloader->requests.back().username, u"u2"_s);
        m_downloader->finish(200, FeedTexts::rss(u"T"_s, {}));
        QVERIFY(m_current->addressFeedShown);
        QCOMPARE(m_current->strUsername, u"u2"_s); // kept for the subscription
        m_opener->openEntered(u"http://a/b"_s);
        QCOMPARE(m_current->strUsername, QString());
    }

    void aLocalFileChangesNoFlags()
    {
        m_folder->write(u"mine.rss"_s, FeedTexts::rss(u"Mine"_s, {}));
        m_folder->write(u"bad.rss"_s, "<rss");
        m_current->addressFeedShown = true;
        m_opener->openEntered(m_folder->file(u"mine.rss"_s));
        QCOMPARE(said(), QStringList{opened(FeedOpener::Source::LocalFile, u"Mine"_s)});
        QCOMPARE(m_folder->read(u"tmp.xml"_s), m_folder->read(u"mine.rss"_s));
        QVERIFY(m_current->addressFeedShown);
        m_opener->openEntered(m_folder->file(u"bad.rss"_s));
        m_opener->openEntered(u"https://a/b"_s); // no address that is taken, and so a path
        QCOMPARE(said(),
                 (QStringList{refusal(FeedOpener::Reason::UnreadableFeed), refusal(FeedOpener::Reason::NoSuchFile)}));
        QVERIFY(m_downloader->requests.empty());
    }

    void theCommandLineTakesAddressesAndQuotedPaths()
    {
        QCOMPARE(FeedOpener::enteredByCommandLine(u"feed:http://a/é"_s), u"feed:http://a/é"_s);
        QCOMPARE(FeedOpener::enteredByCommandLine(u"\"/a b.xml\""_s), u"/a b.xml"_s);
        QCOMPARE(FeedOpener::enteredByCommandLine(u"\"\""_s), QString());
        QVERIFY_EXCEPTION_THROWN(FeedOpener::enteredByCommandLine(u"x"_s), RunTimeError);
        QVERIFY_EXCEPTION_THROWN(FeedOpener::enteredByCommandLine({}), RunTimeError);
    }

    void aNodeIsOpenedFromItsCacheFileAndTheOldOneIsSaved()
    {
        const FeedNodePtr one = addNode(u"1"_s, FeedTexts::rss(u"One"_s, {u"a"_s}));
        const FeedNodePtr two = addNode(u"2"_s, FeedTexts::rss(u"Two"_s, {}));
        const FeedNodePtr broken = addNode(u"3"_s, "<rss");
        m_current->addressFeedShown = true;
        m_opener->openFeedNode(one);
        QVERIFY(!m_current->addressFeedShown);
        QCOMPARE(said(), QStringList{opened(FeedOpener::Source::CacheFile, u"One"_s)});
        m_current->document->SetItemRead(0, true);
        m_tree->setImages(two, NodeImage::FeedUpdating, NodeImage::FeedUpdating);
        m_opener->openFeedNode(two); // in flight: neither opened nor anything else
        m_opener->openFeedNode(m_tree->root());
        m_opener->openFeedNode(nullptr);
        QVERIFY(said().isEmpty());
        m_tree->setImages(two, NodeImage::Feed, NodeImage::Feed);
        m_opener->openFeedNode(two);
        QCOMPARE(said(), QStringList{opened(FeedOpener::Source::CacheFile, u"Two"_s)});
        CachedFeed again;
        QCOMPARE(again.Load(m_folder->cacheFile(u"1"_s)), LoadOk);
        QVERIFY(again.IsItemRead(0));

        m_opener->openFeedNode(broken);
        QCOMPARE(said(), QStringList{refusal(FeedOpener::Reason::UnreadableFeed)});
        QCOMPARE(m_folder->read(u"feeds/3.xml"_s), QByteArray("<rss"));
    }

    void aDownloadIsNeverOverwrittenByWhatWasOnShow_data()
    {
        QTest::addColumn<QString>("before"); // what is on show, in the order in which it came there
        QTest::newRow("a feed of the tree") << u"node"_s;
        QTest::newRow("a local file") << u"local"_s;
        QTest::newRow("an address") << u"address"_s;
        QTest::newRow("an address, and a feed of the tree during the download") << u"address then-node"_s;
    }

    void aDownloadIsNeverOverwrittenByWhatWasOnShow()
    {
        QFETCH(QString, before);
        const FeedNodePtr one = addNode(u"1"_s, FeedTexts::rss(u"One"_s, {u"a"_s}));
        if (before == u"node") {
            m_opener->openFeedNode(one);
        } else if (before == u"local") {
            m_folder->write(u"mine.rss"_s, FeedTexts::rss(u"Mine"_s, {u"a"_s}));
            m_opener->openEntered(m_folder->file(u"mine.rss"_s));
        } else {
            m_opener->openEntered(u"http://a/a"_s);
            m_downloader->finish(200, FeedTexts::rss(u"First"_s, {u"a"_s}));
        }
        m_current->document->SetItemRead(0, true);
        m_opener->openEntered(u"http://a/b"_s);
        if (before.endsWith(u"node")) {
            m_opener->openFeedNode(one);
            m_current->document->SetItemRead(0, true);
        }
        QVERIFY(!m_folder->exists(u"tmp.xml"_s));
        said();
        const QByteArray next = FeedTexts::rss(u"Next"_s, {u"a"_s, u"b"_s});
        m_downloader->finish(200, next);
        QCOMPARE(said(), (QStringList{u"fetched"_s, opened(FeedOpener::Source::Network, u"Next"_s)}));
        QCOMPARE(m_folder->read(u"tmp.xml"_s), next);
        CachedFeed again;
        QCOMPARE(again.Load(m_folder->cacheFile(u"1"_s)), LoadOk);
        QCOMPARE(again.IsItemRead(0), before.endsWith(u"node"));
    }

private:
    /// What was told since the last call.
    QStringList said() { return std::exchange(m_said, {}); }
    static QString opened(FeedOpener::Source source, const QString &title)
    {
        return u"opened %1: %2"_s.arg(int(source)).arg(title);
    }
    static QString refusal(FeedOpener::Reason reason, int status = 0)
    {
        return u"refused %1 %2"_s.arg(int(reason)).arg(status);
    }
    FeedNodePtr addNode(const QString &key, const QByteArray &cache, int image = NodeImage::Feed)
    {
        m_folder->write(u"feeds/"_s + key + u".xml"_s, cache);
        return m_tree->addChild(m_tree->root(), key, key, image);
    }

    std::unique_ptr<TemporaryDataDirectory> m_folder;
    std::unique_ptr<FakeDownloader> m_downloader;
    std::unique_ptr<FeedTree> m_tree;
    std::unique_ptr<CurrentFeed> m_current;
    std::unique_ptr<FeedOpener> m_opener;
    QStringList m_said;
};

QTEST_GUILESS_MAIN(FeedOpenerTest)
#include "tst_FeedOpener.moc"
