#include "dialogs/frmOptions.h"
#include "platform/RunTimeError.h"
#include "tests/fixtures/FakeMainWindow.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QToolButton>

#include <limits>

class OptionsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void settingsAreShown();
    void theDelayOpensAsSecondsAndABox_data();
    void theDelayOpensAsSecondsAndABox();
    void whatCannotBeShownFailsAtOpening();
    void everyChangeEnablesApply_data();
    void everyChangeEnablesApply();
    void controlsFollowTheirBoxes();
    void leavingTheSecondsMendsThem_data();
    void leavingTheSecondsMendsThem();
    void leavingThePortMendsIt_data();
    void leavingThePortMendsIt();
    void numbersPast16BitsOverflowWhenTheBoxIsLeft();
    void boxesAreLeftByTheFocus();
    void applyingFillsTheSettings();
    void theDelayIsAppliedInMilliseconds_data();
    void theDelayIsAppliedInMilliseconds();
    void aNumberThatDoesNotConvertFailsTheApply_data();
    void aNumberThatDoesNotConvertFailsTheApply();
    void theStartEntryIsMeasuredAgainstTheOpening();
    void theSoundIsChosenInADialog();
    void escapeClosesWithoutApplying();

private:
    void open();
    QLineEdit *box(const char *name) const { return m_form->findChild<QLineEdit *>(QString::fromLatin1(name)); }
    QCheckBox *check(const char *name) const { return m_form->findChild<QCheckBox *>(QString::fromLatin1(name)); }
    QComboBox *mode() const { return m_form->findChild<QComboBox *>(QStringLiteral("cmbMode")); }
    QPushButton *apply() const { return m_form->findChild<QPushButton *>(QStringLiteral("cmdAppliquer")); }

    std::unique_ptr<FakeMainWindow> m_window;
    AppSettings *m_settings = nullptr;
    int m_entry = 0;
    QString m_sound;
    std::unique_ptr<frmOptions> m_form;
};

void OptionsTest::init()
{
    m_window = std::make_unique<FakeMainWindow>();
    m_settings = &m_window->appSettings;
    m_settings->startMode = QStringLiteral("Minimisé");
    m_settings->updateAtStart = true;
    m_settings->notifyNew = true;
    m_settings->soundPath = QStringLiteral("/son.wav");
    m_settings->readDelay = 60000;
    m_settings->smtpServer = QStringLiteral("smtp.h");
    m_settings->smtpPort = 2525;
    m_settings->fromMail = QStringLiteral("a@h");
    m_settings->fromName = QStringLiteral("A");
    m_entry = 0;
    m_sound.clear();
    open();
}

void OptionsTest::cleanup()
{
    m_form.reset();
}

void OptionsTest::open()
{
    m_form = std::make_unique<frmOptions>(
        *m_window, frmOptions::RunAtStartup{[this] { return m_entry; }, [this](int state) { m_entry = state; }},
        [this] { return m_sound; });
    m_form->show();
}

void OptionsTest::settingsAreShown()
{
    QCOMPARE(check("chkNotify")->isChecked(), true);
    QCOMPARE(check("chkAutoUpdate")->isChecked(), true);
    QCOMPARE(check("chkDemWin")->isChecked(), false);
    QCOMPARE(mode()->currentText(), QStringLiteral("Minimisé"));
    QStringList texts;
    for (const char *const name : {"txtSon", "txtRead", "txtSMTPServer", "txtSMTPPort", "txtFromMail", "txtFromName"})
        texts.append(box(name)->text());
    QCOMPARE(texts.join(u'|'), QStringLiteral("/son.wav|60|smtp.h|2525|a@h|A"));
    QVERIFY(!apply()->isEnabled());
    QVERIFY(apply()->isDefault());
}

void OptionsTest::theDelayOpensAsSecondsAndABox_data()
{
    QTest::addColumn<int>("delay");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("never");
    QTest::newRow("never keeps its number") << -30000 << QStringLiteral("30") << true;
    QTest::newRow("never is lost at zero") << 0 << QStringLiteral("0") << false;
    QTest::newRow("parts of a second") << 1500 << QStringLiteral("1.5") << false;
}

void OptionsTest::theDelayOpensAsSecondsAndABox()
{
    QFETCH(int, delay);
    QFETCH(QString, text);
    QFETCH(bool, never);
    m_settings->readDelay = delay;
    open();
    QCOMPARE(box("txtRead")->text(), text);
    QCOMPARE(check("chkNoRead")->isChecked(), never);
    QCOMPARE(box("txtRead")->isEnabled(), !never);
}

void OptionsTest::whatCannotBeShownFailsAtOpening()
{
    m_settings->startMode = QStringLiteral("Normal");
    QVERIFY_EXCEPTION_THROWN(open(), RunTimeError);
    m_settings->startMode = QStringLiteral("Plein écran");
    m_settings->readDelay = std::numeric_limits<qint32>::min();
    QVERIFY_EXCEPTION_THROWN(open(), RunTimeError);
}

void OptionsTest::everyChangeEnablesApply_data()
{
    QTest::addColumn<QString>("name");
    for (const char *const name : {"txtSon", "txtRead", "txtSMTPServer", "txtSMTPPort", "txtFromMail", "txtFromName",
                                   "cmbMode", "chkAutoUpdate", "chkDemWin", "chkNoRead", "chkNotify"})
        QTest::newRow(name) << QString::fromLatin1(name);
}

void OptionsTest::everyChangeEnablesApply()
{
    QFETCH(QString, name);
    auto *const widget = m_form->findChild<QWidget *>(name);
    if (auto *const line = qobject_cast<QLineEdit *>(widget))
        line->setText(QStringLiteral("1"));
    else if (auto *const tick = qobject_cast<QCheckBox *>(widget))
        tick->click();
    else
        mode()->setCurrentIndex(0);
    QVERIFY(apply()->isEnabled());
    apply()->click();
    QVERIFY(!apply()->isEnabled());
}

void OptionsTest::controlsFollowTheirBoxes()
{
    check("chkNotify")->click();
    QVERIFY(!box("txtSon")->isEnabled());
    check("chkNoRead")->click();
    QVERIFY(!box("txtRead")->isEnabled());
    auto *const lblMode = m_form->findChild<QWidget *>(QStringLiteral("lblMode"));
    QVERIFY(mode()->isHidden() && lblMode->isHidden());
    check("chkDemWin")->click();
    QVERIFY(!mode()->isHidden() && !lblMode->isHidden());
}

void OptionsTest::leavingTheSecondsMendsThem_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("mended");
    QTest::newRow("letters become the stored milliseconds") << QStringLiteral("abc") << QStringLiteral("60000");
    QTest::newRow("nothing likewise") << QString() << QStringLiteral("60000");
    QTest::newRow("below the range") << QStringLiteral("-5") << QStringLiteral("0");
    QTest::newRow("above the range") << QStringLiteral("3601") << QStringLiteral("3600");
    QTest::newRow("in the range") << QStringLiteral("3600") << QStringLiteral("3600");
    QTest::newRow("decimals stay") << QStringLiteral("12,7") << QStringLiteral("12,7");
}

void OptionsTest::leavingTheSecondsMendsThem()
{
    QFETCH(QString, typed);
    QFETCH(QString, mended);
    box("txtRead")->setText(typed);
    m_form->handleReadLeft();
    QCOMPARE(box("txtRead")->text(), mended);
}

void OptionsTest::leavingThePortMendsIt_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("mended");
    QTest::newRow("letters") << QStringLiteral("smtp") << QStringLiteral("25");
    QTest::newRow("nothing") << QString() << QStringLiteral("25");
    QTest::newRow("below the range") << QStringLiteral("-1") << QStringLiteral("0");
    QTest::newRow("the largest") << QStringLiteral("32767") << QStringLiteral("32767");
}

void OptionsTest::leavingThePortMendsIt()
{
    QFETCH(QString, typed);
    QFETCH(QString, mended);
    box("txtSMTPPort")->setText(typed);
    m_form->handlePortLeft();
    QCOMPARE(box("txtSMTPPort")->text(), mended);
}

void OptionsTest::numbersPast16BitsOverflowWhenTheBoxIsLeft()
{
    box("txtRead")->setText(QStringLiteral("32768"));
    QVERIFY_EXCEPTION_THROWN(m_form->handleReadLeft(), RunTimeError);
    box("txtSMTPPort")->setText(QStringLiteral("65535"));
    QVERIFY_EXCEPTION_THROWN(m_form->handlePortLeft(), RunTimeError);
}

void OptionsTest::boxesAreLeftByTheFocus()
{
    m_form->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_form.get()));
    m_form->findChild<QTabWidget *>(QStringLiteral("tstrOpt"))->setCurrentIndex(1);
    box("txtRead")->setFocus();
    box("txtRead")->setText(QStringLiteral("5000"));
    QTest::keyClick(box("txtRead"), Qt::Key_Tab);
    QCOMPARE(box("txtRead")->text(), QStringLiteral("3600"));
    // Escape closes; the box isn't left by that.
    box("txtRead")->setFocus();
    box("txtRead")->setText(QStringLiteral("99999"));
    QTest::keyClick(m_form.get(), Qt::Key_Escape);
    QVERIFY(!m_form->isVisible());
}

void OptionsTest::applyingFillsTheSettings()
{
    check("chkNotify")->click();
    check("chkAutoUpdate")->click();
    check("chkDemWin")->click();
    box("txtSon")->setText(QStringLiteral("/autre.wav"));
    mode()->setCurrentText(QStringLiteral("Plein écran"));
    box("txtSMTPServer")->setText(QStringLiteral("s2"));
    box("txtSMTPPort")->setText(QStringLiteral("587"));
    box("txtFromMail")->setText(QStringLiteral("b@h"));
    box("txtFromName")->setText(QStringLiteral("B"));
    apply()->click();
    QVERIFY(!m_settings->notifyNew && !m_settings->updateAtStart);
    QCOMPARE(m_settings->soundPath, QStringLiteral("/autre.wav"));
    QCOMPARE(m_settings->startMode, QStringLiteral("Plein écran"));
    QCOMPARE(m_settings->smtpServer + m_settings->fromMail + m_settings->fromName, QStringLiteral("s2b@hB"));
    QCOMPARE(m_settings->smtpPort, qint16(587));
    QCOMPARE(m_entry, 2);
    QVERIFY(m_form->isVisible());
}

void OptionsTest::theDelayIsAppliedInMilliseconds_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<bool>("never");
    QTest::addColumn<int>("delay");
    QTest::newRow("seconds") << QStringLiteral("5") << false << 5000;
    QTest::newRow("never") << QStringLiteral("5") << true << -5000;
    QTest::newRow("never at zero") << QStringLiteral("0") << true << 0;
    QTest::newRow("rounded to the even neighbour") << QStringLiteral("2.5") << false << 2000;
    QTest::newRow("past 16 bits") << QStringLiteral("40000") << false << 40000000;
}

void OptionsTest::theDelayIsAppliedInMilliseconds()
{
    QFETCH(QString, typed);
    QFETCH(bool, never);
    QFETCH(int, delay);
    box("txtRead")->setText(typed);
    check("chkNoRead")->setChecked(never);
    m_form->handleApply();
    QCOMPARE(m_settings->readDelay, delay);
}

void OptionsTest::aNumberThatDoesNotConvertFailsTheApply_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("typed");
    QTest::newRow("no seconds") << QStringLiteral("txtRead") << QString();
    QTest::newRow("too many milliseconds") << QStringLiteral("txtRead") << QStringLiteral("2147484");
    QTest::newRow("port past 16 bits") << QStringLiteral("txtSMTPPort") << QStringLiteral("32768");
}

void OptionsTest::aNumberThatDoesNotConvertFailsTheApply()
{
    QFETCH(QString, name);
    QFETCH(QString, typed);
    m_form->findChild<QLineEdit *>(name)->setText(typed);
    QVERIFY_EXCEPTION_THROWN(m_form->handleApply(), RunTimeError);
}

void OptionsTest::theStartEntryIsMeasuredAgainstTheOpening()
{
    check("chkDemWin")->click();
    apply()->click();
    QCOMPARE(m_entry, 2);
    check("chkDemWin")->click();
    apply()->click();
    QCOMPARE(m_entry, 2); // stays: it is the state at opening again
    open();
    QVERIFY(check("chkDemWin")->isChecked());
    QVERIFY(!mode()->isHidden());
    check("chkDemWin")->click();
    apply()->click();
    QCOMPARE(m_entry, 0);
}

void OptionsTest::theSoundIsChosenInADialog()
{
    auto *const picture = m_form->findChild<QToolButton *>(QStringLiteral("Image1"));
    picture->click(); // cancelled
    QCOMPARE(box("txtSon")->text(), QStringLiteral("/son.wav"));
    m_sound = QStringLiteral("/neuf.wav");
    picture->click();
    QCOMPARE(box("txtSon")->text(), QStringLiteral("/neuf.wav"));
}

void OptionsTest::escapeClosesWithoutApplying()
{
    box("txtFromName")->setText(QStringLiteral("B"));
    QTest::keyClick(m_form.get(), Qt::Key_Escape);
    QVERIFY(!m_form->isVisible());
    QCOMPARE(m_settings->fromName, QStringLiteral("A"));
}

QTEST_MAIN(OptionsTest)
#include "tst_frmOptions.moc"
