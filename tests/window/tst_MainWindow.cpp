// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/fixtures/Golden.h"
#include "tests/window/WindowDump.h"

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
        if (effect.isEmpty())
            effect += u"nothing"_s;
        return u"\n    "_s + effect.join(u"\n    "_s) + u'\n';
    }

    /// Starts the update of all feeds, and notes what is to be seen while the first of them is fetched.
    void updateAll() const
    {
        PrincFixture &f = *m_fixture;
        f.serversAnswer = false;
        QTimer look;
        connect(&look, &QTimer::timeout, &look, [&f, before = WindowDump::all(f)] {
            if (!f.serversAnswer && f.isDownloading()) {
                f.log += WindowDump::changes(before, WindowDump::all(f));
                f.serversAnswer = true;
            }
        });
        look.start(1);
        f.choose(u"Tout mettre à jour"_s);
    }

    /// Does what one of these phrases says; what stands for "*" comes as the words.
    void doAct(const QString &act) const
    {
        PrincFixture &f = *m_fixture;
        using Words = QStringList;
        const auto key = [](const Words &words, int index = 0) { return words.value(index).toUtf8(); };
        const std::initializer_list<std::pair<const char *, std::function<void(const Words &)>>> acts = {
            {"click *", [&](const Words &w) { f.click(key(w)); }},
            {"menu of the list",
             [&](const Words &) { QTest::mouseClick(f.list()->viewport(), Qt::RightButton, {}, QPoint(5, 100)); }},
            {"menu of item *", [&](const Words &w) { f.clickRow(w[0].toInt(), Qt::RightButton); }},
            {"menu of *", [&](const Words &w) { f.rightClick(key(w)); }},
            {"item *", [&](const Words &w) { f.clickRow(w[0].toInt()); }},
            {"key *", [&](const Words &w) { QTest::keyClick(f.tree(), Qt::Key(QKeySequence(w[0])[0].key())); }},
            {"choose *", [&](const Words &w) { f.choose(w.join(u' ')); }},
            {"main *", [&](const Words &w) { f.toolbar()->button(w[0].toInt())->click(); }},
            {"able *", [&](const Words &w) { f.toolbar()->setButtonEnabled(w[0].toInt(), true); }},
            {"arrow of the attachment", [&](const Words &) { Q_EMIT f.browserToolbar()->DropDownPress(9); }},
            {"page tells of *", [&](const Words &w) { Q_EMIT f.page()->StatusTextChange(w[0]); }},
            {"page begins", [&](const Words &) { Q_EMIT f.page()->DownloadBegin(); }},
            {"page progress *", [&](const Words &w) { Q_EMIT f.page()->ProgressChange(w[0].toInt(), w[1].toInt()); }},
            {"page is there", [&](const Words &) { Q_EMIT f.page()->DocumentComplete(); }},
            {"page command *", [&](const Words &w) { Q_EMIT f.page()->CommandStateChange(w[0].toInt(), false); }},
            {"page leads out to *", [&](const Words &w) { Q_EMIT f.page()->systemLinkActivated(w[0]); }},
            {"page leads to *", [&](const Words &w) { Q_EMIT f.page()->feedLinkAccepted(w[0]); }},
            {"page *", [&](const Words &w) { f.browserToolbar()->button(w[0].toInt())->click(); }},
            {"image", [&](const Words &) { f.control<QToolButton>("Image1")->click(); }},
            {"input*", [&](const Words &w) { f.inputAnswer = w.join(u' '); }},
            {"answer *",
             [&](const Words &w) {
                 f.messages.answer = w[0] == u"yes" ? Messages::Answer::Yes : Messages::Answer::No;
             }},
            {"enter *", [&](const Words &w) { f.enter(QString(w[0]).replace(u"DATA"_s, f.data.directory().path())); }},
            {"serve *", [&](const Words &w) { f.pages[w[0]] = FeedTexts::rss(u"Le Monde"_s, w.mid(1)); }},
            {"servers *", [&](const Words &w) { f.serversAnswer = w[0] == u"answer"; }},
            {"finish *", [&](const Words &w) { f.downloaders[0]->finish(w[0].toInt(), w.mid(1).join(u' ').toUtf8()); }},
            {"progress *",
             [&](const Words &w) {
                 Q_EMIT f.downloaders[f.downloaders[0]->isRunning() ? 0 : 1]->DownloadProgress(w[0].toInt());
             }},
            {"notify no", [&](const Words &) { f.settings().notifyNew = false; }},
            {"browser none", [&](const Words &) { f.systemBrowserOpens = false; }},
            {"update all", [&](const Words &) { updateAll(); }},
            {"drop again on *", [&](const Words &w) { Q_EMIT f.tree()->nodeDropped(f.node(key(w)), false); }},
            {"drop *",
             [&](const Words &w) {
                 QTest::mousePress(f.tree()->viewport(), Qt::LeftButton, {}, f.placeOf(f.node(key(w))));
                 Q_EMIT f.tree()->nodeDropped(f.node(key(w, 2)), w[1] == u"above");
             }},
            {"icon *", [&](const Words &w) { f.tray->raise(w[0].toInt()); }},
            {"hide", [&](const Words &) { f.window->hide(); }}};
        for (const auto &[phrase, perform] : acts) {
            const QString fixed = QString::fromLatin1(phrase).remove(u'*');
            if (act == fixed.trimmed() || (phrase[qstrlen(phrase) - 1] == '*' && act.startsWith(fixed)))
                return perform(act.mid(fixed.size()).split(u' ', Qt::SkipEmptyParts));
        }
        QFAIL(qPrintable(act));
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

    /// The file holds the acts, behind ">", and what each of them makes of the window.
    void everyActOfTheUserTellsInTheWindow()
    {
        QString told;
        for (const QString &line :
             QString::fromUtf8(Files::read(QStringLiteral(TEST_DATA_DIR "/acts.txt")).bytes).split(u'\n')) {
            if (line.startsWith(u'#'))
                told += line + u'\n';
            if (!line.startsWith(u"> "_s))
                continue;
            told += line;
            if (line == u"> start"_s) {
                start(false);
                told += u'\n';
            } else {
                told += effectOf([this, &line] {
                    for (const QString &act : line.mid(2).split(u"; "_s))
                        doAct(act);
                });
            }
        }
        QCOMPARE(differenceFromGolden(u"acts.txt"_s, told), QString());
    }
};

QTEST_MAIN(tst_MainWindow)
#include "tst_MainWindow.moc"
