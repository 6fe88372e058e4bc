#include "engine/ItemStore.h"
#include "platform/DateText.h"
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
        havecache = QStringLiteral("1");
    }
    const qint16 count = store.ItemCount();
    for (qint16 i = 0; i < count; ++i)
        if (store.IsItemDeleted(i) && !ItemStore::ItemExists(i, store, fresh))
            store.RemoveItem(i);
    store.Save();
    return added;
}

} // namespace

class ItemStoreTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_folder = std::make_unique<TemporaryDataDirectory>(); }
    void mergingGivesWhatThePlainRulesGive_data();
    void mergingGivesWhatThePlainRulesGive();
    void titlesThatMovePastTheLastIndexAreNoLongerSeen();
    void newItemsStandInFrontInTheOrderOfTheFeed();
    void aTombstoneStaysAsLongAsTheServerListsTheItem();
    void itemsAgeOutOnceARun_data();
    void itemsAgeOutOnceARun();
    void aRetentionThatIsNoNumberRaisesAnError();
    void forgedDatesOfDownloadDoNoHarm();

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
            result.append(feed.ItemTitle(i) + (feed.IsItemDeleted(i) ? QStringLiteral("*") : QString()));
        return result;
    }

    std::unique_ptr<TemporaryDataDirectory> m_folder;
    QDateTime m_now{QDate(2004, 7, 1), QTime(14, 0)};
    Clock m_clock = [this] { return m_now; };
};

void ItemStoreTest::mergingGivesWhatThePlainRulesGive_data()
{
    QTest::addColumn<quint32>("seed");
    for (quint32 seed = 1; seed <= 40; ++seed)
        QTest::newRow(qPrintable(QString::number(seed))) << seed;
}

void ItemStoreTest::mergingGivesWhatThePlainRulesGive()
{
    QFETCH(quint32, seed);
    QRandomGenerator random(seed);
    const auto randomTitles =
        [&random](int count) { // few of them, so that many meet; some differ by case, some are empty
            QStringList result;
            for (int i = 0; i < count; ++i)
                result.append(QStringList{QStringLiteral("a"), QStringLiteral("A"), QString()}[random.bounded(3)] +
                              QString::number(random.bounded(12)).remove(u'1'));
            return result;
        };
    CachedFeed stores[2] = {CachedFeed(m_clock), CachedFeed(m_clock)};
    const QByteArray first = FeedTexts::rss(QStringLiteral("T"), randomTitles(random.bounded(10)));
    load(stores[0], QStringLiteral("a.xml"), first);
    load(stores[1], QStringLiteral("b.xml"), first);
    const QString cache = QString::number(random.bounded(-2, 4));
    QString have[2] = {QStringLiteral("0"), QStringLiteral("0")};
    for (int round = 0; round < 5; ++round) {
        m_now = m_now.addDays(random.bounded(3));
        for (int i = 0; i < stores[0].ItemCount(); ++i)
            if (random.bounded(3) == 0) {
                stores[0].DeleteItem(static_cast<qint16>(i));
                stores[1].DeleteItem(static_cast<qint16>(i));
            }
        CachedFeed fresh(m_clock);
        load(fresh, QStringLiteral("f.xml"), FeedTexts::rss(QStringLiteral("T"), randomTitles(random.bounded(15))));
        const qint16 added = ItemStore::merge(fresh, stores[0], cache, have[0], m_now.date());
        QCOMPARE(added, mergeByTheRules(fresh, stores[1], cache, have[1], m_now.date()));
        QCOMPARE(have[0], QStringLiteral("1"));
        QCOMPARE(m_folder->read(QStringLiteral("a.xml")), m_folder->read(QStringLiteral("b.xml")));
        if (random.bounded(2) == 0) { // a new run
            have[0] = have[1] = QStringLiteral("0");
            QCOMPARE(stores[0].Load(m_folder->file(QStringLiteral("a.xml"))), LoadOk);
            QCOMPARE(stores[1].Load(m_folder->file(QStringLiteral("b.xml"))), LoadOk);
        }
    }
}

void ItemStoreTest::titlesThatMovePastTheLastIndexAreNoLongerSeen()
{
    const QByteArray full = FeedTexts::rss(QStringLiteral("T"), FeedTexts::titles(QStringLiteral("old"), 0, 32766));
    const QByteArray some = FeedTexts::rss(QStringLiteral("T"), {QStringLiteral("old32765"), QStringLiteral("new1"),
                                                                 QStringLiteral("old32765"), QStringLiteral("new2"),
                                                                 QStringLiteral("old32765"), QStringLiteral("old32764"),
                                                                 QStringLiteral("old32765"), QStringLiteral("old5")});
    CachedFeed fresh(m_clock);
    load(fresh, QStringLiteral("f.xml"), some);
    CachedFeed store(m_clock);
    load(store, QStringLiteral("a.xml"), full);
    QString have = QStringLiteral("1");
    const qint16 added = ItemStore::merge(fresh, store, QStringLiteral("-7"), have, m_now.date());
    load(store, QStringLiteral("b.xml"), full);
    QCOMPARE(added, mergeByTheRules(fresh, store, QStringLiteral("-7"), have, m_now.date()));
    QCOMPARE(m_folder->read(QStringLiteral("a.xml")), m_folder->read(QStringLiteral("b.xml")));
    QVERIFY(m_folder->read(QStringLiteral("a.xml")).count("<item") > 32767); // what isn't offered is kept
    QCOMPARE(store.ItemCount(), qint16(32767));
}

void ItemStoreTest::newItemsStandInFrontInTheOrderOfTheFeed()
{
    CachedFeed fresh(m_clock);
    CachedFeed store(m_clock);
    load(store, QStringLiteral("s.xml"),
         FeedTexts::rss(QStringLiteral("T"), {QStringLiteral("x"), QStringLiteral("y")}));
    load(fresh, QStringLiteral("f.xml"),
         FeedTexts::rss(QStringLiteral("T"), {QStringLiteral("1"), QStringLiteral("y"), QStringLiteral("2"),
                                              QStringLiteral("1"), QStringLiteral("Y")}));
    QString have = QStringLiteral("0");
    QCOMPARE(ItemStore::merge(fresh, store, QStringLiteral("-7"), have, m_now.date()), qint16(3));
    QCOMPARE(titles(QStringLiteral("s.xml")), QString(QStringLiteral("1 2 Y x y")).split(u' '));
}

void ItemStoreTest::aTombstoneStaysAsLongAsTheServerListsTheItem()
{
    CachedFeed store(m_clock);
    CachedFeed fresh(m_clock);
    const QByteArray both = FeedTexts::rss(QStringLiteral("T"), {QStringLiteral("a"), QStringLiteral("b")});
    load(store, QStringLiteral("s.xml"), both);
    store.DeleteItem(0);
    QString have = QStringLiteral("1");
    load(fresh, QStringLiteral("f.xml"), both);
    QCOMPARE(ItemStore::merge(fresh, store, QStringLiteral("-7"), have, m_now.date()), qint16(0));
    QCOMPARE(titles(QStringLiteral("s.xml")), (QStringList{QStringLiteral("a*"), QStringLiteral("b")}));
    load(fresh, QStringLiteral("f.xml"), FeedTexts::rss(QStringLiteral("T"), {QStringLiteral("b")}));
    ItemStore::merge(fresh, store, QStringLiteral("-7"), have, m_now.date());
    QCOMPARE(titles(QStringLiteral("s.xml")), QStringList{QStringLiteral("b")});
    load(fresh, QStringLiteral("f.xml"), both);
    QCOMPARE(ItemStore::merge(fresh, store, QStringLiteral("-7"), have, m_now.date()), qint16(1));
    QCOMPARE(titles(QStringLiteral("s.xml")), (QStringList{QStringLiteral("a"), QStringLiteral("b")}));
}

void ItemStoreTest::itemsAgeOutOnceARun_data()
{
    QTest::addColumn<QString>("cache");
    QTest::addColumn<int>("daysLater");
    QTest::addColumn<QString>("havecache");
    QTest::addColumn<bool>("stays");
    const QString no = QStringLiteral("0");
    QTest::newRow("as old as allowed") << QStringLiteral("2") << 2 << no << true;
    QTest::newRow("a day older") << QStringLiteral("2") << 3 << no << false;
    QTest::newRow("a day older, but looked at before") << QStringLiteral("2") << 3 << QStringLiteral("1") << true;
    QTest::newRow("never") << QStringLiteral("-7") << 4000 << no << true;
    QTest::newRow("only today") << QStringLiteral("0") << 1 << no << false;
    QTest::newRow("of today") << QStringLiteral("0") << 0 << no << true;
}

void ItemStoreTest::itemsAgeOutOnceARun()
{
    QFETCH(QString, cache);
    QFETCH(int, daysLater);
    QFETCH(QString, havecache);
    QFETCH(bool, stays);
    CachedFeed store(m_clock);
    CachedFeed fresh(m_clock);
    const QString listed = QStringLiteral("listed");
    load(store, QStringLiteral("s.xml"), FeedTexts::rss(QStringLiteral("T"), {}));
    load(fresh, QStringLiteral("f.xml"), FeedTexts::rss(QStringLiteral("T"), {QStringLiteral("dropped"), listed}));
    QString have = QStringLiteral("1");
    m_now = QDateTime(QDate(2004, 7, 1), QTime(23, 59));
    ItemStore::merge(fresh, store, cache, have, m_now.date());
    load(fresh, QStringLiteral("f.xml"), FeedTexts::rss(QStringLiteral("T"), {listed}));
    ItemStore::merge(fresh, store, cache, havecache, m_now.date().addDays(daysLater));
    QCOMPARE(titles(QStringLiteral("s.xml")),
             stays ? (QStringList{QStringLiteral("dropped"), listed}) : QStringList{QStringLiteral("listed*")});
}

void ItemStoreTest::aRetentionThatIsNoNumberRaisesAnError()
{
    CachedFeed store(m_clock);
    CachedFeed fresh(m_clock);
    const QByteArray before = FeedTexts::rss(QStringLiteral("T"), {QStringLiteral("a")});
    load(store, QStringLiteral("s.xml"), before);
    load(fresh, QStringLiteral("f.xml"), before);
    for (const char *cache : {"", "x", "32768"}) {
        QString have = QStringLiteral("0");
        QVERIFY_EXCEPTION_THROWN(ItemStore::merge(fresh, store, QLatin1String(cache), have, m_now.date()),
                                 RunTimeError);
    }
    QCOMPARE(m_folder->read(QStringLiteral("s.xml")), before);
}

/// The cache file of a new feed is the document as the server sent it, with whatever stands in it.
void ItemStoreTest::forgedDatesOfDownloadDoNoHarm()
{
    for (const char *forged : {"", "x", "9999-12-31T23:59:59Z", "0000-00-00T00:00:00Z", "0001-01-01T00:00:00Z",
                               "-4712-01-01T00:00:00Z", "292278994-01-01T00:00:00Z", "2004-03-28T02:30:00"}) {
        QByteArray text = FeedTexts::rss(QStringLiteral("T"), {QStringLiteral("a")});
        text.replace("<item>",
                     QByteArray("<item xmlns:q=\"urn:quillwire:marks\" q:downloaded=\"@\">").replace("@", forged));
        CachedFeed store(m_clock);
        CachedFeed fresh(m_clock);
        load(store, QStringLiteral("s.xml"), text);
        load(fresh, QStringLiteral("f.xml"), text);
        QString have = QStringLiteral("0");
        QCOMPARE(ItemStore::merge(fresh, store, QStringLiteral("7"), have, m_now.date()), qint16(0));
        QVERIFY2(DateText::isDate(store.ItemDownloadDate(0)), forged);
    }
}

QTEST_GUILESS_MAIN(ItemStoreTest)
#include "tst_ItemStore.moc"
