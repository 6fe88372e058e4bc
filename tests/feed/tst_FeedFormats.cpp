// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/feed/FeedDump.h"
#include "tests/feed/FeedFiles.h"
#include "tests/fixtures/Golden.h"
#include "tests/fixtures/TextCases.h"

#include <QTest>

/// How the texts of documents are read and written, and which documents are taken for what.
class tst_FeedFormats : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void textsAreReadAsTheirFormatSays();
    void documentsAreToldApart();
    void faultsAreMended();
    void everyEncodingIsReadAndWrittenBack();
    void aFailedLoadLeavesNothingHeld();
    void indicesOutsideAreTolerated();

private:
    FeedFiles m_files;
};

void tst_FeedFormats::textsAreReadAsTheirFormatSays()
{
    for (const auto &[name, rules] : {std::pair(u"readings"_s, FeedRules()), {u"readings-all"_s, {allFormats()}}}) {
        QString told;
        for (const TextCase &each : readCases(name + u".txt"_s)) {
            CachedFeed feed({}, rules), feedOfAll({}, {allFormats()});
            QCOMPARE(feed.Load(m_files.write("feed.xml", each.documents.first())), LoadOk);
            QCOMPARE(feedOfAll.Load(feed.Path()), LoadOk);
            QCOMPARE(FeedDump::all(feedOfAll), FeedDump::all(feed));
            told += u"=== "_s + each.name + u'\n' + FeedDump::all(feed).join(u'\n') + u'\n';
        }
        QCOMPARE(differenceFromGolden(name + u".expected"_s, told), QString());
    }
}

/// The results are numbers that are part of the interface; 5 is the only success.
void tst_FeedFormats::documentsAreToldApart()
{
    QString told;
    for (const TextCase &each : readCases(u"apart.txt"_s)) {
        CachedFeed feed, feedOfAll({}, {allFormats()});
        const int result = feed.Load(m_files.write("feed.xml", each.documents.first()));
        QCOMPARE(feed.IsLoaded(), result == 5);
        const int resultOfAll = feedOfAll.Load(m_files.path("feed.xml"));
        told += QString::number(result) + u' ' + each.name +
                (resultOfAll == result ? QString() : u", %1 with all formats"_s.arg(resultOfAll)) + u'\n';
    }
    QCOMPARE(differenceFromGolden(u"apart.expected"_s, told), QString());
}

/// What each document is by the usual rules, and what it tells once it is mended, saved and read as usual.
void tst_FeedFormats::faultsAreMended()
{
    QString told;
    for (const TextCase &each : readCases(u"repair.txt"_s)) {
        const QString path = m_files.write("feed.xml", each.documents.first().chopped(1));
        CachedFeed usual, mended({}, {.reading = mendingReading()});
        told += u"=== %1\n%2 "_s.arg(each.name).arg(usual.Load(path)) + usual.Title();
        told += u"\n%1 "_s.arg(mended.Load(path));
        told += mended.IsRepaired() ? u"repaired\n"_s : u"\n"_s;
        const QStringList before = FeedDump::all(mended);
        mended.Save();
        QVERIFY(!mended.IsRepaired());
        if (mended.IsLoaded())
            QCOMPARE(usual.Load(path), LoadOk);
        QCOMPARE(FeedDump::all(usual), before);
        told += before.join(u'\n') + u'\n';
    }
    QCOMPARE(differenceFromGolden(u"repair.expected"_s, told), QString());
}

/// The title of the store, and an item whose characters its encoding may lack, all seen in the file and read again.
void tst_FeedFormats::everyEncodingIsReadAndWrittenBack()
{
    const auto declared = [](const char *encoding, const QByteArray &title) -> QByteArray {
        return rss("<title>" + title + "</title>", "<?xml version='1.0' encoding='" + QByteArray(encoding) + "'?>");
    };
    const QString wide = u"\uFEFF<rss version='2.0'><channel><title>é日€</title></channel></rss>"_s;
    const QByteArray item = "<title>\xC3\xA9 \xE2\x82\xAC \xE6\x97\xA5 \xF0\x9F\x8C\x99</title><description>"
                            "<![CDATA[<\xE6\x97\xA5>]]></description></item>";
    const QByteArrayList stores = {"\xEF\xBB\xBF<?xml version='1.0'?>" + rss("<title>\xC3\xA9</title>"),
                                   declared("ISO-8859-1", "\xE9"),
                                   declared("iso-8859-15", "\xA4"),
                                   declared("windows-1252", "\x80\x93"),
                                   declared("Shift_JIS", "\x93\xFA\x96\x7B"),
                                   declared("KOI8-R", "\xED\xC9\xD2"),
                                   declared("utf-8", "\xC3\xA9"),
                                   declared("UTF-7", "t"), // isn't read as it is written
                                   QByteArray(reinterpret_cast<const char *>(wide.utf16()), wide.size() * 2)};
    QString told;
    for (const char *const itemTag : {"<item>", "<item \xE6\x97\xA5='1'>"}) { // a name can't be written as a reference
        for (const QByteArray &store : stores) {
            CachedFeed other, feed([] { return QDateTime({2004, 7, 1}, {14, 0}, Qt::UTC); });
            QCOMPARE(other.Load(m_files.write("other.xml", rss(QByteArray(itemTag) + item))), LoadOk);
            QCOMPARE(feed.Load(m_files.write("feed.xml", store)), LoadOk);
            QVERIFY(feed.AddItem(other.GetItemNode(0)));
            feed.Save();
            for (const char byte : m_files.read("feed.xml"))
                told += byte == '\n' || (byte >= ' ' && byte < 0x7F) ? QString(QLatin1Char(byte))
                                                                     : u'\\' + QString::number(uchar(byte), 16);
            QCOMPARE(feed.Load(m_files.path("feed.xml")), LoadOk);
            told += u'\n' + FeedDump::all(feed).join(u'\n') + u"\n\n"_s;
        }
    }
    QCOMPARE(differenceFromGolden(u"encodings.expected"_s, told), QString());
}

void tst_FeedFormats::aFailedLoadLeavesNothingHeld()
{
    CachedFeed feed;
    for (const QString &bad : {m_files.write("bad.xml", "no feed"), m_files.path("absent"), m_files.path(".")}) {
        QCOMPARE(feed.Load(m_files.writeSample("feed.xml", "rss20.xml")), LoadOk);
        QCOMPARE(feed.Path(), m_files.path("feed.xml"));
        QCOMPARE(int(feed.Load(bad)), bad.endsWith(".xml"_L1) ? 1 : 0); // numbers that are part of the interface
        FeedImage image;
        image.Url = u"old"_s;
        QVERIFY(!feed.IsLoaded() && !feed.IsStale() && feed.Path().isEmpty() && !feed.GetImage(image));
        QCOMPARE(image.Url, u"old"_s);
        QCOMPARE(FeedDump::all(feed), (QStringList{u"Version: 0"_s, u"Items: 0"_s}));
        QVERIFY(feed.GetItemNode(0) == nullptr && !feed.AddItem(nullptr) && !feed.SaveWithin(1000));
        feed.GiveUpMarks();
        feed.Save();
        feed.Restore();
    }
    QCOMPARE(m_files.read("bad.xml"), QByteArray("no feed"));
}

void tst_FeedFormats::indicesOutsideAreTolerated()
{
    CachedFeed feed;
    QCOMPARE(feed.Load(m_files.write("feed.xml", rss("<item/><item/><item/>"))), LoadOk);
    for (const qint16 index : {qint16(-1), qint16(3), qint16(32767), qint16(-32768)}) {
        QCOMPARE(FeedDump::item(feed, index), QStringList());
        QCOMPARE(feed.ItemDownloadDate(index), QString());
        feed.SetItemRead(index, true);
        feed.DeleteItem(index);
        feed.RemoveItem(index);
        QVERIFY(!feed.AddItem(feed.GetItemNode(index)));
        QVERIFY(!feed.IsItemRead(index) && !feed.IsItemDeleted(index));
    }
    QCOMPARE(feed.ItemCount(), qint16(3));
}

QTEST_GUILESS_MAIN(tst_FeedFormats)
#include "tst_FeedFormats.moc"
