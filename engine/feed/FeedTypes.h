// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

#include <optional>

/// What CachedFeed::Load() found. The values are part of the interface.
enum FeedLoadResult : qint32 {
    LoadFileNotFound = 0,    ///< no file at the path, or none that may be read
    LoadNotAFeed = 1,        ///< not well-formed XML, or a web page
    LoadBadVersion = 2,      ///< RSS in a version that isn't read
    LoadBadVersionOther = 3, ///< RDF or Atom in a version that isn't read
    LoadUnknownFormat = 4,   ///< a well-formed document of another kind
    LoadOk = 5               ///< the only success
};

/// The format of a loaded document. The values are part of the interface; note that Rdf10 stands before Rss20.
/// Those past Atom03 occur only with allFormats().
enum FeedVersion : qint32 {
    Rss091 = 0,
    Rss092 = 1,
    Rdf10 = 2,
    Rss20 = 3,
    Atom03 = 4,
    Atom10 = 5,
    Rss090 = 6,
    OtherRss = 7
};

/// The picture of a channel.
struct FeedImage
{
    QString Url;
    QString Title;      ///< alternative text
    QString Link;       ///< where a click on the picture leads
    qint16 Width = -1;  ///< pixels; -1 when the feed gives none
    qint16 Height = -1; ///< pixels; -1 when the feed gives none
    QString Description;
};

/// The feed that an item was taken from.
struct ItemSource
{
    QString Name;
    QString Url;
};

/// The attachment of an item.
struct ItemEnclosure
{
    QString Url;
    QString Extra;     ///< the media type as the feed writes it
    qint32 Length = 0; ///< bytes; 0 when missing or no number, the largest number when it is past 32 bits
};

/// The texts of a channel that each format has in its own place.
enum class ChannelField {
    Title,
    Link,
    Description,
    Language,
    Copyright,
    ManagingEditor,
    WebMaster,
    Ttl,
    ImageUrl,
    ImageTitle,
    ImageLink,
    ImageWidth,
    ImageHeight,
    ImageDescription ///< the last
};

/// Likewise those of an item.
enum class ItemField {
    Title,
    Link,
    Description,
    Category,
    Author,
    Comments,
    PubDate,
    SourceName,
    SourceUrl,
    EnclosureUrl,
    EnclosureType,
    EnclosureLength,
    MediumUrl, ///< stands in with the two behind it where there is no enclosure
    MediumType,
    MediumLength ///< the last
};

/// All that is read from an item, on its way into another format.
struct ItemContent
{
    QString title;
    QString link;
    QString description;
    QString category;
    QString author;
    QString comments;
    QString pubDate;
    std::optional<ItemSource> source;
    std::optional<ItemEnclosure> enclosure;
};
