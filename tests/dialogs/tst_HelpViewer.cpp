#include "dialogs/CHelp.h"
#include "dialogs/HelpBrowser.h"
#include "dialogs/HelpViewer.h"
#include "platform/Files.h"

#include <QAction>
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

class HelpViewerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_external.clear();
        make({m_folder->filePath(QStringLiteral("none/Quillwire.qch")), QStringLiteral(HELP_FILE)});
    }

    void cleanup() { m_viewer.reset(); }

    void contentsOpenOnTheStartPageAndTopicsByTheirNumber()
    {
        CHelp help(*m_viewer);
        help.Show(asked(), QString(), 2);
        QCOMPARE(page(), QStringLiteral("premiers-pas.html"));
        help.Show(asked(), QString(), 32000); // a number that no page bears
        QCOMPARE(page(), QStringLiteral("index.html"));
        help.Show(asked(), QStringLiteral("W1"));
        QCOMPARE(page(), QStringLiteral("index.html"));
        QCOMPARE(find<QTabWidget>("tabs")->currentIndex(), 0);
        QTRY_VERIFY(find<QHelpContentWidget>("contents")->model()->rowCount() > 0);
    }

    void theIndexLeadsToPages()
    {
        CHelp(*m_viewer).ShowIndex(asked(), QString());
        QCOMPARE(find<QTabWidget>("tabs")->currentIndex(), 1);
        QTRY_VERIFY(find<QHelpIndexWidget>("index")->model()->rowCount() > 0);
        find<QLineEdit>("filter")->setText(QStringLiteral("séparateurs"));
        QTest::keyClick(find<QLineEdit>("filter"), Qt::Key_Return);
        QTRY_COMPARE(page(), QStringLiteral("fenetre.html"));
    }

    void theSearchFindsPagesByTheirText()
    {
        CHelp(*m_viewer).ShowSearch(asked(), QString());
        QCOMPARE(find<QTabWidget>("tabs")->currentIndex(), 2);
        QCOMPARE(find<QLineEdit>("query")->text(), QStringLiteral("TEST"));
        find<QLineEdit>("query")->setText(QStringLiteral("authentification"));
        find<QPushButton>("search")->click();
        auto *const results = find<QListWidget>("results");
        QTRY_VERIFY_WITH_TIMEOUT(results->count() > 0, 20000);
        Q_EMIT results->itemActivated(results->item(0));
        QVERIFY(
            find<HelpBrowser>("page")->toPlainText().contains(QStringLiteral("authentification"), Qt::CaseInsensitive));
    }

    void linksAreFollowedBackAndForwardAndHandedOverWhenTheyLeadOut()
    {
        CHelp(*m_viewer).Show(asked(), QString(), 2);
        Q_EMIT find<HelpBrowser>("page")->anchorClicked(QUrl(QStringLiteral("index.html")));
        QCOMPARE(page(), QStringLiteral("index.html"));
        find<QAction>("back")->trigger();
        QCOMPARE(page(), QStringLiteral("premiers-pas.html"));
        find<QAction>("forward")->trigger();
        QCOMPARE(page(), QStringLiteral("index.html"));
        Q_EMIT find<HelpBrowser>("page")->anchorClicked(QUrl(QStringLiteral("http://example.org/")));
        QCOMPARE(m_external, QStringList{QStringLiteral("http://example.org/")});
        QCOMPARE(page(), QStringLiteral("index.html"));
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
        const QString file = m_folder->filePath(QStringLiteral("Quillwire.qch"));
        if (!bytes.isEmpty())
            Files::write(file, bytes);
        make({file});
        CHelp(*m_viewer).Show(asked(), QStringLiteral("W1"));
        QVERIFY(m_viewer->isVisible());
        QCOMPARE(find<HelpBrowser>("page")->toPlainText(),
                 QStringLiteral("Le fichier d'aide /data/Quillwire.chm est introuvable ou illisible."));
    }

    void theCollectionLiesInTheCacheAndIsMadeAnewWhenDamaged()
    {
        const QString collection = m_folder->filePath(QStringLiteral("cache/Quillwire.qhc"));
        const QDir beside(QFileInfo(QStringLiteral(HELP_FILE)).path());
        const QStringList before = beside.entryList(QDir::AllEntries | QDir::Hidden);
        CHelp(*m_viewer).Show(asked(), QString());
        QVERIFY(Files::exists(collection));
        QCOMPARE(beside.entryList(QDir::AllEntries | QDir::Hidden), before);
        m_viewer.reset();
        Files::write(collection, "damaged");
        make({QStringLiteral(HELP_FILE)});
        CHelp(*m_viewer).Show(asked(), QString());
        QCOMPARE(page(), QStringLiteral("index.html"));
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
        m_viewer = std::make_unique<HelpViewer>(candidates, m_folder->filePath(QStringLiteral("cache")),
                                                [this](const QString &url) { m_external.append(url); });
    }

    QString page() const { return find<HelpBrowser>("page")->source().fileName(); }
    QString asked() const { return QStringLiteral("/data/Quillwire.chm"); }

    std::unique_ptr<QTemporaryDir> m_folder;
    QStringList m_external;
    std::unique_ptr<HelpViewer> m_viewer;
};

QTEST_MAIN(HelpViewerTest)
#include "tst_HelpViewer.moc"
