// SPDX-License-Identifier: GPL-3.0-or-later

#include "support/cRegistry.h"

#include "platform/FileRegistryStore.h"
#include "platform/Files.h"
#include "platform/RunTimeError.h"
#include "tests/fixtures/Golden.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

namespace {

/// A registry that refuses what it is told to.
class RefusingStore final : public FileRegistryStore
{
public:
    using FileRegistryStore::FileRegistryStore;

    qint32 createKey(qint32 root, const QString &section, qint32 access, RegistryKey &key) override
    {
        return refusesKeys ? RegistryResult::AccessDenied : FileRegistryStore::createKey(root, section, access, key);
    }
    qint32 setValue(const RegistryKey &key, const QString &name, qint32 type, const QByteArray &data) override
    {
        return valueResult == 0 ? FileRegistryStore::setValue(key, name, type, data) : valueResult;
    }
    qint32 enumerateKeys(const RegistryKey &key, QStringList &names) override
    {
        if (enumerationFails)
            throw RunTimeError::deviceError();
        return FileRegistryStore::enumerateKeys(key, names);
    }

    bool refusesKeys = false;
    bool enumerationFails = false;
    qint32 valueResult = RegistryResult::Success;
};

QString shown(const QVariant &value)
{
    const QString text = value.typeId() == QMetaType::QByteArray ? QString::fromLatin1(value.toByteArray().toHex(' '))
                                                                 : value.toString().replace(QChar(0), u"\\0"_s);
    return QLatin1String(value.typeName()) + u" \""_s + text + u'"';
}

} // namespace

/// What is done with the registry, step by step, and what it answers and holds: data/registry.expected.
class tst_cRegistry : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyStepIsAnswered()
    {
        valuesOfEveryType();
        storedBytesOfAnyType();
        namesWithoutCase();
        machines();
        errors();
        associations();
        QCOMPARE(differenceFromGolden(u"registry.expected"_s, m_told), QString());
    }

    void aBrokenFileIsNeverWrittenOver()
    {
        const QString path = m_directory.filePath(u"broken.json"_s);
        FileRegistryStore store(path);
        cRegistry registry(store);
        registry.setValueEx(RegistryRoot::CurrentUser, u"S"_s, u"v"_s, 1, u"?"_s, u"1"_s);
        for (const QByteArray &broken : {QByteArray("{\"HKEY"), QByteArray("[]"), QByteArray("{\"a\": 1}")}) {
            Files::write(path, broken);
            QCOMPARE(registry.Value(), QVariant(u"?"_s));
            QVERIFY_EXCEPTION_THROWN(registry.setValue(u"2"_s), RunTimeError);
            QVERIFY_EXCEPTION_THROWN(registry.DeleteValue(), RunTimeError);
            QVERIFY_EXCEPTION_THROWN(registry.DeleteKey(), RunTimeError);
            QStringList names;
            qint32 count = 0;
            QVERIFY(!registry.KeyExists() && !registry.EnumerateValues(names, count));
            QCOMPARE(Files::read(path).bytes, broken);
        }
    }

private:
    void valuesOfEveryType()
    {
        qputenv("QUILLWIRE_TEST_PLACE", "/a b");
        const QList<QPair<qint32, QVariant>> rows = {{1, u"C:\\é и"_s},
                                                     {1, u""_s},
                                                     {1, u"a%%"_s},
                                                     {1, u"%a%"_s},
                                                     {1, u"%QUILLWIRE_TEST_PLACE%/x"_s},
                                                     {1, u"5%NOT_SET_%QUILLWIRE_TEST_PLACE%"_s},
                                                     {2, u"x"_s},
                                                     {3, QByteArray("a\0b", 3)},
                                                     {4, -2},
                                                     {4, QVariant::fromValue(qint16(300))},
                                                     {5, 0x01020304},
                                                     {4, 1.5},
                                                     {7, u"a"_s},
                                                     {11, 1}};
        for (const auto &[type, value] : rows) {
            m_registry.ValueEx(RegistryRoot::CurrentUser, u"Software\\Test"_s, u"v"_s, 1, u"absent"_s);
            m_registry.ValueType = type;
            step(u"write %1 "_s.arg(type) + shown(value), [&] {
                m_registry.setValue(value);
                return read();
            });
            tellStore();
            step(u"delete"_s, [&] { return QString::number(m_registry.DeleteValue()); });
        }
    }

    void storedBytesOfAnyType()
    {
        for (const auto &[type, stored] : {std::pair(1, QByteArray()),
                                           {4, QByteArray("\7")},
                                           {4, QByteArray("\1\2\3\4\5")},
                                           {5, QByteArray("\1\2\3\4")},
                                           {7, QByteArray("a\0b\0", 4)},
                                           {11, QByteArray("\1\2")}}) {
            m_store.setValue({RegistryRoot::LocalMachine, u"S"_s}, u"v"_s, type, stored);
            step(u"read %1 "_s.arg(type) + shown(stored), [&] {
                m_registry.ValueEx(RegistryRoot::LocalMachine, u"S"_s, u"v"_s, 1, u"?"_s);
                return read();
            });
        }
    }

    void namesWithoutCase()
    {
        const auto write = [this](const QString &section, const QString &name, qint32 type, const QString &value) {
            step(u"write %1 in %2 %3"_s.arg(type).arg(section, name), [&] {
                m_registry.setValueEx(RegistryRoot::CurrentUser, section, name, type, u"the default"_s, value);
                return read();
            });
        };
        write(u"\\Top\\\\Other\\"_s, u""_s, 1, u"3"_s);
        write(u"Top\\Low"_s, u"One"_s, 1, u""_s); // Default takes the place of an empty text of type 1 alone
        write(u"TOP\\low"_s, u"ONE"_s, 2, u"2"_s);
        write(u"Top\\Low"_s, u"Two"_s, 2, u""_s);
        write(u"Top\\Low\\Lower"_s, u"v"_s, 1, u"4"_s);
        tellStore();
        for (const QString &section : {u"Top\\Low"_s, u"top"_s, u"absent"_s, u""_s}) {
            m_registry.SectionKey = section;
            step(u"look into "_s + section, [&] {
                QStringList values{u"old"_s}, sections{u"old"_s};
                qint32 valueCount = -1, sectionCount = -1;
                const bool found = m_registry.EnumerateValues(values, valueCount);
                const bool foundToo = m_registry.EnumerateSections(sections, sectionCount);
                return u"%1: %2 %3: %4, %5 %6: %7"_s.arg(m_registry.KeyExists())
                    .arg(found)
                    .arg(valueCount)
                    .arg(values.join(u' '))
                    .arg(foundToo)
                    .arg(sectionCount)
                    .arg(sections.join(u' '));
            });
        }
    }

    void machines()
    {
        for (const QString &machine : {u"abc"_s, u"\\\\abc"_s, u"ab"_s}) {
            m_registry.setMachine(machine);
            step(u"machine "_s + machine, [&]() -> QString {
                m_registry.setValueEx(RegistryRoot::CurrentUser, u"M"_s, u"v"_s, 1, u"the default"_s, u"new"_s);
                return m_registry.Machine() + u' ' + read() + u' ' + shown(m_registry.Default);
            });
        }
    }

    void errors()
    {
        const auto told = [](bool result) { return QString::number(result); };
        const auto remove = [&] { return told(m_registry.DeleteValue()); };
        const auto removeKey = [&] { return told(m_registry.DeleteKey()); };
        const auto make = [&] { return told(m_registry.CreateKey()); };
        const auto write = [&] {
            m_registry.setValue(u"x"_s);
            return read();
        };
        m_registry.ValueEx(RegistryRoot::CurrentUser, u"E"_s, u"v"_s, 1, {});
        step(u"delete a section that isn't"_s, removeKey);
        step(u"delete a value of a section that isn't"_s, remove);
        step(u"write"_s, write);
        m_registry.ValueType = 3;
        step(u"write a text as bytes"_s, write);
        step(u"delete the value"_s, remove);
        step(u"delete a value that isn't"_s, remove);
        step(u"delete the section"_s, removeKey);
        step(u"make it"_s, make);
        m_registry.SectionKey = u"Top"_s;
        step(u"delete a section with others below"_s, removeKey);
        m_registry.ClassKey = 5;
        step(u"make one below a root that isn't"_s, make);
        m_registry.ValueEx(RegistryRoot::CurrentUser, u"E"_s, u"v"_s, 1, u"none"_s);
        m_store.refusesKeys = true;
        step(u"make one that is refused"_s, make);
        step(u"write into one that is refused"_s, write);
        m_store.refusesKeys = false;
        m_store.valueResult = RegistryResult::AccessDenied;
        step(u"write what is refused, unnoticed"_s, write);
        m_store.valueResult = -1;
        step(u"write what fails"_s, write);
        m_store.valueResult = RegistryResult::Success;
        m_store.enumerationFails = true;
        step(u"list what fails"_s, [&] {
            QStringList names;
            qint32 count = 0;
            return told(m_registry.EnumerateSections(names, count));
        });
    }

    void associations()
    {
        const QStringList verb{u"show"_s, u"Show"_s, u"p /s"_s};
        const auto addVerbs = [&](const QStringList &items) {
            step(u"add verbs"_s, [&] {
                m_registry.CreateAdditionalEXEAssociations(u"QW"_s, items);
                return m_registry.SectionKey;
            });
        };
        addVerbs(verb); // before there is a class
        m_registry.CreateEXEAssociation(u" C:\\p q.exe "_s, u"QW"_s, u"A feed"_s, u"rss"_s, QString(), true,
                                        u"Imprimer"_s, true, QString(), true, QString(), 2);
        m_registry.CreateEXEAssociation(u"\"p\""_s, u"QX"_s, u"Another"_s, u"xml"_s, u"Ouvrir"_s);
        m_registry.CreateEXEAssociation(u"\""_s, u"QY"_s, u"A third"_s, u"a"_s, {}, true, {}, true, u"N"_s, true,
                                        u"I"_s, 0);
        addVerbs(verb.mid(1));
        addVerbs(verb + verb);
        tellStore();
    }

    template <class Operation>
    void step(const QString &name, Operation operation)
    {
        m_told += name + u" -> "_s;
        try {
            m_told += operation() + u'\n';
        } catch (const RunTimeError &error) {
            m_told += QString::number(error.number()) + u' ' + error.text() + u'\n';
        }
    }

    QString read()
    {
        const QVariant value = m_registry.Value();
        return shown(value) + u" of type %1"_s.arg(m_registry.ValueType);
    }

    /// Tells all that the store holds, and forgets it.
    void tellStore()
    {
        const QString path = m_directory.filePath(u"config/registry.json"_s);
        const QJsonObject sections = QJsonDocument::fromJson(Files::read(path).bytes).object();
        for (auto section = sections.begin(); section != sections.end(); ++section) {
            m_told += u"    "_s + section.key() + u'\n';
            const QJsonObject values = section.value().toObject();
            for (auto value = values.begin(); value != values.end(); ++value) {
                const QJsonObject fields = value.value().toObject();
                const QByteArray data = QByteArray::fromBase64(fields.value(u"data"_s).toString().toLatin1());
                m_told += u"        "_s + value.key() + u": %1 "_s.arg(fields.value(u"type"_s).toInt()) +
                          QString::fromUtf8(data).replace(QChar(0), u"\\0"_s) + u'\n';
            }
        }
    }

    QTemporaryDir m_directory;
    RefusingStore m_store{m_directory.filePath(u"config/registry.json"_s)};
    cRegistry m_registry{m_store};
    QString m_told;
};

QTEST_GUILESS_MAIN(tst_cRegistry)
#include "tst_cRegistry.moc"
