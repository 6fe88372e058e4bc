// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/net/RuntimeDirectory.h"

#include <QDir>
#include <QFile>

#include <sys/stat.h>
#include <unistd.h>

namespace {

/// True when `path` is a directory, not a link to one, that the user owns and nobody else can enter.
bool isPrivate(const QString &path)
{
    struct stat status;
    return lstat(QFile::encodeName(path).constData(), &status) == 0 && S_ISDIR(status.st_mode) &&
           status.st_uid == geteuid() && (status.st_mode & 077) == 0;
}

} // namespace

QString runtimeDirectory()
{
    const QString named = qEnvironmentVariable("QUILLWIRE_RUNTIME_DIR");
    if (!named.isEmpty()) {
        QDir().mkpath(named);
        return QDir::cleanPath(named);
    }
    // QStandardPaths would make up a directory where the variable is missing, and warn on every call.
    const QString ofSystem = qEnvironmentVariable("XDG_RUNTIME_DIR");
    if (!ofSystem.isEmpty() && isPrivate(ofSystem))
        return QDir::cleanPath(ofSystem);

    const QString own = QDir::tempPath() + u"/quillwire-" + QString::number(geteuid());
    mkdir(QFile::encodeName(own).constData(), 0700);
    return isPrivate(own) ? own : QString();
}
