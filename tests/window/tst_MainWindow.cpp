// SPDX-License-Identifier: GPL-3.0-or-later

#include "core/ExtensionsFile.h"
#include "tests/fixtures/AccessibleTree.h"
#include "tests/fixtures/Golden.h"
#include "tests/window/WindowDump.h"

#include <QCheckBox>
#include <QClipboard>
#include <QInputDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QRegularExpression>
#include <QTabWidget>
#include <QTreeWidget>

/// The real window as a whole: how it looks, what each command and each act of the user makes of it, and what it leaves
/// on the disk.
class tst_MainWindow : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<PrincFixture> m_fixture;

    /// Notes what a screen reader says without being asked.
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        auto *const part = event->type() == QEvent::Show ? QAccessible::queryAccessibleInterface(watched) : nullptr;
        if (m_fixture && part && part->role() == QAccessible::Notification)
            m_fixture->log += u"is spoken: "_s + part->text(QAccessible::Name).remove(u'\r').replace(u'\n', u'|');
        return false;
    }

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
        connect(&m_fixture->program->longLived().opener, &FeedOpener::loadBegan, this, [this] {
            if (QGuiApplication::overrideCursor())
                m_fixture->log += u"the pointer waits: "_s + m_fixture->control<QLabel>("glue")->text();
        });
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
        if (QGuiApplication::overrideCursor())
            effect += u"the pointer waits on"_s;
        if (effect.isEmpty())
            effect += u"nothing"_s;
        return u"\n    "_s + effect.join(u"\n    "_s) + u'\n';
    }

    /// Starts the update of all feeds, and notes what is to be seen while the first of them is fetched; then the window
    /// is closed, or the servers answer.
    void updateAll(bool closes) const
    {
        PrincFixture &f = *m_fixture;
        f.serversAnswer = false;
        QTimer look;
        connect(&look, &QTimer::timeout, &look, [&f, &look, closes, before = WindowDump::all(f)] {
            if (!f.isDownloading())
                return;
            look.stop();
            f.log += WindowDump::changes(before, WindowDump::all(f));
            f.serversAnswer = !closes;
            if (closes)
                f.window->close();
        });
        look.start(1);
        f.choose(u"Tout mettre à jour"_s);
    }

    /// Opens a list of those feeds as the command line does and takes all of them; `stops` breaks off at the first.
    void import(const QStringList &feeds, bool stops) const
    {
        PrincFixture &f = *m_fixture;
        QByteArray outlines;
        for (const QString &feed : feeds)
            outlines += "<outline text=\"A\" xmlUrl=\"http://h/" + feed.toLatin1() + "\"/>";
        f.data.write(u"A b.OPML"_s, "<opml><head><title/></head><body>" + outlines + "</body></opml>");
        f.serversAnswer = !stops;
        f.pages[u"http://h/bad"_s] = "<html/>";
        bool taken = false;
        QTimer look;
        connect(&look, &QTimer::timeout, &look, [&] {
            const QWidget *dialog = QApplication::activeModalWidget();
            const auto *list = dialog ? dialog->findChild<QTreeWidget *>() : nullptr;
            if (!list || list->topLevelItemCount() == 0)
                return;
            if (!std::exchange(taken, true)) {
                f.window->openCommandLine(u"\"/other.opml\""_s); // no second wizard over the first
                eventually([&f] { return f.statusText().endsWith(u"/other.opml"_s); }, 1000);
                f.log += u"%1 listed; "_s.arg(list->topLevelItemCount()) + f.statusText();
                dialog->findChild<QCheckBox *>(u"chkCkeckAll"_s)->setChecked(true);
                QTimer::singleShot(0, dialog,
                                   [dialog] { dialog->findChild<QPushButton *>(u"cmdTerminer"_s)->click(); });
            } else if (stops && f.isDownloading()) {
                dialog->findChild<QPushButton *>(u"cmdCanceller"_s)->click();
            }
        });
        look.start(1);
        f.window->openCommandLine(u'"' + f.data.file(u"A b.OPML"_s) + u'"');
        QVERIFY(eventually([&taken] { return taken && !QApplication::activeModalWidget(); }));
    }

    /// Presses F1 in a dialog of that kind.
    static void askForHelp(QDialog &&dialog)
    {
        dialog.open();
        QTest::keyClick(&dialog, Qt::Key_F1);
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
            {"read after *",
             [&](const Words &w) {
                 f.settings().readDelay = qint16(w[0].toInt());
                 f.clickRow(1);
                 QVERIFY(eventually([&f] { return f.list()->items().isShownRead(1); }));
             }},
            {"key *",
             [&](const Words &w) {
                 const QKeyCombination keys = QKeySequence(w[0])[0];
                 auto *part = w.size() > 1 ? f.control<QWidget>(key(w, 2)) : f.tree();
                 part->setFocus();
                 QTest::keyClick(part, keys.key(), keys.keyboardModifiers());
             }},
            {"pull *",
             [&](const Words &w) {
                 auto *bar = f.control<QWidget>(key(w));
                 QTest::mousePress(bar, Qt::LeftButton);
                 QTest::mouseMove(bar, QPoint(w[1].toInt(), w[2].toInt()));
                 QTest::mouseMove(bar, QPoint(5000, 5000)); // past its bound it stays
                 QTest::mouseRelease(bar, Qt::LeftButton);
             }},
            {"set *",
             [&](const Words &w) {
                 auto *bar = QAccessible::queryAccessibleInterface(f.control<QWidget>(key(w)))->valueInterface();
                 bar->setCurrentValue(w[1].toInt());
                 f.log += u"moved by steps of %1%2%3"_s.arg(bar->minimumStepSize().toInt())
                              .arg(bar->currentValue() == bar->minimumValue() ? u", to the start"_s : QString(),
                                   bar->currentValue() == bar->maximumValue() ? u", to the end"_s : QString());
             }},
            {"focus by *",
             [&](const Words &w) {
                 f.tree()->setFocus();
                 QGuiApplication::clipboard()->setText(w.mid(2).join(u' '));
                 f.txtURL()->setFocus(Qt::FocusReason(QMetaEnum::fromType<Qt::FocusReason>().keyToValue(key(w))));
                 f.log += u"left to paste \"%1\", selected \"%2\""_s.arg(QGuiApplication::clipboard()->text(),
                                                                         f.txtURL()->selectedText());
             }},
            {"help in a question", [&](const Words &) { askForHelp(QMessageBox()); }},
            {"help in a line", [&](const Words &) { askForHelp(QInputDialog()); }},
            {"help in another", [&](const Words &) { askForHelp(QDialog()); }},
            {"choose *", [&](const Words &w) { f.choose(w.join(u' ')); }},
            {"main *", [&](const Words &w) { f.toolbar()->button(w[0].toInt())->click(); }},
            {"version *",
             [&](const Words &w) {
                 f.toolbar()->setCommonControlsVersion({4, w[0].toInt()});
             }},
            {"able *", [&](const Words &w) { f.toolbar()->setButtonEnabled(w[0].toInt(), true); }},
            {"arrow of the attachment", [&](const Words &) { Q_EMIT f.browserToolbar()->DropDownPress(9); }},
            {"page tells of *", [&](const Words &w) { Q_EMIT f.page()->StatusTextChange(w[0]); }},
            {"page begins", [&](const Words &) { Q_EMIT f.page()->DownloadBegin(); }},
            {"page progress *", [&](const Words &w) { Q_EMIT f.page()->ProgressChange(w[0].toInt(), w[1].toInt()); }},
            {"page is there", [&](const Words &) { Q_EMIT f.page()->DocumentComplete(); }},
            {"page command *", [&](const Words &w) { Q_EMIT f.page()->CommandStateChange(w[0].toInt(), false); }},
            {"page asks for extensions", [&](const Words &) { Q_EMIT f.page()->extensionsAsked(); }},
            {"extension *",
             [&](const Words &w) {
                 for (const ExtensionKey &extension : extensionKeys)
                     if (extension.name == w[0])
                         f.program->longLived().extensions.set(extension, true);
             }},
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
            {"write *",
             [&](const Words &w) {
                 f.data.write(u"large.rss"_s,
                              w.mid(1).join(u' ').toUtf8() + "<!--" + QByteArray(w[0].toInt(), 'x') + "-->");
             }},
            {"import and stop *", [&](const Words &w) { import(w, true); }},
            {"import *", [&](const Words &w) { import(w, false); }},
            {"serve *", [&](const Words &w) { f.pages[w[0]] = FeedTexts::rss(u"Le Monde"_s, w.mid(1)); }},
            {"servers *", [&](const Words &w) { f.serversAnswer = w[0] == u"answer"; }},
            {"finish *", [&](const Words &w) { f.downloaders[0]->finish(w[0].toInt(), w.mid(1).join(u' ').toUtf8()); }},
            {"progress *",
             [&](const Words &w) {
                 Q_EMIT f.downloaders[f.downloaders[0]->isRunning() ? 0 : 1]->DownloadProgress(w[0].toInt());
             }},
            {"notify no", [&](const Words &) { f.settings().notifyNew = false; }},
            {"browser none", [&](const Words &) { f.systemBrowserOpens = false; }},
            {"update all", [&](const Words &) { updateAll(false); }},
            {"update all, closing", [&](const Words &) { updateAll(true); }},
            {"again",
             [&](const Words &) {
                 f.window->close();
                 f.start();
             }},
            {"drop again on *", [&](const Words &w) { Q_EMIT f.tree()->nodeDropped(f.node(key(w)), false); }},
            {"drop *",
             [&](const Words &w) {
                 QTest::mousePress(f.tree()->viewport(), Qt::LeftButton, {}, f.placeOf(f.node(key(w))));
                 Q_EMIT f.tree()->nodeDropped(f.node(key(w, 2)), w[1] == u"above");
             }},
            {"icon *", [&](const Words &w) { f.tray->raise(w[0].toInt()); }},
            {"hide", [&](const Words &) { f.window->hide(); }},
            {"tray *", [&](const Words &w) { f.trayAvailable = w[0] == u"there"; }},
            {"dialog opens", [&](const Words &) { (new QDialog(f.window.get()))->open(); }},
            {"dialog closes", [&](const Words &) { QApplication::activeModalWidget()->close(); }},
            {"minimise", [&](const Words &) { f.window->showMinimized(); }},
            {"restore", [&](const Words &) { f.window->showNormal(); }},
            {"hand over *", [&](const Words &w) {
                 f.window->takeHandOver(w[0], "token");
                 QVERIFY(!qEnvironmentVariableIsSet("XDG_ACTIVATION_TOKEN"));
             }}};
        for (const auto &[phrase, perform] : acts) {
            const QString fixed = QString::fromLatin1(phrase).remove(u'*');
            if (act == fixed.trimmed() || (phrase[qstrlen(phrase) - 1] == '*' && act.startsWith(fixed)))
                return perform(act.mid(fixed.size()).split(u' ', Qt::SkipEmptyParts));
        }
        QFAIL(qPrintable(act));
    }

    /// The settings and the catalogue; of the bands only their order, since their sizes are the font's.
    QString filesOfState() const
    {
        static const QRegularExpression size(
            u"(left|top|right|bottom|bandChildMinWidth|bandChildIdealWidth)=\"\\d+\""_s);
        return QString::fromUtf8(m_fixture->data.read(u"params.xml"_s)).replace(size, u"\\1=\"\""_s) + u'\n' +
               QString::fromUtf8(m_fixture->data.read(u"feeds.xml"_s));
    }

private Q_SLOTS:
    void initTestCase() { qApp->installEventFilter(this); }
    void cleanup() { m_fixture.reset(); }

    void theWindowOfAFirstStart()
    {
        m_fixture = std::make_unique<PrincFixture>();
        m_fixture->start();
        const QStringList lines = m_fixture->log + WindowDump::all(*m_fixture);
        QCOMPARE(differenceFromGolden(u"window.txt"_s, lines.join(u'\n') + u'\n'), QString());
    }

    /// The window, its menus and the popup, as they stand in data/accessible.txt.
    void aScreenReaderMeetsNothingWithoutAName()
    {
        start(false);
        PrincFixture &f = *m_fixture;
        f.pages[u"http://h/2"_s] = FeedTexts::rss(u"A"_s, {u"new"_s});
        f.click("2");
        f.clickRow(0);
        f.choose(u"Comme lu"_s);
        f.choose(u"Rafraichir"_s);
        QVERIFY(eventually([] { return PrincFixture::popup() && PrincFixture::popup()->isVisible(); }));
        QString told = AccessibleTree::of(f.window.get()) + AccessibleTree::of(PrincFixture::popup());
        for (const QMenu *menu : WindowDump::popups(f))
            told += AccessibleTree::of(const_cast<QMenu *>(menu));
        f.list()->setColumnWidthTwips(2, 0);
        told += AccessibleTree::of(f.list());
        told.replace(QRegularExpression(u"\\d+/\\d+/\\d+ [\\d:]+"_s), u"DATE"_s);
        QVERIFY2(AccessibleTree::flaws(told).isEmpty(), qPrintable(AccessibleTree::flaws(told)));
        QCOMPARE(differenceFromGolden(u"accessible.txt"_s, told), QString());
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

    void whatTheUserChangedIsOnTheDiskAndThereAtTheNextStart()
    {
        m_fixture = std::make_unique<PrincFixture>();
        m_fixture->adjustSettings = [](AppSettings &settings) { settings.readDelay = -1; };
        m_fixture->writeFeeds();
        m_fixture->start();
        QVERIFY(m_fixture->shownByTheStart);
        m_fixture->choose(u"Standard"_s);
        m_fixture->choose(u"Grandes"_s);
        m_fixture->window->move(120, 70);
        m_fixture->window->resize(900, 700);
        for (int column = 1; column <= itemColumnCount; ++column)
            m_fixture->list()->setColumnWidthTwips(column, (50 + 10 * column) * 15);
        AppSettings &settings = m_fixture->settings();
        settings.startMode = u"Minimisé"_s;
        settings.updateAtStart = true;
        settings.smtpServer = u"smtp.h"_s;
        settings.smtpPort = 26;
        settings.fromName = u"Jean"_s;
        settings.fromMail = u"j@h"_s;
        settings.splitHorizontal = 200 * 15;
        settings.splitVertical = 180 * 15;
        settings.notifyNew = false;
        settings.soundPath = u"/a.wav"_s;
        QTest::mousePress(m_fixture->tree()->viewport(), Qt::LeftButton, {}, m_fixture->placeOf(m_fixture->node("3")));
        Q_EMIT m_fixture->tree()->nodeDropped(m_fixture->node("2"), true);
        m_fixture->program->longLived().treeState.setExpanded(m_fixture->node("1"), false);
        m_fixture->program->longLived().catalogue.tables.updatettl.Replace(u"2"_s, u"17"_s);
        QVERIFY(m_fixture->window->close());
        QCOMPARE(m_fixture->releases, 1);
        const QString left = filesOfState();
        QCOMPARE(differenceFromGolden(u"state.xml"_s, left), QString());

        m_fixture->adjustSettings = {};
        m_fixture->start();
        QVERIFY(!m_fixture->shownByTheStart);
        QCOMPARE(m_fixture->toolbar()->drawStyle(), DrawStyle::Standard);
        m_fixture->settings().soundPath = u"/a.wav"_s; // the fixture plays none
        m_fixture->window->close();
        QCOMPARE(filesOfState(), left);
    }
};

QTEST_MAIN(tst_MainWindow)
#include "tst_MainWindow.moc"
