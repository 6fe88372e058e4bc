// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/Literals.h"
#include "platform/net/SmtpMail.h"
#include "tests/fixtures/LocalSmtpServer.h"
#include "tests/fixtures/ResidentMemory.h"
#include "tests/fixtures/Sanitizer.h"

#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <algorithm>
#include <functional>
#include <memory>
#include <tuple>

using Step = LocalSmtpServer::Step;

namespace {

/// The mail as Python's standard library reads it.
QJsonObject readByPython(const QByteArray &mail)
{
    // Names are taken apart first and decoded then: the newer reader of addresses leaves blanks between encoded words.
    const QString script =
        u"import sys, json, email, email.policy, email.utils\n"
        "from email.header import decode_header, make_header\n"
        "data = sys.stdin.buffer.read()\n"
        "m = email.message_from_bytes(data, policy=email.policy.default)\n"
        "assert not m.defects, m.defects\n"
        "raw = email.message_from_bytes(data)\n"
        "def one(field):\n"
        "  name, address = email.utils.parseaddr(raw[field].replace('\\r\\n', ''))\n"
        "  return {'name': str(make_header(decode_header(name))), 'address': address}\n"
        "json.dump({'from': one('From'), 'to': one('To'),\n"
        "  'subject': m['Subject'], 'date': m['Date'].datetime.timestamp(), 'id': m['Message-ID'],\n"
        "  'headers': sorted(m.keys()), 'body': m.get_payload(decode=True).decode(m.get_content_charset()),\n"
        "  'type': m.get_content_type()}, sys.stdout)\n"_s;
    QProcess python;
    python.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    python.start(u"python3"_s, {u"-c"_s, script});
    python.write(mail);
    python.closeWriteChannel();
    python.waitForFinished();
    return QJsonDocument::fromJson(python.readAllStandardOutput()).object();
}

} // namespace

class tst_SmtpMail : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_server = std::make_unique<LocalSmtpServer>(); }

    void mailArrivesAsItWasWritten()
    {
        const QString lengthy = QString(5000, u'x') + QString(200, u'é') + u' ' + QString(77, u'=');
        const QString pairs = u"\U0001F600"_s.repeated(40);
        // Subject, names, text, and the body that arrives.
        const QList<std::tuple<QString, QString, QString, QString>> rows = {
            {u""_s, u""_s, u""_s, u"\r\n"_s},
            {u"A subject"_s, u"A Name"_s, u"One\r\nTwo\r\n"_s, u"One\r\nTwo\r\n"_s},
            {u"L'été à Besançon"_s, u"Éloïse \"L.\" d'Été"_s, u"déjà vu"_s, u"déjà vu\r\n"_s},
            {u"=?UTF-8?Q?no?= =3D"_s, u"a, \"b\" \\ <c@d>; (e)"_s, u"=41 =\n"_s, u"=41 =\r\n"_s},
            {u"."_s, u"."_s, u".\n..\nFrom me\n.\r\n.x\n"_s, u".\r\n..\r\nFrom me\r\n.\r\n.x\r\n"_s},
            {u"s"_s, u"n"_s, u"a\rb\nc\r\nd\n\n"_s, u"a\r\nb\r\nc\r\nd\r\n\r\n"_s},
            {u"s"_s, u"n"_s, u"a \nb\t\n \n"_s, u"a \r\nb\t\r\n \r\n"_s},
            {u"s"_s, u"n"_s, u"a\0b\0é\0"_s, u"abé\r\n"_s},
            {QString(300, u'é') + QString(300, u'x'), QString(60, u'\u20ac'), lengthy, lengthy + u"\r\n"},
            {pairs, pairs, pairs, pairs + u"\r\n"},
        };
        for (const auto &[subject, name, text, body] : rows) {
            QCOMPARE(deliver(subject, name, text), u"sent");
            const LocalSmtpServer::Mail received = m_server->mails().last();
            QCOMPARE(received.from, QByteArray("<me@here.example>"));
            QCOMPARE(received.recipients, QList<QByteArray>{"<you@there.example>"});
            for (const QByteArray &line : received.data.split('\n')) {
                QVERIFY2(line.size() <= 77, line.constData());
                QVERIFY(
                    std::ranges::all_of(line, [](char byte) { return (byte >= ' ' && byte < 0x7f) || byte == '\r'; }));
            }
            QJsonObject read = readByPython(received.data);
            QVERIFY(read.take(u"id").toString().endsWith(u"@here.example>"));
            QVERIFY(qAbs(read.take(u"date").toDouble() - double(QDateTime::currentSecsSinceEpoch())) < 60);
            QCOMPARE(read.take(u"headers"_s).toVariant().toStringList().join(u' '),
                     u"Content-Transfer-Encoding Content-Type Date From MIME-Version Message-ID Subject To");
            const auto person = [&name = name](const QString &address) {
                return QJsonObject{{u"name"_s, name}, {u"address"_s, address}};
            };
            QCOMPARE(read, (QJsonObject{{u"subject"_s, subject},
                                        {u"body"_s, body},
                                        {u"type"_s, u"text/plain"_s},
                                        {u"from"_s, person(u"me@here.example"_s)},
                                        {u"to"_s, person(u"you@there.example"_s)}}));
        }
        QCOMPARE(m_server->mails().size(), rows.size());
    }

    void noFieldReachesHeadersOrEnvelope()
    {
        const QString attack =
            u"x\r\nBcc: evil@evil.example\r\n\r\n.\r\nMAIL FROM:<evil@evil.example>\u0085\u2028\x7f"_s;
        QCOMPARE(deliver(attack, attack, attack), u"sent");
        QCOMPARE(m_server->mails().size(), 1);
        const QJsonObject read = readByPython(m_server->mails().first().data);
        QCOMPARE(read.value(u"headers").toArray().size(), 8);
        QVERIFY(read.value(u"subject").toString().startsWith(u"x  Bcc: evil"));
        QVERIFY(!m_server->commands().join().contains("evil"));
    }

    void addressesAreCheckedBeforeAnythingIsSent()
    {
        for (const QString &address :
             {u""_s, u"you"_s, u"you@there.example> SIZE=1"_s, u"you@there.example,evil@evil.example"_s,
              u"you@there.example>\r\nRCPT TO:<evil@evil.example"_s, u"You <you@there.example>"_s,
              u"été@there.example"_s, QString(QString(300, u'x') + u"@there.example")}) {
            const auto mail = newMail();
            mail->setRecipient(address);
            QCOMPARE(send(*mail), u"L'adresse du destinataire est incorrecte : " + address);
            mail->setFrom(address);
            QCOMPARE(send(*mail), u"L'adresse de l'expéditeur est incorrecte : " + address);
        }
        QVERIFY(m_server->commands().isEmpty());
    }

    void envelopeTakesTheAsciiFormOfADomain()
    {
        const auto mail = newMail();
        mail->setRecipient(u" you+tag@été.example\n"_s);
        mail->setFrom(u"admin@localhost"_s);
        QCOMPARE(send(*mail), u"sent");
        QCOMPARE(m_server->mails().first().recipients, QList<QByteArray>{"<you+tag@xn--t-9fab.example>"});
        QCOMPARE(m_server->mails().first().from, QByteArray("<admin@localhost>"));
        QCOMPARE(MailMessage::envelopeAddress(u"you@[192.0.2.1]"_s), QByteArray("you@[192.0.2.1]"));
        QCOMPARE(MailMessage::envelopeAddress(u"you@[1]>[2]"_s), QByteArray());
    }

    void refusalIsExplainedByTheServersAnswer()
    {
        for (const Step step : {Step::Greeting, Step::MailFrom, Step::RcptTo, Step::Data, Step::EndOfData}) {
            m_server = std::make_unique<LocalSmtpServer>();
            m_server->refuseAt(step, "554-5.7.1 Not today\r\n554-Ask the postm\xE4ster\r\n554 ");
            QCOMPARE(send(*newMail()),
                     u"Le serveur SMTP a refusé le mail\u00a0:\n554 5.7.1 Not today\nAsk the postmäster"_s);
            QVERIFY(m_server->mails().isEmpty());
        }
    }

    void noServerHoldsOrSwellsASending()
    {
        using Hostility = std::function<void(LocalSmtpServer &)>;
        const auto flood = [](Step step, const char *portion, int everyMs = 0) -> Hostility {
            return [=](LocalSmtpServer &server) { server.floodAt(step, portion, everyMs); };
        };
        const QString endless = u"La réponse du serveur SMTP n'a pas de fin."_s;
        const QString late = u"Le serveur SMTP n'a pas répondu à temps."_s;
        const QString cut = u"La connexion avec le serveur SMTP a été coupée."_s;
        QList<QPair<Hostility, QString>> rows = {
            {flood(Step::Greeting, "220-hello\r\n"), endless},
            // Which of the bounds comes first in these two is up to the library.
            {flood(Step::Greeting, "220 hello"), u"L"_s},
            {flood(Step::Hello, "250-X\r\n"), u"L"_s},
            {flood(Step::Greeting, "220-hello\r\n", 50), late},
            {flood(Step::RcptTo, "x\r\n"), endless},
            {flood(Step::MailFrom, "550-no\r\n"), u"Le serveur SMTP a refusé le mail\u00a0:\n550 no\nno\n"_s},
            {flood(Step::EndOfData, "250-ok\r\n"), endless},
            {flood(Step::Quit, "221-x\r\n"), u"sent"_s},
        };
        for (const Step step : {Step::Greeting, Step::Hello, Step::MailFrom, Step::Data, Step::EndOfData, Step::Quit}) {
            const bool isTaken = step == Step::Quit;
            rows.append({[=](LocalSmtpServer &server) { server.stallAt(step); }, isTaken ? u"sent"_s : late});
            rows.append({[=](LocalSmtpServer &server) { server.dropAt(step); }, isTaken ? u"sent"_s : cut});
        }
        for (const auto &[hostility, outcome] : rows) {
            m_server = std::make_unique<LocalSmtpServer>();
            hostility(*m_server);
            QElapsedTimer timer, sinceLast;
            qint64 longest = 0;
            const auto mail = newMail([&] {
                longest = std::max(longest, sinceLast.restart());
                QCoreApplication::processEvents();
            });
            mail->setLimits({.idleMs = 300, .totalMs = 900});
            const qint64 before = residentBytes();
            timer.start();
            sinceLast.start();
            const QString told = send(*mail);
            const qint64 took = timer.elapsed();
            longest = std::max(longest, sinceLast.elapsed());
            const qint64 grown = residentBytes() - before;
            QVERIFY2(told.startsWith(outcome) && told.size() < 1200, qPrintable(told));
            QVERIFY2(took < (outcome == u"sent" ? 250 : 2000), QByteArray::number(took));
            QVERIFY2(isSanitized || grown < 6LL * 1024 * 1024, QByteArray::number(grown));
        }
    }

    void unreachableServerIsAFailure()
    {
        const QString incorrect = u"Le nom du serveur SMTP est incorrect : "_s;
        const QList<QPair<QString, QString>> hosts = {
            {u"127.0.0.1"_s, u"Le serveur SMTP ne peut pas être joint."_s},
            {u"no-such-host.invalid"_s, u"Le serveur SMTP est introuvable."_s},
            {QString(), incorrect},
            {u"127.0.0.1/x?y@z"_s, incorrect + u"127.0.0.1/x?y@z"}};
        const auto mail = newMail();
        m_server.reset();
        for (const auto &[host, explanation] : hosts) {
            mail->setSmtpHost(host);
            QCOMPARE(send(*mail), explanation);
        }
    }

    void sendingTwiceAtOnceAndDyingMeanwhileAreHarmless()
    {
        std::unique_ptr<SmtpMail> mail;
        bool again = true;
        int events = 0;
        mail = newMail([&] {
            QCoreApplication::processEvents();
            if (std::exchange(again, false))
                mail->Send();
        });
        connect(mail.get(), &SmtpMail::SendFailed, this, [&events] { events += 1; });
        connect(mail.get(), &SmtpMail::SendSuccesful, this, [&events] { events += 10; });
        m_server->stallAt(Step::Quit);
        mail->setLimits({.idleMs = 300});
        mail->Send();
        QCOMPARE(events, 11);
        QCOMPARE(m_server->mails().size(), 1);

        m_server->stallAt(Step::Hello);
        mail = newMail([&mail] {
            QCoreApplication::processEvents();
            mail.reset();
        });
        mail->Send();
        QVERIFY(!mail);

        QCOMPARE(send(*newMail([] {}, false)), u"L'envoi a été interrompu.");
    }

private:
    std::unique_ptr<SmtpMail> newMail(
        const std::function<void()> &keepAlive = [] { QCoreApplication::processEvents(); }, bool goesOn = true)
    {
        auto mail = std::make_unique<SmtpMail>([keepAlive, goesOn] {
            keepAlive();
            return goesOn;
        });
        mail->setSmtpHost(u"127.0.0.1"_s);
        mail->setPort(m_server->port());
        mail->setFrom(u"me@here.example"_s);
        mail->setRecipient(u"you@there.example"_s);
        return mail;
    }

    /// "sent", or the explanation; "?" when there wasn't exactly one event.
    QString send(SmtpMail &mail)
    {
        QSignalSpy successes(&mail, &SmtpMail::SendSuccesful);
        QSignalSpy failures(&mail, &SmtpMail::SendFailed);
        mail.Send();
        if (successes.size() + failures.size() != 1)
            return u"?"_s;
        return failures.isEmpty() ? u"sent"_s : failures.first().first().toString();
    }

    QString deliver(const QString &subject, const QString &name, const QString &text)
    {
        const auto mail = newMail();
        mail->setSubject(subject);
        mail->setFromDisplayName(name);
        mail->setRecipientDisplayName(name);
        mail->setMessage(text);
        return send(*mail);
    }

    std::unique_ptr<LocalSmtpServer> m_server;
};

QTEST_GUILESS_MAIN(tst_SmtpMail)
#include "tst_SmtpMail.moc"
