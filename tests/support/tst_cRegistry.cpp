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
    return u"none"_qs;
}

} // namespace

class tst_cRegistry : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_directory = std::make_unique<QTemporaryDir>();
        m_store = std::make_unique<RefusingStore>(m_directory->filePath(u"config/registry.json"_qs));
    }

    void valuesComeBackAsTheirTypeSays_data()
    {
        qputenv("QUILLWIRE_TEST_PLACE", "/a b");
        QTest::addColumn<qint32>("type");
        QTest::addColumn<QVariant>("written");
        QTest::addColumn<QVariant>("read");
        QTest::addColumn<qint32>("typeRead");
        const QVariant absent(u"absent"_qs);
        QTest::newRow("text") << 1 << QVariant(u"C:\\é и"_qs) << QVariant(u"C:\\é и"_qs) << 1;
        QTest::newRow("empty text") << 1 << QVariant(u""_qs) << QVariant(u""_qs) << 1;
        QTest::newRow("two percent signs side by side") << 1 << QVariant(u"a%%"_qs) << QVariant(u"a%%"_qs) << 1;
        QTest::newRow("a variable") << 1 << QVariant(u"%QUILLWIRE_TEST_PLACE%/x"_qs) << QVariant(u"/a b/x"_qs) << 2;
        QTest::newRow("a variable that isn't set")
            << 1 << QVariant(u"5%NOT_SET_%QUILLWIRE_TEST_PLACE%"_qs) << QVariant(u"5%NOT_SET_/a b"_qs) << 2;
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
        registry.SectionKey = u"Software\\Test"_qs;
        registry.ValueKey = u"name"_qs;
        registry.ValueType = type;
        registry.Default = u"absent"_qs;
        registry.setValue(written);
        QCOMPARE(registry.ValueType, type);
        QCOMPARE(registry.Value(), read);
        QCOMPARE(registry.ValueType, typeRead);
    }

    void aRemoteMachineCantBeReached()
    {
        cRegistry registry(*m_store);
        registry.ClassKey = RegistryRoot::CurrentUser;
        registry.SectionKey = u"S"_qs;
        registry.Default = u"before"_qs;
        registry.setMachine(u"other"_qs);
        QCOMPARE(registry.Value(), QVariant(u"before"_qs));
        registry.setValue(u"after"_qs);
        QCOMPARE(registry.Default, QVariant(u"after"_qs));
        registry.setMachine(QString());
        QVERIFY(!registry.KeyExists());
    }

    void machineNamesGetTheirBackslashes()
    {
        cRegistry registry(*m_store);
        registry.setMachine(u"host"_qs);
        QCOMPARE(registry.Machine(), u"\\\\host");
        registry.setMachine(u"\\\\host"_qs);
        QCOMPARE(registry.Machine(), u"\\\\host");
        registry.setMachine(u"ab"_qs);
        QCOMPARE(registry.Machine(), u"");
    }

    void storedBytesOfAnyTypeAreRead()
    {
        RegistryKey key;
        QCOMPARE(m_store->createKey(RegistryRoot::LocalMachine, u"S"_qs, RegistryAccess::All, key), 0);
        QCOMPARE(m_store->setValue(key, u"big"_qs, RegistryType::BigEndianNumber, QByteArray::fromHex("01020304")), 0);
        QCOMPARE(m_store->setValue(key, u"short"_qs, RegistryType::Number, QByteArray::fromHex("07")), 0);
        QCOMPARE(m_store->setValue(key, u"many"_qs, RegistryType::MultiText, QByteArray("a\0b\0", 4)), 0);
        QCOMPARE(m_store->setValue(key, u"other"_qs, 11, QByteArray::fromHex("0102030405060708")), 0);
        QCOMPARE(m_store->setValue(key, u"nothing"_qs, RegistryType::Text, QByteArray()), 0);
        cRegistry registry(*m_store);
        const auto read = [&](const QString &name) {
            return registry.ValueEx(RegistryRoot::LocalMachine, u"S"_qs, name, 1, u"?"_qs);
        };
        QCOMPARE(read(u"big"_qs), QVariant(0x01020304));
        QCOMPARE(registry.ValueType, 5);
        QCOMPARE(read(u"short"_qs), QVariant(7));
        QCOMPARE(read(u"many"_qs), QVariant(QString(u"a\0b"_qs)));
        QCOMPARE(read(u"other"_qs), QVariant(QByteArray::fromHex("0102030405060708")));
        QCOMPARE(read(u"nothing"_qs), QVariant(u""_qs));
    }

    void anEmptyTextIsReplacedByDefaultInValueExOnly()
    {
        cRegistry registry(*m_store);
        registry.setValueEx(RegistryRoot::CurrentUser, u"S"_qs, u"v"_qs, 1, u"fallback"_qs, u""_qs);
        QCOMPARE(registry.Value(), QVariant(u"fallback"_qs));
        registry.setValueEx(RegistryRoot::CurrentUser, u"S"_qs, u"v"_qs, 2, u"fallback"_qs, u""_qs);
        QCOMPARE(registry.Value(), QVariant(u""_qs));
    }

    void namesAreToldApartWithoutCaseAndListed()
    {
        cRegistry registry(*m_store);
        registry.setValueEx(RegistryRoot::CurrentUser, u"Top\\Other"_qs, u""_qs, 1, {}, u"3"_qs);
        registry.setValueEx(RegistryRoot::CurrentUser, u"Top\\Low"_qs, u"One"_qs, 1, {}, u"1"_qs);
        registry.setValueEx(RegistryRoot::CurrentUser, u"TOP\\low"_qs, u"ONE"_qs, 1, {}, u"2"_qs);
        QStringList names;
        qint32 count = -1;
        QVERIFY(registry.EnumerateValues(names, count));
        QCOMPARE(names, QStringList{u"One"_qs});
        QCOMPARE(registry.Value(), QVariant(u"2"_qs));
        registry.SectionKey = u"top"_qs;
        QVERIFY(registry.EnumerateSections(names, count));
        QCOMPARE(names, (QStringList{u"Low"_qs, u"Other"_qs}));
        registry.SectionKey = u"absent"_qs;
        QVERIFY(!registry.EnumerateValues(names, count));
        QCOMPARE(count, 0);
    }

    void errorsCarryTheirNumbersAndTexts()
    {
        cRegistry registry(*m_store);
        registry.ClassKey = RegistryRoot::CurrentUser;
        registry.SectionKey = u"S"_qs;
        registry.ValueKey = u"v"_qs;
        QCOMPARE(errorOf([&] { registry.DeleteKey(); }),
                 u"26001 Failed to delete registry Key: '-2147483647',Section: 'S");
        QCOMPARE(errorOf([&] { registry.DeleteValue(); }),
                 u"26001 Failed to open key '-2147483647',Section: 'S' for delete access");
        registry.setValue(u"kept"_qs);
        registry.ValueType = 3;
        QCOMPARE(errorOf([&] { registry.setValue(u"no bytes"_qs); }),
                 u"26001 Failed to set registry value Key: '-2147483647',Section: 'S',Key: 'v' to value: 'kept'");
        QVERIFY(registry.DeleteValue());
        QCOMPARE(errorOf([&] { registry.DeleteValue(); }),
                 u"26001 Failed to delete registry Key: '-2147483647',Section: 'S',Key: 'v");
        QVERIFY(registry.DeleteKey());
        m_store->refusesKeys = true;
        QCOMPARE(errorOf([&] { registry.CreateKey(); }), u"26001 Failed to create registry Key: 'S");
        registry.ValueType = 1;
        QCOMPARE(errorOf([&] { registry.setValue(u"x"_qs); }),
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
        registry.SectionKey = u"S"_qs;
        m_store->valueResult = RegistryResult::AccessDenied;
        registry.setValue(u"lost"_qs);
        m_store->valueResult = -1;
        QCOMPARE(errorOf([&] { registry.setValue(u"new"_qs); }),
                 QString::number(static_cast<qint32>(0x800469A9)) +
                     u" Failed to set registry value Key: '-2147483647',Section: 'S',Key: '' to value: 'lost'");
    }

    void aBrokenFileIsNeverWrittenOver()
    {
        const QString path = m_directory->filePath(u"config/registry.json"_qs);
        cRegistry registry(*m_store);
        registry.setValueEx(RegistryRoot::CurrentUser, u"S"_qs, u"v"_qs, 1, u"?"_qs, u"1"_qs);
        for (const QByteArray &broken : {QByteArray("{\"HKEY"), QByteArray("[]"), QByteArray("{\"a\": 1}")}) {
            Files::write(path, broken);
            QCOMPARE(registry.Value(), QVariant(u"?"_qs));
            QVERIFY(errorOf([&] { registry.setValue(u"2"_qs); }).startsWith(u"26001"));
            QCOMPARE(Files::read(path).bytes, broken);
        }
    }

    void associationIsWrittenUnderBothRoots()
    {
        cRegistry registry(*m_store);
        registry.CreateEXEAssociation(u" C:\\p q.exe "_qs, u"QW"_qs, u"A feed"_qs, u"rss"_qs, QString(), true,
                                      u"Imprimer"_qs, true, QString(), true, QString(), 2);
        const QList<QPair<QString, QString>> expected{
            {u".rss"_qs, u"QW"_qs},
            {u"QW"_qs, u"A feed"_qs},
            {u"QW\\shell\\open"_qs, u"&Open"_qs},
            {u"QW\\shell\\open\\command"_qs, u"\"C:\\p q.exe\" \"%1\""_qs},
            {u"QW\\shell\\print"_qs, u"Imprimer"_qs},
            {u"QW\\shell\\print\\command"_qs, u"\"C:\\p q.exe\" /p \"%1\""_qs},
            {u"QW\\shell\\add"_qs, u"&Install rss"_qs},
            {u"QW\\shell\\add\\command"_qs, u"\"C:\\p q.exe\" /a \"%1\""_qs},
            {u"QW\\shell\\new"_qs, u"&New"_qs},
            {u"QW\\shell\\new\\command"_qs, u"\"C:\\p q.exe\" /n \"%1\""_qs},
            {u"QW\\DefaultIcon"_qs, u"\"C:\\p q.exe\",2"_qs},
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
        const QStringList verb{u"show"_qs, u"Show"_qs, u"p /s"_qs};
        QCOMPARE(errorOf([&] { registry.CreateAdditionalEXEAssociations(u"QW"_qs, verb.mid(1)); }),
                 QString::number(static_cast<qint32>(0x800469AC)) +
                     u" Invalid parameter list passed to CreateAdditionalEXEAssociations - expected Name/Text/Command");
        QCOMPARE(errorOf([&] { registry.CreateAdditionalEXEAssociations(u"QW"_qs, verb); }),
                 QString::number(static_cast<qint32>(0x800469AD)) +
                     u" Error - attempt to create additional associations before class defined.");
        registry.CreateEXEAssociation(u"p"_qs, u"QW"_qs, QString(), u"rss"_qs);
        registry.CreateAdditionalEXEAssociations(u"QW"_qs, verb);
        QCOMPARE(registry.ValueEx(RegistryRoot::ClassesRoot, u"QW\\shell\\show\\command"_qs, QString(), 1, {}),
                 QVariant(u"p /s"_qs));
    }

private:
    std::unique_ptr<QTemporaryDir> m_directory;
    std::unique_ptr<RefusingStore> m_store;
};

QTEST_GUILESS_MAIN(tst_cRegistry)
#include "tst_cRegistry.moc"
