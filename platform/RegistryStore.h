// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

/// The root keys, as 32-bit handles.
namespace RegistryRoot {
inline constexpr qint32 ClassesRoot = static_cast<qint32>(0x80000000);
inline constexpr qint32 CurrentUser = static_cast<qint32>(0x80000001);
inline constexpr qint32 LocalMachine = static_cast<qint32>(0x80000002);
} // namespace RegistryRoot

/// Types of a value.
namespace RegistryType {
inline constexpr qint32 Text = 1;
inline constexpr qint32 ExpandText = 2; ///< %NAME% stands for an environment variable
inline constexpr qint32 Binary = 3;
inline constexpr qint32 Number = 4;
inline constexpr qint32 BigEndianNumber = 5;
inline constexpr qint32 MultiText = 7;
} // namespace RegistryType

/// Results of the store's operations.
namespace RegistryResult {
inline constexpr qint32 Success = 0;
inline constexpr qint32 NotFound = 2;
inline constexpr qint32 AccessDenied = 5;
inline constexpr qint32 InvalidHandle = 6; ///< no such root key
inline constexpr qint32 InvalidData = 13;
inline constexpr qint32 BadNetworkPath = 53;
inline constexpr qint32 MoreData = 234;
inline constexpr qint32 DatabaseBroken = 1009; ///< the store can't be read; it isn't written either then
inline constexpr qint32 WriteFault = 1012;
} // namespace RegistryResult

/// Rights that a key is opened with.
namespace RegistryAccess {
inline constexpr qint32 QueryValue = 1;
inline constexpr qint32 EnumerateSubKeys = 8;
inline constexpr qint32 All = 63;
} // namespace RegistryAccess

/// An open key: a root, and the section below it. A plain value; there is nothing to close.
struct RegistryKey
{
    qint32 root = 0;
    QString section;
};

/// The registry, a tree of sections with named values, as the system's calls show it. Section and value names are told
/// apart without case; a section path has "\" between its steps; the value named "" is the section's default value.
/// Texts lie in the store as UTF-8 with a zero byte at the end, numbers as four bytes, low byte first.
///
/// Every operation answers with a value of RegistryResult; none throws.
class RegistryStore
{
public:
    RegistryStore() = default;
    RegistryStore(const RegistryStore &) = delete;
    RegistryStore &operator=(const RegistryStore &) = delete;
    virtual ~RegistryStore() = default;

    /// The root key of another machine. This platform knows none: BadNetworkPath.
    virtual qint32 connect(const QString &machine, qint32 root, qint32 &remoteRoot);

    /// Opens a section that exists; NotFound when it doesn't. Writes nothing.
    virtual qint32 openKey(qint32 root, const QString &section, qint32 access, RegistryKey &key) = 0;

    /// Opens a section, after making it and those above it where they are missing.
    virtual qint32 createKey(qint32 root, const QString &section, qint32 access, RegistryKey &key) = 0;

    /// The type and the bytes of a value.
    virtual qint32 queryValue(const RegistryKey &key, const QString &name, qint32 &type, QByteArray &data) = 0;

    /// Writes a value, in the place of one with that name.
    virtual qint32 setValue(const RegistryKey &key, const QString &name, qint32 type, const QByteArray &data) = 0;

    virtual qint32 deleteValue(const RegistryKey &key, const QString &name) = 0;

    /// Deletes a section and its values; AccessDenied when it has sub-sections.
    virtual qint32 deleteKey(qint32 root, const QString &section) = 0;

    /// The names of the section's values.
    virtual qint32 enumerateValues(const RegistryKey &key, QStringList &names) = 0;

    /// The names of the sections right below.
    virtual qint32 enumerateKeys(const RegistryKey &key, QStringList &names) = 0;
};
