// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/AutostartRegistryStore.h"

#include "platform/DesktopEntry.h"
#include "platform/EnvironmentText.h"
#include "platform/Files.h"
#include "platform/Literals.h"
#include "platform/RunTimeError.h"

#include <QDir>
#include <QProcess>
#include <QStandardPaths>
#include <QUrl>

#include <algorithm>
#include <optional>

namespace {

const QString Prefix = u"quillwire-run-"_s;
const QString Suffix = u".desktop"_s;

constexpr char TypeField[] = "X-Quillwire-Type";
constexpr char DataField[] = "X-Quillwire-Data";

struct StoredValue
{
    qint32 type = 0;
    QByteArray data;
};

bool isRunSection(qint32 root, const QString &section)
{
    const QString path = section.split(u'\\', Qt::SkipEmptyParts).join(u'\\');
    return root == RegistryRoot::CurrentUser &&
           path.compare(AutostartRegistryStore::runSection(), Qt::CaseInsensitive) == 0;
}

QString nameOfEntry(const QString &fileName)
{
    const QString coded = fileName.mid(Prefix.size()).chopped(Suffix.size());
    return QUrl::fromPercentEncoding(coded.toLatin1());
}

/// The value that an entry stands for; nothing when it isn't one of ours, or doesn't start anything any more.
std::optional<StoredValue> valueOfEntry(const QString &path)
{
    const Files::Content content = Files::read(path);
    StoredValue value;
    bool hasType = false;
    bool hasData = false;
    const QList<QByteArray> lines = content.bytes.split('\n');
    for (const QByteArray &line : lines) {
        const qsizetype equals = line.indexOf('=');
        if (equals < 0)
            continue;
        const QByteArray field = line.left(equals).trimmed();
        const QByteArray text = line.mid(equals + 1).trimmed();
        if (field == TypeField) {
            value.type = text.toInt(&hasType);
        } else if (field == DataField) {
            const auto decoded = QByteArray::fromBase64Encoding(text, QByteArray::AbortOnBase64DecodingErrors);
            hasData = static_cast<bool>(decoded);
            value.data = decoded.decoded;
        } else if ((field == "Hidden" && text == "true") || (field == "X-GNOME-Autostart-enabled" && text == "false")) {
            return std::nullopt;
        }
    }
    return hasType && hasData ? std::optional(value) : std::nullopt;
}

/// The line that starts what the value names; "" for a value that is no text or names nothing.
QString execOf(const StoredValue &value)
{
    if (value.type != RegistryType::Text && value.type != RegistryType::ExpandText)
        return {};
    const QByteArray bytes = value.data.endsWith('\0') ? value.data.chopped(1) : value.data;
    const QString text = QString::fromUtf8(bytes);
    const QString command = value.type == RegistryType::ExpandText ? EnvironmentText::expand(text) : text;
    if (!command.startsWith(u'"'))
        return command.isEmpty() ? QString() : DesktopEntry::execLine(command);
    const QStringList parts = QProcess::splitCommand(command);
    return parts.isEmpty() ? QString() : DesktopEntry::execLine(parts.first(), parts.mid(1));
}

} // namespace

QString AutostartRegistryStore::runSection()
{
    return u"Software\\Microsoft\\Windows\\CurrentVersion\\Run"_s;
}

QString AutostartRegistryStore::defaultDirectory()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + u"/autostart";
}

AutostartRegistryStore::AutostartRegistryStore(RegistryStore &rest, const QString &directory)
    : m_rest(rest), m_directory(directory)
{}

/// The file of the value `name`; where there is one whose name differs by case alone, that one.
QString AutostartRegistryStore::entryPath(const QString &name) const
{
    const QStringList files = QDir(m_directory).entryList({Prefix + u'*' + Suffix}, QDir::Files);
    const auto same = std::ranges::find_if(
        files, [&name](const QString &file) { return nameOfEntry(file).compare(name, Qt::CaseInsensitive) == 0; });
    const QString file =
        same != files.end() ? *same : Prefix + QString::fromLatin1(QUrl::toPercentEncoding(name)) + Suffix;
    return QDir(m_directory).filePath(file);
}

qint32 AutostartRegistryStore::openKey(qint32 root, const QString &section, qint32 access, RegistryKey &key)
{
    if (!isRunSection(root, section))
        return m_rest.openKey(root, section, access, key);
    if (!QDir(m_directory).exists())
        return RegistryResult::NotFound;
    key = {root, section};
    return RegistryResult::Success;
}

qint32 AutostartRegistryStore::createKey(qint32 root, const QString &section, qint32 access, RegistryKey &key)
{
    if (!isRunSection(root, section))
        return m_rest.createKey(root, section, access, key);
    if (!QDir().mkpath(m_directory))
        return RegistryResult::AccessDenied;
    key = {root, section};
    return RegistryResult::Success;
}

qint32 AutostartRegistryStore::queryValue(const RegistryKey &key, const QString &name, qint32 &type, QByteArray &data)
{
    if (!isRunSection(key.root, key.section))
        return m_rest.queryValue(key, name, type, data);
    const std::optional<StoredValue> value = valueOfEntry(entryPath(name));
    if (!value)
        return RegistryResult::NotFound;
    type = value->type;
    data = value->data;
    return RegistryResult::Success;
}

qint32 AutostartRegistryStore::setValue(const RegistryKey &key, const QString &name, qint32 type,
                                        const QByteArray &data)
{
    if (!isRunSection(key.root, key.section))
        return m_rest.setValue(key, name, type, data);
    QString entry = u"[Desktop Entry]\nType=Application\nVersion=1.5\nName="_s + DesktopEntry::stringValue(name) +
                    u"\nTerminal=false\n";
    if (const QString exec = execOf({type, data}); !exec.isEmpty())
        entry += u"Exec=" + exec + u'\n';
    entry += QString::fromLatin1(TypeField) + u'=' + QString::number(type) + u'\n' + QString::fromLatin1(DataField) +
             u'=' + QString::fromLatin1(data.toBase64()) + u'\n';
    try {
        Files::write(entryPath(name), entry.toUtf8());
    } catch (const RunTimeError &) {
        return RegistryResult::AccessDenied;
    }
    return RegistryResult::Success;
}

qint32 AutostartRegistryStore::deleteValue(const RegistryKey &key, const QString &name)
{
    if (!isRunSection(key.root, key.section))
        return m_rest.deleteValue(key, name);
    const QString path = entryPath(name);
    if (!valueOfEntry(path))
        return RegistryResult::NotFound;
    try {
        Files::remove(path);
    } catch (const RunTimeError &) {
        return RegistryResult::AccessDenied;
    }
    return RegistryResult::Success;
}

qint32 AutostartRegistryStore::deleteKey(qint32 root, const QString &section)
{
    // The folder belongs to the desktop.
    return isRunSection(root, section) ? RegistryResult::AccessDenied : m_rest.deleteKey(root, section);
}

qint32 AutostartRegistryStore::enumerateValues(const RegistryKey &key, QStringList &names)
{
    if (!isRunSection(key.root, key.section))
        return m_rest.enumerateValues(key, names);
    names.clear();
    const QDir directory(m_directory);
    const QStringList files = directory.entryList({Prefix + u'*' + Suffix}, QDir::Files);
    for (const QString &file : files) {
        if (valueOfEntry(directory.filePath(file)))
            names.append(nameOfEntry(file));
    }
    return RegistryResult::Success;
}

qint32 AutostartRegistryStore::enumerateKeys(const RegistryKey &key, QStringList &names)
{
    if (!isRunSection(key.root, key.section))
        return m_rest.enumerateKeys(key, names);
    names.clear();
    return RegistryResult::Success;
}
