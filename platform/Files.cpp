// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/Files.h"

#include "platform/RunTimeError.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace {

[[noreturn]] void throwFor(const QString &path, QFileDevice::FileError error)
{
    if (!QFileInfo(path).dir().exists())
        throw RunTimeError::pathNotFound();
    if (error == QFileDevice::ResourceError)
        throw RunTimeError::diskFull();
    if (error == QFileDevice::OpenError || error == QFileDevice::PermissionsError || error == QFileDevice::RenameError)
        throw RunTimeError::permissionDenied();
    throw RunTimeError::deviceError();
}

} // namespace

Files::Content Files::read(const QString &path)
{
    const QFileInfo info(path);
    if (!info.exists())
        return {ReadResult::Absent, {}};
    QFile file(path);
    if (info.isDir() || !file.open(QIODevice::ReadOnly))
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

void Files::write(const QString &path, const QByteArray &bytes)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        throwFor(path, file.error());
    // What write() takes may still lie in a buffer, and commit() doesn't fail when that can't be written: it would put
    // a file cut short in the place of the old one.
    if (file.write(bytes) != bytes.size() || !file.flush()) {
        const QFileDevice::FileError error = file.error();
        file.cancelWriting();
        throwFor(path, error);
    }
    if (!file.commit())
        throwFor(path, file.error());
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
