// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "core/Extensions.h"

#include <QString>
#include <QStringList>

/// The file extensions.ini of the data directory: lines "key=1" and "key=0", and "all=1" for the keys without a line of
/// their own. Without the file all are off. What else stands in it is kept.
class ExtensionsFile
{
public:
    /// The file at `path`, which isn't read yet.
    explicit ExtensionsFile(QString path);

    /// Reads the file. Returns the keys whose values are neither 1 nor 0; they count as off. A file that can't be read
    /// counts as absent.
    QStringList load();

    /// What holds now. The reference stays good as long as the object.
    const Extensions &extensions() const { return m_extensions; }

    /// Turns one on or off: writes its line into the file as it stands by now, then lets it hold. Throws the
    /// RunTimeErrors of Files::write(), and permissionDenied() for a file that is there and can't be read; nothing has
    /// changed then.
    void set(const ExtensionKey &key, bool on);

private:
    QString m_path;
    Extensions m_extensions;
};
