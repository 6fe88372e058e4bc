// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/Files.h"

#include "platform/RunTimeError.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <cerrno>

namespace {

/// A file that can't be begun or given its name: its folder is away, or it is protected.
[[noreturn]] void throwForPlace(const QString &path, QFileDevice::FileError error)
{
    if (!QFileInfo(path).dir().exists())
        throw RunTimeError::pathNotFound();
    if (error == QFileDevice::ResourceError)
        throw RunTimeError::diskFull();
    if (error == QFileDevice::OpenError || error == QFileDevice::PermissionsError ||
        error == QFileDevice::RenameError || error == QFileDevice::WriteError)
        throw RunTimeError::permissionDenied();
    throw RunTimeError::deviceError();
}

/// A file that takes only a part of its bytes: the disk is full, or the share of it that the user may fill. The library
/// tells the first case by its error, and the others, in which the system wrote some of the bytes, by no error or by
/// the one for anything.
[[noreturn]] void throwForBytes(int systemError)
{
    if (systemError == EIO || systemError == EBADF)
        throw RunTimeError::deviceError();
    throw RunTimeError::diskFull();
}

} // namespace

Files::Content Files::read(const QString &path)
{
    const QFileInfo info(path);
    if (!info.exists())
        return {ReadResult::Absent, {}};
    QFile file(path);
    if (!info.isFile() || !file.open(QIODevice::ReadOnly))
        return {ReadResult::Unreadable, {}};
    QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError)
        return {ReadResult::Unreadable, {}};
    return {ReadResult::Read, std::move(bytes)};
}

bool Files::exists(const QString &path)
{
    return QFileInfo(path).isFile();
}

Files::Staged::Staged(const QString &path, const QByteArray &bytes) : m_file(std::make_unique<QSaveFile>(path))
{
    if (!m_file->open(QIODevice::WriteOnly))
        throwForPlace(path, m_file->error());
    // What write() takes may still lie in a buffer, and commit() doesn't fail when that can't be written: it would put
    // a file cut short in the place of the old one.
    errno = 0;
    if (m_file->write(bytes) != bytes.size() || !m_file->flush()) {
        const int systemError = errno;
        m_file->cancelWriting();
        throwForBytes(systemError);
    }
}

Files::Staged::~Staged() = default;

void Files::Staged::commit()
{
    if (!m_file->commit())
        throwForPlace(m_file->fileName(), m_file->error());
}

void Files::write(const QString &path, const QByteArray &bytes)
{
    Staged(path, bytes).commit();
}

void Files::copy(const QString &from, const QString &to)
{
    const Content content = read(from);
    if (content.result == ReadResult::Absent)
        throw RunTimeError::fileNotFound();
    if (content.result == ReadResult::Unreadable)
        throw RunTimeError::deviceError();
    write(to, content.bytes);
}

void Files::remove(const QString &path)
{
    if (!QFileInfo::exists(path))
        throw RunTimeError::fileNotFound();
    if (!QFile::remove(path))
        throw RunTimeError::permissionDenied();
}
