// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/Files.h"
#include "platform/Literals.h"
#include "platform/RunTimeError.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

class tst_Files : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aFullDiskLeavesTheOldFile();
    void writingReportsWhatIsWrong();
};

void tst_Files::aFullDiskLeavesTheOldFile()
{
    QTemporaryDir folder;
    const QString path = folder.filePath(u"state.xml"_s);
    Files::write(path, "old");
    const pid_t child = fork();
    if (child == 0) {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{4096, 4096};
        setrlimit(RLIMIT_FSIZE, &limit);
        int outcome = 0;
        try {
            Files::write(path, QByteArray(100000, 'n'));
        } catch (const RunTimeError &) {
            outcome = 1;
        }
        _exit(outcome);
    }
    int status = 0;
    waitpid(child, &status, 0);
    QCOMPARE(WEXITSTATUS(status), 1);
    QCOMPARE(Files::read(path).bytes, QByteArray("old"));
    QCOMPARE(QDir(folder.path()).entryList(QDir::Files).size(), 1); // and no half of the new one beside it
}

void tst_Files::writingReportsWhatIsWrong()
{
    QTemporaryDir folder;
    const auto errorOfWriting = [](const QString &path) {
        try {
            Files::write(path, "x");
        } catch (const RunTimeError &error) {
            return error.number();
        }
        return 0;
    };
    QCOMPARE(errorOfWriting(folder.filePath(u"no/such/file"_s)), 76);
    QVERIFY(errorOfWriting(folder.path()) != 0);
    QVERIFY_EXCEPTION_THROWN(Files::remove(folder.filePath(u"none"_s)), RunTimeError);
    QVERIFY_EXCEPTION_THROWN(Files::copy(folder.filePath(u"none"_s), folder.filePath(u"to"_s)), RunTimeError);
    QVERIFY(!Files::exists(folder.path()));
}

QTEST_GUILESS_MAIN(tst_Files)
#include "tst_Files.moc"
