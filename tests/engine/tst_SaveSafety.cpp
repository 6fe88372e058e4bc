// SPDX-License-Identifier: GPL-3.0-or-later

#include "core/FeedCatalogue.h"
#include "core/FeedTreeState.h"
#include "engine/ItemStore.h"
#include "platform/xml/XmlDocument.h"
#include "support/clsDES.h"
#include "tests/fixtures/FeedTexts.h"
#include "tests/fixtures/RunTimeErrors.h"
#include "tests/fixtures/TemporaryDataDirectory.h"

#include <QCoreApplication>
#include <QProcess>
#include <QRandomGenerator>
#include <QStorageInfo>
#include <QTest>
#include <QThread>

#include <cstdio>

namespace {

QStringList oldItems()
{
    return FeedTexts::titles(u"old"_s, 0, 200);
}

/// A run of the program over its files, without a window.
struct Run
{
    explicit Run(const DataDirectory &data) : directory(data) { catalogue.loadCatalogue(); }

    void subscribe() { catalogue.addFeed({u"F"_s, {}, u"http://example.org/"_s, {}, {}}); }
    void makeFolder() { catalogue.createFolder(tree.root(), u"D"_s); }
    void move() { catalogue.moveFeed(tree.find(u"2"_s), tree.root(), false); }
    void end() { catalogue.saveCatalogueState(); }
    void mark() const
    {
        CachedFeed onShow;
        onShow.Load(directory.cacheFile(u"1"_s));
        onShow.SetItemRead(3, true);
        onShow.Save();
    }
    void update(const QString &key) const
    {
        CachedFeed fresh;
        CachedFeed store;
        if (fresh.Load(directory.file(u"tmpupd.xml"_s)) != LoadOk || store.Load(directory.cacheFile(key)) != LoadOk)
            _Exit(1);
        QString havecache = u"0"_s;
        ItemStore::merge(fresh, store, u"-7"_s, havecache, QDate::currentDate());
        store.Save();
    }

    DataDirectory directory;
    FeedTree tree;
    FeedTreeState state{tree};
    clsDES cipher;
    FeedCatalogue catalogue{directory, tree, state, cipher, Waiting::systemClock()};
};

constexpr int feedCount = 4;

/// Updates the feeds in turn and writes the catalogue in between, for ever. After each step the number of the last item
/// that is safe goes to the parent.
[[noreturn]] void updateForEver(const QString &path, int from)
{
    Run run((DataDirectory(path)));
    for (int number = from;; ++number) {
        Files::write(run.directory.file(u"tmpupd.xml"_s), FeedTexts::rss(u"F"_s, {u"new%1"_s.arg(number)}));
        for (int key = 1; key <= feedCount; ++key)
            run.update(QString::number(key));
        if (number % 4 == 0)
            run.makeFolder();
        run.end();
        std::printf("%d\n", number);
        std::fflush(stdout);
    }
}

/// Every feed of the catalogue has its cache file, with these items. Gives their number and that of the folders.
std::pair<int, int> lookThrough(const DataDirectory &directory, const QStringList &items)
{
    XmlDocument catalogue;
    if (catalogue.load(directory.file(u"feeds.xml"_s)) != XmlDocument::LoadResult::Loaded)
        return {};
    const XmlNode favoris = catalogue.selectSingleNode(u"favoris"_s);
    int feeds = 0;
    for (const XmlNode &feed : favoris.selectNodes(u"feed"_s)) {
        CachedFeed store;
        store.Load(directory.cacheFile(feed.requiredAttribute(u"key"_s)));
        QSet<QString> titles;
        for (qint16 i = 0; i < store.ItemCount(); ++i)
            titles.insert(store.ItemTitle(i));
        feeds += titles.contains(QSet<QString>(items.begin(), items.end())) ? 1 : 0;
    }
    return {feeds, static_cast<int>(favoris.selectNodes(u"dir"_s).size())};
}

} // namespace

/// No save loses what was stored, whatever ends it.
class SaveSafetyTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aKilledProcessLosesNothing()
    {
        const TemporaryDataDirectory folder;
        begin(folder.directory(), feedCount);
        bool set = false;
        const int given = qEnvironmentVariableIntValue("QUILLWIRE_KILLS", &set);
        const int kills = set ? given : 40;
        int safe = 0;
        for (int kill = 0; kill < kills; ++kill) {
            QProcess child;
            child.start(QCoreApplication::applicationFilePath(),
                        {u"--update-for-ever"_s, folder.directory().path(), QString::number(safe + 1)});
            QVERIFY(child.waitForReadyRead(20000));
            QThread::usleep(QRandomGenerator::global()->bounded(30000U));
            child.kill();
            child.waitForFinished();
            QCOMPARE(child.exitStatus(), QProcess::CrashExit);
            QList<QByteArray> lines = child.readAllStandardOutput().split('\n');
            lines.removeLast(); // what stands behind the last line end
            safe = lines.last().toInt();
            const auto [feeds, folders] =
                lookThrough(folder.directory(), oldItems() + FeedTexts::titles(u"new"_s, 1, safe));
            QCOMPARE(feeds, feedCount);
            QVERIFY(folders >= safe / 4);
        }
        qInfo("%d kills, %d updates", kills, safe);
    }

    /// Each save of a run, and the run-time error that it ends with, where no file can grow beyond some bytes. What
    /// QUILLWIRE_FULL_DISK names is a small file system that is filled instead (scripts/full-disk): what fits on that
    /// is not known beforehand.
    void aFullDiskLosesNothing_data()
    {
        QTest::addColumn<int>("room");
        QTest::addColumn<QByteArray>("expected");
        QTest::newRow("nothing fits") << 0 << QByteArray("61 61 61 61 61 61");
        QTest::newRow("the catalogue fits") << 4096 << QByteArray("0 0 61 61 61 0");
        QTest::newRow("all fits") << 65536 << QByteArray("0 0 0 0 0 0");
        for (const int room : {1024, 2048, 8192, 12288, 16384, 20480, 24576, 32768, 49152})
            if (qEnvironmentVariableIsSet("QUILLWIRE_FULL_DISK"))
                QTest::addRow("%d bytes", room) << room << QByteArray();
    }

    void aFullDiskLosesNothing()
    {
        QFETCH(const int, room);
        QFETCH(const QByteArray, expected);
        const TemporaryDataDirectory folder;
        const QString disk = qEnvironmentVariable("QUILLWIRE_FULL_DISK");
        const DataDirectory directory = disk.isEmpty() ? folder.directory() : DataDirectory(disk + u"/data"_s);
        QFile filler(disk + u"/filler"_s);
        if (!disk.isEmpty()) {
            filler.remove();
            QDir(directory.path()).removeRecursively();
            QVERIFY(QDir().mkpath(directory.file(u"feeds"_s)));
        }
        begin(directory, 2);
        const QByteArray block(1024, 'x');
        if (!disk.isEmpty() && filler.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
            while (QStorageInfo(disk).bytesAvailable() > room && filler.write(block) == block.size()) {
            }
        const rlim_t limit = disk.isEmpty() ? static_cast<rlim_t>(room) : RLIM_INFINITY;
        QByteArrayList errors;
        int feeds = 2;
        const auto attempt = [&](const auto &step) {
            errors.append(QByteArray::number(errorOnFullDisk(limit, [&] { step(Run(directory)); })));
            QVERIFY(errors.back() == "0" || errors.back() == "61");
        };
        attempt([](Run &&run) { run.end(); });
        attempt([](Run &&run) { run.makeFolder(); });
        attempt([](Run &&run) { run.subscribe(); });
        feeds += errors.back() == "0" ? 1 : 0;
        attempt([](Run &&run) { run.update(u"2"_s); });
        attempt([](Run &&run) { run.mark(); });
        attempt([](Run &&run) { run.move(); });
        QVERIFY2(expected.isEmpty() || errors.join(' ') == expected, errors.join(' ').constData());
        QCOMPARE(lookThrough(directory, oldItems()), std::pair(feeds, errors[1] == "0" ? 1 : 0));
        QCOMPARE(QDir(directory.file(u"feeds"_s)).entryList(QDir::Files).size(), feeds); // no half of a file either
    }

private:
    static void begin(const DataDirectory &directory, int feeds)
    {
        Files::write(directory.file(u"feeds.xml"_s), "<favoris/>");
        Files::write(directory.file(u"tmp.xml"_s), FeedTexts::rss(u"F"_s, oldItems()));
        Files::write(directory.file(u"tmpupd.xml"_s), FeedTexts::rss(u"F"_s, {u"new"_s}));
        Run run(directory);
        for (int i = 0; i < feeds; ++i)
            run.subscribe();
    }
};

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() == 4 && arguments[1] == u"--update-for-ever")
        updateForEver(arguments[2], arguments[3].toInt());
    SaveSafetyTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_SaveSafety.moc"
