// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/RegistryStore.h"

/// A registry whose section Run of the current user is the desktop's autostart folder (Desktop Application Autostart
/// Specification): each value there is an entry "quillwire-run-<name>.desktop" that starts the program which the value
/// names. All other sections are those of another store.
///
/// A text value is one command without arguments, blanks and all, unless it begins with a double quote: then what
/// stands in quotes is the program and the rest its arguments. The entry keeps the value's bytes beside the command, so
/// that a read gives exactly what was written. Entries that a session tool has marked as off count as absent; those
/// that this class hasn't written are neither seen nor touched.
class AutostartRegistryStore : public RegistryStore
{
public:
    /// "Software\Microsoft\Windows\CurrentVersion\Run".
    static QString runSection();

    /// The user's autostart folder ($XDG_CONFIG_HOME/autostart).
    static QString defaultDirectory();

    /// `rest` must outlive this store. `directory` is made by the first write.
    explicit AutostartRegistryStore(RegistryStore &rest, const QString &directory = defaultDirectory());

    qint32 openKey(qint32 root, const QString &section, qint32 access, RegistryKey &key) override;
    qint32 createKey(qint32 root, const QString &section, qint32 access, RegistryKey &key) override;
    qint32 queryValue(const RegistryKey &key, const QString &name, qint32 &type, QByteArray &data) override;
    qint32 setValue(const RegistryKey &key, const QString &name, qint32 type, const QByteArray &data) override;
    qint32 deleteValue(const RegistryKey &key, const QString &name) override;
    qint32 deleteKey(qint32 root, const QString &section) override;
    qint32 enumerateValues(const RegistryKey &key, QStringList &names) override;
    qint32 enumerateKeys(const RegistryKey &key, QStringList &names) override;

private:
    QString entryPath(const QString &name) const;

    RegistryStore &m_rest;
    QString m_directory;
};
