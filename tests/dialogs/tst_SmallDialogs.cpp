#include "dialogs/CHelp.h"
#include "dialogs/frmAbout.h"
#include "dialogs/frmAuthentification.h"
#include "tests/fixtures/FakeMainWindow.h"

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
    void credentialsGoToTheWindowWhichLoadsAgain_data();
    void credentialsGoToTheWindowWhichLoadsAgain();
    void cancellingThePromptChangesNothing();
    void theAboutBoxLeadsToTheMakersPages_data();
    void theAboutBoxLeadsToTheMakersPages();
    void theAboutBoxClosesByEnterAndByEscape();
    void theHelpFormsItsFourRequests();

private:
    template <class Widget>
    static Widget *find(const QWidget &form, const char *name)
    {
        return form.findChild<Widget *>(QString::fromLatin1(name));
    }
};

void SmallDialogsTest::credentialsGoToTheWindowWhichLoadsAgain_data()
{
    QTest::addColumn<QString>("username");
    QTest::addColumn<QString>("password");
    QTest::newRow("given") << QStringLiteral("moi") << QStringLiteral("mot de passe");
    QTest::newRow("empty") << QString() << QString();
}

void SmallDialogsTest::credentialsGoToTheWindowWhichLoadsAgain()
{
    QFETCH(QString, username);
    QFETCH(QString, password);
    FakeMainWindow window;
    window.address = QStringLiteral("http://h/");
    frmAuthentification form(window);
    form.show();
    QCOMPARE(find<QLineEdit>(form, "txtUsername")->text() + find<QLineEdit>(form, "txtPassword")->text(), QString());
    find<QLineEdit>(form, "txtUsername")->setText(username);
    find<QLineEdit>(form, "txtPassword")->setText(password);
    QTest::keyClick(find<QLineEdit>(form, "txtPassword"), Qt::Key_Return);
    QCOMPARE(window.log, QStringList{QStringLiteral("LoadFile http://h/ [%1:%2]").arg(username, password)});
    QVERIFY(!form.isVisible());
}

void SmallDialogsTest::cancellingThePromptChangesNothing()
{
    FakeMainWindow window;
    frmAuthentification form(window);
    form.show();
    find<QLineEdit>(form, "txtUsername")->setText(QStringLiteral("x"));
    find<QPushButton>(form, "cmdAnnuler")->click();
    QVERIFY(window.log.isEmpty() && !form.isVisible());
    QCOMPARE(window.username, QStringLiteral("old"));
}

void SmallDialogsTest::theAboutBoxLeadsToTheMakersPages_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("caption");
    QTest::addColumn<QString>("end");
    QTest::newRow("product") << QStringLiteral("lblProduct") << QStringLiteral("Page web de Quillwire")
                             << QStringLiteral("/prog/Quillwire/");
    QTest::newRow("update") << QStringLiteral("lblVersionUpdate") << QStringLiteral("Information de mise à jour")
                            << QStringLiteral("/prog/Quillwire/update.php?version=3.0.4");
}

void SmallDialogsTest::theAboutBoxLeadsToTheMakersPages()
{
    QFETCH(QString, name);
    QFETCH(QString, caption);
    QFETCH(QString, end);
    FakeMainWindow window;
    frmAbout form(window);
    QCOMPARE(find<QLabel>(form, "lblVersion")->text(), QStringLiteral("Version: 3.1.0"));
    find<QPushButton>(form, "lblURL")->click();
    const QString root = find<QPushButton>(form, "lblURL")->text();
    auto *const link = form.findChild<QPushButton *>(name);
    QCOMPARE(link->text(), caption);
    link->click();
    QCOMPARE(window.log,
             (QStringList{QStringLiteral("browser ") + root, QStringLiteral("browser ") + root.chopped(1) + end}));
}

void SmallDialogsTest::theAboutBoxClosesByEnterAndByEscape()
{
    FakeMainWindow window;
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Escape}) {
        frmAbout form(window);
        form.show();
        QTest::keyClick(&form, key);
        QVERIFY(!form.isVisible());
    }
}

void SmallDialogsTest::theHelpFormsItsFourRequests()
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

QTEST_MAIN(SmallDialogsTest)
#include "tst_SmallDialogs.moc"
