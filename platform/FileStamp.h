// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

#include <optional>

/// Tells a file from the one that takes its name later. Files of state are replaced as a whole, and the new one is
/// another file on the disk; the time and the size tell of a program that writes into a file that is there.
struct FileStamp
{
    quint64 device = 0;
    quint64 number = 0;     ///< of the file on its device
    qint64 seconds = 0;     ///< when its bytes were last changed
    qint64 nanoseconds = 0; ///< and the part of a second
    qint64 size = 0;        ///< bytes

    bool operator==(const FileStamp &) const = default;

    /// That of the file at `path`, a link followed; nothing when none is there.
    static std::optional<FileStamp> of(const QString &path);
};
