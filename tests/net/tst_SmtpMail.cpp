// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/net/SmtpMail.h"
#include "tests/fixtures/LocalSmtpServer.h"
#include "tests/fixtures/ResidentMemory.h"
#include "tests/fixtures/Sanitizer.h"
#include "tests/fixtures/Steps.h"
#include "tests/fixtures/TextCases.h"

#include <QElapsedTimer>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>
#include <QUrl>

#include <algorithm>
#include <functional>
#include <memory>

using Step = LocalSmtpServer::Step;

class tst_SmtpMail : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_server = std::make_unique<LocalSmtpServer>(); }

    /// Subject, name and text of each stand in data/mails.txt, with what can't be seen as "%01".
    void mailsAreWrittenAsTheStandardsSay()
    {
        QString told;
        for (const TextCase &each : readCases(u"mails.txt"_s)) {
            QStringList parts;
            for (const QByteArray &part : each.documents)
                parts += QUrl::fromPercentEncoding(part.trimmed());
            const MailMessage::Fields fields{
                u"me@here.example"_s, parts[1], u"you@été.example"_s, parts[1], parts[0], parts[2]};
            const QByteArray mail =
                MailMessage::compose(fields, QDateTime({2004, 7, 1}, {14, 0}, Qt::OffsetFromUTC, 7200), "id@here");
            QCOMPARE(mail.count('\n'), mail.count("\r\n"));
            told += u"=== "_s + each.name + u'\n' + QString::fromUtf8(mail).remove(u'\r');
        }
        QCOMPARE(differenceFromGolden(u"mails.expected"_s, told), QString());
    }

    void addressesAreMadeFitForTheEnvelope()
    {
        const auto take = [](const QString &step, const QString &) {
            return QString::fromLatin1(MailMessage::envelopeAddress(QUrl::fromPercentEncoding(step.toUtf8())));
        };
        QCOMPARE((Steps{{}, take}.differenceFrom(u"addresses.steps"_s)), QString());
        const auto mail = newMail();
        mail->setRecipient(u"you"_s);
        QCOMPARE(send(*mail), u"L'adresse du destinataire est incorrecte : you"_s);
        mail->setFrom(u"me"_s);
        QCOMPARE(send(*mail), u"L'adresse de l'expéditeur est incorrecte : me"_s);
        QVERIFY(m_server->commands().isEmpty());
    }

    void whatIsSetArrives()
    {
        const auto mail = newMail();
        mail->setSmtpHost(u" 127.0.0.1\n"_s);
        mail->setFromDisplayName(u"Me"_s);
        mail->setRecipientDisplayName(u"You"_s);
        mail->setSubject(u"s"_s);
        mail->setMessage(u".\n..t"_s);
        QCOMPARE(send(*mail), u"sent"_s);
        QCOMPARE(m_server->mails().size(), 1);
        const LocalSmtpServer::Mail received = m_server->mails().first();
        QCOMPARE(received.from + received.recipients.join(), QByteArray("<me@here.example><you@there.example>"));
        const QRegularExpression form(
            u"^Date: ([^\r]*)\r\nFrom: \"Me\"\r\n <me@here.example>\r\nTo: \"You\"\r\n <you@there.example>\r\nSubject: "
            u"s\r\n"
            "Message-ID: <[-0-9a-f]{36}@here.example>\r\n(?:[-A-Z].*\r\n)+\r\n\\.\r\n\\.\\.t\r\n$"_s);
        const auto mailFound = form.match(QString::fromUtf8(received.data));
        QVERIFY2(mailFound.hasMatch(), received.data);
        const QDateTime sent = QDateTime::fromString(mailFound.captured(1), Qt::RFC2822Date);
        QVERIFY(qAbs(sent.secsTo(QDateTime::currentDateTime())) < 60);
    }

    /// Every answer at every step: what the user is told, and what the server has heard.
    void everyAnswerAtEveryStepIsUnderstood()
    {
        const QList<QPair<Step, QString>> steps = {{Step::Greeting, u"greeting"_s}, {Step::Hello, u"hello"_s},
                                                   {Step::MailFrom, u"sender"_s},   {Step::RcptTo, u"recipient"_s},
                                                   {Step::Data, u"data"_s},         {Step::EndOfData, u"end of data"_s},
                                                   {Step::Quit, u"good-bye"_s}};
        const QByteArrayList answers = {
            "421 4.3.2 Closing", "450 4.2.0 Later",
            "550 5.1.1 No",      "554-5.7.1 Not today\r\n554-Ask the postm\xE4ster\x01\r\n554 ",
            "299 Very well",     "399 What?",
            "550-\r\n550"};
        QString told;
        for (const auto &[step, name] : steps)
            for (const QByteArray &answer : answers) {
                m_server = std::make_unique<LocalSmtpServer>();
                m_server->refuseAt(step, answer);
                const auto mail = newMail();
                mail->setLimits({.idleMs = 2000, .totalMs = 4000});
                const QString outcome = send(*mail);
                QTRY_VERIFY(outcome != u"sent" || m_server->commands().constLast() == "QUIT"); // it isn't waited for
                told += u"=== "_s + name + u": "_s + QString::fromLatin1(answer.simplified()) + u'\n' + outcome +
                        u'\n' +
                        QString::fromLatin1(m_server->commands().join('\n'))
                            .replace(QRegularExpression(u"LO .*"_s), u"LO us"_s) +
                        u"\nmails taken: %1\n"_s.arg(m_server->mails().size());
            }
        QCOMPARE(differenceFromGolden(u"dialogues.expected"_s, told), QString());
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
        const QString sent = u"sent"_s;
        const QString refused = u"Le serveur SMTP a refusé le mail\u00a0:\n"_s +
                                QString(u"550 no"_s + u"\nno"_s.repeated(400)).left(1000) + u"\u2026"_s;
        QList<QPair<Hostility, QString>> rows = {
            {flood(Step::Greeting, "220-hello\r\n"), endless},
            // Which of the bounds comes first in these two is up to the library.
            {flood(Step::Greeting, "220 hello"), u"L"_s},
            {flood(Step::Hello, "250-X\r\n"), u"L"_s},
            {flood(Step::Greeting, "220-hello\r\n", 50), late},
            {flood(Step::RcptTo, "x\r\n"), endless},
            {flood(Step::MailFrom, "550-no\r\n"), refused},
            {flood(Step::EndOfData, "250-ok\r\n"), endless},
            {flood(Step::Quit, "221-x\r\n"), sent},
        };
        for (const Step step : {Step::Greeting, Step::Hello, Step::MailFrom, Step::Data, Step::EndOfData, Step::Quit}) {
            const bool isTaken = step == Step::Quit;
            rows.append({[=](LocalSmtpServer &server) { server.stallAt(step); }, isTaken ? sent : late});
            rows.append({[=](LocalSmtpServer &server) { server.dropAt(step); }, isTaken ? sent : cut});
        }
        for (const auto &[hostility, outcome] : rows) {
            m_server = std::make_unique<LocalSmtpServer>();
            hostility(*m_server);
            QElapsedTimer timer, sinceLast;
            qint64 longest = 0;
            const auto mail = newMail([&] { longest = std::max(longest, sinceLast.restart()); });
            if (outcome == sent) // the good-bye isn't waited for
                mail->setLimits({.idleMs = 5000, .totalMs = 5000});
            else
                mail->setLimits({.idleMs = 300, .totalMs = 900});
            const qint64 before = residentBytes();
            timer.start();
            sinceLast.start();
            const QString told = send(*mail);
            QVERIFY2(outcome == u"L" ? told.startsWith(outcome) : told == outcome, qPrintable(told));
            QVERIFY2(timer.elapsed() < 3000, QByteArray::number(timer.elapsed()));
            QVERIFY2(longest < 500, QByteArray::number(longest));
            const qint64 grown = residentBytes() - before;
            QVERIFY2(isSanitized || grown < 6LL * 1024 * 1024, QByteArray::number(grown));
        }
    }

    void unreachableServerIsAFailure()
    {
        const QString incorrect = u"Le nom du serveur SMTP est incorrect : "_s;
        const QString absent = u"Le serveur SMTP ne peut pas être joint."_s;
        const QList<QPair<QString, QString>> hosts = {
            {u"127.0.0.1"_s, absent},
            {u"::1"_s, absent},
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
        QStringList events;
        std::unique_ptr<SmtpMail> mail;
        bool again = true;
        mail = newMail([&] {
            if (std::exchange(again, false))
                mail->Send();
        });
        connect(mail.get(), &SmtpMail::SendFailed, this, [&events](const QString &why) { events += why; });
        connect(mail.get(), &SmtpMail::SendSuccesful, this, [&events] { events += u"sent"_s; });
        mail->Send();
        mail->Send();
        QCOMPARE(events, (QStringList{u"Un envoi est déjà en cours."_s, u"sent"_s, u"sent"_s}));
        QCOMPARE(m_server->mails().size(), 2);

        m_server->stallAt(Step::Hello);
        mail = newMail([&mail] { mail.reset(); });
        mail->Send();
        QVERIFY(!mail);

        QCOMPARE(send(*newMail([] {}, false)), u"L'envoi a été interrompu."_s);
    }

private:
    std::unique_ptr<SmtpMail> newMail(
        const std::function<void()> &meanwhile = [] {}, bool goesOn = true)
    {
        auto mail = std::make_unique<SmtpMail>([meanwhile, goesOn] {
            QCoreApplication::processEvents();
            meanwhile();
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

    std::unique_ptr<LocalSmtpServer> m_server;
};

QTEST_GUILESS_MAIN(tst_SmtpMail)
#include "tst_SmtpMail.moc"
