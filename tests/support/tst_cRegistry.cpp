// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/Literals.h"
#include "support/cRegistry.h"

#include "platform/FileRegistryStore.h"
#include "platform/Files.h"
#include "platform/RunTimeError.h"

#include <QTemporaryDir>
#include <QTest>

#include <memory>
#include <optional>

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
        return valueResult.value_or(RegistryResult::Success) == RegistryResult::Success
                   ? FileRegistryStore::setValue(key, name, type, data)
                   : *valueResult;
    }

    qint32 enumerateKeys(const RegistryKey &key, QStringList &names) override
    {
        if (enumerationFails)
            throw RunTimeError::deviceError();
        return FileRegistryStore::enumerateKeys(key, names);
    }

    bool refusesKeys = false;
    bool enumerationFails = false;
    std::optional<qint32> valueResult;
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

    void valuesComeBackAsTheirTypeSays_data()
    {
        qputenv("QUILLWIRE_TEST_PLACE", "/a b");
        QTest::addColumn<qint32>("type");
        QTest::addColumn<QVariant>("written");
        QTest::addColumn<QVariant>("read");
        QTest::addColumn<qint32>("typeRead");
        const QVariant absent(u"absent"_s);
        QTest::newRow("text") << 1 << QVariant(u"C:\\é и"_s) << QVariant(u"C:\\é и"_s) << 1;
        QTest::newRow("empty text") << 1 << QVariant(u""_s) << QVariant(u""_s) << 1;
        QTest::newRow("two percent signs side by side") << 1 << QVariant(u"a%%"_s) << QVariant(u"a%%"_s) << 1;
        QTest::newRow("a variable") << 1 << QVariant(u"%QUILLWIRE_TEST_PLACE%/x"_s) << QVariant(u"/a b/x"_s) << 2;
        QTest::newRow("a variable that isn't set")
            << 1 << QVariant(u"5%NOT_SET_%QUILLWIRE_TEST_PLACE%"_s) << QVariant(u"5%NOT_SET_/a b"_s) << 2;
        QTest::newRow("bytes") << 3 << QVariant(QByteArray("a\0b", 3)) << QVariant(QByteArray("a\0b", 3)) << 3;
        QTest::newRow("32-bit number") << 4 << QVariant(-2) << QVariant(-2) << 4;
        QTest::newRow("big-endian is written as little-endian")
            << 5 << QVariant(0x01020304) << QVariant(0x01020304) << 4;
        QTest::newRow("a number of another type writes nothing") << 4 << QVariant(1.5) << absent << 4;
        QTest::newRow("an unknown type writes nothing") << 11 << QVariant(1) << absent << 11;
    }

    void valuesComeBackAsTheirTypeSays()
    {
        QFETCH(qint32, type);
        QFETCH(QVariant, written);
        QFETCH(QVariant, read);
        QFETCH(qint32, typeRead);
        cRegistry registry(*m_store);
        registry.ClassKey = RegistryRoot::CurrentUser;
        registry.SectionKey = u"Software\\Test"_s;
        registry.ValueKey = u"name"_s;
        registry.ValueType = type;
        registry.Default = u"absent"_s;
        registry.setValue(written);
        QCOMPARE(registry.ValueType, type);
        QCOMPARE(registry.Value(), read);
        QCOMPARE(registry.ValueType, typeRead);
    }

    void aRemoteMachineCantBeReached()
    {
        cRegistry registry(*m_store);
        registry.ClassKey = RegistryRoot::CurrentUser;
        registry.SectionKey = u"S"_s;
        registry.Default = u"before"_s;
        registry.setMachine(u"other"_s);
        QCOMPARE(registry.Value(), QVariant(u"before"_s));
        registry.setValue(u"after"_s);
        QCOMPARE(registry.Default, QVariant(u"after"_s));
        registry.setMachine(QString());
        QVERIFY(!registry.KeyExists());
    }

    void machineNamesGetTheirBackslashes()
    {
        cRegistry registry(*m_store);
        registry.setMachine(u"host"_s);
        QCOMPARE(registry.Machine(), u"\\\\host");
        registry.setMachine(u"\\\\host"_s);
        QCOMPARE(registry.Machine(), u"\\\\host");
        registry.setMachine(u"ab"_s);
        QCOMPARE(registry.Machine(), u"");
    }

    void storedBytesOfAnyTypeAreRead()
    {
        RegistryKey key;
        QCOMPARE(m_store->createKey(RegistryRoot::LocalMachine, u"S"_s, RegistryAccess::All, key), 0);
        QCOMPARE(m_store->setValue(key, u"big"_s, RegistryType::BigEndianNumber, QByteArray::fromHex("01020304")), 0);
        QCOMPARE(m_store->setValue(key, u"short"_s, RegistryType::Number, QByteArray::fromHex("07")), 0);
        QCOMPARE(m_store->setValue(key, u"many"_s, RegistryType::MultiText, QByteArray("a\0b\0", 4)), 0);
        QCOMPARE(m_store->setValue(key, u"other"_s, 11, QByteArray::fromHex("0102030405060708")), 0);
        QCOMPARE(m_store->setValue(key, u"nothing"_s, RegistryType::Text, QByteArray()), 0);
        cRegistry registry(*m_store);
        const auto read = [&](const QString &name) {
            return registry.ValueEx(RegistryRoot::LocalMachine, u"S"_s, name, 1, u"?"_s);
        };
        QCOMPARE(read(u"big"_s), QVariant(0x01020304));
        QCOMPARE(registry.ValueType, 5);
        QCOMPARE(read(u"short"_s), QVariant(7));
        QCOMPARE(read(u"many"_s), QVariant(QString(u"a\0b"_s)));
        QCOMPARE(read(u"other"_s), QVariant(QByteArray::fromHex("0102030405060708")));
        QCOMPARE(read(u"nothing"_s), QVariant(u""_s));
    }

    void anEmptyTextIsReplacedByDefaultInValueExOnly()
    {
        cRegistry registry(*m_store);
        registry.setValueEx(RegistryRoot::CurrentUser, u"S"_s, u"v"_s, 1, u"fallback"_s, u""_s);
        QCOMPARE(registry.Value(), QVariant(u"fallback"_s));
        registry.setValueEx(RegistryRoot::CurrentUser, u"S"_s, u"v"_s, 2, u"fallback"_s, u""_s);
        QCOMPARE(registry.Value(), QVariant(u""_s));
    }

    void namesAreToldApartWithoutCaseAndListed()
    {
        cRegistry registry(*m_store);
        registry.setValueEx(RegistryRoot::CurrentUser, u"Top\\Other"_s, u""_s, 1, {}, u"3"_s);
        registry.setValueEx(RegistryRoot::CurrentUser, u"Top\\Low"_s, u"One"_s, 1, {}, u"1"_s);
        registry.setValueEx(RegistryRoot::CurrentUser, u"TOP\\low"_s, u"ONE"_s, 1, {}, u"2"_s);
        QStringList names;
        qint32 count = -1;
        QVERIFY(registry.EnumerateValues(names, count));
        QCOMPARE(names, QStringList{u"One"_s});
        QCOMPARE(registry.Value(), QVariant(u"2"_s));
        registry.SectionKey = u"top"_s;
        QVERIFY(registry.EnumerateSections(names, count));
        QCOMPARE(names, (QStringList{u"Low"_s, u"Other"_s}));
        registry.SectionKey = u"absent"_s;
        QVERIFY(!registry.EnumerateValues(names, count));
        QCOMPARE(count, 0);
    }

    void errorsCarryTheirNumbersAndTexts()
    {
        cRegistry registry(*m_store);
        registry.ClassKey = RegistryRoot::CurrentUser;
        registry.SectionKey = u"S"_s;
        registry.ValueKey = u"v"_s;
        QCOMPARE(errorOf([&] { registry.DeleteKey(); }),
                 u"26001 Failed to delete registry Key: '-2147483647',Section: 'S");
        QCOMPARE(errorOf([&] { registry.DeleteValue(); }),
                 u"26001 Failed to open key '-2147483647',Section: 'S' for delete access");
        registry.setValue(u"kept"_s);
        registry.ValueType = 3;
        QCOMPARE(errorOf([&] { registry.setValue(u"no bytes"_s); }),
                 u"26001 Failed to set registry value Key: '-2147483647',Section: 'S',Key: 'v' to value: 'kept'");
        QVERIFY(registry.DeleteValue());
        QCOMPARE(errorOf([&] { registry.DeleteValue(); }),
                 u"26001 Failed to delete registry Key: '-2147483647',Section: 'S',Key: 'v");
        QVERIFY(registry.DeleteKey());
        m_store->refusesKeys = true;
        QCOMPARE(errorOf([&] { registry.CreateKey(); }), u"26001 Failed to create registry Key: 'S");
        registry.ValueType = 1;
        QCOMPARE(errorOf([&] { registry.setValue(u"x"_s); }),
                 u"26001 Failed to set registry value Key: '-2147483647',Section: 'S',Key: 'v' to value: 'kept'");
        m_store->enumerationFails = true;
        registry.SectionKey.clear();
        QStringList names;
        qint32 count = 0;
        QCOMPARE(errorOf([&] { registry.EnumerateSections(names, count); }),
                 QString::number(static_cast<qint32>(0x800469AA)) + u' ' + RunTimeError::deviceError().text());
    }

    void aRefusedWriteGoesUnnoticedUnlessItIsMinusOne()
    {
        cRegistry registry(*m_store);
        registry.ClassKey = RegistryRoot::CurrentUser;
        registry.SectionKey = u"S"_s;
        m_store->valueResult = RegistryResult::AccessDenied;
        registry.setValue(u"lost"_s);
        m_store->valueResult = -1;
        QCOMPARE(errorOf([&] { registry.setValue(u"new"_s); }),
                 QString::number(static_cast<qint32>(0x800469A9)) +
                     u" Failed to set registry value Key: '-2147483647',Section: 'S',Key: '' to value: 'lost'");
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
        registry.CreateEXEAssociation(u" C:\\p q.exe "_s, u"QW"_s, u"A feed"_s, u"rss"_s, QString(), true,
                                      u"Imprimer"_s, true, QString(), true, QString(), 2);
        const QList<QPair<QString, QString>> expected{
            {u".rss"_s, u"QW"_s},
            {u"QW"_s, u"A feed"_s},
            {u"QW\\shell\\open"_s, u"&Open"_s},
            {u"QW\\shell\\open\\command"_s, u"\"C:\\p q.exe\" \"%1\""_s},
            {u"QW\\shell\\print"_s, u"Imprimer"_s},
            {u"QW\\shell\\print\\command"_s, u"\"C:\\p q.exe\" /p \"%1\""_s},
            {u"QW\\shell\\add"_s, u"&Install rss"_s},
            {u"QW\\shell\\add\\command"_s, u"\"C:\\p q.exe\" /a \"%1\""_s},
            {u"QW\\shell\\new"_s, u"&New"_s},
            {u"QW\\shell\\new\\command"_s, u"\"C:\\p q.exe\" /n \"%1\""_s},
            {u"QW\\DefaultIcon"_s, u"\"C:\\p q.exe\",2"_s},
        };
        for (const auto &[section, value] : expected) {
            QCOMPARE(registry.ValueEx(RegistryRoot::ClassesRoot, section, QString(), 1, {}), QVariant(value));
            QCOMPARE(registry.ValueEx(RegistryRoot::LocalMachine, u"SOFTWARE\\Classes\\" + section, QString(), 1, {}),
                     QVariant(value));
        }
    }

    void additionalVerbsNeedAClass()
    {
        cRegistry registry(*m_store);
        const QStringList verb{u"show"_s, u"Show"_s, u"p /s"_s};
        QCOMPARE(errorOf([&] { registry.CreateAdditionalEXEAssociations(u"QW"_s, verb.mid(1)); }),
                 QString::number(static_cast<qint32>(0x800469AC)) +
                     u" Invalid parameter list passed to CreateAdditionalEXEAssociations - expected Name/Text/Command");
        QCOMPARE(errorOf([&] { registry.CreateAdditionalEXEAssociations(u"QW"_s, verb); }),
                 QString::number(static_cast<qint32>(0x800469AD)) +
                     u" Error - attempt to create additional associations before class defined.");
        registry.CreateEXEAssociation(u"p"_s, u"QW"_s, QString(), u"rss"_s);
        registry.CreateAdditionalEXEAssociations(u"QW"_s, verb);
        QCOMPARE(registry.ValueEx(RegistryRoot::ClassesRoot, u"QW\\shell\\show\\command"_s, QString(), 1, {}),
                 QVariant(u"p /s"_s));
    }

private:
    std::unique_ptr<QTemporaryDir> m_directory;
    std::unique_ptr<RefusingStore> m_store;
};

QTEST_GUILESS_MAIN(tst_cRegistry)
#include "tst_cRegistry.moc"
