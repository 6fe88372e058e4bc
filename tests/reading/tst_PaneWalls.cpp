// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/Literals.h"
#include "tests/reading/PaneFixture.h"

#include <QApplication>
#include <QFile>
#include <QWebEngineSettings>

/// What neither a feed's markup nor a page of the web gets past: files of the user, resources of the program, the
/// switch of the scripts, the look of our pages.
class TestPaneWalls : public QObject, public PaneFixture
{
    Q_OBJECT

    bool scriptsAreOn() const { return view()->settings()->testAttribute(QWebEngineSettings::JavascriptEnabled); }

    static int windows()
    {
        int count = 0;
        const QWidgetList all = QApplication::topLevelWidgets();
        for (const QWidget *widget : all)
            count += qobject_cast<const QWebEngineView *>(widget) ? 1 : 0;
        return count;
    }

    /// Chooses `action` in the context menu of the link.
    bool chooses(QWebEnginePage::WebAction action) const
    {
        waitForPaint();
        view()->setContextMenuPolicy(Qt::CustomContextMenu);
        QSignalSpy opened(view(), &QWidget::customContextMenuRequested);
        QTest::mouseClick(view()->focusProxy(), Qt::RightButton, {}, QPoint(20, 20));
        if (!eventually([&opened] { return !opened.isEmpty(); }))
            return false;
        view()->page()->triggerAction(action);
        return true;
    }

private Q_SLOTS:
    void init() { setUp(); }
    void cleanup() { m_server.reset(); }
    void cleanupTestCase() { m_pane.reset(); }

    void noCommandOfTheContextMenuLeadsToWhatIsLocal_data()
    {
        QTest::addColumn<QString>("target");
        QTest::addColumn<bool>("onTheWeb"); ///< rather than in an item
        QTest::newRow("file") << u"file:///etc/hostname"_s << false;
        QTest::newRow("resource") << u"qrc:/qt-project.org/styles/commonstyle/images/left-32.png"_s << false;
        QTest::newRow("our own page") << u"quillwire://pages/home.htm"_s << true;
        QTest::newRow("resource, on the web") << u"qrc:/qt-project.org/styles/commonstyle/images/left-32.png"_s << true;
        QTest::newRow("engine") << u"chrome://version"_s << false;
        QTest::newRow("source") << u"view-source:file:///etc/hostname"_s << false;
    }

    void noCommandOfTheContextMenuLeadsToWhatIsLocal()
    {
        QFETCH(QString, target);
        QFETCH(bool, onTheWeb);
        m_server->setBody(u"/web.html"_s, linkPage(target.toUtf8()), "text/html");
        writePage(linkPage(target.toUtf8()));
        QVERIFY(goAndWait(onTheWeb ? m_server->url(u"/web.html"_s) : page()) && showsText(u"lien"_s));
        const QString address = m_pane->LocationURL();
        m_messages.answer = Messages::Answer::Yes;
        m_pane->downloadPath = m_data.file(u"taken"_s);
        for (const auto action : {QWebEnginePage::OpenLinkInNewWindow, QWebEnginePage::OpenLinkInNewTab,
                                  QWebEnginePage::DownloadLinkToDisk})
            QVERIFY(chooses(action));
        letPass(150);
        QCOMPARE(windows(), 0);
        QVERIFY(!QFile::exists(m_pane->downloadPath));
        QCOMPARE(text(), u"lien"_s);
        QCOMPARE(m_pane->LocationURL(), address);
        QVERIFY(m_messages.shown.empty());
    }

    void theContextMenuOpensAndSavesWhatIsOnTheWeb()
    {
        m_server->setBody(u"/web.html"_s, "<html><body>page</body></html>", "text/html");
        QVERIFY(showsLink(m_server->url(u"/web.html"_s)));
        m_messages.answer = Messages::Answer::Yes;
        m_pane->downloadPath = m_data.file(u"taken"_s);
        QVERIFY(chooses(QWebEnginePage::DownloadLinkToDisk));
        QVERIFY(eventually([this] { return m_data.read(u"taken"_s).contains("page"); }));
        QVERIFY(chooses(QWebEnginePage::OpenLinkInNewWindow));
        QVERIFY(eventually([this] { return m_server->hits(u"/web.html"_s) == 2; }));
        QCOMPARE(windows(), 1);
        m_pane.reset();
    }

    void scriptsFollowWhatIsOnShow_data()
    {
        QTest::addColumn<QString>("target");
        QTest::addColumn<bool>("fromAFile"); ///< rather than from an item
        QTest::addColumn<bool>("busy");      ///< the page with the link still waits for a picture
        for (const bool fromAFile : {false, true}) {
            const char *from = fromAFile ? "file" : "item";
            QTest::addRow("%s, download", from) << u"/file.bin"_s << fromAFile << false;
            QTest::addRow("%s, download, busy", from) << u"/file.bin"_s << fromAFile << true;
            QTest::addRow("%s, nothing", from) << u"/nothing"_s << fromAFile << false;
            QTest::addRow("%s, stopped", from) << u"/silent"_s << fromAFile << false;
            QTest::addRow("%s, stopped, busy", from) << u"/silent"_s << fromAFile << true;
            QTest::addRow("%s, page", from) << u"/web.html"_s << fromAFile << false;
            QTest::addRow("%s, page, busy", from) << u"/web.html"_s << fromAFile << true;
        }
    }

    void scriptsFollowWhatIsOnShow()
    {
        QFETCH(QString, target);
        QFETCH(bool, fromAFile);
        QFETCH(bool, busy);
        m_server->setAnswer(u"/file.bin"_s, {.body = "octets", .headers = {{"Content-Type", "application/zip"}}});
        m_server->setAnswer(u"/nothing"_s, {.status = 204, .body = {}, .headers = {}});
        m_server->setAnswer(u"/picture"_s, {.body = {}, .headers = {}, .silent = true});
        m_server->setAnswer(u"/silent"_s, {.body = {}, .headers = {}, .silent = true});
        m_server->setBody(u"/web.html"_s,
                          "<html><body>sans<script>document.body.textContent='avec'</script></body></html>",
                          "text/html");
        QByteArray markup = linkPage(m_server->url(target).toUtf8());
        if (busy)
            markup += "<img src='" + m_server->url(u"/picture"_s).toUtf8() + "'>";
        const QString from = m_data.file(fromAFile ? u"local.html"_s : u"tmp.htm"_s);
        m_data.write(fromAFile ? u"local.html"_s : u"tmp.htm"_s, markup);
        m_pane->Navigate(from);
        QVERIFY(eventually([&] { return m_pane->LocationURL() == QUrl::fromLocalFile(from).toString(); }));
        QVERIFY(showsText(u"lien"_s));
        const int before = m_server->hits(target);
        clickLink();
        QVERIFY(eventually([&] { return m_server->hits(target) > before; }));
        if (target == u"/web.html"_s) {
            QVERIFY(showsText(u"avec"_s));
            QVERIFY(scriptsAreOn());
            return;
        }
        letPass(100);
        if (target == u"/silent"_s) {
            QVERIFY(!fromAFile || !scriptsAreOn());
            m_pane->Stop();
        }
        QVERIFY(eventually([this] { return !scriptsAreOn(); }));
        QCOMPARE(m_pane->LocationURL(), QUrl::fromLocalFile(from).toString());
    }

    void aPageOfTheWebKeepsItsScriptsWhenTheProgramGoesNowhere()
    {
        m_server->setAnswer(u"/nothing"_s, {.status = 204, .body = {}, .headers = {}});
        m_server->setBody(u"/web.html"_s, "<html><body>page</body></html>", "text/html");
        QVERIFY(goAndWait(m_server->url(u"/web.html"_s)));
        QVERIFY(goAndWait(m_server->url(u"/nothing"_s)));
        QVERIFY(scriptsAreOn());
    }

    void aFeedBringsNoStyleOfItsOwn_data()
    {
        QTest::addColumn<QByteArray>("markup");
        QTest::newRow("attribute") << "<div id=x style='position:fixed;inset:0'>mot de passe</div>"_ba;
        QTest::newRow("element") << "<style>#x{position:fixed}</style><div id=x>mot de passe</div>"_ba;
        QTest::newRow("element of a picture")
            << "<svg><style>#x{position:fixed}</style></svg><div id=x>mot de passe</div>"_ba;
        QTest::newRow("sheet in an address")
            << "<link rel=stylesheet href='data:text/css,%23x{position:fixed}'><div id=x></div>"_ba;
        QTest::newRow("the page as its own sheet")
            << "<link rel=stylesheet href=tmp.htm><p>{} #x{position:fixed} {}</p><div id=x></div>"_ba;
        QTest::newRow("dialog") << "<dialog open id=x>mot de passe</dialog>"_ba;
        QTest::newRow("drawing that spills over")
            << "<svg id=x width=1 height=1 overflow=visible><foreignObject y=-99 width=999 height=999>"
               "mot de passe</foreignObject></svg>"_ba;
    }

    void aFeedBringsNoStyleOfItsOwn()
    {
        QFETCH(QByteArray, markup);
        QFile sheet(QString::fromUtf8(SAMPLES_DIR "/../resources/data/style.css"));
        QVERIFY(sheet.open(QIODevice::ReadOnly));
        m_data.write(u"style.css"_s, sheet.readAll());
        writePage("<html><head><link rel=\"stylesheet\" href=\"style.css\" type=\"text/css\" /></head><body><div "
                  "id=\"frame\"><p id=\"content\">" +
                  markup + "</p></div></body></html>");
        QVERIFY(goAndWait(page()));
        const QString style = u"getComputedStyle(document.getElementById('x'))"_s;
        QCOMPARE(evaluate(style + u".position"_s), u"static"_s);
        QVERIFY(!markup.contains("<svg id") || evaluate(style + u".overflow"_s) == u"hidden"_s);
    }
};

QTEST_MAIN(TestPaneWalls)
#include "tst_PaneWalls.moc"
