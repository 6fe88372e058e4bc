// SPDX-License-Identifier: GPL-3.0-or-later

#include "core/AppSettings.h"
#include "dialogs/frmSendMail.h"
#include "platform/Literals.h"
#include "platform/net/SmtpMail.h"
#include "tests/fixtures/FakeMessages.h"
#include "tests/fixtures/LocalSmtpServer.h"

#include <QLabel>
#include <QLineEdit>
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
        m_settings.fromMail = u"moi@example.org"_s;
        const auto make = [this](std::function<void()> keepAlive) {
            auto mail = std::make_unique<SmtpMail>([keepAlive = std::move(keepAlive)] {
                keepAlive();
                return true;
            });
            mail->setPort(m_server->port());
            mail->setLimits({.idleMs = 300});
            return mail;
        };
        m_form = std::make_unique<frmSendMail>(
            &m_window, m_settings, *m_messages, QString(), [this](int ms) { m_onWait(ms); }, make);
        m_form->show();
    }

    void cleanup() { m_form.reset(); }

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
        m_form->findChild<QLineEdit *>(u"txtDestMail"_s)->setText(u"toi@example.org"_s);

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
        m_form->findChild<QPushButton *>(u"cmdEnvoyer"_s)->click();
        QCOMPARE(passedMeanwhile, QStringList());
        QVERIFY(paints.count > 0);
        QTRY_COMPARE(passed.size(), 3);
    }

private:
    std::unique_ptr<LocalSmtpServer> m_server;
    QWidget m_window;
    AppSettings m_settings;
    std::unique_ptr<FakeMessages> m_messages;
    std::function<void(int)> m_onWait;
    std::unique_ptr<frmSendMail> m_form;
};

QTEST_MAIN(SendMailTest)
#include "tst_frmSendMail.moc"
