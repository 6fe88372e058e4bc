// SPDX-License-Identifier: GPL-3.0-or-later

#include "core/FeedCatalogue.h"
#include "core/FeedTreeState.h"
#include "platform/Literals.h"
#include "support/clsDES.h"
#include "tests/fixtures/RunTimeErrors.h"
#include "tests/fixtures/TemporaryDataDirectory.h"

#include <QFile>
#include <QTest>

namespace {

QString key(int number)
{
    return QString::number(number);
}

} // namespace

class FeedCatalogueTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_folder = std::make_unique<TemporaryDataDirectory>(); }

    void theTreeAndTheTablesFollowTheFile()
    {
        start("<dir name='D' key='3' visible='1'><feed name='A' url='http://a/' key='1' ttl='15' cache='3' "
              "username='u' password='p' lastupdate='30/06/2004 12:00:00'/></dir><feed name='B' url='b' key='7' "
              "username='u'/><other key='x'/><dir name='folded' key='4' visible='0'><feed name='' url='' key='5'/>"
              "</dir><dir name='empty' key='6' visible='1'/>");
        QCOMPARE(shape(), u"3(1) 7 4(5) 6"_s);
        QCOMPARE(m_tree->root()->text(), u"Favoris"_s);
        QVERIFY(m_state->isExpanded(node(3)) && !m_state->isExpanded(node(4)));
        QVERIFY(!m_state->isExpanded(node(6))); // only feeds open what is above them
        const FeedTables &tables = m_catalogue->tables;
        QCOMPARE(tables.updatettl.Item(key(1)), u"15"_s);
        QCOMPARE(tables.updatettl.Item(key(7)), u"60"_s);
        QCOMPARE(tables.updatecache.Item(key(7)), u"-7"_s);
        QCOMPARE(tables.updatedate.Item(key(1)).date(), QDateTime(QDate(2004, 6, 30), QTime(12, 0)));
        QCOMPARE(tables.updatedate.Item(key(7)).date(), m_now);
        QCOMPARE(tables.usernames.Keys(), QStringList{key(1)}); // one of the two alone is no credentials
    }

    void keysAreGivenOutFromTheSmallestFreeOne()
    {
        start("<dir name='' visible='1' key='5'/><dir name='' visible='1' key='1'/>");
        for (const int number : {2, 3, 4, 6}) {
            QCOMPARE(m_catalogue->nextKey(), qint16(number));
            m_catalogue->createFolder(m_tree->root(), u"new"_s);
        }
        start("<dir name='' visible='1' key='-4'/><dir name='' visible='1' key='1'/>");
        QCOMPARE(m_catalogue->nextKey(), qint16(0));
        // The two zeros of a file with a key 0 stop the count at 1, taken or not; the next addition then fails.
        start("<dir name='' visible='1' key='0'/><dir name='' visible='1' key='1'/>");
        QCOMPARE(m_catalogue->nextKey(), qint16(1));
        QCOMPARE(errorOf([this] { addFeed(u"A"_s); }), RunTimeError::keyNotUnique().number());
    }

    void aBrokenCatalogueRaisesItsError()
    {
        const auto favoris = [](const QByteArray &inner) -> QByteArray { return "<favoris>" + inner + "</favoris>"; };
        QByteArray deep; // deeper than what a reader of XML takes: refused, not crashed on
        for (int i = 1; i <= 10000; ++i)
            deep += "<dir name='' visible='1' key='" + QByteArray::number(i) + "'>";
        const QList<QPair<QByteArray, RunTimeError>> rows = {
            {{}, RunTimeError::elementNotFound()}, // no such file
            {"<favoris><dir></favoris>", RunTimeError::elementNotFound()},
            {"<opml/>", RunTimeError::elementNotFound()},
            {favoris(deep + QByteArray("</dir>").repeated(10000)), RunTimeError::elementNotFound()},
            {favoris("<!-- x -->"), RunTimeError::objectNotSet()},
            {favoris("<feed name='' url=''/>"), RunTimeError::objectNotSet()},
            {favoris("<feed name='' key='1'/>"), RunTimeError::objectNotSet()},
            {favoris("<dir name='' key='1'><feed name='' url='' key='1'/></dir>"), RunTimeError::keyNotUnique()},
            {favoris("<dir name='' key='root'/>"), RunTimeError::keyNotUnique()},
            {favoris("<feed name='' url='' key='32768'/>"), RunTimeError::overflow()},
            {favoris("<feed name='' url='' key='../x'/>"), RunTimeError::typeMismatch()}, // leads elsewhere
        };
        for (const auto &[content, error] : rows) {
            if (!content.isEmpty())
                m_folder->write(u"feeds.xml"_s, content);
            QCOMPARE(errorOf([this] { restart(); }), error.number());
            QCOMPARE(m_folder->read(u"feeds.xml"_s), content);
        }
    }

    void feedsAndFoldersGoWhereTheyBelong()
    {
        // What is done, the tree then, the file where it differs, and the error of the last step.
        const QList<QPair<QString, QString>> rows = {
            // The selection decides where a feed goes.
            {u"add"_s, u"1(2 3) 4 5"_s},
            {u"select root, add"_s, u"1(2 3) 4 5"_s},
            {u"select 1, add"_s, u"1(2 3 5) 4"_s},
            {u"select 2, add"_s, u"1(2 3 5) 4"_s},
            {u"busy 4, select 4, add"_s, u"1(2 3) 4, error 91"_s},
            // A folder goes beside a feed and below the rest; the load doesn't enter a feed in flight that got one.
            {u"folder 2, folder 1, folder root, add"_s, u"1(2 3 5 6) 4 7 8"_s},
            {u"busy 4, folder 4"_s, u"1(2 3) 4(5) | 1(2 3) 4"_s},
            {u"busy 4, folder 4, idle 4, move 4 5 above"_s, u"1(2 3) | 1(2 3) 4, error 91"_s}, // below itself
            // In the file a move always takes the place before its target; a feed in flight counts as the root.
            {u"move 4 3 above"_s, u"1(2 4 3)"_s},
            {u"move 4 3 below"_s, u"1(2 3 4) | 1(2 4 3)"_s},
            {u"move 4 1 above"_s, u"1(2 3 4)"_s},
            {u"move 2 root above"_s, u"1(3) 4 2"_s},
            {u"busy 3, move 2 3 above"_s, u"1(3) 4 2"_s},
            {u"move 2 2 above, move 1 root above, move 2 none above, move none 2 above"_s, u"1(2 3) 4"_s},
            {u"move 2 4 above"_s, u"1(3) 2 4 | 1(2 3) 4, error 91"_s}, // in the tree only
        };
        for (const auto &[steps, expected] : rows) {
            start(
                "<dir name='D' key='1' visible='0'><feed name='A' url='' key='2'/><feed name='B' url='' key='3'/></dir>"
                "<feed name='C' url='c' key='4' extra='kept'/>");
            const int error = errorOf([this, &steps = steps] { follow(steps); });
            QString outcome = shape();
            QVERIFY(inner().contains("extra=\"kept\"") || inner().contains("extra='kept'"));
            restart();
            outcome += shape() == outcome ? QString() : u" | " + shape();
            QCOMPARE(error == 0 ? outcome : QString(outcome + u", error " + QString::number(error)), expected);
        }
    }

    void aNewFeedEntersFileTablesAndCache()
    {
        start({});
        m_folder->write(u"tmp.xml"_s, "<rss/>");
        m_catalogue->addFeed({u"L'été <1>"_s, u"20"_s, u"http://a/?b&c"_s, {}, {}});
        QCOMPARE(inner(), QByteArray("<feed name=\"L'été &lt;1&gt;\" url=\"http://a/?b&amp;c\" key=\"1\" ttl=\"20\" "
                                     "cache=\"-7\"/>"));
        QCOMPARE(m_catalogue->tables.updatettl.Item(key(1)), u"20"_s);
        QCOMPARE(m_catalogue->tables.updatedate.Item(key(1)).date(), m_now);
        QCOMPARE(m_catalogue->tables.nodeByKey.Item(key(1)), node(1));
        QCOMPARE(m_folder->read(u"feeds/1.xml"_s), QByteArray("<rss/>"));
        // Credentials are stored only together, and enter the tables at the next start.
        m_catalogue->addFeed({u"B"_s, {}, u"b"_s, u"user"_s, u"pässword"_s});
        m_catalogue->addFeed({u"C"_s, {}, u"c"_s, u"user"_s, {}});
        m_catalogue->addFeed({u"D"_s, {}, u"d"_s, {}, u"pässword"_s});
        QCOMPARE(m_catalogue->tables.usernames.Count(), 0);
        QCOMPARE(inner().count("username="), 1);
        QVERIFY(!inner().contains("ssword\""));
        // Without its document the addition fails at the copy only.
        QFile::remove(m_folder->file(u"tmp.xml"_s));
        QCOMPARE(errorOf([this] {
                     m_catalogue->addFeed({u"A"_s, {}, {}, {}, {}});
                 }),
                 RunTimeError::fileNotFound().number());
        QVERIFY(inner().contains("key=\"5\"") && node(5));
        restart();
        QCOMPARE(m_catalogue->tables.usernames.Keys(), QStringList{key(2)});
        QString enciphered = m_catalogue->tables.passwords.Item(key(2));
        QCOMPARE(m_cipher.DecryptString(enciphered, u"%%K9:Tm412"_s, true), u"pässword"_s);
    }

    void aFolderIsWrittenAsItIsNamedAndOpensWithItsFirstFeed()
    {
        start("<dir name='D' key='1' visible='0'/>");
        m_catalogue->createFolder(m_tree->root(), u"top"_s);
        m_catalogue->createFolder(m_tree->root(), {}); // nothing, and no key is used
        QVERIFY(inner().endsWith("<dir name=\"top\" key=\"2\" visible=\"1\"/>"));
        follow(u"select 1, add"_s);
        QCOMPARE(shape(), u"1(3) 2");
        QVERIFY(m_state->isExpanded(node(1)));
        follow(u"busy 3, folder 3"_s); // below the feed in flight, in the file as in the tree
        QVERIFY(
            inner().contains("key=\"3\" ttl=\"60\" cache=\"-7\"><dir name=\"new\" key=\"4\" visible=\"1\"/></feed>"));
    }

    void aDeletedFeedLosesItsElementAndThenItsCacheFile()
    {
        start("<feed name='A' url='' key='1'/><feed name='B' url='' key='2'/>");
        m_folder->write(u"feeds/1.xml"_s, "x");
        m_catalogue->deleteCatalogueFeed(key(1));
        m_tree->remove(node(1));
        QVERIFY(!m_folder->exists(u"feeds/1.xml"_s));
        QVERIFY(m_catalogue->tables.updatettl.Exists(key(1))); // the tables lose nothing in a run
        QCOMPARE(m_catalogue->nextKey(), qint16(3));           // and no key is given out twice in a run
        QCOMPARE(errorOf([this] { m_catalogue->deleteCatalogueFeed(key(1)); }), RunTimeError::objectNotSet().number());
        QCOMPARE(errorOf([this] { m_catalogue->deleteCatalogueFeed(key(2)); }), RunTimeError::fileNotFound().number());
        QVERIFY(m_folder->read(u"feeds.xml"_s).contains("<favoris/>")); // the file had been saved by then
        restart();
        QCOMPARE(m_catalogue->nextKey(), qint16(1));
    }

    void aDeletedFolderTakesItsFeedsButNotTheOneInFlight()
    {
        start(
            "<dir name='D' key='1' visible='1'><feed name='A' url='' key='2'/><dir name='E' key='3' visible='1'><feed "
            "name='B' url='' key='4'/></dir><feed name='C' url='' key='5'/></dir><feed name='F' url='' key='6'/>");
        for (const int number : {2, 4, 5, 6})
            m_folder->write(u"feeds/%1.xml"_s.arg(number), "x");
        m_tree->setImages(node(5), NodeImage::FeedUpdating, NodeImage::FeedUpdating);
        m_catalogue->deleteCatalogueFolder(node(1));
        QCOMPARE(inner(), QByteArray("<feed name=\"F\" url=\"\" key=\"6\"/>"));
        QVERIFY(!m_folder->exists(u"feeds/2.xml"_s) && !m_folder->exists(u"feeds/4.xml"_s));
        QVERIFY(m_folder->exists(u"feeds/5.xml"_s) && m_folder->exists(u"feeds/6.xml"_s));
        QVERIFY(node(1)); // the caller deletes the nodes
    }

    void theStateGoesIntoTheFileAtTheEnd()
    {
        start("<dir name='D' key='1' visible='1'><feed name='A' url='a' key='2' username='u' password='p' "
              "lastupdate='30/06/2004 12:00:00'/></dir>"
              "<feed name='B' url='b' key='3' username='alone' x='y'/>"
              "<other key='9'/>");
        m_state->setExpanded(node(1), false);
        m_catalogue->tables.updatettl.Replace(key(2), u"5"_s);
        m_catalogue->tables.passwords.Replace(key(2), u"q"_s);
        m_now = m_now.addDays(1);
        m_catalogue->tables.updatedate.Replace(key(3), UpdateDate(m_now));
        m_catalogue->saveCatalogueState();
        QCOMPARE(inner(),
                 QByteArray("<dir name=\"D\" key=\"1\" visible=\"0\"><feed name=\"A\" url=\"a\" key=\"2\" "
                            "username=\"u\" password=\"q\" lastupdate=\"30/06/2004 12:00:00\" ttl=\"5\" "
                            "cache=\"-7\"/></dir><feed name=\"B\" url=\"b\" key=\"3\" username=\"alone\" x=\"y\" "
                            "ttl=\"60\" cache=\"-7\" lastupdate=\"02/07/2004 14:00:00\"/><other key=\"9\"/>"));
        m_folder->write(u"feeds.xml"_s, "<favoris>");
        m_catalogue->saveCatalogueState();
        QCOMPARE(m_folder->read(u"feeds.xml"_s), QByteArray("<favoris>")); // left alone without a word
    }

    void aStateThatDoesNotFitTheFileRaisesAnError()
    {
        const QByteArray feed = "<feed name='A' url='' key='1' username='u' password='p'/>";
        const QByteArray folder = "<dir name='D' key='2' visible='1'/>";
        const auto saveOver = [&](const QByteArray &content) {
            start(feed + folder);
            m_folder->write(u"feeds.xml"_s, "<favoris>" + content + "</favoris>");
            const int error = errorOf([this] { m_catalogue->saveCatalogueState(); });
            return m_folder->read(u"feeds.xml"_s) == "<favoris>" + content + "</favoris>" ? error : -1;
        };
        [[maybe_unused]] const int notSet = RunTimeError::objectNotSet().number();
        QCOMPARE(saveOver("<feed name='A' url='' key='1' username='u'/>" + folder), notSet);
        QCOMPARE(saveOver(feed + "<dir name='D' key='2'/>"), notSet);
        QCOMPARE(saveOver(feed + folder + "<dir name='D' key='3' visible='1'/>"), notSet);
    }

    void aFullDiskLeavesTheCatalogueAsItWas()
    {
        QByteArray feeds;
        for (int i = 1; i <= 200; ++i)
            feeds += "<feed name='Feed' url='http://example.org/' key='" + QByteArray::number(i) + "'/>";
        const auto subscribe = [this] { m_catalogue->addFeed({u"A"_s, {}, {}, {}, {}}); };
        const auto remove = [this] { m_catalogue->deleteCatalogueFeed(key(1)); };
        const auto save = [this] { m_catalogue->saveCatalogueState(); };
        const auto fails = [this](const QByteArray &content, const QByteArray &document, const auto &action) {
            start(content);
            m_folder->write(u"tmp.xml"_s, document);
            const QByteArray before = m_folder->read(u"feeds.xml"_s);
            return errorOnFullDisk(4096, action) == RunTimeError::diskFull().number() &&
                   m_folder->read(u"feeds.xml"_s) == before;
        };
        QVERIFY(fails(feeds, "<rss/>", save) && fails(feeds, "<rss/>", subscribe) && fails(feeds, "<rss/>", remove));
        // The catalogue fits, the feed doesn't: without a cache file its updates would hang in every run.
        QVERIFY(fails("", "<rss>" + QByteArray(10000, ' ') + "</rss>", subscribe));
        QVERIFY(!Files::exists(m_folder->cacheFile(u"1"_s)));
    }

private:
    /// Writes `inner` as the content of the catalogue and starts afresh from it.
    void start(const QByteArray &inner)
    {
        m_folder->write(u"feeds.xml"_s, "<?xml version=\"1.0\"?>\n<favoris>" + inner + "</favoris>\n");
        restart();
    }
    void restart()
    {
        m_tree = std::make_unique<FeedTree>();
        m_state = std::make_unique<FeedTreeState>(*m_tree);
        m_catalogue = std::make_unique<FeedCatalogue>(m_folder->directory(), *m_tree, *m_state, m_cipher,
                                                      [this] { return m_now; });
        m_catalogue->loadCatalogue();
    }
    QByteArray inner() const
    {
        QByteArray text = m_folder->read(u"feeds.xml"_s);
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
    /// Steps in words: "select 1", "add" (a feed), "folder 1", "busy 1" (in flight), "idle 1", "move 1 2 above".
    void follow(const QString &steps)
    {
        for (const QString &step : steps.split(u", "_s)) {
            const QStringList words = step.split(u' ');
            const FeedNodePtr first = m_tree->find(words.value(1));
            const int image = words[0] == u"busy" ? NodeImage::FeedUpdating : NodeImage::Feed;
            if (words[0] == u"select")
                m_state->select(first);
            else if (words[0] == u"add")
                addFeed(u"new"_s);
            else if (words[0] == u"folder")
                m_catalogue->createFolder(first, u"new"_s);
            else if (words[0] == u"move")
                m_catalogue->moveFeed(first, m_tree->find(words[2]), words[3] == u"above");
            else
                m_tree->setImages(first, image, image);
        }
    }
    FeedNodePtr node(int number) const { return m_tree->find(key(number)); }
    void addFeed(const QString &title, const QString &ttl = {})
    {
        m_folder->write(u"tmp.xml"_s, title.toUtf8());
        m_catalogue->addFeed({title, ttl, u"http://example.org/"_s + title, {}, {}});
    }

    std::unique_ptr<TemporaryDataDirectory> m_folder;
    std::unique_ptr<FeedTree> m_tree;
    std::unique_ptr<FeedTreeState> m_state;
    std::unique_ptr<FeedCatalogue> m_catalogue;
    clsDES m_cipher;
    QDateTime m_now{QDate(2004, 7, 1), QTime(14, 0)};
};

QTEST_GUILESS_MAIN(FeedCatalogueTest)
#include "tst_FeedCatalogue.moc"
