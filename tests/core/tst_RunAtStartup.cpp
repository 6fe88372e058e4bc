// SPDX-License-Identifier: GPL-3.0-or-later

#include "core/RunAtStartup.h"

#include "platform/AutostartRegistryStore.h"
#include "platform/FileRegistryStore.h"
#include "platform/Files.h"
#include "platform/Literals.h"
#include "support/cRegistry.h"
#include "tests/fixtures/Golden.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

class RunAtStartupTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_directory = std::make_unique<QTemporaryDir>();
        m_file = std::make_unique<FileRegistryStore>(m_directory->filePath(u"registry.json"_s));
        m_store = std::make_unique<AutostartRegistryStore>(*m_file, autostart());
    }

    void theEntryComesAndGoes()
    {
        QCOMPARE(state(), 0);
        set(0);
        QVERIFY(QDir(m_directory->path()).isEmpty()); // asking writes nothing
        for (const auto &[directory, program] :
             {std::pair(u"/opt/quill wire"_s, u"/opt/quill wire/quillwire"_s),
              std::pair(u"/opt/"_s, u"/opt/quillwire"_s), std::pair(u"c:\\"_s, u"c:\\quillwire"_s)}) {
            set(1, directory);
            QCOMPARE(state(), 2);
            QCOMPARE(storedPath(), program);
        }
        set(0);
        QCOMPARE(state(), 0);
        QVERIFY(QDir(autostart()).isEmpty());
        cRegistry(*m_store).setValueEx(RegistryRoot::CurrentUser, AutostartRegistryStore::runSection(), u"quillwire"_s,
                                       1, {}, u"?"_s);
        QCOMPARE(state(), 0); // a question mark counts as absent
        QVERIFY(QDir(autostart()).removeRecursively());
        Files::write(autostart(), "a file where the folder should be"); // a store that refuses is ignored
        set(2);
        set(0);
        QCOMPARE(state(), 0);
    }

    /// The command is written by the rules of the Desktop Entry Specification: the quotes, then the escapes of a
    /// string.
    void theEntryStartsTheProgramWhateverItsDirectory()
    {
        QString entries;
        for (const QString &name :
             {u"with two blanks"_s, u"a$HOME `b` \"c\" 'd' \\e;f&g"_s, u"50% of%f 100%"_s, u"a=b"_s, u"été и"_s}) {
            set(2, u"/opt/"_s + name);
            QCOMPARE(storedPath(), QString(u"/opt/"_s + name + u"/quillwire"));
            entries += QString::fromUtf8(Files::read(entry()).bytes);
        }
        QCOMPARE(differenceFromGolden(u"run-entries.expected"_s, entries), QString());
    }

    void anEntrySwitchedOffByTheSessionIsAbsent()
    {
        for (const QByteArray &mark : {QByteArray("Hidden=true\n"), QByteArray("X-GNOME-Autostart-enabled=false\n")}) {
            set(2);
            QCOMPARE(state(), 2);
            Files::write(entry(), Files::read(entry()).bytes + mark);
            QCOMPARE(state(), 0);
        }
    }

    void foreignEntriesAreNeitherSeenNorTouched()
    {
        QVERIFY(QDir().mkpath(autostart()));
        const QByteArray foreign = "[Desktop Entry]\nType=Application\nName=quillwire\nExec=other\n";
        for (const QString &file : {u"/quillwire.desktop"_s, u"/quillwire-run-strange.desktop"_s}) {
            Files::write(autostart(file), foreign);
            for (const QString &name : {u"quillwire"_s, u"strange"_s}) {
                QCOMPARE(isRunAtStartup(*m_store, name), 0);
                setRunAtStartup(0, *m_store, u"/opt"_s, name);
            }
            QCOMPARE(Files::read(autostart(file)).bytes, foreign);
        }
    }

    void otherSectionsGoToTheOtherStore()
    {
        cRegistry registry(*m_store);
        registry.setValueEx(RegistryRoot::CurrentUser, u"Software\\Other"_s, u"a/b"_s, 1, {}, u"1"_s);
        registry.setValueEx(RegistryRoot::CurrentUser, u"software\\microsoft\\windows\\currentversion\\run"_s,
                            u"a/b é"_s, 1, {}, u"\"/bin/x y\" -a"_s);
        QVERIFY(!QFileInfo::exists(autostart(u"/a"_s)));
        QStringList names;
        qint32 count = 0;
        QVERIFY(registry.EnumerateValues(names, count));
        QCOMPARE(names, QStringList{u"a/b é"_s});
        const QByteArray entry = Files::read(autostart(u'/' + QDir(autostart()).entryList(QDir::Files).value(0))).bytes;
        QVERIFY2(entry.contains("\nExec=\"/bin/x y\" \"-a\"\n"), entry.constData());
        registry.ValueKey = u"A/B É"_s;
        QVERIFY(registry.DeleteValue());
        QVERIFY(QDir(autostart()).isEmpty());
    }

private:
    int state() const { return isRunAtStartup(*m_store, u"quillwire"_s); }
    void set(int state, const QString &directory = u"/opt"_s) const
    {
        setRunAtStartup(state, *m_store, directory, u"quillwire"_s);
    }
    QString storedPath()
    {
        cRegistry registry(*m_store);
        return registry
            .ValueEx(RegistryRoot::CurrentUser, AutostartRegistryStore::runSection(), u"quillwire"_s, 1, u"absent"_s)
            .toString();
    }
    QString autostart(const QString &name = {}) const { return m_directory->filePath(u"autostart"_s) + name; }
    QString entry() const { return autostart(u"/quillwire-run-quillwire.desktop"_s); }

    std::unique_ptr<QTemporaryDir> m_directory;
    std::unique_ptr<FileRegistryStore> m_file;
    std::unique_ptr<AutostartRegistryStore> m_store;
};

QTEST_GUILESS_MAIN(RunAtStartupTest)
#include "tst_RunAtStartup.moc"
