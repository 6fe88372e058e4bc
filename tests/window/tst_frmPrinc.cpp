// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/Literals.h"
#include "tests/window/PrincFixture.h"

#include "controls/StatusBar.h"
#include "platform/AnsiText.h"
#include "tests/fixtures/Eventually.h"
#include "tests/fixtures/FeedTexts.h"
#include "tests/fixtures/LocalHttpServer.h"

#include <QClipboard>
#include <QDialog>
#include <QLabel>
#include <QMenu>
#include <QProgressBar>
#include <QTimer>

/// The frame and the whole of the window's journeys, through its real controls.
class tst_frmPrinc : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<PrincFixture> m_fixture;

    /// A folder with two feeds and a feed beside it, each with a cache file of three items.
    void writeThreeFeeds(const QString &address = u"http://127.0.0.1:9/x"_s)
    {
        QString text = u"<?xml version=\"1.0\"?><favoris>"
                       "<dir name=\"Presse\" key=\"1\" visible=\"1\">"
                       "<feed name=\"Monde\" url=\"%1\" key=\"2\" ttl=\"60\" cache=\"-7\"/>"
                       "<feed name=\"Matin\" url=\"%1\" key=\"3\" ttl=\"60\" cache=\"-7\"/></dir>"
                       "<feed name=\"Blog\" url=\"%1\" key=\"4\" ttl=\"60\" cache=\"-7\"/></favoris>"_s.arg(address);
        m_fixture->writeCatalogue(text.toUtf8());
        for (int key = 2; key <= 4; ++key)
            Files::write(m_fixture->data.cacheFile(QString::number(key)),
                         FeedTexts::rss(u"Flux %1"_s.arg(key), FeedTexts::titles(u"f%1-"_s.arg(key), 0, 3)));
    }

    void start()
    {
        writeThreeFeeds();
        m_fixture->start();
    }

    QString catalogue() const { return QString::fromUtf8(m_fixture->data.read(u"feeds.xml"_s)); }

    QString titleOf(int row) const { return m_fixture->list()->items().index(row, 0).data().toString(); }

    void enterAddress(const QString &address) const
    {
        auto *txtURL = m_fixture->control<AddressBox>("txtURL");
        txtURL->setText(address);
        QTest::keyClick(txtURL, Qt::Key_Return);
    }

    void pressToolbar(int index) const { m_fixture->toolbar()->button(index)->click(); }

    /// Answers the next pop-up menu, which would hold the test, by choosing an entry or by closing it.
    static void answerMenu(const QString &entry, QStringList *enabled = nullptr)
    {
        QTimer::singleShot(0, qApp, [entry, enabled] {
            auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
            QVERIFY(menu);
            QAction *chosen = nullptr;
            for (QAction *action : menu->actions()) {
                if (enabled && action->isEnabled() && !action->isSeparator())
                    enabled->append(action->text());
                if (action->text() == entry)
                    chosen = action;
            }
            menu->close();
            if (chosen)
                chosen->trigger();
        });
    }

    void askContextMenu(const char *key) const
    {
        const QPoint place = m_fixture->placeOf(m_fixture->node(key));
        QContextMenuEvent event(QContextMenuEvent::Mouse, place, m_fixture->tree()->viewport()->mapToGlobal(place));
        QCoreApplication::sendEvent(m_fixture->tree()->viewport(), &event);
    }

private Q_SLOTS:
    void init() { m_fixture = std::make_unique<PrincFixture>(); }
    void cleanup() { m_fixture.reset(); }

    // --- The feed tree

    void clicksAndArrowsOpenFeedsAndSetTheButtons()
    {
        start();
        m_fixture->click(m_fixture->node("3"));
        QCOMPARE(m_fixture->list()->items().rowCount(), 3);
        const QByteArray title = AnsiText::toBytes(AnsiText::widenBytes(u"Flux 3"_s));
        QVERIFY(m_fixture->data.read(u"tmp.htm"_s).contains(title));
        m_fixture->click(m_fixture->node("root"));
        QCOMPARE(m_fixture->buttons(), u"0000"_s);
        QCOMPARE(m_fixture->list()->items().rowCount(), 3);
        m_fixture->click(m_fixture->node("1"));
        QCOMPARE(m_fixture->list()->items().rowCount(), 0);

        QTest::keyClick(m_fixture->tree(), Qt::Key_Down);
        QCOMPARE(titleOf(0), u"f2-0"_s);
        QCOMPARE(m_fixture->selected(), m_fixture->node("2"));
        QCOMPARE(m_fixture->buttons(), u"0100"_s);      // arrow keys don't touch the buttons
        QTest::keyClick(m_fixture->tree(), Qt::Key_Up); // onto the folder: nothing changes on show
        QCOMPARE(titleOf(0), u"f2-0"_s);

        m_fixture->feedTree().setImages(m_fixture->node("3"), NodeImage::FeedUpdating, NodeImage::FeedUpdating);
        m_fixture->click(m_fixture->node("3"));
        QCOMPARE(m_fixture->buttons(), u"0000"_s);
        QCOMPARE(titleOf(0), u"f2-0"_s);
    }

    void theContextMenuFollowsTheKindOfTheNodeAndMakesFolders()
    {
        start();
        m_fixture->click(m_fixture->node("2"));
        QStringList enabled;
        answerMenu(QString(), &enabled);
        askContextMenu("1");
        QCOMPARE(enabled, QStringList({u"Supprimer"_s, u"Nouveau dossier"_s}));
        QCOMPARE(m_fixture->buttons(), u"0100"_s);
        QCOMPARE(m_fixture->selected(), m_fixture->node("1"));
        QCOMPARE(titleOf(0), u"f2-0"_s); // a right click on a folder leaves the list

        enabled.clear();
        answerMenu(u"Nouveau dossier"_s, &enabled); // an empty name makes none
        askContextMenu("3");
        QCOMPARE(enabled.size(), 4);
        QCOMPARE(titleOf(0), u"f3-0"_s);
        QVERIFY(!m_fixture->node("5"));
        m_fixture->inputAnswer = u"Été & co"_s;
        answerMenu(u"Nouveau dossier"_s);
        askContextMenu("3");
        QCOMPARE(m_fixture->node("5")->parent(), m_fixture->node("1")); // beside the feed
        QVERIFY(catalogue().contains(u"name=\"Été &amp; co\" key=\"5\" visible=\"1\""_s));
    }

    void aFeedIsDeletedWithoutAQuestionAndAFolderOnlyAfterAYes()
    {
        start();
        m_fixture->click(m_fixture->node("2"));
        answerMenu(u"Supprimer"_s);
        askContextMenu("2");
        QVERIFY(m_fixture->messages.shown.empty());
        QVERIFY(!m_fixture->node("2") && !m_fixture->selected());
        QCOMPARE(m_fixture->list()->items().rowCount(), 0);
        QVERIFY(!catalogue().contains(u"Monde"_s));
        QVERIFY(!Files::exists(m_fixture->data.cacheFile(u"2"_s)));

        m_fixture->click(m_fixture->node("1"));
        pressToolbar(1);
        QCOMPARE(m_fixture->messages.shown.size(), std::size_t(1));
        QCOMPARE(m_fixture->messages.shown.front().title, u"Supprimer dossier"_s);
        QVERIFY(m_fixture->node("3"));
        m_fixture->messages.answer = Messages::Answer::Yes;
        pressToolbar(1);
        QVERIFY(!m_fixture->node("3"));
        QVERIFY(!catalogue().contains(u"Presse"_s));
        QVERIFY(!Files::exists(m_fixture->data.cacheFile(u"3"_s)));
        QVERIFY(Files::exists(m_fixture->data.cacheFile(u"4"_s)));
    }

    void aDropOnAFolderMovesTheFeedInTreeAndFile()
    {
        start();
        QTest::mousePress(m_fixture->tree()->viewport(), Qt::LeftButton, {}, m_fixture->placeOf(m_fixture->node("4")));
        Q_EMIT m_fixture->tree()->nodeDropped(m_fixture->node("1"), false);
        QCOMPARE(m_fixture->node("4")->parent(), m_fixture->node("1"));
        QVERIFY(m_fixture->node("4")->tag.isEmpty());
        QVERIFY(catalogue().indexOf(u"Blog"_s) < catalogue().indexOf(u"</dir>"_s));

        Q_EMIT m_fixture->tree()->nodeDropped(m_fixture->node("root"),
                                              false); // the remembered node is gone: nothing moves
        QCOMPARE(m_fixture->node("4")->parent(), m_fixture->node("1"));
    }

    void aMovedFeedStaysSelectedAndWithNothingSelectedNothingHappens()
    {
        start();
        m_fixture->click(m_fixture->node("4"));
        QTest::mousePress(m_fixture->tree()->viewport(), Qt::LeftButton, {}, m_fixture->placeOf(m_fixture->node("4")));
        Q_EMIT m_fixture->tree()->nodeDropped(m_fixture->node("1"), false);
        QVERIFY(m_fixture->selected());
        QCOMPARE(m_fixture->selected(), m_fixture->node("4"));
        QCOMPARE(m_fixture->list()->items().rowCount(), 3);

        pressToolbar(1); // deleted; the buttons stay enabled
        QVERIFY(!m_fixture->selected());
        const QString before = catalogue();
        for (const int button : {0, 1, 2})
            pressToolbar(button);
        for (const char *entry : {"Rafraichir", "Propriétés", "Nouveau dossier"})
            m_fixture->choose(QString::fromUtf8(entry));
        QVERIFY(m_fixture->messages.shown.empty());
        QCOMPARE(catalogue(), before);
    }

    // --- Journeys

    void aFeedOpenedByAddressIsSubscribedAndThereAtTheNextStart()
    {
        LocalHttpServer server;
        const QStringList titles = FeedTexts::titles(u"a"_s, 0, 4);
        server.setBody(u"/feed.xml"_s, FeedTexts::rss(u"Été"_s, titles, u"30"_s));
        m_fixture->start();
        QCOMPARE(m_fixture->buttons(), u"0000"_s);
        enterAddress(server.url(u"/feed.xml"_s));
        QTRY_COMPARE(m_fixture->list()->items().rowCount(), 4);
        QCOMPARE(m_fixture->buttons(), u"0001"_s);
        QVERIFY(m_fixture->program->longLived().current.addressFeedShown);

        pressToolbar(3);
        QCOMPARE(m_fixture->node("1")->text(), u"Été"_s);
        QVERIFY(m_fixture->window->close());
        QCOMPARE(m_fixture->releases, 1);

        m_fixture->start();
        QCOMPARE(m_fixture->program->longLived().catalogue.tables.updatettl.Item(u"1"_s), u"30"_s);
        m_fixture->click(m_fixture->node("1"));
        QCOMPARE(m_fixture->list()->items().rowCount(), 4);
    }

    void anItemOnShowIsMarkedAsReadAfterTheDelayAndStaysSo()
    {
        m_fixture->adjustSettings = [](AppSettings &settings) { settings.readDelay = 20; };
        start();
        m_fixture->click(m_fixture->node("2"));
        m_fixture->clickRow(1, 1);
        QVERIFY(m_fixture->browserToolbar()->isButtonEnabled(u"send_mail"_s));
        QTRY_VERIFY(m_fixture->list()->items().isShownRead(1));
        QVERIFY(!m_fixture->list()->items().isShownRead(0));
        m_fixture->window->close();
        m_fixture->start();
        m_fixture->click(m_fixture->node("2"));
        QVERIFY(m_fixture->list()->items().isShownRead(1));
    }

    void anUpdateOfTheFeedOnShowKeepsTheSelectedItemAndAnnouncesTheNewOnes()
    {
        LocalHttpServer server;
        writeThreeFeeds(server.url(u"/feed.xml"_s));
        server.setBody(u"/feed.xml"_s, FeedTexts::rss(u"Le Monde"_s, FeedTexts::titles(u"new"_s, 0, 2) +
                                                                         FeedTexts::titles(u"f2-"_s, 0, 3)));
        m_fixture->start();
        m_fixture->click(m_fixture->node("2"));
        m_fixture->list()->selectRow(1);
        pressToolbar(0);
        QCOMPARE(m_fixture->node("2")->image(), int(NodeImage::FeedUpdating));
        QVERIFY(!m_fixture->toolbar()->isButtonEnabled(0));

        QTRY_COMPARE(m_fixture->node("2")->image(), int(NodeImage::Feed));
        QCOMPARE(m_fixture->list()->items().rowCount(), 5);
        QCOMPARE(titleOf(0), u"new0"_s);
        QCOMPARE(titleOf(m_fixture->list()->selectedRow()), u"f2-1"_s);
        QCOMPARE(m_fixture->control<StatusBar>("stabPrinc")->findChild<QLabel *>(u"state"_s)->text(),
                 u"Mise à jour de Monde terminée (2 nouveaux messages)"_s);
        QVERIFY(PrincFixture::popup());
        QCOMPARE(PrincFixture::popup()->caption(), u"Mise à jour du flux\r\nLe Monde\r\n\r\n2 nouveaux messages"_s);
        QVERIFY(Files::read(m_fixture->data.cacheFile(u"2"_s)).bytes.contains("new1"));
        QVERIFY(!m_fixture->control<QProgressBar>("prbChargement")->isVisible());
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
        LocalHttpServer server;
        writeThreeFeeds(server.url(u"/feed.xml"_s));
        server.setBody(u"/feed.xml"_s, FeedTexts::rss(u"Le Monde"_s, {u"new"_s}));
        m_fixture->start();
        m_fixture->click(m_fixture->node("2"));
        m_fixture->click(m_fixture->node("1")); // the folder: the list is empty, the feed still loaded
        m_fixture->program->longLived().scheduler.updateAllFeeds();
        QTRY_COMPARE(server.hits(u"/feed.xml"_s), 3);
        if (quit) {
            m_fixture->window->close();
            m_fixture->start();
        } else {
            m_fixture->click(m_fixture->node("3"));
        }
        m_fixture->click(m_fixture->node("2"));
        QCOMPARE(m_fixture->list()->items().rowCount(), 4);
        QCOMPARE(titleOf(0), u"new"_s);
    }

    void closingInTheMiddleOfAnUpdateOfAllFeedsEndsIt()
    {
        LocalHttpServer server;
        LocalHttpServer::Answer stalled;
        stalled.silent = true;
        server.setAnswer(u"/feed.xml"_s, stalled);
        writeThreeFeeds(server.url(u"/feed.xml"_s));
        m_fixture->start();
        QTimer::singleShot(200, m_fixture->window.get(), &QWidget::close);
        m_fixture->program->longLived().scheduler.updateAllFeeds(); // holds until the close has stopped it
        QVERIFY(m_fixture->program->isEnded());
        QCOMPARE(server.hits(u"/feed.xml"_s), 1);
        QVERIFY(m_fixture->data.exists(u"params.xml"_s));
    }

    // --- The frame

    void whatTheUserChangedInTheFrameIsThereAtTheNextStart()
    {
        m_fixture->start();
        m_fixture->choose(u"Standard"_s);
        m_fixture->choose(u"Grandes"_s);
        m_fixture->window->move(120, 70);
        m_fixture->window->resize(900, 700);
        m_fixture->list()->setColumnWidthTwips(3, 150 * 15);
        m_fixture->window->close();
        m_fixture->start();
        QVERIFY(!m_fixture->settings().officeStyle);
        QVERIFY(!m_fixture->settings().smallToolbars);
        QCOMPARE(QRect(m_fixture->window->pos(), m_fixture->window->size()), QRect(120, 70, 900, 700));
        QCOMPARE(m_fixture->list()->columnWidthTwips(3), 150.0 * 15);
        QCOMPARE(m_fixture->toolbar()->drawStyle(), DrawStyle::Standard);
    }

    void minimisingHidesOnlyWhereAnIconLeadsBack()
    {
        m_fixture->trayAvailable = false;
        m_fixture->start();
        m_fixture->window->showMinimized();
        QTest::qWait(20);
        QVERIFY(!m_fixture->window->isHidden());
        m_fixture->window->showNormal();
        m_fixture->trayAvailable = true;
        m_fixture->window->showMinimized();
        QTRY_VERIFY(m_fixture->window->isHidden());

        constexpr int leftDoubleClick = 515;
        m_fixture->tray->raise(leftDoubleClick);
        QVERIFY(m_fixture->window->isVisible());
        QVERIFY(!m_fixture->window->isMinimized());
        m_fixture->window->hide(); // hidden, but not iconic: a double click doesn't show it
        m_fixture->tray->raise(leftDoubleClick);
        QVERIFY(m_fixture->window->isHidden());
    }

    void aDialogKeepsAMinimisedWindowWithinReach()
    {
        m_fixture->start();
        QDialog dialog(m_fixture->window.get());
        dialog.open();
        m_fixture->window->showMinimized();
        QTest::qWait(20);
        QVERIFY(!m_fixture->window->isHidden()); // the icon's menu is dead while a dialog is open
        dialog.close();
    }

    void theAddressBoxTakesAnAddressFromTheClipboardOnce()
    {
        m_fixture->start();
        auto *txtURL = m_fixture->control<AddressBox>("txtURL");
        const auto focusWith = [&](const QString &copied) {
            m_fixture->tree()->setFocus();
            QGuiApplication::clipboard()->setText(copied);
            txtURL->setFocus(Qt::TabFocusReason);
        };
        m_fixture->window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_fixture->window.get()));
        focusWith(u"HTTP://example.org/"_s);
        QCOMPARE(txtURL->text(), u"http://"_s);
        focusWith(u"http://example.org/a b"_s);
        QCOMPARE(txtURL->text(), u"http://example.org/a b"_s);
        QCOMPARE(QGuiApplication::clipboard()->text(), QString());
    }

    void theCommandLineIsOpenedAtTheStart()
    {
        const QString path = m_fixture->data.file(u"été.rss"_s);
        Files::write(path, FeedTexts::rss(u"Local"_s, FeedTexts::titles(u"l"_s, 0, 2)));
        m_fixture->data.write(u"home.htm"_s, "<html><body>Départ</body></html>");
        m_fixture->start(u'"' + path + u'"');
        QCOMPARE(m_fixture->control<AddressBox>("txtURL")->text(), path);
        QCOMPARE(m_fixture->list()->items().rowCount(), 2);

        // The way back from there is the start page, as after any start.
        auto *page = m_fixture->control<BrowserPane>("WebBrowser1");
        page->show();
        QVERIFY(eventually([&] { return page->LocationURL().endsWith("/tmp.htm"_L1); }));
        QVERIFY(eventually([&] { return m_fixture->browserToolbar()->isButtonEnabled(u"browser_precedent"_s); }));
        m_fixture->browserToolbar()->button(0)->click();
        QVERIFY(eventually([&] { return page->LocationURL().endsWith("/home.htm"_L1); }));
    }
};

QTEST_MAIN(tst_frmPrinc)
#include "tst_frmPrinc.moc"
