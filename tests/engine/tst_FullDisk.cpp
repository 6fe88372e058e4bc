// SPDX-License-Identifier: GPL-3.0-or-later

#include "core/FeedCatalogue.h"
#include "core/FeedTreeState.h"
#include "engine/ItemStore.h"
#include "platform/Files.h"
#include "platform/Literals.h"
#include "platform/RunTimeError.h"
#include "platform/xml/XmlDocument.h"
#include "support/clsDES.h"
#include "tests/fixtures/FeedTexts.h"

#include <QDir>
#include <QFile>
#include <QStorageInfo>
#include <QTest>

/// Each save of a run against a small disk with less and less room. The disk is what QUILLWIRE_FULL_DISK names, a file
/// system of its own that may be filled: scripts/full-disk makes one. Without it nothing is tried.
class FullDiskTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        m_disk = qEnvironmentVariable("QUILLWIRE_FULL_DISK");
        if (m_disk.isEmpty())
            QSKIP("no disk to fill");
    }

    void noSaveLosesWhatWasStored_data()
    {
        QTest::addColumn<int>("roomInKiB");
        for (const int room : {0, 1, 2, 4, 8, 12, 16, 20, 24, 32, 40, 48, 64})
            QTest::addRow("%d KiB", room) << room;
    }

    void noSaveLosesWhatWasStored()
    {
        QFETCH(int, roomInKiB);
        startAfresh();
        fillBut(roomInKiB);
        int done = 0;
        done += attempt([](FeedCatalogue &catalogue, FeedTree &) { catalogue.saveCatalogueState(); });
        done += attempt([](FeedCatalogue &catalogue, FeedTree &tree) { catalogue.createFolder(tree.root(), u"D"_s); });
        done += attempt([](FeedCatalogue &catalogue, FeedTree &) { subscribe(catalogue); });
        done += attempt([this](FeedCatalogue &, FeedTree &) { update(); });
        done += attempt([this](FeedCatalogue &, FeedTree &) { mark(); });
        done += attempt([](FeedCatalogue &catalogue, FeedTree &tree) {
            const FeedNodePtr first = tree.find(u"1"_s);
            catalogue.moveFeed(tree.find(u"2"_s), tree.root(), false);
            QVERIFY(first);
        });
        qInfo("%d of 6 saves had room", done);
    }

private:
    static void subscribe(FeedCatalogue &catalogue)
    {
        catalogue.addFeed({u"F"_s, {}, u"http://example.org/"_s, {}, {}});
    }

    DataDirectory directory() const { return DataDirectory(m_disk + u"/data"_s); }

    /// Two feeds of a hundred items each, on an empty disk.
    void startAfresh()
    {
        QFile::remove(m_disk + u"/filler"_s);
        QDir(directory().path()).removeRecursively();
        QVERIFY(QDir().mkpath(directory().file(u"feeds"_s)));
        Files::write(directory().file(u"feeds.xml"_s), "<favoris/>");
        Files::write(directory().file(u"tmp.xml"_s), FeedTexts::rss(u"F"_s, FeedTexts::titles(u"old"_s, 0, 100)));
        for (int i = 0; i < 2; ++i)
            QVERIFY(attempt([](FeedCatalogue &catalogue, FeedTree &) { subscribe(catalogue); }));
    }

    void fillBut(int kibibytes) const
    {
        QFile filler(m_disk + u"/filler"_s);
        QVERIFY(filler.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
        const QByteArray block(1024, 'x');
        while (QStorageInfo(m_disk).bytesAvailable() > kibibytes * 1024LL && filler.write(block) == block.size()) {
        }
    }

    /// Does `step` as a run of the program would, from the files to its end or its error, and looks what they hold
    /// then. True when there was room.
    bool attempt(const std::function<void(FeedCatalogue &, FeedTree &)> &step) const
    {
        bool done = true;
        FeedTree tree;
        FeedTreeState state(tree);
        clsDES cipher;
        FeedCatalogue catalogue(directory(), tree, state, cipher, Waiting::systemClock());
        catalogue.loadCatalogue();
        try {
            step(catalogue, tree);
        } catch (const RunTimeError &error) {
            done = false;
            [&] { QCOMPARE(error.number(), RunTimeError::diskFull().number()); }();
        }
        everyFeedHasItsItems();
        return done;
    }

    void everyFeedHasItsItems() const
    {
        XmlDocument catalogue;
        QCOMPARE(catalogue.load(directory().file(u"feeds.xml"_s)), XmlDocument::LoadResult::Loaded);
        int feeds = 0;
        for (const XmlNode &feed : catalogue.selectSingleNode(u"favoris"_s).selectNodes(u"feed"_s)) {
            CachedFeed store;
            QCOMPARE(store.Load(directory().cacheFile(feed.requiredAttribute(u"key"_s))), LoadOk);
            QVERIFY(store.ItemCount() >= 100);
            ++feeds;
        }
        const QStringList files = QDir(directory().file(u"feeds"_s)).entryList(QDir::Files);
        QCOMPARE(feeds, files.size()); // no half of a file either
    }

    void update() const
    {
        CachedFeed fresh;
        CachedFeed store;
        QCOMPARE(fresh.Load(directory().file(u"tmp.xml"_s)), LoadOk);
        QCOMPARE(store.Load(directory().cacheFile(u"2"_s)), LoadOk);
        fresh.DeleteItem(0);
        QString havecache = u"0"_s;
        ItemStore::merge(fresh, store, u"-7"_s, havecache, QDate::currentDate());
        store.Save();
    }

    void mark() const
    {
        CachedFeed onShow;
        QCOMPARE(onShow.Load(directory().cacheFile(u"1"_s)), LoadOk);
        onShow.SetItemRead(3, true);
        onShow.Save();
    }

    QString m_disk;
};

QTEST_GUILESS_MAIN(FullDiskTest)
#include "tst_FullDisk.moc"
