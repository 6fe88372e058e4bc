// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/feed/FeedDump.h"
#include "tests/feed/FeedFiles.h"
#include "tests/fixtures/Sanitizer.h"

#include <QTest>

#include <ctime>

/// Feeds that are within the bounds and still made to harm: none may hold the thread, or be changed by a save.
class tst_HostileFeeds : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void smallDocumentsDoNotHoldTheThread_data();
    void smallDocumentsDoNotHoldTheThread();
    void longTextsAreSavedAsTheyWereLoaded_data();
    void longTextsAreSavedAsTheyWereLoaded();

private:
    double secondsFor(const QByteArray &document);

    FeedFiles m_files;
};

void tst_HostileFeeds::smallDocumentsDoNotHoldTheThread_data()
{
    QTest::addColumn<QByteArray>("bytes");
    const auto row = [](const char *name, const QByteArray &channel, const QByteArray &type = {}) {
        QTest::newRow(name) << rss(channel, type.isEmpty() ? type : "<!DOCTYPE rss [" + type + "]>");
    };
    const QByteArray declarations = many(220, " xmlns:a@='b'");
    const QByteArray item = "<item a@:k='1'><a@:b/><title>@</title></item>";
    row("defaults of attributes", QByteArray("<item/>").repeated(120000),
        "<!ATTLIST item" + many(200, " a@ CDATA ''") + ">");
    row("attributes of one element", "<item" + many(60000, " a@=''") + "/>");
    row("declarations of one element", "<item" + many(60000, " xmlns:a@='b'") + "/>");
    row("very many elements with many attributes", QByteArray("<item" + many(500, " a@=''") + "/>").repeated(220));
    row("many declarations around very many elements",
        "<item" + declarations + ">" + QByteArray("<a0:b/>").repeated(140000) + "</item>");
    row("many declarations on very many items", QByteArray("<item" + declarations + "/>").repeated(280));
    row("an undeclared prefix an item", many(20000, item));
    row("undeclared prefixes", many(200, item).repeated(40));
    row("names", many(90000, "<a@/>"));
    row("a choice in the document type", {},
        "<!ELEMENT rss (a" + QByteArray("|a").repeated(isSanitized ? 40000 : 400000) + ")>");
    row("elements in the document type", {}, many(50000, "<!ELEMENT a@ ANY>"));
    row("entities", {}, many(50000, "<!ENTITY a@ ''>"));
    row("texts in pieces", "<item><title>" + QByteArray("a&#98;").repeated(170000) + "</title></item>");
    row("children of one item", "<item>" + QByteArray("<category>c</category>").repeated(100000) + "</item>");
}

/// What is done with a document: load it, read it, take all items over, save both.
double tst_HostileFeeds::secondsFor(const QByteArray &document)
{
    const QString path = m_files.write("feed.xml", document);
    const QString storePath = m_files.write("store.xml", rss({}));
    const std::clock_t begin = std::clock();
    CachedFeed feed, store;
    if (feed.Load(path) == LoadOk && store.Load(storePath) == LoadOk) {
        for (qint16 i = 0; i < feed.ItemCount(); ++i)
            store.AddItem(feed.GetItemNode(i));
        for (int i = 0; i < 1000; ++i)
            feed.ItemTitle(0);
        feed.ItemCategory(0);
        store.Save();
        feed.Save();
    }
    return static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
}

/// None takes ten times as long as a feed as large that harms nobody.
void tst_HostileFeeds::smallDocumentsDoNotHoldTheThread()
{
    QFETCH(const QByteArray, bytes);
    static const double plain = secondsFor(rss(many(10000, "<item><title>@</title><link>http://e.example/@</link>"
                                                           "<description>text text text text text text text text "
                                                           "</description></item>")));
    const double seconds = secondsFor(bytes);
    QVERIFY2(isSanitized || seconds < 10 * plain,
             qPrintable(QString::number(seconds) + u" against "_s + QString::number(plain)));
}

void tst_HostileFeeds::longTextsAreSavedAsTheyWereLoaded_data()
{
    QTest::addColumn<QByteArray>("item");
    QTest::addColumn<QByteArray>("into");
    QTest::addColumn<bool>("isTaken");
    const QByteArray atom = "<feed version='0.3' xmlns='http://purl.org/atom/ns#'/>";
    const QByteArray latin = rss({}, "<?xml version='1.0' encoding='ISO-8859-1'?>");
    const QByteArray eleven = QByteArray("0123456789").repeated(1100000);
    const auto row = [](const char *name, const QByteArray &item, const QByteArray &into, bool isTaken) {
        QTest::newRow(name) << item << into << isTaken;
    };
    const auto element = [](const QByteArray &name, const QByteArray &text) -> QByteArray {
        return "<" + name + ">" + text + "</" + name + ">";
    };
    const QByteArray pieces = "<![CDATA[<" + eleven.first(5500000) + "]]>x<![CDATA[<" + eleven.first(5500000) + "]]>";
    row("text of CDATA, in Latin-1", element("description", pieces), latin, true);
    row("text of CDATA, in another format", element("description", pieces), atom, true);
    row("the longest address that becomes an attribute", element("link", eleven.first(200000)), atom, true);
    row("address that is too long for one", element("link", eleven.first(200001)), atom, false);
    row("the longest enclosure", "<enclosure url='" + eleven.first(200000) + "' type='" + eleven.first(200000) + "'/>",
        atom, true);
    row("an enclosure of a longer address", "<enclosure url='" + eleven.first(200001) + "'/>", atom, false);
    row("an enclosure of a longer type", "<enclosure url='u' type='" + eleven.first(200001) + "'/>", atom, false);
    row("a source of a longer address", "<source url='" + eleven.first(200001) + "'/>", atom, false);
    row("attribute behind a long text",
        element("description", eleven + "&lt;") + "<source url='" + eleven.first(4000000) + "'>s</source>", rss({}),
        true);
    row("markup as deep as may be",
        element("title", QByteArray("<b>").repeated(253) + "x" + QByteArray("</b>").repeated(253)), rss({}), true);
}

void tst_HostileFeeds::longTextsAreSavedAsTheyWereLoaded()
{
    QFETCH(const QByteArray, item);
    QFETCH(const QByteArray, into);
    QFETCH(const bool, isTaken);
    CachedFeed feed, store;
    QCOMPARE(feed.Load(m_files.write("feed.xml", rss("<item><title>t</title>" + item + "</item>"))), LoadOk);
    QCOMPARE(store.Load(m_files.write("store.xml", into)), LoadOk);
    const QStringList before = FeedDump::item(feed, 0);
    QCOMPARE(store.AddItem(feed.GetItemNode(0)), isTaken);
    feed.Save();
    store.Save();
    QCOMPARE(feed.Load(m_files.path("feed.xml")), LoadOk);
    QVERIFY(FeedDump::item(feed, 0) == before); // too long to be shown
    QCOMPARE(store.Load(m_files.path("store.xml")), LoadOk);
    QCOMPARE(store.ItemCount(), qint16(isTaken ? 1 : 0));
    QCOMPARE(store.ItemDescription(0), isTaken ? feed.ItemDescription(0) : QString());
}

QTEST_GUILESS_MAIN(tst_HostileFeeds)
#include "tst_HostileFeeds.moc"
