// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/Files.h"
#include "platform/Literals.h"
#include "platform/net/Downloader.h"
#include "tests/fixtures/HostileAnswers.h"
#include "tests/fixtures/LocalHttpServer.h"
#include "tests/fixtures/ResidentMemory.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <algorithm>
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

/// What no server may do to us: slow or starve another download, swell the program, hold its end, or leave half of an
/// answer in the place of a whole one.
class tst_HostileServers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_directory = std::make_unique<QTemporaryDir>();
        m_destination = m_directory->filePath(u"tmp.xml"_s);
        m_server = std::make_unique<LocalHttpServer>();
        m_server->setBody(u"/healthy"_s, "healthy");
        m_ends.reset();
        m_downloader = std::make_unique<Downloader>();
        m_ends = std::make_unique<QSignalSpy>(m_downloader.get(), &Downloader::DownloadComplete);
        m_downloader->setLimits({.connectMs = 400, .idleMs = 300, .totalMs = 900, .maxBytes = megabyte});
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
        QFETCH(Answer, answer);
        m_server->setAnswer(u"/"_s, answer);
        QCOMPARE(fetch(u"/healthy"_s), 200);
        Files::write(m_destination, "old");
        const qint64 before = residentBytes();
        QTEST(fetch(u"/"_s), "status");
        QCOMPARE(Files::read(m_destination).bytes, QByteArray("old"));
        QCOMPARE(fetch(u"/healthy"_s), 200);
        QCOMPARE(Files::read(m_destination).bytes, QByteArray("healthy"));
        const qint64 grown = residentBytes() - before;
        QVERIFY2(grown < 6 * megabyte, QByteArray::number(grown));

        m_downloader->setLimits({.maxBytes = 1024 * megabyte});
        m_downloader->Download(m_server->url(u"/"_s), 0, m_destination, {}, {});
        QTRY_COMPARE(m_server->hits(u"/"_s), 2);
        QTest::qWait(20);
        QElapsedTimer timer;
        timer.start();
        m_downloader.reset();
        QVERIFY2(timer.elapsed() < 200, QByteArray::number(timer.elapsed()));
    }

    void whatComesBehindAnAnswerIsNotTheNextOne()
    {
        const QByteArray forged = "HTTP/1.1 200 OK\r\nContent-Length: 6\r\n\r\nforged";
        Answer twice = once("HTTP/1.1 200 OK\r\nContent-Length: 4\r\n\r\n");
        twice.stallsAtEnd = true;
        for (const QByteArray &behind : {forged, QByteArray()}) {
            twice.body = "true" + behind;
            m_server->setAnswer(u"/twice"_s, twice);
            QCOMPARE(fetch(u"/twice"_s), 200);
            QCOMPARE(Files::read(m_destination).bytes, QByteArray("true"));
            m_server->sendToAll(forged);
            QTest::qWait(20);
            QCOMPARE(fetch(u"/healthy"_s), 200);
            QCOMPARE(Files::read(m_destination).bytes, QByteArray("healthy"));
        }
    }

    void aDownloadEndsAt32MiB()
    {
        m_downloader->setLimits({});
        const QByteArray most(32 * megabyte, 'x');
        m_server->setBody(u"/most"_s, most);
        QCOMPARE(fetch(u"/most"_s), 200);
        m_server->setBody(u"/more"_s, most + 'x');
        QCOMPARE(fetch(u"/more"_s), Downloader::TooLarge);
        m_server->setAnswer(u"/packed"_s, coded("gzip", gzip(most + 'x')));
        QCOMPARE(fetch(u"/packed"_s), Downloader::TooLarge);
        QCOMPARE(QFileInfo(m_destination).size(), most.size());
    }

    void aSlowNameServerHoldsNeitherTheWindowNorTheNextDownloadNorTheEnd()
    {
        nameServerIsSlow = true;
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
            QCOMPARE(fetchUrl(slow), Downloader::TimedOut);
            QCOMPARE(fetch(u"/healthy"_s), 200);
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
    /// The status with which the download ends; -1 when it doesn't end within two seconds.
    qint32 fetch(const QString &path) { return fetchUrl(m_server->url(path)); }
    qint32 fetchUrl(const QString &url)
    {
        m_ends->clear();
        m_downloader->Download(url, 0, m_destination, {}, {});
        return m_ends->wait(2000) ? m_ends->first().first().toInt() : -1;
    }

    std::unique_ptr<QTemporaryDir> m_directory;
    std::unique_ptr<LocalHttpServer> m_server;
    std::unique_ptr<Downloader> m_downloader;
    std::unique_ptr<QSignalSpy> m_ends;
    QString m_destination;
};

QTEST_GUILESS_MAIN(tst_HostileServers)
#include "tst_HostileServers.moc"
