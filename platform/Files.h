// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <QString>

#include <memory>

class QSaveFile;

/// Whole files. A file that is written is replaced in one step: after a crash, a kill or a full disk it is the old one
/// or the new one, never half of either.
namespace Files {

enum class ReadResult { Read, Absent, Unreadable };

struct Content
{
    ReadResult result;
    QByteArray bytes; ///< empty unless result is Read
};

/// All bytes of the file. What is no regular file (a directory; a pipe or a device, whose bytes may never come or never
/// end), a file without permission and a failing disk are Unreadable.
Content read(const QString &path);

/// True when a regular file of that name exists.
bool exists(const QString &path);

/// Replaces the file by `bytes`. Throws RunTimeError: pathNotFound(), permissionDenied(), diskFull() or deviceError();
/// the old file then stands unchanged.
void write(const QString &path, const QByteArray &bytes);

/// A file that is written and still lacks its name, so that several can be on the disk before any of them takes its
/// place.
class Staged final
{
public:
    /// Writes `bytes` beside `path`. Throws as write(); nothing is left then.
    Staged(const QString &path, const QByteArray &bytes);
    Staged(const Staged &) = delete;
    Staged &operator=(const Staged &) = delete;

    /// Takes the bytes away again, unless commit() was called.
    ~Staged();

    /// Replaces the file in one step, which takes no room on the disk. Throws permissionDenied() or deviceError().
    void commit();

private:
    std::unique_ptr<QSaveFile> m_file;
};

/// Copies `from` over `to`. Throws fileNotFound() when `from` is absent, otherwise as write().
void copy(const QString &from, const QString &to);

/// Deletes the file, a read-only one too. Throws fileNotFound() when it is absent, permissionDenied() when it stays.
void remove(const QString &path);

} // namespace Files
