// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/RegistryStore.h"

#include <QJsonObject>

/// A registry in one JSON file, which is read anew by each operation and replaced in one step by each that changes it.
/// A file that is missing is an empty registry; one that can't be read or doesn't hold a registry gives DatabaseBroken
/// and is never written over.
class FileRegistryStore : public RegistryStore
{
public:
    /// "registry.json" in the user's configuration folder ($XDG_CONFIG_HOME/quillwire).
    static QString defaultPath();

    explicit FileRegistryStore(const QString &path = defaultPath());

    qint32 openKey(qint32 root, const QString &section, qint32 access, RegistryKey &key) override;
    qint32 createKey(qint32 root, const QString &section, qint32 access, RegistryKey &key) override;
    qint32 queryValue(const RegistryKey &key, const QString &name, qint32 &type, QByteArray &data) override;
    qint32 setValue(const RegistryKey &key, const QString &name, qint32 type, const QByteArray &data) override;
    qint32 deleteValue(const RegistryKey &key, const QString &name) override;
    qint32 deleteKey(qint32 root, const QString &section) override;
    qint32 enumerateValues(const RegistryKey &key, QStringList &names) override;
    qint32 enumerateKeys(const RegistryKey &key, QStringList &names) override;

private:
    qint32 load(QJsonObject &sections) const;
    qint32 save(const QJsonObject &sections) const;

    QString m_path;
};
