// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/AnsiText.h"
#include "tests/app/ProgramHome.h"
#include "tests/fixtures/FeedTexts.h"
#include "tests/fixtures/LocalHttpServer.h"

/// The program itself, and what a second start of it does.
class tst_TwoProcesses : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<ProgramHome> m_home;
    LocalHttpServer m_server;
    QByteArray m_used;
    int m_restful = 0; ///< looks at which the process slept

    /// A first instance that takes texts already.
    std::unique_ptr<QProcess> startFirst(const QStringList &arguments = {}) const
    {
        auto process = m_home->start(arguments);
        const QString socket = m_home->runtime.filePath(u"Quillwire3.0_APPLICATION"_s);
        if (!eventually([&] { return QFileInfo::exists(socket); }))
            qWarning("the first instance doesn't listen");
        return process;
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
        m_home = std::make_unique<ProgramHome>();
        m_home->data.write(u"feeds.xml"_s, "<?xml version=\"1.0\"?><favoris></favoris>");
    }

    void aBrokenCatalogueEndsTheStartWithItsMessageAndSavesNothing()
    {
        m_home->data.write(u"feeds.xml"_s, "<favoris><feed");
        const auto first = m_home->start();
        QVERIFY(eventually([this] { return m_home->data.exists(u"params.xml"_s); }));
        QVERIFY(eventually([&] { return rests(*first); })); // the box stands and waits for its OK
        first->terminate();                                 // ends it as the OK does: there is no road out any more
        QVERIFY(ProgramHome::ended(*first));
        QCOMPARE(first->exitCode(), 1);
        QVERIFY(!m_home->data.read(u"params.xml"_s).contains("<start"));
        QCOMPARE(m_home->data.read(u"feeds.xml"_s), QByteArray("<favoris><feed"));
    }

    void aTermSignalEndsAStartThatShowsABox()
    {
        const auto first = startFirst({u"\"/no/such/file\""_s});
        QVERIFY(eventually([&] { return rests(*first); })); // "Le fichier que vous tentez d'ouvrir n'existe pas" stands
        ProgramHome::end(*first);
        QVERIFY(m_home->data.read(u"params.xml"_s).contains("<start"));
    }

    void laterStartsHandTheirTextsOverUnchangedAndEnd()
    {
        const QString feed = m_home->data.file(u"œuvre 日.rss"_s);
        Files::write(feed, FeedTexts::rss(u"Remis"_s, {u"un"_s}));
        m_server.setBody(u"/f.xml"_s, FeedTexts::rss(u"Loin"_s, {u"un"_s}));
        const auto first = startFirst();
        const QByteArray settings = m_home->data.read(u"params.xml"_s);
        const auto startsAndEnds = [this](const QStringList &arguments) {
            const auto later = m_home->start(arguments);
            return ProgramHome::ended(*later) && later->exitCode() == 0;
        };
        QVERIFY(startsAndEnds({}));
        QVERIFY(startsAndEnds({u"\""_s + feed + u"\""_s}));
        // The first instance has opened the file: its copy and the page of its channel are there.
        QVERIFY(eventually([this] { return m_home->data.read(u"tmp.xml"_s).contains("Remis"); }));
        QVERIFY(eventually([this] { return m_home->data.read(u"tmp.htm"_s).contains(onPage("Remis")); }));
        QVERIFY(startsAndEnds({m_server.url(u"/f.xml"_s)}));
        QVERIFY(eventually([this] { return m_server.hits(u"/f.xml"_s) == 1; }));
        QVERIFY(eventually([this] { return m_home->data.read(u"tmp.htm"_s).contains(onPage("Loin")); }));
        QCOMPARE(first->state(), QProcess::Running);
        QCOMPARE(m_home->data.read(u"params.xml"_s), settings);
        ProgramHome::end(*first);
    }

    void aKilledInstanceDoesNotHinderTheNextWhichATermSignalEnds()
    {
        const auto first = startFirst();
        const QByteArray before = m_home->data.read(u"feeds.xml"_s);
        first->kill();
        QVERIFY(ProgramHome::ended(*first));
        QVERIFY(m_home->data.exists(u"params.xml"_s)); // made from the template by the first start
        QFile::remove(m_home->runtime.filePath(u"Quillwire3.0_APPLICATION"_s));
        const auto next = startFirst();
        QCOMPARE(next->state(), QProcess::Running);
        QCOMPARE(m_home->data.read(u"feeds.xml"_s), before);
        QVERIFY(!m_home->data.read(u"params.xml"_s).contains("<start"));
        ProgramHome::end(*next);
        QVERIFY(m_home->data.read(u"params.xml"_s).contains("<start")); // written on the road out
    }
};

QTEST_GUILESS_MAIN(tst_TwoProcesses)
#include "tst_TwoProcesses.moc"
