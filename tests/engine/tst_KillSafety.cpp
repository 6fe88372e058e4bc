// SPDX-License-Identifier: GPL-3.0-or-later

#include "core/FeedCatalogue.h"
#include "core/FeedTreeState.h"
#include "engine/ItemStore.h"
#include "platform/Literals.h"
#include "platform/xml/XmlDocument.h"
#include "support/clsDES.h"
#include "tests/fixtures/FeedTexts.h"
#include "tests/fixtures/TemporaryDataDirectory.h"

#include <QCoreApplication>
#include <QProcess>
#include <QRandomGenerator>
#include <QTest>
#include <QThread>

#include <cstdio>

namespace {

constexpr int feedCount = 4;

QString item(int number)
{
    return u"item%1"_s.arg(number);
}

/// Updates the feeds in turn and writes the catalogue in between, for ever. After each step the number of the last item
/// that is safe goes to the parent.
[[noreturn]] void updateForEver(const QString &path, int from)
{
    const DataDirectory directory(path);
    FeedTree tree;
    FeedTreeState state(tree);
    clsDES cipher;
    FeedCatalogue catalogue(directory, tree, state, cipher, Waiting::systemClock());
    catalogue.loadCatalogue();
    for (int number = from;; ++number) {
        Files::write(directory.file(u"tmpupd.xml"_s), FeedTexts::rss(u"T"_s, {item(number)}));
        for (int key = 1; key <= feedCount; ++key) {
            CachedFeed fresh;
            CachedFeed store;
            if (fresh.Load(directory.file(u"tmpupd.xml"_s)) != LoadOk ||
                store.Load(directory.cacheFile(QString::number(key))) != LoadOk)
                _Exit(1);
            QString havecache = u"0"_s;
            ItemStore::merge(fresh, store, u"-7"_s, havecache, QDate::currentDate());
            store.Save();
        }
        if (number % 4 == 0)
            catalogue.createFolder(tree.root(), item(number));
        catalogue.saveCatalogueState();
        std::printf("%d\n", number);
        std::fflush(stdout);
    }
}

} // namespace

/// A process that is killed at any moment leaves files that load, with every item that had been stored.
class KillSafetyTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aKilledProcessLosesNothing()
    {
        const TemporaryDataDirectory folder;
        folder.write(u"feeds.xml"_s, "<favoris/>");
        QStringList old = FeedTexts::titles(u"old"_s, 0, 200);
        {
            folder.write(u"tmp.xml"_s, FeedTexts::rss(u"T"_s, old));
            FeedTree tree;
            FeedTreeState state(tree);
            clsDES cipher;
            FeedCatalogue catalogue(folder.directory(), tree, state, cipher, Waiting::systemClock());
            catalogue.loadCatalogue();
            for (int key = 1; key <= feedCount; ++key)
                catalogue.addFeed({u"T"_s, {}, u"http://example.org/"_s, {}, {}});
        }
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

            for (int key = 1; key <= feedCount; ++key) {
                CachedFeed store;
                QCOMPARE(store.Load(folder.cacheFile(QString::number(key))), LoadOk);
                QSet<QString> titles;
                for (qint16 i = 0; i < store.ItemCount(); ++i)
                    titles.insert(store.ItemTitle(i));
                for (int number = 1; number <= safe; ++number)
                    QVERIFY2(titles.contains(item(number)), qPrintable(item(number)));
                for (const QString &title : old)
                    QVERIFY2(titles.contains(title), qPrintable(title));
            }
            XmlDocument catalogue;
            QCOMPARE(catalogue.load(folder.file(u"feeds.xml"_s)), XmlDocument::LoadResult::Loaded);
            const XmlNode favoris = catalogue.selectSingleNode(u"favoris"_s);
            QCOMPARE(favoris.selectNodes(u"feed"_s).size(), std::size_t(feedCount));
            QVERIFY(favoris.selectNodes(u"dir"_s).size() >= static_cast<std::size_t>(safe / 4));
        }
        qInfo("%d kills, %d updates", kills, safe);
    }
};

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() == 4 && arguments[1] == u"--update-for-ever")
        updateForEver(arguments[2], arguments[3].toInt());
    KillSafetyTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_KillSafety.moc"
