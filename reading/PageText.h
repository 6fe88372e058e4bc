// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/Literals.h"

#include <QByteArray>
#include <QString>

/// How the texts of a feed come into tmp.htm and into mails.
struct PageText
{
    QLatin1String head;                   ///< the line that begins the page's head
    QString (*wide)(const QString &);     ///< a text of the feed, as pages take it
    QByteArray (*bytes)(const QString &); ///< the page, as the file holds it

    /// Single-byte text of the system's code page, in which each character of the feed's is followed by its upper byte.
    static const PageText ansi;

    /// UTF-8, with the feed's text as it is.
    static const PageText utf8;
};
