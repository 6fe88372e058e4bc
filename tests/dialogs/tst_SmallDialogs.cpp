#include "dialogs/CHelp.h"
#include "dialogs/frmAbout.h"
#include "dialogs/frmAuthentification.h"

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
        QString text = QStringLiteral("none");
        if (const auto *const number = std::get_if<qint32>(&argument))
            text = QString::number(*number);
        else if (const auto *const query = std::get_if<HelpQuery>(&argument))
            text = QStringLiteral("%1,%2,%3,%4,%5,%6,%7,[%8]")
                       .arg(query->size)
                       .arg(int(query->unicode))
                       .arg(query->text)
                       .arg(query->proximity)
                       .arg(int(query->stemmedSearch))
                       .arg(int(query->titlesOnly))
                       .arg(int(query->execute))
                       .arg(query->window);
        request = QStringLiteral("%1 %2 %3").arg(path).arg(qint32(command)).arg(text);
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
            [&] { log += QStringLiteral("LoadFile"); }};
        for (const bool cancel : {true, false}) {
            frmAuthentification form(&window, port);
            form.show();
            find<QLineEdit>(form, "txtUsername")->setText(QStringLiteral("moi"));
            find<QLineEdit>(form, "txtPassword")->setText(QStringLiteral("mot de passe"));
            if (cancel)
                find<QPushButton>(form, "cmdAnnuler")->click();
            else
                QTest::keyClick(find<QLineEdit>(form, "txtPassword"), Qt::Key_Return);
            QVERIFY(!form.isVisible());
            QCOMPARE(log.isEmpty(), cancel);
        }
        QCOMPARE(log, (QStringList{QStringLiteral("moi:mot de passe"), QStringLiteral("LoadFile")}));
    }

    void theAboutBoxLeadsToTheMakersPages()
    {
        QWidget window;
        QStringList log;
        frmAbout form(&window, [&](const QString &url) { log += url; });
        QCOMPARE(find<QLabel>(form, "lblVersion")->text(), QStringLiteral("Version: 3.1.0"));
        QCOMPARE(find<QPushButton>(form, "lblProduct")->text(), QStringLiteral("Page web de Quillwire"));
        QCOMPARE(find<QPushButton>(form, "lblVersionUpdate")->text(), QStringLiteral("Information de mise à jour"));
        for (const char *const name : {"lblURL", "lblProduct", "lblVersionUpdate"})
            find<QPushButton>(form, name)->click();
        const QString site = find<QPushButton>(form, "lblURL")->text().chopped(1);
        QCOMPARE(log, (QStringList{site + u'/', site + QStringLiteral("/prog/Quillwire/"),
                                   site + QStringLiteral("/prog/Quillwire/update.php?version=3.0.4")}));
    }

    void theHelpFormsItsFourRequests()
    {
        FakeHelpSystem system;
        CHelp help(system);
        const QString file = QStringLiteral(" /d/Quillwire.chm ");
        help.Show(file, QStringLiteral(" W1 "));
        QCOMPARE(system.request, QStringLiteral("/d/Quillwire.chm>W1 1 none"));
        help.Show(file, QString());
        QCOMPARE(system.request, QStringLiteral(" /d/Quillwire.chm  1 none"));
        help.Show(file, QStringLiteral("  "), 0);
        QCOMPARE(system.request, QStringLiteral("/d/Quillwire.chm> 15 0"));
        help.ShowIndex(file, QStringLiteral("W1"));
        QCOMPARE(system.request, QStringLiteral("/d/Quillwire.chm>W1 2 0"));
        help.ShowSearch(file, QStringLiteral("W1"));
        QCOMPARE(system.request, QStringLiteral("/d/Quillwire.chm>W1 3 32,0,TEST,0,0,0,1,[]"));
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
