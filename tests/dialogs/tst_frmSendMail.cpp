// SPDX-License-Identifier: GPL-3.0-or-later

#include "core/AppSettings.h"
#include "dialogs/frmSendMail.h"
#include "platform/Literals.h"
#include "platform/net/SmtpMail.h"
#include "tests/fixtures/FakeMessages.h"
#include "tests/fixtures/LocalSmtpServer.h"

#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>
#include <QTimer>

namespace {

struct PaintCount : public QObject
{
    bool eventFilter(QObject *, QEvent *event) override
    {
        count += event->type() == QEvent::Paint ? 1 : 0;
        return false;
    }

    int count = 0;
};

} // namespace

class SendMailTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_server = std::make_unique<LocalSmtpServer>();
        m_messages = std::make_unique<FakeMessages>();
        m_settings.smtpServer = u"127.0.0.1"_s;
        m_settings.smtpPort = 1; // kept, but never handed over
        m_settings.fromMail = u"moi@example.org"_s;
        m_settings.fromName = u"Moi"_s;
        m_onWait = [](int) {};
        const auto make = [this](std::function<void()> keepAlive) {
            auto mail = std::make_unique<SmtpMail>([keepAlive = std::move(keepAlive)] {
                keepAlive();
                return true;
            });
            mail->setPort(m_server->port());
            mail->setLimits({.idleMs = 300});
            return mail;
        };
        const QString body = u"Titre\r\n\r\nT"_s + QChar(0) + u"exte\u00a0:\u2028fin\r\n"_s;
        m_form = std::make_unique<frmSendMail>(
            &m_window, m_settings, *m_messages, body, [this](int ms) { m_onWait(ms); }, make);
        m_form->show();
    }

    void cleanup() { m_form.reset(); }

    void aRecipientIsRequired()
    {
        button("cmdEnvoyer")->click();
        QCOMPARE(m_messages->shown.size(), 1U);
        QCOMPARE(m_messages->shown[0].text, u"Veuillez spécifier l'email du destinataire"_s);
        QCOMPARE(m_messages->shown[0].title, u"Attention"_s);
        QCOMPARE(m_messages->shown[0].icon, Message::Icon::Exclamation);
        QVERIFY(button("cmdEnvoyer")->isEnabled() && m_server->commands().isEmpty());
    }

    void aMailCarriesWhatTheDialogHoldsWhichClosesASecondLater()
    {
        box("txtDestMail")->setText(u"toi@example.org"_s);
        box("txtDestName")->setText(u"Toi"_s);
        box("txtSujet")->setText(u"Une news"_s);
        int waited = 0;
        m_onWait = [&](int milliseconds) {
            waited = milliseconds;
            QCOMPARE(state(), u"Envoi réussi"_s);
            button("cmdAnnuler")->click();
            QTest::keyClick(m_form.get(), Qt::Key_Escape);
            QVERIFY(m_form->isVisible());
        };
        button("cmdEnvoyer")->click();
        QCOMPARE(waited, 1000);
        QVERIFY(!m_form->isVisible() && m_messages->shown.empty());
        QCOMPARE(m_server->mails().size(), 1);
        const LocalSmtpServer::Mail mail = m_server->mails().constFirst();
        QCOMPARE(mail.from, QByteArray("<moi@example.org>"));
        QCOMPARE(mail.recipients, QList<QByteArray>{"<toi@example.org>"});
        for (const char *const part : {"Subject: Une news", "Moi", "Toi", "Titre\r\n\r\nTexte=C2=A0:\r\nfin\r\n"})
            QVERIFY2(mail.data.contains(part), mail.data.constData());
    }

    void aRefusalIsToldAndNothingTypedIsLost()
    {
        m_server->refuseAt(LocalSmtpServer::Step::RcptTo, "550 5.1.1 No such user");
        box("txtDestMail")->setText(u"toi@example.org"_s);
        box("txtSujet")->setText(u"S"_s);
        m_messages->onShow = [this](const Message &) {
            QCOMPARE(state(), u"Connexion au serveur"_s);
            QVERIFY(!button("cmdEnvoyer")->isEnabled() && !button("cmdAnnuler")->isEnabled());
        };
        button("cmdEnvoyer")->click();
        QCOMPARE(m_messages->shown.size(), 1U);
        const Message &message = m_messages->shown[0];
        QVERIFY(message.text.startsWith(u"Une erreur est survenue pendant l'envoi du mail :\n\n"_s));
        QVERIFY2(message.text.contains(u"No such user"_s), qPrintable(message.text));
        QCOMPARE(message.title, u"Erreur"_s);
        QCOMPARE(message.icon, Message::Icon::Critical);
        QVERIFY(m_form->isVisible() && button("cmdEnvoyer")->isEnabled() && button("cmdAnnuler")->isEnabled());
        QCOMPARE(state(), QString());
        QCOMPARE(box("txtSujet")->text(), u"S"_s);
    }

    void onlyPaintsPassWhileAMailIsSent_data()
    {
        QTest::addColumn<LocalSmtpServer::Step>("slowStep");
        QTest::newRow("until it fails") << LocalSmtpServer::Step::Greeting;
        QTest::newRow("until a second after it is sent") << LocalSmtpServer::Step::Quit;
    }

    void onlyPaintsPassWhileAMailIsSent()
    {
        QFETCH(LocalSmtpServer::Step, slowStep);
        QVERIFY(QTest::qWaitForWindowExposed(m_form.get()));
        QCoreApplication::processEvents();
        m_server->stallAt(slowStep);
        box("txtDestMail")->setText(u"toi@example.org"_s);

        // What an update or a page does in the middle of a mail, by each of the roads of the event loop.
        QStringList passed;
        QTimer::singleShot(0, this, [&] { passed.append(u"a timer"_s); });
        QMetaObject::invokeMethod(
            this, [&] { passed.append(u"a queued call"_s); }, Qt::QueuedConnection);
        QTcpServer network;
        QVERIFY(network.listen(QHostAddress::LocalHost));
        connect(&network, &QTcpServer::newConnection, this, [&] { passed.append(u"the network"_s); });
        QTcpSocket client;
        client.connectToHost(QHostAddress::LocalHost, network.serverPort());
        PaintCount paints;
        m_form->findChild<QLabel *>(u"lblEtat"_s)->installEventFilter(&paints);
        QStringList passedMeanwhile = {u"never looked"_s};
        m_messages->onShow = [&](const Message &) { passedMeanwhile = passed; };
        m_onWait = [&](int) {
            Waiting::repaintingWait()(50);
            passedMeanwhile = passed;
        };
        button("cmdEnvoyer")->click();
        QCOMPARE(passedMeanwhile, QStringList());
        QVERIFY(paints.count > 0);
        QTRY_COMPARE(passed.size(), 3);
    }

    void enterInABoxSendsNothing()
    {
        box("txtDestMail")->setText(u"toi@example.org"_s);
        QTest::keyClick(box("txtDestMail"), Qt::Key_Return);
        QVERIFY(m_server->commands().isEmpty() && m_form->isVisible());
        m_form->findChild<QPlainTextEdit *>(u"txtContent"_s)->setFocus();
        QTest::keyClick(m_form.get(), Qt::Key_Escape);
        QVERIFY(!m_form->isVisible());
    }

private:
    QLineEdit *box(const char *name) const { return m_form->findChild<QLineEdit *>(QString::fromLatin1(name)); }
    QPushButton *button(const char *name) const { return m_form->findChild<QPushButton *>(QString::fromLatin1(name)); }
    QString state() const { return m_form->findChild<QLabel *>(u"lblEtat"_s)->text(); }

    std::unique_ptr<LocalSmtpServer> m_server;
    QWidget m_window;
    AppSettings m_settings;
    std::unique_ptr<FakeMessages> m_messages;
    std::function<void(int)> m_onWait;
    std::unique_ptr<frmSendMail> m_form;
};

QTEST_MAIN(SendMailTest)
#include "tst_frmSendMail.moc"
