// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/Literals.h"
#include "platform/net/Downloader.h"

#include "platform/Files.h"
#include "tests/fixtures/LocalHttpServer.h"

#include <QDir>
#include <QScopeGuard>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>

#include <memory>
#include <tuple>

using Answer = LocalHttpServer::Answer;

class tst_Downloader : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_directory = std::make_unique<QTemporaryDir>();
        m_destination = m_directory->filePath(u"tmp.xml"_s);
        Files::write(m_destination, "old");
        m_server = std::make_unique<LocalHttpServer>();
        m_ends.reset();
        m_downloader = std::make_unique<Downloader>();
        m_ends = std::make_unique<QSignalSpy>(m_downloader.get(), &Downloader::DownloadComplete);
    }

    void wholeBodyReplacesTheDestination()
    {
        const QByteArray body = QByteArray(3 * 1024 * 1024, 'x') + QByteArray("\0\r\n", 3);
        m_server->setBody(u"/feed.xml?a=%C3%A9"_s, body);
        QCOMPARE(fetch(m_server->url(u"/feed.xml?a=é#part"_s)), 200);
        QCOMPARE(destinationBytes(), body);
        m_server->setBody(u"/empty"_s, QByteArray());
        QCOMPARE(fetch(m_server->url(u"/empty"_s)), 200);
        QCOMPARE(destinationBytes(), QByteArray());
    }

    void progressRisesWithTheBodyAndEndsAtAHundred()
    {
        Answer small, untold, empty, coded, slow;
        small.body = untold.body = "small";
        untold.declaredLength = -2;
        coded.headers = {{"Content-Encoding", "deflate"}};
        coded.body = qCompress(QByteArray(50000, 'x')).mid(4);
        slow.body = QByteArray(50, 'x');
        slow.trickleMs = 10;
        QList<double> percents;
        connect(m_downloader.get(), &Downloader::DownloadProgress, this, [&](double done) { percents.append(done); });
        connect(m_downloader.get(), &Downloader::DownloadComplete, this, [&] { percents.append(1000); });
        for (const Answer &answer : {small, untold, empty, coded, slow}) {
            percents.clear();
            m_server->setAnswer(u"/a"_s, answer);
            QCOMPARE(fetch(m_server->url(u"/a"_s)), 200);
            QVERIFY(percents.size() >= 2 && std::ranges::is_sorted(percents) && percents.first() > 0);
            QCOMPARE(percents.mid(percents.size() - 2), (QList<double>{100, 1000}));
            QCOMPARE(percents.size() > 10, answer.trickleMs > 0);
        }
    }

    void whatCantBeFetchedLeavesTheDestinationAlone()
    {
        // Not found, and cut short at that; success of another kind.
        for (const auto &[status, declaredLength] : {std::pair(404, -1), {404, 100}, {203, -1}}) {
            Answer answer;
            answer.status = status;
            answer.body = "half of a body";
            answer.declaredLength = declaredLength;
            m_server->setAnswer(u"/a"_s, answer);
            QCOMPARE(fetch(m_server->url(u"/a"_s)), status);
        }
        for (const QString &url : {u"http://no-such-host.invalid/"_s, u""_s})
            QCOMPARE(fetch(url), Downloader::HostNotFound);
        for (const QString &url : {u"file:///etc/passwd"_s, u"ftp://127.0.0.1/"_s, u"data:text/xml,<a/>"_s}) {
            QCOMPARE(fetch(url), Downloader::AddressNotSupported);
            m_server->setAnswer(u"/away"_s, Answer::redirect(url));
            QCOMPARE(fetch(m_server->url(u"/away"_s)), Downloader::AddressNotSupported);
        }
        QCOMPARE(destinationBytes(), QByteArray("old"));
    }

    void refusedConnectionAndUnwritableDestinationAreTold()
    {
        m_server->setBody(u"/a"_s, "body");
        m_destination = m_directory->filePath(u"absent/tmp.xml"_s);
        QCOMPARE(fetch(m_server->url(u"/a"_s)), Downloader::WriteFailed);
        m_destination = m_directory->filePath(u"tmp.xml"_s);
        const QString url = m_server->url(u"/a"_s);
        m_server->close();
        QCOMPARE(fetch(url), Downloader::ConnectionRefused);
    }

    void silentAndTricklingServersAreCutOff()
    {
        m_downloader->setLimits({.idleMs = 300, .totalMs = 900});
        Answer silent, halting, trickling;
        silent.silent = true;
        halting.stallsAtEnd = true;
        trickling.trickleMs = 50;
        for (Answer answer : {silent, halting, trickling}) {
            answer.body = QByteArray(1000, 'x');
            answer.declaredLength = 5000;
            m_server->setAnswer(u"/slow"_s, answer);
            QElapsedTimer timer;
            timer.start();
            QCOMPARE(fetch(m_server->url(u"/slow"_s)), Downloader::TimedOut);
            // What shows signs of life lives until the whole time is up.
            QCOMPARE(timer.elapsed() >= 850, answer.trickleMs > 0);
            QCOMPARE(destinationBytes(), QByteArray("old"));
        }
    }

    void codedContentArrivesDecoded()
    {
        QByteArray body;
        for (int i = 0; i < 200000; ++i)
            body += QByteArray::number(i * 7919) + '\n';
        const QByteArray zlib = qCompress(body).mid(4);
        const QByteArray twoMembers = QByteArray::fromHex("1f8b0800000000000203cbcf4be502009fa817f804000000"
                                                          "1f8b08000000000002032b29cfe702007408179604000000");
        const QList<std::tuple<QByteArray, QByteArray, QByteArray>> rows = {
            {"deflate", zlib, body},
            {"Deflate", zlib.mid(2).chopped(4), body}, // without a frame
            {"x-gzip", twoMembers, "one\ntwo\n"},
            {"gzip", twoMembers + QByteArray(9, '\0'), "one\ntwo\n"},
            {"br", QByteArray::fromHex("1b1300f8c55396ba754cb6d770758a2c5190fe365368e800"), "<rss version=\"2.0\"/>"},
            {"utf-8", "text", "text"}, // no coding
            {"gzip", "", ""},
        };
        for (const auto &[coding, coded, decoded] : rows) {
            Answer answer;
            answer.body = coded;
            answer.headers = {{"Content-Encoding", coding}};
            for (const bool slowly : {false, true}) {
                answer.trickleMs = slowly && answer.body.size() < 100 ? 1 : 0;
                m_server->setAnswer(u"/coded"_s, answer);
                QCOMPARE(fetch(m_server->url(u"/coded"_s)), 200);
                QCOMPARE(destinationBytes(), decoded);
            }
        }
    }

    void requestsSayWhoAsksAndWhatIsTaken()
    {
        m_server->setBody(u"/a"_s, "body");
        QCOMPARE(fetch(m_server->url(u"/a"_s)), 200);
        QCOMPARE(m_server->requests().constLast().method, QByteArray("GET"));
        auto headers = m_server->requests().constLast().headers;
        QVERIFY(headers.take("user-agent").startsWith("Quillwire/"));
        QVERIFY(headers.take("accept-language").endsWith(",*"));
        QCOMPARE(headers, (decltype(headers){{"accept", "*/*"},
                                             {"accept-encoding", "gzip, deflate, br"},
                                             {"connection", "Keep-Alive"},
                                             {"host", "127.0.0.1:" + QByteArray::number(m_server->port())}}));
    }

    void theProxyOfTheEnvironmentIsAsked()
    {
        const QString address = u"http://somewhere.invalid/feed"_s;
        m_server->setBody(address, "by proxy");
        qputenv("http_proxy", m_server->url(QString()).replace(u"http://"_s, u"http://me:pw@"_s).toUtf8());
        const auto direct = qScopeGuard([] { qunsetenv("http_proxy"); });
        QCOMPARE(fetch(address), 200);
        QCOMPARE(destinationBytes(), QByteArray("by proxy"));
        QCOMPARE(m_server->lastRequest(address).header("proxy-authorization"),
                 "Basic " + QByteArray("me:pw").toBase64());
    }

    void redirectionsAreFollowedToTheirLimit()
    {
        m_server->setBody(u"/end"_s, "body");
        for (const int code : {301, 302, 303, 307, 308}) {
            m_server->setAnswer(u"/start"_s, Answer::redirect(u"end"_s, code));
            QCOMPARE(fetch(m_server->url(u"/start"_s)), 200);
            QCOMPARE(destinationBytes(), QByteArray("body"));
        }
        m_server->setAnswer(u"/loop"_s, Answer::redirect(u"/loop"_s));
        QCOMPARE(fetch(m_server->url(u"/loop"_s)), Downloader::TooManyRedirections);
        QCOMPARE(m_server->hits(u"/loop"_s), 11);
        m_server->setAnswer(u"/nowhere"_s, Answer::redirect(QString()));
        QCOMPARE(fetch(m_server->url(u"/nowhere"_s)), Downloader::TooManyRedirections);
        m_server->setAnswer(u"/gone"_s, Answer::redirect(u"/missing"_s));
        QCOMPARE(fetch(m_server->url(u"/gone"_s)), 404);
    }

    void redirectionToASecureAddressIsTried()
    {
        QTcpServer notSecure;
        QVERIFY(notSecure.listen(QHostAddress::LocalHost));
        QByteArray received;
        connect(&notSecure, &QTcpServer::newConnection, this, [&] {
            QTcpSocket *const socket = notSecure.nextPendingConnection();
            connect(socket, &QTcpSocket::readyRead, this, [&received, socket] {
                received += socket->readAll();
                socket->write("HTTP/1.1 400 This is no TLS\r\n\r\n");
                socket->disconnectFromHost();
            });
        });
        const QString target = u"https://127.0.0.1:" + QString::number(notSecure.serverPort()) + u"/";
        m_server->setAnswer(u"/start"_s, Answer::redirect(target));
        QCOMPARE(fetch(m_server->url(u"/start"_s), u"me"_s, u"secret"_s), Downloader::SecureConnectionFailed);
        // The first byte of a TLS handshake; nothing went out in the clear.
        QVERIFY(received.startsWith('\x16'));
        QVERIFY(!received.contains("Authorization"));
        QCOMPARE(destinationBytes(), QByteArray("old"));
    }

    void credentialsGoToTheAskedHostAlone()
    {
        LocalHttpServer other;
        other.setBody(u"/end"_s, "body");
        m_server->setBody(u"/end"_s, "body");
        const auto sent = [this](const QString &target, const LocalHttpServer &receiver) {
            m_server->setAnswer(u"/start"_s, Answer::redirect(target));
            const qint32 status = fetch(m_server->url(u"/start"_s), u"me"_s, u"sécret:x"_s);
            return status == 200 ? receiver.lastRequest(u"/end"_s).header("authorization") : QByteArray("failed");
        };
        QCOMPARE(sent(u"/end"_s, *m_server), "Basic " + QByteArrayLiteral("me:sécret:x").toBase64());
        QCOMPARE(sent(m_server->url(u"/end"_s, u"localhost"_s), *m_server), QByteArray());
        QCOMPARE(sent(other.url(u"/end"_s), other), QByteArray());
        // Nor does a redirection bring credentials of its own.
        QCOMPARE(sent(other.url(u"/end"_s).replace(u"127.0.0.1"_s, u"evil:pw@127.0.0.1"_s), other), QByteArray());
    }

    void challengesAreNeverAnswered()
    {
        for (const char *challenge :
             {"Basic realm=\"r\"", "Digest realm=\"r\", nonce=\"n\", qop=\"auth\"", "NTLM", "Negotiate", ""}) {
            m_server->setAnswer(u"/closed"_s, Answer::unauthorized(challenge));
            const int before = m_server->totalHits();
            QCOMPARE(fetch(m_server->url(u"/closed"_s), u"me"_s, u"wrong"_s), Downloader::AuthenticationAsked);
            QCOMPARE(m_server->requests().last().credentials(), u"me:wrong"); // sent unasked
            // They don't stay for the next download.
            QCOMPARE(fetch(m_server->url(u"/closed"_s)), Downloader::AuthenticationAsked);
            QCOMPARE(m_server->requests().last().header("authorization"), QByteArray());
            QCOMPARE(m_server->totalHits(), before + 2);
        }
        QCOMPARE(destinationBytes(), QByteArray("old"));
        m_server->setProtectedBody(u"/b"_s, "body", u"m@e"_s, u"p w"_s);
        QCOMPARE(fetch(m_server->url(u"/b"_s).replace(u"http://"_s, u"http://m%40e:p%20w@"_s)), 200);
    }

    void whatIsAbandonedEndsExactlyOnce()
    {
        Answer silent, slow;
        silent.silent = true;
        slow.body = "slow";
        slow.stallsAtEnd = true;
        slow.declaredLength = 100;
        m_server->setAnswer(u"/silent"_s, silent);
        m_server->setAnswer(u"/slow"_s, slow);
        m_server->setBody(u"/quick"_s, "quick");
        m_downloader->CancelDownload();
        begin(m_server->url(u"/silent"_s));
        QTRY_COMPARE(m_server->totalHits(), 1);
        m_downloader->CancelDownload();
        m_downloader->CancelDownload();
        QTest::qWait(50);
        QCOMPARE(m_ends->size(), 1);
        begin(u"ftp://x/"_s); // has failed and not told so yet
        m_downloader->CancelDownload();
        begin(m_server->url(u"/slow"_s));
        QTRY_COMPARE(m_server->totalHits(), 2);
        begin(m_server->url(u"/quick"_s));
        QCOMPARE(m_ends->size(), 2); // the old one's end is told later
        QTRY_COMPARE(m_ends->size(), 4);
        for (const int end : {0, 1, 2})
            QCOMPARE(m_ends->at(end).first().toInt(), int(Downloader::Cancelled));
        QCOMPARE(m_ends->at(3).first().toInt(), 200);
        QCOMPARE(destinationBytes(), QByteArray("quick"));

        // A slot may start the next download, or destroy the downloader.
        int again = 0;
        connect(m_downloader.get(), &Downloader::DownloadComplete, this, [&] {
            if (++again == 1)
                begin(m_server->url(u"/quick"_s));
            else
                m_downloader.release()->deleteLater();
        });
        begin(m_server->url(u"/quick"_s));
        QTRY_VERIFY(!m_downloader);
        QCOMPARE(again, 2);
    }

private:
    void begin(const QString &url) { m_downloader->Download(url, 0, m_destination, {}, {}); }
    /// Downloads to the end; -1 when it doesn't end, -2 when it ends more than once or leaves something in the
    /// directory.
    qint32 fetch(const QString &url, const QString &username = QString(), const QString &password = QString())
    {
        m_ends->clear();
        m_downloader->Download(url, 0, m_destination, username, password);
        if (!m_ends->isEmpty())
            return -2;
        if (!m_ends->wait(10000))
            return -1;
        QTest::qWait(30);
        const bool tidy = QDir(m_directory->path()).entryList(QDir::Files) == QStringList{u"tmp.xml"_s};
        return m_ends->size() == 1 && tidy ? m_ends->first().first().toInt() : -2;
    }
    QByteArray destinationBytes() const { return Files::read(m_destination).bytes; }

    std::unique_ptr<QTemporaryDir> m_directory;
    std::unique_ptr<LocalHttpServer> m_server;
    std::unique_ptr<Downloader> m_downloader;
    std::unique_ptr<QSignalSpy> m_ends;
    QString m_destination;
};

QTEST_GUILESS_MAIN(tst_Downloader)
#include "tst_Downloader.moc"
