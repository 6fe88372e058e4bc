// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/feed/CachedFeed.h"
#include "platform/Files.h"
#include "platform/Literals.h"
#include "tests/feed/FeedDump.h"
#include "tests/fixtures/Sanitizer.h"

#include <QElapsedTimer>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QTest>

#include <sys/resource.h>

#include <ctime>

/// Documents made to harm: none may crash, hang or swell the program, or reach another file or host.
class tst_HostileFeeds : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void entitiesThatMultiplyAreRefused_data();
    void entitiesThatMultiplyAreRefused();
    void nothingOutsideTheDocumentIsRead_data();
    void nothingOutsideTheDocumentIsRead();
    void hugeDocumentsEndInAnAnswer_data();
    void hugeDocumentsEndInAnAnswer();
    void smallDocumentsDoNotHoldTheThread_data();
    void smallDocumentsDoNotHoldTheThread();
    void longTextsAreSavedAsTheyWereLoaded_data();
    void longTextsAreSavedAsTheyWereLoaded();
    void anyTruncationEndsInAnAnswer_data();
    void anyTruncationEndsInAnAnswer();
    void wrongEncodingsEndInAnAnswer_data();
    void wrongEncodingsEndInAnAnswer();
    void deepMarkupInAnItemIsReadAndCarriedOver();
    void whatEntitiesNestCanBeReadAgainOnceSaved_data();
    void whatEntitiesNestCanBeReadAgainOnceSaved();

private:
    QString write(const QByteArray &bytes) const
    {
        const QString path = m_directory.filePath(u"feed.xml"_s);
        Files::write(path, bytes);
        return path;
    }
    static QByteArray rss(const QByteArray &documentType, const QByteArray &title, const QByteArray &items = {})
    {
        return documentType + "<rss version='2.0'><channel><title>" + title + "</title>" + items + "</channel></rss>";
    }
    static qint64 megabytesUsedAtMost()
    {
        rusage usage{};
        getrusage(RUSAGE_SELF, &usage);
        return usage.ru_maxrss / 1024;
    }

    QTemporaryDir m_directory;
};

void tst_HostileFeeds::entitiesThatMultiplyAreRefused_data()
{
    QTest::addColumn<QByteArray>("bytes");

    QByteArray laughs = "<!DOCTYPE rss [<!ENTITY a0 'ha'>";
    for (int i = 1; i <= 30; ++i) {
        const QByteArray before = "&a" + QByteArray::number(i - 1) + ';';
        laughs += "<!ENTITY a" + QByteArray::number(i) + " '" + before.repeated(10) + "'>";
    }
    QTest::newRow("a billion laughs") << rss(laughs + "]>", "&a30;");
    QTest::newRow("a billion laughs in an attribute") << rss(laughs + "]>", "t", "<item a='&a30;'/>");
    QTest::newRow("a billion laughs of elements")
        << rss(QByteArray(laughs).replace("'ha'", "'&lt;item/>&lt;item/>'") + "]>", "t", "&a30;");
    QTest::newRow("one long entity many times")
        << rss("<!DOCTYPE rss [<!ENTITY a '" + QByteArray(100000, 'a') + "'>]>", QByteArray("&a;").repeated(100000));
    QTest::newRow("an entity of itself") << rss("<!DOCTYPE rss [<!ENTITY a '&b;'><!ENTITY b '&a;'>]>", "&a;");

    QByteArray parameters = "<!DOCTYPE rss [<!ENTITY % a0 'ha'>";
    for (int i = 1; i <= 30; ++i)
        parameters += "<!ENTITY % a" + QByteArray::number(i) + " '" +
                      QByteArray("&#37;a" + QByteArray::number(i - 1) + ';').repeated(10) + "'>";
    QTest::newRow("a billion laughs of parameters") << rss(parameters + "%a30;]>", "t");
}

void tst_HostileFeeds::entitiesThatMultiplyAreRefused()
{
    QFETCH(const QByteArray, bytes);
    const QString path = write(bytes);
    const qint64 before = megabytesUsedAtMost();
    QElapsedTimer timer;
    timer.start();
    CachedFeed feed;
    QCOMPARE(feed.Load(path), LoadNotAFeed);
    QVERIFY2(timer.elapsed() < 5000, qPrintable(QString::number(timer.elapsed())));
    QVERIFY2(megabytesUsedAtMost() - before < 500, qPrintable(QString::number(megabytesUsedAtMost() - before)));
}

void tst_HostileFeeds::nothingOutsideTheDocumentIsRead_data()
{
    QTest::addColumn<QByteArray>("documentType"); // FILE and HOST stand for a secret file and a local server
    QTest::addColumn<QByteArray>("title");
    QTest::addColumn<bool>("loads");
    QTest::newRow("file entity") << QByteArray("<!DOCTYPE rss [<!ENTITY a SYSTEM 'file://FILE'>]>") << QByteArray("&a;")
                                 << false;
    QTest::newRow("relative entity") << QByteArray("<!DOCTYPE rss [<!ENTITY a SYSTEM 'secret'>]>") << QByteArray("&a;")
                                     << false;
    QTest::newRow("net entity") << QByteArray("<!DOCTYPE rss [<!ENTITY a SYSTEM 'http://HOST/a'>]>")
                                << QByteArray("&a;") << false;
    QTest::newRow("entity by public name")
        << QByteArray("<!DOCTYPE rss [<!ENTITY a PUBLIC '-//x' 'file://FILE'>]>") << QByteArray("&a;") << false;
    QTest::newRow("parameter entity") << QByteArray("<!DOCTYPE rss [<!ENTITY % a SYSTEM 'http://HOST/a'> %a;]>")
                                      << QByteArray("t") << true;
    QTest::newRow("parameter entity that declares another")
        << QByteArray("<!DOCTYPE rss [<!ENTITY % f SYSTEM 'file://FILE'><!ENTITY % a '<!ENTITY b \"%f;\">'> %a;]>")
        << QByteArray("&b;") << false;
    QTest::newRow("unparsed entity")
        << QByteArray("<!DOCTYPE rss [<!NOTATION n SYSTEM 'n'><!ENTITY a SYSTEM 'file://FILE' NDATA n>]>")
        << QByteArray("t") << true;
    QTest::newRow("external subset") << QByteArray("<!DOCTYPE rss SYSTEM 'http://HOST/rss.dtd'>") << QByteArray("t")
                                     << true;
    QTest::newRow("style sheet") << QByteArray("<?xml-stylesheet href='http://HOST/a.xsl' type='text/xsl'?>")
                                 << QByteArray("t") << true;
    QTest::newRow("inclusion") << QByteArray()
                               << QByteArray("<i:include xmlns:i='http://www.w3.org/2001/XInclude' "
                                             "parse='text' href='file://FILE'/>")
                               << true;
}

void tst_HostileFeeds::nothingOutsideTheDocumentIsRead()
{
    QFETCH(QByteArray, documentType);
    QFETCH(QByteArray, title);
    QFETCH(const bool, loads);
    QTcpServer server;
    QVERIFY(server.listen(QHostAddress::LocalHost));
    const QString secret = m_directory.filePath(u"secret"_s);
    Files::write(secret, "<!ENTITY b 'the secret'>the secret");
    const QByteArray host = "127.0.0.1:" + QByteArray::number(server.serverPort());
    for (QByteArray *part : {&documentType, &title})
        part->replace("FILE", secret.toUtf8()).replace("HOST", host);
    CachedFeed feed;
    QCOMPARE(feed.Load(write(rss(documentType, title))), loads ? LoadOk : LoadNotAFeed);
    QVERIFY(!feed.Title().contains("secret</"_L1) && !feed.Title().contains("the secret"_L1));
    feed.Save();
    QVERIFY(!server.waitForNewConnection(20));
}

void tst_HostileFeeds::hugeDocumentsEndInAnAnswer_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("repeated");
    QTest::addColumn<int>("times");
    QTest::addColumn<QByteArray>("after");
    QTest::addColumn<int>("result");
    const QByteArray head = "<rss version='2.0'><channel>";
    const QByteArray tail = "</channel></rss>";
    QTest::newRow("200,000 elements deep, never closed")
        << head << QByteArray("<a>") << 200000 << QByteArray() << int(LoadNotAFeed);
    QTest::newRow("200,000 elements deep, of other names")
        << QByteArray() << QByteArray("<a><b>") << 100000 << QByteArray("</b></a>").repeated(100000)
        << int(LoadNotAFeed);
    QTest::newRow("a text of 100 MB") << QByteArray(head + "<title>") << QByteArray("0123456789") << 10000000
                                      << QByteArray("</title>" + tail) << int(LoadOk);
    QTest::newRow("an attribute of 20 MB") << QByteArray(head + "<item a='") << QByteArray("0123456789") << 2000000
                                           << QByteArray("'/>" + tail) << int(LoadNotAFeed);
    QTest::newRow("a comment of 20 MB") << QByteArray(head + "<!--") << QByteArray("0123456789") << 2000000
                                        << QByteArray("-->" + tail) << int(LoadNotAFeed);
    QTest::newRow("a name of 1 MB") << QByteArray(head + "<") << QByteArray("abcdefghij") << 100000
                                    << QByteArray("/>" + tail) << int(LoadNotAFeed);
    QTest::newRow("100,000 children of one item") << QByteArray(head + "<item>") << QByteArray("<category>c</category>")
                                                  << 100000 << QByteArray("</item>" + tail) << int(LoadOk);
    QTest::newRow("nothing but zero bytes")
        << QByteArray() << QByteArray(10, '\0') << 1000000 << QByteArray() << int(LoadNotAFeed);
}

void tst_HostileFeeds::hugeDocumentsEndInAnAnswer()
{
    QFETCH(const QByteArray, before);
    QFETCH(const QByteArray, repeated);
    QFETCH(const int, times);
    QFETCH(const QByteArray, after);
    QFETCH(const int, result);
    const QString path = write(before + repeated.repeated(times) + after);
    QElapsedTimer timer;
    timer.start();
    CachedFeed feed;
    QCOMPARE(static_cast<int>(feed.Load(path)), result);
    for (int i = 0; i < 1000; ++i)
        feed.ItemTitle(0);
    feed.ItemCategory(0);
    QVERIFY2(timer.elapsed() < 3000, qPrintable(QString::number(timer.elapsed())));
}

/// The part so many times, each with its number in the places of "@".
static QByteArray many(int count, const QByteArray &part)
{
    QByteArray all;
    for (int i = 0; i < count; ++i)
        all += QByteArray(part).replace("@", QByteArray::number(i));
    return all;
}

void tst_HostileFeeds::smallDocumentsDoNotHoldTheThread_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("result");
    const auto row = [](const char *name, const QByteArray &bytes, int result) {
        QTest::newRow(name) << bytes << result;
    };
    const QByteArray attribute = " a@=''";
    const QByteArray declaration = " xmlns:a@='b'";
    const QByteArray item = "<item a@:k='1'><a@:b/><title>@</title></item>";
    const QByteArray type = "<!DOCTYPE rss [";
    row("defaults of attributes",
        rss(type + "<!ATTLIST item" + many(2000, " a@ CDATA ''") + ">]>", {}, QByteArray("<item/>").repeated(4000)),
        LoadNotAFeed);
    row("a few defaults of very many elements",
        rss(type + "<!ATTLIST item" + many(200, " a@ CDATA ''") + ">]>", {}, QByteArray("<item/>").repeated(120000)),
        LoadNotAFeed);
    row("namespaces by default",
        rss(type + "<!ATTLIST item" + many(200, " xmlns:a@ CDATA 'b'") + ">]>", {},
            QByteArray("<item/>").repeated(120000)),
        LoadNotAFeed);
    row("attributes of one element", rss({}, {}, "<item" + many(60000, attribute) + "/>"), LoadNotAFeed);
    row("attributes of an element in an entity",
        rss(type + "<!ENTITY e '" + "<item" + many(60000, attribute).replace('\'', '"') + "/>" + "'>]>", {}, "&e;"),
        LoadNotAFeed);
    row("attributes in an entity, without a sign that shows them",
        rss(type + "<!ENTITY e '<item" + many(30000, " a@&#61;&#34;&#34;") + "/>'>]>", {}, "&e;"), LoadNotAFeed);
    row("very many elements with many attributes",
        rss({}, {}, QByteArray("<item" + many(500, attribute) + "/>").repeated(220)), LoadOk);
    row("declarations of one element", rss({}, {}, "<item" + many(60000, declaration) + "/>"), LoadNotAFeed);
    row("many declarations around very many elements",
        rss({}, {}, "<item" + many(250, declaration) + ">" + QByteArray("<a0:b/>").repeated(140000) + "</item>"),
        LoadOk);
    row("many declarations on very many items",
        rss({}, {}, QByteArray("<item" + many(220, declaration) + "/>").repeated(280)), LoadOk);
    row("an undeclared prefix an item", rss({}, {}, many(20000, item)), LoadNotAFeed);
    row("undeclared prefixes", rss({}, {}, many(200, item).repeated(80)), LoadOk);
    row("names", rss({}, {}, many(90000, "<a@/>")), LoadNotAFeed);
    row("as many names as leave no room for those of the marks",
        rss({}, {}, "<item>" + many(19990, "<a@/>") + "</item>"), LoadNotAFeed);
    row("a choice in the document type",
        rss(type + "<!ELEMENT rss (a" + QByteArray("|a").repeated(isSanitized ? 40000 : 400000) + ")>]>", {}), LoadOk);
    row("elements in the document type", rss(type + many(50000, "<!ELEMENT a@ ANY>") + "]>", {}), LoadNotAFeed);
    row("entities", rss(type + many(50000, "<!ENTITY a@ ''>") + "]>", {}), LoadNotAFeed);
    row("texts in pieces", rss({}, {}, "<item><title>" + QByteArray("a&#98;").repeated(170000) + "</title></item>"),
        LoadOk);
}

void tst_HostileFeeds::smallDocumentsDoNotHoldTheThread()
{
    QFETCH(const QByteArray, bytes);
    QFETCH(const int, result);
    // What is done with a document as large: load it, take all items over, save both.
    const auto secondsFor = [this](const QByteArray &document, FeedLoadResult &loaded) {
        const QString path = write(document);
        const QString storePath = m_directory.filePath(u"store.xml"_s);
        Files::write(storePath, rss({}, "store"));
        const std::clock_t begin = std::clock();
        CachedFeed feed;
        loaded = feed.Load(path);
        CachedFeed store;
        if (loaded == LoadOk && store.Load(storePath) == LoadOk) {
            for (qint16 i = 0; i < feed.ItemCount(); ++i)
                store.AddItem(feed.GetItemNode(i));
            store.Save();
            feed.Save();
        }
        return static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
    };
    FeedLoadResult loaded{};
    static const double plain =
        secondsFor(rss({}, {},
                       many(10000, "<item><title>@</title><link>http://e.example/@</link><description>" +
                                       QByteArray("text ").repeated(8) + "</description></item>")),
                   loaded);
    const double seconds = secondsFor(bytes, loaded);
    QCOMPARE(int(loaded), result);
    QVERIFY2(isSanitized || seconds < 10 * plain,
             qPrintable(QString::number(seconds) + u" against "_s + QString::number(plain)));
}

void tst_HostileFeeds::longTextsAreSavedAsTheyWereLoaded_data()
{
    QTest::addColumn<QByteArray>("item"); // beside a title
    QTest::addColumn<QByteArray>("into");
    QTest::addColumn<bool>("loads");
    QTest::addColumn<bool>("isTaken");
    const QByteArray rss2 = rss({}, "store");
    const QByteArray atom = "<feed version='0.3' xmlns='http://purl.org/atom/ns#'/>";
    const QByteArray latin = "<?xml version='1.0' encoding='ISO-8859-1'?>" + rss2;
    const QByteArray eleven = QByteArray("0123456789").repeated(1100000);
    const auto element = [](const QByteArray &name, const QByteArray &text) -> QByteArray {
        return "<" + name + ">" + text + "</" + name + ">";
    };
    const QByteArray pieces = "<![CDATA[<" + eleven.first(7000000) + "]]>x<![CDATA[<" + eleven.first(7000000) + "]]>";
    QTest::newRow("text with a reference") << element("description", eleven + "&amp;x") << rss2 << true << true;
    QTest::newRow("text of CDATA, in Latin-1") << element("description", pieces) << latin << true << true;
    QTest::newRow("text of CDATA, in another format") << element("description", pieces) << atom << true << true;
    QTest::newRow("address that becomes an attribute") << element("link", eleven) << atom << true << false;
    QTest::newRow("attribute behind a long text")
        << element("description", eleven + "&lt;") + "<source url='" + eleven.first(4000000) + "'>s</source>" << rss2
        << true << true;
    QTest::newRow("long attributes in a row")
        << QByteArray("<x y='" + eleven.first(5500000) + "'/>").repeated(4) << rss2 << true << true;
    QTest::newRow("attribute that is longer once written")
        << "<x y='" + QByteArray(3000000, '>') + "'/>" << rss2 << false << false;
    QTest::newRow("attributes too long together")
        << "<x y='" + eleven.first(4000000) + "' z='" + eleven.first(4000000) + "'/>" << rss2 << false << false;
}

void tst_HostileFeeds::longTextsAreSavedAsTheyWereLoaded()
{
    QFETCH(const QByteArray, item);
    QFETCH(const QByteArray, into);
    QFETCH(const bool, loads);
    QFETCH(const bool, isTaken);
    const QString path = write(rss({}, "t", "<item><title>t</title>" + item + "</item>"));
    CachedFeed feed;
    QCOMPARE(feed.Load(path) == LoadOk, loads);
    if (!loads)
        return;
    const QStringList before = FeedDump::item(feed, 0);
    const QString storePath = m_directory.filePath(u"store.xml"_s);
    Files::write(storePath, into);
    CachedFeed store;
    QCOMPARE(store.Load(storePath), LoadOk);
    QCOMPARE(store.AddItem(feed.GetItemNode(0)), isTaken);
    feed.Save();
    store.Save();
    QCOMPARE(feed.Load(path), LoadOk);
    QVERIFY(FeedDump::item(feed, 0) == before); // too long to be shown
    QCOMPARE(store.Load(storePath), LoadOk);
    QCOMPARE(store.ItemCount(), qint16(isTaken ? 1 : 0));
    QCOMPARE(store.ItemDescription(0), isTaken ? feed.ItemDescription(0) : QString());
}

void tst_HostileFeeds::anyTruncationEndsInAnAnswer_data()
{
    QTest::addColumn<QString>("sample");
    for (const char *name : {"rss091", "rss092", "rss20", "rdf10", "atom03"})
        QTest::newRow(name) << QString::fromUtf8(SAMPLES_DIR "/") + QLatin1String(name) + ".xml"_L1;
}

void tst_HostileFeeds::anyTruncationEndsInAnAnswer()
{
    QFETCH(const QString, sample);
    const QByteArray whole = Files::read(sample).bytes;
    const qsizetype end = whole.lastIndexOf('>');
    const QString path = write(whole);
    for (qsizetype size = whole.size(); size >= 0; --size) {
        QVERIFY(QFile::resize(path, size));
        CachedFeed feed;
        QCOMPARE(feed.Load(path), size > end ? LoadOk : LoadNotAFeed);
    }
}

void tst_HostileFeeds::wrongEncodingsEndInAnAnswer_data()
{
    QTest::addColumn<QByteArray>("bytes");
    const auto declared = [](const char *encoding, const QByteArray &title) -> QByteArray {
        return "<?xml version='1.0' encoding='" + QByteArray(encoding) + "'?>" + rss({}, title);
    };
    QTest::newRow("Latin-1 said to be UTF-8") << declared("UTF-8", "\xE9");
    QTest::newRow("Latin-1 that says nothing") << rss({}, "\xE9");
    QTest::newRow("an encoding that isn't") << declared("x-none", "t");
    QTest::newRow("bytes said to be UTF-16") << declared("UTF-16", "t");
    QTest::newRow("half a character") << declared("Shift_JIS", "\x93");
    QTest::newRow("overlong UTF-8") << declared("UTF-8", "\xC0\xBC");
    QTest::newRow("surrogates in UTF-8") << declared("UTF-8", "\xED\xA0\x80");
    QTest::newRow("a control character") << declared("UTF-8", "\x01");
    QTest::newRow("a reference to a control character") << declared("UTF-8", "&#1;");
    QTest::newRow("a zero byte") << declared("UTF-8", QByteArray(1, '\0'));
    QTest::newRow("odd number of bytes in UTF-16") << QByteArray("\xFF\xFE<\0r", 5);
}

void tst_HostileFeeds::wrongEncodingsEndInAnAnswer()
{
    QFETCH(const QByteArray, bytes);
    CachedFeed feed;
    QCOMPARE(feed.Load(write(bytes)), LoadNotAFeed);
}

void tst_HostileFeeds::deepMarkupInAnItemIsReadAndCarriedOver()
{
    const QByteArray deep =
        QByteArray("<b>").repeated(253) + "x" + QByteArray("</b>").repeated(253); // as deep as may be
    CachedFeed source;
    QCOMPARE(source.Load(write(rss({}, "t", "<item><title>" + deep + "</title></item>"))), LoadOk);
    QCOMPARE(source.ItemTitle(0), QString::fromLatin1(deep));
    const QString path = m_directory.filePath(u"store.xml"_s);
    Files::write(path, rss({}, "store"));
    CachedFeed store;
    QCOMPARE(store.Load(path), LoadOk);
    store.AddItem(source.GetItemNode(0));
    store.Save();
    QCOMPARE(store.Load(path), LoadOk);
    QCOMPARE(store.ItemTitle(0), source.ItemTitle(0));
}

void tst_HostileFeeds::whatEntitiesNestCanBeReadAgainOnceSaved_data()
{
    QTest::addColumn<int>("depth");
    QTest::addColumn<int>("result");
    QTest::newRow("within the bound") << 120 << int(LoadOk);
    QTest::newRow("past the bound") << 130 << int(LoadNotAFeed);
}

void tst_HostileFeeds::whatEntitiesNestCanBeReadAgainOnceSaved()
{
    QFETCH(const int, depth);
    QFETCH(const int, result);
    const QByteArray open = QByteArray("<b>").repeated(depth);
    const QByteArray close = QByteArray("</b>").repeated(depth);
    const QString path =
        write(rss("<!DOCTYPE rss [<!ENTITY a '" + open + 'x' + close + "'><!ENTITY b '" + open + "&a;" + close + "'>]>",
                  "<i/><u>&b;</u><i/>"));
    CachedFeed feed;
    QCOMPARE(static_cast<int>(feed.Load(path)), result);
    feed.Save();
    QCOMPARE(static_cast<int>(feed.Load(path)), result);
}

QTEST_GUILESS_MAIN(tst_HostileFeeds)
#include "tst_HostileFeeds.moc"
