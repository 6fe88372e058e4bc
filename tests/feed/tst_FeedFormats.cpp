// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/feed/CachedFeed.h"
#include "platform/Files.h"
#include "platform/Literals.h"
#include "tests/feed/FeedDump.h"

#include <QDir>
#include <QStringEncoder>
#include <QTemporaryDir>
#include <QTest>

/// What the documents of each format say, and which documents are taken for what.
class tst_FeedFormats : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyFieldComesFromItsElement_data();
    void everyFieldComesFromItsElement();
    void documentsAreToldApart_data();
    void documentsAreToldApart();
    void everyEncodingIsReadAndWrittenBack_data();
    void everyEncodingIsReadAndWrittenBack();
    void anEncodingThatCannotHoldTheDocumentGivesWayToUtf8_data();
    void anEncodingThatCannotHoldTheDocumentGivesWayToUtf8();
    void aFailedLoadLeavesNothingHeld();
    void indicesOutsideAreTolerated();

private:
    QString write(const QByteArray &bytes) const
    {
        const QString path = m_directory.filePath(u"feed.xml"_s);
        Files::write(path, bytes);
        return path;
    }

    QTemporaryDir m_directory;
};

void tst_FeedFormats::everyFieldComesFromItsElement_data()
{
    QTest::addColumn<QString>("document");
    QTest::addColumn<QString>("expected");
    const QDir data(QString::fromUtf8(TEST_DATA_DIR));
    const QDir samples(QString::fromUtf8(SAMPLES_DIR));
    const QStringList names = data.entryList({u"*.expected"_s});
    QVERIFY(names.size() >= 10);
    for (const QString &name : names) {
        const QString document = QString(name).replace(".expected"_L1, ".xml"_L1);
        QTest::newRow(qPrintable(document))
            << (data.exists(document) ? data.filePath(document) : samples.filePath(document)) << data.filePath(name);
    }
}

void tst_FeedFormats::everyFieldComesFromItsElement()
{
    QFETCH(const QString, document);
    QFETCH(const QString, expected);
    CachedFeed feed;
    QCOMPARE(feed.Load(document), LoadOk);
    const QString text = QString::fromUtf8(Files::read(expected).bytes);
    QCOMPARE(FeedDump::all(feed).join(u'\n') + u'\n', text);
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
    QCOMPARE(static_cast<int>(feed.Load(write(bytes))), result);
    QCOMPARE(feed.IsLoaded(), result == LoadOk);
    QCOMPARE(feed.ItemCount(), qint16(0));
}

void tst_FeedFormats::everyEncodingIsReadAndWrittenBack_data()
{
    QTest::addColumn<QByteArray>("declaration");
    QTest::addColumn<QByteArray>("title"); // in that encoding
    QTest::addColumn<QString>("expected");
    QTest::newRow("UTF-8 with mark") << QByteArray("\xEF\xBB\xBF<?xml version='1.0'?>") << QByteArray("\xC3\xA9")
                                     << u"é"_s;
    QTest::newRow("ISO-8859-1") << QByteArray("<?xml version='1.0' encoding='ISO-8859-1'?>") << QByteArray("\xE9")
                                << u"é"_s;
    QTest::newRow("ISO-8859-15") << QByteArray("<?xml version='1.0' encoding='iso-8859-15'?>") << QByteArray("\xA4")
                                 << u"€"_s;
    QTest::newRow("windows-1252") << QByteArray("<?xml version='1.0' encoding='windows-1252'?>")
                                  << QByteArray("\x80\x93") << u"€“"_s;
    QTest::newRow("Shift_JIS") << QByteArray("<?xml version='1.0' encoding='Shift_JIS'?>")
                               << QByteArray("\x93\xFA\x96\x7B") << u"日本"_s;
    QTest::newRow("KOI8-R") << QByteArray("<?xml version='1.0' encoding='KOI8-R'?>") << QByteArray("\xED\xC9\xD2")
                            << u"Мир"_s;
    QTest::newRow("UTF-16") << QByteArray() << QByteArray() << u"é日€"_s;
}

void tst_FeedFormats::everyEncodingIsReadAndWrittenBack()
{
    QFETCH(const QByteArray, declaration);
    QFETCH(const QByteArray, title);
    QFETCH(const QString, expected);
    const bool utf16 = declaration.isEmpty();
    QByteArray bytes = declaration + "<rss version='2.0'><channel><title>" + title + "</title></channel></rss>";
    if (utf16) {
        QStringEncoder encoder(QStringEncoder::Utf16LE, QStringEncoder::Flag::WriteBom);
        bytes = encoder(u"<rss version='2.0'><channel><title>é日€</title></channel></rss>");
    }
    const QString path = write(bytes);
    CachedFeed feed;
    QCOMPARE(feed.Load(path), LoadOk);
    QCOMPARE(feed.Title(), expected);

    // An item whose characters the encoding lacks in part.
    CachedFeed other;
    const QString otherPath = m_directory.filePath(u"other.xml"_s);
    Files::write(otherPath,
                 "<rss version='2.0'><channel><item><title>\xC3\xA9 \xE2\x82\xAC \xE6\x97\xA5 \xF0\x9F\x8C\x99"
                 "</title><description><![CDATA[\xE6\x97\xA5]]></description></item></channel></rss>");
    QCOMPARE(other.Load(otherPath), LoadOk);
    feed.AddItem(other.GetItemNode(0));
    feed.Save();

    const QByteArray saved = Files::read(path).bytes;
    if (utf16)
        QVERIFY(saved.startsWith("\xFF\xFE"));
    else
        QVERIFY(saved.contains(QByteArray("<title>" + title + "</title>")));
    QCOMPARE(feed.Load(path), LoadOk);
    QCOMPARE(feed.Title(), expected);
    QCOMPARE(feed.ItemTitle(0), u"é € 日 🌙"_s);
    QCOMPARE(feed.ItemDescription(0), u"日"_s);
}

void tst_FeedFormats::anEncodingThatCannotHoldTheDocumentGivesWayToUtf8_data()
{
    QTest::addColumn<QByteArray>("store");
    QTest::newRow("a name that it lacks the characters of")
        << QByteArray("<?xml version='1.0' encoding='ISO-8859-1'?><rss version='2.0'><channel/></rss>");
    QTest::newRow("an encoding that isn't read as it is written")
        << QByteArray("<?xml version='1.0' encoding='UTF-7'?><rss version='2.0'><channel/></rss>");
}

void tst_FeedFormats::anEncodingThatCannotHoldTheDocumentGivesWayToUtf8()
{
    QFETCH(const QByteArray, store);
    const QString otherPath = m_directory.filePath(u"other.xml"_s);
    Files::write(
        otherPath,
        "<rss version='2.0'><channel><item \xE6\x97\xA5='1'><title>\xE6\x97\xA5</title></item></channel></rss>");
    CachedFeed other;
    QCOMPARE(other.Load(otherPath), LoadOk);
    const QString path = write(store);
    CachedFeed feed;
    QCOMPARE(feed.Load(path), LoadOk);
    feed.AddItem(other.GetItemNode(0));
    feed.Save();
    QVERIFY(Files::read(path).bytes.startsWith("<?xml version=\"1.0\" encoding=\"UTF-8\"?>"));
    QCOMPARE(feed.Load(path), LoadOk);
    QCOMPARE(feed.ItemTitle(0), u"日"_s);
}

void tst_FeedFormats::aFailedLoadLeavesNothingHeld()
{
    CachedFeed feed;
    const QString good = QString::fromUtf8(SAMPLES_DIR "/rss20.xml");
    for (const QString &bad : {write("no feed"), m_directory.filePath(u"absent"_s), m_directory.path()}) {
        QCOMPARE(feed.Load(good), LoadOk);
        QCOMPARE(feed.Load(bad), bad.endsWith(".xml"_L1) ? LoadNotAFeed : LoadFileNotFound);
        QVERIFY(!feed.IsLoaded());
        QCOMPARE(feed.Title(), QString());
        QVERIFY(feed.GetItemNode(0) == nullptr);
        feed.Save();
    }
    QCOMPARE(Files::read(m_directory.filePath(u"feed.xml"_s)).bytes, QByteArray("no feed"));
}

void tst_FeedFormats::indicesOutsideAreTolerated()
{
    CachedFeed feed;
    QCOMPARE(feed.Load(QString::fromUtf8(SAMPLES_DIR "/rss20.xml")), LoadOk);
    for (const qint16 index : {qint16(-1), qint16(3), qint16(32767), qint16(-32768)}) {
        QCOMPARE(FeedDump::item(feed, index), QStringList());
        QCOMPARE(feed.ItemDownloadDate(index), QString());
        feed.SetItemRead(index, true);
        feed.DeleteItem(index);
        feed.RemoveItem(index);
        feed.AddItem(feed.GetItemNode(index));
        QVERIFY(!feed.IsItemRead(index) && !feed.IsItemDeleted(index));
    }
    QCOMPARE(feed.ItemCount(), qint16(3));
}

QTEST_GUILESS_MAIN(tst_FeedFormats)
#include "tst_FeedFormats.moc"
