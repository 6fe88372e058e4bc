// SPDX-License-Identifier: GPL-3.0-or-later

#include "dialogs/CHelp.h"
#include "dialogs/HelpBrowser.h"
#include "dialogs/HelpViewer.h"
#include "platform/Files.h"
#include "platform/Literals.h"

#include <QAction>
#include <QDialog>
#include <QDir>
#include <QFileInfo>
#include <QHelpContentWidget>
#include <QHelpIndexWidget>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QWindow>

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

    void contentsOpenOnTheStartPageAndTopicsByTheirNumber()
    {
        CHelp help(*m_viewer);
        help.Show(asked(), QString(), 2);
        QCOMPARE(page(), u"premiers-pas.html"_s);
        help.Show(asked(), QString(), 32000); // a number that no page bears
        QCOMPARE(page(), u"index.html"_s);
        help.Show(asked(), u"W1"_s);
        QCOMPARE(page(), u"index.html"_s);
        QCOMPARE(find<QTabWidget>("tabs")->currentIndex(), 0);
        QTRY_VERIFY(find<QHelpContentWidget>("contents")->model()->rowCount() > 0);
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
        QCOMPARE(find<QTabWidget>("tabs")->currentIndex(), 2);
        QCOMPARE(find<QLineEdit>("query")->text(), u"TEST"_s);
        find<QLineEdit>("query")->setText(u"authentification"_s);
        find<QPushButton>("search")->click();
        auto *const results = find<QListWidget>("results");
        QTRY_VERIFY_WITH_TIMEOUT(results->count() > 0, 20000);
        Q_EMIT results->itemActivated(results->item(0));
        QVERIFY(find<HelpBrowser>("page")->toPlainText().contains(u"authentification"_s, Qt::CaseInsensitive));
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
