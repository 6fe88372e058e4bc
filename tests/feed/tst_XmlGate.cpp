// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/xml/XmlDocument.h"
#include "tests/feed/FeedDump.h"
#include "tests/feed/FeedFiles.h"
#include "tests/fixtures/Golden.h"
#include "tests/fixtures/TextCases.h"

#include <QElapsedTimer>
#include <QTcpServer>
#include <QTest>

#include <sys/resource.h>

/// The gate to the XML library, which feeds and the program's own documents pass alike: in what they are judged alike
/// and in what not, that no document crashes, hangs or swells the program or reaches another file or host, and that
/// what is written can be read again.
class tst_XmlGate : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void documentsAreJudgedByTheBoundsOfTheirUser_data();
    void documentsAreJudgedByTheBoundsOfTheirUser();
    void nothingOutsideTheDocumentIsRead_data();
    void nothingOutsideTheDocumentIsRead();
    void whatIsWrittenReadsBackTheSame();
    void anyTruncationEndsInAnAnswer();

private:
    static qint64 megabytesUsedAtMost()
    {
        rusage usage{};
        getrusage(RUSAGE_SELF, &usage);
        return usage.ru_maxrss / 1024;
    }

    FeedFiles m_files;
};

static QByteArray element(const QByteArray &name, const QByteArray &text = {})
{
    return "<" + name + ">" + text + "</" + name.split(' ').first() + ">";
}

static QByteArray nested(int depth, const QByteArray &inner = {})
{
    return QByteArray("<b>").repeated(depth) + inner + QByteArray("</b>").repeated(depth);
}

void tst_XmlGate::documentsAreJudgedByTheBoundsOfTheirUser_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("ownDocumentPasses");
    QTest::addColumn<bool>("feedPasses");
    const auto whole = [](const char *name, const QByteArray &bytes, bool own, bool feed) {
        QTest::newRow(name) << bytes << own << feed;
    };
    const auto row = [&](const char *name, const QByteArray &type, const QByteArray &channel, bool own, bool feed) {
        whole(name, rss(channel, type), own, feed);
    };
    /// What passes so many times, and no more often.
    const auto bound = [&](const char *name, int most, auto make, bool ownToo = true) {
        QTest::addRow("%s: %d", name, most) << make(most) << ownToo << true;
        QTest::addRow("%s: one more", name) << make(most + 1) << false << false;
    };
    const auto type = [](const QByteArray &declarations) -> QByteArray {
        return "<!DOCTYPE rss [" + declarations + "]>";
    };
    row("plain", {}, "<title>t</title>", true, true);
    row("not well-formed", {}, "<title>", false, false);
    row("a reserved prefix", {}, "<title xmlns:xml='urn:x'/>", true, false);
    row("an undeclared prefix", {}, "<a:b c:d='e'/>", true, true);
    row("two colons in a name", {}, "<a:b:c xmlns:a='urn:a'/>", true, false);
    row("an undeclared entity", {}, "&e;", false, false);
    row("an undeclared entity, and a document type elsewhere", "<!DOCTYPE rss SYSTEM 'elsewhere'>", "&e;", true, false);
    row("an entity of a document type that is known", "<!DOCTYPE rss SYSTEM 'rss-0.91.dtd'>", "&eacute;", true, true);
    row("an entity that no document type knows", "<!DOCTYPE rss SYSTEM 'rss-0.91.dtd'>", "&euro;", true, false);
    row("a parameter entity", type("<!ENTITY % p \"<!ENTITY e 'x'>\">%p;"), "&e;", false, true);
    whole("nothing but zero bytes", QByteArray(1000000, '\0'), false, false);
    whole("compressed", QByteArray::fromHex("1f8b08000000000000032b2a2e5628"), false, false);

    // What multiplies.
    const auto laughs = [&](const QByteArray &kind, const QByteArray &reference, const QByteArray &inner) {
        QByteArray declarations = "<!ENTITY " + kind + "a0 '" + inner + "'>";
        for (int i = 1; i <= 30; ++i)
            declarations += "<!ENTITY " + kind + 'a' + QByteArray::number(i) + " '" +
                            QByteArray(reference + 'a' + QByteArray::number(i - 1) + ';').repeated(10) + "'>";
        return declarations;
    };
    row("a billion laughs", type(laughs({}, "&", "ha")), "&a30;", false, false);
    row("a billion laughs of elements", type(laughs({}, "&", "<item/>")), "&a30;", false, false);
    row("a billion laughs in an attribute", type(laughs({}, "&", "ha")), "<a b='&a30;'/>", false, false);
    row("a billion laughs of parameters", type(laughs("% ", "&#37;", "ha") + "%a30;"), {}, false, false);
    row("one long entity many times", type("<!ENTITY a '" + QByteArray(100000, 'a') + "'>"),
        QByteArray("&a;").repeated(100000), false, false);
    row("an entity of itself", type("<!ENTITY a '&b;'><!ENTITY b '&a;'>"), "&a;", false, false);

    // What is bounded, and where.
    bound("elements within one another", 255, [](int n) { return rss(nested(n)); });
    bound("elements that entities nest", 126, [&](int n) { // half of them in each
        return rss("<i/>&b;<i/>", type("<!ENTITY a '" + nested(n) + "'><!ENTITY b '" + nested(n, "&a;") + "'>"));
    });
    whole("elements 200,000 deep, never closed", QByteArray("<a>").repeated(200000), false, false);
    bound("attributes of an element", 512, [](int n) { return rss("<a" + many(n, " a@=''") + "/>"); });
    row("attributes of an item that leave room for marks", {}, "<item" + many(509, " a@=''") + "/>", true, true);
    row("attributes of an item that leave none", {}, "<item" + many(510, " a@=''") + "/>", true, false);
    bound("attributes in an entity", 512,
          [&](int n) { return rss("&e;", type("<!ENTITY e '<a" + many(n, " a@=\"\"") + "/>'>")); });
    row("attributes in an entity, without a sign that shows them",
        type("<!ENTITY e '<a" + many(513, " a@&#61;&#34;&#34;") + "/>'>"), "&e;", false, false);
    bound("bytes of the attributes of a tag", 5999994,
          [](int n) { return rss("<a b='" + QByteArray(n, 'x') + "'/>"); });
    bound("attributes that grow as they are written", 999999,
          [](int n) { return rss("<a b='" + QByteArray(n, '>') + "'/>"); });
    bound("attributes that some encodings lack the characters of", 599999,
          [](int n) { return rss("<a b='" + QByteArray("\xC3\xA9").repeated(n) + "'/>"); });
    row("two long attributes", {}, "<a b='" + QByteArray(3000000, 'x') + "' c='" + QByteArray(3000000, 'x') + "'/>",
        false, false);
    row("an attribute of 20 MB", {}, "<a b='" + QByteArray(20000000, 'x') + "'/>", false, false);
    row("a comment of 20 MB", {}, "<!--" + QByteArray(20000000, 'x') + "-->", false, false);
    row("a name of 1 MB", {}, "<" + QByteArray(1000000, 'x') + "/>", false, false);
    bound("declarations", 256, [](int n) { return rss("<a" + many(n, " xmlns:a@='b'") + "/>"); });
    row("declarations that leave no room for that of the marks", {}, "<item" + many(256, " xmlns:a@='b'") + "/>", true,
        false);
    bound("bytes of a prefix", 256, [](int n) { return rss("<a xmlns:" + QByteArray(n, 'x') + "='b'/>"); });
    row("an undeclared prefix of 256 bytes", {}, "<" + QByteArray(256, 'x') + ":a/>", true, true);
    row("an undeclared prefix of 257 bytes", {}, "<" + QByteArray(257, 'x') + ":a/>", true, false);
    row("256 undeclared prefixes", {}, many(256, "<a@:b/>"), true, true);
    row("257 undeclared prefixes", {}, many(257, "<a@:b/>"), true, false);
    bound("bytes of an address", 2048, [](int n) { return rss("<a xmlns:b='" + QByteArray(n, 'x') + "'/>"); });
    bound("attributes of the document type", 256,
          [&](int n) { return rss({}, type("<!ATTLIST a" + many(n, " a@ CDATA ''") + ">")); });
    bound("elements with attributes by default", 500, [&](int n) {
        return rss(QByteArray("<a/>").repeated(n), type("<!ATTLIST a" + many(200, " a@ CDATA ''") + ">"));
    });
    bound("elements with namespaces by default", 500, [&](int n) {
        return rss(QByteArray("<a/>").repeated(n), type("<!ATTLIST a" + many(200, " xmlns:a@ CDATA 'b'") + ">"));
    });
    row("names that leave no room for those of the marks", {}, element("item", many(19990, "<a@/>")), true, false);
    row("names", {}, many(20010, "<a@/>"), false, false);
    const auto parameters = [&](int bytes, int references) { // the declaration looks it up as well
        return rss({}, type("<!ENTITY % p '" + QByteArray(bytes, ' ') + "'>" + QByteArray("%p;").repeated(references)));
    };
    bound(
        "parameter entities", 999, [&](int n) { return parameters(1, n); }, false);
    bound(
        "bytes of parameter entities", 1000, [&](int n) { return parameters(n, 999); }, false);

    // What isn't in its encoding.
    const auto declared = [&](const char *name, const char *encoding, const QByteArray &title) {
        whole(name, rss(element("title", title), "<?xml version='1.0' encoding='" + QByteArray(encoding) + "'?>"),
              false, false);
    };
    declared("Latin-1 said to be UTF-8", "UTF-8", "\xE9");
    row("Latin-1 that says nothing", {}, "\xE9", false, false);
    declared("an encoding that isn't", "x-none", "t");
    declared("an encoding that can't be one", "X-?", "t");
    declared("bytes said to be UTF-16", "UTF-16", "t");
    declared("half a character", "Shift_JIS", "\x93");
    declared("overlong UTF-8", "UTF-8", "\xC0\xBC");
    declared("surrogates in UTF-8", "UTF-8", "\xED\xA0\x80");
    declared("a control character", "UTF-8", "\x01");
    declared("a reference to a control character", "UTF-8", "&#1;");
    declared("a zero byte", "UTF-8", QByteArray(1, '\0'));
    whole("odd number of bytes in UTF-16", QByteArray("\xFF\xFE<\0r", 5), false, false);
}

void tst_XmlGate::documentsAreJudgedByTheBoundsOfTheirUser()
{
    QFETCH(const QByteArray, bytes);
    const QString path = m_files.write("feed.xml", bytes);
    QElapsedTimer timer;
    timer.start();
    XmlDocument document;
    CachedFeed feed;
    const qint64 before = megabytesUsedAtMost();
    QTEST(document.loadXml(bytes) == XmlDocument::LoadResult::Loaded, "ownDocumentPasses");
    QTEST(feed.Load(path) == LoadOk, "feedPasses");
    feed.Save(); // what was loaded can be saved, and read again
    QTEST(feed.Load(path) == LoadOk, "feedPasses");
    QVERIFY2(timer.elapsed() < 5000, qPrintable(QString::number(timer.elapsed())));
    QVERIFY2(megabytesUsedAtMost() - before < 500, qPrintable(QString::number(megabytesUsedAtMost() - before)));
}

void tst_XmlGate::nothingOutsideTheDocumentIsRead_data()
{
    QTest::addColumn<QByteArray>("before"); // FILE and HOST stand for a secret file and a local server
    QTest::addColumn<QByteArray>("title");
    QTest::addColumn<bool>("loads");
    const auto row = [](const char *name, const QByteArray &before, const QByteArray &title, bool loads) {
        QTest::newRow(name) << before << title << loads;
    };
    row("file entity", "<!DOCTYPE rss [<!ENTITY a SYSTEM 'file://FILE'>]>", "&a;", false);
    row("relative entity", "<!DOCTYPE rss [<!ENTITY a SYSTEM 'secret'>]>", "&a;", false);
    row("net entity", "<!DOCTYPE rss [<!ENTITY a SYSTEM 'http://HOST/a'>]>", "&a;", false);
    row("entity by public name", "<!DOCTYPE rss [<!ENTITY a PUBLIC '-//x' 'file://FILE'>]>", "&a;", false);
    row("parameter entity", "<!DOCTYPE rss [<!ENTITY % a SYSTEM 'http://HOST/a'> %a;]>", "t", true);
    row("parameter entity that declares another",
        "<!DOCTYPE rss [<!ENTITY % f SYSTEM 'file://FILE'><!ENTITY % a '<!ENTITY b \"%f;\">'> %a;]>", "&b;", false);
    row("unparsed entity", "<!DOCTYPE rss [<!NOTATION n SYSTEM 'n'><!ENTITY a SYSTEM 'file://FILE' NDATA n>]>", "t",
        true);
    row("external subset", "<!DOCTYPE rss SYSTEM 'http://HOST/rss.dtd'>", "t", true);
    row("style sheet", "<?xml-stylesheet href='http://HOST/a.xsl' type='text/xsl'?>", "t", true);
    row("inclusion", {}, "<i:include xmlns:i='http://www.w3.org/2001/XInclude' parse='text' href='file://FILE'/>",
        true);
}

void tst_XmlGate::nothingOutsideTheDocumentIsRead()
{
    QFETCH(const QByteArray, before);
    QFETCH(const QByteArray, title);
    QFETCH(const bool, loads);
    QTcpServer server;
    QVERIFY(server.listen(QHostAddress::LocalHost));
    const QString secret = m_files.write("secret", "<!ENTITY b 'the secret'>the secret");
    QByteArray bytes = rss(element("title", title), before);
    const QByteArray host = "127.0.0.1:" + QByteArray::number(server.serverPort());
    bytes.replace("FILE", secret.toUtf8()).replace("HOST", host);
    CachedFeed feed;
    QCOMPARE(feed.Load(m_files.write("feed.xml", bytes)), loads ? LoadOk : LoadNotAFeed);
    feed.Save();
    XmlDocument document;
    document.loadXml(bytes);
    QVERIFY(!m_files.read("feed.xml").contains("the secret") && !document.toBytes().contains("the secret"));
    QVERIFY(!server.waitForNewConnection(20));
}

/// The program's own documents, in the encoding that each says and in Latin-1, and what feeds are saved as.
void tst_XmlGate::whatIsWrittenReadsBackTheSame()
{
    QString told;
    for (const TextCase &each : readCases(u"written.txt"_s)) {
        told += u"=== "_s + each.name + u'\n';
        for (const char *declaration : {"", "<?xml version='1.0' encoding='ISO-8859-1'?>\n"}) {
            XmlDocument document;
            const QString given = QString::fromUtf8(each.documents.first());
            const bool isLatin1 = *declaration != 0;
            const QByteArray bytes = declaration + (isLatin1 ? given.toLatin1() : given.toUtf8());
            QCOMPARE(document.loadXml(bytes), XmlDocument::LoadResult::Loaded);
            const QByteArray once = document.toBytes();
            QCOMPARE(document.toBytes(), once); // writing leaves the document as it is
            QCOMPARE(document.loadXml(once), XmlDocument::LoadResult::Loaded);
            QCOMPARE(document.toBytes(), once);
            const QString markup = document.documentElement().xml();
            QCOMPARE(document.loadXml(markup), XmlDocument::LoadResult::Loaded);
            QCOMPARE(document.documentElement().xml(), markup);
            CachedFeed feed;
            QCOMPARE(feed.Load(m_files.write("feed.xml", bytes)), LoadOk);
            feed.Save();
            QCOMPARE(feed.Load(m_files.path("feed.xml")), LoadOk);
            const auto text = [&](const QByteArray &written) {
                return isLatin1 ? QString::fromLatin1(written) : QString::fromUtf8(written);
            };
            told += text(once) + markup + u'\n' + text(m_files.read("feed.xml"));
        }
    }
    QCOMPARE(differenceFromGolden(u"written.expected"_s, told), QString());
}

void tst_XmlGate::anyTruncationEndsInAnAnswer()
{
    for (const char *sample : {"rss091.xml", "rss092.xml", "rss20.xml", "rdf10.xml", "atom03.xml"}) {
        const QString path = m_files.writeSample("feed.xml", sample);
        const QByteArray whole = m_files.read("feed.xml");
        for (qsizetype size = whole.size(); size >= 0; --size) {
            QVERIFY(QFile::resize(path, size));
            CachedFeed feed;
            QCOMPARE(feed.Load(path), size > whole.lastIndexOf('>') ? LoadOk : LoadNotAFeed);
        }
    }
}

QTEST_GUILESS_MAIN(tst_XmlGate)
#include "tst_XmlGate.moc"
