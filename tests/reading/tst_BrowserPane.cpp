// SPDX-License-Identifier: GPL-3.0-or-later

#include "controls/FrenchTexts.h"
#include "platform/Literals.h"
#include "tests/reading/PaneFixture.h"

#include <QApplication>
#include <QWebEngineScript>

/// What the pane shows, where it goes, and what a page can reach.
class TestBrowserPane : public QObject, public PaneFixture
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { FrenchTexts::install(*qApp); }
    void init() { setUp(); }
    void cleanup() { m_server.reset(); }
    void cleanupTestCase() { m_pane.reset(); }

    void aRenderedPageReadsInTheAnsiCodePageWithoutItsZeroBytes()
    {
        writePage("<html><body><h1>" + wideBytes(u"<b id=x>Été</b>"_s) + "</h1><p>œuvre \x80</p></body></html>"_ba);
        QVERIFY(goAndWait(page()));
        QVERIFY(text().startsWith(u"Été"_s)); // the markup of the text acts as markup
        QVERIFY(text().endsWith(u"€"_s));
        QCOMPARE(m_pane->LocationURL(), fileAddress(u"tmp.htm"_s));
    }

    void aLocalFileThatTheProgramOpensIsShownWithoutItsScripts()
    {
        const QString name = u"un été à 50 % [a|b] ^{c} #1.html"_s; // as the engine writes it otherwise than we do
        m_data.write(name, "<html><body><p id=t>sans</p><script>document.getElementById('t')"
                           ".textContent='avec script'</script></body></html>");
        QVERIFY(goAndWait(m_data.file(name)));
        QCOMPARE(text(), u"sans"_s);
    }

    void backAndForwardFollowTheBrowsersOwnList()
    {
        makePane();
        QSignalSpy commands(m_pane.get(), &BrowserPane::CommandStateChange);
        const QList<QVariant> backOn = {2, true};
        const QList<QVariant> forwardOn = {1, true};
        writePage("<html><body>article</body></html>");
        QVERIFY(goAndWait(m_data.file(u"home.htm"_s)));
        QVERIFY(!commands.contains(backOn));
        QVERIFY(goAndWait(page()));
        QVERIFY(eventually([&] { return commands.contains(backOn); }));
        m_pane->GoBack();
        QVERIFY(showsText(u"Départ"_s));
        QVERIFY(eventually([&] { return commands.contains(forwardOn); }));
        writePage("<html><body>autre article</body></html>"); // there is one file for all items
        m_pane->GoForward();
        QVERIFY(showsText(u"autre article"_s));
    }

    void aServerThatRefusesOrAPageWhoseProcessDiesStopsNothing()
    {
        const QString address = m_server->url(u"/nothing"_s);
        m_server->close();
        QVERIFY(goAndWait(address));
        QVERIFY(!text().isEmpty()); // the engine says what is the matter
        QVERIFY(goAndWait(m_data.file(u"home.htm"_s)));
        QCOMPARE(text(), u"Départ"_s);
        QSignalSpy finished(m_pane.get(), &BrowserPane::DocumentComplete);
        killRenderer();
        QVERIFY(finished.wait(patience));
        QVERIFY(showsText(u"Départ"_s));
    }

    void pagesAndTheEngineAreSpokenToInFrench()
    {
        m_server->setBody(u"/form.html"_s, "<html><body><input required></body></html>", "text/html");
        QVERIFY(goAndWait(m_server->url(u"/form.html"_s)));
        QVERIFY(m_server->lastRequest(u"/form.html"_s).head.contains("\nAccept-Language: fr-FR,fr;q=0.9"));
        QCOMPARE(evaluate(u"navigator.language"_s), u"fr-FR"_s);
        QVERIFY(evaluate(u"document.querySelector('input').validationMessage"_s).startsWith(u"Veuillez"_s));
        QStringList shown;
        for (int number = QWebEnginePage::Back; number <= QWebEnginePage::SavePage; ++number)
            shown += view()->page()->action(static_cast<QWebEnginePage::WebAction>(number))->text();
        for (const char *const english : {"Back", "Open link in this window", "Save media", "Loop", "Unselect"})
            QVERIFY2(!shown.contains(QString::fromLatin1(english)), english);
    }

    void ourPagesFollowThePaletteAndThoseOfTheWebDoNot()
    {
        m_data.write(u"style.css"_s, Files::read(QString::fromUtf8(SAMPLES_DIR "/../resources/data/style.css")).bytes);
        m_server->setBody(u"/web.html"_s, "<html><body>web</body></html>", "text/html");
        const auto colours = [this] {
            return evaluate(u"getComputedStyle(document.body).backgroundColor + getComputedStyle(document.body).color +"
                            "getComputedStyle(document.documentElement).colorScheme + scrollY"_s);
        };
        writePage("<html><head><link rel=\"stylesheet\" href=\"style.css\" type=\"text/css\" /></head><body>" +
                  QByteArray("<p>texte</p>").repeated(99) + "</body></html>");
        m_pane->setPalette(QPalette(Qt::black, Qt::lightGray, Qt::white, Qt::darkGray, Qt::gray, Qt::black, Qt::white));
        QVERIFY(goAndWait(page()));
        QCOMPARE(colours(), u"rgb(255, 255, 255)rgb(0, 0, 0)light0"_s);
        evaluate(u"scrollTo(0, 200)"_s);
        m_pane->setPalette(QPalette(Qt::white, Qt::darkGray, Qt::gray, Qt::black, Qt::gray, Qt::white, Qt::black));
        const QString dark = u"rgb(0, 0, 0)rgb(255, 255, 255)dark"_s;
        QVERIFY(eventually([&] { return colours() == dark + u"200"_s; }));
        QVERIFY(goAndWait(page())); // no sheet from before
        QCOMPARE(colours(), dark + u'0');
        QCOMPARE(view()->page()->backgroundColor(), QColor(Qt::black));
        QVERIFY(goAndWait(m_server->url(u"/web.html"_s)));
        QCOMPARE(view()->page()->backgroundColor(), QColor(Qt::white));
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

    void theSheetLeavesTheSizesThatAreWritten_data()
    {
        QTest::addColumn<QByteArray>("page");
        QTest::addColumn<QString>("size");
        QTest::newRow("the channel's picture")
            << "<div id=\"frame\">\r\n<table width=\"95%\" cellspacing=\"10\"><tr><td width=\"144px\" "
               "valign=\"top\"><a href=\"x\"><img src=\"PICTURE\" width=\"144\" height=\"400\" /></a></td>"
               "<td><h1>T</h1></td></tr></table></div>"_ba
            << u"144x400"_s;
        QTest::newRow("a picture of a feed, by its height")
            << "<div id=\"frame\"><h1>T</h1>\r\n<p id=\"content\"><img src=\"PICTURE\" height=\"50\"></p></div>"_ba
            << u"50x50"_s;
        QTest::newRow("a picture of a feed that is too wide")
            << "<div id=\"frame\"><h1>T</h1>\r\n<p id=\"content\"><img src=\"PICTURE\" width=\"2000\" "
               "height=\"2000\"></p></div>"_ba
            << u"panexpane"_s;
        QTest::newRow("a table of a feed")
            << "<div id=\"frame\"><h1>T</h1>\r\n<p id=\"content\"><p>a</p><table><tr><td><img src=\"PICTURE\" "
               "width=\"80\" height=\"80\"> trois mots de plus</td><td>b</td></tr></table></p></div>"_ba
            << u"80x80"_s;
    }

    void theSheetLeavesTheSizesThatAreWritten()
    {
        QFETCH(QByteArray, page);
        m_data.write(u"style.css"_s, Files::read(QString::fromUtf8(SAMPLES_DIR "/../resources/data/style.css")).bytes);
        m_server->setBody(u"/p.svg"_s, "<svg xmlns='http://www.w3.org/2000/svg' width='100' height='100'/>",
                          "image/svg+xml");
        writePage("<html><head><link rel=\"stylesheet\" href=\"style.css\" type=\"text/css\" /></head><body>" +
                  page.replace("PICTURE", m_server->url(u"/p.svg"_s).toUtf8()) + "</body></html>");
        QVERIFY(goAndWait(this->page()));
        QTEST(evaluate(u"var i = document.images[0]; [i.offsetWidth, i.offsetHeight].map("
                       "side => side > 400 && side < innerWidth ? 'pane' : side).join('x')"_s),
              "size");
        QVERIFY(evaluate(u"var c = document.querySelector('#content ~ table td, #content table td');"
                         "c ? c.offsetWidth : 200"_s)
                    .toInt() >= 200);
    }
};

QTEST_MAIN(TestBrowserPane)
#include "tst_BrowserPane.moc"
