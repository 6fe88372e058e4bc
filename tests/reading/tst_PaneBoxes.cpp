// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/Literals.h"
#include "tests/reading/PaneFixture.h"

#include <QApplication>
#include <QDialog>
#include <QLabel>

namespace {

constexpr int mostBoxes = 5;
constexpr int pressesMeantForABox = 550; ///< milliseconds after which a press in the page counts again

/// Closes the boxes that the engine shows for a page, and counts them.
class EngineBoxes final : public QObject
{
public:
    EngineBoxes()
    {
        connect(&m_look, &QTimer::timeout, this, [this] {
            if (auto *box = qobject_cast<QDialog *>(QApplication::activeModalWidget())) {
                ++closed;
                for (const QLabel *label : box->findChildren<QLabel *>())
                    if (!label->text().isEmpty())
                        texts += (label->textFormat() == Qt::PlainText ? u"plain "_s : u"markup "_s) + label->text();
                box->reject();
            }
        });
        m_look.start(5);
    }

    int closed = 0;
    QStringList texts;

private:
    QTimer m_look;
};

QByteArray refreshTo(const QByteArray &target)
{
    return "<html><meta http-equiv=refresh content='0;url=" + target + "'></html>";
}

} // namespace

/// Pages that never stop asking, and pages that don't let go.
class TestPaneBoxes : public QObject, public PaneFixture
{
    Q_OBJECT

    int boxes(const EngineBoxes &engine) const
    {
        return engine.closed + static_cast<int>(m_messages.shown.size()) + m_pane->downloadQuestions;
    }

    void serve(const QString &path, const QByteArray &page) const { m_server->setBody(path, page, "text/html"); }

private Q_SLOTS:
    void init() { setUp(); }
    void cleanup() { m_server.reset(); }
    void cleanupTestCase() { m_pane.reset(); }

    void theProgramLeavesAnyPage_data()
    {
        QTest::addColumn<QByteArray>("onclick");
        QTest::addColumn<QString>("command");
        const QByteArray many = "for (let i = 0; i < 8; ++i) alert(i)";
        QTest::newRow("to a page, without boxes before") << ""_ba << u"go"_s;
        QTest::newRow("to a page") << many << u"go"_s;
        QTest::newRow("back") << many << u"back"_s;
        QTest::newRow("refresh") << many << u"refresh"_s;
        QTest::newRow("from boxes without end") << "for (;;) alert(1)"_ba << u"go"_s;
    }

    void theProgramLeavesAnyPage()
    {
        QFETCH(QByteArray, onclick);
        QFETCH(QString, command);
        serve(u"/keep.html"_s, "<html><body onbeforeunload='return 1' onclick='" + onclick + "'>tenace</body></html>");
        EngineBoxes engine;
        QVERIFY(goAndWait(m_data.file(u"home.htm"_s)));
        QVERIFY(goAndWait(m_server->url(u"/keep.html"_s)));
        QVERIFY(showsText(u"tenace"_s));
        clickLink();
        letPass(100);
        const int before = boxes(engine);
        QVERIFY(before <= mostBoxes);
        if (command == u"refresh")
            m_pane->Refresh();
        else if (command == u"back")
            m_pane->GoBack();
        else
            m_pane->Navigate(m_data.file(u"home.htm"_s));
        QVERIFY(eventually([&] {
            return command == u"refresh" ? m_server->hits(u"/keep.html"_s) == 2
                                         : m_pane->LocationURL() == fileAddress(u"home.htm"_s);
        }));
        QCOMPARE(boxes(engine), before);
    }

    void aLinkOfThePageAsksBeforeItIsLeft()
    {
        serve(u"/next.html"_s, "<html><body>suite</body></html>");
        serve(u"/keep.html"_s, linkPage("/next.html").replace("<body", "<body onbeforeunload='return 1'"));
        EngineBoxes engine;
        QVERIFY(goAndWait(m_server->url(u"/keep.html"_s)));
        QVERIFY(showsText(u"lien"_s));
        clickLink();
        QVERIFY(eventually([this] { return m_messages.shown.size() == 1; }));
        QCOMPARE(m_messages.shown.front().text,
                 u"Cette page demande une confirmation avant d'être quittée. Voulez-vous la quitter ?"_s);
        letPass(pressesMeantForABox);
        QCOMPARE(text(), u"lien"_s);
        m_messages.answer = Messages::Answer::Yes;
        clickLink();
        QVERIFY(showsText(u"suite"_s));
        QCOMPARE(boxes(engine), 2);
    }

    void boxesWithoutAnActOfTheUserComeToAnEnd_data()
    {
        QTest::addColumn<QByteArray>("item"); ///< the page on show; its address ends the chain of /1, /2, ...
        QTest::addColumn<QByteArray>("step"); ///< what each of the chain answers; N stands for the next number
        QTest::addColumn<QString>("ending");
        QTest::addColumn<int>("most");
        const QByteArray frame = "<html><body><iframe src='HOST/1.rss'></iframe></body></html>";
        QTest::newRow("frame that leads itself to feed upon feed") << frame << refreshTo("/N.rss") << u".rss"_s << 5;
        QTest::newRow("frame that leads itself to one feed again and again")
            << frame << refreshTo("/1.rss") << u".rss"_s << 1;
        QTest::newRow("page that alerts and moves on")
            << refreshTo("HOST/1") << "<html><script>alert(1); location = '/N'</script></html>"_ba << QString() << 5;
        QTest::newRow("page that asks to be left and moves on")
            << refreshTo("HOST/1") << "<html><script>confirm(1); prompt(1); location = '/N'</script></html>"_ba
            << QString() << 5;
    }

    void boxesWithoutAnActOfTheUserComeToAnEnd()
    {
        QFETCH(QByteArray, item);
        QFETCH(QByteArray, step);
        QFETCH(QString, ending);
        QFETCH(int, most);
        constexpr int length = 12;
        for (int n = 1; n <= length; ++n)
            serve(u'/' + QString::number(n) + ending, QByteArray(step).replace("N", QByteArray::number(n + 1)));
        EngineBoxes engine;
        writePage(item.replace("HOST", m_server->url({}).toUtf8()));
        if (item.contains("refresh")) // a page of the folder isn't led away by one
            m_pane->Navigate(m_server->url(u"/1"_s));
        else
            m_pane->Navigate(page());
        QVERIFY(eventually([&] { return m_server->totalHits() >= length; }));
        letPass(50);
        QVERIFY2(boxes(engine) <= most, QByteArray::number(boxes(engine)));
        QVERIFY(boxes(engine) > 0);
    }

    void theBoxesOfAPageAreNamedAfterItAndShowPlainText()
    {
        serve(u"/three.html"_s,
              "<html><body><script>alert('<b>'); document.body.append(confirm('<b>'), prompt('<b>'), ' fin')"
              "</script></body></html>");
        EngineBoxes engine;
        QVERIFY(goAndWait(m_server->url(u"/three.html"_s)));
        QVERIFY(showsText(u"falsenull fin"_s));
        const QString place = QUrl(m_server->url({})).authority();
        QCOMPARE(engine.texts, QStringList(3, u"plain La page de "_s + place + u" dit\u00a0:\n\n<b>"_s));
    }

    void aPressInThePageRenewsWhatItMayAsk()
    {
        serve(u"/alerts.html"_s, "<html><body onclick='for (let i = 0; i < 9; ++i) alert(i)'>cliquez</body></html>");
        EngineBoxes engine;
        QVERIFY(goAndWait(m_server->url(u"/alerts.html"_s)));
        QVERIFY(showsText(u"cliquez"_s));
        clickLink();
        QVERIFY(eventually([&] { return engine.closed == mostBoxes; }));
        clickLink(); // so close to a box that it was meant for it
        letPass(pressesMeantForABox);
        QCOMPARE(engine.closed, mostBoxes);
        clickLink();
        QVERIFY(eventually([&] { return engine.closed == 2 * mostBoxes; }));
    }

    void aDownloadThatNoPressBeganIsRefused_data()
    {
        QTest::addColumn<QByteArray>("markup");
        QTest::newRow("frames") << "<iframe src='/1.bin'></iframe><iframe src='/2.bin'></iframe>"_ba;
        QTest::newRow("frame that comes to it by a refresh") << "<iframe src='/refresh.html'></iframe>"_ba;
        QTest::newRow("link that a script follows") << "<a id=a href='/1.bin'></a><script>a.click()</script>"_ba;
        QTest::newRow("link that a script saves") << "<a id=a href='/1.bin' download></a><script>a.click()</script>"_ba;
        QTest::newRow("text of the page's own")
            << "<a id=a href='data:application/zip,x' download></a><script>a.click(); fetch('/1.bin')</script>"_ba;
        QTest::newRow("script that goes there") << "<script>location = '/1.bin'</script>"_ba;
    }

    void aDownloadThatNoPressBeganIsRefused()
    {
        QFETCH(QByteArray, markup);
        m_server->setAnswer(u"/1.bin"_s, {.body = "octets", .headers = {{"Content-Type", "application/zip"}}});
        m_server->setAnswer(u"/2.bin"_s, {.body = "octets", .headers = {{"Content-Type", "application/zip"}}});
        serve(u"/refresh.html"_s, refreshTo("/1.bin"));
        serve(u"/greedy.html"_s, "<html><body>" + markup + "</body></html>");
        serve(u"/link.html"_s, linkPage("/greedy.html"));
        QVERIFY(goAndWait(m_server->url(u"/link.html"_s)));
        QVERIFY(showsText(u"lien"_s));
        clickLink(); // leads to the page; what that page does then is its own
        QVERIFY(eventually([this] { return m_server->hits(u"/1.bin"_s) > 0; }));
        letPass(100);
        QCOMPARE(m_pane->downloadQuestions, 0);
    }

    void aPressInOneItemStandsForNothingInTheNext()
    {
        m_server->setAnswer(u"/1.bin"_s, {.body = "octets", .headers = {{"Content-Type", "application/zip"}}});
        QVERIFY(showsLink({}));
        QTest::mouseClick(view()->focusProxy(), Qt::LeftButton, {}, QPoint(400, 300));
        writePage("<html><body><iframe src='" + m_server->url(u"/1.bin"_s).toUtf8() + "'></iframe></body></html>");
        m_pane->Navigate(page());
        QVERIFY(eventually([this] { return m_server->hits(u"/1.bin"_s) > 0; }));
        letPass(100);
        QCOMPARE(m_pane->downloadQuestions, 0);
    }

    void aRefusedDownloadIsAskedAgainOnlyAfterAnAct()
    {
        m_server->setAnswer(u"/file.bin"_s, {.body = "octets", .headers = {{"Content-Type", "application/zip"}}});
        serve(u"/link.html"_s, linkPage("/file.bin", "onclick=\"setInterval(() => location = '/file.bin', 60)\""));
        QVERIFY(goAndWait(m_server->url(u"/link.html"_s)));
        QVERIFY(showsText(u"lien"_s));
        clickLink();
        QVERIFY(eventually([this] { return m_server->hits(u"/file.bin"_s) > 4; }));
        QCOMPARE(m_pane->downloadQuestions, 1);
        letPass(pressesMeantForABox);
        clickLink();
        QVERIFY(eventually([this] { return m_pane->downloadQuestions == 2; }));
    }

    void aPageThatWantsAPasswordIsAskedForOnce_data()
    {
        QTest::addColumn<QByteArray>("challenge");
        QTest::addColumn<bool>("framed");
        QTest::newRow("basic") << "Basic realm=\"a\""_ba << false;
        QTest::newRow("digest") << "Digest realm=\"a\", nonce=\"b\""_ba << false;
        QTest::newRow("picture") << "Basic realm=\"a\""_ba << true;
    }

    void aPageThatWantsAPasswordIsAskedForOnce()
    {
        QFETCH(QByteArray, challenge);
        QFETCH(bool, framed);
        m_server->setAnswer(u"/guarded"_s, LocalHttpServer::Answer::unauthorized(challenge));
        serve(u"/pictures.html"_s, "<html><body><img src='/guarded'></body></html>");
        QVERIFY(goAndWait(m_server->url(framed ? u"/pictures.html"_s : u"/guarded"_s)));
        letPass(100);
        QCOMPARE(m_server->hits(u"/guarded"_s), 1);
        QVERIFY(m_messages.shown.empty());
    }
};

QTEST_MAIN(TestPaneBoxes)
#include "tst_PaneBoxes.moc"
