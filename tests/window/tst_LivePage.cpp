// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/fixtures/LocalHttpServer.h"
#include "tests/window/PrincFixture.h"

#include <QSignalSpy>
#include <QToolButton>

/// The window with a page that the browser's engine shows.
class tst_LivePage : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<PrincFixture> m_fixture;
    LocalHttpServer m_server;

    /// Whether the page comes to that address and is there.
    bool comesTo(const QString &address) const
    {
        return eventually([&] {
            return m_fixture->page()->LocationURL() == address &&
                   !m_fixture->browserToolbar()->isButtonEnabled(u"browser_arreter"_s);
        });
    }
    QString ownPage(const QString &name) const { return u"file://"_s + m_fixture->data.file(name); }

public:
    static void initMain() { qputenv("QTWEBENGINE_CHROMIUM_FLAGS", "--disable-gpu"); }

private Q_SLOTS:
    void init()
    {
        m_fixture = std::make_unique<PrincFixture>();
        m_fixture->data.write(u"home.htm"_s, "<html><body>start</body></html>");
    }
    void cleanup() { m_fixture.reset(); }

    void theButtonsActOnThePage()
    {
        for (const QString &path : {u"/a"_s, u"/b"_s, u"/c"_s})
            m_server.setBody(path, "<html><body>page</body></html>", "text/html");
        m_server.setAnswer(u"/silent"_s, {.body = {}, .headers = {}, .silent = true});
        m_fixture->writeFeeds(m_server.url(u"/c"_s).toUtf8());
        m_fixture->start();
        m_fixture->click("2");
        m_fixture->clickRow(1);
        const cToolbar *bar = m_fixture->browserToolbar();
        BrowserPane *page = m_fixture->page();
        page->show();
        for (const QString &path : {u"/a"_s, u"/b"_s}) {
            page->Navigate(m_server.url(path));
            QVERIFY(comesTo(m_server.url(path)));
        }
        QVERIFY(eventually([&] { return bar->isButtonEnabled(0) && !bar->isButtonEnabled(1); }));
        bar->button(0)->click();
        QVERIFY(comesTo(m_server.url(u"/a"_s)));
        QVERIFY(eventually([&] { return bar->isButtonEnabled(1); }));
        bar->button(1)->click();
        QVERIFY(comesTo(m_server.url(u"/b"_s)));
        const int hits = m_server.hits(u"/b"_s);
        bar->button(2)->click();
        QVERIFY(eventually([&] { return m_server.hits(u"/b"_s) == hits + 1; }));
        QVERIFY(comesTo(m_server.url(u"/b"_s)));
        page->Navigate(m_server.url(u"/silent"_s));
        QVERIFY(eventually([&] { return m_server.hits(u"/silent"_s) == 1 && bar->isButtonEnabled(3); }));
        QSignalSpy complete(page, &BrowserPane::DocumentComplete);
        bar->button(3)->click();
        QVERIFY(comesTo(m_server.url(u"/b"_s)));
        QVERIFY(eventually([&] { return !complete.isEmpty(); }));
        bar->button(5)->click();
        QCOMPARE(m_fixture->log.last(), u"opens "_s + m_server.url(u"/b"_s));
        bar->button(8)->click();
        QVERIFY(comesTo(m_server.url(u"/c"_s)));
    }

    void thePageFollowsTheTreeAndTheList()
    {
        m_fixture->writeFeeds("javascript:alert(1)");
        m_fixture->start();
        m_fixture->page()->show();
        QVERIFY(comesTo(ownPage(u"home.htm"_s)));
        for (const auto &[act, page] : std::initializer_list<std::pair<std::function<void()>, QString>>{
                 {[this] { m_fixture->click("3"); }, u"tmp.htm"_s},
                 {[this] { m_fixture->click("1"); }, u"home.htm"_s},
                 {[this] { m_fixture->click("2"); }, u"tmp.htm"_s},
                 {[this] { m_fixture->clickRow(1); }, u"tmp.htm"_s},
                 {[this] { m_fixture->browserToolbar()->button(8)->click(); }, u"tmp.htm"_s},
                 {[this] { m_fixture->toolbar()->button(1)->click(); }, u"home.htm"_s}}) {
            act();
            QVERIFY2(comesTo(ownPage(page)), qPrintable(m_fixture->page()->LocationURL()));
        }
        // What is no feed the browser shows, if the user wants it.
        m_fixture->messages.answer = Messages::Answer::Yes;
        m_server.setBody(u"/page"_s, "<html><body>page</body></html>", "text/html");
        m_fixture->pages[m_server.url(u"/page"_s)] = "<html/>";
        m_fixture->enter(m_server.url(u"/page"_s));
        QVERIFY(comesTo(m_server.url(u"/page"_s)));
    }

    void theCommandLineIsOpenedBehindTheStartPage()
    {
        m_fixture->data.write(u"été.rss"_s, FeedTexts::rss(u"Local"_s, FeedTexts::titles(u"l"_s, 0, 2)));
        m_fixture->start(u'"' + m_fixture->data.file(u"été.rss"_s) + u'"');
        QCOMPARE(m_fixture->txtURL()->text(), m_fixture->data.file(u"été.rss"_s));
        QCOMPARE(m_fixture->list()->items().rowCount(), 2);
        m_fixture->page()->show();
        QVERIFY(comesTo(ownPage(u"tmp.htm"_s)));
        QVERIFY(eventually([this] { return m_fixture->browserToolbar()->isButtonEnabled(0); }));
        m_fixture->browserToolbar()->button(0)->click();
        QVERIFY(comesTo(ownPage(u"home.htm"_s)));
        m_fixture->window->openCommandLine(u"http://h/2"_s); // of a second start
        QCOMPARE(m_fixture->list()->items().rowCount(), 0);
    }

    void f6AndTabGoThroughThePanesInOrder()
    {
        m_fixture->start();
        m_fixture->page()->show();
        QVERIFY(comesTo(ownPage(u"home.htm"_s)));
        const QList<QWidget *> panes = {m_fixture->tree(), m_fixture->list(), m_fixture->page(), m_fixture->txtURL()};
        const auto paneWithFocus = [&panes] {
            for (qsizetype i = 0; i < panes.size(); ++i)
                if (QWidget *focus = QApplication::focusWidget(); panes[i] == focus || panes[i]->isAncestorOf(focus))
                    return i;
            return qsizetype(-1);
        };
        QCOMPARE(paneWithFocus(), qsizetype(0)); // from the start
        // In the page itself Tab goes from link to link, so that it is entered from both sides.
        for (const auto &[from, keys, to] :
             std::initializer_list<std::tuple<int, QKeyCombination, int>>{{0, Qt::Key_F6, 1},
                                                                          {1, Qt::Key_F6, 2},
                                                                          {2, Qt::Key_F6, 3},
                                                                          {3, Qt::Key_F6, 0},
                                                                          {0, Qt::SHIFT | Qt::Key_F6, 3},
                                                                          {3, Qt::SHIFT | Qt::Key_F6, 2},
                                                                          {2, Qt::SHIFT | Qt::Key_F6, 1},
                                                                          {1, Qt::SHIFT | Qt::Key_F6, 0},
                                                                          {-1, Qt::Key_F6, 0},
                                                                          {-1, Qt::SHIFT | Qt::Key_F6, 3},
                                                                          {0, Qt::Key_Tab, 1},
                                                                          {1, Qt::Key_Tab, 2},
                                                                          {3, Qt::SHIFT | Qt::Key_Backtab, 2}}) {
            (from < 0 ? m_fixture->control<QWidget>("picVerticalSplit") : panes[from])->setFocus();
            QTest::keyClick(QApplication::focusWidget(), keys.key(), keys.keyboardModifiers());
            QCOMPARE(paneWithFocus(), qsizetype(to));
        }
        m_fixture->page()->hide(); // a pane that isn't there is left out
        panes[1]->setFocus();
        QTest::keyClick(panes[1], Qt::Key_F6);
        QCOMPARE(paneWithFocus(), qsizetype(3));
    }
};

QTEST_MAIN(tst_LivePage)
#include "tst_LivePage.moc"
