// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/Files.h"
#include "platform/Literals.h"
#include "platform/net/HandOver.h"
#include "platform/net/InstanceLock.h"
#include "platform/net/InstanceServer.h"

#include <QEventLoop>
#include <QFileInfo>
#include <QLocalSocket>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <cstdio>
#include <future>
#include <memory>

namespace {

/// A hand-over from a thread of its own, as the first instance must run its loop meanwhile.
std::future<HandOverResult> handOverAside(const QString &text, const QString &directory, const QByteArray &token = {})
{
    return std::async(std::launch::async, [=] { return handOver(text, 5000, directory, token); });
}

bool isOver(const std::future<HandOverResult> &result)
{
    return result.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
}

} // namespace

class tst_InstanceHandOver : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_directory = std::make_unique<QTemporaryDir>(); }

    void aLockThatNoLivingProcessHoldsDoesNotCount()
    {
        for (const QByteArray &content : {QByteArray(), QByteArray("\x00\xff not a lock", 13),
                                          QByteArray("999999999\nquillwire\nhost\n")}) { // of a process that is gone
            Files::write(m_directory->filePath(u"Quillwire3.0_APPLICATION_MUTEX"_s), content);
            InstanceLock lock(path());
            QVERIFY(lock.isFirstInstance());
            QVERIFY(!InstanceLock(path()).isFirstInstance()); // and holds from then on
        }
        // Without a place for the lock the program starts all the same.
        QVERIFY(InstanceLock(m_directory->filePath(u"absent"_s)).isFirstInstance());
        QVERIFY(InstanceLock(QString()).isFirstInstance());
    }

    void runtimeDirectoryIsPrivate()
    {
        const QByteArray before = qgetenv("XDG_RUNTIME_DIR");
        qunsetenv("QUILLWIRE_RUNTIME_DIR");
        qputenv("XDG_RUNTIME_DIR", "/");
        const QFile::Permissions others = QFile::ReadGroup | QFile::WriteGroup | QFile::ExeGroup | QFile::ReadOther |
                                          QFile::WriteOther | QFile::ExeOther;
        const QString directory = runtimeDirectory();
        QVERIFY(QFileInfo(directory).isDir());
        QVERIFY(!(QFileInfo(directory).permissions() & others));
        qputenv("QUILLWIRE_RUNTIME_DIR", m_directory->filePath(u"made/anew"_s).toUtf8());
        QCOMPARE(runtimeDirectory(), m_directory->filePath(u"made/anew"_s));
        QVERIFY(QFileInfo(runtimeDirectory()).isDir());
        qunsetenv("QUILLWIRE_RUNTIME_DIR");
        qputenv("XDG_RUNTIME_DIR", before);
    }

    void textArrivesUnchanged()
    {
        InstanceServer server(path());
        QVERIFY(server.listen());
        QSignalSpy texts(&server, &InstanceServer::textReceived);
        QSignalSpy activations(&server, &InstanceServer::activationAsked);
        const QByteArray token(HandOverProtocol::MaxTokenBytes, 't');
        for (const QString &text : {u"feed:http://a/b?c=d%20e&f"_s, u" \"/é и/\U0001F600.xml\"  "_s, u"a\r\nb\0c"_s,
                                    QString(HandOverProtocol::MaxBytes, u'x')}) {
            texts.clear();
            QCOMPARE(handOverNow(text, token), HandOverResult::HandedOver);
            QCOMPARE(texts, QList<QVariantList>({{text, token}}));
        }
        QVERIFY(activations.isEmpty());
        for (const QByteArray &sent : {QByteArray(), QByteArray("a b"), QByteArray(token + "t")})
            QCOMPARE(handOverNow(QString(), sent), HandOverResult::HandedOver);
        const QVariantList none({QByteArray()}); // no real token is that long
        QCOMPARE(activations, QList<QVariantList>({none, {QByteArray("a b")}, none}));
        QCOMPARE(texts.size(), 1);
    }

    void withoutAListenerThereIsNoInstance()
    {
        QCOMPARE(handOver(u"x"_s, 1000, path()), HandOverResult::NoInstance);
        QCOMPARE(handOver(u"x"_s, 1000, QString()), HandOverResult::NoInstance);
        InstanceServer server(path());
        QVERIFY(server.listen());
        QCOMPARE(handOver(QString(HandOverProtocol::MaxBytes + 1, u'x'), 1000, path()), HandOverResult::NoInstance);
        // Nor is there one behind a socket that a killed process left, and the next one listens all the same.
        const QByteArray socket = HandOverProtocol::socketPath(path()).toUtf8();
        const QByteArray aside = socket + ".aside";
        QCOMPARE(std::rename(socket, aside), 0);
        server.close();
        QCOMPARE(std::rename(aside, socket), 0);
        QCOMPARE(handOver(u"x"_s, 1000, path()), HandOverResult::NoInstance);
        QVERIFY(server.listen());
        QCOMPARE(handOverNow(u"x"_s), HandOverResult::HandedOver);
    }

    void senderWaitsForTheSlotAndNoLongerThanItsLimit()
    {
        InstanceServer server(path());
        QVERIFY(server.listen());
        bool slotIsDone = false;
        connect(&server, &InstanceServer::textReceived, this, [&slotIsDone] {
            QTest::qSleep(200);
            slotIsDone = true;
        });
        auto patient = handOverAside(u"x"_s, path());
        while (!slotIsDone) {
            QVERIFY(!isOver(patient));
            QTest::qWait(5);
        }
        QTRY_VERIFY(isOver(patient));
        QCOMPARE(patient.get(), HandOverResult::HandedOver);

        // A first instance that hangs: nothing runs its loop.
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(handOver(u"x"_s, 300, path()), HandOverResult::TimedOut);
        QVERIFY(timer.elapsed() >= 290 && timer.elapsed() < 2000);
    }

    void nestedLoopsServeFurtherSenders()
    {
        InstanceServer server(path());
        QVERIFY(server.listen());
        QStringList texts;
        QEventLoop nested;
        connect(&server, &InstanceServer::textReceived, this, [&](const QString &text) {
            texts.append(text);
            if (text == u"first")
                nested.exec();
            else
                nested.quit();
        });
        auto first = handOverAside(u"first"_s, path());
        std::future<HandOverResult> second;
        QTimer::singleShot(200, this, [&] { second = handOverAside(u"second"_s, path()); });
        QTRY_VERIFY(second.valid() && isOver(first) && isOver(second));
        QCOMPARE(first.get(), HandOverResult::HandedOver);
        QCOMPARE(second.get(), HandOverResult::HandedOver);
        QCOMPARE(texts, (QStringList{u"first"_s, u"second"_s}));
    }

    void strangeSendersAreCutOffAndHoldNothingUp()
    {
        InstanceServer server(path());
        server.setSenderLimit(600);
        QVERIFY(server.listen());
        QSignalSpy texts(&server, &InstanceServer::textReceived);

        std::vector<std::unique_ptr<QLocalSocket>> strangers;
        const QList<QByteArray> starts{"", QByteArray("\0\0", 2), QByteArray("\0\0\1\0only half", 13),
                                       QByteArray("\0\0\0\4text", 8)};
        for (const QByteArray &start : starts) {
            strangers.push_back(std::make_unique<QLocalSocket>());
            strangers.back()->connectToServer(HandOverProtocol::socketPath(path()));
            strangers.back()->write(start);
        }
        for (const QByteArray &head : {QByteArray(), QByteArray("\0\0\0\1x", 5)}) {
            QLocalSocket tooMuch;
            tooMuch.connectToServer(HandOverProtocol::socketPath(path()));
            tooMuch.write(head + "\xff\xff\xff\xff and more");
            QTRY_COMPARE_WITH_TIMEOUT(tooMuch.state(), QLocalSocket::UnconnectedState, 400);
        }

        auto honest = handOverAside(u"text"_s, path());
        QTRY_VERIFY_WITH_TIMEOUT(isOver(honest), 500);
        QCOMPARE(honest.get(), HandOverResult::HandedOver);
        for (const auto &stranger : strangers)
            QTRY_COMPARE(stranger->state(), QLocalSocket::UnconnectedState);
        QCOMPARE(texts.size(), 1);

        // More of them than may wait.
        for (int i = 0; i < 100; ++i) {
            strangers.push_back(std::make_unique<QLocalSocket>());
            strangers.back()->connectToServer(HandOverProtocol::socketPath(path()));
        }
        QTest::qWait(700);
        QCOMPARE(handOverNow(u"late"_s), HandOverResult::HandedOver);
    }

    void closingInASlotIsHarmless()
    {
        auto server = std::make_unique<InstanceServer>(path());
        QVERIFY(server->listen());
        connect(server.get(), &InstanceServer::textReceived, this, [&server] { server.reset(); });
        QCOMPARE(handOverNow(u"x"_s), HandOverResult::NoInstance);
        QVERIFY(!server);
    }

private:
    QString path() const { return m_directory->path(); }
    HandOverResult handOverNow(const QString &text, const QByteArray &token = {}) const
    {
        auto result = handOverAside(text, path(), token);
        return QTest::qWaitFor([&result] { return isOver(result); }) ? result.get() : HandOverResult::TimedOut;
    }

    std::unique_ptr<QTemporaryDir> m_directory;
};

QTEST_GUILESS_MAIN(tst_InstanceHandOver)
#include "tst_InstanceHandOver.moc"
