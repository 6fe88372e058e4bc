#pragma once

#include "platform/XmlDocument.h"

#include <QString>

#include <vector>

/// What an OPML document offers for subscription.
struct OpmlList
{
    struct Feed
    {
        int position;    ///< among all outlines right below `body`, those without an address counted too
        QString text;    ///< attribute `text`
        QString address; ///< attribute `xmlUrl`
    };

    QString title;
    std::vector<Feed> feeds;
};

/// Reads `opml`, `head/title`, and the outlines right below `body` that bear an `xmlUrl`. Outlines within outlines
/// aren't seen. Names are told with case. A document without one of these nodes, or a feed without `text`, isn't
/// tolerated: throws RunTimeError::objectNotSet().
OpmlList readOpmlList(const XmlDocument &document);

/// The attribute `description` of the outline at that position; "/" when it has none. Throws objectNotSet() when there
/// is no such outline.
QString outlineDescription(const XmlDocument &document, int position);
