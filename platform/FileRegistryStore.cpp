// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/FileRegistryStore.h"

#include "platform/Files.h"
#include "platform/Literals.h"
#include "platform/RunTimeError.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>
#include <QStandardPaths>

#include <algorithm>
#include <iterator>
#include <utility>

// The file is one object: the path of each section ("HKEY_CURRENT_USER\Software\...") with its values, and each value's
// name with its type and the Base64 of its bytes. A section's ancestors stand in it too.

namespace {

const QString TypeName = u"type"_s;
const QString DataName = u"data"_s;

QString rootName(qint32 root)
{
    switch (root) {
    case RegistryRoot::ClassesRoot:
        return u"HKEY_CLASSES_ROOT"_s;
    case RegistryRoot::CurrentUser:
        return u"HKEY_CURRENT_USER"_s;
    case RegistryRoot::LocalMachine:
        return u"HKEY_LOCAL_MACHINE"_s;
    default:
        return {};
    }
}

/// The member of `object` called `name` apart from case, in the case it has there; `name` itself when there is none.
QString storedName(const QJsonObject &object, const QString &name)
{
    if (object.contains(name))
        return name;
    for (auto member = object.begin(); member != object.end(); ++member) {
        if (member.key().compare(name, Qt::CaseInsensitive) == 0)
            return member.key();
    }
    return name;
}

QString sectionPath(qint32 root, const QString &section)
{
    const QStringList steps = section.split(u'\\', Qt::SkipEmptyParts);
    return (QStringList(rootName(root)) + steps).join(u'\\');
}

/// The names of the sections right below `path`.
QStringList childrenOf(const QJsonObject &sections, const QString &path)
{
    QStringList names;
    const QString prefix = path + u'\\';
    const QStringList paths = sections.keys();
    for (const QString &candidate : paths) {
        if (candidate.startsWith(prefix, Qt::CaseInsensitive) && !candidate.mid(prefix.size()).contains(u'\\'))
            names.append(candidate.mid(prefix.size()));
    }
    return names;
}

} // namespace

QString FileRegistryStore::defaultPath()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + u"/quillwire/registry.json";
}

FileRegistryStore::FileRegistryStore(const QString &path) : m_path(path) {}

qint32 FileRegistryStore::load(QJsonObject &sections) const
{
    const Files::Content content = Files::read(m_path);
    if (content.result == Files::ReadResult::Absent) {
        sections = {};
        return RegistryResult::Success;
    }
    const QJsonDocument document = QJsonDocument::fromJson(content.bytes);
    if (content.result == Files::ReadResult::Unreadable || !document.isObject())
        return RegistryResult::DatabaseBroken;
    sections = document.object();
    const bool holdsSections =
        std::all_of(sections.begin(), sections.end(), [](const QJsonValue &section) { return section.isObject(); });
    return holdsSections ? RegistryResult::Success : RegistryResult::DatabaseBroken;
}

qint32 FileRegistryStore::save(const QJsonObject &sections) const
{
    QDir().mkpath(QFileInfo(m_path).path());
    try {
        Files::write(m_path, QJsonDocument(sections).toJson());
    } catch (const RunTimeError &) {
        return RegistryResult::WriteFault;
    }
    return RegistryResult::Success;
}

qint32 FileRegistryStore::openKey(qint32 root, const QString &section, qint32, RegistryKey &key)
{
    if (rootName(root).isEmpty())
        return RegistryResult::InvalidHandle;
    QJsonObject sections;
    if (const qint32 result = load(sections); result != RegistryResult::Success)
        return result;
    const QString path = sectionPath(root, section);
    if (path != rootName(root) && !sections.contains(storedName(sections, path)))
        return RegistryResult::NotFound;
    key = {root, section};
    return RegistryResult::Success;
}

qint32 FileRegistryStore::createKey(qint32 root, const QString &section, qint32, RegistryKey &key)
{
    if (rootName(root).isEmpty())
        return RegistryResult::InvalidHandle;
    QJsonObject sections;
    if (const qint32 result = load(sections); result != RegistryResult::Success)
        return result;
    const QJsonObject before = sections;
    QString path = rootName(root);
    const QStringList steps = section.split(u'\\', Qt::SkipEmptyParts);
    for (const QString &step : steps) {
        path = storedName(sections, path + u'\\' + step);
        if (!sections.contains(path))
            sections.insert(path, QJsonObject());
    }
    if (sections != before) {
        if (const qint32 result = save(sections); result != RegistryResult::Success)
            return result;
    }
    key = {root, section};
    return RegistryResult::Success;
}

qint32 FileRegistryStore::queryValue(const RegistryKey &key, const QString &name, qint32 &type, QByteArray &data)
{
    QJsonObject sections;
    if (const qint32 result = load(sections); result != RegistryResult::Success)
        return result;
    const QJsonObject values = sections.value(storedName(sections, sectionPath(key.root, key.section))).toObject();
    const QJsonValue value = values.value(storedName(values, name));
    if (value.isUndefined())
        return RegistryResult::NotFound;
    const QJsonObject fields = value.toObject();
    auto decoded = QByteArray::fromBase64Encoding(fields.value(DataName).toString().toLatin1(),
                                                  QByteArray::AbortOnBase64DecodingErrors);
    if (!fields.value(TypeName).isDouble() || !fields.value(DataName).isString() || !decoded)
        return RegistryResult::DatabaseBroken;
    type = fields.value(TypeName).toInt();
    data = *decoded;
    return RegistryResult::Success;
}

qint32 FileRegistryStore::setValue(const RegistryKey &key, const QString &name, qint32 type, const QByteArray &data)
{
    RegistryKey made;
    if (const qint32 result = createKey(key.root, key.section, RegistryAccess::All, made);
        result != RegistryResult::Success)
        return result;
    QJsonObject sections;
    if (const qint32 result = load(sections); result != RegistryResult::Success)
        return result;
    const QString path = storedName(sections, sectionPath(key.root, key.section));
    QJsonObject values = sections.value(path).toObject();
    values.insert(storedName(values, name),
                  QJsonObject{{TypeName, type}, {DataName, QString::fromLatin1(data.toBase64())}});
    sections.insert(path, values);
    return save(sections);
}

qint32 FileRegistryStore::deleteValue(const RegistryKey &key, const QString &name)
{
    QJsonObject sections;
    if (const qint32 result = load(sections); result != RegistryResult::Success)
        return result;
    const QString path = storedName(sections, sectionPath(key.root, key.section));
    QJsonObject values = sections.value(path).toObject();
    const QString stored = storedName(values, name);
    if (!values.contains(stored))
        return RegistryResult::NotFound;
    values.remove(stored);
    sections.insert(path, values);
    return save(sections);
}

qint32 FileRegistryStore::deleteKey(qint32 root, const QString &section)
{
    QJsonObject sections;
    if (const qint32 result = load(sections); result != RegistryResult::Success)
        return result;
    const QString path = storedName(sections, sectionPath(root, section));
    if (!sections.contains(path))
        return RegistryResult::NotFound;
    if (!childrenOf(sections, path).isEmpty())
        return RegistryResult::AccessDenied;
    sections.remove(path);
    return save(sections);
}

qint32 FileRegistryStore::enumerateValues(const RegistryKey &key, QStringList &names)
{
    QJsonObject sections;
    if (const qint32 result = load(sections); result != RegistryResult::Success)
        return result;
    names = sections.value(storedName(sections, sectionPath(key.root, key.section))).toObject().keys();
    return RegistryResult::Success;
}

qint32 FileRegistryStore::enumerateKeys(const RegistryKey &key, QStringList &names)
{
    QJsonObject sections;
    if (const qint32 result = load(sections); result != RegistryResult::Success)
        return result;
    names = childrenOf(sections, sectionPath(key.root, key.section));
    return RegistryResult::Success;
}
