// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/feed/FeedDump.h"
#include "tests/feed/FeedFiles.h"
#include "tests/fixtures/Golden.h"
#include "tests/fixtures/TextCases.h"

#include <QTest>

/// Items on their way from one document into another: what the files hold then, and what it means.
class tst_FeedTransfer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyFormatTakesTheItemsOfEveryOther_data();
    void everyFormatTakesTheItemsOfEveryOther();
    void namesKeepTheirMeaning_data();
    void namesKeepTheirMeaning();

private:
    FeedFiles m_files;
    Clock m_clock = [] { return QDateTime({2004, 7, 1}, {14, 0}, Qt::UTC); };
};

static const QByteArrayList samples = {"rss091.xml", "rss092.xml", "rss20.xml", "rdf10.xml", "atom03.xml"};

void tst_FeedTransfer::everyFormatTakesTheItemsOfEveryOther_data()
{
    QTest::addColumn<QByteArray>("sample");
    QTest::addColumn<FeedRules>("rules");
    QTest::addColumn<QByteArrayList>("others");
    for (const QByteArray &sample : samples)
        QTest::newRow(sample.constData()) << sample << FeedRules() << samples;
    const QByteArrayList all = samples + QByteArrayList{"atom10.xml", "jsonfeed.json"};
    QTest::newRow("atom10.xml") << QByteArray("atom10.xml") << FeedRules{allFormats()} << all;
}

/// All items of all samples into one, with marks on some; data/into-<sample> is the file.
void tst_FeedTransfer::everyFormatTakesTheItemsOfEveryOther()
{
    QFETCH(const QByteArray, sample);
    QFETCH(const FeedRules, rules);
    QFETCH(const QByteArrayList, others);
    CachedFeed store(m_clock, rules), source(m_clock, rules);
    QCOMPARE(store.Load(m_files.writeSample("store.xml", sample.constData())), LoadOk);
    for (const QByteArray &other : others) {
        QCOMPARE(source.Load(m_files.writeSample("source.xml", other.constData())), LoadOk);
        for (qint16 i = 0; i < source.ItemCount(); ++i)
            QVERIFY(store.AddItem(source.GetItemNode(i)));
    }
    store.SetItemRead(0, true);
    store.SetItemRead(1, true);
    store.SetItemRead(1, false);
    store.DeleteItem(2);
    store.RemoveItem(3);
    store.RemoveItem(qint16(store.ItemCount() - 1));
    QStringList before;
    for (qint16 i = 0; i < store.ItemCount(); ++i)
        if (i != 3 && i != store.ItemCount() - 1)
            before += FeedDump::item(store, i);
    store.Save();
    QCOMPARE(
        differenceFromGolden(u"into-"_s + QString::fromLatin1(sample), QString::fromUtf8(m_files.read("store.xml"))),
        QString());
    QCOMPARE(store.Load(m_files.path("store.xml")), LoadOk);
    QStringList after;
    for (qint16 i = 0; i < store.ItemCount(); ++i)
        after += FeedDump::item(store, i);
    QCOMPARE(after, before);
}

void tst_FeedTransfer::namesKeepTheirMeaning_data()
{
    QTest::addColumn<QString>("cases");
    QTest::addColumn<FeedRules>("rules");
    QTest::newRow("usual formats") << u"transfer"_s << FeedRules();
    QTest::newRow("all formats") << u"transfer-all"_s << FeedRules{allFormats()};
}

void tst_FeedTransfer::namesKeepTheirMeaning()
{
    QFETCH(const QString, cases);
    QFETCH(const FeedRules, rules);
    QString told;
    for (const TextCase &each : readCases(cases + u".txt"_s)) {
        CachedFeed from(m_clock, rules), into(m_clock, rules);
        QCOMPARE(from.Load(m_files.write("from.xml", each.documents[0])), LoadOk);
        QCOMPARE(into.Load(m_files.write("into.xml", each.documents[1])), LoadOk);
        for (int time = 0; time < 2; ++time)
            QVERIFY(into.AddItem(from.GetItemNode(0)));
        told += u"=== "_s + each.name + u'\n';
        for (const auto &[feed, file] : {std::pair(&into, "into.xml"), std::pair(&from, "from.xml")}) {
            const QStringList item = FeedDump::item(*feed, 0);
            feed->Save();
            const QByteArray saved = m_files.read(file);
            QCOMPARE(feed->Load(m_files.path(file)), LoadOk);
            QCOMPARE(FeedDump::item(*feed, 0), item);
            told += QString::fromUtf8(saved) + item.join(" | "_L1) + u'\n' + FeedDump::marks(*feed) + u'\n';
            feed->Save();
            QCOMPARE(m_files.read(file), saved);
        }
    }
    QCOMPARE(differenceFromGolden(cases + u".expected"_s, told), QString());
}

QTEST_GUILESS_MAIN(tst_FeedTransfer)
#include "tst_FeedTransfer.moc"
