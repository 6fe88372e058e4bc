// SPDX-License-Identifier: GPL-3.0-or-later

#include "core/ExtensionsFile.h"

#include "platform/Files.h"
#include "platform/IniText.h"
#include "platform/RunTimeError.h"

#include <utility>

namespace {

constexpr QLatin1String allKeys("all");

/// Notes `key` in `broken` when its value is none. A key without a line has the value `otherwise`.
bool isOn(const IniText &values, QLatin1String key, bool otherwise, QStringList &broken)
{
    const std::optional<QString> value = values.value(key);
    if (value && *value != "0"_L1 && *value != "1"_L1)
        broken += key;
    return value ? *value == "1"_L1 : otherwise;
}

} // namespace

ExtensionsFile::ExtensionsFile(QString path) : m_path(std::move(path)) {}

QStringList ExtensionsFile::load()
{
    QStringList broken;
    const IniText values(QString::fromUtf8(Files::read(m_path).bytes));
    const bool all = isOn(values, allKeys, false, broken);
    for (const ExtensionKey &key : extensionKeys)
        m_extensions.*key.isOn = isOn(values, key.name, all, broken);
    return broken;
}

void ExtensionsFile::set(const ExtensionKey &key, bool on)
{
    const Files::Content content = Files::read(m_path);
    if (content.result == Files::ReadResult::Unreadable)
        throw RunTimeError::permissionDenied();
    IniText values(QString::fromUtf8(content.bytes));
    values.set(key.name, on ? u"1"_s : u"0"_s);
    Files::write(m_path, values.text().toUtf8());
    m_extensions.*key.isOn = on;
}
