// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

#include <optional>

/// Tells the bytes of a file from those that take their place later. The file's number on its device is no part of it:
/// sticks and some shares give a file another one each time it is looked up.
struct FileStamp
{
    qint64 seconds = 0;     ///< when the bytes were last changed
    qint64 nanoseconds = 0; ///< and the part of a second
    qint64 size = 0;        ///< bytes

    bool operator==(const FileStamp &) const = default;

    /// That of the file at `path`, a link followed; nothing when none is there.
    static std::optional<FileStamp> of(const QString &path);
};
