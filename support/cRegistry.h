// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/RegistryStore.h"

#include <QString>
#include <QStringList>
#include <QVariant>

/// A place in the registry (root key, section, value name), and the operations there.
///
/// What fails with an error throws RunTimeError with the numbers and texts of this class; the numbers are 26001 and,
/// from 0x800469A9 on, negative.
class cRegistry
{
public:
    /// `store` must outlive the object.
    explicit cRegistry(RegistryStore &store);

    qint32 ClassKey = 0;                   ///< root key, a value of RegistryRoot
    QString SectionKey;                    ///< path of the section below the root
    QString ValueKey;                      ///< name of the value; "" is the section's default value
    qint32 ValueType = RegistryType::Text; ///< type to write; a read sets it to the type found
    QVariant Default;                      ///< what Value() gives when the value can't be read

    /// Name of a remote machine; "" is this one.
    QString Machine() const { return m_machine; }

    /// A name of fewer than 3 characters stands for this machine; a leading "\\" is added when missing.
    void setMachine(const QString &machine);

    /// True when the section can be opened for reading.
    bool KeyExists();

    /// Makes the section. True, or throws.
    bool CreateKey();

    /// Deletes the section. True, or throws.
    bool DeleteKey();

    /// Deletes the value. True, or throws.
    bool DeleteValue();

    /// Reads the value: types 1, 2 and 7 as text (that of 2 with its environment variables), 4 and 5 as qint32, any
    /// other as QByteArray. Default when it can't be read.
    QVariant Value();

    /// Writes the value as ValueType says. Types 1 and 2: as text; one with two "%" at least one character apart is
    /// always written as type 2. Type 3: a QByteArray. Types 4 and 5: a qint16 or qint32, written as type 4; anything
    /// else writes nothing. Any other type writes nothing. A write that fails goes unnoticed, so that a start
    /// goes on without its entry in the desktop; throws only when the section can't be made or opened, or type 3 gets
    /// no QByteArray.
    void setValue(const QVariant &value);

    /// Sets the five properties, then reads.
    QVariant ValueEx(qint32 classKey, const QString &sectionKey, const QString &valueKey, qint32 valueType,
                     const QVariant &defaultValue);

    /// Sets the five properties, then writes; for type 1 an empty text is replaced by Default.
    void setValueEx(qint32 classKey, const QString &sectionKey, const QString &valueKey, qint32 valueType,
                    const QVariant &defaultValue, const QVariant &newValue);

    /// The names of the section's values and their count. False and an empty list when it can't be opened.
    bool EnumerateValues(QStringList &keyNames, qint32 &keyCount);

    /// The names of the sections right below. False and an empty list when the section can't be opened.
    bool EnumerateSections(QStringList &sections, qint32 &sectionCount);

    /// Writes the association of the file extension `association` (without a dot) with the program.
    void CreateEXEAssociation(const QString &exePath, const QString &className, const QString &classDescription,
                              const QString &association, const QString &openMenuText = QString(),
                              bool supportPrint = false, const QString &printMenuText = QString(),
                              bool supportNew = false, const QString &newMenuText = QString(),
                              bool supportInstall = false, const QString &installMenuText = QString(),
                              qint32 defaultIconIndex = -1);

    /// Adds further verbs to a class that exists. `items` holds name, menu text and command of each, one after another.
    void CreateAdditionalEXEAssociations(const QString &className, const QStringList &items);

private:
    bool connectMachine(qint32 &root);
    void createClassKey(const QString &section, const QString &value);
    QString place() const;
    [[noreturn]] void throwWriteError(qint32 number) const;

    RegistryStore &m_store;
    QString m_machine;
    QVariant m_lastValue;
};
