// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/feed/CachedFeed.h"
#include "platform/DateText.h"
#include "platform/Files.h"
#include "platform/Literals.h"
#include "platform/RunTimeError.h"
#include "tests/feed/FeedDump.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

/// Marks, added and removed items, and what stays of them in the file.
class tst_FeedMarks : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void marksSurviveSavingInEveryFormat_data();
    void marksSurviveSavingInEveryFormat();
    void anItemWithoutDateWasDownloadedWhenItsFileWasWritten();
    void aDateThatIsNoneDoesNotCount();
    void addedItemsStandInFrontInTheirOrder();
    void addedItemsLeaveTheirMarksBehind();
    void everyFormatTakesTheItemsOfEveryOther_data();
    void everyFormatTakesTheItemsOfEveryOther();
    void anAtomEntryKeepsTheAuthorOfItsFeed();
    void theRdfListFollowsTheItems();
    void removedItemsGoAtTheNextSave();
    void whatIsNotKnownIsKept();
    void aFailedSaveIsRaisedAndLeavesTheFile();
    void aReplacedFileGetsTheMarksAndNothingElse_data();
    void aReplacedFileGetsTheMarksAndNothingElse();
    void onlyAsManyItemsAsAnIndexCanNameAreOfferedAndSaved();

private:
    QString path(const char *name) const { return m_directory->filePath(QLatin1String(name)); }
    QString write(const char *name, const QByteArray &bytes) const
    {
        Files::write(path(name), bytes);
        return path(name);
    }
    static QByteArray rss(const QByteArray &items)
    {
        return "<rss version=\"2.0\"><channel><title>t</title>" + items + "</channel></rss>";
    }
    static QStringList titles(const CachedFeed &feed)
    {
        QStringList result;
        for (qint16 i = 0; i < feed.ItemCount(); ++i)
            result += feed.ItemTitle(i);
        return result;
    }

    std::unique_ptr<QTemporaryDir> m_directory;
    QDateTime m_now{QDate(2004, 7, 1), QTime(14, 0)};
    Clock m_clock = [this] { return m_now; };
};

void tst_FeedMarks::init()
{
    m_directory = std::make_unique<QTemporaryDir>();
}

static void addSampleRows()
{
    QTest::addColumn<QString>("sample");
    for (const char *name : {"rss091", "rss092", "rss20", "rdf10", "atom03"})
        QTest::newRow(name) << QString::fromUtf8(SAMPLES_DIR "/") + QLatin1String(name) + ".xml"_L1;
}

void tst_FeedMarks::marksSurviveSavingInEveryFormat_data()
{
    addSampleRows();
}

void tst_FeedMarks::marksSurviveSavingInEveryFormat()
{
    QFETCH(const QString, sample);
    const QString file = write("feed.xml", Files::read(sample).bytes);
    CachedFeed feed(m_clock);
    QCOMPARE(feed.Load(file), LoadOk);
    const QStringList before = FeedDump::all(feed);
    QVERIFY(!feed.IsItemRead(0) && !feed.IsItemDeleted(1));
    feed.SetItemRead(0, true);
    feed.SetItemRead(1, true);
    feed.SetItemRead(1, false);
    feed.DeleteItem(1);
    feed.Save();

    CachedFeed again(m_clock);
    QCOMPARE(again.Load(file), LoadOk);
    QVERIFY(again.IsItemRead(0) && !again.IsItemDeleted(0));
    QVERIFY(!again.IsItemRead(1) && again.IsItemDeleted(1));
    QCOMPARE(FeedDump::all(again), before);
}

void tst_FeedMarks::anItemWithoutDateWasDownloadedWhenItsFileWasWritten()
{
    const QString file = write("feed.xml", rss("<item/><item/>"));
    const QDateTime written(QDate(2004, 3, 28), QTime(12, 30, 15)); // summer time began that night
    QFile handle(file);
    QVERIFY(handle.open(QIODevice::ReadWrite) && handle.setFileTime(written, QFileDevice::FileModificationTime));
    handle.close();
    CachedFeed feed(m_clock);
    QCOMPARE(feed.Load(file), LoadOk);
    QCOMPARE(feed.ItemDownloadDate(1), DateText::toText(written));
    feed.Save();
    QCOMPARE(feed.Load(file), LoadOk);
    QCOMPARE(feed.ItemDownloadDate(0), DateText::toText(written));
    QCOMPARE(feed.ItemDownloadDate(1), DateText::toText(written));
}

void tst_FeedMarks::aDateThatIsNoneDoesNotCount()
{
    const QString file =
        write("feed.xml", rss("<item xmlns:m='urn:quillwire:marks' m:downloaded='soon' m:read='yes'/>"));
    CachedFeed feed(m_clock);
    QCOMPARE(feed.Load(file), LoadOk);
    QVERIFY(!feed.IsItemRead(0));
    QVERIFY(DateText::isDate(feed.ItemDownloadDate(0)));
    const QString before = feed.ItemDownloadDate(0);
    feed.Save();
    QCOMPARE(feed.Load(file), LoadOk);
    QCOMPARE(feed.ItemDownloadDate(0), before);
}

void tst_FeedMarks::addedItemsStandInFrontInTheirOrder()
{
    CachedFeed fresh(m_clock);
    QCOMPARE(fresh.Load(write("fresh.xml", rss("<item><title>c</title></item><item><title>d</title></item>"))), LoadOk);
    CachedFeed store(m_clock);
    QCOMPARE(store.Load(write("store.xml", rss("<item><title>a</title></item><item><title>b</title></item>"))), LoadOk);
    store.AddItem(fresh.GetItemNode(0));
    store.AddItem(fresh.GetItemNode(1));
    const QStringList merged{u"c"_s, u"d"_s, u"a"_s, u"b"_s};
    QCOMPARE(titles(store), merged);
    store.Save();
    QCOMPARE(titles(store), merged);
    store.AddItem(store.GetItemNode(3)); // a new run, which stands in front of the last one; from itself at that
    QCOMPARE(titles(store), QStringList(u"b"_s) + merged);
    store.Save();
    QCOMPARE(store.Load(path("store.xml")), LoadOk);
    QCOMPARE(titles(store), QStringList(u"b"_s) + merged);
}

void tst_FeedMarks::addedItemsLeaveTheirMarksBehind()
{
    CachedFeed fresh(m_clock);
    QCOMPARE(fresh.Load(write("fresh.xml", rss("<item><title>new</title></item>"))), LoadOk);
    fresh.SetItemRead(0, true);
    fresh.DeleteItem(0);
    fresh.Save();
    CachedFeed store(m_clock);
    QCOMPARE(store.Load(write("store.xml", rss({}))), LoadOk);
    {
        CachedFeed source(m_clock);
        QCOMPARE(source.Load(path("fresh.xml")), LoadOk);
        const auto node = source.GetItemNode(0);
        QCOMPARE(source.Load(path("absent")), LoadFileNotFound); // the node keeps its document
        store.AddItem(node);
    }
    QVERIFY(!store.IsItemRead(0) && !store.IsItemDeleted(0));
    QCOMPARE(store.ItemDownloadDate(0), DateText::toText(m_now));
}

void tst_FeedMarks::everyFormatTakesTheItemsOfEveryOther_data()
{
    QTest::addColumn<QString>("from");
    QTest::addColumn<QString>("into");
    QTest::addColumn<QStringList>("lost"); // the fields that the format has no place for
    const QStringList names{u"rss091"_s, u"rss092"_s, u"rss20"_s, u"rdf10"_s, u"atom03"_s};
    const QStringList lost[] = {{u"Source"_s, u"Enclosure"_s, u"Category"_s},
                                {},
                                {},
                                {u"Source"_s, u"Enclosure"_s, u"Comments"_s},
                                {u"Source"_s, u"Comments"_s}};
    for (const QString &from : names)
        for (int into = 0; into < names.size(); ++into)
            for (const char *kind : {"", "-edges"}) {
                const QString source = from + QLatin1String(kind);
                QTest::newRow(qPrintable(source + " into "_L1 + names[into]))
                    << source << names[into] << (from == names[into] ? QStringList() : lost[into]);
            }
}

void tst_FeedMarks::everyFormatTakesTheItemsOfEveryOther()
{
    QFETCH(const QString, from);
    QFETCH(const QString, into);
    QFETCH(const QStringList, lost);
    const bool isSample = !from.endsWith("-edges"_L1);
    const QString folder = isSample ? QString::fromUtf8(SAMPLES_DIR "/") : QString::fromUtf8(TEST_DATA_DIR "/");
    CachedFeed source(m_clock);
    QCOMPARE(source.Load(folder + from + ".xml"_L1), LoadOk);
    const QString file = write("store.xml", Files::read(QString::fromUtf8(SAMPLES_DIR "/") + into + ".xml"_L1).bytes);
    CachedFeed store(m_clock);
    QCOMPARE(store.Load(file), LoadOk);
    const QString first = store.ItemTitle(0);
    for (qint16 i = 0; i < source.ItemCount(); ++i)
        store.AddItem(source.GetItemNode(i));

    const auto compare = [&] {
        QCOMPARE(store.ItemTitle(source.ItemCount()), first);
        for (qint16 i = 0; i < source.ItemCount(); ++i) {
            QStringList expected = FeedDump::item(source, i);
            expected.removeIf([&](const QString &line) { return lost.contains(line.section(u':', 0, 0)); });
            QStringList found = FeedDump::item(store, i);
            // An Atom entry without author has that of the feed.
            if (into == "atom03"_L1 && source.ItemAuthor(i).isEmpty())
                found.removeOne(u"Author: Anne Roux"_s);
            QCOMPARE(found, expected);
        }
    };
    compare();
    store.Save();
    QCOMPARE(store.Load(file), LoadOk);
    compare();
}

void tst_FeedMarks::anAtomEntryKeepsTheAuthorOfItsFeed()
{
    const auto atom = [](const QByteArray &author, const QByteArray &entry) {
        return QByteArray("<feed version='0.3' xmlns='http://purl.org/atom/ns#'>" + author + entry + "</feed>");
    };
    CachedFeed source(m_clock);
    QCOMPARE(source.Load(write("source.xml", atom("<author><name>Anne</name></author>", "<entry><author/></entry>"))),
             LoadOk);
    CachedFeed store(m_clock);
    QCOMPARE(store.Load(write("store.xml", atom("<author><name>Paul</name></author>", {}))), LoadOk);
    store.AddItem(source.GetItemNode(0));
    QCOMPARE(store.ItemAuthor(0), u"Anne"_s);
}

void tst_FeedMarks::theRdfListFollowsTheItems()
{
    CachedFeed store(m_clock);
    const QString file = write("store.xml", Files::read(QString::fromUtf8(SAMPLES_DIR "/rdf10.xml")).bytes);
    QCOMPARE(store.Load(file), LoadOk);
    CachedFeed source(m_clock);
    QCOMPARE(source.Load(QString::fromUtf8(SAMPLES_DIR "/rss20.xml")), LoadOk);
    store.AddItem(source.GetItemNode(0));
    store.AddItem(source.GetItemNode(1));
    store.AddItem(source.GetItemNode(2)); // has no link
    store.RemoveItem(3);
    store.Save();
    const QString saved = QString::fromUtf8(Files::read(file).bytes);
    const auto listed = saved.mid(saved.indexOf("<rdf:Seq>"_L1)).section("</rdf:Seq>"_L1, 0, 0);
    const auto position = [&](const char *address) { return listed.indexOf(QLatin1String(address)); };
    QVERIFY(position("etoiles.example.org/2004/venus") > 0);
    QVERIFY(position("etoiles.example.org/2004/venus") < position("etoiles.example.org/2004/comete"));
    QVERIFY(position("etoiles.example.org/2004/comete") < position("urn:quillwire:item:"));
    QVERIFY(position("urn:quillwire:item:") < position("livres.example.org/notes/41"));
    QCOMPARE(position("livres.example.org/notes/42"), -1);
    QVERIFY(saved.contains("<item rdf:about=\"http://etoiles.example.org/2004/venus\""_L1));
}

void tst_FeedMarks::removedItemsGoAtTheNextSave()
{
    CachedFeed feed(m_clock);
    const QString file = write("feed.xml", rss("<item><title>a</title></item>\n<item><title>b</title></item>\n"
                                               "<item><title>c</title></item>\n"));
    QCOMPARE(feed.Load(file), LoadOk);
    const auto node = feed.GetItemNode(1);
    feed.RemoveItem(0);
    feed.RemoveItem(1);
    QCOMPARE(feed.ItemCount(), qint16(3));
    QCOMPARE(feed.ItemTitle(1), u"b"_s);
    feed.Save();
    QCOMPARE(titles(feed), QStringList(u"c"_s));
    feed.AddItem(node); // what was taken out can still be taken in
    QCOMPARE(feed.ItemTitle(0), u"b"_s);
    feed.Save();
    QCOMPARE(feed.Load(file), LoadOk);
    QCOMPARE(titles(feed), (QStringList{u"b"_s, u"c"_s}));
}

void tst_FeedMarks::whatIsNotKnownIsKept()
{
    const QByteArray bytes = "<?xml version=\"1.0\" encoding=\"ISO-8859-1\" standalone=\"yes\"?>\n"
                             "<?style href=\"x\"?>\n<!-- before -->\n"
                             "<rss xmlns:x=\"urn:x\" xmlns:quillwire=\"urn:theirs\" version=\"2.0\" quillwire:a=\"1\">"
                             "<channel x:z=\"1\" a=\"2\"><x:y>\xE9</x:y><title><![CDATA[<t>]]></title><!-- in -->"
                             "<item><x:y/><title>a &amp; b</title></item>\n</channel></rss>\n<!-- after -->\n";
    const QString file = write("feed.xml", bytes);
    CachedFeed feed(m_clock);
    QCOMPARE(feed.Load(file), LoadOk);
    feed.SetItemRead(0, true);
    feed.Save();
    QByteArray saved = Files::read(file).bytes;
    QVERIFY(saved.contains("urn:quillwire:marks"));
    // Without the marks the file is what it was.
    saved.replace(" xmlns:quillwire2=\"urn:quillwire:marks\"", "");
    saved.replace(" quillwire2:read=\"1\"", "");
    const qsizetype date = saved.indexOf(" quillwire2:downloaded");
    QVERIFY(date > 0);
    saved.remove(date, saved.indexOf('>', date) - date);
    QCOMPARE(saved, bytes);
}

void tst_FeedMarks::aFailedSaveIsRaisedAndLeavesTheFile()
{
    QVERIFY(QDir(m_directory->path()).mkdir(u"gone"_s));
    const QString file = write("gone/feed.xml", rss("<item/>"));
    CachedFeed feed(m_clock);
    QCOMPARE(feed.Load(file), LoadOk);
    QVERIFY(QDir(path("gone")).removeRecursively());
    QVERIFY_EXCEPTION_THROWN(feed.Save(), RunTimeError);
    QVERIFY(feed.IsLoaded());
    QCOMPARE(feed.ItemCount(), qint16(1));
}

void tst_FeedMarks::aReplacedFileGetsTheMarksAndNothingElse_data()
{
    QTest::addColumn<QString>("how");
    for (const char *how :
         {"merge", "merge, nothing marked since", "merge without what was marked", "download", "no feed", "deletion"})
        QTest::newRow(how) << QString::fromLatin1(how);
}

void tst_FeedMarks::aReplacedFileGetsTheMarksAndNothingElse()
{
    QFETCH(const QString, how);
    QByteArray items;
    for (const QByteArray title : {"x", "x", "a", "b", "c"})
        items += "<item><title>" + title + "</title></item>";
    const QString file = write("feed.xml", rss(items));
    CachedFeed feed(m_clock);
    QCOMPARE(feed.Load(file), LoadOk);
    feed.DeleteItem(0);
    feed.SetItemRead(3, true);
    feed.Save(); // from here on these marks are no news
    if (!how.endsWith("since"_L1)) {
        feed.SetItemRead(1, true);
        feed.SetItemRead(2, true);
        feed.SetItemRead(3, false);
        feed.DeleteItem(4);
    }
    if (how.startsWith("merge"_L1)) {
        CachedFeed merged(m_clock);
        QCOMPARE(merged.Load(file), LoadOk);
        CachedFeed fresh(m_clock);
        QCOMPARE(fresh.Load(write("fresh.xml", rss("<item><title>new</title></item>"))), LoadOk);
        merged.AddItem(fresh.GetItemNode(0));
        const qint16 last = how.contains("without"_L1) ? 5 : 1;
        for (qint16 i = 1; i <= last; ++i)
            merged.RemoveItem(i); // the tombstone at least
        merged.Save();
    } else if (how == "deletion"_L1) {
        QVERIFY(QFile::remove(file));
    } else {
        write("feed.xml", how == "download"_L1 ? rss(items) : QByteArray("<rss"));
    }
    const Files::Content replaced = Files::read(file);
    feed.Save();
    QCOMPARE(feed.ItemTitle(2), u"a"_s); // rows of a list name its items by their indices
    const Files::Content saved = Files::read(file);
    QCOMPARE(saved.result, replaced.result);
    if (how != "merge"_L1) {
        QCOMPARE(saved.bytes, replaced.bytes);
        return;
    }
    CachedFeed again(m_clock);
    QCOMPARE(again.Load(file), LoadOk);
    QString marked;
    for (qint16 i = 0; i < again.ItemCount(); ++i)
        marked += again.ItemTitle(i) + (again.IsItemRead(i) ? u":r "_s : u" "_s) +
                  (again.IsItemDeleted(i) ? u":d "_s : QString());
    QCOMPARE(marked, u"new x:r a:r b c :d "_s);
    again.SetItemRead(1, false);
    again.Save();
    const QByteArray newer = Files::read(file).bytes;
    feed.Save(); // what was carried once isn't carried again
    QCOMPARE(Files::read(file).bytes, newer);
}

void tst_FeedMarks::onlyAsManyItemsAsAnIndexCanNameAreOfferedAndSaved()
{
    QByteArray items;
    for (int i = 0; i < 70000; ++i)
        items += "<item><title>" + QByteArray::number(i) + "</title></item>";
    CachedFeed feed(m_clock);
    const QString file = write("feed.xml", rss(items));
    QCOMPARE(feed.Load(file), LoadOk);
    QCOMPARE(feed.ItemCount(), qint16(32767));
    feed.AddItem(feed.GetItemNode(32766));
    QCOMPARE(feed.ItemCount(), qint16(32767));
    QCOMPARE(feed.ItemTitle(0), u"32766"_s);
    QCOMPARE(feed.ItemTitle(32766), u"32765"_s);
    for (qint16 i = 0; i < 10; ++i)
        feed.RemoveItem(i);
    feed.Save();
    QCOMPARE(Files::read(file).bytes.count("<item"), 32767); // what no index names can never be offered
    QCOMPARE(feed.Load(file), LoadOk);
    QCOMPARE(feed.ItemTitle(0), u"9"_s);
    QCOMPARE(feed.ItemTitle(32766), u"32775"_s);
    feed.RemoveItem(0);
    QVERIFY(feed.SaveWithin(1)); // a file that is too large may shrink
}

QTEST_GUILESS_MAIN(tst_FeedMarks)
#include "tst_FeedMarks.moc"
