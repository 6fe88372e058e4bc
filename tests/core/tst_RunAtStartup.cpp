// SPDX-License-Identifier: GPL-3.0-or-later

#include "core/RunAtStartup.h"

#include "platform/AutostartRegistryStore.h"
#include "platform/FileRegistryStore.h"
#include "platform/Files.h"
#include "platform/Literals.h"
#include "support/cRegistry.h"

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

class tst_RunAtStartup : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_directory = std::make_unique<QTemporaryDir>();
        m_file = std::make_unique<FileRegistryStore>(m_directory->filePath(u"registry.json"_s));
        m_store = std::make_unique<AutostartRegistryStore>(*m_file, autostart());
    }

    void entryComesAndGoes()
    {
        QCOMPARE(isRunAtStartup(*m_store, u"quillwire"_s), 0);
        setRunAtStartup(0, *m_store, u"/opt"_s, u"quillwire"_s);
        QVERIFY(QDir(m_directory->path()).isEmpty()); // asking writes nothing
        setRunAtStartup(2, *m_store, u"/opt/quill wire"_s, u"quillwire"_s);
        QCOMPARE(isRunAtStartup(*m_store, u"quillwire"_s), 2);
        QCOMPARE(storedPath(), u"/opt/quill wire/quillwire");
        setRunAtStartup(1, *m_store, u"/opt/"_s, u"quillwire"_s);
        QCOMPARE(storedPath(), u"/opt/quillwire");
        setRunAtStartup(0, *m_store, u"/opt"_s, u"quillwire"_s);
        QVERIFY(QDir(autostart()).isEmpty());
    }

    void aQuestionMarkCountsAsAbsent()
    {
        cRegistry registry(*m_store);
        registry.setValueEx(RegistryRoot::CurrentUser, AutostartRegistryStore::runSection(), u"quillwire"_s, 1, {},
                            u"?"_s);
        QCOMPARE(storedPath(), u"?");
        QCOMPARE(isRunAtStartup(*m_store, u"quillwire"_s), 0);
    }

    void aStoreThatRefusesIsIgnored()
    {
        Files::write(m_directory->filePath(u"autostart"_s), "a file where the folder should be");
        setRunAtStartup(2, *m_store, u"/opt"_s, u"quillwire"_s);
        QCOMPARE(isRunAtStartup(*m_store, u"quillwire"_s), 0);
        setRunAtStartup(0, *m_store, u"/opt"_s, u"quillwire"_s);
    }

    void theEntryStartsTheProgramWhateverItsDirectory()
    {
        // A reader of its own for the rules of the Desktop Entry Specification: the escapes of a string, then the
        // quotes.
        const QByteArray script = "import sys, re\n"
                                  "lines = open(sys.argv[1], encoding='utf-8').read().split('\\n')\n"
                                  "assert lines[0] == '[Desktop Entry]'\n"
                                  "fields = dict(l.split('=', 1) for l in lines[1:] if l)\n"
                                  "assert fields['Type'] == 'Application' and fields['Name'] == 'quillwire'\n"
                                  "escapes = {'s': ' ', 'n': '\\n', 't': '\\t', 'r': '\\r', '\\\\': '\\\\'}\n"
                                  "value = re.sub(r'\\\\(.)', lambda m: escapes[m.group(1)], fields['Exec'])\n"
                                  "match = re.search(r'\"((?:[^\"`$\\\\]|\\\\[\"`$\\\\])*)\"$', value)\n"
                                  "argument = re.sub(r'\\\\(.)', r'\\1', match.group(1))\n"
                                  "assert not re.search('%', argument.replace('%%', ''))\n"
                                  "sys.stdout.buffer.write(argument.replace('%%', '%').encode())\n";
        const QString entry = autostart(u"quillwire-run-quillwire.desktop"_s);
        for (const QString &name : {u"plain"_s, u"with two blanks"_s, u"a$HOME `b` \"c\" 'd' \\e;f&g"_s,
                                    u"50% of%f 100%"_s, u"a=b"_s, u"été и"_s}) {
            const QString program = u"/opt/"_s + name + u"/quillwire";
            setRunAtStartup(2, *m_store, u"/opt/"_s + name, u"quillwire"_s);
            QCOMPARE(storedPath(), program);
            QProcess reader;
            reader.start(u"python3"_s, {u"-c"_s, QString::fromUtf8(script), entry});
            QVERIFY(reader.waitForFinished());
            QCOMPARE(reader.readAllStandardError(), QByteArray());
            QCOMPARE(QString::fromUtf8(reader.readAllStandardOutput()), program);
        }
    }

    void anEntrySwitchedOffByTheSessionIsAbsent()
    {
        const QString path = autostart(u"quillwire-run-quillwire.desktop"_s);
        for (const QByteArray &mark : {QByteArray("Hidden=true\n"), QByteArray("X-GNOME-Autostart-enabled=false\n")}) {
            setRunAtStartup(2, *m_store, u"/opt"_s, u"quillwire"_s);
            Files::write(path, Files::read(path).bytes + mark);
            QCOMPARE(isRunAtStartup(*m_store, u"quillwire"_s), 0);
            setRunAtStartup(2, *m_store, u"/opt"_s, u"quillwire"_s);
            QCOMPARE(isRunAtStartup(*m_store, u"quillwire"_s), 2);
        }
    }

    void foreignEntriesAreNeitherSeenNorTouched()
    {
        QVERIFY(QDir().mkpath(autostart()));
        const QByteArray foreign = "[Desktop Entry]\nType=Application\nName=quillwire\nExec=other\n";
        for (const QString &file : {u"quillwire.desktop"_s, u"quillwire-run-strange.desktop"_s}) {
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
        QVERIFY(!QFileInfo::exists(autostart(u"a"_s)));
        QStringList names;
        qint32 count = 0;
        QVERIFY(registry.EnumerateValues(names, count));
        QCOMPARE(names, QStringList{u"a/b é"_s});
        const QByteArray entry = Files::read(autostart(QDir(autostart()).entryList(QDir::Files).value(0))).bytes;
        QVERIFY2(entry.contains("\nExec=\"/bin/x y\" \"-a\"\n"), entry.constData());
        registry.ValueKey = u"A/B É"_s;
        QVERIFY(registry.DeleteValue());
        QVERIFY(QDir(autostart()).isEmpty());
    }

private:
    QString storedPath()
    {
        cRegistry registry(*m_store);
        return registry
            .ValueEx(RegistryRoot::CurrentUser, AutostartRegistryStore::runSection(), u"quillwire"_s, 1, u"absent"_s)
            .toString();
    }
    QString autostart(const QString &name = QString()) const { return m_directory->filePath(u"autostart/"_s + name); }

    std::unique_ptr<QTemporaryDir> m_directory;
    std::unique_ptr<FileRegistryStore> m_file;
    std::unique_ptr<AutostartRegistryStore> m_store;
};

QTEST_GUILESS_MAIN(tst_RunAtStartup)
#include "tst_RunAtStartup.moc"
