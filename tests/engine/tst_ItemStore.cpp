// SPDX-License-Identifier: GPL-3.0-or-later

#include "core/FeedTreeState.h"
#include "engine/ItemStore.h"
#include "engine/UpdateScheduler.h"
#include "platform/Literals.h"
#include "support/clsDES.h"
#include "tests/fixtures/FakeDownloader.h"
#include "tests/fixtures/FeedTexts.h"
#include "tests/fixtures/RunTimeErrors.h"
#include "tests/fixtures/TemporaryDataDirectory.h"

#include <QFile>
#include <QRandomGenerator>
#include <QTest>

#include <algorithm>

namespace {

/// An item of a cache file as the user sees it.
struct Item
{
    QString title;
    QDate downloaded;
    bool read = false;
    bool deleted = false;
};

/// What a feed's list is to be: the rules as the user knows them.
struct FeedModel
{
    std::vector<Item> items;
    int days = 0;        ///< that items are kept; negative: for ever
    bool looked = false; ///< for items that are too old, in this run

    /// An update on `today` from a server that lists `listed`. What is new stands in front, in the server's order, and
    /// is there once; what is kept long enough goes, at the first update of a run; what went stays as a tombstone for
    /// as long as the server lists it.
    qint16 update(const QStringList &listed, QDate today)
    {
        std::vector<Item> next;
        for (const QString &title : QStringList(QSet<QString>(listed.begin(), listed.end()).values()))
            if (std::none_of(items.begin(), items.end(), [&](const Item &item) { return item.title == title; }))
                next.push_back({title, today});
        std::sort(next.begin(), next.end(),
                  [&](const Item &a, const Item &b) { return listed.indexOf(a.title) < listed.indexOf(b.title); });
        const auto found = static_cast<qint16>(next.size());
        next.insert(next.end(), items.begin(), items.end());
        for (Item &item : next)
            item.deleted |= !looked && days >= 0 && item.downloaded.addDays(days) < today;
        looked = true;
        std::erase_if(next, [&](const Item &item) { return item.deleted && !listed.contains(item.title); });
        items = next;
        return found;
    }
};

/// Feeds with their cache files, updated over the scheduler. The clock is set by hand.
struct Store
{
    Store() { tree.addRoot(u"root"_s, {}, NodeImage::Root); }

    /// A feed whose file was written now, which is the date of download of items that bear none.
    void addFeed(const QString &key, const QByteArray &text, const QString &days, const QString &havecache = u"0"_s)
    {
        tree.addChild(tree.root(), key, {}, NodeImage::Feed);
        tables.updatecache.Add(key, days);
        tables.havecache.Add(key, havecache);
        Files::write(folder.cacheFile(key), text);
        QFile file(folder.cacheFile(key));
        if (!file.open(QIODevice::ReadWrite) || !file.setFileTime(now, QFileDevice::FileModificationTime))
            qFatal("the file's time can't be set");
    }
    /// The number of new items.
    int update(const QString &key, const QByteArray &served)
    {
        int found = -1;
        QObject::connect(&scheduler, &UpdateScheduler::ended, &scheduler,
                         [&found](const FeedNodePtr &, qint16 count) { found = count; });
        scheduler.updateFeed(tree.find(key));
        downloader.finish(200, served);
        scheduler.disconnect();
        return found;
    }
    std::vector<Item> items(const QString &key) const
    {
        CachedFeed feed;
        feed.Load(folder.cacheFile(key));
        std::vector<Item> result;
        for (qint16 i = 0; i < feed.ItemCount(); ++i)
            result.push_back({feed.ItemTitle(i), DateText::fromText(feed.ItemDownloadDate(i)).date(),
                              feed.IsItemRead(i), feed.IsItemDeleted(i)});
        return result;
    }

    TemporaryDataDirectory folder;
    QDateTime now{QDate(2004, 7, 1), QTime(14, 0)};
    FeedTree tree;
    FeedTreeState state{tree};
    FeedTables tables;
    CurrentFeed current;
    clsDES cipher;
    FakeDownloader downloader;
    UpdateScheduler scheduler{{folder.directory(),
                               tree,
                               state,
                               tables,
                               current,
                               cipher,
                               downloader,
                               [] { return true; },
                               [this] { return now; },
                               {}}};
};

QString told(const std::vector<Item> &items)
{
    QString lines;
    for (const Item &item : items)
        lines += item.title + item.downloaded.toString(u" dd/MM"_s) + (item.read ? u" read"_s : QString()) +
                 (item.deleted ? u" deleted"_s : QString()) + u'\n';
    return lines;
}

} // namespace

class ItemStoreTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_store = std::make_unique<Store>(); }

    /// Months of three feeds beside each other, each with a setting of its own, which the user reads, deletes from and
    /// sets anew, and of runs of the program that begin and end.
    void historiesGoAsTheRulesTell_data()
    {
        QTest::addColumn<quint32>("seed");
        for (quint32 seed = 1; seed <= 12; ++seed)
            QTest::addRow("seed %u", seed) << seed;
    }

    void historiesGoAsTheRulesTell()
    {
        QFETCH(const quint32, seed);
        QRandomGenerator random(seed);
        const auto someTitles =
            [&random](int count) { // few of them, so that many meet; some differ by case, some are empty
                QStringList result;
                for (int i = 0; i < count; ++i)
                    result.append(QStringList{u"a"_s, u"A"_s, QString()}[random.bounded(3)] +
                                  QString::number(random.bounded(12)).remove(u'1'));
                return result;
            };
        Store &store = *m_store;
        FeedModel models[3];
        for (int feed = 0; feed < 3; ++feed) {
            FeedModel &model = models[feed];
            const QStringList first = someTitles(random.bounded(10));
            for (const QString &title : first)
                model.items.push_back({title, store.now.date()});
            model.days = random.bounded(-2, 6);
            store.addFeed(QString::number(feed), FeedTexts::rss({}, first), QString::number(model.days));
        }
        for (int round = 0; round < 30; ++round) {
            store.now = store.now.addSecs(3600 * random.bounded(48));
            const int feed = random.bounded(3);
            const QString key = QString::number(feed);
            FeedModel &model = models[feed];
            for (int i = 0, newRun = random.bounded(4); i < 3 && newRun == 0; ++i) {
                models[i].looked = false;
                store.tables.havecache.Replace(QString::number(i), u"0"_s);
            }
            if (random.bounded(6) == 0) {
                model.days = random.bounded(-2, 6);
                store.tables.updatecache.Replace(key, QString::number(model.days));
            }
            CachedFeed shown;
            QCOMPARE(shown.Load(store.folder.cacheFile(key)), LoadOk);
            for (std::size_t i = 0; i < model.items.size(); ++i) {
                const auto index = static_cast<qint16>(i);
                if (random.bounded(4) == 0)
                    shown.SetItemRead(index, model.items[i].read = random.bounded(3) > 0);
                if (random.bounded(5) == 0) {
                    model.items[i].deleted = true;
                    shown.DeleteItem(index);
                }
            }
            shown.Save();
            const QStringList listed = someTitles(random.bounded(15));
            const int found = model.update(listed, store.now.date());
            QCOMPARE(store.update(key, FeedTexts::rss({}, listed)), found);
            QCOMPARE(store.tables.havecache.Item(key), u"1"_s);
            QCOMPARE(told(store.items(key)), told(model.items));
        }
    }

    void titlesThatMovePastTheLastIndexAreNoLongerSeen()
    {
        Store &store = *m_store;
        store.addFeed(u"1"_s, FeedTexts::rss({}, FeedTexts::titles(u"old"_s, 0, 32766)), u"0"_s, u"1"_s);
        const QString some = u"old32765 new1 old32765 new2 old32765 old32764 old32765 old5"_s;
        QCOMPARE(store.update(u"1"_s, FeedTexts::rss({}, some.split(u' '))), 4);
        std::vector<Item> items = store.items(u"1"_s);
        QCOMPARE(items.size(), std::size_t(32767));
        QCOMPARE(items.back().title, u"old32762"_s);
        items.resize(5);
        QCOMPARE(told(items), u"new1 01/07\nnew2 01/07\nold32765 01/07\nold32764 01/07\nold0 01/07\n"_s);
        CachedFeed stored;
        CachedFeed fresh;
        stored.Load(store.folder.cacheFile(u"1"_s));
        fresh.Load(store.folder.file(u"tmpupd.xml"_s));
        QVERIFY(ItemStore::ItemExists(7, fresh, stored) && ItemStore::ItemExists(32766, stored, stored));
        QVERIFY(!ItemStore::ItemExists(4, stored, fresh));
    }

    void aRetentionThatIsNoNumberRaisesAnError()
    {
        for (const auto &[days, error] : {std::pair(u""_s, 13), std::pair(u"x"_s, 13), std::pair(u"32768"_s, 6)}) {
            init();
            m_store->addFeed(u"1"_s, FeedTexts::rss({}, {u"a"_s}), days);
            QCOMPARE(errorOf([this] { m_store->update(u"1"_s, FeedTexts::rss({}, {u"b"_s})); }), error);
            QCOMPARE(m_store->tables.havecache.Item(u"1"_s), u"0"_s);
            QCOMPARE(told(m_store->items(u"1"_s)), u"a 01/07\n"_s);
        }
    }

    /// The cache file of a new feed is the document as the server sent it, with whatever stands in it.
    void forgedDatesOfDownloadDoNoHarm()
    {
        for (const char *forged : {"", "x", "9999-12-31T23:59:59Z", "0000-00-00T00:00:00Z", "0001-01-01T00:00:00Z",
                                   "-4712-01-01T00:00:00Z", "292278994-01-01T00:00:00Z", "2004-03-28T02:30:00"}) {
            init();
            QByteArray text = FeedTexts::rss(u"T"_s, {u"a"_s});
            text.replace("<item>",
                         QByteArray("<item xmlns:q=\"urn:quillwire:marks\" q:downloaded=\"@\">").replace("@", forged));
            m_store->addFeed(u"1"_s, text, u"7"_s);
            QCOMPARE(m_store->update(u"1"_s, text), 0);
            QCOMPARE(m_store->items(u"1"_s).size(), std::size_t(1));
        }
    }

private:
    std::unique_ptr<Store> m_store;
};

QTEST_GUILESS_MAIN(ItemStoreTest)
#include "tst_ItemStore.moc"
