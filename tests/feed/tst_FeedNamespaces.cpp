// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/feed/CachedFeed.h"
#include "platform/DateText.h"
#include "platform/Files.h"
#include "platform/Literals.h"
#include "tests/feed/FeedDump.h"

#include <QTemporaryDir>
#include <QTest>

/// What the names of items mean in the document that they are taken into, and after it was saved.
class tst_FeedNamespaces : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void copiesKeepTheirNamespaces_data();
    void copiesKeepTheirNamespaces();
    void anUndeclaredPrefixGetsNoMeaning_data();
    void anUndeclaredPrefixGetsNoMeaning();
    void whatEntitiesHoldKeepsItsNamespaces();

private:
    QString path(const char *name) const { return m_directory.filePath(QLatin1String(name)); }
    QString write(const char *name, const QByteArray &bytes) const
    {
        Files::write(path(name), bytes);
        return path(name);
    }
    static QByteArray rss(const QByteArray &items)
    {
        return "<rss version=\"2.0\"><channel><title>t</title>" + items + "</channel></rss>";
    }

    QTemporaryDir m_directory;
    Clock m_clock = [] { return QDateTime(QDate(2004, 7, 1), QTime(14, 0)); };
};

void tst_FeedNamespaces::copiesKeepTheirNamespaces_data()
{
    QTest::addColumn<QByteArray>("from");
    QTest::addColumn<QByteArray>("into");
    const QByteArray dc = "http://purl.org/dc/elements/1.1/";
    const QByteArray item = "<title>t</title><dc:creator>c</dc:creator>";
    QTest::newRow("declared on the root")
        << QByteArray("<rss version='2.0' xmlns:dc='" + dc + "'><channel><item>" + item + "</item></channel></rss>")
        << rss({});
    QTest::newRow("prefix that means something else here")
        << QByteArray("<rss version='2.0' xmlns:dc='" + dc + "'><channel><item>" + item + "</item></channel></rss>")
        << QByteArray("<rss version='2.0' xmlns:dc='urn:other'><channel><dc:x/></channel></rss>");
    QTest::newRow("default namespace there, none here")
        << QByteArray("<rss version='2.0' xmlns='http://backend.userland.com/rss2' xmlns:dc='" + dc +
                      "'><channel><item>" + item + "</item></channel></rss>")
        << rss({});
    QTest::newRow("none there, default namespace here")
        << QByteArray("<rss version='2.0' xmlns:dc='" + dc + "'><channel><item>" + item + "</item></channel></rss>")
        << QByteArray("<rss version='2.0' xmlns='http://backend.userland.com/rss2'><channel/></rss>");
    const QByteArray rdf = "http://www.w3.org/1999/02/22-rdf-syntax-ns#";
    QTest::newRow("prefixed there, default namespace here, and an element of no namespace")
        << QByteArray("<r:RDF xmlns:r='" + rdf + "' xmlns:s='http://purl.org/rss/1.0/' xmlns:dc='" + dc +
                      "'><s:channel/><s:item><title>of no namespace</title><dc:title>t</dc:title>"
                      "<dc:creator>c</dc:creator></s:item></r:RDF>")
        << QByteArray("<r:RDF xmlns:r='" + rdf + "' xmlns='http://purl.org/rss/1.0/'><channel/></r:RDF>");
    QTest::newRow("none in an element of one, default namespace here")
        << QByteArray("<rss version='2.0' xmlns:dc='" + dc +
                      "'><channel><item><dc:title>t</dc:title><dc:creator>c</dc:creator><dc:x><y/></dc:x><title/>"
                      "</item></channel></rss>")
        << QByteArray("<rss version='2.0' xmlns='http://backend.userland.com/rss2'><channel/></rss>");
    QTest::newRow("namespace of the items declared on the channel only")
        << QByteArray("<rss version='2.0' xmlns:dc='" + dc + "'><channel><item>" + item + "</item></channel></rss>")
        << QByteArray("<r:RDF xmlns:r='" + rdf + "'><channel xmlns='http://purl.org/rss/1.0/'/></r:RDF>");
}

void tst_FeedNamespaces::copiesKeepTheirNamespaces()
{
    QFETCH(const QByteArray, from);
    QFETCH(const QByteArray, into);
    CachedFeed source(m_clock);
    QCOMPARE(source.Load(write("source.xml", from)), LoadOk);
    CachedFeed store(m_clock);
    QCOMPARE(store.Load(write("store.xml", into)), LoadOk);
    store.AddItem(source.GetItemNode(0));
    store.AddItem(source.GetItemNode(0));
    store.Save();
    QCOMPARE(store.Load(path("store.xml")), LoadOk);
    QCOMPARE(store.ItemCount(), qint16(2));
    for (const qint16 index : {qint16(0), qint16(1)}) {
        QCOMPARE(store.ItemTitle(index), u"t"_s);
        QCOMPARE(store.ItemAuthor(index), u"c"_s);
    }
    QVERIFY(Files::read(path("store.xml")).bytes.count("elements/1.1/") <= 2); // declared once, or once an item
}

void tst_FeedNamespaces::anUndeclaredPrefixGetsNoMeaning_data()
{
    QTest::addColumn<QByteArray>("from");
    QTest::addColumn<QByteArray>("into");
    const QByteArray ours = " xmlns:quillwire='urn:quillwire:marks' xmlns:dc='http://purl.org/dc/elements/1.1/'"
                            " xmlns:content='http://purl.org/rss/1.0/modules/content/'";
    const QByteArray declares = "<rss version='2.0'" + ours + "><channel><item/></channel></rss>";
    const QByteArray rdfName = "'http://www.w3.org/1999/02/22-rdf-syntax-ns#'";
    const auto rdf = [&](const QByteArray &more, const QByteArray &item) -> QByteArray {
        return "<r:RDF xmlns:r=" + rdfName + " xmlns='http://purl.org/rss/1.0/'" + more + "><channel/>" + item +
               "</r:RDF>";
    };
    const QByteArray marks = "quillwire:read='1' quillwire:deleted='1' quillwire:downloaded='2001-01-01T00:00:00Z'";
    QTest::newRow("marks") << rss("<item " + marks + "><title>t</title></item>") << declares;
    QTest::newRow("elements") << rss("<item><title/><dc:title>x</dc:title><dc:creator>x</dc:creator>"
                                     "<content:encoded>x</content:encoded></item>")
                              << declares;
    QTest::newRow("elements and attributes in a title")
        << rss("<item><title>a <dc:b quillwire:read='1' dc:c='2'>x</dc:b> &amp; b</title></item>") << declares;
    QTest::newRow("elements below an element")
        << rss("<item><title>t</title><media><dc:creator quillwire:read='1'/></media></item>") << declares;
    QTest::newRow("two prefixes, of one namespace there")
        << rss("<item a:k='1' b:k='2'><title>t</title></item>")
        << QByteArray("<rss version='2.0' xmlns:a='urn:u' xmlns:b='urn:u'><channel/></rss>");
    QTest::newRow("about") << rdf({}, "<item rdf:about='http://e.example/'><title>t</title></item>")
                           << rdf(" xmlns:rdf=" + rdfName, {});
    QTest::newRow("into another format, whose own names then stand beside it")
        << rss("<item dc:creator='x'><title>t</title><dc:creator>x</dc:creator></item>")
        << rdf({}, "<item><title>u</title><dc:creator>y</dc:creator><rdf:x quillwire:read='1'/></item>");
    QTest::newRow("prefix of the marks bound by the channel, and used below the item")
        << QByteArray("<rss version='2.0'><channel xmlns:quillwire='urn:theirs'><item quillwire:read='1'>"
                      "<title>t</title><quillwire:x y:z='1'/></item></channel></rss>")
        << QByteArray("<rss version='2.0' xmlns:quillwire='urn:quillwire:marks'><channel xmlns:quillwire='urn:theirs'>"
                      "<item><title>u</title><quillwire:read/></item></channel></rss>");
    QTest::newRow("the name that we give it, declared for another prefix")
        << rss("<item xmlns:p='urn:quillwire:undeclared:o' p:k='1' o:k='2'><title>t</title></item>") << declares;
    QTest::newRow("a prefix that is never to be declared")
        << rss("<item><title>t <xmlns:a/></title><xmlns:b/></item>") << declares;
}

void tst_FeedNamespaces::anUndeclaredPrefixGetsNoMeaning()
{
    QFETCH(const QByteArray, from);
    QFETCH(const QByteArray, into);
    CachedFeed fresh(m_clock);
    CachedFeed store(m_clock);
    QCOMPARE(fresh.Load(write("fresh.xml", from)), LoadOk);
    QCOMPARE(store.Load(write("store.xml", into)), LoadOk);
    const QStringList before = FeedDump::item(fresh, 0);
    QVERIFY(fresh.ItemAuthor(0).isEmpty());
    QVERIFY(store.AddItem(fresh.GetItemNode(0)));
    for (CachedFeed *feed : {&fresh, &store})
        for (int round = 0; round < 2; ++round) {
            QVERIFY(!feed->IsItemRead(0) && !feed->IsItemDeleted(0));
            QCOMPARE(FeedDump::item(*feed, 0), before);
            QVERIFY(DateText::fromText(feed->ItemDownloadDate(0)).date().year() > 2001);
            feed->Save();
            QCOMPARE(feed->Load(path(feed == &fresh ? "fresh.xml" : "store.xml")), LoadOk);
        }
    fresh.SetItemRead(0, true);
    fresh.Save();
    QCOMPARE(fresh.Load(path("fresh.xml")), LoadOk);
    QVERIFY(fresh.IsItemRead(0));
}

void tst_FeedNamespaces::whatEntitiesHoldKeepsItsNamespaces()
{
    const QString file = write(
        "feed.xml", "<!DOCTYPE RDF [<!ENTITY e \"<item r:about='urn:a'><x:title>x</x:title><title>t</title><d:creator>"
                    "c</d:creator></item>\">]><r:RDF xmlns='http://purl.org/rss/1.0/' xmlns:x='urn:x'"
                    " xmlns:r='http://www.w3.org/1999/02/22-rdf-syntax-ns#' xmlns:d='http://purl.org/dc/elements/1.1/'>"
                    "<channel/>&e;<z xmlns='urn:z'>&e;</z>&e;</r:RDF>");
    CachedFeed feed(m_clock);
    for (int round = 0; round < 2; ++round) {
        QCOMPARE(feed.Load(file), LoadOk);
        QCOMPARE(feed.ItemCount(), qint16(2));
        QCOMPARE(feed.ItemTitle(1), u"t"_s);
        QCOMPARE(feed.ItemAuthor(1), u"c"_s);
        feed.Save();
    }
}

QTEST_GUILESS_MAIN(tst_FeedNamespaces)
#include "tst_FeedNamespaces.moc"
