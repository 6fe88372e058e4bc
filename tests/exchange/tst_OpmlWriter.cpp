// SPDX-License-Identifier: GPL-3.0-or-later

#include "exchange/OpmlWriter.h"

#include "exchange/OpmlDocument.h"
#include "platform/Literals.h"
#include "platform/RunTimeError.h"
#include "tests/fixtures/TemporaryDataDirectory.h"

#include <QTest>

namespace {

const QByteArray Catalogue =
    "<favoris><dir name=\"Presse\" key=\"1\"><feed name=\"Été\" url=\"http://h/1\" key=\"2\"/>"
    "<dir name=\"Vide\" key=\"3\"/></dir><other/><feed name=\"B\" url=\"http://h/2\" key=\"4\"/>"
    "</favoris>";

} // namespace

class OpmlWriterTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theFileHoldsTheLinesThatAreDue_data()
    {
        QTest::addColumn<QByteArray>("catalogue");
        QTest::addColumn<bool>("structured");
        QTest::addColumn<QByteArray>("body");
        const QByteArray one = "<outline text=\"\xC9t\xE9\" xmlUrl=\"http://h/1\" />\r\n";
        const QByteArray two = "<outline text=\"B\" xmlUrl=\"http://h/2\" />\r\n";
        QTest::newRow("flat") << Catalogue << false << one + two;
        QTest::newRow("with folders") << Catalogue << true
                                      << "<outline text=\"Presse\" >\r\n" + one +
                                             "<outline text=\"Vide\" >\r\n</outline>\r\n</outline>\r\n" + two;
        QTest::newRow("empty catalogue") << QByteArray("<favoris/>") << true << QByteArray();
    }

    void theFileHoldsTheLinesThatAreDue()
    {
        QFETCH(QByteArray, catalogue);
        QFETCH(bool, structured);
        QFETCH(QByteArray, body);
        m_data.write(u"out.opml"_s, QByteArray(5000, 'x'));
        QVERIFY(write(catalogue, structured));
        QCOMPARE(
            m_data.read(u"out.opml"_s),
            "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\r\n<opml version=\"1.1\">\r\n<head>\r\n<title></title>\r\n"
            "<ownerName>Camille</ownerName>\r\n<ownerEmail>c@h</ownerEmail>\r\n</head>\r\n<body>\r\n" +
                body + "</body>\r\n</opml>\r\n");
    }

    void aFlatExportIsReadBackWholeAndAStructuredOneWithoutTheFolders()
    {
        const auto readBack = [this](bool structured) {
            write(Catalogue, structured);
            OpmlDocument document;
            document.load(target());
            QStringList texts;
            const auto list = document.list();
            for (const OpmlDocument::Feed &feed : list->feeds)
                texts.append(feed.text + u' ' + feed.address);
            return texts;
        };
        QCOMPARE(readBack(false), (QStringList{u"Été http://h/1"_s, u"B http://h/2"_s}));
        QCOMPARE(readBack(true), QStringList{u"B http://h/2"_s});
    }

    void nothingIsEscaped()
    {
        m_title = u"R & D"_s;
        QVERIFY(write("<favoris><feed name=\"a &lt; b\" url=\"http://h/?x=1&amp;y=2\"/></favoris>"));
        const QByteArray bytes = m_data.read(u"out.opml"_s);
        QVERIFY(bytes.contains("<title>R & D</title>"));
        QVERIFY(bytes.contains("<outline text=\"a < b\" xmlUrl=\"http://h/?x=1&y=2\" />"));
        QVERIFY(!OpmlDocument().load(target()));
    }

    void whatLatin1LacksIsWrittenAsItsNumberAndReadBack()
    {
        m_title = u"été \U0001F600"_s + QChar(0xD800);
        QVERIFY(write(
            "<favoris><feed name='L\u2019\u00e9t\u00e9, \u0153uvre \u2013 5\u00a0\u20ac \u0141 \U0001F600' url='u'/>"
            "<feed name='&#x81;&#x92;' url='\u65e5'/></favoris>"));
        const QByteArray bytes = m_data.read(u"out.opml"_s);
        QVERIFY(bytes.contains("<title>\xE9t\xE9 &#128512;&#65533;</title>"));
        QVERIFY(bytes.contains(
            "\"L&#8217;\xE9t\xE9, &#339;uvre &#8211; 5\xA0&#8364; &#321; &#128512;\" xmlUrl=\"u\" />\r\n"));
        QVERIFY(bytes.contains("\"\x81\x92\" xmlUrl=\"&#26085;\" />\r\n"));
        OpmlDocument document;
        QVERIFY(document.load(target()));
        QCOMPARE(document.list()->feeds.at(0).text, u"L\u2019été, œuvre \u2013 5\u00a0€ Ł \U0001F600"_s);
        QCOMPARE(document.list()->feeds.at(1).text, u"\u0081\u0092"_s);
        QCOMPARE(document.list()->feeds.at(1).address, u"\u65e5"_s);
    }

    void anOldFileStandsWhenTheExportFails_data()
    {
        QTest::addColumn<QByteArray>("catalogue");
        QTest::newRow("a feed without address") << QByteArray("<favoris><feed name=\"A\"/></favoris>");
        QTest::newRow("another root") << QByteArray("<feeds/>");
    }

    void anOldFileStandsWhenTheExportFails()
    {
        QFETCH(QByteArray, catalogue);
        m_data.write(u"out.opml"_s, "old");
        QVERIFY_EXCEPTION_THROWN(write(catalogue), RunTimeError);
        QCOMPARE(m_data.read(u"out.opml"_s), QByteArray("old"));
        QVERIFY_EXCEPTION_THROWN(writeOpml({m_data.file(u"feeds.xml"_s), {}, {}, {}}, m_data.file(u"none/out.opml"_s)),
                                 RunTimeError);
    }

private:
    QString target() const { return m_data.file(u"out.opml"_s); }
    bool write(const QByteArray &catalogue, bool structured = false)
    {
        m_data.write(u"feeds.xml"_s, catalogue);
        return writeOpml({m_data.file(u"feeds.xml"_s), std::exchange(m_title, {}), u"Camille"_s, u"c@h"_s, structured},
                         target());
    }

    TemporaryDataDirectory m_data;
    QString m_title;
};

QTEST_APPLESS_MAIN(OpmlWriterTest)
#include "tst_OpmlWriter.moc"
