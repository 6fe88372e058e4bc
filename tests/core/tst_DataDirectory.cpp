#include "core/DataDirectory.h"
#include "platform/Files.h"
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
        qputenv("XDG_DATA_HOME", m_folder->filePath(u"home/share"_qs).toUtf8());
        qunsetenv("QUILLWIRE_DATA");
    }

    void theFirstStartFillsTheUsersFolder()
    {
        const DataDirectory chosen = DataDirectory::ofProgram(m_folder->path());
        QCOMPARE(chosen.path(), m_folder->filePath(u"home/share/quillwire"_qs));
        QVERIFY(QDir(chosen.file(u"feeds"_qs)).exists());
        for (const char *name : {"feeds.xml", "home.htm", "style.css", "slien.gif"}) {
            const QByteArray carried = Files::read(u":/data/"_qs + QLatin1String(name)).bytes;
            QVERIFY2(!carried.isEmpty(), name);
            QCOMPARE(Files::read(chosen.file(QLatin1String(name))).bytes, carried);
        }
        QVERIFY(!Files::exists(chosen.file(u"params.xml"_qs)));
        QCOMPARE(chosen.cacheFile(u"12"_qs), QString(chosen.path() + u"/feeds/12.xml"_qs));
    }

    void aFolderWithACatalogueIsPortable()
    {
        Files::write(m_folder->filePath(u"feeds.xml"_qs), "<favoris");
        const DataDirectory chosen = DataDirectory::ofProgram(m_folder->path());
        QCOMPARE(chosen.path(), m_folder->path());
        QCOMPARE(Files::read(chosen.file(u"feeds.xml"_qs)).bytes, QByteArray("<favoris")); // even a broken one
        QVERIFY(Files::exists(chosen.file(u"home.htm"_qs)));
    }

    void theVariableWinsAndNothingThatIsThereIsTouched()
    {
        Files::write(m_folder->filePath(u"feeds.xml"_qs), "<favoris/>");
        const QString named = m_folder->filePath(u"a/b"_qs);
        QDir().mkpath(named);
        Files::write(named + u"/style.css"_qs, "mine");
        // A link to a disk that is away at present: an empty catalogue in its place would take the user's from him.
        QFile::link(u"/nowhere/feeds.xml"_qs, named + u"/feeds.xml"_qs);
        qputenv("QUILLWIRE_DATA", named.toUtf8());
        const DataDirectory chosen = DataDirectory::ofProgram(m_folder->path());
        QCOMPARE(chosen.path(), named);
        QCOMPARE(Files::read(chosen.file(u"style.css"_qs)).bytes, QByteArray("mine"));
        QVERIFY(!Files::exists(chosen.file(u"feeds.xml"_qs)));
        QVERIFY(Files::exists(chosen.file(u"slien.gif"_qs)));
    }

    void aPlaceThatCannotBeMadeRaisesAnError()
    {
        const QString file = m_folder->filePath(u"file"_qs);
        Files::write(file, "x");
        for (const QString &place : {file, QString(file + u"/below"_qs)}) {
            qputenv("QUILLWIRE_DATA", place.toUtf8());
            QVERIFY_EXCEPTION_THROWN(DataDirectory::ofProgram(m_folder->path()), RunTimeError);
        }
    }

private:
    std::unique_ptr<QTemporaryDir> m_folder;
};

QTEST_GUILESS_MAIN(DataDirectoryTest)
#include "tst_DataDirectory.moc"
