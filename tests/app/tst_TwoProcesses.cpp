// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/AnsiText.h"
#include "platform/Files.h"
#include "platform/Literals.h"
#include "tests/fixtures/Eventually.h"
#include "tests/fixtures/FeedTexts.h"
#include "tests/fixtures/LocalHttpServer.h"
#include "tests/fixtures/TemporaryDataDirectory.h"

#include <QFileInfo>
#include <QProcess>
#include <QTest>

#include <csignal>
#include <memory>

/// The program itself, started as a user starts it, with a data directory and a runtime directory of its own.
class tst_TwoProcesses : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<TemporaryDataDirectory> m_data;
    std::unique_ptr<QTemporaryDir> m_runtime;
    LocalHttpServer m_server;
    QByteArray m_used;
    int m_restful = 0; ///< looks at which the process slept

    std::unique_ptr<QProcess> start(const QStringList &arguments = {}) const
    {
        auto process = std::make_unique<QProcess>();
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"QUILLWIRE_DATA"_s, m_data->directory().path());
        environment.insert(u"QUILLWIRE_RUNTIME_DIR"_s, m_runtime->path());
        environment.insert(u"XDG_CONFIG_HOME"_s, m_runtime->path());
        environment.insert(u"QT_QPA_PLATFORM"_s, u"offscreen"_s);
        process->setProcessEnvironment(environment);
        process->setProcessChannelMode(QProcess::ForwardedChannels);
        process->start(QString::fromUtf8(PROGRAM), arguments);
        return process;
    }

    /// A first instance that takes texts already.
    std::unique_ptr<QProcess> startFirst(const QStringList &arguments = {}) const
    {
        auto process = start(arguments);
        const QString socket = m_runtime->filePath(u"Quillwire3.0_APPLICATION"_s);
        if (!eventually([&] { return QFileInfo::exists(socket); }))
            qWarning("the first instance doesn't listen");
        return process;
    }

    /// Waits without a halt of this thread's server.
    static bool ended(QProcess &process)
    {
        return eventually([&] { return process.state() == QProcess::NotRunning; });
    }

    void end(QProcess &process) const
    {
        process.terminate();
        QVERIFY(ended(process));
        QCOMPARE(process.exitStatus(), QProcess::NormalExit);
        QCOMPARE(process.exitCode(), 0);
    }

    /// Whether the process sleeps, and did nothing since the last look.
    bool rests(const QProcess &process)
    {
        QFile file(u"/proc/%1/stat"_s.arg(process.processId()));
        if (!file.open(QIODevice::ReadOnly))
            return false;
        const QByteArrayList fields = file.readAll().split(' ');
        m_restful = fields[2] == "S" && fields[13] == m_used ? m_restful + 1 : 0;
        m_used = fields[13]; // ticks of the processor
        return m_restful > 100;
    }

    /// The text as it stands on a page.
    static QByteArray onPage(const char *text)
    {
        return AnsiText::toBytes(AnsiText::widenBytes(QString::fromLatin1(text)));
    }

private Q_SLOTS:
    void init()
    {
        m_data = std::make_unique<TemporaryDataDirectory>();
        m_runtime = std::make_unique<QTemporaryDir>();
        m_data->write(u"feeds.xml"_s, "<?xml version=\"1.0\"?><favoris></favoris>");
    }

    void aTermSignalTakesTheRoadOut()
    {
        const auto first = startFirst();
        QVERIFY(m_data->exists(u"params.xml"_s)); // made from the template by the first start
        QVERIFY(!m_data->read(u"params.xml"_s).contains("<start"));
        end(*first);
        QVERIFY(m_data->read(u"params.xml"_s).contains("<start")); // written at the end of the run
    }

    void aBrokenCatalogueEndsTheStartWithItsMessageAndSavesNothing()
    {
        m_data->write(u"feeds.xml"_s, "<favoris><feed");
        const auto first = start();
        QVERIFY(eventually([this] { return m_data->exists(u"params.xml"_s); }));
        QVERIFY(eventually([&] { return rests(*first); })); // the box stands and waits for its OK
        first->terminate();                                 // ends it as the OK does: there is no road out any more
        QVERIFY(ended(*first));
        QCOMPARE(first->exitCode(), 1);
        QVERIFY(!m_data->read(u"params.xml"_s).contains("<start"));
        QCOMPARE(m_data->read(u"feeds.xml"_s), QByteArray("<favoris><feed"));
    }

    void aTermSignalEndsAStartThatShowsABox()
    {
        const auto first = startFirst({u"\"/no/such/file\""_s});
        QVERIFY(eventually([&] { return rests(*first); })); // "Le fichier que vous tentez d'ouvrir n'existe pas" stands
        end(*first);
        QVERIFY(m_data->read(u"params.xml"_s).contains("<start"));
    }

    void laterStartsHandTheirTextsOverUnchangedAndEnd()
    {
        const QString feed = m_data->file(u"œuvre 日.rss"_s);
        Files::write(feed, FeedTexts::rss(u"Remis"_s, {u"un"_s}));
        m_server.setBody(u"/f.xml"_s, FeedTexts::rss(u"Loin"_s, {u"un"_s}));
        const auto first = startFirst();
        const QByteArray settings = m_data->read(u"params.xml"_s);
        const auto startsAndEnds = [this](const QStringList &arguments) {
            const auto later = start(arguments);
            return ended(*later) && later->exitCode() == 0;
        };
        QVERIFY(startsAndEnds({}));
        QVERIFY(startsAndEnds({u"\""_s + feed + u"\""_s}));
        // The first instance has opened the file: its copy and the page of its channel are there.
        QVERIFY(eventually([this] { return m_data->read(u"tmp.xml"_s).contains("Remis"); }));
        QVERIFY(eventually([this] { return m_data->read(u"tmp.htm"_s).contains(onPage("Remis")); }));
        QVERIFY(startsAndEnds({m_server.url(u"/f.xml"_s)}));
        QVERIFY(eventually([this] { return m_server.hits(u"/f.xml"_s) == 1; }));
        QVERIFY(eventually([this] { return m_data->read(u"tmp.htm"_s).contains(onPage("Loin")); }));
        QCOMPARE(first->state(), QProcess::Running);
        QCOMPARE(m_data->read(u"params.xml"_s), settings);
        end(*first);
    }

    void aKilledInstanceDoesNotHinderTheNextStart()
    {
        const auto first = startFirst();
        const QByteArray before = m_data->read(u"feeds.xml"_s);
        first->kill();
        QVERIFY(ended(*first));
        QFile::remove(m_runtime->filePath(u"Quillwire3.0_APPLICATION"_s));
        const auto next = startFirst();
        QCOMPARE(next->state(), QProcess::Running);
        QCOMPARE(m_data->read(u"feeds.xml"_s), before);
        end(*next);
    }
};

QTEST_GUILESS_MAIN(tst_TwoProcesses)
#include "tst_TwoProcesses.moc"
