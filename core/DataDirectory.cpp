// SPDX-License-Identifier: GPL-3.0-or-later

#include "core/DataDirectory.h"

#include "platform/Files.h"
#include "platform/Literals.h"
#include "platform/RunTimeError.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStandardPaths>

#include <algorithm>
#include <array>
#include <cstring>

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

/// The SHA-256 of each page that an earlier version laid into the folder. Who changes a page adds that of the one
/// before.
constexpr std::array<const char *, 6> earlierPages = {
    "f9b2d40f0cf639b491d6ca62face0fd4a07f34f7ceedee8b1506cafbbdb721bd",
    "990baae283501a036de664525ff5249af4f984f7f71b26e1d05ab315f1803f7f",
    "501dd5b3728296f518f8724d39c6341bf33ebaa716d2b05607b1cba6d0d02410",
    "44936f29ab93207e24efaa23501ad58a4d79740d540257f4475373e92607cb32",
    "5f64e92c0f9b9772af6f99a85ff12ea2badbdb5bf3e39c752e3ec82385ba8b04",
    "64e1782cbdbd10e27f012ec44e5b5b84f48ef764928abcb1451fc4d7dfdbbf45",
};

/// A page that is still as an earlier version brought it gives way to today's; one that the user changed is kept.
bool isEarlierPage(const QString &path)
{
    constexpr qint64 largest = 64LL * 1024; // bytes; no page of ours comes near it
    const QFileInfo file(path);
    if (!file.isFile() || file.isSymLink() || file.size() > largest)
        return false;
    const QByteArray digest = QCryptographicHash::hash(Files::read(path).bytes, QCryptographicHash::Sha256).toHex();
    return std::find(earlierPages.begin(), earlierPages.end(), digest) != earlierPages.end();
}

/// Neither settings nor cache files are there.
bool isFirstStart(const DataDirectory &directory)
{
    const QDir feeds(directory.file(u"feeds"_s));
    return !isTaken(directory.file(u"params.xml"_s)) && feeds.isEmpty(QDir::Files | QDir::System | QDir::Hidden);
}

void removeMatching(const QDir &folder, const QRegularExpression &pattern)
{
    for (const QString &name : folder.entryList(QDir::Files | QDir::Hidden))
        if (pattern.match(name).hasMatch())
            QFile::remove(folder.filePath(name));
}

} // namespace

DataDirectory::DataDirectory(QString path) : m_path(std::move(path)) {}

DataDirectory DataDirectory::ofProgram(const QString &programDirectory)
{
    DataDirectory chosen(chosenPath(programDirectory));
    makeDirectory(chosen.path());
    makeDirectory(chosen.file(u"feeds"_s));
    const bool firstStart = isFirstStart(chosen);
    for (const char *name : {"feeds.xml", "home.htm", "style.css", "slien.gif"}) {
        const QString target = chosen.file(QString::fromLatin1(name));
        const bool isCatalogue = std::strcmp(name, "feeds.xml") == 0;
        if (isTaken(target) ? isEarlierPage(target) : firstStart || !isCatalogue)
            Files::copy(u":/data/"_s + QString::fromLatin1(name), target);
    }
    return chosen;
}

void DataDirectory::sweepLeftovers() const
{
    // A file on its way bears its later name and six letters, large and small ones mixed. One that somebody could have
    // named so ("feeds.xml.backup") is left alone, at the price of a few that chance has drawn alike.
    const QString letters = u"\\.(?![a-z]+$|[A-Z]+$|[A-Z][a-z]+$|BackUp$|backUp$)[A-Za-z]{6}$"_s;
    const QRegularExpression ofTheProgram(
        u"^((feeds|params|tmp|tmpupd)\\.xml|tmp\\.opml|(tmp|home)\\.htm|style\\.css|slien\\.gif)"_s + letters);
    const QRegularExpression ofAFeed(u"^[0-9]+\\.xml"_s + letters);
    removeMatching(QDir(m_path), ofTheProgram);
    removeMatching(QDir(file(u"feeds"_s)), ofAFeed);
}

QString DataDirectory::file(const QString &name) const
{
    return m_path + u'/' + name;
}

QString DataDirectory::cacheFile(const QString &feedKey) const
{
    return m_path + u"/feeds/"_s + feedKey + u".xml"_s;
}
