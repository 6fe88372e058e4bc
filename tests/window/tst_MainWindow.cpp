// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/fixtures/Golden.h"
#include "tests/window/WindowDump.h"
#include "window/MainToolbar.h"

#include <QDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>

/// The real window as a whole: how it looks, and what each command and each act of the user makes of it.
class tst_MainWindow : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<PrincFixture> m_fixture;

    /// A window with feeds and answers, in one of the two looks.
    void start(bool standard)
    {
        m_fixture = std::make_unique<PrincFixture>();
        m_fixture->writeFeeds();
        m_fixture->inputAnswer = u"N & n"_s;
        m_fixture->messages.answer = Messages::Answer::Yes;
        m_fixture->adjustSettings = [standard](AppSettings &settings) {
            settings.readDelay = -1;
            settings.officeStyle = !standard;
            settings.smallToolbars = !standard;
            if (standard) {
                settings.columnWidth.fill(0);
                settings.columnWidthInt.fill(0);
            }
        };
        m_fixture->start();
        m_fixture->log.clear();
    }

    void selectItem() const
    {
        m_fixture->click("2");
        m_fixture->clickRow(1);
    }

    /// Notes a dialog that comes up, with its page of the help, and leaves it: by OK when it asks for credentials, by a
    /// search for some words, otherwise by a refusal.
    void leaveDialog() const
    {
        auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget());
        if (!dialog)
            return;
        const auto *tabs = dialog->findChild<QTabWidget *>();
        const auto *text = dialog->findChild<QWidget *>(u"txtContent"_s);
        m_fixture->log += QString::fromLatin1(dialog->metaObject()->className()) +
                          (tabs ? u", tab %1"_s.arg(tabs->currentIndex() + 1) : QString()) +
                          (text ? u": "_s + text->property("plainText").toString().simplified() : QString());
        QWidget *focused = dialog->focusWidget() ? dialog->focusWidget() : dialog;
        QTest::keyClick(focused, Qt::Key_F1, Qt::ShiftModifier); // this is another key
        QTest::keyClick(focused, Qt::Key_F1);
        const auto write = [dialog](const char *name, const QString &entered) {
            auto *box = dialog->findChild<QLineEdit *>(QString::fromLatin1(name));
            if (box && box->isVisible())
                box->setText(entered);
        };
        for (const char *box : {"txtRecherche_0", "txtRecherche_1", "txtRecherche_2"})
            write(box, u"mots"_s);
        write("txtUsername", u"jean"_s);
        write("txtPassword", u"secret"_s);
        for (const char *name : {"cmdRechercher", "cmdOK"})
            if (auto *button = dialog->findChild<QPushButton *>(QString::fromLatin1(name)))
                button->click();
        dialog->reject();
        dialog->hide();
    }

    /// What `act` sends out of the window, shows and changes.
    QString effectOf(const std::function<void()> &act)
    {
        m_fixture->log.clear();
        const QStringList before = WindowDump::all(*m_fixture);
        QTimer::singleShot(0, m_fixture->window.get(), [this] {
            leaveDialog();
            if (auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget())) {
                QStringList offered;
                for (const QAction *entry : menu->actions())
                    if (entry->isEnabled() && !entry->isSeparator())
                        offered += entry->text();
                m_fixture->log += u"menu: "_s + offered.join(u", "_s);
                menu->close();
            }
        });
        act();
        QCoreApplication::processEvents();
        eventually([this] { return !m_fixture->serversAnswer || !m_fixture->isDownloading(); });
        QCoreApplication::processEvents();
        QStringList effect = m_fixture->log + WindowDump::changes(before, WindowDump::all(*m_fixture));
        effect.replaceInStrings(m_fixture->data.directory().path(), u"DATA"_s);
        return u"\n    "_s + effect.join(u"\n    "_s) + u'\n';
    }

private Q_SLOTS:
    void cleanup() { m_fixture.reset(); }

    void theWindowOfAFirstStart()
    {
        m_fixture = std::make_unique<PrincFixture>();
        m_fixture->start();
        const QStringList lines = m_fixture->log + WindowDump::all(*m_fixture);
        QCOMPARE(differenceFromGolden(u"window.txt"_s, lines.join(u'\n') + u'\n'), QString());
        for (auto *part : m_fixture->window->findChildren<QWidget *>())
            if (part->focusPolicy() != Qt::NoFocus && !part->objectName().startsWith(u"qt_"_s))
                QVERIFY2(!QAccessible::queryAccessibleInterface(part)->text(QAccessible::Name).isEmpty(),
                         qPrintable(WindowDump::line(*part)));
    }

    void everyCommandDoesItsOwn()
    {
        QString told;
        QStringList inOfficeLook;
        for (const bool standard : {false, true}) {
            start(standard);
            const qsizetype count = WindowDump::commands(*m_fixture).size();
            for (qsizetype i = 0; i < count; ++i) {
                start(standard);
                selectItem();
                if (standard) {
                    m_fixture->list()->selectRow(1);
                    m_fixture->choose(u"Comme lu"_s);
                    m_fixture->window->hide();
                }
                QAction *entry = WindowDump::commands(*m_fixture).at(i);
                const QString name = entry->text();
                const QString effect = effectOf([entry] { entry->trigger(); });
                if (!standard)
                    inOfficeLook += effect;
                if (!standard || effect != inOfficeLook.at(i))
                    told += name + (standard ? u" (standard look, hidden window, item read, no column)"_s : QString()) +
                            effect;
            }
        }
        QCOMPARE(differenceFromGolden(u"commands.txt"_s, told), QString());
    }

    void everyActOfTheUserTellsInTheWindow()
    {
        start(false);
        PrincFixture &f = *m_fixture;
        const auto button = [&f](cToolbar *bar, int index) { return [bar, index] { bar->button(index)->click(); }; };
        const auto newItems = [&f](const QString &url, const QStringList &items) {
            f.pages[url] = FeedTexts::rss(u"Le Monde"_s, items);
        };
        std::vector<std::pair<QString, std::function<void()>>> acts = {
            {u"click on the root"_s, [&] { f.click("root"); }},
            {u"click on the folder"_s, [&] { f.click("1"); }},
            {u"key down"_s, [&] { QTest::keyClick(f.tree(), Qt::Key_Down); }},
            {u"key up, onto the folder"_s, [&] { QTest::keyClick(f.tree(), Qt::Key_Up); }},
            {u"click on feed A"_s, [&] { f.click("2"); }},
            {u"right click beside the items"_s,
             [&] { QTest::mouseClick(f.list()->viewport(), Qt::RightButton, {}, QPoint(5, 100)); }},
            {u"click on item b"_s, [&] { f.clickRow(1); }},
            {u"right click on item b"_s, [&] { f.clickRow(1, Qt::RightButton); }},
            {u"mark as read"_s, [&] { f.choose(u"Comme lu"_s); }},
            {u"right click on item b, read"_s, [&] { f.clickRow(1, Qt::RightButton); }},
            {u"mark as not read"_s, [&] { f.choose(u"Comme non lu"_s); }},
            {u"arrow of the attachment"_s, [&] { Q_EMIT f.browserToolbar()->DropDownPress(9); }}};
        for (int i = 0; i < 10; ++i)
            if (f.browserToolbar()->button(i))
                acts.emplace_back(u"page button %1"_s.arg(i), button(f.browserToolbar(), i));
        acts.insert(acts.end(),
                    {{u"properties"_s, button(f.toolbar(), 2)},
                     {u"right click on the folder"_s, [&] { f.rightClick("1"); }},
                     {u"right click on feed B"_s, [&] { f.rightClick("3"); }},
                     {u"right click on feed B, selected"_s, [&] { f.rightClick("3"); }},
                     {u"new folder beside B"_s, [&] { f.choose(u"Nouveau dossier"_s); }},
                     {u"no name for the folder"_s,
                      [&] {
                          f.inputAnswer.clear();
                          f.choose(u"Nouveau dossier"_s);
                      }},
                     {u"image of the address, no file chosen"_s, [&] { f.control<QToolButton>("Image1")->click(); }},
                     {u"image of the address, a file"_s,
                      [&] {
                          f.inputAnswer = u"/a/b.xml"_s;
                          f.control<QToolButton>("Image1")->click();
                      }},
                     {u"feed of the web"_s,
                      [&] {
                          newItems(u"http://h/neu"_s, {u"n"_s});
                          f.enter(u"http://h/neu"_s);
                      }},
                     {u"properties of the feed of the web"_s, button(f.toolbar(), 2)},
                     {u"add it"_s, button(f.toolbar(), 3)},
                     {u"click on item c of feed A"_s,
                      [&] {
                          f.click("2");
                          f.clickRow(2);
                      }},
                     {u"update of feed A begins"_s,
                      [&] {
                          f.serversAnswer = false;
                          f.toolbar()->button(0)->click();
                      }},
                     {u"click on the feed that is updated"_s, [&] { f.click("2"); }},
                     {u"progress"_s, [&] { Q_EMIT f.downloaders[1]->DownloadProgress(40); }},
                     {u"update of feed A ends"_s,
                      [&] {
                          newItems(u"http://h/2"_s, {u"z"_s, u"y"_s, u"a"_s, u"b"_s, u"c"_s});
                          f.serversAnswer = true;
                      }},
                     {u"update of a feed without news for the popup"_s,
                      [&] {
                          newItems(u"http://h/3"_s, {u"x"_s, u"d"_s});
                          f.settings().notifyNew = false;
                          f.click("3");
                          f.toolbar()->button(0)->click();
                      }},
                     {u"update of all"_s,
                      [&] {
                          f.serversAnswer = false;
                          QTimer look;
                          connect(&look, &QTimer::timeout, &look, [&, before = WindowDump::all(f)] {
                              if (!f.serversAnswer && f.isDownloading()) {
                                  f.log += WindowDump::changes(before, WindowDump::all(f));
                                  f.serversAnswer = true;
                              }
                          });
                          look.start(1);
                          f.choose(u"Tout mettre à jour"_s);
                      }},
                     {u"feed B dropped on the folder"_s,
                      [&] {
                          f.click("3");
                          QTest::mousePress(f.tree()->viewport(), Qt::LeftButton, {}, f.placeOf(f.node("3")));
                          Q_EMIT f.tree()->nodeDropped(f.node("1"), false);
                      }},
                     {u"dropped once more, its node being another one now"_s,
                      [&] { Q_EMIT f.tree()->nodeDropped(f.node("root"), false); }},
                     {u"feed B dropped above A, another feed being selected"_s,
                      [&] {
                          f.click("5");
                          QTest::mousePress(f.tree()->viewport(), Qt::LeftButton, {}, f.placeOf(f.node("3")));
                          Q_EMIT f.tree()->nodeDropped(f.node("2"), true);
                      }},
                     {u"remove the folder, no"_s,
                      [&] {
                          f.click("1");
                          f.messages.answer = Messages::Answer::No;
                          f.toolbar()->button(1)->click();
                      }},
                     {u"remove the folder, yes"_s,
                      [&] {
                          f.messages.answer = Messages::Answer::Yes;
                          f.toolbar()->button(1)->click();
                      }},
                     {u"remove the added feed"_s,
                      [&] {
                          f.click("5");
                          f.toolbar()->button(1)->click();
                      }},
                     {u"buttons and entries with nothing selected"_s,
                      [&] {
                          for (const int index : {0, 1, 2})
                              f.toolbar()->button(index)->click();
                          for (const QString &entry : {u"Rafraichir"_s, u"Propriétés"_s, u"Nouveau dossier"_s})
                              f.choose(entry);
                      }},
                     {u"link that no program opens"_s,
                      [&] {
                          f.systemBrowserOpens = false;
                          f.choose(u"FAQ"_s);
                      }},
                     {u"the page tells of a link"_s, [&] { Q_EMIT f.page()->StatusTextChange(u"http://h/lien"_s); }},
                     {u"the page begins"_s, [&] { Q_EMIT f.page()->DownloadBegin(); }},
                     {u"the page is on its way"_s, [&] { Q_EMIT f.page()->ProgressChange(1, 0); }},
                     {u"most of the page is there"_s, [&] { Q_EMIT f.page()->ProgressChange(80, 100); }},
                     {u"the page is there"_s, [&] { Q_EMIT f.page()->DocumentComplete(); }},
                     {u"no way forward"_s, [&] { Q_EMIT f.page()->CommandStateChange(1, false); }},
                     {u"no way back"_s, [&] { Q_EMIT f.page()->CommandStateChange(2, false); }},
                     {u"another state of the page"_s, [&] { Q_EMIT f.page()->CommandStateChange(3, false); }},
                     {u"link for another program"_s, [&] { Q_EMIT f.page()->systemLinkActivated(u"mailto:a@h"_s); }},
                     {u"link to a feed"_s, [&] { Q_EMIT f.page()->feedLinkAccepted(u"feed://h/neu"_s); }},
                     {u"add its feed"_s, button(f.toolbar(), 3)},
                     {u"double click on the icon"_s, [&] { f.tray->raise(515); }},
                     {u"double click, the window hidden"_s,
                      [&] {
                          f.window->hide();
                          f.tray->raise(515);
                      }},
                     {u"right click on the icon"_s, [&] { f.tray->raise(516); }}});
        QString told;
        for (const auto &[name, act] : acts)
            told += name + effectOf(act);
        QCOMPARE(differenceFromGolden(u"acts.txt"_s, told), QString());
    }

    void everyOutcomeOfAnOpeningIsTold()
    {
        const QString address = u"http://h/a"_s;
        const QByteArray feed = FeedTexts::rss(u"T"_s, {u"one"_s, u"two"_s});
        struct Opening
        {
            const char *name;
            QString entered;
            int status = 0; ///< of the answer; 0 where none is due
            QByteArray body = {};
        };
        QString told;
        for (const Opening &opening : std::initializer_list<Opening>{
                 {"a feed", u"feed:h/a"_s, 200, feed},
                 {"a host that isn't known", address, 3},
                 {"not there", address, 404},
                 {"credentials wanted", address, 4},
                 {"credentials refused", address, 401},
                 {"no feed", address, 200, "<html>"},
                 {"a version that isn't read", address, 200, "<rss version='3.0'><channel/></rss>"},
                 {"another format", address, 200, "<opml/>"},
                 {"another scheme", u"feed:ftp://a/b"_s},
                 {"no file of that name", u"/no/such/file"_s},
                 {"a file that is no feed", u"feeds.xml"_s},
                 {"a file that is a feed", u"mine.rss"_s}}) {
            start(false);
            m_fixture->data.write(u"mine.rss"_s, feed);
            m_fixture->serversAnswer = false;
            m_fixture->messages.answer = Messages::Answer::No;
            selectItem();
            m_fixture->toolbar()->setButtonEnabled(MainToolbar::Ajouter, true);
            const bool isFile = m_fixture->data.exists(opening.entered);
            told += QString::fromLatin1(opening.name) + effectOf([&] {
                        m_fixture->enter(isFile ? m_fixture->data.file(opening.entered) : opening.entered);
                    });
            if (opening.status != 0)
                told += u"  answered"_s +
                        effectOf([&] { m_fixture->downloaders[0]->finish(opening.status, opening.body); });
        }
        QCOMPARE(differenceFromGolden(u"openings.txt"_s, told), QString());
    }
};

QTEST_MAIN(tst_MainWindow)
#include "tst_MainWindow.moc"
