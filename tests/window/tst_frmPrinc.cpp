// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/fixtures/Golden.h"
#include "tests/window/PrincFixture.h"

#include <QCheckBox>
#include <QClipboard>
#include <QDialog>
#include <QInputDialog>
#include <QMessageBox>
#include <QPushButton>
#include <QRegularExpression>
#include <QTreeWidget>

/// Journeys through the whole window, and what they leave on the disk.
class tst_frmPrinc : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<PrincFixture> m_fixture;

    QString titleOf(int row) const { return m_fixture->list()->items().index(row, 0).data().toString(); }
    QString statusText() const
    {
        return m_fixture->control<QWidget>("stabPrinc")->findChild<QLabel *>(u"state"_s)->text();
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
    void init() { m_fixture = std::make_unique<PrincFixture>(); }
    void cleanup() { m_fixture.reset(); }

    void whatTheUserChangedIsOnTheDiskAndThereAtTheNextStart()
    {
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
        QCOMPARE(QRect(m_fixture->window->pos(), m_fixture->window->size()), QRect(120, 70, 900, 700));
        QCOMPARE(m_fixture->toolbar()->drawStyle(), DrawStyle::Standard);
        QCOMPARE(m_fixture->list()->columnWidthTwips(3), 80.0 * 15);
        m_fixture->settings().soundPath = u"/a.wav"_s; // the fixture plays none
        m_fixture->window->close();
        QCOMPARE(filesOfState(), left);
    }

    void aLargeFeedShowsThatItIsRead()
    {
        m_fixture->start();
        const auto *count = m_fixture->control<QLabel>("glue");
        QStringList seen;
        connect(&m_fixture->program->longLived().opener, &FeedOpener::loadBegan, this, [&] {
            const QCursor *pointer = QGuiApplication::overrideCursor();
            seen.append(pointer && pointer->shape() == Qt::WaitCursor ? count->text() : u"-"_s);
        });
        const QByteArray padding = "<!--" + QByteArray(4 * 1024 * 1024, 'x') + "-->";
        const QByteArray small = FeedTexts::rss(u"L"_s, {u"a"_s});
        for (const QByteArray &feed : QByteArrayList{small, small + padding, "<no" + padding}) {
            m_fixture->data.write(u"large.rss"_s, feed);
            m_fixture->enter(m_fixture->data.file(u"large.rss"_s));
            QVERIFY(!QGuiApplication::overrideCursor());
            QCOMPARE(count->text(), QString());
        }
        QCOMPARE(seen, (QStringList{u"-"_s, u"Ouverture..."_s, u"Ouverture..."_s}));
        QCOMPARE(m_fixture->messages.shown.size(), std::size_t(1));
    }

    void anItemOnShowIsMarkedAsReadAfterTheDelayAndStaysSo()
    {
        m_fixture->adjustSettings = [](AppSettings &settings) { settings.readDelay = 20; };
        m_fixture->writeFeeds();
        m_fixture->start();
        m_fixture->click("2");
        m_fixture->clickRow(1);
        QVERIFY(eventually([this] { return m_fixture->list()->items().isShownRead(1); }));
        QVERIFY(!m_fixture->list()->items().isShownRead(0));
        m_fixture->window->close();
        m_fixture->start();
        m_fixture->click("2");
        QVERIFY(m_fixture->list()->items().isShownRead(1));
    }

    void whatAnUpdateStoresOutlivesAFeedThatStayedLoaded_data()
    {
        QTest::addColumn<bool>("quit");
        QTest::newRow("another feed is clicked") << false;
        QTest::newRow("the program ends") << true;
    }

    void whatAnUpdateStoresOutlivesAFeedThatStayedLoaded()
    {
        QFETCH(const bool, quit);
        m_fixture->pages[u"http://h/2"_s] = FeedTexts::rss(u"A"_s, {u"new"_s});
        m_fixture->writeFeeds();
        m_fixture->start();
        m_fixture->click("2");
        m_fixture->click("1"); // the folder: the list is empty, the feed still loaded
        m_fixture->program->longLived().scheduler.updateAllFeeds();
        if (quit) {
            m_fixture->window->close();
            m_fixture->start();
        } else {
            m_fixture->click("3");
        }
        m_fixture->click("2");
        QCOMPARE(m_fixture->list()->items().rowCount(), 4);
        QCOMPARE(titleOf(0), u"new"_s);
    }

    void closingInTheMiddleOfAnUpdateOfAllFeedsEndsIt()
    {
        m_fixture->serversAnswer = false;
        m_fixture->writeFeeds();
        m_fixture->start();
        QTimer look;
        connect(&look, &QTimer::timeout, m_fixture->window.get(), [this] {
            if (m_fixture->isDownloading())
                m_fixture->window->close();
        });
        look.start(1);
        m_fixture->program->longLived().scheduler.updateAllFeeds(); // holds until the close has stopped it
        QVERIFY(m_fixture->program->isEnded());
        QCOMPARE(m_fixture->downloaders[1]->requests.size(), 1U);
        QVERIFY(m_fixture->data.read(u"params.xml"_s).contains("<start"));
    }

    void anImportOfTheCommandLineTellsWhatCameOfIt_data()
    {
        QTest::addColumn<QString>("feeds");
        QTest::addColumn<bool>("stopped");
        QTest::addColumn<QString>("told");
        const auto row = [](const char *feeds, bool stopped, const char *told) {
            QTest::newRow(feeds) << QString::fromLatin1(feeds) << stopped
                                 << u"Importation "_s + QString::fromUtf8(told).replace(u"_"_s, u"\u00a0"_s);
        };
        row("good bad none", false, "terminée_: 1 flux ajouté, 1 sans réponse, 1 illisible");
        row("good bad bad good", false, "terminée_: 2 flux ajoutés, 2 illisibles");
        row("none none", false, "terminée_: aucun flux ajouté, 2 sans réponse");
        row("good good none", true, "interrompue_: aucun flux ajouté");
    }

    void anImportOfTheCommandLineTellsWhatCameOfIt()
    {
        QFETCH(QString, feeds);
        QFETCH(bool, stopped);
        m_fixture->pages = {{u"http://h/good"_s, FeedTexts::rss(u"A"_s, {u"a"_s})}, {u"http://h/bad"_s, "<html/>"}};
        QByteArray outlines;
        for (const QString &feed : feeds.split(u' '))
            outlines += "<outline text=\"A\" xmlUrl=\"http://h/" + feed.toLatin1() + "\"/>";
        m_fixture->data.write(u"A b.OPML"_s, "<opml><head><title/></head><body>" + outlines + "</body></opml>");
        m_fixture->serversAnswer = !stopped;
        qsizetype listed = 0;
        QTimer look;
        connect(&look, &QTimer::timeout, &look, [&] {
            const auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget());
            const auto *list = dialog ? dialog->findChild<QTreeWidget *>() : nullptr;
            const auto press = [dialog](const QString &name) { dialog->findChild<QPushButton *>(name)->click(); };
            if (!list || list->topLevelItemCount() == 0)
                return;
            if (listed > 0) { // it is under way
                if (m_fixture->isDownloading() && stopped)
                    press(u"cmdCanceller"_s);
                return;
            }
            listed = list->topLevelItemCount();
            m_fixture->window->openCommandLine(u"\"/other.opml\""_s); // no second wizard over the first
            eventually([this] { return statusText().endsWith(u"puis ouvrez à nouveau : /other.opml"_s); }, 1000);
            dialog->findChild<QCheckBox *>(u"chkCkeckAll"_s)->setChecked(true);
            QTimer::singleShot(0, dialog, [press] { press(u"cmdTerminer"_s); });
        });
        look.start(1);
        m_fixture->start(u'"' + m_fixture->data.file(u"A b.OPML"_s) + u'"');
        QVERIFY(eventually([&] { return listed > 0 && !QApplication::activeModalWidget(); }));
        QCOMPARE(listed, feeds.split(u' ').size());
        QTEST(statusText(), "told");
        QCOMPARE(m_fixture->feedTree().root()->children().size(), std::size_t(stopped ? 0 : feeds.count(u"good"_s)));
        QCOMPARE(m_fixture->messages.shown.size(), 0U);
        QCOMPARE(m_fixture->txtURL()->text(), u"http://"_s);
    }

    void minimisingHidesOnlyWhereAnIconLeadsBack()
    {
        m_fixture->trayAvailable = false;
        m_fixture->start();
        const auto minimised = [this] {
            m_fixture->window->showMinimized();
            QCoreApplication::processEvents();
            return m_fixture->window->isHidden();
        };
        QVERIFY(!minimised());
        m_fixture->window->showNormal();
        m_fixture->trayAvailable = true;
        QDialog dialog(m_fixture->window.get()); // the icon's menu is dead while a dialog is open
        dialog.open();
        QVERIFY(!minimised());
        dialog.close();
        m_fixture->window->showNormal();
        QVERIFY(minimised());
        constexpr int leftDoubleClick = 515;
        m_fixture->tray->raise(leftDoubleClick);
        QVERIFY(m_fixture->window->isVisible() && !m_fixture->window->isMinimized());
        QVERIFY(minimised());
        m_fixture->window->takeHandOver(u"/no/such/file"_s, "token");
        QVERIFY(m_fixture->window->isVisible() && !m_fixture->window->isMinimized());
        QVERIFY(m_fixture->log.last().contains(u"n'existe pas"_s));
        QVERIFY(!qEnvironmentVariableIsSet("XDG_ACTIVATION_TOKEN"));
    }

    void theAddressBoxTakesAnAddressFromTheClipboardOnce_data()
    {
        QTest::addColumn<QString>("copied");
        QTest::addColumn<Qt::FocusReason>("reason");
        QTest::addColumn<bool>("taken");
        const QString address = u"http://example.org/a b"_s;
        QTest::newRow("by Tab") << address << Qt::TabFocusReason << true;
        QTest::newRow("by the mouse") << address << Qt::MouseFocusReason << true;
        QTest::newRow("by F6") << address << Qt::ShortcutFocusReason << true;
        QTest::newRow("no address") << u"HTTP://example.org/"_s << Qt::TabFocusReason << false;
        QTest::newRow("back from a menu") << address << Qt::PopupFocusReason << false;
        QTest::newRow("back from the menu bar") << address << Qt::MenuBarFocusReason << false;
        QTest::newRow("back from another window") << address << Qt::ActiveWindowFocusReason << false;
    }

    void theAddressBoxTakesAnAddressFromTheClipboardOnce()
    {
        QFETCH(QString, copied);
        QFETCH(Qt::FocusReason, reason);
        QFETCH(bool, taken);
        m_fixture->startActive();
        m_fixture->tree()->setFocus();
        QGuiApplication::clipboard()->setText(copied);
        m_fixture->txtURL()->setFocus(reason);
        QCOMPARE(m_fixture->txtURL()->text(), taken ? copied : u"http://"_s);
        QCOMPARE(QGuiApplication::clipboard()->text(), taken ? QString() : copied);
        QCOMPARE(m_fixture->txtURL()->hasSelectedText(),
                 reason == Qt::TabFocusReason || reason == Qt::ShortcutFocusReason);
    }

    void questionsHaveTheirPagesOfTheHelp()
    {
        m_fixture->start();
        QMessageBox question;
        QInputDialog input;
        QDialog other;
        for (QDialog *dialog : {static_cast<QDialog *>(&question), static_cast<QDialog *>(&input), &other}) {
            dialog->open();
            QTest::keyClick(dialog, Qt::Key_F1);
            dialog->close();
        }
        QTest::keyClick(m_fixture->tree(), Qt::Key_F1); // in no dialog
        QCOMPARE(m_fixture->log.filter(u"help"_s),
                 (QStringList{u"help of Quillwire.chm>W1, topic 21"_s, u"help of Quillwire.chm>W1, topic 6"_s}));
    }
};

QTEST_MAIN(tst_frmPrinc)
#include "tst_frmPrinc.moc"
