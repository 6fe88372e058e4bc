// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/FileStamp.h"

#include <QFile>

#include <sys/stat.h>

std::optional<FileStamp> FileStamp::of(const QString &path)
{
    struct stat found = {};
    if (stat(QFile::encodeName(path).constData(), &found) != 0)
        return std::nullopt;
    return FileStamp{found.st_mtim.tv_sec, found.st_mtim.tv_nsec, found.st_size};
}
