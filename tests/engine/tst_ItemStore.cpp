// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/ItemStore.h"
#include "platform/DateText.h"
#include "platform/Literals.h"
#include "platform/Numbers.h"
#include "platform/RunTimeError.h"
#include "tests/fixtures/FeedTexts.h"
#include "tests/fixtures/TemporaryDataDirectory.h"

#include <QFile>
#include <QRandomGenerator>
#include <QTest>

namespace {

/// The rules one after the other, as plain loops over both documents.
qint16 mergeByTheRules(const CachedFeed &fresh, CachedFeed &store, const QString &updatecache, QString &havecache,
                       QDate today)
{
    qint16 added = 0;
    const qint16 freshCount = fresh.ItemCount();
    for (qint16 i = 0; i < freshCount; ++i)
        if (!ItemStore::ItemExists(i, fresh, store)) {
            store.AddItem(fresh.GetItemNode(i));
            ++added;
        }
    if (havecache == u"0") {
        const qint16 cache = Numbers::toInt16(updatecache);
        const qint16 count = store.ItemCount();
        for (qint16 i = 0; i < count; ++i)
            if (cache >= 0 && DateText::fromText(store.ItemDownloadDate(i)).date().daysTo(today) > cache)
                store.DeleteItem(i);
        havecache = u"1"_s;
    }
    const qint16 count = store.ItemCount();
    for (qint16 i = 0; i < count; ++i)
        if (store.IsItemDeleted(i) && !ItemStore::ItemExists(i, store, fresh))
            store.RemoveItem(i);
    store.Save();
    return added;
}

/// As an update does it.
qint16 merge(const CachedFeed &fresh, CachedFeed &store, const QString &updatecache, QString &havecache, QDate today)
{
    const qint16 added = ItemStore::merge(fresh, store, updatecache, havecache, today);
    store.Save();
    return added;
}

} // namespace

class ItemStoreTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_folder = std::make_unique<TemporaryDataDirectory>(); }

    void mergingGivesWhatThePlainRulesGive_data()
    {
        QTest::addColumn<quint32>("seed");
        for (quint32 seed = 1; seed <= 40; ++seed)
            QTest::newRow(qPrintable(QString::number(seed))) << seed;
    }

    void mergingGivesWhatThePlainRulesGive()
    {
        QFETCH(quint32, seed);
        QRandomGenerator random(seed);
        const auto randomTitles =
            [&random](int count) { // few of them, so that many meet; some differ by case, some are empty
                QStringList result;
                for (int i = 0; i < count; ++i)
                    result.append(QStringList{u"a"_s, u"A"_s, QString()}[random.bounded(3)] +
                                  QString::number(random.bounded(12)).remove(u'1'));
                return result;
            };
        CachedFeed stores[2] = {CachedFeed(m_clock), CachedFeed(m_clock)};
        const QByteArray first = FeedTexts::rss(u"T"_s, randomTitles(random.bounded(10)));
        load(stores[0], u"a.xml"_s, first);
        load(stores[1], u"b.xml"_s, first);
        const QString cache = QString::number(random.bounded(-2, 4));
        QString have[2] = {u"0"_s, u"0"_s};
        for (int round = 0; round < 5; ++round) {
            m_now = m_now.addDays(random.bounded(3));
            for (int i = 0; i < stores[0].ItemCount(); ++i)
                if (random.bounded(3) == 0) {
                    stores[0].DeleteItem(static_cast<qint16>(i));
                    stores[1].DeleteItem(static_cast<qint16>(i));
                }
            CachedFeed fresh(m_clock);
            load(fresh, u"f.xml"_s, FeedTexts::rss(u"T"_s, randomTitles(random.bounded(15))));
            const qint16 added = merge(fresh, stores[0], cache, have[0], m_now.date());
            QCOMPARE(added, mergeByTheRules(fresh, stores[1], cache, have[1], m_now.date()));
            QCOMPARE(have[0], u"1"_s);
            QCOMPARE(m_folder->read(u"a.xml"_s), m_folder->read(u"b.xml"_s));
            if (random.bounded(2) == 0) { // a new run
                have[0] = have[1] = u"0"_s;
                QCOMPARE(stores[0].Load(m_folder->file(u"a.xml"_s)), LoadOk);
                QCOMPARE(stores[1].Load(m_folder->file(u"b.xml"_s)), LoadOk);
            }
        }
    }

    void titlesThatMovePastTheLastIndexAreNoLongerSeen()
    {
        const QByteArray full = FeedTexts::rss(u"T"_s, FeedTexts::titles(u"old"_s, 0, 32766));
        const QString some = u"old32765 new1 old32765 new2 old32765 old32764 old32765 old5"_s;
        CachedFeed fresh(m_clock);
        load(fresh, u"f.xml"_s, FeedTexts::rss(u"T"_s, some.split(u' ')));
        CachedFeed store(m_clock);
        load(store, u"a.xml"_s, full);
        QString have = u"1"_s;
        const qint16 added = merge(fresh, store, u"-7"_s, have, m_now.date());
        load(store, u"b.xml"_s, full);
        QCOMPARE(added, mergeByTheRules(fresh, store, u"-7"_s, have, m_now.date()));
        QCOMPARE(m_folder->read(u"a.xml"_s), m_folder->read(u"b.xml"_s));
        QCOMPARE(m_folder->read(u"a.xml"_s).count("<item"), 32767);
        QCOMPARE(store.ItemCount(), qint16(32767));
    }

    void aTombstoneStaysAsLongAsTheServerListsTheItem()
    {
        CachedFeed store(m_clock);
        CachedFeed fresh(m_clock);
        const QByteArray both = FeedTexts::rss(u"T"_s, {u"a"_s, u"b"_s});
        load(store, u"s.xml"_s, both);
        store.DeleteItem(0);
        QString have = u"1"_s;
        load(fresh, u"f.xml"_s, both);
        QCOMPARE(merge(fresh, store, u"-7"_s, have, m_now.date()), qint16(0));
        QCOMPARE(titles(u"s.xml"_s), (QStringList{u"a*"_s, u"b"_s}));
        load(fresh, u"f.xml"_s, FeedTexts::rss(u"T"_s, {u"b"_s}));
        merge(fresh, store, u"-7"_s, have, m_now.date());
        QCOMPARE(titles(u"s.xml"_s), QStringList{u"b"_s});
        load(fresh, u"f.xml"_s, both);
        QCOMPARE(merge(fresh, store, u"-7"_s, have, m_now.date()), qint16(1));
        QCOMPARE(titles(u"s.xml"_s), (QStringList{u"a"_s, u"b"_s}));
    }

    void itemsAgeOutOnceARun_data()
    {
        QTest::addColumn<QString>("cache");
        QTest::addColumn<int>("daysLater");
        QTest::addColumn<QString>("havecache");
        QTest::addColumn<bool>("stays");
        const QString no = u"0"_s;
        QTest::newRow("as old as allowed") << u"2"_s << 2 << no << true;
        QTest::newRow("a day older") << u"2"_s << 3 << no << false;
        QTest::newRow("a day older, but looked at before") << u"2"_s << 3 << u"1"_s << true;
        QTest::newRow("never") << u"-7"_s << 4000 << no << true;
        QTest::newRow("only today") << u"0"_s << 1 << no << false;
        QTest::newRow("of today") << u"0"_s << 0 << no << true;
    }

    void itemsAgeOutOnceARun()
    {
        QFETCH(QString, cache);
        QFETCH(int, daysLater);
        QFETCH(QString, havecache);
        QFETCH(bool, stays);
        CachedFeed store(m_clock);
        CachedFeed fresh(m_clock);
        const QString listed = u"listed"_s;
        load(store, u"s.xml"_s, FeedTexts::rss(u"T"_s, {}));
        load(fresh, u"f.xml"_s, FeedTexts::rss(u"T"_s, {u"dropped"_s, listed}));
        QString have = u"1"_s;
        m_now = QDateTime(QDate(2004, 7, 1), QTime(23, 59));
        merge(fresh, store, cache, have, m_now.date());
        load(fresh, u"f.xml"_s, FeedTexts::rss(u"T"_s, {listed}));
        merge(fresh, store, cache, havecache, m_now.date().addDays(daysLater));
        QCOMPARE(titles(u"s.xml"_s), stays ? (QStringList{u"dropped"_s, listed}) : QStringList{u"listed*"_s});
    }

    void aRetentionThatIsNoNumberRaisesAnError()
    {
        CachedFeed store(m_clock);
        CachedFeed fresh(m_clock);
        const QByteArray before = FeedTexts::rss(u"T"_s, {u"a"_s});
        load(store, u"s.xml"_s, before);
        load(fresh, u"f.xml"_s, before);
        for (const char *cache : {"", "x", "32768"}) {
            QString have = u"0"_s;
            QVERIFY_EXCEPTION_THROWN(merge(fresh, store, QLatin1String(cache), have, m_now.date()), RunTimeError);
        }
        QCOMPARE(m_folder->read(u"s.xml"_s), before);
    }

    /// The cache file of a new feed is the document as the server sent it, with whatever stands in it.
    void forgedDatesOfDownloadDoNoHarm()
    {
        for (const char *forged : {"", "x", "9999-12-31T23:59:59Z", "0000-00-00T00:00:00Z", "0001-01-01T00:00:00Z",
                                   "-4712-01-01T00:00:00Z", "292278994-01-01T00:00:00Z", "2004-03-28T02:30:00"}) {
            QByteArray text = FeedTexts::rss(u"T"_s, {u"a"_s});
            text.replace("<item>",
                         QByteArray("<item xmlns:q=\"urn:quillwire:marks\" q:downloaded=\"@\">").replace("@", forged));
            CachedFeed store(m_clock);
            CachedFeed fresh(m_clock);
            load(store, u"s.xml"_s, text);
            load(fresh, u"f.xml"_s, text);
            QString have = u"0"_s;
            QCOMPARE(merge(fresh, store, u"7"_s, have, m_now.date()), qint16(0));
            QVERIFY2(DateText::isDate(store.ItemDownloadDate(0)), forged);
        }
    }

private:
    CachedFeed &load(CachedFeed &feed, const QString &name, const QByteArray &text) const
    {
        m_folder->write(name, text);
        QFile file(m_folder->file(name)); // its time is the date of download of items that bear none
        if (!file.open(QIODevice::ReadWrite) || !file.setFileTime(m_now, QFileDevice::FileModificationTime))
            qFatal("the file's time can't be set");
        file.close();
        if (feed.Load(m_folder->file(name)) != LoadOk)
            qFatal("the document doesn't load");
        return feed;
    }
    QStringList titles(const QString &name) const
    {
        CachedFeed feed;
        feed.Load(m_folder->file(name));
        QStringList result;
        for (qint16 i = 0; i < feed.ItemCount(); ++i)
            result.append(feed.ItemTitle(i) + (feed.IsItemDeleted(i) ? u"*"_s : QString()));
        return result;
    }

    std::unique_ptr<TemporaryDataDirectory> m_folder;
    QDateTime m_now{QDate(2004, 7, 1), QTime(14, 0)};
    Clock m_clock = [this] { return m_now; };
};

QTEST_GUILESS_MAIN(ItemStoreTest)
#include "tst_ItemStore.moc"
