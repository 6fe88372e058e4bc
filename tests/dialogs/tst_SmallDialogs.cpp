// SPDX-License-Identifier: GPL-3.0-or-later

#include "dialogs/frmAbout.h"
#include "dialogs/frmAuthentification.h"
#include "dialogs/frmExport.h"
#include "platform/Literals.h"
#include "tests/fixtures/TemporaryDataDirectory.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

class SmallDialogsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void credentialsGoToTheWindowWhichLoadsAgainUnlessCancelled()
    {
        QWidget window;
        QStringList log;
        const frmAuthentification::Port port{
            [&](const QString &name, const QString &secret) { log += name + u':' + secret; },
            [&] { log += u"LoadFile"_s; }};
        for (const bool cancel : {true, false}) {
            frmAuthentification form(&window, port);
            form.show();
            find<QLineEdit>(form, "txtUsername")->setText(u"moi"_s);
            find<QLineEdit>(form, "txtPassword")->setText(u"mot de passe"_s);
            if (cancel)
                find<QPushButton>(form, "cmdAnnuler")->click();
            else
                QTest::keyClick(find<QLineEdit>(form, "txtPassword"), Qt::Key_Return);
            QVERIFY(!form.isVisible());
            QCOMPARE(log.isEmpty(), cancel);
        }
        QCOMPARE(log, (QStringList{u"moi:mot de passe"_s, u"LoadFile"_s}));
    }

    void theAboutBoxLeadsToTheMakersPages()
    {
        QWidget window;
        QStringList log;
        frmAbout form(&window, [&](const QString &url) { log += url; });
        for (const char *const name : {"lblURL", "lblProduct", "lblVersionUpdate"})
            find<QPushButton>(form, name)->click();
        const QString site = find<QPushButton>(form, "lblURL")->text().chopped(1);
        QCOMPARE(log, (QStringList{site + u'/', site + u"/prog/Quillwire/"_s,
                                   site + u"/prog/Quillwire/update.php?version=3.0.4"_s}));
    }

    void theExportWritesWhatItsBoxesHoldOrStays_data()
    {
        QTest::addColumn<QByteArray>("catalogue");
        QTest::addColumn<bool>("cancelled");
        QTest::addColumn<bool>("written");
        QTest::newRow("written") << "<favoris><dir name=\"D\"/></favoris>"_ba << false << true;
        QTest::newRow("the question is cancelled") << "<favoris/>"_ba << true << false;
        QTest::newRow("the catalogue doesn't load") << "<favoris>"_ba << false << false;
    }

    void theExportWritesWhatItsBoxesHoldOrStays()
    {
        QFETCH(QByteArray, catalogue);
        QFETCH(bool, cancelled);
        QFETCH(bool, written);
        TemporaryDataDirectory data;
        data.write(u"feeds.xml"_s, catalogue);
        QWidget window;
        frmExport form(&window, data.file(u"feeds.xml"_s),
                       [&] { return cancelled ? QString() : data.file(u"out.opml"_s); });
        form.show();
        find<QLineEdit>(form, "txtTitre")->setText(u"T"_s);
        find<QLineEdit>(form, "txtNom")->setText(u"Camille"_s);
        find<QLineEdit>(form, "txtEmail")->setText(u"c@h"_s);
        find<QCheckBox>(form, "chkStructure")->setChecked(true);
        find<QPushButton>(form, "cmdExporter")->click();
        QCOMPARE(form.isVisible(), !written);
        QCOMPARE(data.exists(u"out.opml"_s), written);
        QCOMPARE(find<QLineEdit>(form, "txtTitre")->text(), u"T"_s);
        for (const char *const line : {"<title>T<", "<ownerName>Camille<", "<ownerEmail>c@h<", "<outline text=\"D\" >"})
            QVERIFY2(!written || data.read(u"out.opml"_s).contains(line), line);
    }

private:
    template <class Widget>
    static Widget *find(const QWidget &form, const char *name)
    {
        return form.findChild<Widget *>(QString::fromLatin1(name));
    }
};

QTEST_MAIN(SmallDialogsTest)
#include "tst_SmallDialogs.moc"
