// SPDX-License-Identifier: GPL-3.0-or-later

#include "support/cRegistry.h"

#include "platform/FileRegistryStore.h"
#include "platform/Files.h"
#include "platform/RunTimeError.h"
#include "tests/fixtures/Steps.h"

#include <QTemporaryDir>
#include <QTest>

#include <functional>

namespace {

/// A registry that refuses what it is told to.
class RefusingStore final : public FileRegistryStore
{
public:
    using FileRegistryStore::FileRegistryStore;

    qint32 createKey(qint32 root, const QString &section, qint32 access, RegistryKey &key) override
    {
        return refused == "sections"_L1 ? RegistryResult::AccessDenied
                                        : FileRegistryStore::createKey(root, section, access, key);
    }
    qint32 setValue(const RegistryKey &key, const QString &name, qint32 type, const QByteArray &data) override
    {
        return refused.startsWith("values"_L1) ? refused.section(u' ', 1).toInt()
                                               : FileRegistryStore::setValue(key, name, type, data);
    }
    qint32 enumerateKeys(const RegistryKey &key, QStringList &names) override
    {
        if (refused == "lists"_L1)
            throw RunTimeError::deviceError();
        return FileRegistryStore::enumerateKeys(key, names);
    }

    QString refused;
};

/// Texts as they are, bytes in hexadecimal.
QString shown(const QVariant &value)
{
    const bool isBytes = value.typeId() == QMetaType::QByteArray;
    return QLatin1String(value.typeName()) + u' ' +
           (isBytes ? QString::fromLatin1(value.toByteArray().toHex(' '))
                    : value.toString().replace(QChar(0), u"\\0"_s));
}

QVariant valueOf(const QString &type, const QString &text)
{
    return type == "bytes"_L1    ? QVariant(QByteArray::fromHex(text.toLatin1()))
           : type == "int"_L1    ? QVariant(text.toInt())
           : type == "short"_L1  ? QVariant::fromValue(text.toShort())
           : type == "double"_L1 ? QVariant(text.toDouble())
                                 : QVariant(text);
}

} // namespace

class tst_cRegistry : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyStepIsAnswered()
    {
        qputenv("QUILLWIRE_TEST_PLACE", "/a b");
        const auto take = [this](const QString &step, const QString &) {
            QStringList words = step.split(u'|');
            const QString verb = words.takeFirst();
            try {
                return m_verbs[verb](words);
            } catch (const RunTimeError &error) {
                return QString(QString::number(error.number()) + u' ' + error.text());
            }
        };
        QCOMPARE((Steps{{}, take}.differenceFrom(u"registry.steps"_s)), QString());
    }

private:
    using Words = const QStringList &;

    /// What is read, and what the store holds there.
    QString read()
    {
        const QVariant value = m_registry.Value();
        qint32 type = 0;
        QByteArray data;
        const RegistryKey key{m_registry.ClassKey, m_registry.SectionKey};
        const bool isHeld = m_store.queryValue(key, m_registry.ValueKey, type, data) == RegistryResult::Success;
        return shown(value) + u", type %1, "_s.arg(m_registry.ValueType) +
               (isHeld ? u"held as %1 "_s.arg(type) + QString::fromLatin1(data.toHex(' ')) : u"not held"_s);
    }

    QString list()
    {
        QStringList values{u"old"_s}, sections{u"old"_s};
        qint32 valueCount = -1, sectionCount = -1;
        const bool found = m_registry.EnumerateValues(values, valueCount);
        const bool foundToo = m_registry.EnumerateSections(sections, sectionCount);
        return u"%1; values %2, %3: %4; sections %5, %6: %7"_s.arg(m_registry.KeyExists())
            .arg(found)
            .arg(valueCount)
            .arg(values.join(u' '))
            .arg(foundToo)
            .arg(sectionCount)
            .arg(sections.join(u' '));
    }

    void associate(Words w)
    {
        const auto is = [&w](int i) { return w[i] == "yes"_L1; };
        m_registry.CreateEXEAssociation(w[0], w[1], w[2], w[3], w[4], is(5), w[6], is(7), w[8], is(9), w[10],
                                        w[11].toInt());
    }

    /// The default values of a section of the classes, under both roots.
    QString classTexts(const QString &section)
    {
        const auto text = [this](qint32 root, const QString &path) {
            return m_registry.ValueEx(root, path, {}, 1, u"(none)"_s).toString();
        };
        return text(RegistryRoot::ClassesRoot, section) + u" | "_s +
               text(RegistryRoot::LocalMachine, u"SOFTWARE\\Classes\\"_s + section);
    }

    QTemporaryDir m_directory;
    QString m_path = m_directory.filePath(u"config/registry.json"_s);
    RefusingStore m_store{m_path};
    cRegistry m_registry{m_store};
    QHash<QString, std::function<QString(Words)>> m_verbs = {
        {u"go"_s,
         [this](Words w) { // root, section, name, type, default
             m_registry.ValueEx(qint32(w[0].toUInt(nullptr, 16)), w[1], w[2], w[3].toInt(), w[4]);
             return read();
         }},
        {u"write"_s,
         [this](Words w) { // type, type of what is written, it
             m_registry.ValueType = w[0].toInt();
             m_registry.setValue(valueOf(w[1], w[2]));
             return read();
         }},
        {u"write all"_s,
         [this](Words w) -> QString { // root, section, name, type, default, text
             m_registry.setValueEx(qint32(w[0].toUInt(nullptr, 16)), w[1], w[2], w[3].toInt(), w[4], w[5]);
             return read() + u", default "_s + shown(m_registry.Default);
         }},
        {u"stored"_s,
         [this](Words w) { // type, bytes
             m_store.setValue({m_registry.ClassKey, m_registry.SectionKey}, m_registry.ValueKey, w[0].toInt(),
                              QByteArray::fromHex(w[1].toLatin1()));
             return read();
         }},
        {u"delete value"_s, [this](Words) { return QString::number(m_registry.DeleteValue()); }},
        {u"delete section"_s, [this](Words) { return QString::number(m_registry.DeleteKey()); }},
        {u"make section"_s, [this](Words) { return QString::number(m_registry.CreateKey()); }},
        {u"list"_s, [this](Words) { return list(); }},
        {u"machine"_s,
         [this](Words w) {
             m_registry.setMachine(w[0]);
             return m_registry.Machine();
         }},
        {u"refuse"_s, [this](Words w) { return m_store.refused = w[0]; }},
        {u"associate"_s,
         [this](Words w) {
             if (w.size() == 4) // nothing but what must be said
                 m_registry.CreateEXEAssociation(w[0], w[1], w[2], w[3]);
             else
                 associate(w);
             return m_registry.SectionKey;
         }},
        {u"add verbs"_s,
         [this](Words w) {
             m_registry.CreateAdditionalEXEAssociations(w[0], w.mid(1));
             return m_registry.SectionKey;
         }},
        {u"class"_s, [this](Words w) { return classTexts(w[0]); }},
        {u"write file"_s,
         [this](Words w) {
             Files::write(m_path, w[0].toUtf8());
             return QString();
         }},
        {u"read file"_s, [this](Words) { return QString::fromUtf8(Files::read(m_path).bytes).simplified(); }}};
};

QTEST_GUILESS_MAIN(tst_cRegistry)
#include "tst_cRegistry.moc"
