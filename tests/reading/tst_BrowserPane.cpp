#include "reading/BrowserPane.h"
#include "tests/fixtures/FakeMessages.h"
#include "tests/fixtures/LocalHttpServer.h"
#include "tests/fixtures/TemporaryDataDirectory.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QMouseEvent>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <QWebEngineScript>
#include <QWebEngineView>

#include <csignal>

using namespace Qt::StringLiterals;

namespace {

constexpr int patience = 15000; ///< milliseconds; a page takes a few dozen

/// What stands in every test page: a big link in the upper left corner, where the tests click.
QByteArray linkPage(const QByteArray &target, const QByteArray &attributes = {})
{
    return "<html><body style='margin:0'><a href=\"" + target + "\" " + attributes +
           "><div style='width:300px;height:200px'>lien</div></a></body></html>";
}

QByteArray wideBytes(const QString &text)
{
    QByteArray bytes;
    for (const QChar c : text)
        bytes.append(static_cast<char>(c.unicode() & 0xFF)).append(static_cast<char>(c.unicode() >> 8));
    return bytes;
}

/// Waits in a real event loop: the engine works by many small events, each of which a polling wait would hold up.
template <typename Condition>
bool eventually(Condition condition)
{
    QEventLoop loop;
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, &loop, [&] {
        if (condition())
            loop.quit();
    });
    look.start(10);
    QTimer::singleShot(patience, &loop, &QEventLoop::quit);
    loop.exec();
    return condition();
}

void letPass(int milliseconds)
{
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

} // namespace

class TestBrowserPane : public QObject
{
    Q_OBJECT

    /// A pane whose download question is answered by the test.
    class Pane final : public BrowserPane
    {
    public:
        using BrowserPane::BrowserPane;
        QString downloadPath;

    protected:
        QString askDownloadPath(const QString &) override { return downloadPath; }
    };

    TemporaryDataDirectory m_data;
    FakeMessages m_messages;
    std::unique_ptr<LocalHttpServer> m_server;
    std::unique_ptr<Pane> m_pane; ///< one for all tests but those that say so: the engine's start is slow

    void makePane()
    {
        m_pane = std::make_unique<Pane>(m_data.directory(), m_messages);
        m_pane->resize(600, 400);
        m_pane->show();
    }

    QWebEngineView *view() const { return m_pane->findChild<QWebEngineView *>(); }

    /// The page's visible text.
    QString text() const
    {
        QString result;
        bool done = false;
        view()->page()->toPlainText([&](const QString &plain) {
            result = plain;
            done = true;
        });
        return eventually([&done] { return done; }) ? result : u"no answer"_s;
    }

    bool goAndWait(const QString &address)
    {
        QSignalSpy finished(m_pane.get(), &BrowserPane::DocumentComplete);
        m_pane->Navigate(address);
        return eventually([&finished] { return !finished.isEmpty(); });
    }

    /// Shows a page with a link to `target`.
    bool showsLink(const QString &target)
    {
        writePage(linkPage(target.toUtf8()));
        return goAndWait(page()) && showsText(u"lien"_s);
    }

    bool showsText(const QString &part) const
    {
        QElapsedTimer waited;
        for (waited.start(); waited.elapsed() < patience; letPass(10))
            if (text().contains(part))
                return true;
        return false;
    }

    void clickLink() const
    {
        QWidget *target = view()->focusProxy();
        QTest::mouseMove(target, QPoint(20, 20));
        QTest::mouseClick(target, Qt::LeftButton, {}, QPoint(20, 20));
    }

    void killRenderer() const { ::kill(static_cast<pid_t>(view()->page()->renderProcessPid()), SIGKILL); }

    void writePage(const QByteArray &body) const { m_data.write(u"tmp.htm"_s, body); }
    QString page() const { return m_data.file(u"tmp.htm"_s); }
    QString fileAddress(const QString &name) const { return QUrl::fromLocalFile(m_data.file(name)).toString(); }

private Q_SLOTS:
    void init()
    {
        m_server = std::make_unique<LocalHttpServer>();
        m_messages.shown.clear();
        m_messages.answer = Messages::Answer::No;
        m_messages.onShow = nullptr;
        m_data.write(u"home.htm"_s, "<!DOCTYPE html><html><body><p>Départ</p></body></html>");
        m_data.write(u"style.css"_s, "p {}");
        m_data.write(u"slien.gif"_s, "GIF89a");
        if (!m_pane)
            makePane();
    }

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
        m_data.write(u"feed page.html"_s, "<html><body><p id=t>sans</p><script>document.getElementById('t')"
                                          ".textContent='avec script'</script></body></html>");
        QVERIFY(goAndWait(m_data.file(u"feed page.html"_s)));
        QCOMPARE(text(), u"sans"_s);
    }

    void onlyAddressesThatAPageCanHaveAreNavigatedTo()
    {
        QVERIFY(goAndWait(m_data.file(u"home.htm"_s)));
        QSignalSpy begun(m_pane.get(), &BrowserPane::DownloadBegin);
        QSignalSpy system(m_pane.get(), &BrowserPane::systemLinkActivated);
        for (const char *refused : {"", " ", "javascript:document.body.textContent='script'", "data:text/html,texte",
                                    "chrome://version", "quillwire://pages/params.xml"})
            m_pane->Navigate(QLatin1String(refused));
        m_pane->Navigate(u"mailto:someone@example.org"_s);
        letPass(200);
        QVERIFY(begun.isEmpty());
        QCOMPARE(system.size(), 1);
        QCOMPARE(text(), u"Départ"_s);
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

    void markupOfAFeedRunsNoScriptAndReachesNoFile()
    {
        m_data.write(u"params.xml"_s, "<p>secret</p>");
        const QByteArray hit = m_server->url(u"/"_s).toUtf8();
        m_server->setBody(u"/pixel.svg"_s, "<svg xmlns='http://www.w3.org/2000/svg' width='33' height='33'/>",
                          "image/svg+xml");
        QByteArray markup = R"(<html><head><base href='HIT'></head><body><p id=t>texte</p>
            <script>document.title='script'; new Image().src='HITscript'</script><script src='HIToutside.js'></script>
            <img src='quillwire://pages/nothing.gif' onerror="new Image().src='HITonerror'">
            <svg onload="new Image().src='HITonload'"></svg>
            <iframe src="javascript:new Image().src='HITjsframe'"></iframe>
            <iframe srcdoc="<script>new Image().src='HITsrcdoc'</script>"></iframe>
            <iframe src='FILE'></iframe><object data='FILE'></object><embed src='FILE'>
            <link rel=stylesheet href='FILE'><iframe src='quillwire://pages/../params.xml'></iframe>
            <meta http-equiv=refresh content="0;url=HITrefreshed"><img src='HITpixel.svg'></body></html>)";
        markup.replace("HIT", hit).replace("FILE", fileAddress(u"params.xml"_s).toUtf8());
        writePage(markup);
        QVERIFY(goAndWait(page()));
        QVERIFY(eventually([&] { return m_server->hits(u"/pixel.svg"_s) == 1; })); // pictures of the web are shown
        letPass(500);
        QCOMPARE(m_server->totalHits(), 1);
        QVERIFY(view()->title() != u"script"_s);
        QCOMPARE(m_pane->LocationURL(), fileAddress(u"tmp.htm"_s));
        QVERIFY(!text().contains(u"secret"_s));
    }

    void aLinkToAFileIsDeadOnPagesOfFeedsAndOfTheWeb_data()
    {
        QTest::addColumn<QString>("target");
        QTest::newRow("file") << u"file:///etc/hostname"_s;
        QTest::newRow("script") << u"javascript:document.body.textContent='script'"_s;
        QTest::newRow("data") << u"data:text/html,script"_s;
        QTest::newRow("relative address without a base") << u"/article.html"_s;
        QTest::newRow("another file of the folder") << u"params.xml"_s;
        QTest::newRow("way out of the folder") << u"quillwire://pages/feeds/../../etc/passwd"_s;
        QTest::newRow("unknown program") << u"steam://run/1"_s;
    }

    void aLinkToAFileIsDeadOnPagesOfFeedsAndOfTheWeb()
    {
        QFETCH(QString, target);
        QSignalSpy system(m_pane.get(), &BrowserPane::systemLinkActivated);
        m_data.write(u"params.xml"_s, "script");
        QVERIFY(showsLink(target));
        clickLink();
        letPass(250);
        QCOMPARE(text(), u"lien"_s);
        QCOMPARE(m_pane->LocationURL(), fileAddress(u"tmp.htm"_s));
        QVERIFY(system.isEmpty());
        QVERIFY(m_messages.shown.empty());
    }

    void aPageOfTheWebRunsItsScriptsButReachesNoPageOfTheFolder()
    {
        writePage("<html><body>article</body></html>");
        m_server->setBody(u"/web.html"_s,
                          "<html><body><p id=t>sans</p><script>document.getElementById('t').textContent='avec script';"
                          "</script><iframe src='quillwire://pages/tmp.htm'></iframe>"
                          "<img src='quillwire://pages/slien.gif' onload=\"document.title='image'\">"
                          "<script src='quillwire://pages/style.css'></script></body></html>",
                          "text/html");
        m_server->setAnswer(u"/moved"_s, LocalHttpServer::Answer::redirect(u"/web.html"_s));
        QVERIFY(showsLink(m_server->url(u"/moved"_s)));
        clickLink();
        QVERIFY(showsText(u"avec script"_s));
        QCOMPARE(m_pane->LocationURL(), m_server->url(u"/web.html"_s));
        letPass(200);
        QVERIFY(view()->title() != u"image"_s);
        QVERIFY(!text().contains(u"lien"_s));
    }

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

    void thePaneMayEndWhileAQuestionIsOnShow()
    {
        QVERIFY(showsLink(m_server->url(u"/a.xml"_s)));
        m_messages.onShow = [this](const Message &) { m_pane.reset(); };
        clickLink();
        QVERIFY(eventually([this] { return !m_pane; }));
        letPass(100);
    }

    void aPopUpOpensOnlyWhenTheUserAllowsIt_data()
    {
        QTest::addColumn<bool>("allowed");
        QTest::newRow("no") << false;
        QTest::newRow("yes") << true;
    }

    void aPopUpOpensOnlyWhenTheUserAllowsIt()
    {
        QFETCH(bool, allowed);
        m_messages.answer = allowed ? Messages::Answer::Yes : Messages::Answer::No;
        m_server->setBody(u"/popup.html"_s, "<html><head><title>fenetre</title></head></html>", "text/html");
        m_server->setBody(u"/opener.html"_s, linkPage("/popup.html", "target=_blank"), "text/html");
        const auto windows = [this] {
            int count = 0;
            const QWidgetList all = QApplication::topLevelWidgets();
            for (const QWidget *widget : all)
                count += widget != m_pane.get() && qobject_cast<const QWebEngineView *>(widget) ? 1 : 0;
            return count;
        };
        QVERIFY(goAndWait(m_server->url(u"/opener.html"_s)));
        QVERIFY(showsText(u"lien"_s));
        clickLink();
        QVERIFY(eventually([&] { return m_messages.shown.size() == std::size_t(1); }));
        QCOMPARE(m_messages.shown.front().text,
                 u"Le navigateur essaie d'ouvrir un pop-up, voulez-vous l'autoriser ?"_s);
        if (allowed)
            QVERIFY(eventually([&] { return m_server->hits(u"/popup.html"_s) == 1; }));
        QCOMPARE(windows(), allowed ? 1 : 0);
        QCOMPARE(text(), u"lien"_s);
        m_pane.reset();
        QCOMPARE(windows(), 0);
    }

    void aPageThatOpensPopUpsWithoutEndAsksOnce()
    {
        m_server->setBody(u"/flood.html"_s,
                          "<html><body><script>for (let i = 0; i < 50; ++i) window.open('/p' + i);</script>fin"
                          "</body></html>",
                          "text/html");
        QVERIFY(goAndWait(m_server->url(u"/flood.html"_s)));
        QVERIFY(showsText(u"fin"_s));
        QCOMPARE(m_messages.shown.size(), std::size_t(1));
    }

    void aDownloadGoesWhereTheUserSaysOrNowhere()
    {
        m_server->setAnswer(u"/file.bin"_s, {.body = "octets", .headers = {{"Content-Type", "application/zip"}}});
        m_pane->Navigate(m_server->url(u"/file.bin"_s));
        QVERIFY(eventually([&] { return m_server->hits(u"/file.bin"_s) == 1; }));
        letPass(200);
        m_pane->downloadPath = m_data.file(u"recu.bin"_s);
        QSignalSpy status(m_pane.get(), &BrowserPane::StatusTextChange);
        m_pane->Navigate(m_server->url(u"/file.bin"_s));
        QVERIFY(status.wait(patience));
        QCOMPARE(status.first().first().toString(), u"Téléchargement terminé : recu.bin"_s);
        QCOMPARE(m_data.read(u"recu.bin"_s), "octets"_ba);
    }

    void aServerThatRefusesOrAPageWhoseProcessDiesStopsNothing()
    {
        const QString address = m_server->url(u"/nothing"_s);
        m_server->close();
        QVERIFY(goAndWait(address));
        QVERIFY(goAndWait(m_data.file(u"home.htm"_s)));
        QCOMPARE(text(), u"Départ"_s);
        QSignalSpy finished(m_pane.get(), &BrowserPane::DocumentComplete);
        killRenderer();
        QVERIFY(finished.wait(patience));
        QVERIFY(showsText(u"Départ"_s));
    }

    void aRenderedPageWearsTheStyleSheetOfTheDataDirectory()
    {
        m_data.write(u"style.css"_s, "p { color: rgb(1, 2, 3); }");
        m_data.write(u"tmp.htm"_s, "<html><head><link rel=\"stylesheet\" href=\"style.css\" type=\"text/css\" /></head>"
                                   "<body><p>texte</p></body></html>");
        QVERIFY(goAndWait(page()));
        QString colour;
        view()->page()->runJavaScript(u"getComputedStyle(document.querySelector('p')).color"_s,
                                      QWebEngineScript::ApplicationWorld,
                                      [&colour](const QVariant &value) { colour = value.toString(); });
        QVERIFY(eventually([&colour] { return !colour.isEmpty(); }));
        QCOMPARE(colour, u"rgb(1, 2, 3)"_s);
    }
};

int main(int argc, char *argv[])
{
    qputenv("QTWEBENGINE_CHROMIUM_FLAGS", "--disable-gpu");
    QApplication app(argc, argv);
    TestBrowserPane test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_BrowserPane.moc"
