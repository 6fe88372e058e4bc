// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/feed/CachedFeed.h"
#include "platform/Files.h"
#include "platform/Literals.h"
#include "platform/xml/XmlDocument.h"

#include <QTemporaryDir>
#include <QTest>

/// The gate to the XML library, which feeds and the program's own documents pass alike: in what they are judged alike
/// and in what not, and that what is written can be read again.
class tst_XmlGate : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void documentsAreJudgedByTheBoundsOfTheirUser_data();
    void documentsAreJudgedByTheBoundsOfTheirUser();
    void whatIsWrittenReadsBackTheSame_data();
    void whatIsWrittenReadsBackTheSame();
    void aCopiedItemKeepsTheAddressOfItsNamespace();

private:
    QString write(const char *name, const QByteArray &bytes) const
    {
        QString path = m_directory.filePath(QLatin1String(name));
        Files::write(path, bytes);
        return path;
    }
    static bool passes(const QByteArray &bytes)
    {
        XmlDocument document;
        return document.loadXml(bytes) == XmlDocument::LoadResult::Loaded;
    }

    QTemporaryDir m_directory;
};

void tst_XmlGate::documentsAreJudgedByTheBoundsOfTheirUser_data()
{
    QTest::addColumn<QByteArray>("documentType");
    QTest::addColumn<QByteArray>("channel");
    QTest::addColumn<bool>("ownDocumentPasses");
    QTest::addColumn<bool>("feedPasses");
    const auto row = [](const char *name, const QByteArray &type, const QByteArray &channel, bool own, bool feed) {
        QTest::newRow(name) << type << channel << own << feed;
    };
    const QByteArray open = QByteArray("<b>").repeated(130);
    const QByteArray close = QByteArray("</b>").repeated(130);
    row("plain", {}, "<title>t</title>", true, true);
    row("not well-formed", {}, "<title>", false, false);
    row("a reserved prefix", {}, "<title xmlns:xml='urn:x'/>", true, false);
    row("an undeclared prefix", {}, "<a:b c:d='e'/>", true, true);
    row("two colons in a name", {}, "<a:b:c xmlns:a='urn:a'/>", true, false);
    row("an undeclared entity", {}, "&e;", false, false);
    row("an undeclared entity, and a document type elsewhere", "<!DOCTYPE rss SYSTEM 'elsewhere'>", "&e;", true, false);
    row("an entity of a document type that is known", "<!DOCTYPE rss SYSTEM 'rss-0.91.dtd'>", "&eacute;", true, true);
    row("a parameter entity", "<!DOCTYPE rss [<!ENTITY % p \"<!ENTITY e 'x'>\">%p;]>", "&e;", false, true);
    row("a thousand and one parameter entities",
        "<!DOCTYPE rss [<!ENTITY % p ' '>" + QByteArray("%p;").repeated(1001) + "]>", {}, false, false);
    row("depth that lies in entities",
        "<!DOCTYPE rss [<!ENTITY a '" + open + close + "'><!ENTITY b '" + open + "&a;" + close + "'>]>", "&b;", false,
        false);
    row("an attribute of 20 MB", {}, "<a b='" + QByteArray(20000000, 'x') + "'/>", false, false);
    row("compressed", QByteArray::fromHex("1f8b08000000000000032b2a2e5628"), {}, false, false);
}

void tst_XmlGate::documentsAreJudgedByTheBoundsOfTheirUser()
{
    QFETCH(const QByteArray, documentType);
    QFETCH(const QByteArray, channel);
    const QByteArray bytes = documentType + "<rss version='2.0'><channel>" + channel + "</channel></rss>";
    QTEST(passes(bytes), "ownDocumentPasses");
    CachedFeed feed;
    QTEST(feed.Load(write("feed.xml", bytes)) == LoadOk, "feedPasses");
}

void tst_XmlGate::whatIsWrittenReadsBackTheSame_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QByteArray>("written"); // must occur in what is written
    QTest::addColumn<bool>("isFeed");
    const auto row = [](const char *name, const QByteArray &type, const QByteArray &item, const QByteArray &written,
                        bool isFeed = true) {
        const QByteArray rss = "<rss version='2.0'><channel><item " + item + "</channel></rss>";
        QTest::newRow(name) << type + rss << written << isFeed;
        const QByteArray latin = "<?xml version='1.0' encoding='ISO-8859-1'?>";
        QTest::addRow("%s, in Latin-1", name) << latin + type + rss << written << isFeed;
    };
    row("ampersand in a namespace", {}, "xmlns:n='http://e.example/?a=1&amp;b=2' n:k='v'/>",
        "xmlns:n=\"http://e.example/?a=1&amp;b=2\" n:k=\"v\"");
    row("ampersand in a default namespace", {}, "><p xmlns='http://e.example/?a&amp;b'><q/></p></item>",
        "<p xmlns=\"http://e.example/?a&amp;b\"><q/></p>");
    row("ampersand in a namespace within an entity", "<!DOCTYPE rss [<!ENTITY e '<p xmlns=\"urn:a?b&#38;amp;c\"/>'>]>",
        ">&e;</item>", "<p xmlns=\"urn:a?b&amp;c\"/>");
    row("quotes and angles in a namespace", {}, "xmlns:n='&lt;a b=\"c\">&apos;' n:k='v'/>",
        "xmlns:n=\"&lt;a b=&quot;c&quot;>'\"");
    row("a reference in a namespace", {}, "xmlns:n='urn:&amp;amp;' n:k='v'/>", "xmlns:n=\"urn:&amp;amp;\"");
    row("line breaks in a namespace", {}, "xmlns:n='a&#10;b&#9;c&#13;' n:k='v'/>", "xmlns:n=\"a&#10;b&#9;c&#13;\"");
    row("default of an attribute",
        "<!DOCTYPE rss [<!ATTLIST item a CDATA 'x &lt; &amp; \" &apos; &#10; y' b (u|v) 'u'>]>", "/>",
        "\"x &lt; &amp; &quot; ' &#10; y\"");
    row("namespace by default of an attribute",
        "<!DOCTYPE rss [<!ATTLIST item xmlns:n CDATA 'http://e.example/?a&amp;b'>]>", "n:k='v'/>",
        "\"http://e.example/?a&amp;b\"");
    row("entities", "<!DOCTYPE rss [<!ENTITY e 'a&#38;amp;b \"c\" &#60;i>&#8364;&#60;/i>'><!ENTITY f \"it's\">]>",
        ">&e;&f;</item>", "a&amp;b \"c\" <i>");
    row("names of what lies outside",
        "<!DOCTYPE rss PUBLIC \"it's\" 'a&b\"c' [<!NOTATION n SYSTEM 'a&b\"c'><!ENTITY u SYSTEM 'x&y' NDATA n>]>", "/>",
        "\"it's\" 'a&b\"c'");
    row("comments and instructions", "<!DOCTYPE rss [<!-- a & <b> --><?c & <d> ?>]>",
        "><!-- a & --><?c & <d> ?></item>", "<!-- a & --><?c & <d> ?>");
    const QString utf16 = u"\uFEFF<rss version='2.0'><channel><title>é</title></channel></rss>"_s;
    QTest::newRow("UTF-16 that says so by its mark alone")
        << QByteArray(reinterpret_cast<const char *>(utf16.utf16()), utf16.size() * 2) << QByteArray("\xE9\0<\0/", 5)
        << true;
}

void tst_XmlGate::whatIsWrittenReadsBackTheSame()
{
    QFETCH(const QByteArray, bytes);
    QFETCH(const QByteArray, written);
    QFETCH(const bool, isFeed);
    XmlDocument document;
    QCOMPARE(document.loadXml(bytes), XmlDocument::LoadResult::Loaded);
    const QByteArray once = document.toBytes();
    QVERIFY2(once.contains(written), once);
    QCOMPARE(document.toBytes(), once); // writing leaves the document as it is
    QCOMPARE(document.loadXml(once), XmlDocument::LoadResult::Loaded);
    QCOMPARE(document.toBytes(), once);
    const QString markup = document.documentElement().xml();
    QCOMPARE(document.loadXml(markup), XmlDocument::LoadResult::Loaded);
    QCOMPARE(document.documentElement().xml(), markup);

    const QString path = write("feed.xml", bytes);
    CachedFeed feed;
    QCOMPARE(feed.Load(path), isFeed ? LoadOk : LoadNotAFeed);
    if (!isFeed)
        return;
    feed.Save();
    QVERIFY2(Files::read(path).bytes.contains(written), Files::read(path).bytes);
    QCOMPARE(feed.Load(path), LoadOk);
}

void tst_XmlGate::aCopiedItemKeepsTheAddressOfItsNamespace()
{
    CachedFeed source;
    QCOMPARE(source.Load(write("source.xml", "<rss version='2.0' xmlns:n='http://e.example/?a&amp;b'><channel>"
                                             "<item><title>t</title><n:x/></item></channel></rss>")),
             LoadOk);
    const QString path = write("store.xml", "<rss version='2.0'><channel/></rss>");
    CachedFeed store;
    QCOMPARE(store.Load(path), LoadOk);
    store.AddItem(source.GetItemNode(0));
    store.Save();
    QCOMPARE(store.Load(path), LoadOk);
    QCOMPARE(store.ItemTitle(0), u"t"_s);
    QVERIFY(Files::read(path).bytes.contains("xmlns:n=\"http://e.example/?a&amp;b\""));
}

QTEST_GUILESS_MAIN(tst_XmlGate)
#include "tst_XmlGate.moc"
