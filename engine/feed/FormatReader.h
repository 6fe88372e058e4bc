// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "engine/feed/FeedFormat.h"

/// The elements that an item's fields are read from.
struct ItemElements
{
    const ChildElements &item;
    const ChildElements &channel; ///< for what an item has from its feed
};

/// Reads documents of one format, by its table.
class FormatReader final
{
public:
    explicit FormatReader(const FeedFormat &format);

    const FeedFormat &format() const { return m_format; }
    const Vocabulary &vocabulary() const { return m_vocabulary; }

    /// The element that holds the texts of the channel; null when the document has none.
    xmlNode *channel(xmlNode *root) const;

    /// The element whose children the items are; null when the document has none.
    xmlNode *itemParent(xmlNode *root) const { return m_format.itemsAreInChannel ? channel(root) : root; }

    bool isItem(const xmlNode *element) const { return m_vocabulary.isOwn(element, m_format.itemName); }

    QString text(ChannelField field, const ChildElements &channel) const;
    QString text(ItemField field, const ItemElements &item) const;

    /// Nothing when the channel names no picture by its address.
    std::optional<FeedImage> image(const ChildElements &channel) const;

    std::optional<ItemSource> source(const ItemElements &item) const;
    std::optional<ItemEnclosure> enclosure(const ItemElements &item) const;
    ItemContent content(const ItemElements &item) const;

private:
    struct Source
    {
        Vocabulary::Number number; ///< none: the element itself
        Reading reading;
        const char *detail;
        TextSource::Of of;
    };
    using Sources = std::vector<Source>;

    template <class Field>
    void add(std::span<const FieldRow<Field>> rows, std::span<Sources> fields);
    QString firstText(const Sources &sources, const ChildElements &own, const ChildElements &channel) const;

    const FeedFormat &m_format;
    Vocabulary m_vocabulary;
    std::array<Sources, static_cast<std::size_t>(ChannelField::ImageDescription) + 1> m_channelFields;
    std::array<Sources, static_cast<std::size_t>(ItemField::EnclosureLength) + 1> m_itemFields;
};
