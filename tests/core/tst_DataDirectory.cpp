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
    void init();
    void theFirstStartFillsTheUsersFolder();
    void aFolderWithACatalogueIsPortable();
    void theVariableWinsAndNothingThatIsThereIsTouched();
    void aPlaceThatCannotBeMadeRaisesAnError();

private:
    std::unique_ptr<QTemporaryDir> m_folder;
};

void DataDirectoryTest::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    qputenv("XDG_DATA_HOME", m_folder->filePath(QStringLiteral("home/share")).toUtf8());
    qunsetenv("QUILLWIRE_DATA");
}

void DataDirectoryTest::theFirstStartFillsTheUsersFolder()
{
    const DataDirectory chosen = DataDirectory::ofProgram(m_folder->path());
    QCOMPARE(chosen.path(), m_folder->filePath(QStringLiteral("home/share/quillwire")));
    QVERIFY(QDir(chosen.file(QStringLiteral("feeds"))).exists());
    for (const char *name : {"feeds.xml", "home.htm", "style.css", "slien.gif"}) {
        const QByteArray carried = Files::read(QStringLiteral(":/data/") + QLatin1String(name)).bytes;
        QVERIFY2(!carried.isEmpty(), name);
        QCOMPARE(Files::read(chosen.file(QLatin1String(name))).bytes, carried);
    }
    QVERIFY(!Files::exists(chosen.file(QStringLiteral("params.xml"))));
    QCOMPARE(chosen.cacheFile(QStringLiteral("12")), QString(chosen.path() + QStringLiteral("/feeds/12.xml")));
}

void DataDirectoryTest::aFolderWithACatalogueIsPortable()
{
    Files::write(m_folder->filePath(QStringLiteral("feeds.xml")), "<favoris");
    const DataDirectory chosen = DataDirectory::ofProgram(m_folder->path());
    QCOMPARE(chosen.path(), m_folder->path());
    QCOMPARE(Files::read(chosen.file(QStringLiteral("feeds.xml"))).bytes, QByteArray("<favoris")); // even a broken one
    QVERIFY(Files::exists(chosen.file(QStringLiteral("home.htm"))));
}

void DataDirectoryTest::theVariableWinsAndNothingThatIsThereIsTouched()
{
    Files::write(m_folder->filePath(QStringLiteral("feeds.xml")), "<favoris/>");
    const QString named = m_folder->filePath(QStringLiteral("a/b"));
    QDir().mkpath(named);
    Files::write(named + QStringLiteral("/style.css"), "mine");
    // A link to a disk that is away at present: an empty catalogue in its place would take the user's from him.
    QFile::link(QStringLiteral("/nowhere/feeds.xml"), named + QStringLiteral("/feeds.xml"));
    qputenv("QUILLWIRE_DATA", named.toUtf8());
    const DataDirectory chosen = DataDirectory::ofProgram(m_folder->path());
    QCOMPARE(chosen.path(), named);
    QCOMPARE(Files::read(chosen.file(QStringLiteral("style.css"))).bytes, QByteArray("mine"));
    QVERIFY(!Files::exists(chosen.file(QStringLiteral("feeds.xml"))));
    QVERIFY(Files::exists(chosen.file(QStringLiteral("slien.gif"))));
}

void DataDirectoryTest::aPlaceThatCannotBeMadeRaisesAnError()
{
    const QString file = m_folder->filePath(QStringLiteral("file"));
    Files::write(file, "x");
    for (const QString &place : {file, QString(file + QStringLiteral("/below"))}) {
        qputenv("QUILLWIRE_DATA", place.toUtf8());
        QVERIFY_EXCEPTION_THROWN(DataDirectory::ofProgram(m_folder->path()), RunTimeError);
    }
}

QTEST_GUILESS_MAIN(DataDirectoryTest)
#include "tst_DataDirectory.moc"
