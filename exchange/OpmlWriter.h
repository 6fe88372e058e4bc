// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

/// An OPML file to be written of the subscriptions.
struct OpmlExport
{
    QString catalogue; ///< path of feeds.xml, which is read as it stands on the disk
    QString title;     ///< text of `title`
    QString ownerName;
    QString ownerEmail;
    bool structured = false; ///< folders become outlines; otherwise their feeds stand right below `body`
};

/// Writes the OPML 1.1 file in one step, with lines ended by CR LF, in ISO-8859-1. The texts go into it as they are; a
/// character that the encoding lacks as a numeric reference. False, with nothing written, when the catalogue doesn't
/// load.
///
/// Throws RunTimeError when the file can't be written (an old one then stands), and for a catalogue that lacks what the
/// lines need.
bool writeOpml(const OpmlExport &what, const QString &path);
