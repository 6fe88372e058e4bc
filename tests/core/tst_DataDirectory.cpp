// SPDX-License-Identifier: GPL-3.0-or-later

#include "core/DataDirectory.h"
#include "platform/Files.h"
#include "platform/Literals.h"
#include "tests/fixtures/RunTimeErrors.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

namespace {

QByteArray carried(const QString &name)
{
    return Files::read(u":/data/"_s + name).bytes;
}

} // namespace

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
        QCOMPARE(QDir(chosen.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
                 (QStringList{u"feeds"_s, u"feeds.xml"_s, u"home.htm"_s, u"slien.gif"_s, u"style.css"_s}));
        for (const QString &name : {u"feeds.xml"_s, u"home.htm"_s, u"style.css"_s, u"slien.gif"_s})
            QCOMPARE(Files::read(chosen.file(name)).bytes, carried(name));
        const QFile::Permissions others = QFile::ReadGroup | QFile::ExeGroup | QFile::ReadOther | QFile::ExeOther;
        for (const QString &made : {chosen.path(), chosen.file(u"feeds"_s)}) { // passwords lie there
            QCOMPARE(QFile::permissions(made) & others, QFile::Permissions());
            QVERIFY(QFileInfo(made).isWritable() && QFileInfo(made).isExecutable());
        }
        QCOMPARE(chosen.cacheFile(u"12"_s), QString(chosen.path() + u"/feeds/12.xml"_s));
    }

    void aPageOfAnEarlierVersionGivesWayAndOneOfTheUsersDoesNot()
    {
        const DataDirectory chosen = DataDirectory::ofProgram(m_folder->path());
        const QDir earlier(QStringLiteral(TEST_DATA_DIR "/earlier"));
        QCOMPARE(earlier.count(), 2U + 6U);
        for (const QString &name : earlier.entryList(QDir::Files)) {
            const QString page = name.section(u'-', 0, 0) + u'.' + name.section(u'.', -1);
            const QByteArray before = Files::read(earlier.filePath(name)).bytes;
            QVERIFY(before != carried(page));
            for (const QByteArray &end : {QByteArray(), QByteArray("\n"), QByteArray(70000, ' ')}) {
                Files::write(chosen.file(page), before + end);
                DataDirectory::ofProgram(m_folder->path());
                QCOMPARE(Files::read(chosen.file(page)).bytes, end.isEmpty() ? carried(page) : before + end);
            }
            const QString link = chosen.file(page); // a user's own, whatever it leads to
            Files::write(m_folder->filePath(name), before);
            QVERIFY(QFile::remove(link) && QFile::link(m_folder->filePath(name), link));
            DataDirectory::ofProgram(m_folder->path());
            QVERIFY(QFileInfo(link).isSymLink() && Files::read(link).bytes == before);
            QFile::remove(link);
        }
    }

    void onlyAFirstStartMakesACatalogue()
    {
        for (const QString &there : {u"params.xml"_s, u"feeds/7.xml"_s, u"feeds/.7"_s}) {
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
        const QStringList left = {u"feeds.xml.AbCdEf"_s,   u"params.xml.xxXxxx"_s, u"tmp.xml.aBcdef"_s,
                                  u"tmpupd.xml.zZZZZZ"_s,  u"tmp.opml.abcdeF"_s,   u"tmp.htm.ABcdef"_s,
                                  u"home.htm.aBackp"_s,    u"style.css.AbCdEf"_s,  u"slien.gif.AbCdEf"_s,
                                  u"feeds/12.xml.QwErTy"_s};
        const QStringList kept = {u"feeds.xml.backup"_s, u"feeds.xml.BACKUP"_s,     u"feeds.xml.Backup"_s,
                                  u"feeds.xml.BackUp"_s, u"feeds.xml.backUp"_s,     u"feeds.xml.AbCdE"_s,
                                  u"tmp.xml.AbCdEfg"_s,  u"my.feeds.xml.AbCdEf"_s,  u"notes.AbCdEf"_s,
                                  u"feeds/12.xml.1"_s,   u"feeds/mine.xml.AbCdEf"_s};
        for (const QString &name : left + kept)
            Files::write(chosen.file(name), "half");
        chosen.sweepLeftovers();
        for (const QString &name : left + kept)
            QVERIFY2(Files::exists(chosen.file(name)) == kept.contains(name), qPrintable(name));
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
        for (const auto &[place, error] : {std::pair(file, RunTimeError::pathNotFound()),
                                           std::pair(QString(file + u"/below"_s), RunTimeError::permissionDenied())}) {
            qputenv("QUILLWIRE_DATA", place.toUtf8());
            QCOMPARE(errorOf([this] { DataDirectory::ofProgram(m_folder->path()); }), error.number());
        }
    }

private:
    std::unique_ptr<QTemporaryDir> m_folder;
};

QTEST_GUILESS_MAIN(DataDirectoryTest)
#include "tst_DataDirectory.moc"
