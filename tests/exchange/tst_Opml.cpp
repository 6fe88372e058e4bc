// SPDX-License-Identifier: GPL-3.0-or-later

#include "exchange/OpmlDocument.h"
#include "exchange/OpmlWriter.h"

#include "platform/Literals.h"
#include "platform/RunTimeError.h"
#include "tests/fixtures/TemporaryDataDirectory.h"

#include <QStringEncoder>
#include <QTest>

#include <tuple>

namespace {

const QByteArray Catalogue =
    "<favoris><dir name=\"Presse\" key=\"1\"><feed name=\"Été\" url=\"http://h/1\" key=\"2\"/>"
    "<dir name=\"Vide\" key=\"3\"/></dir><other/><feed name=\"B\" url=\"http://h/2\" key=\"4\"/>"
    "</favoris>";

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

/// "position text address" of each feed, comma by comma; "none" for what is no list.
QString told(const OpmlDocument &document)
{
    const auto list = document.list();
    QStringList found;
    for (const OpmlDocument::Feed &feed : list ? list->feeds : decltype(list->feeds)())
        found.append(QString::number(feed.position) + u' ' + feed.text + u' ' + feed.address);
    return list ? found.join(u", "_s) : u"none"_s;
}

} // namespace

class OpmlTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theFileHoldsTheLinesThatAreDueAndIsReadBack()
    {
        const QByteArray one = "<outline text=\"\xC9t\xE9\" xmlUrl=\"http://h/1\" />\r\n";
        const QByteArray two = "<outline text=\"B\" xmlUrl=\"http://h/2\" />\r\n";
        const QByteArray folders =
            "<outline text=\"Presse\" >\r\n" + one + "<outline text=\"Vide\" >\r\n</outline>\r\n</outline>\r\n" + two;
        // Catalogue, title, with folders, the title's bytes, the body's, and what is read back.
        const QList<std::tuple<QByteArray, QString, bool, QByteArray, QByteArray, QString>> rows = {
            {Catalogue, {}, false, "", one + two, u"0 Été http://h/1, 1 B http://h/2"_s},
            {Catalogue, {}, true, "", folders, u"1 B http://h/2"_s}, // folders aren't read
            {"<favoris/>", u"L"_s, true, "L", "", {}},
            // Nothing is escaped.
            {"<favoris><feed name=\"a &lt; b\" url=\"http://h/?x=1&amp;y=2\"/></favoris>", u"R & D"_s, false, "R & D",
             "<outline text=\"a < b\" xmlUrl=\"http://h/?x=1&y=2\" />\r\n", u"none"_s},
            // What Latin-1 lacks is written as its number.
            {"<favoris><feed name='L\u2019\u00e9t\u00e9, \u0153uvre \u2013 5\u00a0\u20ac \u0141 \U0001F600' url='u'/>"
             "<feed name='&#x81;&#x92;' url='\u65e5'/></favoris>",
             u"été \U0001F600"_s + QChar(0xD800), false, "\xE9t\xE9 &#128512;&#65533;",
             "<outline text=\"L&#8217;\xE9t\xE9, &#339;uvre &#8211; 5\xA0&#8364; &#321; &#128512;\" xmlUrl=\"u\" />\r\n"
             "<outline text=\"\x81\x92\" xmlUrl=\"&#26085;\" />\r\n",
             u"0 L\u2019été, œuvre \u2013 5\u00a0€ Ł \U0001F600 u, 1 \u0081\u0092 \u65e5"_s},
        };
        for (const auto &[catalogue, title, structured, head, body, readBack] : rows) {
            m_data.write(u"out.opml"_s, QByteArray(5000, 'x'));
            m_data.write(u"feeds.xml"_s, catalogue);
            QVERIFY(writeOpml({m_data.file(u"feeds.xml"_s), title, u"Camille"_s, u"c@h"_s, structured}, target()));
            QCOMPARE(m_data.read(u"out.opml"_s),
                     "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\r\n<opml version=\"1.1\">\r\n<head>\r\n<title>" +
                         head +
                         "</title>\r\n<ownerName>Camille</ownerName>\r\n<ownerEmail>c@h</ownerEmail>\r\n</"
                         "head>\r\n<body>\r\n" +
                         body + "</body>\r\n</opml>\r\n");
            OpmlDocument document;
            QCOMPARE(document.load(target()), readBack != u"none");
            QCOMPARE(told(document), readBack);
        }
    }

    void anOldFileStandsWhenTheExportFails()
    {
        const auto write = [this](const QString &path) {
            return writeOpml({m_data.file(u"feeds.xml"_s), {}, {}, {}}, path);
        };
        m_data.write(u"out.opml"_s, "old");
        for (const char *catalogue : {"<favoris><feed name=\"A\"/></favoris>", "<feeds/>"}) {
            m_data.write(u"feeds.xml"_s, catalogue);
            QVERIFY_EXCEPTION_THROWN(write(target()), RunTimeError);
        }
        m_data.write(u"feeds.xml"_s, "<favoris>");
        QVERIFY(!write(target()));
        QCOMPARE(m_data.read(u"out.opml"_s), QByteArray("old"));
        m_data.write(u"feeds.xml"_s, "<favoris/>");
        QVERIFY_EXCEPTION_THROWN(write(m_data.file(u"none/out.opml"_s)), RunTimeError);
    }

    void listsOfOtherReadersAreRead()
    {
        QStringEncoder utf16(QStringEncoder::Utf16LE, QStringEncoder::Flag::WriteBom);
        const QString wide = u"<?xml version=\"1.0\" encoding=\"UTF-16\"?><opml><head><title/></head><body>"
                             "<outline text=\"日本\" xmlUrl=\"http://h/\"/></body></opml>"_s;
        const QList<QPair<QByteArray, QString>> rows = {
            {opml(""), {}},
            {opml("<outline type=\"rss\" version=\"RSS\" title=\"T\" text=\"A &amp; b\" htmlUrl=\"http://h/\" "
                  "xmlUrl=\"http://h/f?a=1&amp;b=2\"/>"),
             u"0 A & b http://h/f?a=1&b=2"_s},
            // Folders are skipped, and leave gaps.
            {opml("<outline text=\"D\"><outline text=\"inner\" xmlUrl=\"http://h/i\"/></outline>"
                  "<outline text=\"B\" xmlUrl=\"http://h/b\"/>"),
             u"1 B http://h/b"_s},
            // Names are told with case.
            {opml("<outline text=\"A\" xmlURL=\"http://h/\"/><OUTLINE text=\"B\" xmlUrl=\"http://h/\"/>"
                  "<outline text=\"C\" xmlUrl=\"\"/>"),
             u"1 C "_s},
            // A document type without an outer part.
            {"<!DOCTYPE opml [<!ENTITY e \"été\">]>" + opml("<outline text=\"&e;\" xmlUrl=\"http://h/\"/>").mid(38),
             u"0 été http://h/"_s},
            {QByteArray(utf16(wide)), u"0 日本 http://h/"_s},
        };
        for (const auto &[bytes, expected] : rows) {
            OpmlDocument document;
            QVERIFY(document.loadXml(bytes));
            QVERIFY(document.list());
            QCOMPARE(told(document), expected);
        }
    }

    void aFileThatIsNoListIsRefused()
    {
        OpmlDocument document;
        QVERIFY(!document.load(m_data.file(u"absent.opml"_s)));
        const QByteArrayList refused = {opml("<outline text=\"a & b\" xmlUrl=\"http://h/\"/>"), "Bonjour",
                                        entityBomb()};
        const QByteArrayList noLists = {"<rss><head><title/></head><body/></rss>",
                                        "<OPML><head><title/></head><body/></OPML>",
                                        opml("", ""),
                                        opml("", "<head/>"),
                                        "<opml><head><title/></head></opml>",
                                        opml("<outline text=\"A\"/><outline xmlUrl=\"http://h/\"/>")};
        for (const QByteArray &bytes : refused + noLists) {
            m_data.write(u"bad.opml"_s, bytes);
            QCOMPARE(document.load(m_data.file(u"bad.opml"_s)), noLists.contains(bytes));
            QVERIFY2(!document.list(), bytes.constData());
        }
    }

private:
    QString target() const { return m_data.file(u"out.opml"_s); }

    TemporaryDataDirectory m_data;
};

QTEST_APPLESS_MAIN(OpmlTest)
#include "tst_Opml.moc"
