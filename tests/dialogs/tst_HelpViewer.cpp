// SPDX-License-Identifier: GPL-3.0-or-later

#include "dialogs/CHelp.h"
#include "dialogs/HelpBrowser.h"
#include "dialogs/HelpViewer.h"
#include "platform/Files.h"
#include "platform/Literals.h"
#include "tests/dialogs/DialogDump.h"
#include "tests/fixtures/Golden.h"

#include <QAction>
#include <QDialog>
#include <QDir>
#include <QFileInfo>
#include <QHelpContentWidget>
#include <QHelpIndexWidget>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QScreen>
#include <QSplitter>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QWindow>

namespace {

/// Keeps what was asked of it, as text.
class FakeSystem final : public HelpSystem
{
public:
    void htmlHelp(const QString &path, HelpCommand command, const HelpData &argument) override
    {
        QString data = u"nothing"_s;
        if (const auto *const number = std::get_if<qint32>(&argument))
            data = QString::number(*number);
        if (const auto *const query = std::get_if<HelpQuery>(&argument))
            data = u"%1 %2 %3 %4 %5 %6 %7 [%8]"_s.arg(query->size)
                       .arg(query->unicode)
                       .arg(query->text)
                       .arg(query->proximity)
                       .arg(query->stemmedSearch)
                       .arg(query->titlesOnly)
                       .arg(query->execute)
                       .arg(query->window);
        asked += u"[%1] %2 %3"_s.arg(path, QString::number(int(command)), data);
    }

    QStringList asked;
};

} // namespace

class HelpViewerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_external.clear();
        make({m_folder->filePath(u"none/Quillwire.qch"_s), QString::fromUtf8(HELP_FILE)});
    }

    void cleanup() { m_viewer.reset(); }

    void requestsReachTheHelpSystemInItsForm()
    {
        FakeSystem system;
        CHelp help(system);
        help.Show(u" a.chm "_s, QString());
        help.Show(u" a.chm "_s, u" W1 "_s, 7);
        help.Show(u"a.chm"_s, u" "_s);
        help.ShowIndex(u"a.chm"_s, u"W1"_s);
        help.ShowSearch(u"a.chm"_s, u"W1"_s);
        QCOMPARE(system.asked, QStringList({u"[ a.chm ] 1 nothing"_s, u"[a.chm>W1] 15 7"_s, u"[a.chm>] 1 nothing"_s,
                                            u"[a.chm>W1] 2 0"_s, u"[a.chm>W1] 3 32 0 TEST 0 0 0 1 []"_s}));
    }

    void everyTopicHasItsPage()
    {
        CHelp help(*m_viewer);
        QStringList pages;
        for (int topic = 0; topic <= 27; ++topic) { // the first and the last are none
            help.Show(asked(), QString(), topic);
            pages += page().section(u'.', 0, 0);
        }
        QCOMPARE(pages.join(u' '),
                 u"index index premiers-pas fenetre menus barres arbre liste page adresse mises-a-jour "
                 "avis notification import export recherche proprietes options mail authentification "
                 "a-propos messages clavier echanges fichiers demarrage formats index"_s);
    }

    void theWindowIsAsInTheTable()
    {
        CHelp(*m_viewer).Show(asked(), u"W1"_s);
        QCOMPARE(page(), u"index.html"_s);
        QCOMPARE(find<QTabWidget>("tabs")->currentIndex(), 0);
        QTRY_VERIFY(find<QHelpContentWidget>("contents")->model()->rowCount() > 0);
        QCOMPARE(differenceFromGolden(u"help.txt"_s, DialogDump::told(*m_viewer)), QString());
        const auto *splitter = m_viewer->findChild<QSplitter *>();
        QVERIFY(splitter->sizes()[0] < splitter->sizes()[1] && !splitter->childrenCollapsible());
        const QSize room = m_viewer->screen()->availableSize();
        QVERIFY(m_viewer->width() > room.width() / 2 && m_viewer->height() > room.height() / 2);
    }

    void theContentsLeadToPages()
    {
        CHelp(*m_viewer).Show(asked(), QString(), 19);
        auto *const contents = find<QHelpContentWidget>("contents");
        QTRY_VERIFY(contents->model()->rowCount() > 0);
        const QModelIndex book = contents->model()->index(0, 0);
        QVERIFY(contents->isExpanded(book));
        QTest::mouseClick(contents->viewport(), Qt::LeftButton, {}, contents->visualRect(book).center());
        QCOMPARE(page(), u"index.html"_s);
        QVERIFY(contents->hasFocus());
        Q_EMIT contents->linkActivated(QUrl(u"qthelp://none/a.html"_s));
        QCOMPARE(page(), u"a.html"_s);
    }

    void theIndexLeadsToPages()
    {
        CHelp(*m_viewer).ShowIndex(asked(), QString());
        QCOMPARE(find<QTabWidget>("tabs")->currentIndex(), 1);
        QTRY_VERIFY(find<QHelpIndexWidget>("index")->model()->rowCount() > 0);
        find<QLineEdit>("filter")->setText(u"séparateurs"_s);
        QTest::keyClick(find<QLineEdit>("filter"), Qt::Key_Return);
        QTRY_COMPARE(page(), u"fenetre.html"_s);
    }

    void theSearchFindsPagesByTheirText()
    {
        CHelp(*m_viewer).ShowSearch(asked(), QString());
        auto *const results = find<QListWidget>("results");
        auto *const query = find<QLineEdit>("query");
        const auto state = [this] { return find<QLabel>("state")->text(); };
        const auto settled = [&] { return state() != u"Recherche en cours..."_s; };
        QCOMPARE(find<QTabWidget>("tabs")->currentIndex(), 2);
        QCOMPARE(query->text(), u"TEST"_s);
        QVERIFY(!settled()); // the text of the pages is indexed first
        QTRY_VERIFY_WITH_TIMEOUT(settled(), 20000);
        QCOMPARE(state(), u"Aucune page trouvée"_s);
        query->setText(u" authentification "_s);
        find<QPushButton>("search")->click();
        QVERIFY(!settled());
        QTRY_VERIFY(settled());
        QCOMPARE(state(), u"Pages trouvées : "_s + QString::number(results->count()));
        QVERIFY(results->count() > 0 && !results->item(0)->text().isEmpty());
        for (const bool byClick : {true, false}) {
            find<HelpBrowser>("page")->setSource(QUrl());
            byClick ? Q_EMIT results->itemClicked(results->item(0)) : Q_EMIT results->itemActivated(results->item(0));
            QVERIFY(find<HelpBrowser>("page")->toPlainText().contains(u"authentification"_s, Qt::CaseInsensitive));
        }
        query->setText(u" "_s);
        QTest::keyClick(query, Qt::Key_Return);
        QCOMPARE(results->count(), 0);
    }

    void linksAreFollowedBackAndForwardAndHandedOverWhenTheyLeadOut()
    {
        CHelp(*m_viewer).Show(asked(), QString(), 2);
        Q_EMIT find<HelpBrowser>("page")->anchorClicked(QUrl(u"index.html"_s));
        QCOMPARE(page(), u"index.html"_s);
        find<QAction>("back")->trigger();
        QCOMPARE(page(), u"premiers-pas.html"_s);
        find<QAction>("forward")->trigger();
        QCOMPARE(page(), u"index.html"_s);
        Q_EMIT find<HelpBrowser>("page")->anchorClicked(QUrl(u"http://example.org/"_s));
        QCOMPARE(m_external, QStringList{u"http://example.org/"_s});
        QCOMPARE(page(), u"index.html"_s);
    }

    void itCanBeReadWhileDialogsAreOpen()
    {
        const auto isUsable = [this] {
            CHelp(*m_viewer).Show(asked(), QString(), 2);
            m_viewer->activateWindow();
            QTest::keyClick(m_viewer->windowHandle(), Qt::Key_Home, Qt::AltModifier);
            return page() == u"index.html"_s;
        };
        QDialog dialog;
        dialog.setModal(true);
        dialog.show();
        QVERIFY(isUsable()); // asked for from within the dialog
        {
            QDialog box(&dialog);
            box.setModal(true);
            box.show();
            QVERIFY(isUsable());
        }
        QVERIFY(isUsable());
        dialog.close();
        QVERIFY(isUsable());
        dialog.show();
        QVERIFY(isUsable()); // open already
    }

    void aMissingOrBrokenFileIsTold_data()
    {
        QTest::addColumn<QByteArray>("bytes"); // none: no such file
        QTest::newRow("absent") << QByteArray();
        QTest::newRow("no help file") << QByteArray(5000, 'x');
    }

    void aMissingOrBrokenFileIsTold()
    {
        QFETCH(QByteArray, bytes);
        const QString file = m_folder->filePath(u"Quillwire.qch"_s);
        if (!bytes.isEmpty())
            Files::write(file, bytes);
        make({file});
        CHelp(*m_viewer).Show(asked(), u"W1"_s);
        QVERIFY(m_viewer->isVisible());
        QCOMPARE(find<HelpBrowser>("page")->toPlainText(),
                 u"Le fichier d'aide /data/Quillwire.chm est introuvable ou illisible."_s);
    }

    void theCollectionLiesInTheCacheAndIsMadeAnewWhenDamaged()
    {
        const QString collection = m_folder->filePath(u"cache/Quillwire.qhc"_s);
        const QDir beside(QFileInfo(QString::fromUtf8(HELP_FILE)).path());
        const QStringList before = beside.entryList(QDir::AllEntries | QDir::Hidden);
        CHelp(*m_viewer).Show(asked(), QString());
        QVERIFY(Files::exists(collection));
        QCOMPARE(beside.entryList(QDir::AllEntries | QDir::Hidden), before);
        m_viewer.reset();
        Files::write(collection, "damaged");
        make({QString::fromUtf8(HELP_FILE)});
        CHelp(*m_viewer).Show(asked(), QString());
        QCOMPARE(page(), u"index.html"_s);
        QVERIFY(Files::read(collection).bytes.startsWith("SQLite"));
    }

private:
    template <class Widget>
    Widget *find(const char *name) const
    {
        return m_viewer->findChild<Widget *>(QString::fromLatin1(name));
    }
    void make(const QStringList &candidates)
    {
        m_viewer.reset();
        m_viewer = std::make_unique<HelpViewer>(candidates, m_folder->filePath(u"cache"_s),
                                                [this](const QString &url) { m_external.append(url); });
    }

    QString page() const { return find<HelpBrowser>("page")->source().fileName(); }
    QString asked() const { return u"/data/Quillwire.chm"_s; }

    std::unique_ptr<QTemporaryDir> m_folder;
    QStringList m_external;
    std::unique_ptr<HelpViewer> m_viewer;
};

QTEST_MAIN(HelpViewerTest)
#include "tst_HelpViewer.moc"
