// SPDX-License-Identifier: GPL-3.0-or-later

#include "core/AppSettings.h"
#include "dialogs/frmOptions.h"
#include "platform/Literals.h"
#include "platform/RunTimeError.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

#include <limits>

class OptionsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_settings = {};
        m_settings.startMode = u"Minimisé"_s;
        m_settings.updateAtStart = true;
        m_settings.notifyNew = true;
        m_settings.soundPath = u"/son.wav"_s;
        m_settings.readDelay = 60000;
        m_settings.smtpServer = u"smtp.h"_s;
        m_settings.smtpPort = 2525;
        m_settings.fromMail = u"a@h"_s;
        m_settings.fromName = u"A"_s;
        m_entry = 0;
        open();
    }

    void cleanup() { m_form.reset(); }

    void theDelayOpensAsSecondsAndABox_data()
    {
        QTest::addColumn<int>("delay");
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("never");
        QTest::newRow("never keeps its number") << -30000 << u"30"_s << true;
        QTest::newRow("never is lost at zero") << 0 << u"0"_s << false;
        QTest::newRow("parts of a second") << 1500 << u"1.5"_s << false;
    }

    void theDelayOpensAsSecondsAndABox()
    {
        QFETCH(int, delay);
        QFETCH(QString, text);
        QFETCH(bool, never);
        m_settings.readDelay = delay;
        open();
        QCOMPARE(box("txtRead")->text(), text);
        QCOMPARE(check("chkNoRead")->isChecked(), never);
        QCOMPARE(box("txtRead")->isEnabled(), !never);
    }

    void whatCannotBeShownFailsAtOpening()
    {
        m_settings.startMode = u"Normal"_s;
        QVERIFY_EXCEPTION_THROWN(open(), RunTimeError);
        m_settings.startMode = u"Plein écran"_s;
        m_settings.readDelay = std::numeric_limits<qint32>::min();
        QVERIFY_EXCEPTION_THROWN(open(), RunTimeError);
    }

    void leavingABoxMendsItsNumber_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("mended"); // "": overflows
        const auto row = [](const char *name, const char *typed, const char *mended) {
            QTest::addRow("%s %s", name, typed)
                << QString::fromLatin1(name) << QString::fromLatin1(typed) << QString::fromLatin1(mended);
        };
        row("txtRead", "abc", "60000"); // the stored milliseconds
        row("txtRead", "", "60000");
        row("txtRead", "-5", "0");
        row("txtRead", "3600", "3600");
        row("txtRead", "3601", "3600");
        row("txtRead", "12,7", "12,7");
        row("txtRead", "32768", "");
        row("txtSMTPPort", "smtp", "25");
        row("txtSMTPPort", "", "25");
        row("txtSMTPPort", "-1", "0");
        row("txtSMTPPort", "32767", "32767");
        row("txtSMTPPort", "65535", "");
    }

    void leavingABoxMendsItsNumber()
    {
        QFETCH(QString, name);
        QFETCH(QString, typed);
        QFETCH(QString, mended);
        auto *const line = m_form->findChild<QLineEdit *>(name);
        line->setText(typed);
        const auto leave = [&] { line == box("txtRead") ? m_form->handleReadLeft() : m_form->handlePortLeft(); };
        if (mended.isEmpty()) {
            QVERIFY_EXCEPTION_THROWN(leave(), RunTimeError);
            return;
        }
        leave();
        QCOMPARE(line->text(), mended);
    }

    void boxesAreLeftByTheFocus()
    {
        m_form->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_form.get()));
        m_form->findChild<QTabWidget *>(u"tstrOpt"_s)->setCurrentIndex(1);
        box("txtRead")->setFocus();
        box("txtRead")->setText(u"5000"_s);
        QTest::keyClick(box("txtRead"), Qt::Key_Tab);
        QCOMPARE(box("txtRead")->text(), u"3600"_s);
        // Escape closes; the box isn't left by that.
        box("txtRead")->setFocus();
        box("txtRead")->setText(u"99999"_s);
        QTest::keyClick(m_form.get(), Qt::Key_Escape);
        QVERIFY(!m_form->isVisible());
    }

    void applyingFillsTheSettings()
    {
        check("chkNotify")->click();
        check("chkAutoUpdate")->click();
        check("chkDemWin")->click();
        box("txtSon")->setText(u"/autre.wav"_s);
        mode()->setCurrentText(u"Plein écran"_s);
        box("txtSMTPServer")->setText(u"s2"_s);
        box("txtSMTPPort")->setText(u"587"_s);
        box("txtFromMail")->setText(u"b@h"_s);
        box("txtFromName")->setText(u"B"_s);
        apply()->click();
        QVERIFY(!m_settings.notifyNew && !m_settings.updateAtStart);
        QCOMPARE(m_settings.soundPath, u"/autre.wav"_s);
        QCOMPARE(m_settings.startMode, u"Plein écran"_s);
        QCOMPARE(m_settings.smtpServer + m_settings.fromMail + m_settings.fromName, u"s2b@hB"_s);
        QCOMPARE(m_settings.smtpPort, qint16(587));
        QCOMPARE(m_entry, 2);
        QVERIFY(m_form->isVisible());
    }

    void theDelayIsAppliedInMilliseconds_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<bool>("never");
        QTest::addColumn<int>("delay"); // -1: fails
        QTest::newRow("never") << u"5"_s << true << -5000;
        QTest::newRow("never at zero") << u"0"_s << true << 0;
        QTest::newRow("rounded to the even neighbour") << u"2.5"_s << false << 2000;
        QTest::newRow("past 16 bits") << u"40000"_s << false << 40000000;
        QTest::newRow("no seconds") << QString() << false << -1;
        QTest::newRow("too many milliseconds") << u"2147484"_s << false << -1;
    }

    void theDelayIsAppliedInMilliseconds()
    {
        QFETCH(QString, typed);
        QFETCH(bool, never);
        QFETCH(int, delay);
        box("txtRead")->setText(typed);
        check("chkNoRead")->setChecked(never);
        if (delay == -1) {
            QVERIFY_EXCEPTION_THROWN(m_form->handleApply(), RunTimeError);
            return;
        }
        m_form->handleApply();
        QCOMPARE(m_settings.readDelay, delay);
        box("txtSMTPPort")->setText(u"32768"_s);
        QVERIFY_EXCEPTION_THROWN(m_form->handleApply(), RunTimeError);
    }

    void theStartEntryIsMeasuredAgainstTheOpening()
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

private:
    void open()
    {
        m_form = std::make_unique<frmOptions>(
            &m_window, m_settings,
            frmOptions::RunAtStartup{[this] { return m_entry; }, [this](int state) { m_entry = state; }},
            [] { return QString(); });
        m_form->show();
    }

    QLineEdit *box(const char *name) const { return m_form->findChild<QLineEdit *>(QString::fromLatin1(name)); }
    QCheckBox *check(const char *name) const { return m_form->findChild<QCheckBox *>(QString::fromLatin1(name)); }
    QComboBox *mode() const { return m_form->findChild<QComboBox *>(u"cmbMode"_s); }
    QPushButton *apply() const { return m_form->findChild<QPushButton *>(u"cmdAppliquer"_s); }

    QWidget m_window;
    AppSettings m_settings;
    int m_entry = 0;
    std::unique_ptr<frmOptions> m_form;
};

QTEST_MAIN(OptionsTest)
#include "tst_frmOptions.moc"
