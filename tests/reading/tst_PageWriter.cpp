// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/Literals.h"
#include "reading/PageWriter.h"

#include "platform/RunTimeError.h"
#include "tests/fixtures/TemporaryDataDirectory.h"

#include <QTest>

#include <limits>

using namespace Qt::StringLiterals;

namespace {

/// Two hours ahead of UTC.
TimeZoneRecord summerInParis()
{
    return {.daylight = true, .bias = -60, .daylightMonth = 3, .daylightBias = -60};
}

/// The bytes of a text as it lies in memory: what a wide field looks like in tmp.htm.
QByteArray wide(const QString &text)
{
    QByteArray bytes;
    for (const QChar c : text)
        bytes.append(static_cast<char>(c.unicode() & 0xFF)).append(static_cast<char>(c.unicode() >> 8));
    return bytes;
}

const QByteArray headLine = "<head><link rel=\"stylesheet\" href=\"style.css\" type=\"text/css\" /></head>\r\n";

} // namespace

class TestPageWriter : public QObject
{
    Q_OBJECT

    TemporaryDataDirectory m_data;
    CurrentFeed m_current;
    PageWriter m_pages{m_data.directory(), m_current, Dates(summerInParis)};

    bool load(const QString &channel)
    {
        m_data.write(u"feed.xml"_s, (u"<?xml version=\"1.0\" encoding=\"UTF-8\"?><rss version=\"2.0\"><channel>" +
                                     channel + u"</channel></rss>")
                                        .toUtf8());
        return m_current.document->Load(m_data.file(u"feed.xml"_s)) == LoadOk;
    }

    QByteArray itemPage(const QString &itemXml)
    {
        if (!load(u"<title>t</title><item>" + itemXml + u"</item>"))
            return "not loaded";
        m_pages.writeItemPage(0);
        return m_data.read(u"tmp.htm"_s);
    }

private Q_SLOTS:
    void theChannelPageHoldsItsPictureAndItsTexts()
    {
        QVERIFY(load(u"<title>Été &lt;b&gt;</title><link>http://example.org/?a=1&amp;b=é€Ω</link>"
                     "<description>Dé&amp;</description><image><url>http://example.org/i.png</url><title>Îm</title>"
                     "<link>http://example.org/</link><width>200</width><height>500</height>"
                     "<description>Bulle</description></image>"_s));
        m_pages.writeChannelPage();
        const QByteArray expected =
            "<html>\r\n" + headLine +
            "<body><div id=\"frame\">\r\n"
            "<table width=\"95%\" cellspacing=\"10\"><tr><td width=\"144px\" valign=\"top\">\r\n"
            "<a href=\"http://example.org/\"><img src=\"http://example.org/i.png\" alt=\"" +
            wide(u"Îm"_s) + "\" width=\"144\" height=\"400\" title=\"" + wide(u"Bulle"_s) +
            "\" /></a></td>\r\n"
            "<td valign=\"top\"><h1>" +
            wide(u"Été <b>"_s) +
            "</h1>\r\n"
            "<p id=\"content\">" +
            wide(u"Dé&"_s) +
            "</p>\r\n"
            "<p id=\"link\"><img src=\"slien.gif\" />&nbsp;"
            "<a href=\"http://example.org/?a=1&b=\xE9\x80?\">Site web</a></p></td>\r\n"
            "</tr></table></div></body></html>";
        QCOMPARE(m_data.read(u"tmp.htm"_s), expected);
    }

    void aPictureWithoutSizesGetsTheUsualOnesAndNoBubble()
    {
        QVERIFY(load(u"<title>t</title><image><url>http://example.org/i.png</url><title>i</title>"
                     "<link>http://example.org/</link></image>"_s));
        m_pages.writeChannelPage();
        QVERIFY(m_data.read(u"tmp.htm"_s).contains("\" width=\"88\" height=\"31\" /></a></td>\r\n"));
        QVERIFY(load(u"<title>t</title>"_s));
        m_pages.writeChannelPage();
        QVERIFY(m_data.read(u"tmp.htm"_s).contains("valign=\"top\">\r\n</td>\r\n"));
    }

    void theItemPageHoldsSourceAuthorAndDate()
    {
        const QByteArray page =
            itemPage(u"<title>Un €</title><link>http://example.org/1</link><description>&lt;p&gt;Texte&lt;/p&gt;"
                     "</description><source url=\"http://example.org/s\">Autre</source><author>Zoé</author>"
                     "<pubDate>Thu, 01 Jul 2004 12:00:00 GMT</pubDate>"_s);
        const QByteArray expected =
            "<html>\r\n" + headLine + "<body><div id=\"frame\"><h1>" + wide(u"Un €"_s) +
            "</h1>\r\n"
            "<p id=\"content\">" +
            wide(u"<p>Texte</p>"_s) +
            "</p>\r\n"
            "<p id=\"source\">[ <span>Source : </span><a href=\"http://example.org/s\">Autre</a> ]</p>\r\n"
            "<p id=\"author\">Par " +
            wide(u"Zoé"_s) +
            " le 01/07/2004 14:00:00</p>\r\n"
            "<p id=\"link\"><img src=\"slien.gif\" />&nbsp;<a href=\"http://example.org/1\">Voir le site</a></p>\r\n"
            "</div></body></html>";
        QCOMPARE(page, expected);
    }

    void theMailTextKeepsTheTitleAndTheAuthorAsTheyAre()
    {
        QVERIFY(load(u"<title>t</title><item><title>Été</title><link>http://example.org/1</link>"
                     "<description>Dé</description><source url=\"http://example.org/s\">Autre</source>"
                     "<author>Zoé</author><pubDate>2004-07-01T12:00:00Z</pubDate></item>"
                     "<item><title>seul</title><link>http://example.org/2</link></item>"_s));
        QCOMPARE(m_pages.mailText(0), u"Été\r\n\r\nD\u0000é\u0000\r\n\r\n[Source : Autre (http://example.org/s)]\r\n"
                                      "Par Zoé le 01/07/2004 14:00:00\r\n"
                                      "Pour l'article en entier : http://example.org/1\r\n"_s);
        QCOMPARE(m_pages.mailText(1), u"seul\r\n\r\n\r\n\r\nPour l'article en entier : http://example.org/2\r\n"_s);
    }

    void errorsOfTheDateAndOfTheFileGoThrough()
    {
        QVERIFY(
            load(u"<title>t</title><item><title>t</title><author>a</author><pubDate>2004-07-01Tx</pubDate></item>"_s));
        QVERIFY_THROWS_EXCEPTION(RunTimeError, m_pages.writeItemPage(0));
        QVERIFY_THROWS_EXCEPTION(RunTimeError, m_pages.mailText(0));
        const PageWriter nowhere(DataDirectory(m_data.file(u"missing"_s)), m_current, Dates(summerInParis));
        QVERIFY_THROWS_EXCEPTION(RunTimeError, nowhere.writeChannelPage());
    }

    void sizesAreRoundedToTheEvenNeighbourStepByStep()
    {
        struct Size
        {
            qint32 bytes;
            QString text;
            qint32 left; ///< the argument is changed on the way
        };
        const QList<Size> sizes = {
            {1023, u"1023 o"_s, 1023},
            {1024, u"1 Ko"_s, 1},
            {1536, u"2 Ko"_s, 2},
            {2560, u"2 Ko"_s, 2},
            {1048064, u"1 Mo"_s, 1},
            {1072693248, u"1023 Mo"_s, 1023},
            {1073741824, u"> 1 Go"_s, 1024},
            {std::numeric_limits<qint32>::max(), u"> 1 Go"_s, 2048},
        };
        for (const Size &size : sizes) {
            qint32 bytes = size.bytes;
            QCOMPARE(PageWriter::FormatSize(bytes), size.text);
            QCOMPARE(bytes, size.left);
        }
    }

    void theAuthorLineNeedsAuthorAndDate()
    {
        QVERIFY(!itemPage(u"<title>t</title><author>Zoé</author>"_s).contains("id=\"author\""));
        QVERIFY(!itemPage(u"<title>t</title><pubDate>2004-07-01T12:00:00Z</pubDate>"_s).contains("id=\"author\""));
        QVERIFY(itemPage(u"<title>t</title><source url=\"http://example.org/s\"/>"_s)
                    .contains("<a href=\"http://example.org/s\"></a> ]</p>\r\n"));
    }
};

QTEST_GUILESS_MAIN(TestPageWriter)
#include "tst_PageWriter.moc"
