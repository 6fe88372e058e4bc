// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/Literals.h"
#include "platform/net/Downloader.h"

#include "platform/Build.h"
#include "platform/Files.h"
#include "tests/fixtures/HostileAnswers.h"
#include "tests/fixtures/LocalHttpServer.h"
#include "tests/fixtures/ResidentMemory.h"
#include "tests/fixtures/Steps.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <atomic>
#include <chrono>
#include <cstring>
#include <dlfcn.h>
#include <memory>
#include <netdb.h>
#include <thread>

using namespace HostileAnswers;

namespace {

/// What the slow name server still holds.
std::atomic<bool> nameServerIsSlow = false;

} // namespace

/// Stands before the one of the C library in this program, for the library that downloads as for everybody.
extern "C" int getaddrinfo(const char *node, const char *service, const addrinfo *hints, addrinfo **result)
{
    for (int i = 0; nameServerIsSlow && node && std::strcmp(node, "slow.invalid") == 0 && i < 500; ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    static const auto real = reinterpret_cast<decltype(&getaddrinfo)>(::dlsym(RTLD_NEXT, "getaddrinfo"));
    return real(node, service, hints, result);
}

/// What is asked of a server, and what becomes of its answer: no server may slow or starve another download, swell the
/// program, hold its end, or leave half of an answer in the place of a whole one.
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

    void onlyAWholeBodyReplacesTheDestination()
    {
        const auto take = [this](const QString &step, const QString &) {
            const QByteArray whole = QByteArray::fromPercentEncoding(step.toUtf8().replace('|', "\r\n"));
            const qsizetype body = whole.indexOf("\r\n\r\n") + 4;
            const QString told = outcomeOf(once(whole));
            Answer slow = once(whole.first(body));
            slow.body = whole.mid(body);
            slow.trickleMs = 1;
            const QString toldSlowly = step.contains(u"Encoding"_s) ? outcomeOf(slow) : told;
            return told == toldSlowly ? told : QString(told + u", or byte by byte "_s + toldSlowly);
        };
        QCOMPARE((Steps{{}, take}.differenceFrom(u"answers.steps"_s)), QString());

        QByteArray large;
        while (large.size() < 3 * megabyte)
            large += QByteArray::number(large.size() * 7919) + '\n' + '\0';
        const QByteArray zlib = qCompress(large).mid(4); // with its frame, and without as some servers send it
        for (const Answer &answer : {once(head + "\r\n" + large), coded("deflate", zlib), coded("gzip", gzip(large)),
                                     coded("Deflate ", zlib.mid(2).chopped(4))}) {
            QCOMPARE(outcomeOf(answer), u"200 %1 1"_s.arg(large.size()));
            QCOMPARE(m_body, large);
        }
        QCOMPARE(outcomeOf(once("HTTP/1.1 404 No\r\n\r\n" + large)), u"404 old 1"_s);
    }

    void noAnswerHoldsTheNextDownloadOrTheEnd_data()
    {
        QTest::addColumn<Answer>("answer");
        QTest::addColumn<qint32>("status");
        for (const auto &answers : {floods(), drips(), fragments()})
            for (const HostileAnswer &hostile : answers)
                QTest::newRow(hostile.name) << hostile.answer << hostile.status;
    }

    void noAnswerHoldsTheNextDownloadOrTheEnd()
    {
        QFETCH(const Answer, answer);
        QFETCH(const qint32, status);
        const qint64 before = residentBytes();
        QCOMPARE(outcomeOf(answer), u"%1 old 1"_s.arg(status));
        QVERIFY2(residentBytes() - before < 6 * megabyte, QByteArray::number(residentBytes() - before));
        m_downloader->setLimits({.maxBytes = 1024 * megabyte});
        begin(m_server->url(u"/a"_s));
        QTRY_COMPARE(m_server->totalHits(), 1);
        QElapsedTimer timer;
        timer.start();
        m_downloader.reset();
        QVERIFY2(timer.elapsed() < 500, QByteArray::number(timer.elapsed()));
    }

    /// By numbers that are part of the interface, here and below.
    void whatNobodyAnswersIsTold()
    {
        for (const QString &url : {u"http://no-such-host.invalid/"_s, u""_s, u"http:///a"_s, u"a/b"_s})
            QCOMPARE(fetch(url), 3);
        for (const QString &url : {u"file:///etc/passwd"_s, u"ftp://127.0.0.1/"_s, u"data:text/xml,<a/>"_s})
            QCOMPARE(fetch(url), 11);
        m_server->setBody(u"/a"_s, "body");
        m_destination = m_directory->filePath(u"absent/tmp.xml"_s);
        QCOMPARE(fetch(m_server->url(u"/a"_s)), 10);
        m_destination = m_directory->filePath(u"tmp.xml"_s);
        const QString url = m_server->url(u"/a"_s);
        m_server->close();
        QCOMPARE(fetch(url), 5);
        QCOMPARE(destinationBytes(), QByteArray("old"));
    }

    /// The heads of all requests that a download makes, here and at another host.
    void requestsSayWhoAsksAndForWhat()
    {
        LocalHttpServer other;
        QString told;
        const auto ask = [&](const char *name, const QString &url, const QString &username = {},
                             const QString &password = {}) {
            m_downloader->Download(u" "_s + url + u'\n', 0, m_destination, username, password);
            QVERIFY(m_ends->wait(10000));
            told += u"=== "_s + QLatin1String(name) + u": "_s + QString::number(m_ends->last().first().toInt()) + u'\n';
            for (LocalHttpServer *server : {m_server.get(), &other})
                for (const LocalHttpServer::Request &request : server->takeRequests())
                    told += QString::fromUtf8(request.head).remove(u'\r') + u"\n\n"_s;
        };
        const auto redirect = [&](const QString &path, const QString &target) {
            m_server->setAnswer(path, Answer::redirect(target));
            return m_server->url(path);
        };
        const auto withUser = [](QString url, const QString &user) {
            return url.replace(u"//"_s, u"//"_s + user + u'@');
        };
        const QString page = m_server->url(u"/a"_s);
        ask("a page", m_server->url(u"/x/../a b?q=é&r=%C3%A9#part"_s));
        ask("with credentials", page, u"me"_s, u"sécret:x"_s);
        ask("without them afterwards", page);
        ask("credentials in the address", withUser(page, u"m%40e:p%20w"_s));
        ask("and others beside it", withUser(page, u"m%40e:p%20w"_s), u"me"_s, u"pw"_s);
        ask("a name alone", withUser(page, u"me"_s));
        ask("a password alone", page, {}, u"pw"_s);
        ask("to the same host", redirect(u"/r/s"_s, u"../a?b#c"_s), u"me"_s, u"pw"_s);
        ask("to another name", redirect(u"/r"_s, m_server->url(u"/a"_s, u"localhost"_s)), u"me"_s, u"pw"_s);
        ask("to another port", redirect(u"/r"_s, other.url(u"/a"_s)), u"me"_s, u"pw"_s);
        ask("to another port that it names credentials for",
            redirect(u"/r"_s, withUser(other.url(u"/a"_s), u"evil:pw"_s)), u"me"_s, u"pw"_s);
        other.setAnswer(u"/back"_s, Answer::redirect(page));
        ask("there and back", redirect(u"/r"_s, other.url(u"/back"_s)), u"me"_s, u"pw"_s);
        qputenv("http_proxy", withUser(m_server->url(QString()), u"you:secret"_s).toUtf8());
        ask("through a proxy", u"http://somewhere.invalid/feed"_s);
        qunsetenv("http_proxy");
        const QByteArray locale = qgetenv("LC_ALL");
        told.replace(QString::number(m_server->port()), u"PORT"_s).replace(QString::number(other.port()), u"OTHER"_s);
        told.replace(u"Quillwire/"_s + Build::shortVersion, u"Quillwire/VERSION"_s);
        told.replace(locale.startsWith("fr_FR")   ? u"fr-FR,en,*"_s
                     : locale.startsWith("en_GB") ? u"en-GB,*"_s
                                                  : u"en,*"_s,
                     u"LANGUAGES"_s);
        QCOMPARE(differenceFromGolden(u"requests.expected"_s, told), QString());
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
            QCOMPARE(fetch(m_server->url(u"/slow"_s)), 6);
            // What shows signs of life lives until the whole time is up.
            QCOMPARE(timer.elapsed() >= 850, answer.trickleMs > 0);
            QCOMPARE(destinationBytes(), QByteArray("old"));
        }
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
        QCOMPARE(fetch(m_server->url(u"/start"_s), u"me"_s, u"secret"_s), 12);
        // The first byte of a TLS handshake; nothing went out in the clear.
        QVERIFY(received.startsWith('\x16'));
        QVERIFY(!received.contains("Authorization"));
        QCOMPARE(destinationBytes(), QByteArray("old"));
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
            QCOMPARE(m_ends->at(end).first().toInt(), 8);
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

    void whatComesBehindAnAnswerIsNotTheNextOne()
    {
        m_server->setBody(u"/healthy"_s, "healthy");
        const QByteArray forged = "HTTP/1.1 200 OK\r\nContent-Length: 6\r\n\r\nforged";
        Answer twice = once("HTTP/1.1 200 OK\r\nContent-Length: 4\r\n\r\n");
        twice.stallsAtEnd = true;
        for (const QByteArray &behind : {forged, QByteArray()}) {
            twice.body = "true" + behind;
            m_server->setAnswer(u"/twice"_s, twice);
            QCOMPARE(fetch(m_server->url(u"/twice"_s)), 200);
            QCOMPARE(destinationBytes(), QByteArray("true"));
            m_server->sendToAll(forged);
            QTest::qWait(20);
            QCOMPARE(fetch(m_server->url(u"/healthy"_s)), 200);
            QCOMPARE(destinationBytes(), QByteArray("healthy"));
        }
    }

    void aDownloadEndsAt32MiB()
    {
        const QByteArray most(32 * megabyte, 'x');
        m_server->setBody(u"/most"_s, most);
        QCOMPARE(fetch(m_server->url(u"/most"_s)), 200);
        m_server->setBody(u"/more"_s, most + 'x');
        QCOMPARE(fetch(m_server->url(u"/more"_s)), 7);
        m_server->setAnswer(u"/packed"_s, HostileAnswers::coded("gzip", gzip(most + 'x')));
        QCOMPARE(fetch(m_server->url(u"/packed"_s)), 7);
        QCOMPARE(QFileInfo(m_destination).size(), most.size());
    }

    void aSlowNameServerHoldsNeitherTheWindowNorTheNextDownloadNorTheEnd()
    {
        nameServerIsSlow = true;
        m_downloader->setLimits({.connectMs = 400, .idleMs = 300, .totalMs = 900});
        m_server->setBody(u"/healthy"_s, "healthy");
        const auto longestGap = [this](const std::function<void()> &action) {
            QElapsedTimer sinceLast;
            qint64 longest = 0;
            QTimer beat;
            connect(&beat, &QTimer::timeout, this, [&] { longest = std::max(longest, sinceLast.restart()); });
            beat.start(5);
            sinceLast.start();
            action();
            return std::max(longest, sinceLast.elapsed());
        };
        const QString slow = u"http://slow.invalid/"_s;
        const qint64 gap = longestGap([&] {
            QCOMPARE(fetch(slow), 6);
            QCOMPARE(fetch(m_server->url(u"/healthy"_s)), 200);
            m_downloader->Download(slow, 0, m_destination, {}, {});
            QTest::qWait(50);
            m_downloader->CancelDownload();
            m_downloader->Download(slow, 0, m_destination, {}, {});
            QTest::qWait(50);
            m_downloader.reset();
        });
        nameServerIsSlow = false;
        QVERIFY2(gap < 150, QByteArray::number(gap));
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
        QCoreApplication::processEvents();
        const bool tidy = QDir(m_directory->path()).entryList(QDir::Files) == QStringList{u"tmp.xml"_s};
        return m_ends->size() == 1 && tidy ? m_ends->first().first().toInt() : -2;
    }
    /// The status, what lies in the destination, and the number of requests; the next download is served all the same.
    QString outcomeOf(const Answer &answer)
    {
        Files::write(m_destination, "old");
        m_downloader->setLimits({.connectMs = 400, .idleMs = 300, .totalMs = 900, .maxBytes = 4 * megabyte});
        m_server->setAnswer(u"/a"_s, answer);
        m_server->setBody(u"/end"_s, "the end");
        m_server->takeRequests();
        const qint32 status = fetch(m_server->url(u"/a"_s));
        m_body = destinationBytes();
        const QString text =
            m_body.size() < 100 ? QString::fromLatin1(m_body).simplified() : QString::number(m_body.size());
        const QString outcome = u"%1 %2 %3"_s.arg(status).arg(text).arg(m_server->takeRequests().size());
        const bool isServed = fetch(m_server->url(u"/end"_s)) == 200 && destinationBytes() == "the end";
        m_server->takeRequests();
        return isServed ? outcome : QString(outcome + u", and nothing comes after it"_s);
    }
    QByteArray destinationBytes() const { return Files::read(m_destination).bytes; }

    std::unique_ptr<QTemporaryDir> m_directory;
    std::unique_ptr<LocalHttpServer> m_server;
    std::unique_ptr<Downloader> m_downloader;
    std::unique_ptr<QSignalSpy> m_ends;
    QString m_destination;
    QByteArray m_body; ///< that was in the destination after outcomeOf()
};

QTEST_GUILESS_MAIN(tst_Downloader)
#include "tst_Downloader.moc"
