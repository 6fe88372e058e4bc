// SPDX-License-Identifier: GPL-3.0-or-later

#include "exchange/OpmlDocument.h"

#include "platform/Literals.h"
#include "tests/fixtures/TemporaryDataDirectory.h"

#include <QStringEncoder>
#include <QTest>

namespace {

QByteArray opml(const QByteArray &body, const QByteArray &head = "<head><title>Liste</title></head>")
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?><opml version=\"1.1\">" + head + "<body>" + body +
           "</body></opml>";
}

QByteArray entityBomb()
{
    QByteArray bomb = "<!DOCTYPE opml [<!ENTITY a \"aaaaaaaaaaaaaaaaaaaa\">";
    for (char name = 'b'; name <= 'g'; ++name) {
        const QByteArray inner = QByteArray("&") + char(name - 1) + ';';
        bomb += QByteArray("<!ENTITY ") + name + " \"" + inner.repeated(14) + "\">";
    }
    return bomb + "]><opml><head><title>&g;&g;</title></head><body/></opml>";
}

} // namespace

class OpmlDocumentTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void listsOfOtherReadersAreRead_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QStringList>("expected"); // "position text address"

        QTest::newRow("empty body") << opml("") << QStringList();
        QTest::newRow("attributes of other readers")
            << opml("<outline type=\"rss\" version=\"RSS\" title=\"T\" text=\"A &amp; b\" htmlUrl=\"http://h/\" "
                    "xmlUrl=\"http://h/f?a=1&amp;b=2\"/>")
            << QStringList{u"0 A & b http://h/f?a=1&b=2"_s};
        QTest::newRow("folders are skipped, and leave gaps")
            << opml("<outline text=\"D\"><outline text=\"inner\" xmlUrl=\"http://h/i\"/></outline>"
                    "<outline text=\"B\" xmlUrl=\"http://h/b\"/>")
            << QStringList{u"1 B http://h/b"_s};
        QTest::newRow("names are told with case") << opml("<outline text=\"A\" xmlURL=\"http://h/\"/>"
                                                          "<OUTLINE text=\"B\" xmlUrl=\"http://h/\"/>"
                                                          "<outline text=\"C\" xmlUrl=\"\"/>")
                                                  << QStringList{u"1 C "_s};
        QTest::newRow("a document type without an outer part")
            << QByteArray("<!DOCTYPE opml [<!ENTITY e \"été\">]>") +
                   opml("<outline text=\"&e;\" xmlUrl=\"http://h/\"/>").mid(38)
            << QStringList{u"0 été http://h/"_s};
        QStringEncoder utf16(QStringEncoder::Utf16LE, QStringEncoder::Flag::WriteBom);
        const QString wide = u"<?xml version=\"1.0\" encoding=\"UTF-16\"?><opml><head><title/></head><body>"
                             "<outline text=\"日本\" xmlUrl=\"http://h/\"/></body></opml>"_s;
        QTest::newRow("UTF-16") << QByteArray(utf16(wide)) << QStringList{u"0 日本 http://h/"_s};
    }

    void listsOfOtherReadersAreRead()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QStringList, expected);
        OpmlDocument document;
        QVERIFY(document.loadXml(bytes));
        QStringList found;
        const auto list = document.list();
        QVERIFY(list.has_value());
        for (const OpmlDocument::Feed &feed : list->feeds)
            found.append(QString::number(feed.position) + u' ' + feed.text + u' ' + feed.address);
        QCOMPARE(found, expected);
    }

    void aFileThatIsNoListIsRefused_data()
    {
        QTest::addColumn<QByteArray>("bytes"); // none: no such file
        QTest::addColumn<bool>("loads");       // and yet is no list
        QTest::newRow("absent") << QByteArray() << false;
        QTest::newRow("not well-formed") << opml("<outline text=\"a & b\" xmlUrl=\"http://h/\"/>") << false;
        QTest::newRow("no markup") << QByteArray("Bonjour") << false;
        QTest::newRow("entity bomb") << entityBomb() << false;
        QTest::newRow("another root") << QByteArray("<rss><head><title/></head><body/></rss>") << true;
        QTest::newRow("root in capitals") << QByteArray("<OPML><head><title/></head><body/></OPML>") << true;
        QTest::newRow("no head") << opml("", "") << true;
        QTest::newRow("no title") << opml("", "<head/>") << true;
        QTest::newRow("no body") << QByteArray("<opml><head><title/></head></opml>") << true;
        QTest::newRow("no text") << opml("<outline text=\"A\"/><outline xmlUrl=\"http://h/\"/>") << true;
    }

    void aFileThatIsNoListIsRefused()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(bool, loads);
        const TemporaryDataDirectory data;
        if (!bytes.isEmpty())
            data.write(u"bad.opml"_s, bytes);
        OpmlDocument document;
        QCOMPARE(document.load(data.file(u"bad.opml"_s)), loads);
        QVERIFY(!document.list());
    }
};

QTEST_APPLESS_MAIN(OpmlDocumentTest)
#include "tst_OpmlDocument.moc"
