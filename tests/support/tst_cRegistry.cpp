// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/Literals.h"
#include "support/cRegistry.h"

#include "platform/FileRegistryStore.h"
#include "platform/Files.h"
#include "platform/RunTimeError.h"

#include <QTemporaryDir>
#include <QTest>

#include <memory>
#include <tuple>

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

template <class Operation>
QString errorOf(Operation operation)
{
    try {
        operation();
    } catch (const RunTimeError &error) {
        return QString::number(error.number()) + u' ' + error.text();
    }
    return u"none"_s;
}

} // namespace

class tst_cRegistry : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_directory = std::make_unique<QTemporaryDir>();
        m_store = std::make_unique<RefusingStore>(m_directory->filePath(u"config/registry.json"_s));
    }

    void valuesComeBackAsTheirTypeSays()
    {
        qputenv("QUILLWIRE_TEST_PLACE", "/a b");
        // The type, what is written, what is read, and the type then.
        const QList<std::tuple<qint32, QVariant, QVariant, qint32>> rows = {
            {1, u"C:\\é и"_s, u"C:\\é и"_s, 1},
            {1, u""_s, u""_s, 1},
            {1, u"a%%"_s, u"a%%"_s, 1},
            {1, u"%QUILLWIRE_TEST_PLACE%/x"_s, u"/a b/x"_s, 2},
            {1, u"5%NOT_SET_%QUILLWIRE_TEST_PLACE%"_s, u"5%NOT_SET_/a b"_s, 2},
            {3, QByteArray("a\0b", 3), QByteArray("a\0b", 3), 3},
            {4, -2, -2, 4},
            {5, 0x01020304, 0x01020304, 4}, // big-endian is written as little-endian
            {4, 1.5, u"absent"_s, 4},       // a number of another type writes nothing
            {11, 1, u"absent"_s, 11},       // nor does an unknown type
        };
        cRegistry registry(*m_store);
        for (const auto &[type, written, read, typeRead] : rows) {
            registry.ValueEx(RegistryRoot::CurrentUser, u"Software\\Test"_s, written.toString(), 1, u"absent"_s);
            registry.ValueType = type;
            registry.setValue(written);
            QCOMPARE(registry.ValueType, type);
            QCOMPARE(registry.Value(), read);
            QCOMPARE(registry.ValueType, typeRead);
            if (read != u"absent"_s)
                QVERIFY(registry.DeleteValue());
        }
    }

    void storedBytesOfAnyTypeAreRead()
    {
        const QList<std::tuple<qint32, QByteArray, QVariant>> rows = {
            {5, QByteArray::fromHex("01020304"), 0x01020304},         {4, QByteArray::fromHex("07"), 7},
            {7, QByteArray("a\0b\0", 4), QString(u"a\0b"_s)},         {1, QByteArray(), u""_s},
            {11, QByteArray("\1\2\3\4\5"), QByteArray("\1\2\3\4\5")},
        };
        RegistryKey key;
        QCOMPARE(m_store->createKey(RegistryRoot::LocalMachine, u"S"_s, RegistryAccess::All, key), 0);
        cRegistry registry(*m_store);
        for (const auto &[type, stored, read] : rows) {
            QCOMPARE(m_store->setValue(key, u"v"_s, type, stored), 0);
            QCOMPARE(registry.ValueEx(RegistryRoot::LocalMachine, u"S"_s, u"v"_s, 1, u"?"_s), read);
            QCOMPARE(registry.ValueType, type);
        }
    }

    void namesAreToldApartWithoutCaseAndListed()
    {
        cRegistry registry(*m_store);
        const auto write = [&registry](const QString &section, const QString &name, const QString &value) {
            registry.setValueEx(RegistryRoot::CurrentUser, section, name, value == u"2" ? 2 : 1, u"none"_s, value);
        };
        write(u"Top\\Other"_s, u""_s, u"3"_s);
        write(u"Top\\Low"_s, u"One"_s, u""_s);
        QCOMPARE(registry.Value(), QVariant(u"none"_s)); // Default takes the place of an empty text of type 1 alone
        write(u"TOP\\low"_s, u"ONE"_s, u"2"_s);
        QStringList names;
        qint32 count = -1;
        QVERIFY(registry.EnumerateValues(names, count));
        QCOMPARE(names, QStringList{u"One"_s});
        QCOMPARE(count, 1);
        QCOMPARE(registry.Value(), QVariant(u"2"_s));
        registry.setValueEx(RegistryRoot::CurrentUser, u"Top\\Low"_s, u"One"_s, 2, u"none"_s, u""_s);
        QCOMPARE(registry.Value(), QVariant(u""_s));
        registry.SectionKey = u"top"_s;
        QVERIFY(registry.EnumerateSections(names, count));
        QCOMPARE(names, (QStringList{u"Low"_s, u"Other"_s}));
        QCOMPARE(count, 2);
        registry.SectionKey = u"absent"_s;
        QVERIFY(!registry.EnumerateValues(names, count));
        QCOMPARE(count, 0);
    }

    void errorsCarryTheirNumbersAndTexts()
    {
        cRegistry registry(*m_store);
        registry.ValueEx(RegistryRoot::CurrentUser, u"S"_s, u"v"_s, 1, {});
        const QString place = u" '-2147483647',Section: 'S"_s;
        const QString unset = u"26001 Failed to set registry value Key:" + place + u"',Key: 'v' to value: 'kept'";
        const auto text = [&registry] { registry.setValue(u"x"_s); };
        QCOMPARE(errorOf([&] { registry.DeleteKey(); }), u"26001 Failed to delete registry Key:" + place);
        QCOMPARE(errorOf([&] { registry.DeleteValue(); }),
                 u"26001 Failed to open key" + place + u"' for delete access");
        registry.setValue(u"kept"_s);
        registry.ValueType = 3;
        QCOMPARE(errorOf(text), unset); // no bytes
        QVERIFY(registry.DeleteValue());
        QCOMPARE(errorOf([&] { registry.DeleteValue(); }),
                 u"26001 Failed to delete registry Key:" + place + u"',Key: 'v");
        QVERIFY(registry.DeleteKey() && !registry.KeyExists());
        QVERIFY(registry.CreateKey() && registry.KeyExists());
        registry.ValueType = 1;
        m_store->refusesKeys = true;
        QCOMPARE(errorOf([&] { registry.CreateKey(); }), u"26001 Failed to create registry Key: 'S");
        QCOMPARE(errorOf(text), unset);
        m_store->refusesKeys = false;
        m_store->valueResult = RegistryResult::AccessDenied;
        registry.setValue(u"lost"_s); // goes unnoticed
        m_store->valueResult = -1;
        QCOMPARE(errorOf(text), u"-2147194455" + QString(unset).remove(u"26001"_s).replace(u"kept"_s, u"lost"_s));
        m_store->enumerationFails = true;
        QStringList names;
        qint32 count = 0;
        QCOMPARE(errorOf([&] { registry.EnumerateSections(names, count); }),
                 u"-2147194454 " + RunTimeError::deviceError().text());
    }

    void aBrokenFileIsNeverWrittenOver()
    {
        const QString path = m_directory->filePath(u"config/registry.json"_s);
        cRegistry registry(*m_store);
        registry.setValueEx(RegistryRoot::CurrentUser, u"S"_s, u"v"_s, 1, u"?"_s, u"1"_s);
        for (const QByteArray &broken : {QByteArray("{\"HKEY"), QByteArray("[]"), QByteArray("{\"a\": 1}")}) {
            Files::write(path, broken);
            QCOMPARE(registry.Value(), QVariant(u"?"_s));
            QVERIFY(errorOf([&] { registry.setValue(u"2"_s); }).startsWith(u"26001"));
            QCOMPARE(Files::read(path).bytes, broken);
        }
    }

    void associationIsWrittenUnderBothRoots()
    {
        cRegistry registry(*m_store);
        const QStringList verb{u"show"_s, u"Show"_s, u"p /s"_s};
        const auto addVerb = [&](const QStringList &items) {
            return errorOf([&] { registry.CreateAdditionalEXEAssociations(u"QW"_s, items); }).section(u' ', 0, 0);
        };
        QCOMPARE(addVerb(verb), u"-2147194451"); // before there is a class
        registry.CreateEXEAssociation(u" C:\\p q.exe "_s, u"QW"_s, u"A feed"_s, u"rss"_s, QString(), true,
                                      u"Imprimer"_s, true, QString(), true, QString(), 2);
        QCOMPARE(addVerb(verb.mid(1)), u"-2147194452");
        QCOMPARE(addVerb(verb), u"none");
        const QString expected =
            u".rss=QW|QW=A feed|QW\\shell\\open=&Open|QW\\shell\\open\\command=\"C:\\p q.exe\" \"%1\"|"
            "QW\\shell\\print=Imprimer|QW\\shell\\print\\command=\"C:\\p q.exe\" /p \"%1\"|"
            "QW\\shell\\add=&Install rss|QW\\shell\\add\\command=\"C:\\p q.exe\" /a \"%1\"|"
            "QW\\shell\\new=&New|QW\\shell\\new\\command=\"C:\\p q.exe\" /n \"%1\"|"
            "QW\\DefaultIcon=\"C:\\p q.exe\",2|QW\\shell\\show=Show|QW\\shell\\show\\command=p /s"_s;
        for (const QString &row : expected.split(u'|')) {
            const QString section = row.section(u'=', 0, 0);
            const QVariant value = row.section(u'=', 1);
            QCOMPARE(registry.ValueEx(RegistryRoot::ClassesRoot, section, {}, 1, {}), value);
            QCOMPARE(registry.ValueEx(RegistryRoot::LocalMachine, u"SOFTWARE\\Classes\\" + section, {}, 1, {}), value);
        }
    }

private:
    std::unique_ptr<QTemporaryDir> m_directory;
    std::unique_ptr<RefusingStore> m_store;
};

QTEST_GUILESS_MAIN(tst_cRegistry)
#include "tst_cRegistry.moc"
