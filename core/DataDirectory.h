// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

/// Where the program's files lie: settings, catalogue, cache files and the pages on show. Every file path is this
/// directory and a name.
class DataDirectory
{
public:
    /// The directory at `path`, as it is. Nothing is created.
    explicit DataDirectory(QString path);

    /// The directory that a start of the program uses, in this order: the one that QUILLWIRE_DATA names; the directory
    /// of the program, `programDirectory`, when it holds "feeds.xml" (a portable folder, the build tree); the user's
    /// data folder ($XDG_DATA_HOME/quillwire). The chosen one is made when it is missing, with its folder "feeds"; a
    /// file that it lacks is filled from the copies that the program carries (never params.xml, never an existing
    /// file, and feeds.xml only at a first start: a catalogue that is missing beside settings or cache files was lost,
    /// and an empty one in its place would let the next subscription overwrite them). Throws the RunTimeErrors of
    /// Files when that fails.
    static DataDirectory ofProgram(const QString &programDirectory);

    QString path() const { return m_path; }

    /// Removes what a kill in the middle of a save left beside the program's files. Only the instance that holds the
    /// lock may call it. What can't be removed stays.
    void sweepLeftovers() const;

    /// The path of the file `name` in the directory.
    QString file(const QString &name) const;

    /// The cache file of the feed with that key: "feeds/<key>.xml".
    QString cacheFile(const QString &feedKey) const;

private:
    QString m_path;
};
