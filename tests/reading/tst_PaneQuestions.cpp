// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/Literals.h"
#include "tests/reading/PaneFixture.h"

#include <QApplication>

/// What a page makes the pane ask, and what may happen while a question is on show.
class TestPaneQuestions : public QObject, public PaneFixture
{
    Q_OBJECT

private Q_SLOTS:
    void init() { setUp(); }
    void cleanup() { m_server.reset(); }
    void cleanupTestCase() { m_pane.reset(); }

    void aLinkThatEndsLikeAFeedAsks_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<bool>("asks");
        QTest::newRow("xml") << u"/a.xml"_s << true;
        QTest::newRow("rdf") << u"/a.rdf"_s << true;
        QTest::newRow("rss") << u"/a.rss"_s << true;
        QTest::newRow("query behind the name") << u"/a.xml?x=1"_s << false;
        QTest::newRow("query that ends so") << u"/a?x=.xml"_s << true;
        QTest::newRow("capitals") << u"/a.XML"_s << false;
    }

    void aLinkThatEndsLikeAFeedAsks()
    {
        QFETCH(QString, path);
        QFETCH(bool, asks);
        m_server->setBody(path, "<html><body>dans le panneau</body></html>", "text/html");
        QVERIFY(showsLink(m_server->url(path)));
        QSignalSpy accepted(m_pane.get(), &BrowserPane::feedLinkAccepted);
        clickLink();
        QVERIFY(showsText(u"dans le panneau"_s)); // the answer No lets the navigation go on
        QCOMPARE(m_messages.shown.size(), std::size_t(asks ? 1 : 0));
        QVERIFY(accepted.isEmpty());
        if (!asks)
            return;
        const Message &question = m_messages.shown.front();
        QCOMPARE(question.text, u"Le fichier semble être un fichier RSS, voulez-vous tenter de l'ouvrir ?"_s);
        QCOMPARE(question.title, u"Information"_s);
        QCOMPARE(question.icon, Message::Icon::Information);
        QCOMPARE(question.buttons, Message::Buttons::YesNo);
    }

    void yesToAFeedHandsItOutAlsoFromAFrameAndFromTheProgramItself()
    {
        m_messages.answer = Messages::Answer::Yes;
        QVERIFY(showsLink(m_server->url(u"/a.rss"_s)));
        QSignalSpy accepted(m_pane.get(), &BrowserPane::feedLinkAccepted);
        clickLink();
        QVERIFY(eventually([&] { return accepted.size() == 1; }));
        QCOMPARE(accepted.last().first().toString(), m_server->url(u"/a.rss"_s));
        QCOMPARE(m_server->hits(u"/a.rss"_s), 0);
        QCOMPARE(text(), u"lien"_s);
        m_server->setBody(u"/frames.html"_s, "<html><body>cadre<iframe src='/in.rss'></iframe></body></html>",
                          "text/html");
        m_pane->Navigate(m_server->url(u"/frames.html"_s));
        QVERIFY(eventually([&] { return accepted.size() == 2; }));
        m_pane->Navigate(m_server->url(u"/out.xml"_s));
        QVERIFY(eventually([&] { return accepted.size() == 3; }));
    }

    void anAddressOfAFeedAsksWhateverItsScheme_data()
    {
        QTest::addColumn<QString>("target");
        QTest::addColumn<QByteArray>("attributes");
        QTest::addColumn<bool>("isHandedOut"); // to the system, after No
        const auto row = [](const QByteArray &target, bool isHandedOut, const QByteArray &attributes = {}) {
            QTest::newRow(QByteArray(target + attributes).constData())
                << QString::fromLatin1(target) << attributes << isHandedOut;
        };
        row("feed:http://h/a", false);
        row("feed://h/a.rss", false);
        row("feed:h/a", false, "target=_blank");
        row("ftp://h/a.xml", true);
        row("news:a.rdf", true);
        row("itpc://h/a.xml", false);
    }

    void anAddressOfAFeedAsksWhateverItsScheme()
    {
        QFETCH(QString, target);
        QFETCH(QByteArray, attributes);
        QFETCH(bool, isHandedOut);
        QSignalSpy accepted(m_pane.get(), &BrowserPane::feedLinkAccepted);
        QSignalSpy system(m_pane.get(), &BrowserPane::systemLinkActivated);
        m_server->setBody(u"/link.html"_s, linkPage(target.toUtf8(), attributes), "text/html");
        for (const auto answer : {Messages::Answer::No, Messages::Answer::Yes}) {
            m_messages.answer = answer;
            QVERIFY(goAndWait(m_server->url(u"/link.html"_s)));
            QVERIFY(showsText(u"lien"_s));
            const std::size_t before = m_messages.shown.size();
            clickLink();
            QVERIFY(eventually([&] { return m_messages.shown.size() > before; }));
            letPass(100);
            QCOMPARE(m_messages.shown.size(), before + 1);
            QVERIFY(m_messages.shown.back().text.startsWith(u"Le fichier semble être un fichier RSS"_s));
            const bool yes = answer == Messages::Answer::Yes;
            QCOMPARE(accepted.size(), yes ? 1 : 0);
            QCOMPARE(system.size(), isHandedOut ? 1 : 0);
        }
        QCOMPARE(accepted.last().first().toString(), target);
        m_pane->Navigate(target); // by the program itself
        QVERIFY(eventually([&] { return accepted.size() == 2; }));
        QCOMPARE(text(), u"lien"_s);
    }

    void theProgramMayNavigateWhileAQuestionIsOnShow()
    {
        // As the delay timer, an update or a second start of the program do behind a modal box.
        m_data.write(u"home.htm"_s, "<html><body>pendant</body></html>");
        m_server->setBody(u"/a.xml"_s, "<html><body>feuille</body></html>", "text/html");
        QVERIFY(showsLink(m_server->url(u"/a.xml"_s)));
        m_messages.onShow = [this](const Message &) {
            m_pane->Navigate(m_data.file(u"home.htm"_s));
            m_pane->GoBack();
            m_pane->Refresh();
            letPass(200);
        };
        clickLink();
        QVERIFY(showsText(u"pendant"_s));
        QCOMPARE(m_messages.shown.size(), std::size_t(1));
    }

    void thePageMayLeaveOrDieWhileItsQuestionIsOnShow()
    {
        m_server->setBody(u"/else.html"_s, "<html><body>ailleurs</body></html>", "text/html");
        m_server->setBody(u"/a.xml"_s, "<html><body>feuille</body></html>", "text/html");
        m_server->setBody(u"/restless.html"_s,
                          linkPage("/a.xml", "onclick=\"setTimeout(() => location = '/else.html', 50)\""), "text/html");
        QVERIFY(goAndWait(m_server->url(u"/restless.html"_s)));
        QVERIFY(showsText(u"lien"_s));
        m_messages.onShow = [](const Message &) { letPass(300); };
        clickLink();
        QVERIFY(eventually([this] { return m_server->hits(u"/a.xml"_s) + m_server->hits(u"/else.html"_s) > 0; }));

        QVERIFY(goAndWait(m_server->url(u"/restless.html"_s)));
        QVERIFY(showsText(u"lien"_s));
        m_messages.onShow = [this](const Message &) {
            killRenderer();
            letPass(300);
        };
        clickLink();
        QVERIFY(eventually([this] { return m_messages.shown.size() == 2; }));
        letPass(300);
        QVERIFY(goAndWait(m_data.file(u"home.htm"_s)));
        QVERIFY(showsText(u"Départ"_s));
    }

    void thePaneMayEndWhileAQuestionIsOnShow_data()
    {
        QTest::addColumn<QString>("target");
        QTest::newRow("page") << u"http://127.0.0.1:9/a.xml"_s;
        QTest::newRow("another program's") << u"news:a.xml"_s;
        QTest::newRow("feed") << u"feed:a.xml"_s;
    }

    void thePaneMayEndWhileAQuestionIsOnShow()
    {
        QFETCH(QString, target);
        QVERIFY(showsLink(target));
        m_messages.onShow = [this](const Message &) { m_pane.reset(); };
        clickLink();
        QVERIFY(eventually([this] { return !m_pane; }));
        letPass(100);
    }

    void aPopUpOpensOnlyWhenTheUserAllowsIt_data()
    {
        QTest::addColumn<bool>("allowed");
        QTest::addColumn<bool>("answers");
        QTest::newRow("no") << false << true;
        QTest::newRow("yes") << true << true;
        QTest::newRow("yes, to a server that never answers") << true << false;
    }

    void aPopUpOpensOnlyWhenTheUserAllowsIt()
    {
        QFETCH(bool, allowed);
        QFETCH(bool, answers);
        m_messages.answer = allowed ? Messages::Answer::Yes : Messages::Answer::No;
        m_server->setAnswer(u"/popup.html"_s, {.body = "<html><head><title>fenetre</title></head></html>",
                                               .headers = {{"Content-Type", "text/html"}},
                                               .silent = !answers});
        m_server->setBody(u"/opener.html"_s, linkPage("/popup.html", "target=_blank"), "text/html");
        const auto windows = [this] {
            QStringList titles;
            const QWidgetList all = QApplication::topLevelWidgets();
            for (const QWidget *widget : all)
                if (widget != m_pane.get() && qobject_cast<const QWebEngineView *>(widget))
                    titles += widget->windowTitle();
            return titles;
        };
        QVERIFY(goAndWait(m_server->url(u"/opener.html"_s)));
        QVERIFY(showsText(u"lien"_s));
        clickLink();
        QVERIFY(eventually([&] { return m_messages.shown.size() == std::size_t(1); }));
        QCOMPARE(m_messages.shown.front().text,
                 u"Le navigateur essaie d'ouvrir un pop-up, voulez-vous l'autoriser ?"_s);
        if (allowed) {
            const QString name = answers ? u"fenetre"_s : m_server->url(u"/popup.html"_s);
            QVERIFY(eventually([&] { return windows() == QStringList{name}; }));
        } else {
            QVERIFY(windows().isEmpty());
        }
        QCOMPARE(text(), u"lien"_s);
        m_pane.reset();
        QVERIFY(windows().isEmpty());
    }

    void aPageThatOpensPopUpsWithoutEndAsksOnce()
    {
        m_server->setBody(u"/flood.html"_s,
                          "<html><body><script>for (let i = 0; i < 50; ++i) window.open('/p' + i);"
                          "setTimeout(() => { open('/p'); document.body.textContent = 'fin' }, 1200)</script></body>"
                          "</html>",
                          "text/html");
        QVERIFY(goAndWait(m_server->url(u"/flood.html"_s)));
        QVERIFY(showsText(u"fin"_s));
        QCOMPARE(m_messages.shown.size(), std::size_t(1));
    }
};

QTEST_MAIN(TestPaneQuestions)
#include "tst_PaneQuestions.moc"
