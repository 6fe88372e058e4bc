// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/feed/FeedDump.h"
#include "tests/feed/FeedFiles.h"
#include "tests/fixtures/Golden.h"

#include <QTest>

/// How the texts of documents are read and written, and which documents are taken for what.
class tst_FeedFormats : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void textsAreReadAsTheirFormatSays();
    void documentsAreToldApart_data();
    void documentsAreToldApart();
    void everyEncodingIsReadAndWrittenBack();
    void aFailedLoadLeavesNothingHeld();
    void indicesOutsideAreTolerated();

private:
    FeedFiles m_files;
};

void tst_FeedFormats::textsAreReadAsTheirFormatSays()
{
    QString told;
    for (const FeedCase &each : readCases(u"readings.txt"_s)) {
        CachedFeed feed;
        QCOMPARE(feed.Load(m_files.write("feed.xml", each.documents.first())), LoadOk);
        told += u"=== "_s + each.name + u'\n' + FeedDump::all(feed).join(u'\n') + u'\n';
    }
    QCOMPARE(differenceFromGolden(u"readings.expected"_s, told), QString());
}

void tst_FeedFormats::documentsAreToldApart_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("result");
    const auto row = [](const char *name, const QByteArray &bytes, FeedLoadResult result) {
        QTest::newRow(name) << bytes << static_cast<int>(result);
    };
    const QByteArray rdf = "<RDF xmlns='http://www.w3.org/1999/02/22-rdf-syntax-ns#'>";
    row("web page", "<html><head><title>x</title></head><body/></html>", LoadNotAFeed);
    row("web page as pages are", "<!DOCTYPE html><HTML><p>one<p>two</HTML>", LoadNotAFeed);
    row("XHTML", "<html xmlns='http://www.w3.org/1999/xhtml'><body/></html>", LoadNotAFeed);
    row("capital HTML", "<HTML/>", LoadNotAFeed);
    row("document type of a page", "<!DOCTYPE html><body/>", LoadNotAFeed);
    row("document type of a page above a feed", "<!DOCTYPE html><rss version='2.0'/>", LoadOk);
    row("document type of a page above a feed of the future", "<!DOCTYPE html PUBLIC '-//x' 'y'><rss version='3.0'/>",
        LoadBadVersion);
    row("nothing", "", LoadNotAFeed);
    row("text", "no feed", LoadNotAFeed);
    row("cut short", "<rss version='2.0'><channel>", LoadNotAFeed);
    row("two roots", "<rss version='2.0'/><rss version='2.0'/>", LoadNotAFeed);
    row("undeclared entity", "<rss version='2.0'><channel><title>&eacute;</title></channel></rss>", LoadNotAFeed);
    row("undeclared entity in a document type",
        "<!DOCTYPE rss PUBLIC '-//Netscape Communications//DTD RSS 0.91//EN' 'rss-0.91.dtd'>"
        "<rss version='0.91'><channel><title>&euro;</title></channel></rss>",
        LoadNotAFeed);
    row("Latin-1 entity of another document type",
        "<!DOCTYPE rss SYSTEM 'other.dtd'><rss version='0.91'><channel><title>&eacute;</title></channel></rss>",
        LoadNotAFeed);
    row("two colons in a name", "<rss version='2.0' xmlns:xmlns:a='urn:a'/>", LoadNotAFeed);
    row("undeclared prefix", "<rss version='2.0' a:b='c'><d:e/></rss>", LoadOk);
    row("namespaces that are no URI", "<rss version='2.0' xmlns:a='a b' xmlns:c='{x}' xmlns:d='é&#10;'><a:b/></rss>",
        LoadOk);
    row("gzip", QByteArray::fromHex("1f8b08000000000000032b2a2e5628"), LoadNotAFeed);
    row("RSS of the future", "<rss version='3.0'/>", LoadBadVersion);
    row("RSS 0.93", "<rss version='0.93'><channel/></rss>", LoadBadVersion);
    row("RSS without version", "<rss><channel/></rss>", LoadBadVersion);
    row("RSS 0.90", rdf + "<channel xmlns='http://my.netscape.com/rdf/simple/0.9/'/></RDF>", LoadBadVersionOther);
    row("RSS 1.1", "<Channel xmlns='http://purl.org/net/rss1.1#'/>", LoadBadVersionOther);
    row("Atom 1.0", "<feed xmlns='http://www.w3.org/2005/Atom'/>", LoadBadVersionOther);
    row("Atom 0.2", "<feed version='0.2' xmlns='http://purl.org/atom/ns#'/>", LoadBadVersionOther);
    row("Atom without version", "<feed xmlns='http://purl.org/atom/ns#'/>", LoadBadVersionOther);
    for (const char *draft : {"http://example.com/newformat#", "http://example.com/necho", "http://purl.org/echo/",
                              "http://purl.org/pie/", "uri/of/echo/namespace#"})
        row(draft, "<feed version='0.2' xmlns='" + QByteArray(draft) + "'/>", LoadBadVersionOther);
    row("OPML", "<opml version='1.1'><body/></opml>", LoadUnknownFormat);
    row("RDF without channel", rdf + "<item xmlns='http://purl.org/rss/1.0/'/></RDF>", LoadUnknownFormat);
    row("RDF by another name",
        "<Bag xmlns='http://www.w3.org/1999/02/22-rdf-syntax-ns#'><channel xmlns='http://purl.org/rss/1.0/'/></Bag>",
        LoadUnknownFormat);
    row("RDF of a strange namespace", "<RDF xmlns='urn:x'><channel xmlns='http://purl.org/rss/1.0/'/></RDF>",
        LoadUnknownFormat);
    row("rss of a strange namespace", "<rss version='2.0' xmlns='urn:x'/>", LoadUnknownFormat);
    row("RSS 2.0 with a default namespace", "<rss version='2.0' xmlns='http://blogs.law.harvard.edu/tech/rss'/>",
        LoadOk);
    row("RSS without channel", "<rss version='2.0'/>", LoadOk);
    row("RDF with an empty channel", rdf + "<channel xmlns='http://purl.org/rss/1.0/'/></RDF>", LoadOk);
    row("empty Atom", "<feed version='0.3' xmlns='http://purl.org/atom/ns#'/>", LoadOk);
}

void tst_FeedFormats::documentsAreToldApart()
{
    QFETCH(const QByteArray, bytes);
    QFETCH(const int, result);
    CachedFeed feed;
    QCOMPARE(static_cast<int>(feed.Load(m_files.write("feed.xml", bytes))), result);
    QCOMPARE(feed.IsLoaded(), result == LoadOk);
    QCOMPARE(feed.ItemCount(), qint16(0));
}

/// The title of the store, and an item whose characters its encoding may lack, all seen in the file and read again.
void tst_FeedFormats::everyEncodingIsReadAndWrittenBack()
{
    const auto declared = [](const char *encoding, const QByteArray &title) -> QByteArray {
        return rss("<title>" + title + "</title>", "<?xml version='1.0' encoding='" + QByteArray(encoding) + "'?>");
    };
    const QString wide = u"\uFEFF<rss version='2.0'><channel><title>é日€</title></channel></rss>"_s;
    const QByteArray item = "<title>\xC3\xA9 \xE2\x82\xAC \xE6\x97\xA5 \xF0\x9F\x8C\x99</title><description>"
                            "<![CDATA[<\xE6\x97\xA5>]]></description></item>";
    const QByteArrayList stores = {"\xEF\xBB\xBF<?xml version='1.0'?>" + rss("<title>\xC3\xA9</title>"),
                                   declared("ISO-8859-1", "\xE9"),
                                   declared("iso-8859-15", "\xA4"),
                                   declared("windows-1252", "\x80\x93"),
                                   declared("Shift_JIS", "\x93\xFA\x96\x7B"),
                                   declared("KOI8-R", "\xED\xC9\xD2"),
                                   declared("utf-8", "\xC3\xA9"),
                                   declared("UTF-7", "t"), // isn't read as it is written
                                   QByteArray(reinterpret_cast<const char *>(wide.utf16()), wide.size() * 2)};
    QString told;
    for (const char *const itemTag : {"<item>", "<item \xE6\x97\xA5='1'>"}) { // a name can't be written as a reference
        for (const QByteArray &store : stores) {
            CachedFeed other, feed([] { return QDateTime({2004, 7, 1}, {14, 0}, Qt::UTC); });
            QCOMPARE(other.Load(m_files.write("other.xml", rss(QByteArray(itemTag) + item))), LoadOk);
            QCOMPARE(feed.Load(m_files.write("feed.xml", store)), LoadOk);
            QVERIFY(feed.AddItem(other.GetItemNode(0)));
            feed.Save();
            for (const char byte : m_files.read("feed.xml"))
                told += byte == '\n' || (byte >= ' ' && byte < 0x7F) ? QString(QLatin1Char(byte))
                                                                     : u'\\' + QString::number(uchar(byte), 16);
            QCOMPARE(feed.Load(m_files.path("feed.xml")), LoadOk);
            told += u'\n' + FeedDump::all(feed).join(u'\n') + u"\n\n"_s;
        }
    }
    QCOMPARE(differenceFromGolden(u"encodings.expected"_s, told), QString());
}

void tst_FeedFormats::aFailedLoadLeavesNothingHeld()
{
    CachedFeed feed;
    for (const QString &bad : {m_files.write("bad.xml", "no feed"), m_files.path("absent"), m_files.path(".")}) {
        QCOMPARE(feed.Load(m_files.writeSample("feed.xml", "rss20.xml")), LoadOk);
        QCOMPARE(feed.Path(), m_files.path("feed.xml"));
        QCOMPARE(int(feed.Load(bad)), bad.endsWith(".xml"_L1) ? 1 : 0); // numbers that are part of the interface
        FeedImage image;
        image.Url = u"old"_s;
        QVERIFY(!feed.IsLoaded() && !feed.IsStale() && feed.Path().isEmpty() && !feed.GetImage(image));
        QCOMPARE(image.Url, u"old"_s);
        QCOMPARE(FeedDump::all(feed), (QStringList{u"Version: 0"_s, u"Items: 0"_s}));
        QVERIFY(feed.GetItemNode(0) == nullptr && !feed.AddItem(nullptr) && !feed.SaveWithin(1000));
        feed.GiveUpMarks();
        feed.Save();
        feed.Restore();
    }
    QCOMPARE(m_files.read("bad.xml"), QByteArray("no feed"));
}

void tst_FeedFormats::indicesOutsideAreTolerated()
{
    CachedFeed feed;
    QCOMPARE(feed.Load(m_files.write("feed.xml", rss("<item/><item/><item/>"))), LoadOk);
    for (const qint16 index : {qint16(-1), qint16(3), qint16(32767), qint16(-32768)}) {
        QCOMPARE(FeedDump::item(feed, index), QStringList());
        QCOMPARE(feed.ItemDownloadDate(index), QString());
        feed.SetItemRead(index, true);
        feed.DeleteItem(index);
        feed.RemoveItem(index);
        QVERIFY(!feed.AddItem(feed.GetItemNode(index)));
        QVERIFY(!feed.IsItemRead(index) && !feed.IsItemDeleted(index));
    }
    QCOMPARE(feed.ItemCount(), qint16(3));
}

QTEST_GUILESS_MAIN(tst_FeedFormats)
#include "tst_FeedFormats.moc"
