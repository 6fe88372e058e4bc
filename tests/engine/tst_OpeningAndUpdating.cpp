// SPDX-License-Identifier: GPL-3.0-or-later

#include "core/Extensions.h"
#include "core/FeedCatalogue.h"
#include "core/FeedTreeState.h"
#include "engine/AddFeed.h"
#include "engine/CurrentFeed.h"
#include "engine/FeedOpener.h"
#include "engine/UpdateScheduler.h"
#include "platform/Literals.h"
#include "support/clsDES.h"
#include "tests/fixtures/FakeDownloader.h"
#include "tests/fixtures/FeedTexts.h"
#include "tests/fixtures/Golden.h"
#include "tests/fixtures/RunTimeErrors.h"
#include "tests/fixtures/TemporaryDataDirectory.h"

#include <QDeadlineTimer>
#include <QRegularExpression>
#include <QTest>

/// The scheduler, the opener and the document on show over one catalogue, without a network, as told in transcripts.
/// The clock stands unless a command or a wait moves it.
class OpeningAndUpdatingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void allIsAsTold_data()
    {
        QTest::addColumn<QString>("transcript");
        for (const char *name : {"opening", "updates", "schedule", "sharing", "extensions"})
            QTest::newRow(name) << QString::fromLatin1(name) + u".txt";
    }

    void allIsAsTold()
    {
        QFETCH(const QString, transcript);
        const auto command = [this](const QStringList &words) {
            m_said.clear();
            m_waits = 0;
            follow(words);
            if (m_waits > 0)
                m_said.append(u"waited %1 times"_s.arg(m_waits));
            return m_said;
        };
        QCOMPARE(differenceFromGolden(transcript, playedAgain(
                                                      transcript, [this] { begin(); }, command)),
                 QString());
    }

private:
    void begin()
    {
        m_scheduler.reset();
        m_opener.reset();
        m_folder = std::make_unique<TemporaryDataDirectory>();
        m_folder->write(u"feeds.xml"_s, "<favoris/>");
        m_updates = std::make_unique<FakeDownloader>();
        m_openings = std::make_unique<FakeDownloader>();
        m_tree = std::make_unique<FeedTree>();
        m_state = std::make_unique<FeedTreeState>(*m_tree);
        m_extensions = {};
        m_current = std::make_unique<CurrentFeed>();
        m_current->document = std::make_shared<CachedFeed>(Waiting::systemClock(), m_rules);
        m_now = QDateTime(QDate(2004, 7, 1), QTime(12, 0));
        m_connected = true;
        m_slowness = 0;
        m_duringWaits.clear();
        m_nodes.clear();
        const Clock clock = [this] { return ++m_looks, m_now = m_now.addMSecs(m_slowness); };
        m_catalogue = std::make_unique<FeedCatalogue>(m_folder->directory(), *m_tree, *m_state, m_cipher, clock);
        m_catalogue->loadCatalogue();
        m_scheduler = std::make_unique<UpdateScheduler>(UpdateScheduler::Surroundings{
            m_folder->directory(), *m_tree, *m_state, m_catalogue->tables, *m_current, m_cipher, *m_updates,
            [this] { return m_connected; }, clock, [this](int milliseconds) { wait(milliseconds); }, m_addresses,
            m_rules, 65536});
        m_opener = std::make_unique<FeedOpener>(m_folder->directory(), *m_current, *m_openings, m_addresses);
        listen();
    }

    /// Notes what scheduler and opener tell, the former with what runs at that moment.
    void listen()
    {
        const UpdateScheduler *from = m_scheduler.get();
        const auto said = [this](const QString &text) {
            m_said.append(text + (m_scheduler->updateRunning() ? u" (running)"_s : QString()) +
                          (m_scheduler->updateAllRunning() ? u" (all)"_s : QString()));
            tellRequests();
        };
        using S = UpdateScheduler;
        connect(from, &S::began, this, [said](const FeedNodePtr &node) { said(u"began "_s + node->text()); });
        connect(from, &S::fetchBegan, this, [said] { said(u"fetch"_s); });
        connect(from, &S::progress, this, [said](int percent) { said(u"progress %1"_s.arg(percent)); });
        connect(from, &S::fetchEnded, this, [said] { said(u"fetched"_s); });
        connect(from, &S::newItemsFound, this,
                [said](const QString &title, qint16 count) { said(u"found %1: %2"_s.arg(title).arg(count)); });
        connect(from, &S::feedRepaired, this, [said] { said(u"repaired"_s); });
        connect(from, &S::feedOnShowReloaded, this, [said](qint16 count) { said(u"reloaded %1"_s.arg(count)); });
        connect(from, &S::ended, this, [said](const FeedNodePtr &node, qint16 count) {
            said(u"ended %1: %2"_s.arg(node->text()).arg(count));
        });
        connect(from, &S::allBegan, this, [said] { said(u"all began"_s); });
        connect(from, &S::allEnded, this, [said] { said(u"all ended"_s); });
        connect(from, &S::walkReached, this,
                [said](int place, int count) { said(u"%1 / %2"_s.arg(place).arg(count)); });
        connect(from, &S::walkEnded, this, [said] { said(u"walk ended"_s); });

        using O = FeedOpener;
        static const QStringList sources = {u"cache file"_s, u"network"_s, u"local file"_s};
        static const QStringList reasons = {
            u"no such file"_s, u"unreadable"_s,         u"scheme"_s,  u"no host"_s, u"not found"_s,
            u"status"_s,       u"nothing downloaded"_s, u"version"_s, u"format"_s};
        const FeedOpener *opener = m_opener.get();
        connect(opener, &O::fetchBegan, this, [this] { m_said.append(u"opening"_s); });
        connect(opener, &O::progress, this, [this](int percent) { m_said.append(u"progress %1"_s.arg(percent)); });
        connect(opener, &O::fetchEnded, this, [this] { m_said.append(u"came"_s); });
        connect(opener, &O::loadBegan, this, [this](qint64 bytes) { m_said.append(u"reading %1 bytes"_s.arg(bytes)); });
        connect(opener, &O::opened, this, [this](O::Source source) {
            m_said.append(u"opened from %1: %2"_s.arg(sources[int(source)], m_current->document->Title()));
            tellShown();
        });
        connect(opener, &O::refused, this, [this](const O::Refusal &refusal) {
            m_said.append(
                u"refused: %1 %2 %3"_s.arg(reasons[int(refusal.reason)]).arg(refusal.status).arg(refusal.address));
        });
        connect(opener, &O::credentialsAsked, this, [this] { m_said.append(u"credentials asked"_s); });
        connect(opener, &O::pageOffered, this, [this] { m_said.append(u"page offered"_s); });
    }

    /// What a wait of the scheduler is for: by default the running download is answered.
    void wait(int milliseconds)
    {
        QCOMPARE(milliseconds, 100);
        tellRequests();
        m_now = m_now.addMSecs(milliseconds);
        ++m_waits;
        if (m_duringWaits.contains(m_waits))
            follow(m_duringWaits.take(m_waits));
        m_updates->answer();
    }

    /// Does a command. A node is named by its key, also after it went; "-" is nothing.
    void follow(const QStringList &words)
    {
        const auto text = [&words](int i) { return words.value(i) == u"-" ? QString() : words.value(i); };
        const QString rest = words.mid(1).join(u' ');
        const FeedNodePtr node = m_nodes.value(text(1));
        const int number = text(1).toInt();
        const QTime time = QTime::fromString(text(1), Qt::ISODate);
        CachedFeed &document = *m_current->document;
        FeedTables &tables = m_catalogue->tables;
        const QHash<QString, std::function<void()>> verbs = {
            {u"folder"_s, [&] { m_catalogue->createFolder(node ? node : m_tree->root(), text(2)); }},
            {u"feed"_s, [&] { addFeed(text(1), words.mid(2)); }},
            {u"serve"_s,
             [&] { m_updates->pages[address(text(1))] = FeedTexts::rss(u"Feed "_s + text(1), words.mid(2)); }},
            {u"select"_s, [&] { m_state->select(node); }},
            {u"remove"_s, [&] { m_tree->remove(node); }},
            {u"address"_s, [&] { node->tag = text(2); }},
            {u"credentials"_s,
             [&] {
                 tables.usernames.Add(text(1), text(2));
                 tables.passwords.Add(text(1), m_cipher.EncryptString(text(3), u"%%K9:Tm41"_s + text(1), true));
             }},
            {u"updated"_s, [&] { tables.updatedate.Replace(text(1), UpdateDate(words.mid(2).join(u' '))); }},
            {u"period"_s, [&] { tables.updatettl.Replace(text(1), text(2)); }},
            {u"state"_s, [&] { tellState(text(1)); }},
            {u"write"_s, [&] { m_folder->write(text(1), words.mid(2).join(u' ').toUtf8()); }},
            {u"write-feed"_s, [&] { m_folder->write(text(1), FeedTexts::rss(text(2), words.mid(3))); }},
            {u"no-file"_s, [&] { Files::remove(m_folder->file(text(1))); }},
            {u"items"_s, [&] { tellItems(text(1)); }},
            {u"show"_s, [&] { QCOMPARE(document.Load(m_folder->file(text(1))), LoadOk); }},
            {u"shown"_s, [&] { tellShown(); }},
            {u"by-address"_s, [&] { m_current->addressFeedShown = text(1) == u"yes"; }},
            {u"login"_s,
             [&] {
                 m_current->strUsername = text(1);
                 m_current->strPassword = text(2);
             }},
            {u"read"_s, [&] { document.SetItemRead(static_cast<qint16>(number), true); }},
            {u"delete"_s, [&] { document.DeleteItem(static_cast<qint16>(number)); }},
            {u"save"_s, [&] { document.Save(); }},
            {u"offline"_s, [&] { m_connected = false; }},
            {u"online"_s, [&] { m_connected = true; }},
            {u"slow"_s, [&] { m_slowness = number; }},
            {u"clock"_s, [&] { m_now.setTime(time); }},
            {u"start"_s, [&] { m_scheduler->start(text(1) == u"all"); }},
            {u"timers"_s, [&] { tellTimers(); }},
            {u"update"_s, [&] { m_scheduler->updateFeed(node); }},
            {u"all"_s, [&] { m_scheduler->updateAllFeeds(); }},
            {u"fire"_s, [&] { fireTimers(); }},
            {u"tick"_s, [&] { m_scheduler->handleUpdateTick(); }},
            {u"first-tick"_s, [&] { m_scheduler->handleGlobalUpdateTick(); }},
            {u"ticks-until"_s, [&] { ticksUntil(time); }},
            {u"answered"_s, [&] { m_updates->answer(), follow(words.mid(1)); }},
            {u"during"_s, [&] { m_duringWaits.insert(number, words.mid(2)); }},
            {u"stop"_s, [&] { m_scheduler->stop(); }},
            {u"progress"_s, [&] { Q_EMIT m_updates->DownloadProgress(text(1).toDouble()); }},
            {u"answer"_s,
             [&] {
                 m_looks = 0;
                 m_updates->answer();
             }},
            {u"refuse"_s, [&] { m_updates->pages.remove(address(text(1))); }},
            {u"big"_s,
             [&] { m_updates->pages[address(text(1))] = FeedTexts::rss({}, FeedTexts::titles(u"new"_s, 0, 1000)); }},
            {u"tell-update"_s, [&] { Q_EMIT m_updates->DownloadComplete(number); }},
            {u"finish"_s, [&] { m_updates->finish(number, words.mid(2).join(u' ').toUtf8()); }},
            {u"parts-later"_s, [&] { QTest::qWait(20); }},
            {u"parts"_s, [&] { waitForParts(number); }},
            {u"enter"_s,
             [&] { m_opener->openEntered(QString(rest).replace(u"DATA"_s, m_folder->directory().path())); }},
            {u"load"_s, [&] { m_opener->LoadFile(rest); }},
            {u"node"_s, [&] { m_opener->openFeedNode(node); }},
            {u"command-line"_s, [&] { m_said.append(m_opener->enteredByCommandLine(rest)); }},
            {u"coming"_s, [&] { Q_EMIT m_openings->DownloadProgress(text(1).toDouble()); }},
            {u"come"_s, [&] { m_openings->finish(number, words.mid(2).join(u' ').toUtf8()); }},
            {u"come-feed"_s, [&] { m_openings->finish(200, FeedTexts::rss(text(1), words.mid(2))); }},
            {u"tell"_s, [&] { Q_EMIT m_openings->DownloadComplete(number); }},
            {u"with"_s, [&] { turn(words, true); }},
            {u"without"_s, [&] { turn(words, false); }},
            {u"link"_s, [&] { m_said.append(document.ItemLink(static_cast<qint16>(number))); }},
            {u"text"_s,
             [&] {
                 static const QRegularExpression date(u" quillwire:downloaded=\"[^\"]*\""_s);
                 m_said.append(QString::fromUtf8(m_folder->read(text(1))).trimmed().remove(date));
             }},
            {u"subscribe"_s, [&] { subscribe(text(1), text(2)); }},
        };
        if (const int error = errorOf(verbs.value(words[0])))
            m_said.append(u"error %1"_s.arg(error));
        tellRequests();
        noteNodes(m_tree->root());
    }

    void turn(const QStringList &keys, bool on)
    {
        for (const ExtensionKey &key : extensionKeys)
            if (keys.contains(key.name))
                m_extensions.*key.isOn = on;
    }
    static QString address(const QString &key) { return u"http://example.org/"_s + key; }
    /// Subscribes to a feed with those items, which its server goes on to serve.
    void addFeed(const QString &minutes, const QStringList &items)
    {
        const QString key = QString::number(m_catalogue->nextKey());
        m_folder->write(u"tmp.xml"_s, FeedTexts::rss(u"Feed"_s, items));
        m_catalogue->addFeed({u"Feed "_s + key, minutes, address(key), {}, {}});
        m_updates->pages[address(key)] = FeedTexts::rss(u"Feed "_s + key, items);
    }
    void subscribe(const QString &file, const QString &title)
    {
        const auto imported = std::make_shared<CachedFeed>();
        imported->Load(m_folder->file(file));
        AddFeed(file.isEmpty() ? nullptr : imported, u"http://"_s + title, *m_current, *m_catalogue);
        m_said.append(
            QString::fromUtf8(m_folder->read(u"feeds.xml"_s)).section(u" name"_s, -1).section(u" password"_s, 0, 0));
    }
    /// The ticks of a timer of one minute. What each says stands behind its time.
    void ticksUntil(QTime end)
    {
        while (m_now.time() < end) {
            const QStringList before = std::exchange(m_said, {});
            m_now = m_now.addSecs(60);
            const QString time = m_now.toString(u"HH:mm:ss"_s);
            m_scheduler->handleUpdateTick();
            m_said = m_said.isEmpty() ? before : before + QStringList(time + u' ' + m_said.join(u", "_s));
        }
    }
    /// Lets events run until so many parts of a slow update are done, or all of them. The clock is asked once at the
    /// end of the download, and at begin and end of each part.
    void waitForParts(int parts)
    {
        const QDeadlineTimer patience(10000);
        QTimer wake;
        wake.start(100);
        while (m_scheduler->updateRunning() && (m_looks - 1) / 2 < parts && !patience.hasExpired())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    void tellRequests()
    {
        for (FakeDownloader *downloader : {m_updates.get(), m_openings.get()})
            for (const FakeDownloader::Request &request : std::exchange(downloader->requests, {}))
                m_said.append(u"GET %1 %2:%3 to %4"_s.arg(request.url, request.username, request.password,
                                                          QFileInfo(request.destination).fileName()));
    }
    void tellState(const QString &key)
    {
        const FeedNodePtr node = m_nodes.value(key);
        m_said.append(
            u"images %1 %2, updated %3, havecache %4"_s.arg(node->image())
                .arg(node->selectedImage())
                .arg(m_catalogue->tables.updatedate.Item(key).text(), m_catalogue->tables.havecache.Item(key)));
    }
    void tellItems(const QString &file)
    {
        CachedFeed feed({}, m_rules);
        feed.Load(m_folder->file(file));
        QStringList items;
        for (qint16 i = 0; i < feed.ItemCount(); ++i)
            items.append(feed.ItemTitle(i) + (feed.IsItemRead(i) ? u"*"_s : QString()) +
                         (feed.IsItemDeleted(i) ? u"-"_s : QString()));
        m_said.append(m_folder->exists(file) ? items.join(u' ') : u"no file"_s);
    }
    void tellShown()
    {
        m_said.append(u"shown: %1, %2 items%3, login %4:%5"_s.arg(QFileInfo(m_current->document->Path()).fileName())
                          .arg(m_current->document->ItemCount())
                          .arg((m_current->addressFeedShown ? u", by address"_s : QString()) +
                                   (m_opener->openedRepaired() ? u", repaired"_s : QString()),
                               m_current->strUsername, m_current->strPassword));
    }
    void tellTimers()
    {
        for (const QTimer *timer : m_scheduler->findChildren<QTimer *>())
            if (timer->isActive())
                m_said.append(u"%1 ms"_s.arg(timer->interval()));
    }
    /// What runs is over.
    void fireTimers()
    {
        for (QTimer *timer : m_scheduler->findChildren<QTimer *>())
            if (QTimerEvent over(timer->timerId()); timer->isActive())
                QCoreApplication::sendEvent(timer, &over);
    }
    void noteNodes(const FeedNodePtr &node)
    {
        m_nodes.insert(node->key(), node);
        for (const FeedNodePtr &child : node->children())
            noteNodes(child);
    }

    std::unique_ptr<TemporaryDataDirectory> m_folder;
    std::unique_ptr<FakeDownloader> m_updates;
    std::unique_ptr<FakeDownloader> m_openings;
    std::unique_ptr<FeedTree> m_tree;
    std::unique_ptr<FeedTreeState> m_state;
    std::unique_ptr<FeedCatalogue> m_catalogue;
    std::unique_ptr<CurrentFeed> m_current;
    std::unique_ptr<UpdateScheduler> m_scheduler;
    std::unique_ptr<FeedOpener> m_opener;
    Extensions m_extensions;
    Choice<AddressForms> m_addresses{AddressForms::usual, AddressForms::secure, m_extensions.https};
    FeedRules m_rules{{usualFormats(), allFormats(), m_extensions.formats},
                      {exactReading(), mendingReading(), m_extensions.repair},
                      {writtenAddresses(), wholeAddresses(), m_extensions.pages}};
    clsDES m_cipher;
    QDateTime m_now;
    bool m_connected = true;
    int m_looks = 0;                       ///< at the clock
    int m_slowness = 0;                    ///< milliseconds that pass between two of them
    int m_waits = 0;                       ///< of the command
    QHash<int, QStringList> m_duringWaits; ///< commands, by the number of the wait
    QHash<QString, FeedNodePtr> m_nodes;   ///< those that went too
    QStringList m_said;
};

QTEST_GUILESS_MAIN(OpeningAndUpdatingTest)
#include "tst_OpeningAndUpdating.moc"
