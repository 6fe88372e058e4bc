// SPDX-License-Identifier: GPL-3.0-or-later

#include "dialogs/frmImport.h"
#include "dialogs/frmProprietes.h"
#include "platform/Literals.h"
#include "tests/fixtures/Eventually.h"
#include "tests/fixtures/FakeDownloader.h"
#include "tests/fixtures/FeedTexts.h"
#include "tests/window/PrincFixture.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>
#include <QTreeWidget>

/// Ways through the dialogs of the real window, from the menu to what is left behind.
class tst_DialogJourneys : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<PrincFixture> m_fixture;

    /// Chooses the menu's entry, whose modal dialog `steps` goes through to its end.
    template <class Dialog>
    void walk(const QString &entry, const std::function<void(Dialog &dialog)> &steps) const
    {
        bool walked = false;
        QTimer::singleShot(0, m_fixture->window.get(), [&] {
            auto *dialog = qobject_cast<Dialog *>(QApplication::activeModalWidget());
            QVERIFY(dialog);
            steps(*dialog);
            walked = !dialog->isVisible();
        });
        m_fixture->choose(entry);
        QVERIFY(walked);
    }

    static void press(const QDialog &dialog, const char *name)
    {
        dialog.findChild<QPushButton *>(QString::fromLatin1(name))->click();
    }
    static QLineEdit *box(const QDialog &dialog, const char *name)
    {
        return dialog.findChild<QLineEdit *>(QString::fromLatin1(name));
    }
    QString statusText() const
    {
        return m_fixture->control<QWidget>("stabPrinc")->findChild<QLabel *>(u"state"_s)->text();
    }

public:
    static void initMain() { qputenv("QTWEBENGINE_CHROMIUM_FLAGS", "--disable-gpu"); }

private Q_SLOTS:
    void init() { m_fixture = std::make_unique<PrincFixture>(); }
    void cleanup() { m_fixture.reset(); }

    void aPeriodThatIsNoNumberNeverReachesTheCatalogue()
    {
        m_fixture->writeCatalogue("<favoris><feed name=\"F\" url=\"http://h/\" key=\"1\" ttl=\"45\"/></favoris>");
        m_fixture->data.write(u"feeds/1.xml"_s, FeedTexts::rss(u"F"_s, {u"a"_s}));
        m_fixture->start();
        m_fixture->click(m_fixture->node("1"));
        walk<frmProprietes>(u"Propriétés"_s, [](frmProprietes &dialog) {
            box(dialog, "txtMaj")->setText(u"quatre"_s);
            press(dialog, "cmdAppliquer");
            QCOMPARE(box(dialog, "txtMaj")->text(), u"45"_s);
            press(dialog, "cmdFermer");
        });
        m_fixture->program->end();
        QVERIFY(m_fixture->data.read(u"feeds.xml"_s).contains("ttl=\"45\""));
    }

    void anImportTellsWhatItRefusesAndWhatCameOfIt()
    {
        m_fixture->makeDownloader = [] {
            auto downloader = std::make_unique<FakeDownloader>();
            downloader->pages[u"http://h/a"_s] = FeedTexts::rss(u"A"_s, {u"a"_s});
            downloader->pages[u"http://h/b"_s] = "<html/>";
            auto *answers = new QTimer(downloader.get());
            connect(answers, &QTimer::timeout, downloader.get(), &FakeDownloader::answer);
            answers->start(1);
            return downloader;
        };
        m_fixture->data.write(u"untitled.opml"_s,
                              "<opml><head/><body><outline text=\"A\" xmlUrl=\"http://h/a\"/></body>"
                              "</opml>");
        m_fixture->data.write(u"list.opml"_s,
                              "<opml><head><title/></head><body><outline text=\"A\" xmlUrl=\"http://h/a\"/>"
                              "<outline text=\"B\" xmlUrl=\"http://h/b\"/>"
                              "<outline text=\"C\" xmlUrl=\"http://h/c\"/></body></opml>");
        m_fixture->start();
        walk<frmImport>(u"&Importer des flux RSS..."_s, [this](frmImport &dialog) {
            press(dialog, "cmdSuivant");
            for (const QString &name : {u"untitled.opml"_s, u"list.opml"_s}) {
                box(dialog, "txtOPMLPath")->setText(m_fixture->data.file(name));
                press(dialog, "cmdSuivant");
            }
            QCOMPARE(m_fixture->messages.shown.size(), 1U);
            dialog.findChild<QCheckBox *>(u"chkCkeckAll"_s)->setChecked(true);
            press(dialog, "cmdTerminer");
        });
        QCOMPARE(statusText(), u"Importation terminée\u00a0: 1 flux ajouté, 1 sans réponse, 1 illisible"_s);
        QCOMPARE(m_fixture->feedTree().root()->children().size(), std::size_t(1));
        QCOMPARE(m_fixture->messages.shown.size(), 1U);
    }

    void anOpmlFileOfTheCommandLineOpensTheImportAtItsFeeds()
    {
        m_fixture->data.write(u"A b.OPML"_s, "<opml><head><title/></head><body><outline text=\"A\" "
                                             "xmlUrl=\"http://h/a\"/></body></opml>");
        QStringList seen;
        QTimer look;
        connect(&look, &QTimer::timeout, &look, [&] {
            const auto *dialog = qobject_cast<frmImport *>(QApplication::activeModalWidget());
            const auto *feeds = dialog ? dialog->findChild<QTreeWidget *>() : nullptr;
            if (!feeds || feeds->topLevelItemCount() == 0)
                return;
            look.stop();
            m_fixture->window->openCommandLine(u"\"/other.opml\""_s); // no second wizard over the first
            QCoreApplication::processEvents();
            seen = {feeds->isVisible() ? feeds->topLevelItem(0)->text(0) : QString(), statusText().right(11)};
            while (const auto *open = qobject_cast<QDialog *>(QApplication::activeModalWidget()))
                press(*open, "cmdAnnuler");
        });
        look.start(1);
        m_fixture->start(u'"' + m_fixture->data.file(u"A b.OPML"_s) + u'"');
        QTRY_COMPARE(seen, (QStringList{u"A"_s, u"/other.opml"_s}));
        QVERIFY(!QApplication::activeModalWidget());
        QVERIFY(m_fixture->messages.shown.empty());
        QCOMPARE(m_fixture->control<AddressBox>("txtURL")->text(), u"http://"_s);
    }

    void aFeedLinkOfAPageComesBackToTheAddressBox()
    {
        FakeDownloader *dwlFeed = nullptr;
        m_fixture->makeDownloader = [&dwlFeed] {
            auto downloader = std::make_unique<FakeDownloader>();
            dwlFeed = dwlFeed ? dwlFeed : downloader.get();
            return downloader;
        };
        m_fixture->start();
        m_fixture->messages.answer = Messages::Answer::Yes;
        m_fixture->data.write(u"tmp.htm"_s, "<html><body topmargin=0 leftmargin=0><a href=\"feed://h/fil\"><table "
                                            "width=300 height=200><tr><td>lien</table></a></body></html>");
        auto *pane = m_fixture->control<BrowserPane>("WebBrowser1");
        QSignalSpy complete(pane, &BrowserPane::DocumentComplete);
        pane->show();
        pane->Navigate(m_fixture->data.file(u"tmp.htm"_s));
        QVERIFY(eventually([&] { return !complete.isEmpty(); }));
        // The engine throws input away before the page is painted.
        QVERIFY(eventually([&] {
            QTest::mouseClick(pane->focusProxy()->focusProxy(), Qt::LeftButton, {}, QPoint(20, 20));
            return !dwlFeed->requests.empty();
        }));
        QCOMPARE(dwlFeed->requests.size(), 1U);
        QCOMPARE(dwlFeed->requests[0].url, u"http://h/fil"_s);
        QCOMPARE(m_fixture->control<AddressBox>("txtURL")->text(), u"feed://h/fil"_s);
        QVERIFY(m_fixture->messages.shown.at(0).text.startsWith(u"Le fichier semble être un fichier RSS"_s));
        dwlFeed->finish(200, FeedTexts::rss(u"F"_s, {u"a"_s}));
        QCOMPARE(m_fixture->buttons(), u"0001"_s);
    }
};

QTEST_MAIN(tst_DialogJourneys)
#include "tst_DialogJourneys.moc"
