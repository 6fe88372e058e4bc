// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/AddFeed.h"
#include "platform/RunTimeError.h"
#include "tests/engine/SchedulerFixture.h"

#include <QFile>

/// What an update, the document on show and the user do to one file.
class FeedUpdateTest : public QObject, private SchedulerFixture
{
    Q_OBJECT

private Q_SLOTS:
    void init() { start(); }

    void anUpdateAndTheDocumentOnShowShareOneFile_data()
    {
        QTest::addColumn<QString>("onShow");
        QTest::addColumn<QString>("selected");
        QTest::addColumn<bool>("addressFeedShown");
        QTest::addColumn<bool>("reloaded");
        QTest::newRow("its own") << u"feeds/1.xml"_s << u"1"_s << false << true;
        QTest::newRow("its own, a folder selected") << u"feeds/1.xml"_s << u"root"_s << false << false;
        QTest::newRow("its own, nothing selected") << u"feeds/1.xml"_s << QString() << false << false;
        QTest::newRow("another, this one selected in flight") << u"feeds/2.xml"_s << u"1"_s << false << true;
        QTest::newRow("an address") << u"tmp.xml"_s << u"1"_s << true << false;
        QTest::newRow("a local file") << u"tmp.xml"_s << u"1"_s << false << false;
    }

    void anUpdateAndTheDocumentOnShowShareOneFile()
    {
        QFETCH(QString, onShow);
        QFETCH(QString, selected);
        QFETCH(bool, reloaded);
        addFeed(1, FeedTexts::titles(u"i"_s, 0, 7));
        addFeed(2, FeedTexts::titles(u"i"_s, 0, 7));
        QCOMPARE(m_current->document->Load(m_folder->file(onShow)), LoadOk);
        QFETCH(const bool, addressFeedShown);
        m_current->addressFeedShown = addressFeedShown;
        m_current->document->SetItemRead(0, true);
        serve(1, FeedTexts::titles(u"new"_s, 0, 3)); // the server lists the seven no longer
        m_scheduler->updateFeed(node(1));
        m_state->select(m_tree->find(selected));
        m_current->document->SetItemRead(1, true);
        m_downloader->answer();
        QCOMPARE(m_said.filter(u"reloaded"_s), reloaded ? QStringList{u"reloaded 3"_s} : QStringList());
        QCOMPARE(m_current->document->ItemCount(), qint16(reloaded ? 10 : 7));
        m_current->document->Save(); // another feed is clicked, or the program ends
        QCOMPARE(storedItems(1), qint16(10));
        CachedFeed stored;
        QCOMPARE(stored.Load(m_folder->file(onShow)), LoadOk);
        const qint16 first = onShow == u"feeds/1.xml" ? 3 : 0;
        QVERIFY(stored.IsItemRead(first));
        // A mark of its own set in flight goes with the document that is loaded afresh.
        QCOMPARE(stored.IsItemRead(first + 1), first == 0 || !reloaded);
    }

    void theFeedThatAnImportTakesFromShowIsSaved()
    {
        addFeed(1, {u"a"_s});
        QCOMPARE(m_current->document->Load(m_folder->cacheFile(u"1"_s)), LoadOk);
        m_current->document->SetItemRead(0, true);
        const auto imported = std::make_shared<CachedFeed>();
        QCOMPARE(imported->Load(m_folder->file(u"tmp.xml"_s)), LoadOk);
        AddFeed(imported, address(2), *m_current, *m_catalogue);
        CachedFeed stored;
        QCOMPARE(stored.Load(m_folder->cacheFile(u"1"_s)), LoadOk);
        QVERIFY(stored.IsItemRead(0));
    }

    void aSubscriptionTakesTheAddressOnShowAfterAnImportThatLeftAPageBehind()
    {
        m_folder->write(u"tmp.xml"_s, FeedTexts::rss(u"On show"_s, {u"a"_s, u"b"_s}));
        QCOMPARE(m_current->document->Load(m_folder->file(u"tmp.xml"_s)), LoadOk);
        m_current->addressFeedShown = true;
        m_folder->write(u"tmp.xml"_s, "<html>");
        AddFeed(nullptr, address(1), *m_current, *m_catalogue);
        QCOMPARE(storedItems(1), qint16(2));
        QVERIFY(QFile::remove(m_folder->file(u"tmp.xml"_s))); // one that is missing is raised, as ever
        QVERIFY_EXCEPTION_THROWN(AddFeed(nullptr, address(2), *m_current, *m_catalogue), RunTimeError);
    }

    void theUserActsBetweenThePartsOfASlowUpdate_data()
    {
        QTest::addColumn<int>("afterPart");
        QTest::addColumn<QString>("act");
        for (int part = 1; part <= 4; ++part)
            for (const char *act : {"marks", "deletes", "ends"})
                QTest::addRow("%s after part %d", act, part) << part << QString::fromLatin1(act);
    }

    void theUserActsBetweenThePartsOfASlowUpdate()
    {
        QFETCH(const int, afterPart);
        QFETCH(const QString, act);
        const bool ends = act == u"ends";
        addFeed(1, FeedTexts::titles(u"i"_s, 0, 7));
        m_state->select(node(1));
        QCOMPARE(m_current->document->Load(m_folder->cacheFile(u"1"_s)), LoadOk);
        serve(1, FeedTexts::titles(u"new"_s, 0, 3) + FeedTexts::titles(u"i"_s, 0, 7));
        m_slowness = 101;
        m_scheduler->updateFeed(node(1));
        m_looks = 0;
        m_downloader->answer();
        while (m_scheduler->updateRunning() && (m_looks - 1) / 2 != afterPart) // two looks a part, after a first one
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        QVERIFY(m_scheduler->updateRunning());
        if (ends)
            m_scheduler->stop();
        if (act == u"marks") {
            m_current->document->SetItemRead(2, true);
        } else {
            m_current->document->DeleteItem(2);
            m_current->document->Save();
        }
        m_scheduler->updateFeed(node(1)); // one is in flight
        if (ends)
            QTest::qWait(20);
        else
            QTRY_VERIFY(!m_scheduler->updateRunning());
        QCOMPARE(m_downloader->requests.size(), std::size_t(1));
        QCOMPARE(m_said.mid(3),
                 ends ? QStringList() : (QStringList{u"found Feed 1: 3"_s, u"reloaded 3"_s, u"ended Feed 1: 3"_s}));
        CachedFeed stored;
        QCOMPARE(stored.Load(m_folder->cacheFile(u"1"_s)), LoadOk);
        const qint16 newItems = ends && afterPart < 4 ? 0 : 3;
        QCOMPARE(stored.ItemCount(), qint16(7 + newItems));
        QCOMPARE(stored.IsItemRead(newItems + 2), act == u"marks");
        QCOMPARE(stored.IsItemDeleted(newItems + 2), act != u"marks");
    }
};

QTEST_GUILESS_MAIN(FeedUpdateTest)
#include "tst_FeedUpdate.moc"
