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
    /// The `standIns` are looked at behind the format's own places.
    explicit FormatReader(const FeedFormat &format, std::span<const FieldRow<ItemField>> standIns = {});

    const FeedFormat &format() const { return m_format; }
    const Vocabulary &vocabulary() const { return m_vocabulary; }

    /// The element that holds the texts of the channel; null when the document has none.
    xmlNode *channel(xmlNode *root) const;

    /// The element whose children the items are; null when the document has none.
    xmlNode *itemParent(xmlNode *root) const;

    bool isItem(const xmlNode *element) const { return m_vocabulary.isOwn(element, m_format.itemName); }

    QString text(ChannelField field, const ChildElements &channel) const;
    QString text(ItemField field, const ItemElements &item) const;

    /// The version as the document writes it; "" where the format is of one version.
    QString writtenVersion(const xmlNode *root) const
    {
        return m_format.writtenVersion == nullptr ? QString() : m_format.writtenVersion(root);
    }

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
    std::array<Sources, static_cast<std::size_t>(ItemField::MediumLength) + 1> m_itemFields;
};
