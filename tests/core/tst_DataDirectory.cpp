// SPDX-License-Identifier: GPL-3.0-or-later

#include "core/DataDirectory.h"
#include "platform/Files.h"
#include "platform/Literals.h"
#include "platform/RunTimeError.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

class DataDirectoryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        qputenv("XDG_DATA_HOME", m_folder->filePath(u"home/share"_s).toUtf8());
        qunsetenv("QUILLWIRE_DATA");
    }

    void theFirstStartFillsTheUsersFolder()
    {
        const DataDirectory chosen = DataDirectory::ofProgram(m_folder->path());
        QCOMPARE(chosen.path(), m_folder->filePath(u"home/share/quillwire"_s));
        QVERIFY(QDir(chosen.file(u"feeds"_s)).exists());
        for (const char *name : {"feeds.xml", "home.htm", "style.css", "slien.gif"}) {
            const QByteArray carried = Files::read(u":/data/"_s + QLatin1String(name)).bytes;
            QVERIFY2(!carried.isEmpty(), name);
            QCOMPARE(Files::read(chosen.file(QLatin1String(name))).bytes, carried);
        }
        QVERIFY(!Files::exists(chosen.file(u"params.xml"_s)));
        QCOMPARE(chosen.cacheFile(u"12"_s), QString(chosen.path() + u"/feeds/12.xml"_s));
    }

    void aPageOfAnEarlierVersionGivesWayAndOneOfTheUsersDoesNot()
    {
        const DataDirectory chosen = DataDirectory::ofProgram(m_folder->path());
        const QString style = chosen.file(u"style.css"_s);
        const QByteArray today = Files::read(style).bytes;
        const QByteArray earlier = Files::read(QString::fromUtf8(TEST_DATA_DIR "/style-3.1.0.css")).bytes;
        QVERIFY(!earlier.isEmpty() && earlier != today);
        for (const QByteArray &end : {QByteArray(), QByteArray("\n")}) {
            Files::write(style, earlier + end);
            DataDirectory::ofProgram(m_folder->path());
            QCOMPARE(Files::read(style).bytes, end.isEmpty() ? today : earlier + end);
        }
    }

    void onlyAFirstStartMakesACatalogue()
    {
        for (const QString &there : {u"params.xml"_s, u"feeds/7.xml"_s}) {
            init();
            DataDirectory chosen = DataDirectory::ofProgram(m_folder->path());
            QFile::remove(chosen.file(u"feeds.xml"_s));
            Files::write(chosen.file(there), "mine");
            chosen = DataDirectory::ofProgram(m_folder->path());
            QVERIFY(!Files::exists(chosen.file(u"feeds.xml"_s)));
            QCOMPARE(Files::read(chosen.file(there)).bytes, QByteArray("mine"));
        }
    }

    void whatAKillLeftBehindIsSwept()
    {
        const DataDirectory chosen = DataDirectory::ofProgram(m_folder->path());
        const QStringList left = {u"feeds.xml.AbCdEf"_s, u"params.xml.xxXxxx"_s, u"tmpupd.xml.zZZZZZ"_s,
                                  u"feeds/12.xml.QwErTy"_s};
        const QStringList kept = {u"feeds.xml.backup"_s, u"feeds.xml.Backup"_s, u"notes.AbCdEf"_s, u"feeds/12.xml.1"_s,
                                  u"feeds/mine.xml.AbCdEf"_s};
        for (const QString &name : left + kept)
            Files::write(chosen.file(name), "half");
        chosen.sweepLeftovers();
        for (const QString &name : left)
            QVERIFY2(!Files::exists(chosen.file(name)), qPrintable(name));
        for (const QString &name : kept)
            QVERIFY2(Files::exists(chosen.file(name)), qPrintable(name));
    }

    void aFolderWithACatalogueIsPortable()
    {
        Files::write(m_folder->filePath(u"feeds.xml"_s), "<favoris");
        const DataDirectory chosen = DataDirectory::ofProgram(m_folder->path());
        QCOMPARE(chosen.path(), m_folder->path());
        QCOMPARE(Files::read(chosen.file(u"feeds.xml"_s)).bytes, QByteArray("<favoris")); // even a broken one
        QVERIFY(Files::exists(chosen.file(u"home.htm"_s)));
    }

    void theVariableWinsAndNothingThatIsThereIsTouched()
    {
        Files::write(m_folder->filePath(u"feeds.xml"_s), "<favoris/>");
        const QString named = m_folder->filePath(u"a/b"_s);
        QDir().mkpath(named);
        Files::write(named + u"/style.css"_s, "mine");
        // A link to a disk that is away at present: an empty catalogue in its place would take the user's from him.
        QFile::link(u"/nowhere/feeds.xml"_s, named + u"/feeds.xml"_s);
        qputenv("QUILLWIRE_DATA", named.toUtf8());
        const DataDirectory chosen = DataDirectory::ofProgram(m_folder->path());
        QCOMPARE(chosen.path(), named);
        QCOMPARE(Files::read(chosen.file(u"style.css"_s)).bytes, QByteArray("mine"));
        QVERIFY(!Files::exists(chosen.file(u"feeds.xml"_s)));
        QVERIFY(Files::exists(chosen.file(u"slien.gif"_s)));
    }

    void aPlaceThatCannotBeMadeRaisesAnError()
    {
        const QString file = m_folder->filePath(u"file"_s);
        Files::write(file, "x");
        for (const QString &place : {file, QString(file + u"/below"_s)}) {
            qputenv("QUILLWIRE_DATA", place.toUtf8());
            QVERIFY_EXCEPTION_THROWN(DataDirectory::ofProgram(m_folder->path()), RunTimeError);
        }
    }

private:
    std::unique_ptr<QTemporaryDir> m_folder;
};

QTEST_GUILESS_MAIN(DataDirectoryTest)
#include "tst_DataDirectory.moc"
