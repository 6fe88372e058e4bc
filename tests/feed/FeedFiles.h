// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/Files.h"
#include "platform/Literals.h"

#include <QDateTime>
#include <QFile>
#include <QTemporaryDir>

/// A document of RSS 2.0 with that between the tags of its channel.
inline QByteArray rss(const QByteArray &channel, const QByteArray &before = {})
{
    return before + "<rss version=\"2.0\"><channel>" + channel + "</channel></rss>";
}

/// The part so many times, each with its number in the places of "@", and one less in those of "^".
inline QByteArray many(int count, const QByteArray &part)
{
    if (!part.contains('@'))
        return part.repeated(count);
    QByteArray all;
    for (int i = 0; i < count; ++i)
        all += QByteArray(part).replace("@", QByteArray::number(i)).replace("^", QByteArray::number(i - 1));
    return all;
}

/// The files of a test, in a folder that goes with it.
class FeedFiles final
{
public:
    QString path(const char *name) const { return m_directory.filePath(QLatin1String(name)); }

    /// The path of the file, which then holds these bytes, written on the first day of 2004. Nothing waits for the
    /// disk.
    QString write(const char *name, const QByteArray &bytes) const
    {
        QFile file(path(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
            qFatal("A file of the test can't be written.");
        file.flush();
        file.setFileTime(QDateTime({2004, 1, 1}, {12, 0}, Qt::UTC), QFileDevice::FileModificationTime);
        return path(name);
    }
    QString writeSample(const char *name, const char *sample) const
    {
        return write(name, Files::read(QString::fromUtf8(SAMPLES_DIR "/") + QLatin1String(sample)).bytes);
    }
    QByteArray read(const char *name) const { return Files::read(path(name)).bytes; }

private:
    QTemporaryDir m_directory;
};
