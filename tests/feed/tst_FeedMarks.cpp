// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/RunTimeError.h"
#include "tests/feed/FeedDump.h"
#include "tests/feed/FeedFiles.h"

#include <QDir>
#include <QRegularExpression>
#include <QTest>

/// Marks, added and removed items, and what stays of them in the file.
class tst_FeedMarks : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void addedAndRemovedItemsKeepTheirOrder();
    void anItemOutlivesItsDocumentAndLeavesItsMarksThere();
    void aFailedSaveIsRaisedAndLeavesTheFile();
    void aReplacedFileGetsTheMarksAndNothingElse_data();
    void aReplacedFileGetsTheMarksAndNothingElse();
    void onlyAsManyItemsAsAnIndexCanNameAreOfferedAndSaved();

private:
    static QByteArray items(const QByteArray &titles)
    {
        QByteArray all;
        for (const char title : titles)
            all += QByteArray("<item><title>") + title + "</title></item>\n";
        return rss(all);
    }
    static QString titles(const CachedFeed &feed)
    {
        QString all;
        for (qint16 i = 0; i < feed.ItemCount(); ++i)
            all += feed.ItemTitle(i);
        return all;
    }

    FeedFiles m_files;
    QDateTime m_now{QDate(2004, 7, 1), QTime(14, 0), Qt::UTC};
    Clock m_clock = [this] { return m_now; };
};

/// Lower case: the items of the store; capitals: those of the feed that they are taken from.
void tst_FeedMarks::addedAndRemovedItemsKeepTheirOrder()
{
    CachedFeed fresh(m_clock), store(m_clock);
    QCOMPARE(fresh.Load(m_files.write("fresh.xml", items("CDE"))), LoadOk);
    QCOMPARE(store.Load(m_files.write("store.xml", items("abc"))), LoadOk);
    const auto add = [&](qint16 index) { QVERIFY(store.AddItem(fresh.GetItemNode(index))); };
    add(0);
    add(1);
    QCOMPARE(titles(store), u"CDabc"_s);
    store.RemoveItem(1);
    store.RemoveItem(3);
    const auto taken = store.GetItemNode(3);
    QCOMPARE(titles(store), u"CDabc"_s); // until the next save
    store.Save();
    QCOMPARE(titles(store), u"Cac"_s);
    add(2); // a new run, which stands in front of the last one
    QVERIFY(store.AddItem(store.GetItemNode(2)));
    QVERIFY(store.AddItem(taken));
    QCOMPARE(titles(store), u"EabCac"_s);
    store.Save();
    QCOMPARE(store.Load(m_files.path("store.xml")), LoadOk);
    QCOMPARE(titles(store), u"EabCac"_s);
    const QByteArray day = " quillwire:downloaded=\"2004-01-01T12:00:00Z\"";
    const QByteArray now = " quillwire:downloaded=\"2004-07-01T14:00:00Z\"";
    QByteArray saved = items("EabCac");
    saved.replace("<rss", "<?xml version=\"1.0\"?>\n<rss xmlns:quillwire=\"urn:quillwire:marks\"") += '\n';
    qsizetype place = 0;
    for (const QByteArray &mark : {now, now, now, now, day, day})
        saved.insert(place = saved.indexOf("<item>", place) + 5, mark);
    QCOMPARE(m_files.read("store.xml"), saved);
}

void tst_FeedMarks::anItemOutlivesItsDocumentAndLeavesItsMarksThere()
{
    CachedFeed source(m_clock), store(m_clock);
    QCOMPARE(source.Load(m_files.write("source.xml", items("a"))), LoadOk);
    QCOMPARE(store.Load(m_files.write("store.xml", rss({}))), LoadOk);
    source.SetItemRead(0, true);
    source.DeleteItem(0);
    QCOMPARE(FeedDump::marks(source), u"a read deleted 2004-01-01T12:00:00Z"_s);
    const auto node = source.GetItemNode(0);
    QCOMPARE(source.Load(m_files.path("absent")), LoadFileNotFound);
    QVERIFY(store.AddItem(node));
    QCOMPARE(FeedDump::marks(store), u"a 2004-07-01T14:00:00Z"_s);
    m_now = m_now.addMSecs(1999);
    QVERIFY(store.AddItem(node));
    m_now = m_now.addDays(1);
    QVERIFY(store.AddItem(node));
    QCOMPARE(FeedDump::marks(store), u"a 2004-07-01T14:00:00Z, a 2004-07-01T14:00:01Z, a 2004-07-02T14:00:01Z"_s);
}

void tst_FeedMarks::aFailedSaveIsRaisedAndLeavesTheFile()
{
    QVERIFY(QDir().mkdir(m_files.path("gone")));
    CachedFeed feed(m_clock);
    QCOMPARE(feed.Load(m_files.write("gone/feed.xml", items("a"))), LoadOk);
    QVERIFY(QDir(m_files.path("gone")).removeRecursively());
    QVERIFY(!feed.IsStale());
    QVERIFY_THROWS_EXCEPTION(RunTimeError, feed.Save());
    QCOMPARE(titles(feed), u"a"_s);
}

void tst_FeedMarks::aReplacedFileGetsTheMarksAndNothingElse_data()
{
    QTest::addColumn<QString>("meanwhile"); // what became of the file: what it holds, or nothing
    QTest::addColumn<QString>("how");       // the file is to be saved
    QTest::addColumn<QString>("marks");     // of the file then; "as it was"
    const auto row = [](const char *meanwhile, const char *how, const char *marks) {
        QTest::addRow("%s, %s", meanwhile, how)
            << QString::fromLatin1(meanwhile) << QString::fromLatin1(how) << QString::fromLatin1(marks);
    };
    // Of the two called x the first has been a tombstone since the last save, and the second, a and c are marked now.
    row("", "Save", "x deleted ,x read ,a read ,b ,c deleted ");
    row("", "GiveUpMarks", "x deleted ,x read ,a read ,b ,c deleted ");
    row("", "SaveWithin", "x deleted ,x read ,a read ,b ,c deleted ");
    row("", "SaveWithin too few", "as it was");
    row("merge", "Save", "n ,x read ,a read ,b ,c deleted ");
    row("merge", "Save nothing new", "as it was");
    row("merge", "GiveUpMarks", "as it was");
    row("merge", "SaveWithin", "as it was");
    row("merge", "Restore", "x deleted ,x read ,a read ,b ,c deleted ");
    row("merge without what was marked", "Save", "as it was");
    row("download", "Save", "as it was");
    row("no feed", "Save", "as it was");
    row("deletion", "Save", "as it was");
    row("deletion", "Restore", "x deleted ,x read ,a read ,b ,c deleted ");
}

void tst_FeedMarks::aReplacedFileGetsTheMarksAndNothingElse()
{
    QFETCH(const QString, meanwhile);
    QFETCH(const QString, how);
    QFETCH(const QString, marks);
    const QString file = m_files.write("feed.xml", items("xxabc"));
    CachedFeed feed(m_clock);
    QCOMPARE(feed.Load(file), LoadOk);
    feed.DeleteItem(0);
    feed.SetItemRead(3, true);
    feed.Save(); // from here on these marks are no news
    QVERIFY(!feed.IsStale());
    if (!how.endsWith("new"_L1)) {
        feed.SetItemRead(1, true);
        feed.SetItemRead(2, true);
        feed.SetItemRead(3, false);
        feed.DeleteItem(4);
    }
    if (meanwhile.startsWith("merge"_L1)) {
        CachedFeed merged(m_clock), fresh(m_clock);
        QCOMPARE(merged.Load(file), LoadOk);
        QCOMPARE(fresh.Load(m_files.write("fresh.xml", items("n"))), LoadOk);
        QVERIFY(merged.AddItem(fresh.GetItemNode(0)));
        const qint16 last = meanwhile.contains("without"_L1) ? 5 : 1;
        for (qint16 i = 1; i <= last; ++i)
            merged.RemoveItem(i); // the tombstone at least
        merged.Save();
    } else if (meanwhile == "deletion"_L1) {
        QVERIFY(QFile::remove(file));
    } else if (!meanwhile.isEmpty()) {
        m_files.write("feed.xml", meanwhile == "download"_L1 ? items("xxabc") : QByteArray("<rss"));
    }
    QCOMPARE(feed.IsStale(), !meanwhile.isEmpty());
    const QByteArray before = m_files.read("feed.xml");
    const auto save = [&] {
        if (how == "GiveUpMarks"_L1)
            feed.GiveUpMarks();
        if (how.startsWith("SaveWithin"_L1))
            QCOMPARE(feed.SaveWithin(how.endsWith("few"_L1) ? before.size() : 2 * before.size()),
                     marks != "as it was"_L1);
        else
            how == "Restore"_L1 ? feed.Restore() : feed.Save();
    };
    save();
    QCOMPARE(titles(feed), u"xxabc"_s); // rows of a list name its items by their indices
    if (marks == "as it was"_L1) {
        QCOMPARE(m_files.read("feed.xml"), before);
        return;
    }
    CachedFeed again(m_clock);
    QCOMPARE(again.Load(file), LoadOk);
    QCOMPARE(FeedDump::marks(again).remove(QRegularExpression(u"[-0-9T:]+Z"_s)).replace(u", "_s, u","_s), marks);
    if (meanwhile != "merge"_L1 || how != "Save"_L1)
        return;
    again.SetItemRead(1, false);
    again.Save();
    const QByteArray newer = m_files.read("feed.xml");
    feed.Save(); // what was carried once isn't carried again
    QCOMPARE(m_files.read("feed.xml"), newer);
}

void tst_FeedMarks::onlyAsManyItemsAsAnIndexCanNameAreOfferedAndSaved()
{
    QByteArray all;
    for (int i = 0; i < 40000; ++i)
        all += "<item><title>" + QByteArray::number(i) + "</title></item>";
    CachedFeed feed(m_clock);
    QCOMPARE(feed.Load(m_files.write("feed.xml", rss(all))), LoadOk);
    QCOMPARE(feed.ItemCount(), qint16(32767));
    QVERIFY(feed.AddItem(feed.GetItemNode(32766)));
    QCOMPARE(feed.ItemCount(), qint16(32767));
    QCOMPARE(feed.ItemTitle(0) + u' ' + feed.ItemTitle(32766), u"32766 32765"_s);
    for (qint16 i = 0; i < 10; ++i)
        feed.RemoveItem(i);
    feed.Save();
    QCOMPARE(m_files.read("feed.xml").count("<item"), 32767); // what no index names can never be offered
    QCOMPARE(feed.Load(m_files.path("feed.xml")), LoadOk);
    QCOMPARE(feed.ItemTitle(0) + u' ' + feed.ItemTitle(32766), u"9 32775"_s);
    feed.RemoveItem(0);
    QVERIFY(feed.SaveWithin(1)); // a file that is too large may shrink
}

QTEST_GUILESS_MAIN(tst_FeedMarks)
#include "tst_FeedMarks.moc"
