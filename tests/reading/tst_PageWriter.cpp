// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/StandardDates.h"
#include "platform/Literals.h"
#include "reading/PageWriter.h"

#include "platform/RunTimeError.h"
#include "tests/fixtures/Golden.h"
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

} // namespace

class TestPageWriter : public QObject
{
    Q_OBJECT

    TemporaryDataDirectory m_data;
    CurrentFeed m_current;
    const Dates m_dates{summerInParis};
    PageWriter m_pages{m_data.directory(), m_current, m_dates};

    /// The page, or a mail: "·" stands for a zero byte, "¶" for the end of a line.
    static QString shown(QString text) { return text.replace(QChar(0), u'·').replace(u"\r\n"_s, u"¶\n"_s) + u"\n\n"_s; }
    QString page() const { return shown(QString::fromLatin1(m_data.read(u"tmp.htm"_s))); }

    QString channelPageOf(const QByteArray &image)
    {
        m_data.write(u"feed.xml"_s, "<rss version=\"2.0\"><channel><title>t</title>" + image + "</channel></rss>");
        if (m_current.document->Load(m_data.file(u"feed.xml"_s)) != LoadOk)
            return u"not loaded"_s;
        m_pages.writeChannelPage();
        return page();
    }

private Q_SLOTS:
    void pagesAndMailsAreAsTheyAreKept()
    {
        QCOMPARE(m_current.document->Load(u"" TEST_DATA_DIR "/pages.xml"_s), LoadOk);
        m_pages.writeChannelPage();
        QString told = page();
        for (const qint16 item : {0, 1, 2}) {
            m_pages.writeItemPage(item);
            told += page() + shown(m_pages.mailText(item));
        }
        QVERIFY_THROWS_EXCEPTION(RunTimeError, m_pages.writeItemPage(3));
        QVERIFY_THROWS_EXCEPTION(RunTimeError, m_pages.mailText(3));
        const PageWriter nowhere(DataDirectory(m_data.file(u"missing"_s)), m_current, m_dates);
        QVERIFY_THROWS_EXCEPTION(RunTimeError, nowhere.writeChannelPage());
        const QByteArray image =
            "<image><url>http://example.org/i.png</url><title>i</title><link>http://h/</link>%</image>";
        told += channelPageOf({}) + channelPageOf(QByteArray(image).replace("%", "")) +
                channelPageOf(QByteArray(image).replace("%", "<width>144</width><height>400</height>")) +
                channelPageOf(QByteArray(image).replace("%", "<width>0</width><height>30</height>"));
        QCOMPARE(differenceFromGolden(u"pages.txt"_s, told), QString());
        QCOMPARE(PageWriter::UrlFileName(u"a/b/c.mp3"_s) + PageWriter::UrlFileName(u"d"_s), u"c.mp3d"_s);
    }

    /// In UTF-8, with relative addresses made whole by the feed's address, and dates by their standards.
    void pagesAndMailsHoldEveryScript()
    {
        CurrentFeed current;
        current.document = std::make_shared<CachedFeed>(Clock(), FeedRules{.addresses = wholeAddresses()});
        const StandardDates dates(m_dates);
        const PageWriter pages(m_data.directory(), current, dates, PageText::utf8);
        QCOMPARE(current.document->Load(u"" TEST_DATA_DIR "/whole.xml"_s), LoadOk);
        QString told;
        for (const QString &address : {QString(), u"https://feed.example/news/feed.xml"_s}) {
            current.document->SetAddress(address);
            pages.writeChannelPage();
            told += shown(QString::fromUtf8(m_data.read(u"tmp.htm"_s)));
            for (const qint16 item : {0, 1}) {
                pages.writeItemPage(item);
                told += shown(QString::fromUtf8(m_data.read(u"tmp.htm"_s))) + shown(pages.mailText(item));
            }
            ItemEnclosure enclosure;
            QVERIFY(current.document->GetItemEnclosure(0, enclosure));
            told += enclosure.Url + u'\n';
        }
        QCOMPARE(differenceFromGolden(u"whole.txt"_s, told), QString());
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
};

QTEST_GUILESS_MAIN(TestPageWriter)
#include "tst_PageWriter.moc"
