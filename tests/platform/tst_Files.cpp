// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/AutostartRegistryStore.h"
#include "platform/FileRegistryStore.h"
#include "platform/FileStamp.h"
#include "platform/Files.h"
#include "platform/Literals.h"
#include "tests/fixtures/RunTimeErrors.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>

class tst_Files : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aFullDiskLeavesTheOldFile()
    {
        QTemporaryDir folder;
        const QString path = folder.filePath(u"state.xml"_s);
        Files::write(path, "old");
        for (const rlim_t room : {0, 4096}) { // nothing fits, and a part does
            QCOMPARE(errorOnFullDisk(room, [&] { Files::write(path, QByteArray(100000, 'n')); }),
                     RunTimeError::diskFull().number());
            QCOMPARE(Files::read(path).bytes, QByteArray("old"));
            QCOMPARE(QDir(folder.path()).entryList(QDir::Files).size(), 1); // and no half of the new one beside it
        }
    }

    void writingReportsWhatIsWrong()
    {
        QTemporaryDir folder;
        QCOMPARE(errorOf([&] { Files::write(folder.filePath(u"no/such/file"_s), "x"); }), 76);
        QCOMPARE(errorOf([&] { Files::write(folder.path(), "x"); }), 70);
        QVERIFY(QDir(folder.path()).isEmpty());

        const QString file = folder.filePath(u"protected.xml"_s);
        Files::write(file, "old");
        const auto asNobody = [&file] {
            [[maybe_unused]] const int changed = seteuid(geteuid() == 0 ? 65534 : geteuid());
            Files::write(file, "new");
        };
        QFile::setPermissions(folder.path(), QFile::Permissions(0x7755)); // another's file in another's folder
        if (geteuid() == 0) {
            QCOMPARE(errorAside(asNobody), RunTimeError::permissionDenied().number());
        }
        QFile::setPermissions(file, QFile::Permissions(0x4444));
        QCOMPARE(errorAside(asNobody), RunTimeError::permissionDenied().number());
        QCOMPARE(Files::read(file).bytes, QByteArray("old"));

        const QString copy = folder.filePath(u"copy"_s);
        QCOMPARE(errorOf([&] { Files::copy(file, copy); }), 0);
        QCOMPARE(Files::read(copy).bytes, QByteArray("old"));
        QVERIFY(Files::exists(copy) && FileStamp::of(copy) && *FileStamp::of(copy) == *FileStamp::of(copy));
        QCOMPARE(FileStamp::of(copy)->size, 3);
        QCOMPARE(errorOf([&] { Files::remove(file); }), 0); // a read-only one too
        QVERIFY(!Files::exists(file) && Files::read(file).result == Files::ReadResult::Absent && !FileStamp::of(file));
        QCOMPARE(errorOf([&] { Files::remove(file); }), 53);
        QCOMPARE(errorOf([&] { Files::copy(file, copy); }), 53);
    }

    void theRegistryLiesInTheFolderOfTheUsersSettings()
    {
        const QByteArray before = qgetenv("XDG_CONFIG_HOME");
        qputenv("XDG_CONFIG_HOME", "/settings");
        QCOMPARE(FileRegistryStore::defaultPath(), u"/settings/quillwire/registry.json"_s);
        QCOMPARE(AutostartRegistryStore::defaultDirectory(), u"/settings/autostart"_s);
        qputenv("XDG_CONFIG_HOME", before);
    }

    void onlyRegularFilesAreRead()
    {
        QTemporaryDir folder;
        const QString pipe = folder.filePath(u"pipe"_s);
        const QString link = folder.filePath(u"link"_s);
        QCOMPARE(mkfifo(qPrintable(pipe), 0600), 0);
        QVERIFY(QFile::link(pipe, link));
        alarm(20); // opening a pipe that nobody writes to waits for ever, and /dev/zero has no end
        for (const QString &path : {pipe, link, u"/dev/zero"_s, u"/dev/tty"_s, folder.path()}) {
            QVERIFY(!Files::exists(path));
            QVERIFY(Files::read(path).result == Files::ReadResult::Unreadable);
            QCOMPARE(errorOf([&] { Files::copy(path, folder.filePath(u"copy"_s)); }), 57);
        }
        alarm(0);
    }
};

QTEST_GUILESS_MAIN(tst_Files)
#include "tst_Files.moc"
