// SPDX-License-Identifier: GPL-3.0-or-later

#include "dialogs/CHelp.h"
#include "dialogs/frmAbout.h"
#include "dialogs/frmAuthentification.h"
#include "platform/Literals.h"

#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>

namespace {

/// Keeps each request as "path command argument".
class FakeHelpSystem final : public HelpSystem
{
public:
    void htmlHelp(const QString &path, HelpCommand command, const HelpData &argument) override
    {
        QString text = u"none"_s;
        if (const auto *const number = std::get_if<qint32>(&argument))
            text = QString::number(*number);
        else if (const auto *const query = std::get_if<HelpQuery>(&argument))
            text = u"%1,%2,%3,%4,%5,%6,%7,[%8]"_s.arg(query->size)
                       .arg(int(query->unicode))
                       .arg(query->text)
                       .arg(query->proximity)
                       .arg(int(query->stemmedSearch))
                       .arg(int(query->titlesOnly))
                       .arg(int(query->execute))
                       .arg(query->window);
        request = u"%1 %2 %3"_s.arg(path).arg(qint32(command)).arg(text);
    }
    QString request;
};

} // namespace

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
        QCOMPARE(find<QLabel>(form, "lblVersion")->text(), u"Version: 3.1.0"_s);
        QCOMPARE(find<QPushButton>(form, "lblProduct")->text(), u"Page web de Quillwire"_s);
        QCOMPARE(find<QPushButton>(form, "lblVersionUpdate")->text(), u"Information de mise à jour"_s);
        for (const char *const name : {"lblURL", "lblProduct", "lblVersionUpdate"})
            find<QPushButton>(form, name)->click();
        const QString site = find<QPushButton>(form, "lblURL")->text().chopped(1);
        QCOMPARE(log, (QStringList{site + u'/', site + u"/prog/Quillwire/"_s,
                                   site + u"/prog/Quillwire/update.php?version=3.0.4"_s}));
    }

    void theHelpFormsItsFourRequests()
    {
        FakeHelpSystem system;
        CHelp help(system);
        const QString file = u" /d/Quillwire.chm "_s;
        help.Show(file, u" W1 "_s);
        QCOMPARE(system.request, u"/d/Quillwire.chm>W1 1 none"_s);
        help.Show(file, QString());
        QCOMPARE(system.request, u" /d/Quillwire.chm  1 none"_s);
        help.Show(file, u"  "_s, 0);
        QCOMPARE(system.request, u"/d/Quillwire.chm> 15 0"_s);
        help.ShowIndex(file, u"W1"_s);
        QCOMPARE(system.request, u"/d/Quillwire.chm>W1 2 0"_s);
        help.ShowSearch(file, u"W1"_s);
        QCOMPARE(system.request, u"/d/Quillwire.chm>W1 3 32,0,TEST,0,0,0,1,[]"_s);
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
