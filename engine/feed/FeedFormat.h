#pragma once

#include "engine/feed/CachedFeed.h"
#include "engine/feed/FeedElements.h"

#include <optional>

#include <vector>

class ItemWriter;
struct ItemContent;

/// The texts of a channel that each format has in its own place.
enum class ChannelField { Title, Link, Description, Language, Copyright, ManagingEditor, WebMaster, Ttl };

/// Likewise those of an item.
enum class ItemField { Title, Link, Description, Category, Author, Comments, PubDate };

/// Where a format keeps what. One implementation a format, without state; it knows its own format only.
class FeedFormat
{
public:
    FeedFormat() = default;
    FeedFormat(const FeedFormat &) = delete;
    FeedFormat &operator=(const FeedFormat &) = delete;
    virtual ~FeedFormat() = default;

    virtual FeedVersion version() const = 0;
    virtual Family family() const = 0;

    /// The element that holds the texts of the channel; null when the document has none.
    virtual xmlNode *channel(xmlNode *root) const = 0;

    /// The element whose children the items are; null when the document has none.
    virtual xmlNode *itemParent(xmlNode *root) const = 0;

    /// The local name of an item's element.
    virtual const char *itemName() const = 0;

    /// `channel` are the children of channel(), `element` is channel() itself.
    virtual QString channelText(ChannelField field, const ChildElements &channel, const xmlNode *element) const = 0;

    /// `channel` are the children of channel(), for what an item has from its feed.
    virtual QString itemText(ItemField field, const ChildElements &item, const ChildElements &channel) const = 0;

    /// The element that describes the channel's picture; null when there is none.
    virtual const xmlNode *image(xmlNode *root, const ChildElements &channel) const;

    /// The picture that the element describes, its address perhaps empty.
    virtual FeedImage imageFrom(const xmlNode *image) const;

    virtual std::optional<ItemSource> source(const ChildElements &item) const;
    virtual std::optional<ItemEnclosure> enclosure(const ChildElements &item) const;

    /// Writes all that the format has a place for into an empty item element.
    virtual void write(ItemWriter &item, const ItemContent &content) const = 0;

    /// Gives a copy of an item of another document of this format what the original had from its feed.
    virtual void completeCopy(ItemWriter &copy, const ChildElements &original, const ChildElements &itsChannel) const;

    /// Enters a new item in the document's list of items, if the format has one, after the entry `after`, or in front
    /// when that is null. Returns the entry, null without a list.
    virtual xmlNode *enterIntoList(xmlNode *root, xmlNode *item, xmlNode *after) const;

    /// Takes those items out of the list that stand in the document no longer. `dropped` are outside its tree already.
    virtual void removeFromList(xmlNode *root, const std::vector<xmlNode *> &dropped) const;

protected:
    /// The first text of these kinds that isn't empty.
    static QString firstText(const ChildElements &children, std::initializer_list<Element> kinds);

    /// All texts of the elements of that kind, joined with ", ".
    QString joinedTexts(const ChildElements &children, Element kind) const;

    /// A length as a feed writes it, as ItemEnclosure::Length defines it.
    static qint32 lengthOf(const QString &text);

    /// A size as a feed writes it: -1 for what is no number or negative, at most the largest.
    static qint16 sizeOf(const QString &text);
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

/// Reads an item of that format.
ItemContent readItem(const FeedFormat &format, const ChildElements &item, const ChildElements &channel);

/// The formats.
const FeedFormat &rss091Format();
const FeedFormat &rss092Format();
const FeedFormat &rss20Format();
const FeedFormat &rdf10Format();
const FeedFormat &atom03Format();
