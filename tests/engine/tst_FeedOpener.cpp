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
    void init();
    void addressesAreResolvedToHttp_data();
    void addressesAreResolvedToHttp();
    void aSchemeThatCannotBeFetchedIsRefusedAndTheBarStays();
    void aDownloadedFeedIsShownAsUnsubscribed();
    void everyOutcomeOfADownloadHasItsBox_data();
    void everyOutcomeOfADownloadHasItsBox();
    void aPageMayBeShownInTheBrowserInstead();
    void thePromptLoopsUntilTheServerIsContent();
    void aLocalFileChangesNeitherFlagsNorButton();
    void theCommandLineTakesAddressesAndQuotedPaths();
    void aNodeIsOpenedFromItsCacheFileAndTheOldOneIsSaved();
    void theMarksOfTheFeedOnShowSurviveADownload();

private:
    void enter(const QString &text)
    {
        m_window->address = text;
        m_opener->handleAddressEntered();
    }
    FeedNodePtr addNode(const QString &key, const QByteArray &cache, int image = NodeImage::Feed)
    {
        m_folder->write(QStringLiteral("feeds/") + key + QStringLiteral(".xml"), cache);
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

void FeedOpenerTest::init()
{
    m_opener.reset();
    m_folder = std::make_unique<TemporaryDataDirectory>();
    m_downloader = std::make_unique<FakeDownloader>();
    m_window = std::make_unique<FakeOpeningWindow>();
    m_messages = std::make_unique<FakeMessages>();
    m_tree = std::make_unique<FeedTree>();
    m_tree->addRoot(QStringLiteral("root"), {}, NodeImage::Root);
    m_current = std::make_unique<CurrentFeed>();
    m_opener = std::make_unique<FeedOpener>(m_folder->directory(), *m_current, *m_downloader, *m_window, *m_messages);
}

void FeedOpenerTest::addressesAreResolvedToHttp_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("address");
    const auto row = [](const char *text, const char *address) {
        QTest::newRow(text) << QString::fromLatin1(text) << QString::fromLatin1(address);
    };
    row("http://a/b", "http://a/b");
    row("feed:http://a/b", "http://a/b");
    row("feed://a/b", "http://a/b");
    row("feed:a/b", "http://a/b");
    row("feed://http://a/b", "http://a/b");
    row("feed:ftp://a/b", "");
    row("feed:https://a/b", "");
    row("feed:////a", "");
    row("HTTP://a/b", "http://a/b"); // five characters are dropped, whatever they are
    row("abc", "http://");
}

void FeedOpenerTest::addressesAreResolvedToHttp()
{
    QFETCH(QString, text);
    QFETCH(QString, address);
    QCOMPARE(FeedOpener::addressToFetch(text), address);
}

void FeedOpenerTest::aSchemeThatCannotBeFetchedIsRefusedAndTheBarStays()
{
    m_folder->write(QStringLiteral("tmp.xml"), "old");
    enter(QStringLiteral("feed:ftp://a/b"));
    QVERIFY(m_downloader->requests.empty());
    QCOMPARE(m_messages->shown.size(), std::size_t(1));
    QCOMPARE(m_messages->shown[0].text, QStringLiteral("Impossible d'ouvrir le flux spécifié :\n\nftp://a/b"));
    QCOMPARE(m_messages->shown[0].title, QStringLiteral("Erreur"));
    QCOMPARE(m_messages->shown[0].icon, Message::Icon::Exclamation);
    QVERIFY(m_window->progressVisible);
    QVERIFY(!m_folder->exists(QStringLiteral("tmp.xml")));
}

void FeedOpenerTest::aDownloadedFeedIsShownAsUnsubscribed()
{
    m_current->strUsername = QStringLiteral("stale");
    m_folder->write(QStringLiteral("tmp.xml"), "old");
    enter(QStringLiteral("feed://a/b"));
    QVERIFY(!m_window->sendMailEnabled && !m_window->addEnabled && m_window->progressVisible);
    QCOMPARE(m_downloader->requests.size(), std::size_t(1));
    QCOMPARE(m_downloader->requests[0].url, QStringLiteral("http://a/b"));
    QCOMPARE(m_downloader->requests[0].destination, m_folder->file(QStringLiteral("tmp.xml")));
    QCOMPARE(m_downloader->requests[0].username, QString());
    QVERIFY(!m_folder->exists(QStringLiteral("tmp.xml")));
    Q_EMIT m_downloader->DownloadProgress(41.5);
    QCOMPARE(m_window->progress, 42);
    m_downloader->finish(200, FeedTexts::rss(QStringLiteral("T"), {QStringLiteral("one")}));
    QVERIFY(m_current->addressFeedShown && m_current->addressFeedUnsaved);
    QVERIFY(m_window->addEnabled && !m_window->progressVisible);
    QCOMPARE(m_window->fills, 1);
    QCOMPARE(m_current->document->Title(), QStringLiteral("T"));
    enter(QStringLiteral("http://c/"));
    QVERIFY(!m_current->addressFeedShown && m_current->addressFeedUnsaved);
    QVERIFY(m_messages->shown.empty());
}

void FeedOpenerTest::everyOutcomeOfADownloadHasItsBox_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("title");
    QTest::addColumn<bool>("plain");
    const QString warning = QStringLiteral("Avertissement");
    QTest::newRow("host") << 3 << QByteArray()
                          << QStringLiteral("L'hôte sur lequel se trouve le fichier n'a pas été trouvé sur le serveur")
                          << QStringLiteral("Erreur") << false;
    QTest::newRow("404") << 404 << QByteArray() << QStringLiteral("Le fichier n'a pas été trouvé sur le serveur")
                         << QStringLiteral("Erreur 404") << false;
    QTest::newRow("401 is no prompt") << 401 << QByteArray() << QStringLiteral("Cas non géré actuellement : 401")
                                      << QString() << true;
    QTest::newRow("no feed") << 200 << QByteArray("<html>")
                             << QStringLiteral("La ressource spécifiée n'est pas un fichier RSS valide, voulez-vous "
                                               "essayer d'ouvrir le fichier dans le navigateur ?")
                             << warning << false;
    QTest::newRow("RSS version") << 200 << QByteArray("<rss version='3.0'><channel/></rss>")
                                 << QStringLiteral("La version du fichier RSS n'est pas supportée") << warning << false;
    QTest::newRow("Atom version") << 200 << QByteArray("<feed xmlns='http://www.w3.org/2005/Atom'/>")
                                  << QStringLiteral("La version du fichier RSS n'est pas supportée") << warning
                                  << false;
    QTest::newRow("other format") << 200 << QByteArray("<opml/>") << QStringLiteral("Format du fichier RSS inconnu")
                                  << warning << false;
}

void FeedOpenerTest::everyOutcomeOfADownloadHasItsBox()
{
    QFETCH(int, status);
    QFETCH(QByteArray, body);
    QFETCH(QString, text);
    QFETCH(QString, title);
    QFETCH(bool, plain);
    enter(QStringLiteral("http://a/b"));
    m_downloader->finish(status, body);
    QCOMPARE(m_messages->shown.size(), std::size_t(1));
    QCOMPARE(m_messages->shown[0].text, text);
    QCOMPARE(m_messages->shown[0].title, title);
    QCOMPARE(m_messages->shown[0].icon, plain ? Message::Icon::None : Message::Icon::Exclamation);
    QCOMPARE(m_window->fills, 0);
    QVERIFY(!m_window->progressVisible && !m_window->addEnabled);
    QVERIFY(!m_current->addressFeedShown && m_window->navigations.isEmpty());
}

void FeedOpenerTest::aPageMayBeShownInTheBrowserInstead()
{
    m_messages->answer = Messages::Answer::Yes;
    enter(QStringLiteral("feed:a/b"));
    m_downloader->finish(200, "<html><br></html>");
    QCOMPARE(m_window->navigations, QStringList{QStringLiteral("feed:a/b")});
    QCOMPARE(m_messages->shown[0].buttons, Message::Buttons::YesNo);
}

void FeedOpenerTest::thePromptLoopsUntilTheServerIsContent()
{
    m_window->onPrompt = [this] {
        m_current->strUsername = QStringLiteral("u%1").arg(m_window->prompts);
        m_opener->LoadFile();
    };
    enter(QStringLiteral("http://a/b"));
    m_downloader->finish(4);
    m_downloader->finish(4);
    QCOMPARE(m_window->prompts, 2);
    QCOMPARE(m_downloader->requests.back().username, QStringLiteral("u2"));
    m_downloader->finish(200, FeedTexts::rss(QStringLiteral("T"), {}));
    QVERIFY(m_current->addressFeedShown);
    QCOMPARE(m_current->strUsername, QStringLiteral("u2")); // kept for the subscription
    enter(QStringLiteral("http://a/b"));
    QCOMPARE(m_current->strUsername, QString());
}

void FeedOpenerTest::aLocalFileChangesNeitherFlagsNorButton()
{
    m_folder->write(QStringLiteral("mine.rss"), FeedTexts::rss(QStringLiteral("Mine"), {}));
    m_folder->write(QStringLiteral("bad.rss"), "<rss");
    m_current->addressFeedShown = true;
    enter(m_folder->file(QStringLiteral("mine.rss")));
    QCOMPARE(m_current->document->Title(), QStringLiteral("Mine"));
    QCOMPARE(m_folder->read(QStringLiteral("tmp.xml")), m_folder->read(QStringLiteral("mine.rss")));
    QCOMPARE(m_window->fills, 1);
    QVERIFY(m_current->addressFeedShown && !m_current->addressFeedUnsaved && m_window->addEnabled);
    QVERIFY(!m_window->sendMailEnabled);
    enter(m_folder->file(QStringLiteral("bad.rss")));
    enter(QStringLiteral("https://a/b")); // no address that is taken, and so a path
    QCOMPARE(m_messages->shown.size(), std::size_t(2));
    QCOMPARE(m_messages->shown[0].text, QStringLiteral("Erreur lors du chargement du canal RSS"));
    QCOMPARE(m_messages->shown[1].text, QStringLiteral("Le fichier que vous tentez d'ouvrir n'existe pas"));
    QCOMPARE(m_messages->shown[1].title, QStringLiteral("Avertissement"));
    QVERIFY(m_downloader->requests.empty());
}

void FeedOpenerTest::theCommandLineTakesAddressesAndQuotedPaths()
{
    m_opener->openCommandLine(QStringLiteral("feed:http://a/é"));
    QCOMPARE(m_window->address, QStringLiteral("feed:http://a/é"));
    QCOMPARE(m_downloader->requests.back().url, QStringLiteral("http://a/é"));
    QCOMPARE(m_window->empties, 1);
    m_opener->openCommandLine(QStringLiteral("\"/a b.xml\""));
    QCOMPARE(m_window->address, QStringLiteral("/a b.xml"));
    m_opener->openCommandLine(QStringLiteral("\"\""));
    QCOMPARE(m_window->address, QString());
    QVERIFY_EXCEPTION_THROWN(m_opener->openCommandLine(QStringLiteral("x")), RunTimeError);
    QVERIFY_EXCEPTION_THROWN(m_opener->openCommandLine({}), RunTimeError);
}

void FeedOpenerTest::aNodeIsOpenedFromItsCacheFileAndTheOldOneIsSaved()
{
    const FeedNodePtr one = addNode(QStringLiteral("1"), FeedTexts::rss(QStringLiteral("One"), {QStringLiteral("a")}));
    const FeedNodePtr two = addNode(QStringLiteral("2"), FeedTexts::rss(QStringLiteral("Two"), {}));
    const FeedNodePtr broken = addNode(QStringLiteral("3"), "<rss");
    m_current->addressFeedShown = true;
    m_opener->openFeedNode(one);
    QVERIFY(!m_current->addressFeedShown && !m_window->addEnabled);
    QCOMPARE(m_window->fills, 1);
    m_current->document->SetItemRead(0, true);
    m_tree->setImages(two, NodeImage::FeedUpdating, NodeImage::FeedUpdating);
    m_opener->openFeedNode(two); // in flight: neither opened nor anything else
    m_opener->openFeedNode(m_tree->root());
    m_opener->openFeedNode(nullptr);
    QCOMPARE(m_current->document->Title(), QStringLiteral("One"));
    m_tree->setImages(two, NodeImage::Feed, NodeImage::Feed);
    m_opener->openFeedNode(two);
    QCOMPARE(m_window->fills, 2);
    CachedFeed again;
    QCOMPARE(again.Load(m_folder->cacheFile(QStringLiteral("1"))), LoadOk);
    QVERIFY(again.IsItemRead(0));

    m_opener->openFeedNode(broken);
    QCOMPARE(m_messages->shown.size(), std::size_t(1));
    QCOMPARE(m_messages->shown[0].text, QStringLiteral("Erreur lors du chargement du canal RSS"));
    QCOMPARE(m_messages->shown[0].title, QStringLiteral("Avertissement"));
    QCOMPARE(m_window->fills, 2);
    QCOMPARE(m_folder->read(QStringLiteral("feeds/3.xml")), QByteArray("<rss"));
}

void FeedOpenerTest::theMarksOfTheFeedOnShowSurviveADownload()
{
    m_opener->openFeedNode(addNode(QStringLiteral("1"), FeedTexts::rss(QStringLiteral("One"), {QStringLiteral("a")})));
    m_current->document->SetItemRead(0, true);
    enter(QStringLiteral("http://a/b"));
    m_downloader->finish(200, FeedTexts::rss(QStringLiteral("T"), {QStringLiteral("x")}));
    CachedFeed again;
    QCOMPARE(again.Load(m_folder->cacheFile(QStringLiteral("1"))), LoadOk);
    QVERIFY(again.IsItemRead(0));
    // The downloaded one isn't saved over the next download.
    m_current->document->SetItemRead(0, true);
    enter(QStringLiteral("http://a/c"));
    const QByteArray next = FeedTexts::rss(QStringLiteral("Next"), {});
    m_downloader->finish(200, next);
    QCOMPARE(m_folder->read(QStringLiteral("tmp.xml")), next);
}

QTEST_GUILESS_MAIN(FeedOpenerTest)
#include "tst_FeedOpener.moc"
