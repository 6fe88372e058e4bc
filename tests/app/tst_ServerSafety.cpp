// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/net/NetworkState.h"
#include "tests/fixtures/Eventually.h"
#include "tests/fixtures/FeedTexts.h"
#include "tests/fixtures/HostileAnswers.h"
#include "tests/fixtures/ResidentMemory.h"
#include "tests/fixtures/Sanitizer.h"
#include "tests/fixtures/TemporaryDataDirectory.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QRegularExpression>
#include <QTest>

#include <optional>

using namespace HostileAnswers;

/// The program itself, subscribed to feeds of which some lie on servers that mean it ill. How many feeds there are is
/// what QUILLWIRE_HOSTILE_FEEDS tells: scripts/hostile-servers takes 52.
class ServerSafetyTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        const int feeds = qEnvironmentVariableIntValue("QUILLWIRE_HOSTILE_FEEDS");
        m_feeds = feeds > 0 ? feeds : m_feeds;
        QVERIFY2(isConnected() || feeds == 0, "no network: the program updates nothing then");
        if (!isConnected())
            QSKIP("no network: the program updates nothing then");
        m_server.setAnswer(u"/circle"_s, Answer::redirect(u"/circle"_s));
    }

    void init()
    {
        m_data = std::make_unique<TemporaryDataDirectory>();
        m_runtime = std::make_unique<QTemporaryDir>();
        QByteArray settings = Files::read(u":/data/params.xml"_s).bytes;
        m_data->write(u"params.xml"_s, settings.replace("<params>", "<params><start mode=\"Minimisé\" update=\"1\"/>"));
        QByteArray catalogue = "<favoris>";
        for (int feed = 1; feed <= m_feeds; ++feed) {
            const QByteArray key = QByteArray::number(feed);
            catalogue += "<feed name=\"F\" url=\"" + m_server.url(path(feed)).toUtf8() + "\" key=\"" + key + "\"/>";
            Files::write(m_data->cacheFile(QString::number(feed)), stored());
        }
        m_data->write(u"feeds.xml"_s, catalogue + "</favoris>");
    }

    void healthyFeedsAreMergedAmongHostileOnes_data()
    {
        QTest::addColumn<int>("healthyFeeds");
        QTest::newRow("the tenth floods heads") << m_feeds - 1;
        QTest::newRow("each of most is hostile in a way of its own") << m_feeds / 4 + 2;
    }

    void healthyFeedsAreMergedAmongHostileOnes()
    {
        QFETCH(int, healthyFeeds);
        const bool isOne = healthyFeeds == m_feeds - 1;
        const std::vector<HostileAnswer> answers = isOne ? floods() : allThatEndInTime();
        QProcess program;
        std::optional<qint64> before;
        QList<int> hostile;
        for (int feed = 1; feed <= m_feeds; ++feed) {
            const bool isHealthy = isOne ? feed != 10 : feed <= 2 || feed % 4 == 0;
            Answer answer;
            answer.body = FeedTexts::rss(u"F"_s, {u"new"_s, u"old"_s});
            if (!isHealthy) {
                answer = answers[static_cast<std::size_t>(hostile.size()) % answers.size()].answer;
                hostile.append(feed);
            }
            m_server.setHandler(path(feed), [&, answer, isHealthy](const LocalHttpServer::Request &) {
                if (!isHealthy && !before)
                    before = peakFromNowOn(program);
                return answer;
            });
        }
        QCOMPARE(m_feeds - hostile.size(), healthyFeeds);

        start(program);
        QElapsedTimer timer;
        timer.start();
        const int mostMs = 15000 + 1000 * m_feeds + DownloadLimits().idleMs;
        QVERIFY(eventually([this] { return isMerged(m_feeds); }, mostMs));
        const qint64 took = timer.elapsed();
        const qint64 grown = peak(program) - before.value_or(0);
        for (int feed = 1; feed <= m_feeds; ++feed) {
            if (hostile.contains(feed))
                QCOMPARE(Files::read(m_data->cacheFile(QString::number(feed))).bytes, stored());
            else
                QVERIFY2(isMerged(feed), QByteArray::number(feed));
        }
        const qint64 endTook = end(program);
        qInfo("%d of %d feeds merged in %.1f s, %d hostile; memory grew by %.1f MB at most; the end took %lld ms",
              healthyFeeds, m_feeds, double(took) / 1000, int(hostile.size()), double(grown) / megabyte, endTook);
        QVERIFY2(isSanitized || grown < 16 * megabyte, QByteArray::number(grown));
        QCOMPARE(m_data->read(u"feeds.xml"_s).count("lastupdate="), m_feeds);
    }

    void theProgramEndsInTheMiddleOfAnyAnswer_data()
    {
        QTest::addColumn<Answer>("answer");
        QTest::newRow("header lines without end") << floods().at(0).answer;
        QTest::newRow("header lines drop by drop") << drips().at(0).answer;
        QTest::newRow("a body drop by drop") << drips().at(3).answer;
        QTest::newRow("silence") << silence();
    }

    void theProgramEndsInTheMiddleOfAnyAnswer()
    {
        QFETCH(Answer, answer);
        bool isAsked = false;
        for (int feed = 1; feed <= m_feeds; ++feed) {
            m_server.setHandler(path(feed), [&isAsked, answer](const LocalHttpServer::Request &) {
                isAsked = true;
                return answer;
            });
        }
        QProcess program;
        start(program);
        QVERIFY(eventually([&isAsked] { return isAsked; }));
        QTest::qWait(20);
        qInfo("the end took %lld ms", end(program));
    }

private:
    static QString path(int feed) { return u"/%1.xml"_s.arg(feed); }
    static QByteArray stored() { return FeedTexts::rss(u"F"_s, {u"old"_s}); }
    static Answer silence()
    {
        Answer answer;
        answer.silent = true;
        return answer;
    }

    /// The silence, which only a limit of time ends, is the last.
    static std::vector<HostileAnswer> allThatEndInTime()
    {
        std::vector<HostileAnswer> answers = floods();
        for (const HostileAnswer &answer : fragments())
            answers.push_back(answer);
        answers.push_back({"redirections in a circle", Answer::redirect(u"/circle"_s), TooManyRedirections});
        answers.push_back({"a password asked for", Answer::unauthorized(), AuthenticationAsked});
        answers.push_back({"silence", silence(), TimedOut});
        return answers;
    }

    bool isMerged(int feed) const
    {
        return Files::read(m_data->cacheFile(QString::number(feed))).bytes.contains("<title>new</title>");
    }

    void start(QProcess &program) const
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"QUILLWIRE_DATA"_s, m_data->directory().path());
        environment.insert(u"QUILLWIRE_RUNTIME_DIR"_s, m_runtime->path());
        environment.insert(u"XDG_CONFIG_HOME"_s, m_runtime->path());
        program.setProcessEnvironment(environment);
        program.setStandardErrorFile(QProcess::nullDevice()); // the browser engine tells much there
        program.start(QString::fromUtf8(PROGRAM), {});
    }

    /// Asks the program to end, and gives the milliseconds that it took.
    static qint64 end(QProcess &program)
    {
        QElapsedTimer timer;
        timer.start();
        program.terminate();
        const bool isOver = eventually([&program] { return program.state() == QProcess::NotRunning; });
        const qint64 took = timer.elapsed();
        [&] {
            QVERIFY(isOver && program.exitStatus() == QProcess::NormalExit && program.exitCode() == 0);
            QVERIFY2(isSanitized || took < 1000, QByteArray::number(took));
        }();
        return took;
    }

    /// The memory that the program holds; peak() tells from now on the most that it will have held.
    static qint64 peakFromNowOn(const QProcess &program)
    {
        const QString process = QString::number(program.processId());
        QFile file(u"/proc/"_s + process + u"/clear_refs"_s);
        if (file.open(QIODevice::WriteOnly))
            file.write("5");
        return residentBytes(process);
    }

    static qint64 peak(const QProcess &program)
    {
        QFile file(u"/proc/%1/status"_s.arg(program.processId()));
        if (!file.open(QIODevice::ReadOnly))
            return 0;
        const QRegularExpression line(u"VmHWM:\\s+(\\d+)"_s);
        return line.match(QString::fromLatin1(file.readAll())).captured(1).toLongLong() * 1024;
    }

    int m_feeds = 12;
    LocalHttpServer m_server;
    std::unique_ptr<TemporaryDataDirectory> m_data;
    std::unique_ptr<QTemporaryDir> m_runtime;
};

QTEST_GUILESS_MAIN(ServerSafetyTest)
#include "tst_ServerSafety.moc"
