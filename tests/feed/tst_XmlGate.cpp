// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/xml/XmlDocument.h"
#include "tests/feed/FeedDump.h"
#include "tests/feed/FeedFiles.h"
#include "tests/fixtures/RunTimeErrors.h"
#include "tests/fixtures/Steps.h"
#include "tests/fixtures/TextCases.h"

#include <QElapsedTimer>
#include <QRegularExpression>
#include <QTcpServer>
#include <QTest>

#include <sys/resource.h>

/// The gate to the XML library, which feeds and the program's own documents pass alike: in what they are judged alike
/// and in what not, that no document crashes, hangs or swells the program or reaches another file or host, and that
/// what is written can be read again.
class tst_XmlGate : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void documentsAreJudgedByTheBoundsOfTheirUser();
    void whatIsWrittenReadsBackTheSame();
    void anyTruncationEndsInAnAnswer();

private:
    QString judged(const QByteArray &bytes) const;
    static qint64 megabytesUsedAtMost()
    {
        rusage usage{};
        getrusage(RUSAGE_SELF, &usage);
        return usage.ru_maxrss / 1024;
    }

    FeedFiles m_files;
};

void tst_XmlGate::documentsAreJudgedByTheBoundsOfTheirUser()
{
    QTcpServer server;
    QVERIFY(server.listen(QHostAddress::LocalHost));
    const QByteArray host = "127.0.0.1:" + QByteArray::number(server.serverPort());
    const QByteArray secret = m_files.write("secret", "<!ENTITY b 'the secret'>the secret").toUtf8();
    const QRegularExpression repeated(u"\\{(\\d+):([^{}]*)\\}"_s);
    const auto take = [&](const QString &step, const QString &) {
        const QStringList parts = step.split(u" | "_s);
        QByteArrayList documents;
        for (const QString &part : {parts.value(1), parts.value(2)}) {
            QString text;
            qsizetype end = 0;
            for (const auto &found : repeated.globalMatch(part)) {
                text += part.mid(end, found.capturedStart() - end) +
                        QString::fromLatin1(many(found.captured(1).toInt(), found.captured(2).toLatin1()));
                end = found.capturedEnd();
            }
            text += part.mid(end);
            QByteArray bytes = QByteArray::fromPercentEncoding(text.toLatin1());
            documents += bytes.replace("FILE", secret).replace("HOST", host);
        }
        return judged(documents[0] == "whole" ? documents[1] : rss(documents[1], documents[0]));
    };
    QCOMPARE((Steps{{}, take}.differenceFrom(u"documents.steps"_s)), QString());
    QVERIFY(!server.waitForNewConnection(50));
}

/// Whether a document of the program's own passes, and a feed, now and once it was saved; quickly, without swelling the
/// program, and without what the secret file holds.
QString tst_XmlGate::judged(const QByteArray &bytes) const
{
    const QString path = m_files.write("feed.xml", bytes);
    const qint64 before = megabytesUsedAtMost();
    QElapsedTimer timer;
    timer.start();
    XmlDocument document;
    QString result = document.loadXml(bytes) == XmlDocument::LoadResult::Loaded ? u"passes"_s : u"refused"_s;
    CachedFeed feed;
    const bool passes = feed.Load(path) == LoadOk;
    feed.Save();
    result += passes ? u", passes"_s : u", refused"_s;
    if ((feed.Load(path) == LoadOk) != passes)
        result += u", can't be saved"_s;
    QByteArray written;
    if (const int error = errorOf([&] { written = document.toBytes(); }))
        result += u", own error %1"_s.arg(error);
    if (written.contains("the secret") || m_files.read("feed.xml").contains("the secret"))
        result += u", tells the secret"_s;
    if (timer.elapsed() > 5000)
        result += u", takes %1 ms"_s.arg(timer.elapsed());
    if (megabytesUsedAtMost() - before > 500)
        result += u", takes %1 MB"_s.arg(megabytesUsedAtMost() - before);
    return result;
}

/// The program's own documents, in the encoding that each says and in Latin-1, and what feeds are saved as.
void tst_XmlGate::whatIsWrittenReadsBackTheSame()
{
    QString told;
    for (const TextCase &each : readCases(u"written.txt"_s)) {
        told += u"=== "_s + each.name + u'\n';
        for (const char *declaration : {"", "<?xml version='1.0' encoding='ISO-8859-1'?>\n"}) {
            XmlDocument document;
            const QString given = QString::fromUtf8(each.documents.first());
            const bool isLatin1 = *declaration != 0;
            const QByteArray bytes = declaration + (isLatin1 ? given.toLatin1() : given.toUtf8());
            QCOMPARE(document.loadXml(bytes), XmlDocument::LoadResult::Loaded);
            const QByteArray once = document.toBytes();
            QCOMPARE(document.toBytes(), once); // writing leaves the document as it is
            QCOMPARE(document.loadXml(once), XmlDocument::LoadResult::Loaded);
            QCOMPARE(document.toBytes(), once);
            const QString markup = document.documentElement().xml();
            QCOMPARE(document.loadXml(markup), XmlDocument::LoadResult::Loaded);
            QCOMPARE(document.documentElement().xml(), markup);
            CachedFeed feed;
            QCOMPARE(feed.Load(m_files.write("feed.xml", bytes)), LoadOk);
            feed.Save();
            QCOMPARE(feed.Load(m_files.path("feed.xml")), LoadOk);
            const auto text = [&](const QByteArray &written) {
                return isLatin1 ? QString::fromLatin1(written) : QString::fromUtf8(written);
            };
            told += text(once) + markup + u'\n' + text(m_files.read("feed.xml"));
        }
    }
    QCOMPARE(differenceFromGolden(u"written.expected"_s, told), QString());
}

void tst_XmlGate::anyTruncationEndsInAnAnswer()
{
    for (const char *sample : {"rss091.xml", "rss092.xml", "rss20.xml", "rdf10.xml", "atom03.xml"}) {
        const QString path = m_files.writeSample("feed.xml", sample);
        const QByteArray whole = m_files.read("feed.xml");
        for (qsizetype size = whole.size(); size >= 0; --size) {
            QVERIFY(QFile::resize(path, size));
            CachedFeed feed;
            QCOMPARE(feed.Load(path), size > whole.lastIndexOf('>') ? LoadOk : LoadNotAFeed);
        }
    }
}

QTEST_GUILESS_MAIN(tst_XmlGate)
#include "tst_XmlGate.moc"
