// SPDX-License-Identifier: GPL-3.0-or-later

#include "support/cRegistry.h"

#include "platform/EnvironmentText.h"
#include "platform/Literals.h"
#include "platform/RunTimeError.h"

#include <QMetaType>
#include <QtEndian>

namespace {

constexpr qint32 RegistryFailure = 26001;
constexpr qint32 WriteFailure = static_cast<qint32>(0x800469A9);
constexpr qint32 EnumerationFailure = static_cast<qint32>(0x800469AA);
constexpr qint32 InvalidParameters = static_cast<qint32>(0x800469AC);
constexpr qint32 ClassNotDefined = static_cast<qint32>(0x800469AD);

QByteArray bytesOf(const QString &text)
{
    return text.toUtf8() + '\0';
}

/// The text in the bytes of a value, less the byte at its end.
QString textOf(const QByteArray &data)
{
    return data.isEmpty() ? QString() : QString::fromUtf8(data.chopped(1));
}

/// True when the text has two percent signs with something between them.
bool namesVariable(const QString &text)
{
    const qsizetype first = text.indexOf(u'%');
    return first >= 0 && text.indexOf(u'%', first + 2) >= 0;
}

} // namespace

cRegistry::cRegistry(RegistryStore &store) : m_store(store) {}

void cRegistry::setMachine(const QString &machine)
{
    if (machine.size() < 3)
        m_machine.clear();
    else
        m_machine = machine.startsWith(u"\\\\") ? machine : u"\\\\" + machine;
}

bool cRegistry::KeyExists()
{
    RegistryKey key;
    return m_store.openKey(ClassKey, SectionKey, RegistryAccess::QueryValue, key) == RegistryResult::Success;
}

bool cRegistry::CreateKey()
{
    RegistryKey key;
    if (m_store.createKey(ClassKey, SectionKey, RegistryAccess::All, key) != RegistryResult::Success)
        throw RunTimeError(RegistryFailure, u"Failed to create registry Key: '"_s + SectionKey);
    return true;
}

bool cRegistry::DeleteKey()
{
    if (m_store.deleteKey(ClassKey, SectionKey) != RegistryResult::Success)
        throw RunTimeError(RegistryFailure, u"Failed to delete registry Key: '"_s + place());
    return true;
}

bool cRegistry::DeleteValue()
{
    RegistryKey key;
    if (m_store.openKey(ClassKey, SectionKey, RegistryAccess::All, key) != RegistryResult::Success)
        throw RunTimeError(RegistryFailure, u"Failed to open key '"_s + place() + u"' for delete access");
    if (m_store.deleteValue(key, ValueKey) != RegistryResult::Success) {
        throw RunTimeError(RegistryFailure, u"Failed to delete registry Key: '"_s + place() + u"',Key: '" + ValueKey);
    }
    return true;
}

QVariant cRegistry::Value()
{
    qint32 root = ClassKey;
    RegistryKey key;
    qint32 type = 0;
    QByteArray data;
    if (!connectMachine(root) ||
        m_store.openKey(root, SectionKey, RegistryAccess::QueryValue, key) != RegistryResult::Success)
        return Default;
    const qint32 result = m_store.queryValue(key, ValueKey, type, data);
    if (result != RegistryResult::Success && result != RegistryResult::MoreData)
        return Default;

    ValueType = type;
    switch (type) {
    case RegistryType::Text:
    case RegistryType::MultiText:
        return textOf(data);
    case RegistryType::ExpandText:
        return EnvironmentText::expand(textOf(data));
    case RegistryType::Number:
    case RegistryType::BigEndianNumber: {
        const QByteArray number = data.leftJustified(sizeof(qint32), '\0', true);
        return type == RegistryType::Number ? qFromLittleEndian<qint32>(number.constData())
                                            : qFromBigEndian<qint32>(number.constData());
    }
    default:
        return data;
    }
}

void cRegistry::setValue(const QVariant &value)
{
    qint32 root = ClassKey;
    if (!connectMachine(root)) {
        Default = value;
        return;
    }
    RegistryKey key;
    if (m_store.createKey(root, SectionKey, RegistryAccess::All, key) != RegistryResult::Success)
        throwWriteError(RegistryFailure);

    qint32 result = RegistryResult::Success;
    switch (ValueType) {
    case RegistryType::Text:
    case RegistryType::ExpandText: {
        const QString text = value.toString();
        const qint32 type = namesVariable(text) ? RegistryType::ExpandText : ValueType;
        result = m_store.setValue(key, ValueKey, type, bytesOf(text));
        break;
    }
    case RegistryType::Binary:
        if (value.typeId() != QMetaType::QByteArray)
            throwWriteError(RegistryFailure);
        result = m_store.setValue(key, ValueKey, RegistryType::Binary, value.toByteArray());
        break;
    case RegistryType::Number:
    case RegistryType::BigEndianNumber:
        // Both types are written as the first, without a swap of the bytes, and are read back so.
        if (value.typeId() == QMetaType::Int || value.typeId() == QMetaType::Short) {
            QByteArray bytes(sizeof(qint32), '\0');
            qToLittleEndian(value.value<qint32>(), bytes.data());
            result = m_store.setValue(key, ValueKey, RegistryType::Number, bytes);
        }
        break;
    default:
        result = RegistryResult::InvalidData;
    }
    // A write that failed goes unnoticed on purpose: a result of -1 is the only one that counts.
    if (~result == 0)
        throwWriteError(WriteFailure);
    m_lastValue = value;
}

QVariant cRegistry::ValueEx(qint32 classKey, const QString &sectionKey, const QString &valueKey, qint32 valueType,
                            const QVariant &defaultValue)
{
    ClassKey = classKey;
    SectionKey = sectionKey;
    ValueKey = valueKey;
    ValueType = valueType;
    Default = defaultValue;
    return Value();
}

void cRegistry::setValueEx(qint32 classKey, const QString &sectionKey, const QString &valueKey, qint32 valueType,
                           const QVariant &defaultValue, const QVariant &newValue)
{
    ClassKey = classKey;
    SectionKey = sectionKey;
    ValueKey = valueKey;
    ValueType = valueType;
    Default = defaultValue;
    const bool replaced = valueType == RegistryType::Text && newValue.toString().isEmpty();
    setValue(replaced ? defaultValue : newValue);
}

bool cRegistry::EnumerateValues(QStringList &keyNames, qint32 &keyCount)
{
    keyNames.clear();
    keyCount = 0;
    RegistryKey key;
    if (m_store.openKey(ClassKey, SectionKey, RegistryAccess::QueryValue, key) != RegistryResult::Success ||
        m_store.enumerateValues(key, keyNames) != RegistryResult::Success)
        return false;
    keyCount = static_cast<qint32>(keyNames.size());
    return true;
}

bool cRegistry::EnumerateSections(QStringList &sections, qint32 &sectionCount)
{
    sections.clear();
    sectionCount = 0;
    try {
        RegistryKey key;
        if (m_store.openKey(ClassKey, SectionKey, RegistryAccess::EnumerateSubKeys, key) != RegistryResult::Success ||
            m_store.enumerateKeys(key, sections) != RegistryResult::Success)
            return false;
    } catch (const RunTimeError &error) {
        throw RunTimeError(EnumerationFailure, error.text());
    }
    sectionCount = static_cast<qint32>(sections.size());
    return true;
}

void cRegistry::CreateEXEAssociation(const QString &exePath, const QString &className, const QString &classDescription,
                                     const QString &association, const QString &openMenuText, bool supportPrint,
                                     const QString &printMenuText, bool supportNew, const QString &newMenuText,
                                     bool supportInstall, const QString &installMenuText, qint32 defaultIconIndex)
{
    QString path = exePath.trimmed();
    if (!path.startsWith(u'"'))
        path.prepend(u'"');
    if (!path.endsWith(u'"') || path.size() == 1)
        path.append(u'"');
    const auto writeVerb = [&](const QString &verb, const QString &menuText, const QString &usualText,
                               const QString &arguments) {
        const QString section = className + u"\\shell\\" + verb;
        createClassKey(section, menuText.isEmpty() ? usualText : menuText);
        createClassKey(section + u"\\command", path + arguments);
    };

    createClassKey(u'.' + association, className);
    createClassKey(className, classDescription);
    writeVerb(u"open"_s, openMenuText, u"&Open"_s, u" \"%1\""_s);
    if (supportPrint)
        writeVerb(u"print"_s, printMenuText, u"&Print"_s, u" /p \"%1\""_s);
    if (supportInstall)
        writeVerb(u"add"_s, installMenuText, u"&Install "_s + association, u" /a \"%1\""_s);
    if (supportNew)
        writeVerb(u"new"_s, newMenuText, u"&New"_s, u" /n \"%1\""_s);
    if (defaultIconIndex > -1)
        createClassKey(className + u"\\DefaultIcon", path + u',' + QString::number(defaultIconIndex));
}

void cRegistry::CreateAdditionalEXEAssociations(const QString &className, const QStringList &items)
{
    if (items.size() % 3 != 0) {
        throw RunTimeError(
            InvalidParameters,
            u"Invalid parameter list passed to CreateAdditionalEXEAssociations - expected Name/Text/Command"_s);
    }
    ClassKey = RegistryRoot::ClassesRoot;
    SectionKey = className;
    if (!KeyExists()) {
        throw RunTimeError(ClassNotDefined,
                           u"Error - attempt to create additional associations before class defined."_s);
    }
    for (qsizetype i = 0; i < items.size(); i += 3) {
        const QString section = className + u"\\shell\\" + items[i];
        createClassKey(section, items[i + 1]);
        createClassKey(section + u"\\command", items[i + 2]);
    }
}

bool cRegistry::connectMachine(qint32 &root)
{
    return m_machine.isEmpty() || m_store.connect(m_machine, root, root) == RegistryResult::Success;
}

/// Writes the default value of a section of the classes, once under each of the two roots where they live.
void cRegistry::createClassKey(const QString &section, const QString &value)
{
    ValueType = RegistryType::Text;
    ValueKey.clear();
    ClassKey = RegistryRoot::ClassesRoot;
    SectionKey = section;
    setValue(value);
    ClassKey = RegistryRoot::LocalMachine;
    SectionKey = u"SOFTWARE\\Classes\\" + section;
    setValue(value);
    SectionKey = section;
}

QString cRegistry::place() const
{
    return QString::number(ClassKey) + u"',Section: '" + SectionKey;
}

/// The text tells the value kept from the write before: the one that failed has never become a value of the registry.
void cRegistry::throwWriteError(qint32 number) const
{
    throw RunTimeError(number, u"Failed to set registry value Key: '"_s + place() + u"',Key: '" + ValueKey +
                                   u"' to value: '" + m_lastValue.toString() + u"'");
}
