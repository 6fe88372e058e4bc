// SPDX-License-Identifier: GPL-3.0-or-later

#include "core/DataDirectory.h"

#include "platform/Files.h"
#include "platform/Literals.h"
#include "platform/RunTimeError.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

namespace {

/// Makes the directory for its user alone: passwords lie in it.
void makeDirectory(const QString &path)
{
    if (QFileInfo(path).isDir())
        return;
    if (!QDir().mkpath(path))
        throw QFileInfo::exists(path) ? RunTimeError::pathNotFound() : RunTimeError::permissionDenied();
    QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

/// A link counts as a file even where its target is away: what is written there would replace the user's link.
bool isTaken(const QString &path)
{
    return QFileInfo::exists(path) || QFileInfo(path).isSymLink();
}

QString chosenPath(const QString &programDirectory)
{
    const QString named = qEnvironmentVariable("QUILLWIRE_DATA");
    if (!named.isEmpty())
        return QDir(named).absolutePath();
    if (Files::exists(QDir(programDirectory).filePath(u"feeds.xml"_s)))
        return QDir(programDirectory).absolutePath();
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + u"/quillwire"_s;
}

} // namespace

DataDirectory::DataDirectory(QString path) : m_path(std::move(path)) {}

DataDirectory DataDirectory::ofProgram(const QString &programDirectory)
{
    DataDirectory chosen(chosenPath(programDirectory));
    makeDirectory(chosen.path());
    makeDirectory(chosen.file(u"feeds"_s));
    for (const char *name : {"feeds.xml", "home.htm", "style.css", "slien.gif"}) {
        const QString target = chosen.file(QString::fromLatin1(name));
        if (!isTaken(target))
            Files::copy(u":/data/"_s + QString::fromLatin1(name), target);
    }
    return chosen;
}

QString DataDirectory::file(const QString &name) const
{
    return m_path + u'/' + name;
}

QString DataDirectory::cacheFile(const QString &feedKey) const
{
    return m_path + u"/feeds/"_s + feedKey + u".xml"_s;
}
