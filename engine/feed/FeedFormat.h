// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "engine/feed/FeedTypes.h"
#include "engine/feed/ItemWriter.h"
#include "engine/feed/Readings.h"

#include <array>
#include <span>

/// Where a text is looked for. Those made of nothing are passed over.
struct TextSource
{
    enum class Of { Itself, Feed };

    ElementName element;       ///< without a name: the item's or the channel's element itself
    Reading reading = nullptr; ///< of the first element of that name
    const char *detail = "";   ///< what the reading is told besides
    Of of = Of::Itself;        ///< whose child the element is
};

/// The sources of a field, in order of preference: the first that isn't empty wins.
template <class Field>
struct FieldRow
{
    Field field;
    std::array<TextSource, 4> sources;
};

/// Short forms for the rows of a format's table.
namespace From {

constexpr TextSource own(std::string_view name, Reading reading = Readings::text, const char *detail = "")
{
    return {{nullptr, name}, reading, detail};
}

constexpr TextSource dc(std::string_view name, Reading reading = Readings::text)
{
    return {{isDublinCore, name}, reading};
}

constexpr TextSource itunes(std::string_view name)
{
    return {{isItunes, name}, Readings::text};
}

constexpr TextSource contentEncoded()
{
    return {{isContentModule, "encoded"}, Readings::text};
}

constexpr TextSource itself(Reading reading, const char *detail = "")
{
    return {{}, reading, detail};
}

constexpr TextSource feed(std::string_view name, Reading reading)
{
    return {{nullptr, name}, reading, "", TextSource::Of::Feed};
}

} // namespace From

class FormatReader;
struct ItemElements;

/// A format of feeds: what its documents look like, where they keep what, and how an item is written. It is data and
/// functions without state; a FormatReader works by it.
struct FeedFormat
{
    FeedVersion version;

    /// Tells the namespaces in which the format's own elements lie.
    NamespaceTest isOwn;

    /// That of the items which are written; null for the one that the elements around them are in.
    const char *ownNamespace = nullptr;

    /// The element below the root that holds the texts of the channel; null when the root does.
    const char *channelName = nullptr;

    /// Whether the items stand in the channel's element, or else below the root.
    bool itemsAreInChannel = false;

    /// The element of the channel that holds the items, where neither the channel nor the root does; or null.
    const char *itemsName = nullptr;

    const char *itemName;

    /// LoadOk for a document of this format; LoadBadVersion or LoadBadVersionOther for one of its family that is of
    /// another version; otherwise LoadUnknownFormat.
    FeedLoadResult (*recognise)(const xmlNode *root);

    /// The version as the document writes it, for a format that stands for several. May be null.
    QString (*writtenVersion)(const xmlNode *root) = nullptr;

    /// Fields that the format has no place for have no row.
    std::span<const FieldRow<ChannelField>> channelFields;
    std::span<const FieldRow<ItemField>> itemFields;

    /// Writes all that the format has a place for into an empty item element.
    void (*write)(ItemWriter &item, const ItemContent &content);

    /// Gives a copy of an item of another document of this format what the original had from its feed. May be null.
    void (*completeCopy)(ItemWriter &copy, const ItemElements &original, const FormatReader &reader) = nullptr;

    /// Lets what the document says elsewhere about its items agree with them, before it is saved. `added` are new, in
    /// front of the others in this order; `dropped` are outside the tree already. May be null.
    void (*itemsChanged)(xmlNode *root, std::span<xmlNode *const> added, std::span<xmlNode *const> dropped) = nullptr;
};
