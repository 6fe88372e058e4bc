// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/net/NetworkState.h"
#include "tests/app/ProgramHome.h"
#include "tests/fixtures/FeedTexts.h"
#include "tests/fixtures/HostileAnswers.h"
#include "tests/fixtures/ResidentMemory.h"
#include "tests/fixtures/Sanitizer.h"

#include <QRegularExpression>

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
        m_home = std::make_unique<ProgramHome>();
        QStringList addresses;
        for (int feed = 1; feed <= m_feeds; ++feed)
            addresses += m_server.url(path(feed));
        fill(m_home->data, addresses);
    }

    void healthyFeedsAreMergedAmongHostileOnes()
    {
        const std::vector<HostileAnswer> answers = allThatEndInTime();
        std::unique_ptr<QProcess> program;
        std::optional<qint64> before;
        QList<int> hostile;
        for (int feed = 1; feed <= m_feeds; ++feed) {
            const bool isHealthy = feed <= 2 || feed % 4 == 0;
            Answer answer;
            answer.body = FeedTexts::rss(u"F"_s, {u"new"_s, u"old"_s});
            if (!isHealthy) {
                answer = answers[static_cast<std::size_t>(hostile.size()) % answers.size()].answer;
                hostile.append(feed);
            }
            m_server.setHandler(path(feed), [&, answer, isHealthy](const LocalHttpServer::Request &) {
                if (!isHealthy && !before)
                    before = peakFromNowOn(*program);
                return answer;
            });
        }

        program = m_home->start();
        QElapsedTimer timer;
        timer.start();
        const int mostMs = 15000 + 1000 * m_feeds + DownloadLimits().idleMs;
        QVERIFY(eventually([this] { return isMerged(m_feeds); }, mostMs));
        const qint64 took = timer.elapsed();
        const qint64 grown = peak(*program) - before.value_or(0);
        for (int feed = 1; feed <= m_feeds; ++feed) {
            if (hostile.contains(feed))
                QCOMPARE(Files::read(m_home->data.cacheFile(QString::number(feed))).bytes, stored());
            else
                QVERIFY2(isMerged(feed), QByteArray::number(feed));
        }
        const qint64 endTook = end(*program);
        qInfo("%d of %d feeds merged in %.1f s, %d hostile; memory grew by %.1f MB at most; the end took %lld ms",
              int(m_feeds - hostile.size()), m_feeds, double(took) / 1000, int(hostile.size()),
              double(grown) / megabyte, endTook);
        QVERIFY2(isSanitized || grown < 16 * megabyte, QByteArray::number(grown));
        QCOMPARE(m_home->data.read(u"feeds.xml"_s).count("lastupdate="), m_feeds);
    }

    void theProgramEndsInTheMiddleOfAnyAnswer()
    {
        struct Run : ProgramHome
        {
            std::unique_ptr<QProcess> program;
            bool isAsked = false;
        };
        std::vector<std::unique_ptr<Run>> runs;
        for (const Answer &answer : {floods().at(0).answer, drips().at(0).answer, drips().at(3).answer, silence()}) {
            const auto &run = runs.emplace_back(std::make_unique<Run>());
            const QString place = u"/run%1"_s.arg(runs.size());
            fill(run->data, {m_server.url(place)});
            m_server.setHandler(place, [&isAsked = run->isAsked, answer](const LocalHttpServer::Request &) {
                isAsked = true;
                return answer;
            });
            run->program = run->start();
        }
        for (const auto &run : runs) {
            QVERIFY(eventually([&run] { return run->isAsked; }));
            qInfo("the end took %lld ms", end(*run->program));
        }
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

    /// A program that updates these feeds at once and shows no window.
    static void fill(const TemporaryDataDirectory &data, const QStringList &addresses)
    {
        QByteArray settings = Files::read(u":/data/params.xml"_s).bytes;
        data.write(u"params.xml"_s, settings.replace("<params>", "<params><start mode=\"Minimisé\" update=\"1\"/>"));
        QByteArray catalogue = "<favoris>";
        for (qsizetype i = 0; i < addresses.size(); ++i) {
            const QByteArray key = QByteArray::number(i + 1);
            catalogue += "<feed name=\"F\" url=\"" + addresses[i].toUtf8() + "\" key=\"" + key + "\"/>";
            data.write(u"feeds/%1.xml"_s.arg(i + 1), stored());
        }
        data.write(u"feeds.xml"_s, catalogue + "</favoris>");
    }

    bool isMerged(int feed) const
    {
        return Files::read(m_home->data.cacheFile(QString::number(feed))).bytes.contains("<title>new</title>");
    }

    static qint64 end(QProcess &program)
    {
        const qint64 took = ProgramHome::end(program);
        [&] { QVERIFY2(isSanitized || took < 1000, QByteArray::number(took)); }();
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

    int m_feeds = 8;
    LocalHttpServer m_server;
    std::unique_ptr<ProgramHome> m_home;
};

QTEST_GUILESS_MAIN(ServerSafetyTest)
#include "tst_ServerSafety.moc"
