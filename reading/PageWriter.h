// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "core/DataDirectory.h"
#include "engine/CurrentFeed.h"
#include "engine/DateReader.h"
#include "platform/Choice.h"
#include "reading/PageText.h"

#include <QString>

/// Writes the page of a channel or of an item into tmp.htm, and the text of an item for mail. No field is escaped for
/// HTML: feeds send their descriptions as markup, and it acts as such.
class PageWriter
{
public:
    PageWriter(DataDirectory directory, const CurrentFeed &current, Choice<DateReader> dates,
               Choice<PageText> text = PageText::ansi);

    /// Writes the channel's page. Throws the RunTimeErrors of Files::write() and of the dates.
    void writeChannelPage() const;

    /// Writes the page of the item at `index`. Throws likewise.
    void writeItemPage(qint16 index) const;

    /// The text of the item for a mail, lines ended by CR LF. Throws likewise.
    QString mailText(qint16 index) const;

    /// The path of tmp.htm.
    QString pagePath() const;

    /// `bytes` in octets, "Ko" or "Mo", "> 1 Go" from a gibibyte on; halves go to the even neighbour. `bytes` is
    /// changed on the way.
    static QString FormatSize(qint32 &bytes);

    /// What stands behind the last "/"; the whole text when there is none.
    static QString UrlFileName(const QString &url);

private:
    QString authorAndDate(qint16 index, const QString &shownAuthor) const;

    DataDirectory m_directory;
    const CurrentFeed &m_current;
    Choice<DateReader> m_dates;
    Choice<PageText> m_text;
};
