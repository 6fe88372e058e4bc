// SPDX-License-Identifier: GPL-3.0-or-later

#include "dialogs/frmExport.h"
#include "platform/Literals.h"
#include "tests/fixtures/TemporaryDataDirectory.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

class ExportTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_form.reset();
        m_data = std::make_unique<TemporaryDataDirectory>();
        m_data->write(u"feeds.xml"_s, "<favoris><dir name=\"D\"/></favoris>");
        m_answer = target();
        m_form = std::make_unique<frmExport>(&m_window, m_data->file(u"feeds.xml"_s), [this] { return m_answer; });
        box("txtNom")->setText(u"Camille"_s);
        m_form->show();
    }

    void theBoxesGoIntoTheFile()
    {
        box("txtTitre")->setText(u"T"_s);
        box("txtEmail")->setText(u"c@h"_s);
        m_form->findChild<QCheckBox *>(u"chkStructure"_s)->setChecked(true);
        press("cmdExporter");
        QVERIFY(!m_form->isVisible());
        const QByteArray bytes = m_data->read(u"out.opml"_s);
        for (const char *const line : {"<title>T<", "<ownerName>Camille<", "<ownerEmail>c@h<", "<outline text=\"D\" >"})
            QVERIFY2(bytes.contains(line), line);
    }

    void theDialogStaysWhenNothingCanBeExported_data()
    {
        QTest::addColumn<bool>("cancelled");
        QTest::addColumn<QByteArray>("catalogue");
        QTest::newRow("the question is cancelled") << true << QByteArray("<favoris/>");
        QTest::newRow("the catalogue doesn't load") << false << QByteArray("<favoris>");
    }

    void theDialogStaysWhenNothingCanBeExported()
    {
        QFETCH(bool, cancelled);
        QFETCH(QByteArray, catalogue);
        m_data->write(u"feeds.xml"_s, catalogue);
        if (cancelled)
            m_answer.clear();
        box("txtTitre")->setText(u"T"_s);
        press("cmdExporter");
        QVERIFY(m_form->isVisible());
        QCOMPARE(box("txtTitre")->text(), u"T"_s);
        QVERIFY(!m_data->exists(u"out.opml"_s));
    }

private:
    QString target() const { return m_data->file(u"out.opml"_s); }
    QLineEdit *box(const char *name) const { return m_form->findChild<QLineEdit *>(QString::fromLatin1(name)); }
    void press(const char *name) const { m_form->findChild<QPushButton *>(QString::fromLatin1(name))->click(); }

    std::unique_ptr<TemporaryDataDirectory> m_data;
    QWidget m_window;
    QString m_answer;
    std::unique_ptr<frmExport> m_form;
};

QTEST_MAIN(ExportTest)
#include "tst_frmExport.moc"
