// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/Files.h"
#include "platform/Literals.h"
#include "platform/net/HandOver.h"
#include "platform/net/InstanceLock.h"
#include "platform/net/InstanceServer.h"

#include <QEventLoop>
#include <QFileInfo>
#include <QLocalSocket>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <cstdio>
#include <future>
#include <memory>

class tst_InstanceHandOver : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_directory = std::make_unique<QTemporaryDir>();
        m_server = std::make_unique<InstanceServer>(path());
        m_told.clear();
        m_onText = [](const QString &) {};
        connect(m_server.get(), &InstanceServer::textReceived, this,
                [this](const QString &text, const QByteArray &token) {
                    m_told.append({text, token});
                    m_onText(text);
                });
        connect(m_server.get(), &InstanceServer::activationAsked, this, [this](const QByteArray &token) {
            m_told.append({u"(come forward)"_s, token});
        });
        QVERIFY(m_server->listen() && m_server->listen());
    }

    void aLockThatNoLivingProcessHoldsDoesNotCount()
    {
        for (const QByteArray &content : {QByteArray(), QByteArray("\x00\xff not a lock", 13),
                                          QByteArray("999999999\nquillwire\nhost\n")}) { // of a process that is gone
            Files::write(m_directory->filePath(u"Quillwire3.0_APPLICATION_MUTEX"_s), content);
            InstanceLock lock(path());
            QVERIFY(lock.isFirstInstance());
            QVERIFY(!InstanceLock(path()).isFirstInstance() && lock.isFirstInstance()); // and holds from then on
            lock.release();
            QVERIFY(InstanceLock(path()).isFirstInstance());
        }
        // Without a place for the lock the program starts all the same.
        QVERIFY(InstanceLock(m_directory->filePath(u"absent"_s)).isFirstInstance());
        QVERIFY(InstanceLock(QString()).isFirstInstance());
        InstanceLock(QString()).release();
    }

    void theRuntimeDirectoryAndTheSocketArePrivate()
    {
        const QFile::Permissions others(0x0077);
        QVERIFY(!(QFileInfo(HandOverProtocol::socketPath(path())).permissions() & others));
        const QByteArray before = qgetenv("XDG_RUNTIME_DIR");
        qunsetenv("QUILLWIRE_RUNTIME_DIR");
        const QString mine = m_directory->filePath(u"mine"_s);
        const QString open = m_directory->filePath(u"open"_s);
        const QString link = m_directory->filePath(u"link"_s);
        QVERIFY(QDir().mkdir(mine) && QFile::setPermissions(mine, QFile::Permissions(0x7700)));
        QVERIFY(QDir().mkdir(open) && QFile::setPermissions(open, QFile::Permissions(0x7710)));
        QVERIFY(QFile::link(mine, link));
        for (const QString &ofSystem : QStringList{{}, open, link, mine + u"/absent"_s, u"/"_s}) {
            qputenv("XDG_RUNTIME_DIR", ofSystem.toUtf8());
            const QString own = runtimeDirectory();
            QVERIFY(own.startsWith(QDir::tempPath() + u"/quillwire-"_s) && QFileInfo(own).isDir());
            QVERIFY(!(QFileInfo(own).permissions() & others));
        }
        qputenv("XDG_RUNTIME_DIR", (mine + u"/"_s).toUtf8());
        QCOMPARE(runtimeDirectory(), mine);
        qputenv("QUILLWIRE_RUNTIME_DIR", m_directory->filePath(u"made/anew/"_s).toUtf8());
        QCOMPARE(runtimeDirectory(), m_directory->filePath(u"made/anew"_s));
        QVERIFY(QFileInfo(runtimeDirectory()).isDir());
        qunsetenv("QUILLWIRE_RUNTIME_DIR");
        qputenv("XDG_RUNTIME_DIR", before);
    }

    void textArrivesUnchanged()
    {
        const QByteArray token(HandOverProtocol::MaxTokenBytes, 't');
        const QList<QPair<QString, QByteArray>> handed = {{u"feed:http://a/b?c=d%20e&f"_s, token},
                                                          {u" \"/é и/\U0001F600.xml\"  "_s, {}},
                                                          {u"a\r\nb\0c"_s, "a b"},
                                                          {QString(HandOverProtocol::MaxBytes, u'x'), token},
                                                          {u"x"_s, token + 't'}, // no real token is that long
                                                          {{}, token},
                                                          {{}, {}}};
        for (const auto &[text, sent] : handed) {
            m_told.clear();
            QCOMPARE(handOverNow(text, sent), HandOverResult::HandedOver);
            QCOMPARE(m_told, (decltype(m_told){{text.isEmpty() ? u"(come forward)"_s : text,
                                                sent == token + 't' ? QByteArray() : sent}}));
        }
        QCOMPARE(handOver(QString(HandOverProtocol::MaxBytes + 1, u'x'), 1000, path()), HandOverResult::NoInstance);
    }

    void withoutAListenerThereIsNoInstance()
    {
        const QString absent = m_directory->filePath(u"absent"_s);
        for (const QString &directory : {absent, QString()}) {
            QCOMPARE(handOver(u"x"_s, 1000, directory), HandOverResult::NoInstance);
            QVERIFY(!InstanceServer(directory).listen());
        }
        // Nor is there one behind a socket that a killed process left, and the next one listens all the same.
        const QByteArray socket = HandOverProtocol::socketPath(path()).toUtf8();
        const QByteArray aside = socket + ".aside";
        QCOMPARE(std::rename(socket, aside), 0);
        QLocalSocket waiting;
        waiting.connectToServer(QString::fromUtf8(aside));
        QVERIFY(QTest::qWaitFor([&] { return waiting.state() == QLocalSocket::ConnectedState; }));
        QCoreApplication::processEvents();
        m_server->close();
        QVERIFY(QTest::qWaitFor([&] { return waiting.state() == QLocalSocket::UnconnectedState; }));
        QCOMPARE(std::rename(aside, socket), 0);
        QCOMPARE(handOver(u"x"_s, 1000, path()), HandOverResult::NoInstance);
        QVERIFY(m_server->listen());
        QCOMPARE(handOverNow(u"x"_s), HandOverResult::HandedOver);
    }

    void senderWaitsForTheSlotAndNoLongerThanItsLimit()
    {
        std::future<HandOverResult> patient;
        bool wasOver = true;
        m_onText = [&](const QString &) {
            QTest::qSleep(100);
            wasOver = isOver(patient);
        };
        patient = handOverAside(u"x"_s);
        QTRY_VERIFY(isOver(patient));
        QVERIFY(!wasOver);
        QCOMPARE(patient.get(), HandOverResult::HandedOver);
        // A first instance that hangs: nothing runs its loop.
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(handOver(u"x"_s, 300, path()), HandOverResult::TimedOut);
        QVERIFY(timer.elapsed() >= 290 && timer.elapsed() < 3000);
    }

    void nestedLoopsServeFurtherSenders()
    {
        QEventLoop nested;
        std::future<HandOverResult> second;
        m_onText = [&](const QString &text) {
            if (text == u"second")
                return nested.quit();
            second = handOverAside(u"second"_s);
            nested.exec();
        };
        QCOMPARE(handOverNow(u"first"_s), HandOverResult::HandedOver);
        QTRY_VERIFY(isOver(second));
        QCOMPARE(second.get(), HandOverResult::HandedOver);
        QCOMPARE(m_told.size(), 2);
    }

    void strangeSendersAreCutOffAndHoldNothingUp()
    {
        m_server->setSenderLimit(1500);
        std::vector<std::unique_ptr<QLocalSocket>> strangers;
        const auto stranger = [&](const QByteArray &start) -> QLocalSocket & {
            strangers.push_back(std::make_unique<QLocalSocket>());
            strangers.back()->connectToServer(HandOverProtocol::socketPath(path()));
            strangers.back()->write(start);
            return *strangers.back();
        };
        const auto isCutOff = [](const QLocalSocket &socket) {
            return socket.state() == QLocalSocket::UnconnectedState;
        };
        QElapsedTimer timer;
        timer.start();
        for (const QByteArray &start : {QByteArray(), QByteArray("\0\0", 2), QByteArray("\0\0\1\0only half", 13),
                                        QByteArray("\0\0\0\4text", 8), QByteArray("\0\0\0\1x\0\0\4\0", 9)})
            stranger(start);
        for (const QByteArray &tooMuch : {QByteArray("\0\x10\0\1 and more", 13), QByteArray("\0\0\0\1x\0\0\4\1", 9),
                                          QByteArray("\xff\xff\xff\xff")}) {
            const QLocalSocket &socket = stranger(tooMuch);
            QTRY_VERIFY(isCutOff(socket));
        }
        QCOMPARE(handOverNow(u"text"_s), HandOverResult::HandedOver);
        while (strangers.size() < 8 + 11) // five and eleven wait, and no more may
            stranger({});
        const QLocalSocket &oneMore = stranger({});
        QTRY_VERIFY(isCutOff(oneMore));
        QVERIFY2(timer.elapsed() < 1500, "The limit was met too early for this to tell anything.");
        QVERIFY(!isCutOff(*strangers.front()) && !isCutOff(*strangers[18]));
        for (const auto &each : strangers)
            QTRY_VERIFY(isCutOff(*each));
        QVERIFY(timer.elapsed() >= 1450);
        QCOMPARE(handOverNow(u"late"_s), HandOverResult::HandedOver);
        QCOMPARE(m_told.size(), 2);
    }

    void closingInASlotIsHarmless()
    {
        m_onText = [this](const QString &) { m_server.reset(); };
        QCOMPARE(handOverNow(u"x"_s), HandOverResult::NoInstance);
        QVERIFY(!m_server);
    }

private:
    QString path() const { return m_directory->path(); }
    static bool isOver(const std::future<HandOverResult> &result)
    {
        return result.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
    }
    /// A hand-over from a thread of its own, as the first instance must run its loop meanwhile.
    std::future<HandOverResult> handOverAside(const QString &text, const QByteArray &token = {}) const
    {
        return std::async(std::launch::async,
                          [=, directory = path()] { return handOver(text, 5000, directory, token); });
    }
    HandOverResult handOverNow(const QString &text, const QByteArray &token = {}) const
    {
        const auto result = std::make_shared<std::future<HandOverResult>>(handOverAside(text, token));
        return QTest::qWaitFor([&] { return isOver(*result); }) ? result->get() : HandOverResult::TimedOut;
    }

    std::unique_ptr<QTemporaryDir> m_directory;
    std::unique_ptr<InstanceServer> m_server;
    QList<QPair<QString, QByteArray>> m_told;
    std::function<void(const QString &text)> m_onText;
};

QTEST_GUILESS_MAIN(tst_InstanceHandOver)
#include "tst_InstanceHandOver.moc"
