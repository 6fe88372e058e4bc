#include "engine/FeedOpener.h"
#include "platform/RunTimeError.h"
#include "tests/fixtures/FakeDownloader.h"
#include "tests/fixtures/FakeMessages.h"
#include "tests/fixtures/FakeOpeningWindow.h"
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
        m_window = std::make_unique<FakeOpeningWindow>();
        m_messages = std::make_unique<FakeMessages>();
        m_tree = std::make_unique<FeedTree>();
        m_tree->addRoot(u"root"_qs, {}, NodeImage::Root);
        m_current = std::make_unique<CurrentFeed>();
        m_opener =
            std::make_unique<FeedOpener>(m_folder->directory(), *m_current, *m_downloader, *m_window, *m_messages);
    }

    void addressesAreResolvedToHttp()
    {
        const QList<QPair<QString, QString>> addresses = {
            {u"http://a/b"_qs, u"http://a/b"_qs},
            {u"feed:http://a/b"_qs, u"http://a/b"_qs},
            {u"feed://a/b"_qs, u"http://a/b"_qs},
            {u"feed:a/b"_qs, u"http://a/b"_qs},
            {u"feed://http://a/b"_qs, u"http://a/b"_qs},
            {u"feed:https://a/b"_qs, QString()},
            {u"feed:////a"_qs, QString()},
            {u"HTTP://a/b"_qs, u"http://a/b"_qs}, // five characters are dropped, whatever they are
            {u"abc"_qs, u"http://"_qs},
        };
        for (const auto &[text, address] : addresses)
            QCOMPARE(FeedOpener::addressToFetch(text), address);
    }

    void aSchemeThatCannotBeFetchedIsRefusedAndTheBarStays()
    {
        m_folder->write(u"tmp.xml"_qs, "old");
        enter(u"feed:ftp://a/b"_qs);
        QVERIFY(m_downloader->requests.empty());
        QCOMPARE(m_messages->shown.size(), std::size_t(1));
        QCOMPARE(m_messages->shown[0].text, u"Impossible d'ouvrir le flux spécifié :\n\nftp://a/b"_qs);
        QCOMPARE(m_messages->shown[0].title, u"Erreur"_qs);
        QCOMPARE(m_messages->shown[0].icon, Message::Icon::Exclamation);
        QVERIFY(m_window->progressVisible);
        QVERIFY(!m_folder->exists(u"tmp.xml"_qs));
    }

    void aDownloadedFeedIsShownAsUnsubscribed()
    {
        m_current->strUsername = u"stale"_qs;
        m_folder->write(u"tmp.xml"_qs, "old");
        enter(u"feed://a/b"_qs);
        QVERIFY(!m_window->sendMailEnabled && !m_window->addEnabled && m_window->progressVisible);
        QCOMPARE(m_downloader->requests[0].destination, m_folder->file(u"tmp.xml"_qs));
        QCOMPARE(m_downloader->requests[0].username, QString());
        QVERIFY(!m_folder->exists(u"tmp.xml"_qs));
        m_downloader->finish(200, FeedTexts::rss(u"T"_qs, {u"one"_qs}));
        QVERIFY(m_current->addressFeedShown && m_current->addressFeedUnsaved);
        QVERIFY(m_window->addEnabled && !m_window->progressVisible);
        QCOMPARE(m_window->fills, 1);
        QCOMPARE(m_current->document->Title(), u"T"_qs);
        enter(u"http://c/"_qs);
        QVERIFY(!m_current->addressFeedShown && m_current->addressFeedUnsaved);
    }

    void everyOutcomeOfADownloadHasItsBox_data()
    {
        QTest::addColumn<int>("status");
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("text");
        const QString warning = u"Avertissement"_qs;
        const QString version = u"La version du fichier RSS n'est pas supportée"_qs;
        QTest::newRow("host") << 3 << QByteArray() << u"Erreur"_qs
                              << u"L'hôte sur lequel se trouve le fichier n'a pas été trouvé sur le serveur"_qs;
        QTest::newRow("404") << 404 << QByteArray() << u"Erreur 404"_qs
                             << u"Le fichier n'a pas été trouvé sur le serveur"_qs;
        QTest::newRow("401 is no prompt") << 401 << QByteArray() << QString() << u"Cas non géré actuellement : 401"_qs;
        QTest::newRow("no feed") << 200 << QByteArray("<html>") << warning
                                 << QStringLiteral(
                                        "La ressource spécifiée n'est pas un fichier RSS valide, voulez-vous "
                                        "essayer d'ouvrir le fichier dans le navigateur ?");
        QTest::newRow("RSS version") << 200 << QByteArray("<rss version='3.0'><channel/></rss>") << warning << version;
        QTest::newRow("other format") << 200 << QByteArray("<opml/>") << warning << u"Format du fichier RSS inconnu"_qs;
    }

    void everyOutcomeOfADownloadHasItsBox()
    {
        QFETCH(int, status);
        QFETCH(QByteArray, body);
        QFETCH(QString, title);
        enter(u"http://a/b"_qs);
        m_downloader->finish(status, body);
        QCOMPARE(m_messages->shown.size(), std::size_t(1));
        QTEST(m_messages->shown[0].text, "text");
        QCOMPARE(m_messages->shown[0].title, title);
        QCOMPARE(m_messages->shown[0].icon, title.isEmpty() ? Message::Icon::None : Message::Icon::Exclamation);
        QVERIFY(!m_window->progressVisible && !m_window->addEnabled && m_window->fills == 0);
        QVERIFY(!m_current->addressFeedShown && m_window->navigations.isEmpty());
    }

    void aPageMayBeShownInTheBrowserInstead()
    {
        m_messages->answer = Messages::Answer::Yes;
        enter(u"feed:a/b"_qs);
        m_downloader->finish(200, "<html><br></html>");
        QCOMPARE(m_window->navigations, QStringList{u"feed:a/b"_qs});
        QCOMPARE(m_messages->shown[0].buttons, Message::Buttons::YesNo);
    }

    void thePromptLoopsUntilTheServerIsContent()
    {
        m_window->onPrompt = [this] {
            m_current->strUsername = u"u%1"_qs.arg(m_window->prompts);
            m_opener->LoadFile();
        };
        enter(u"http://a/b"_qs);
        m_downloader->finish(4);
        m_downloader->finish(4);
        QCOMPARE(m_window->prompts, 2);
        QCOMPARE(m_downloader->requests.back().username, u"u2"_qs);
        m_downloader->finish(200, FeedTexts::rss(u"T"_qs, {}));
        QVERIFY(m_current->addressFeedShown);
        QCOMPARE(m_current->strUsername, u"u2"_qs); // kept for the subscription
        enter(u"http://a/b"_qs);
        QCOMPARE(m_current->strUsername, QString());
    }

    void aLocalFileChangesNeitherFlagsNorButton()
    {
        m_folder->write(u"mine.rss"_qs, FeedTexts::rss(u"Mine"_qs, {}));
        m_folder->write(u"bad.rss"_qs, "<rss");
        m_current->addressFeedShown = true;
        enter(m_folder->file(u"mine.rss"_qs));
        QCOMPARE(m_current->document->Title(), u"Mine"_qs);
        QCOMPARE(m_folder->read(u"tmp.xml"_qs), m_folder->read(u"mine.rss"_qs));
        QCOMPARE(m_window->fills, 1);
        QVERIFY(m_current->addressFeedShown && !m_current->addressFeedUnsaved && m_window->addEnabled);
        QVERIFY(!m_window->sendMailEnabled);
        enter(m_folder->file(u"bad.rss"_qs));
        enter(u"https://a/b"_qs); // no address that is taken, and so a path
        QCOMPARE(m_messages->shown.size(), std::size_t(2));
        QCOMPARE(m_messages->shown[0].text, u"Erreur lors du chargement du canal RSS"_qs);
        QCOMPARE(m_messages->shown[1].text, u"Le fichier que vous tentez d'ouvrir n'existe pas"_qs);
        QCOMPARE(m_messages->shown[1].title, u"Avertissement"_qs);
        QVERIFY(m_downloader->requests.empty());
    }

    void theCommandLineTakesAddressesAndQuotedPaths()
    {
        m_opener->openCommandLine(u"feed:http://a/é"_qs);
        QCOMPARE(m_window->address, u"feed:http://a/é"_qs);
        QCOMPARE(m_downloader->requests.back().url, u"http://a/é"_qs);
        QCOMPARE(m_window->empties, 1);
        m_opener->openCommandLine(u"\"/a b.xml\""_qs);
        QCOMPARE(m_window->address, u"/a b.xml"_qs);
        m_opener->openCommandLine(u"\"\""_qs);
        QCOMPARE(m_window->address, QString());
        QVERIFY_EXCEPTION_THROWN(m_opener->openCommandLine(u"x"_qs), RunTimeError);
        QVERIFY_EXCEPTION_THROWN(m_opener->openCommandLine({}), RunTimeError);
    }

    void aNodeIsOpenedFromItsCacheFileAndTheOldOneIsSaved()
    {
        const FeedNodePtr one = addNode(u"1"_qs, FeedTexts::rss(u"One"_qs, {u"a"_qs}));
        const FeedNodePtr two = addNode(u"2"_qs, FeedTexts::rss(u"Two"_qs, {}));
        const FeedNodePtr broken = addNode(u"3"_qs, "<rss");
        m_current->addressFeedShown = true;
        m_opener->openFeedNode(one);
        QVERIFY(!m_current->addressFeedShown && !m_window->addEnabled);
        QCOMPARE(m_window->fills, 1);
        m_current->document->SetItemRead(0, true);
        m_tree->setImages(two, NodeImage::FeedUpdating, NodeImage::FeedUpdating);
        m_opener->openFeedNode(two); // in flight: neither opened nor anything else
        m_opener->openFeedNode(m_tree->root());
        m_opener->openFeedNode(nullptr);
        QCOMPARE(m_current->document->Title(), u"One"_qs);
        m_tree->setImages(two, NodeImage::Feed, NodeImage::Feed);
        m_opener->openFeedNode(two);
        QCOMPARE(m_window->fills, 2);
        CachedFeed again;
        QCOMPARE(again.Load(m_folder->cacheFile(u"1"_qs)), LoadOk);
        QVERIFY(again.IsItemRead(0));

        m_opener->openFeedNode(broken);
        QCOMPARE(m_messages->shown.size(), std::size_t(1));
        QCOMPARE(m_messages->shown[0].text, u"Erreur lors du chargement du canal RSS"_qs);
        QCOMPARE(m_messages->shown[0].title, u"Avertissement"_qs);
        QCOMPARE(m_window->fills, 2);
        QCOMPARE(m_folder->read(u"feeds/3.xml"_qs), QByteArray("<rss"));
    }

    void theMarksOfTheFeedOnShowSurviveADownload()
    {
        m_opener->openFeedNode(addNode(u"1"_qs, FeedTexts::rss(u"One"_qs, {u"a"_qs})));
        m_current->document->SetItemRead(0, true);
        enter(u"http://a/b"_qs);
        m_downloader->finish(200, FeedTexts::rss(u"T"_qs, {u"x"_qs}));
        CachedFeed again;
        QCOMPARE(again.Load(m_folder->cacheFile(u"1"_qs)), LoadOk);
        QVERIFY(again.IsItemRead(0));
        // The downloaded one isn't saved over the next download.
        m_current->document->SetItemRead(0, true);
        enter(u"http://a/c"_qs);
        const QByteArray next = FeedTexts::rss(u"Next"_qs, {});
        m_downloader->finish(200, next);
        QCOMPARE(m_folder->read(u"tmp.xml"_qs), next);
    }

private:
    void enter(const QString &text)
    {
        m_window->address = text;
        m_opener->handleAddressEntered();
    }
    FeedNodePtr addNode(const QString &key, const QByteArray &cache, int image = NodeImage::Feed)
    {
        m_folder->write(u"feeds/"_qs + key + u".xml"_qs, cache);
        return m_tree->addChild(m_tree->root(), key, key, image);
    }

    std::unique_ptr<TemporaryDataDirectory> m_folder;
    std::unique_ptr<FakeDownloader> m_downloader;
    std::unique_ptr<FakeOpeningWindow> m_window;
    std::unique_ptr<FakeMessages> m_messages;
    std::unique_ptr<FeedTree> m_tree;
    std::unique_ptr<CurrentFeed> m_current;
    std::unique_ptr<FeedOpener> m_opener;
};

QTEST_GUILESS_MAIN(FeedOpenerTest)
#include "tst_FeedOpener.moc"
