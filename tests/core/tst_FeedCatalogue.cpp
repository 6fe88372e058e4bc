#include "core/FeedCatalogue.h"
#include "platform/RunTimeError.h"
#include "support/clsDES.h"
#include "tests/fixtures/TemporaryDataDirectory.h"

#include <QElapsedTimer>
#include <QTest>

#include <csignal>
#include <functional>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

/// The number of the run-time error that `action` raises; 0 when it raises none.
int errorOf(const std::function<void()> &action)
{
    try {
        action();
        return 0;
    } catch (const RunTimeError &error) {
        return error.number();
    }
}

QString key(int number)
{
    return QString::number(number);
}

} // namespace

class FeedCatalogueTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void theTreeAndTheTablesFollowTheFile();
    void foldersOpenForTheirFeedsAndFoldByTheirMark();
    void keysAreGivenOutFromTheSmallestFreeOne_data();
    void keysAreGivenOutFromTheSmallestFreeOne();
    void aBrokenCatalogueRaisesItsError_data();
    void aBrokenCatalogueRaisesItsError();
    void theSelectionDecidesWhereAFeedGoes();
    void aNewFeedEntersFileTablesAndCache();
    void credentialsAreStoredOnlyTogetherAndEnterTheTablesAtTheNextStart();
    void anAddedFeedWithoutItsDocumentFailsAtTheCopyOnly();
    void foldersAreCreatedBesideFeedsAndBelowTheRest();
    void aDeletedFeedLosesItsElementAndThenItsCacheFile();
    void aDeletedFolderTakesItsFeedsButNotTheOneInFlight();
    void movesAreWrittenBeforeTheTargetWhateverTheSide();
    void someMovesAreIgnoredAndSomeFail();
    void theStateGoesIntoTheFileAtTheEnd();
    void aStateThatDoesNotFitTheFileRaisesAnError();
    void aFullDiskLeavesTheCatalogueAsItWas();
    void aLongCatalogueLoadsAndSavesQuickly();

private:
    /// Writes `inner` as the content of the catalogue and starts afresh from it.
    void start(const QByteArray &inner)
    {
        m_folder->write(QStringLiteral("feeds.xml"), "<?xml version=\"1.0\"?>\n<favoris>" + inner + "</favoris>\n");
        restart();
    }
    void restart()
    {
        m_tree = std::make_unique<FeedTree>();
        m_catalogue =
            std::make_unique<FeedCatalogue>(m_folder->directory(), *m_tree, m_cipher, [this] { return m_now; });
        m_catalogue->loadCatalogue();
    }
    QByteArray inner() const
    {
        QByteArray text = m_folder->read(QStringLiteral("feeds.xml"));
        const auto from = text.indexOf("<favoris>") + 9;
        return text.mid(from, text.indexOf("</favoris>") - from);
    }
    /// Keys of the tree below the root, those below a folder in brackets.
    QString shape(const FeedNodePtr &node = {}) const
    {
        QStringList parts;
        for (const FeedNodePtr &child : (node ? node : m_tree->root())->children())
            parts.append(child->children().empty() ? child->key() : QString(child->key() + u'(' + shape(child) + u')'));
        return parts.join(u' ');
    }
    FeedNodePtr node(int number) const { return m_tree->find(key(number)); }
    void addFeed(const QString &title, const QString &ttl = {})
    {
        m_folder->write(QStringLiteral("tmp.xml"), title.toUtf8());
        m_catalogue->addFeed({title, ttl, QStringLiteral("http://example.org/") + title, {}, {}});
    }

    std::unique_ptr<TemporaryDataDirectory> m_folder;
    std::unique_ptr<FeedTree> m_tree;
    std::unique_ptr<FeedCatalogue> m_catalogue;
    clsDES m_cipher;
    QDateTime m_now{QDate(2004, 7, 1), QTime(14, 0)};
};

void FeedCatalogueTest::init()
{
    m_folder = std::make_unique<TemporaryDataDirectory>();
}

void FeedCatalogueTest::theTreeAndTheTablesFollowTheFile()
{
    start("<dir name='D' key='3' visible='1'><feed name='A' url='http://a/' key='1' ttl='15' cache='3' username='u' "
          "password='p' lastupdate='30/06/2004 12:00:00'/></dir><feed name='B' url='b' key='7' username='u'/><other "
          "key='x'/>");
    QCOMPARE(shape(), QStringLiteral("3(1) 7"));
    QCOMPARE(m_tree->root()->text(), QStringLiteral("Favoris"));
    QCOMPARE(node(1)->tag, QStringLiteral("http://a/"));
    QCOMPARE(node(3)->image(), NodeImage::Folder);
    const FeedTables &tables = m_catalogue->tables;
    QCOMPARE(tables.updatettl.Keys(), (QStringList{key(1), key(7)}));
    QCOMPARE(tables.updatettl.Item(key(1)), QStringLiteral("15"));
    QCOMPARE(tables.updatettl.Item(key(7)), QStringLiteral("60"));
    QCOMPARE(tables.updatecache.Item(key(1)), QStringLiteral("3"));
    QCOMPARE(tables.updatecache.Item(key(7)), QStringLiteral("-7"));
    QCOMPARE(tables.updatedate.Item(key(1)).date(), QDateTime(QDate(2004, 6, 30), QTime(12, 0)));
    QCOMPARE(tables.updatedate.Item(key(7)).date(), m_now);
    QCOMPARE(tables.havecache.Item(key(7)), QStringLiteral("0"));
    QCOMPARE(tables.nodeByKey.Item(key(1)), node(1));
    QCOMPARE(tables.usernames.Keys(), QStringList{key(1)}); // one of the two alone is no credentials
    QCOMPARE(tables.passwords.Item(key(1)), QStringLiteral("p"));
}

void FeedCatalogueTest::foldersOpenForTheirFeedsAndFoldByTheirMark()
{
    start("<dir name='open' key='1' visible='1'><feed name='' url='' key='2'/></dir>"
          "<dir name='folded' key='3' visible='0'><feed name='' url='' key='4'/></dir>"
          "<dir name='empty' key='5' visible='1'/><dir name='odd' key='6'><feed name='' url='' key='7'/></dir>");
    QVERIFY(m_tree->root()->isExpanded());
    QVERIFY(node(1)->isExpanded());
    QVERIFY(!node(3)->isExpanded());
    QVERIFY(!node(5)->isExpanded()); // only feeds open what is above them
    QVERIFY(node(6)->isExpanded());
}

void FeedCatalogueTest::keysAreGivenOutFromTheSmallestFreeOne_data()
{
    QTest::addColumn<QList<int>>("taken");
    QTest::addColumn<QList<int>>("given");
    QTest::newRow("empty catalogue") << QList<int>{} << QList<int>{1, 2, 3};
    QTest::newRow("gaps") << QList<int>{5, 1, 2} << QList<int>{3, 4, 6};
    QTest::newRow("negative key") << QList<int>{-4, 1} << QList<int>{0};
    QTest::newRow("largest key") << QList<int>{32767} << QList<int>{1};
}

void FeedCatalogueTest::keysAreGivenOutFromTheSmallestFreeOne()
{
    QFETCH(QList<int>, taken);
    QFETCH(QList<int>, given);
    QByteArray folders;
    for (const int number : taken)
        folders += "<dir name='' visible='1' key='" + QByteArray::number(number) + "'/>";
    start(folders);
    for (const int number : given) {
        QCOMPARE(m_catalogue->nextKey(), qint16(number));
        if (number > 0 && !node(number))
            m_catalogue->createFolder(m_tree->root(), QStringLiteral("new"));
    }
    // The two zeros of a file with a key 0 stop the count at 1, taken or not; the next addition then fails.
    start("<dir name='' visible='1' key='0'/><dir name='' visible='1' key='1'/>");
    QCOMPARE(m_catalogue->nextKey(), qint16(1));
    QCOMPARE(errorOf([this] { addFeed(QStringLiteral("A")); }), RunTimeError::keyNotUnique().number());
}

void FeedCatalogueTest::aBrokenCatalogueRaisesItsError_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<int>("error");
    const auto row = [](const char *name, const QByteArray &content, const RunTimeError &error) {
        QTest::newRow(name) << content << error.number();
    };
    const auto favoris = [](const char *inner) -> QByteArray { return "<favoris>" + QByteArray(inner) + "</favoris>"; };
    row("missing", {}, RunTimeError::elementNotFound());
    row("not well-formed", "<favoris><dir></favoris>", RunTimeError::elementNotFound());
    row("another root", "<opml/>", RunTimeError::elementNotFound());
    row("comment", favoris("<!-- x -->"), RunTimeError::objectNotSet());
    row("no key", favoris("<feed name='' url=''/>"), RunTimeError::objectNotSet());
    row("no address", favoris("<feed name='' key='1'/>"), RunTimeError::objectNotSet());
    row("one key twice", favoris("<dir name='' key='1'><feed name='' url='' key='1'/></dir>"),
        RunTimeError::keyNotUnique());
    row("the root's key", favoris("<dir name='' key='root'/>"), RunTimeError::keyNotUnique());
    row("key too large", favoris("<feed name='' url='' key='32768'/>"), RunTimeError::overflow());
    row("key that leads elsewhere", favoris("<feed name='' url='' key='../x'/>"), RunTimeError::typeMismatch());
}

void FeedCatalogueTest::aBrokenCatalogueRaisesItsError()
{
    QFETCH(QByteArray, content);
    QFETCH(int, error);
    if (!content.isEmpty())
        m_folder->write(QStringLiteral("feeds.xml"), content);
    QCOMPARE(errorOf([this] { restart(); }), error);
    QCOMPARE(m_folder->read(QStringLiteral("feeds.xml")), content);
}

void FeedCatalogueTest::theSelectionDecidesWhereAFeedGoes()
{
    start("<dir name='D' key='1' visible='0'><feed name='A' url='' key='2'/></dir><feed name='B' url='' key='3'/>");
    addFeed(QStringLiteral("none")); // 4
    m_tree->select(m_tree->root());
    addFeed(QStringLiteral("root")); // 5
    m_tree->select(node(1));
    addFeed(QStringLiteral("folder")); // 6
    m_tree->select(node(2));
    addFeed(QStringLiteral("feed")); // 7
    QCOMPARE(shape(), QStringLiteral("1(2 6 7) 3 4 5"));
    QVERIFY(node(1)->isExpanded());
    const QString before = shape();
    m_tree->setImages(node(3), NodeImage::FeedUpdating, NodeImage::FeedUpdating);
    m_tree->select(node(3));
    QCOMPARE(errorOf([this] { addFeed(QStringLiteral("updating")); }), RunTimeError::objectNotSet().number());
    QCOMPARE(shape(), before);
    restart();
    QCOMPARE(shape(), before);
}

void FeedCatalogueTest::aNewFeedEntersFileTablesAndCache()
{
    start({});
    m_folder->write(QStringLiteral("tmp.xml"), "<rss/>");
    m_catalogue->addFeed({QStringLiteral("L'été <1>"), QStringLiteral("20"), QStringLiteral("http://a/?b&c"), {}, {}});
    QCOMPARE(inner(), QByteArray("<feed name=\"L'été &lt;1&gt;\" url=\"http://a/?b&amp;c\" key=\"1\" ttl=\"20\" "
                                 "cache=\"-7\"/>"));
    QCOMPARE(m_catalogue->tables.updatettl.Item(key(1)), QStringLiteral("20"));
    QCOMPARE(m_catalogue->tables.updatedate.Item(key(1)).date(), m_now);
    QCOMPARE(m_catalogue->tables.havecache.Item(key(1)), QStringLiteral("0"));
    QCOMPARE(m_catalogue->tables.nodeByKey.Item(key(1)), node(1));
    QCOMPARE(node(1)->tag, QStringLiteral("http://a/?b&c"));
    QCOMPARE(node(1)->selectedImage(), -1);
    QCOMPARE(m_folder->read(QStringLiteral("feeds/1.xml")), QByteArray("<rss/>"));
    QCOMPARE(m_catalogue->nextKey(), qint16(2));
    addFeed(QStringLiteral("B"));
    QCOMPARE(m_catalogue->tables.updatettl.Item(key(2)), QStringLiteral("60"));
}

void FeedCatalogueTest::credentialsAreStoredOnlyTogetherAndEnterTheTablesAtTheNextStart()
{
    start({});
    m_folder->write(QStringLiteral("tmp.xml"), "<rss/>");
    const QString user = QStringLiteral("user");
    const QString password = QStringLiteral("pässword");
    m_catalogue->addFeed({QStringLiteral("A"), {}, QStringLiteral("a"), user, password});
    m_catalogue->addFeed({QStringLiteral("B"), {}, QStringLiteral("b"), user, {}});
    m_catalogue->addFeed({QStringLiteral("C"), {}, QStringLiteral("c"), {}, password});
    QCOMPARE(m_catalogue->tables.usernames.Count(), 0);
    QCOMPARE(inner().count("username="), 1);
    QVERIFY(!inner().contains("ssword\""));
    restart();
    QCOMPARE(m_catalogue->tables.usernames.Keys(), QStringList{key(1)});
    QString enciphered = m_catalogue->tables.passwords.Item(key(1));
    QCOMPARE(m_cipher.DecryptString(enciphered, QStringLiteral("%%K9:Tm411"), true), password);
}

void FeedCatalogueTest::anAddedFeedWithoutItsDocumentFailsAtTheCopyOnly()
{
    start({});
    QCOMPARE(errorOf([this] {
                 m_catalogue->addFeed({QStringLiteral("A"), {}, {}, {}, {}});
             }),
             RunTimeError::fileNotFound().number());
    QVERIFY(inner().contains("key=\"1\""));
    QVERIFY(node(1));
}

void FeedCatalogueTest::foldersAreCreatedBesideFeedsAndBelowTheRest()
{
    start("<dir name='D' key='1' visible='1'><feed name='A' url='' key='2'/></dir><feed name='B' url='' key='3'/>");
    m_catalogue->createFolder(node(2), QStringLiteral("beside"));     // 4
    m_catalogue->createFolder(node(1), QStringLiteral("below"));      // 5
    m_catalogue->createFolder(m_tree->root(), QStringLiteral("top")); // 6
    m_catalogue->createFolder(m_tree->root(), {});                    // nothing, and no key is used
    QCOMPARE(shape(), QStringLiteral("1(2 4 5) 3 6"));
    QVERIFY(inner().endsWith("<dir name=\"top\" key=\"6\" visible=\"1\"/>"));
    m_tree->setImages(node(3), NodeImage::FeedUpdating, NodeImage::FeedUpdating);
    m_catalogue->createFolder(node(3), QStringLiteral("odd")); // below the feed in flight, in tree and file
    QCOMPARE(shape(), QStringLiteral("1(2 4 5) 3(7) 6"));
    QVERIFY(inner().contains("key=\"3\"><dir name=\"odd\" key=\"7\" visible=\"1\"/></feed>"));
    restart();
    QCOMPARE(shape(), QStringLiteral("1(2 4 5) 3 6")); // the load doesn't enter feeds
}

void FeedCatalogueTest::aDeletedFeedLosesItsElementAndThenItsCacheFile()
{
    start("<feed name='A' url='' key='1'/><feed name='B' url='' key='2'/>");
    m_folder->write(QStringLiteral("feeds/1.xml"), "x");
    m_catalogue->deleteCatalogueFeed(key(1));
    m_tree->remove(node(1));
    QVERIFY(!m_folder->exists(QStringLiteral("feeds/1.xml")));
    QVERIFY(m_catalogue->tables.updatettl.Exists(key(1))); // the tables lose nothing in a run
    QCOMPARE(m_catalogue->nextKey(), qint16(3));           // and no key is given out twice in a run
    QCOMPARE(errorOf([this] { m_catalogue->deleteCatalogueFeed(key(1)); }), RunTimeError::objectNotSet().number());
    QCOMPARE(errorOf([this] { m_catalogue->deleteCatalogueFeed(key(2)); }), RunTimeError::fileNotFound().number());
    QVERIFY(m_folder->read(QStringLiteral("feeds.xml")).contains("<favoris/>")); // the file had been saved by then
    restart();
    QCOMPARE(m_catalogue->nextKey(), qint16(1));
}

void FeedCatalogueTest::aDeletedFolderTakesItsFeedsButNotTheOneInFlight()
{
    start("<dir name='D' key='1' visible='1'><feed name='A' url='' key='2'/><dir name='E' key='3' visible='1'><feed "
          "name='B' url='' key='4'/></dir><feed name='C' url='' key='5'/></dir><feed name='F' url='' key='6'/>");
    for (const int number : {2, 4, 5, 6})
        m_folder->write(QStringLiteral("feeds/%1.xml").arg(number), "x");
    m_tree->setImages(node(5), NodeImage::FeedUpdating, NodeImage::FeedUpdating);
    m_catalogue->deleteCatalogueFolder(node(1));
    QCOMPARE(inner(), QByteArray("<feed name=\"F\" url=\"\" key=\"6\"/>"));
    QVERIFY(!m_folder->exists(QStringLiteral("feeds/2.xml")) && !m_folder->exists(QStringLiteral("feeds/4.xml")));
    QVERIFY(m_folder->exists(QStringLiteral("feeds/5.xml")) && m_folder->exists(QStringLiteral("feeds/6.xml")));
    QVERIFY(node(1)); // the caller deletes the nodes
}

void FeedCatalogueTest::movesAreWrittenBeforeTheTargetWhateverTheSide()
{
    const QByteArray before = "<dir name='D' key='1' visible='1'><feed name='A' url='' key='2'/><feed name='B' url='' "
                              "key='3'/></dir><feed name='C' url='c' key='4' extra='kept'/>";
    const auto fileShape = [this] {
        restart();
        return shape();
    };
    start(before);
    m_catalogue->moveFeed(node(4), node(3), true);
    QCOMPARE(shape(), QStringLiteral("1(2 4 3)"));
    QCOMPARE(node(4)->tag, QString()); // until the next start
    QVERIFY(inner().contains("extra=\"kept\""));
    QCOMPARE(m_catalogue->tables.nodeByKey.Item(key(4))->image(), NodeImage::Gone);
    QCOMPARE(fileShape(), QStringLiteral("1(2 4 3)"));
    start(before);
    m_catalogue->moveFeed(node(4), node(3), false);
    QCOMPARE(shape(), QStringLiteral("1(2 3 4)"));
    QCOMPARE(fileShape(), QStringLiteral("1(2 4 3)")); // the file always takes the place before
    start(before);
    m_catalogue->moveFeed(node(4), node(1), true);
    QCOMPARE(shape(), QStringLiteral("1(2 3 4)"));
    QCOMPARE(fileShape(), QStringLiteral("1(2 3 4)"));
    start(before);
    m_catalogue->moveFeed(node(2), m_tree->root(), true);
    QCOMPARE(shape(), QStringLiteral("1(3) 4 2"));
    QCOMPARE(fileShape(), QStringLiteral("1(3) 4 2"));
    m_tree->setImages(node(3), NodeImage::FeedUpdating, NodeImage::FeedUpdating);
    m_catalogue->moveFeed(node(4), node(3), true); // a feed in flight counts as the root
    QCOMPARE(shape(), QStringLiteral("1(3) 2 4"));
    QCOMPARE(fileShape(), QStringLiteral("1(3) 2 4"));
}

void FeedCatalogueTest::someMovesAreIgnoredAndSomeFail()
{
    start("<dir name='D' key='1' visible='1'><feed name='A' url='' key='2'/></dir><feed name='B' url='' key='3'/>");
    const QByteArray before = inner();
    m_catalogue->moveFeed(node(2), node(2), true);
    m_catalogue->moveFeed(node(1), m_tree->root(), true);
    m_catalogue->moveFeed(node(2), nullptr, true);
    m_catalogue->moveFeed(nullptr, node(2), true);
    QCOMPARE(shape(), QStringLiteral("1(2) 3"));
    QCOMPARE(errorOf([this] { m_catalogue->moveFeed(node(2), node(3), true); }), RunTimeError::objectNotSet().number());
    QCOMPARE(shape(), QStringLiteral("1 2 3")); // the tree was changed by then, the file wasn't
    QCOMPARE(inner(), before);

    start("<dir name='D' key='1' visible='1'><feed name='A' url='' key='2'/></dir>");
    m_tree->setImages(node(2), NodeImage::FeedUpdating, NodeImage::FeedUpdating);
    m_catalogue->createFolder(node(2), QStringLiteral("inside"));
    m_tree->setImages(node(2), NodeImage::Feed, NodeImage::Feed);
    const QByteArray nested = inner();
    QCOMPARE(errorOf([this] { m_catalogue->moveFeed(node(2), node(3), true); }), RunTimeError::objectNotSet().number());
    QCOMPARE(inner(), nested); // a feed can't go below itself
}

void FeedCatalogueTest::theStateGoesIntoTheFileAtTheEnd()
{
    start("<dir name='D' key='1' visible='1'><feed name='A' url='a' key='2' username='u' password='p' "
          "lastupdate='30/06/2004 12:00:00'/></dir>"
          "<feed name='B' url='b' key='3' username='alone' x='y'/>"
          "<other key='9'/>");
    m_tree->setExpanded(node(1), false);
    m_catalogue->tables.updatettl.Replace(key(2), QStringLiteral("5"));
    m_catalogue->tables.passwords.Replace(key(2), QStringLiteral("q"));
    m_now = m_now.addDays(1);
    m_catalogue->tables.updatedate.Replace(key(3), UpdateDate(m_now));
    m_catalogue->saveCatalogueState();
    QCOMPARE(inner(), QByteArray("<dir name=\"D\" key=\"1\" visible=\"0\"><feed name=\"A\" url=\"a\" key=\"2\" "
                                 "username=\"u\" password=\"q\" lastupdate=\"30/06/2004 12:00:00\" ttl=\"5\" "
                                 "cache=\"-7\"/></dir><feed name=\"B\" url=\"b\" key=\"3\" username=\"alone\" x=\"y\" "
                                 "ttl=\"60\" cache=\"-7\" lastupdate=\"02/07/2004 14:00:00\"/><other key=\"9\"/>"));
    restart();
    QVERIFY(!node(1)->isExpanded());
    QCOMPARE(m_catalogue->tables.updatedate.Item(key(3)).date(), m_now);

    m_folder->write(QStringLiteral("feeds.xml"), "<favoris>");
    m_catalogue->saveCatalogueState();
    QCOMPARE(m_folder->read(QStringLiteral("feeds.xml")), QByteArray("<favoris>")); // left alone without a word
}

void FeedCatalogueTest::aStateThatDoesNotFitTheFileRaisesAnError()
{
    const QByteArray feed = "<feed name='A' url='' key='1' username='u' password='p'/>";
    const QByteArray folder = "<dir name='D' key='2' visible='1'/>";
    const auto saveOver = [&](const QByteArray &content) {
        start(feed + folder);
        m_folder->write(QStringLiteral("feeds.xml"), "<favoris>" + content + "</favoris>");
        const int error = errorOf([this] { m_catalogue->saveCatalogueState(); });
        return m_folder->read(QStringLiteral("feeds.xml")) == "<favoris>" + content + "</favoris>" ? error : -1;
    };
    const int notSet = RunTimeError::objectNotSet().number();
    QCOMPARE(saveOver("<feed name='A' url='' key='1' username='u'/>" + folder), notSet);
    QCOMPARE(saveOver(feed + "<dir name='D' key='2'/>"), notSet);
    QCOMPARE(saveOver(feed + folder + "<dir name='D' key='3' visible='1'/>"), notSet);
}

/// The child runs under a limit on file sizes, which stands for a full disk; tests may run as root, whom no permission
/// stops.
void FeedCatalogueTest::aFullDiskLeavesTheCatalogueAsItWas()
{
    QByteArray feeds;
    for (int i = 1; i <= 200; ++i)
        feeds += "<feed name='Feed' url='http://example.org/' key='" + QByteArray::number(i) + "'/>";
    start(feeds);
    m_folder->write(QStringLiteral("tmp.xml"), "<rss/>");
    const QByteArray before = m_folder->read(QStringLiteral("feeds.xml"));
    const pid_t child = fork();
    if (child == 0) {
        signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{4096, 4096};
        setrlimit(RLIMIT_FSIZE, &limit);
        const bool raised = errorOf([this] { m_catalogue->saveCatalogueState(); }) != 0 &&
                            errorOf([this] {
                                m_catalogue->addFeed({QStringLiteral("A"), {}, {}, {}, {}});
                            }) != 0 &&
                            errorOf([this] { m_catalogue->deleteCatalogueFeed(key(1)); }) != 0;
        _exit(raised ? 0 : 1);
    }
    int status = -1;
    waitpid(child, &status, 0);
    QCOMPARE(status, 0);
    QCOMPARE(m_folder->read(QStringLiteral("feeds.xml")), before);
}

void FeedCatalogueTest::aLongCatalogueLoadsAndSavesQuickly()
{
    QByteArray feeds;
    for (int i = 1; i <= 5000; ++i)
        feeds += "<feed name='Feed' url='http://example.org/' key='" + QByteArray::number(i) + "'/>";
    QElapsedTimer timer;
    timer.start();
    start(feeds);
    m_catalogue->saveCatalogueState();
    QVERIFY2(timer.elapsed() < 3000, qPrintable(QString::number(timer.elapsed()) + QStringLiteral(" ms")));

    QByteArray deep; // deeper than what a reader of XML takes: refused, not crashed on
    for (int i = 1; i <= 10000; ++i)
        deep += "<dir name='' visible='1' key='" + QByteArray::number(i) + "'>";
    for (int i = 1; i <= 10000; ++i)
        deep += "</dir>";
    QCOMPARE(errorOf([&] { start(deep); }), RunTimeError::elementNotFound().number());
}

QTEST_GUILESS_MAIN(FeedCatalogueTest)
#include "tst_FeedCatalogue.moc"
