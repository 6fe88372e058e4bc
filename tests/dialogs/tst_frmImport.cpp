// SPDX-License-Identifier: GPL-3.0-or-later

#include "dialogs/frmImport.h"
#include "engine/feed/CachedFeed.h"
#include "exchange/ImportRun.h"
#include "exchange/OpmlDownload.h"
#include "platform/Literals.h"
#include "tests/fixtures/FakeDownloader.h"
#include "tests/fixtures/FakeMessages.h"
#include "tests/fixtures/FeedTexts.h"
#include "tests/fixtures/TemporaryDataDirectory.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>
#include <QTreeWidget>

namespace {

QByteArray opml(const QByteArray &body)
{
    return "<opml version=\"1.1\"><head><title>Liste</title></head><body>" + body + "</body></opml>";
}

QByteArray outlines(int count)
{
    QByteArray body;
    for (int i = 0; i < count; ++i)
        body += "<outline text=\"Flux " + QByteArray::number(i) + "\" xmlUrl=\"http://h/" + QByteArray::number(i) +
                "\" description=\"D" + QByteArray::number(i) + "\"/>";
    return body;
}

} // namespace

class ImportTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_form.reset();
        m_messages = std::make_unique<FakeMessages>();
        m_downloaders.clear();
        m_added.clear();
        m_passes = 0;
        m_onPass = [this](int) { m_downloaders[1]->answer(); };
        const auto downloader = [this] {
            auto made = std::make_unique<FakeDownloader>();
            m_downloaders.push_back(made.get());
            return made;
        };
        m_download = std::make_unique<OpmlDownload>(downloader(), m_data.file(u"tmp.opml"_s));
        m_run = std::make_unique<ImportRun>(
            downloader(), m_data.file(u"tmp.xml"_s), [this](int) { m_onPass(++m_passes); },
            [this](const std::shared_ptr<CachedFeed> &document, const QString &) { m_added += document->Title(); });
        m_form = std::make_unique<frmImport>(&m_window, *m_messages, *m_download, *m_run, [] { return QString(); });
        m_form->show();
    }

    void cleanup() { m_form.reset(); }

    void aFileThatDoesNotLoadIsNamedAndThePageStays()
    {
        const QString path = m_data.file(u"in.opml"_s);
        open("Bonjour");
        QCOMPARE(m_messages->shown.size(), 1U);
        QCOMPARE(m_messages->shown[0].text, u"Le fichier %1 est incorrect"_s.arg(path));
        QCOMPARE(m_messages->shown[0].title, u"Avertissement"_s);
        QCOMPARE(m_messages->shown[0].icon, Message::Icon::Exclamation);
        QVERIFY(shown("fraWizard_1"));
    }

    void whatIsNoListIsToldAndTheListBeforeItStays_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("a feed") << FeedTexts::rss(u"Un flux"_s, {u"a"_s});
        QTest::newRow("a list without a title") << "<opml><head/><body>"_ba + outlines(1) + "</body></opml>";
        QTest::newRow("a feed without a name") << opml("<outline title=\"A\" xmlUrl=\"http://h/a\"/>");
        QTest::newRow("a list without a body") << "<opml><head><title/></head></opml>"_ba;
    }

    void whatIsNoListIsToldAndTheListBeforeItStays()
    {
        QFETCH(QByteArray, bytes);
        open(opml(outlines(2)));
        press("cmdPrecedent");
        m_data.write(u"in.opml"_s, bytes);
        press("cmdSuivant");
        QVERIFY(shown("fraWizard_1") && shown("cmdSuivant"));
        press("cmdPrecedent");
        press("cmdPrecedent");
        find<QRadioButton>("optSource_1")->setChecked(true);
        press("cmdSuivant");
        press("cmdSuivant");
        m_downloaders[0]->finish(200, bytes);
        QVERIFY(shown("fraWizard_2") && shown("cmdSuivant"));
        QCOMPARE(m_messages->shown.size(), 2U);
        for (const Message &message : m_messages->shown) {
            QVERIFY(message.text.contains(u"OPML"_s));
            QCOMPARE(message.title, u"Avertissement"_s);
            QCOMPARE(message.icon, Message::Icon::Exclamation);
        }
        QCOMPARE(list()->topLevelItemCount(), 2);
    }

    void pagesAreWalkedForwardAndBack()
    {
        QVERIFY(shown("fraWizard_0") && !find<QPushButton>("cmdPrecedent")->isEnabled());
        open(opml(outlines(1)));
        QVERIFY(shown("fraWizard_3") && shown("cmdTerminer") && !shown("cmdSuivant"));
        press("cmdPrecedent");
        QVERIFY(shown("fraWizard_1") && shown("cmdSuivant") && !shown("cmdTerminer"));
        press("cmdPrecedent");
        find<QRadioButton>("optSource_1")->setChecked(true);
        press("cmdSuivant");
        QVERIFY(shown("fraWizard_2"));
        QCOMPARE(find<QLineEdit>("txtURL")->text(), u"http://"_s);
        QCOMPARE(list()->topLevelItemCount(), 1); // kept until a new load
    }

    void webFailuresAreTold_data()
    {
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("title");
        QTest::newRow("no list") << 200 << QString() << u"Avertissement"_s;
        QTest::newRow("absent") << 404 << u"Le fichier n'a pas été trouvé sur le serveur"_s << u"Erreur 404"_s;
        QTest::newRow("unknown host") << 3 << u"3"_s << QString();
        QTest::newRow("server's trouble") << 500 << u"500"_s << QString();
    }

    void webFailuresAreTold()
    {
        QFETCH(int, status);
        QFETCH(QString, text);
        QFETCH(QString, title);
        find<QRadioButton>("optSource_1")->setChecked(true);
        press("cmdSuivant");
        press("cmdSuivant");
        m_downloaders[0]->finish(status, "no XML");
        if (status == 200) // the temporary file is named, not the address
            text = u"Le fichier %1 est incorrect"_s.arg(m_data.file(u"tmp.opml"_s));
        QCOMPARE(m_messages->shown.size(), 1U);
        QCOMPARE(m_messages->shown[0].text, text);
        QCOMPARE(m_messages->shown[0].title, title);
        QCOMPARE(m_messages->shown[0].icon, title.isEmpty() ? Message::Icon::None : Message::Icon::Exclamation);
        QVERIFY(shown("fraWizard_2"));
        // The step back after an attempt only forgets it; the next one leaves the page.
        press("cmdPrecedent");
        QVERIFY(shown("fraWizard_2"));
        press("cmdPrecedent");
        QVERIFY(shown("fraWizard_0"));
    }

    void aSecondPressStartsTheDownloadAgainWithoutAWord()
    {
        find<QRadioButton>("optSource_1")->setChecked(true);
        press("cmdSuivant");
        press("cmdSuivant");
        press("cmdSuivant");
        QCOMPARE(m_downloaders[0]->requests.size(), 2U);
        Q_EMIT m_downloaders[0]->DownloadComplete(Downloader::Cancelled);
        QVERIFY(m_messages->shown.empty());
        QVERIFY(shown("fraWizard_2"));
    }

    void theDescriptionOfTheNodeIsFoundAcrossGapsByMouseAndArrows()
    {
        open(opml("<outline text=\"A\" xmlUrl=\"http://h/a\" description=\"of A\"/><outline text=\"folder\"/>"
                  "<outline text=\"B\" xmlUrl=\"http://h/b\" description=\"of B\"/>"
                  "<outline text=\"C\" xmlUrl=\"http://h/c\"/>"));
        QTreeWidgetItem *const third = list()->topLevelItem(2);
        QTest::mouseClick(list()->viewport(), Qt::LeftButton, {}, list()->visualItemRect(third).center());
        QCOMPARE(description(), u"/"_s);
        QTest::keyClick(list(), Qt::Key_Up);
        QCOMPARE(description(), u"of B"_s);
        QCOMPARE(list()->currentItem(), list()->topLevelItem(1));
    }

    void checksAreCounted()
    {
        open(opml(outlines(4)));
        QCheckBox *const all = find<QCheckBox>("chkCkeckAll");
        all->setChecked(true);
        tick(0); // ticked already: no change
        list()->topLevelItem(0)->setCheckState(0, Qt::Unchecked);
        QVERIFY(all->isChecked()); // not kept in step
        const QPoint name = list()->visualItemRect(list()->topLevelItem(1)).center();
        QTest::mouseClick(list()->viewport(), Qt::LeftButton, {}, name);
        QTest::mouseDClick(list()->viewport(), Qt::LeftButton, {}, name);
        QCOMPARE(list()->topLevelItem(1)->checkState(0), Qt::Unchecked);
        QCOMPARE(list()->currentItem(), list()->topLevelItem(1));
        list()->setFocus();
        QTest::keyClick(list(), Qt::Key_Space);
        QCOMPARE(list()->topLevelItem(1)->checkState(0), Qt::Checked);
        QCOMPARE(progressAfterRun(), 33); // three are ticked
        QCOMPARE(m_downloaders[1]->requests.size(), 3U);
    }

    void loadingAnewZeroesTheCountButLeavesTheBox()
    {
        open(opml(outlines(5)));
        find<QCheckBox>("chkCkeckAll")->setChecked(true);
        press("cmdPrecedent");
        m_form->handleNext();
        QVERIFY(find<QCheckBox>("chkCkeckAll")->isChecked());
        QCOMPARE(list()->topLevelItem(0)->checkState(0), Qt::Unchecked);
        tick(1);
        tick(2);
        QCOMPARE(progressAfterRun(), 50);
    }

    void theRunShowsWhatItFetchesAndCloses()
    {
        find<QRadioButton>("optSource_1")->setChecked(true);
        press("cmdSuivant");
        press("cmdSuivant");
        m_downloaders[0]->finish(200, opml(outlines(3)));
        tick(0);
        tick(2);
        m_downloaders[1]->pages[u"http://h/2"_s] = FeedTexts::rss(u"Two"_s, {});
        QStringList labels;
        m_onPass = [&](int) {
            QVERIFY(shown("fraImportation") && shown("cmdCanceller"));
            QVERIFY(!shown("cmdTerminer") && !shown("cmdAnnuler") && !shown("cmdPrecedent"));
            labels.append(find<QLabel>("lblTitre")->text());
            m_downloaders[1]->answer();
        };
        press("cmdTerminer");
        QCOMPARE(labels.join(u'|'), u"Téléchargement de Flux 0|Téléchargement de Flux 2"_s);
        QCOMPARE(m_added, QStringList{u"Two"_s});
        QVERIFY(m_messages->shown.empty()); // failures are silent
        QCOMPARE(find<QProgressBar>("vbalProgressBar1")->value(), 100);
        QCOMPARE(m_form->result(), int(QDialog::Accepted));
        QVERIFY(!m_form->isVisible());
    }

    void cancellingTheRunCloses()
    {
        open(opml(outlines(3)));
        find<QCheckBox>("chkCkeckAll")->setChecked(true);
        m_onPass = [&](int) { press("cmdCanceller"); };
        press("cmdTerminer");
        QCOMPARE(m_downloaders[1]->requests.size(), 1U);
        QVERIFY(!m_downloaders[1]->isRunning());
        QCOMPARE(m_form->result(), int(QDialog::Rejected));
        QVERIFY(!m_form->isVisible());
    }

    void theWizardIsLeftOnlyThroughItsButtons()
    {
        m_form->close();
        QVERIFY(m_form->isVisible());
        open(opml(outlines(1)));
        tick(0);
        m_onPass = [&](int) {
            QTest::keyClick(m_form.get(), Qt::Key_Escape);
            QVERIFY(m_form->isVisible()); // "Annuler" is hidden during the run
            // The key that pressed "Terminer" may be held a moment too long.
            for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space})
                QTest::keyClick(m_form->focusWidget(), key);
            QVERIFY(m_form->isVisible() && m_downloaders[1]->isRunning());
            m_downloaders[1]->answer();
        };
        press("cmdTerminer");
        QCOMPARE(m_passes, 1);
        QCOMPARE(m_form->result(), int(QDialog::Accepted));

        init();
        QTest::keyClick(m_form.get(), Qt::Key_Escape);
        QVERIFY(!m_form->isVisible());
    }

private:
    template <class Widget>
    Widget *find(const char *name) const
    {
        Widget *const widget = m_form->findChild<Widget *>(QString::fromLatin1(name));
        Q_ASSERT(widget);
        return widget;
    }
    void press(const char *name) const { find<QPushButton>(name)->click(); }
    bool shown(const char *name) const { return find<QWidget>(name)->isVisibleTo(m_form.get()); }
    QTreeWidget *list() const { return find<QTreeWidget>("tvwListeFlux"); }
    void tick(int row) const { list()->topLevelItem(row)->setCheckState(0, Qt::Checked); }
    QString description() const { return find<QPlainTextEdit>("txtDescription")->toPlainText(); }
    /// Goes to the list page with that document as file.
    void open(const QByteArray &bytes)
    {
        m_data.write(u"in.opml"_s, bytes);
        press("cmdSuivant");
        find<QLineEdit>("txtOPMLPath")->setText(m_data.file(u"in.opml"_s));
        m_form->handleNext();
    }

    /// Runs the import of the ticked feeds and returns what the bar shows after the first one: it tells the count of
    /// ticks.
    int progressAfterRun()
    {
        int first = -1;
        m_onPass = [&](int pass) {
            if (pass == 2)
                first = find<QProgressBar>("vbalProgressBar1")->value();
            m_downloaders[1]->answer();
        };
        press("cmdTerminer");
        return first;
    }

    TemporaryDataDirectory m_data;
    QWidget m_window;
    std::unique_ptr<FakeMessages> m_messages;
    std::vector<FakeDownloader *> m_downloaders; ///< of the list, of the feeds
    QStringList m_added;                         ///< the titles
    std::unique_ptr<OpmlDownload> m_download;
    std::unique_ptr<ImportRun> m_run;
    std::function<void(int pass)> m_onPass;
    int m_passes = 0;
    std::unique_ptr<frmImport> m_form;
};

QTEST_MAIN(ImportTest)
#include "tst_frmImport.moc"
