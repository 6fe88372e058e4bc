#include "dialogs/OpmlList.h"
#include "dialogs/frmExport.h"
#include "platform/RunTimeError.h"
#include "tests/fixtures/FakeMainWindow.h"

#include <QCheckBox>
#include <QFile>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

namespace {

const QByteArray Catalogue =
    "<favoris><dir name=\"Presse\" key=\"1\"><feed name=\"Été\" url=\"http://h/1\" key=\"2\"/>"
    "<dir name=\"Vide\" key=\"3\"/></dir><other/><feed name=\"B\" url=\"http://h/2\" key=\"4\"/>"
    "</favoris>";

} // namespace

class ExportTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_form.reset();
        m_window = std::make_unique<FakeMainWindow>();
        m_window->data.write(QStringLiteral("feeds.xml"), Catalogue);
        m_answer = target();
        m_form = std::make_unique<frmExport>(*m_window, [this] { return m_answer; });
        box("txtNom")->setText(QStringLiteral("Camille"));
        m_form->show();
    }

    void theFileHoldsTheLinesThatAreDue_data()
    {
        QTest::addColumn<QByteArray>("catalogue");
        QTest::addColumn<bool>("structure");
        QTest::addColumn<QByteArray>("body");
        const QByteArray one = "<outline text=\"\xC9t\xE9\" xmlUrl=\"http://h/1\" />\r\n";
        const QByteArray two = "<outline text=\"B\" xmlUrl=\"http://h/2\" />\r\n";
        QTest::newRow("flat") << Catalogue << false << one + two;
        QTest::newRow("with folders") << Catalogue << true
                                      << "<outline text=\"Presse\" >\r\n" + one +
                                             "<outline text=\"Vide\" >\r\n</outline>\r\n</outline>\r\n" + two;
        QTest::newRow("empty catalogue") << QByteArray("<favoris/>") << true << QByteArray();
    }

    void theFileHoldsTheLinesThatAreDue()
    {
        QFETCH(QByteArray, catalogue);
        QFETCH(bool, structure);
        QFETCH(QByteArray, body);
        m_window->data.write(QStringLiteral("feeds.xml"), catalogue);
        m_window->data.write(QStringLiteral("out.opml"), QByteArray(5000, 'x'));
        if (structure)
            structured();
        box("txtEmail")->setText(QStringLiteral("c@h"));
        press("cmdExporter");
        QCOMPARE(
            m_window->data.read(QStringLiteral("out.opml")),
            "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\r\n<opml version=\"1.1\">\r\n<head>\r\n<title></title>\r\n"
            "<ownerName>Camille</ownerName>\r\n<ownerEmail>c@h</ownerEmail>\r\n</head>\r\n<body>\r\n" +
                body + "</body>\r\n</opml>\r\n");
        QVERIFY(!m_form->isVisible());
    }

    void aFlatExportIsReadBackWholeAndAStructuredOneWithoutTheFolders()
    {
        const auto readBack = [this] {
            XmlDocument document;
            document.load(target());
            QStringList texts;
            for (const OpmlList::Feed &feed : readOpmlList(document).feeds)
                texts.append(feed.text + u' ' + feed.address);
            return texts;
        };
        press("cmdExporter");
        QCOMPARE(readBack(), (QStringList{QStringLiteral("Été http://h/1"), QStringLiteral("B http://h/2")}));
        structured();
        press("cmdExporter");
        QCOMPARE(readBack(), QStringList{QStringLiteral("B http://h/2")});
    }

    void nothingIsEscaped()
    {
        m_window->data.write(QStringLiteral("feeds.xml"),
                             "<favoris><feed name=\"a &lt; b\" url=\"http://h/?x=1&amp;y=2\"/></favoris>");
        box("txtTitre")->setText(QStringLiteral("R & D"));
        press("cmdExporter");
        const QByteArray bytes = m_window->data.read(QStringLiteral("out.opml"));
        QVERIFY(bytes.contains("<title>R & D</title>"));
        QVERIFY(bytes.contains("<outline text=\"a < b\" xmlUrl=\"http://h/?x=1&y=2\" />"));
        XmlDocument document;
        QCOMPARE(document.load(target()), XmlDocument::LoadResult::Malformed);
    }

    void theDialogStaysWhenNothingCanBeExported_data()
    {
        QTest::addColumn<bool>("cancelled");
        QTest::addColumn<QByteArray>("catalogue");
        QTest::newRow("the question is cancelled") << true << Catalogue;
        QTest::newRow("the catalogue doesn't load") << false << QByteArray("<favoris>");
    }

    void theDialogStaysWhenNothingCanBeExported()
    {
        QFETCH(bool, cancelled);
        QFETCH(QByteArray, catalogue);
        m_window->data.write(QStringLiteral("feeds.xml"), catalogue);
        if (cancelled)
            m_answer.clear();
        box("txtTitre")->setText(QStringLiteral("T"));
        press("cmdExporter");
        QVERIFY(m_form->isVisible());
        QCOMPARE(box("txtTitre")->text(), QStringLiteral("T"));
        QVERIFY(!m_window->data.exists(QStringLiteral("out.opml")));
    }

    void anOldFileStandsWhenTheExportFails_data()
    {
        QTest::addColumn<QByteArray>("catalogue");
        QTest::newRow("a character outside the code page")
            << QByteArray("<favoris><feed name=\"&#26085;\" url=\"u\"/></favoris>");
        QTest::newRow("a feed without address") << QByteArray("<favoris><feed name=\"A\"/></favoris>");
        QTest::newRow("another root") << QByteArray("<feeds/>");
    }

    void anOldFileStandsWhenTheExportFails()
    {
        QFETCH(QByteArray, catalogue);
        m_window->data.write(QStringLiteral("feeds.xml"), catalogue);
        m_window->data.write(QStringLiteral("out.opml"), "old");
        QVERIFY_EXCEPTION_THROWN(m_form->handleExport(), RunTimeError);
        QCOMPARE(m_window->data.read(QStringLiteral("out.opml")), QByteArray("old"));
        m_window->data.write(QStringLiteral("feeds.xml"), Catalogue);
        m_answer = m_window->dataFile(QStringLiteral("none/out.opml"));
        QVERIFY_EXCEPTION_THROWN(m_form->handleExport(), RunTimeError);
    }

private:
    QString target() const { return m_window->dataFile(QStringLiteral("out.opml")); }
    QLineEdit *box(const char *name) const { return m_form->findChild<QLineEdit *>(QString::fromLatin1(name)); }
    void press(const char *name) const { m_form->findChild<QPushButton *>(QString::fromLatin1(name))->click(); }
    void structured() const { m_form->findChild<QCheckBox *>(QStringLiteral("chkStructure"))->setChecked(true); }

    std::unique_ptr<FakeMainWindow> m_window;
    QString m_answer;
    std::unique_ptr<frmExport> m_form;
};

QTEST_MAIN(ExportTest)
#include "tst_frmExport.moc"
