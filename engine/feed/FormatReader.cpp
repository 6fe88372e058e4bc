// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/feed/FormatReader.h"

#include "platform/Numbers.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

/// A length as a feed writes it, as ItemEnclosure::Length defines it.
qint32 lengthOf(const QString &text)
{
    if (!Numbers::isNumeric(text))
        return 0;
    constexpr double largest = std::numeric_limits<qint32>::max();
    return static_cast<qint32>(std::nearbyint(std::clamp(Numbers::toDouble(text), 0.0, largest)));
}

/// A size as a feed writes it: -1 for what is no number or negative, at most the largest.
qint16 sizeOf(const QString &text)
{
    if (!Numbers::isNumeric(text))
        return -1;
    constexpr double largest = std::numeric_limits<qint16>::max();
    const double size = Numbers::toDouble(text);
    return size < 0 ? qint16(-1) : static_cast<qint16>(std::nearbyint(std::min(size, largest)));
}

} // namespace

FormatReader::FormatReader(const FeedFormat &format, std::span<const FieldRow<ItemField>> standIns)
    : m_format(format), m_vocabulary(format.isOwn)
{
    add(format.channelFields, std::span<Sources>(m_channelFields));
    add(format.itemFields, std::span<Sources>(m_itemFields));
    add(standIns, std::span<Sources>(m_itemFields));
}

template <class Field>
void FormatReader::add(std::span<const FieldRow<Field>> rows, std::span<Sources> fields)
{
    for (const FieldRow<Field> &row : rows) {
        for (const TextSource &source : row.sources) {
            if (source.reading == nullptr)
                continue;
            const auto number = source.element.local.empty() ? Vocabulary::none : m_vocabulary.add(source.element);
            fields[static_cast<std::size_t>(row.field)].push_back({number, source.reading, source.detail, source.of});
        }
    }
}

xmlNode *FormatReader::channel(xmlNode *root) const
{
    return m_format.channelName == nullptr ? root : m_vocabulary.ownChild(root, m_format.channelName);
}

xmlNode *FormatReader::itemParent(xmlNode *root) const
{
    if (m_format.itemsName == nullptr)
        return m_format.itemsAreInChannel ? channel(root) : root;
    xmlNode *holder = channel(root);
    return holder == nullptr ? nullptr : m_vocabulary.ownChild(holder, m_format.itemsName);
}

QString FormatReader::firstText(const Sources &sources, const ChildElements &own, const ChildElements &channel) const
{
    for (const Source &source : sources) {
        const ChildElements &children = source.of == TextSource::Of::Feed ? channel : own;
        const xmlNode *element = source.number == Vocabulary::none ? children.parent() : children.first(source.number);
        if (element == nullptr)
            continue;
        QString text = source.reading({element, m_vocabulary, source.detail});
        if (!text.isEmpty())
            return text;
    }
    return {};
}

QString FormatReader::text(ChannelField field, const ChildElements &channel) const
{
    return firstText(m_channelFields[static_cast<std::size_t>(field)], channel, channel);
}

QString FormatReader::text(ItemField field, const ItemElements &item) const
{
    return firstText(m_itemFields[static_cast<std::size_t>(field)], item.item, item.channel);
}

std::optional<FeedImage> FormatReader::image(const ChildElements &channel) const
{
    FeedImage image;
    image.Url = text(ChannelField::ImageUrl, channel);
    if (image.Url.isEmpty())
        return std::nullopt;
    image.Title = text(ChannelField::ImageTitle, channel);
    image.Link = text(ChannelField::ImageLink, channel);
    image.Width = sizeOf(text(ChannelField::ImageWidth, channel));
    image.Height = sizeOf(text(ChannelField::ImageHeight, channel));
    image.Description = text(ChannelField::ImageDescription, channel);
    return image;
}

std::optional<ItemSource> FormatReader::source(const ItemElements &item) const
{
    ItemSource source{text(ItemField::SourceName, item), text(ItemField::SourceUrl, item)};
    if (source.Name.isEmpty() && source.Url.isEmpty())
        return std::nullopt;
    return source;
}

std::optional<ItemEnclosure> FormatReader::enclosure(const ItemElements &item) const
{
    using Fields = std::array<ItemField, 3>;
    for (const auto &[url, type, length] :
         {Fields{ItemField::EnclosureUrl, ItemField::EnclosureType, ItemField::EnclosureLength},
          Fields{ItemField::MediumUrl, ItemField::MediumType, ItemField::MediumLength}})
        if (QString address = text(url, item); !address.isEmpty())
            return ItemEnclosure{address, text(type, item), lengthOf(text(length, item))};
    return std::nullopt;
}

ItemContent FormatReader::content(const ItemElements &item) const
{
    const auto field = [&](ItemField which) { return text(which, item); };
    return {
        field(ItemField::Title),  field(ItemField::Link),     field(ItemField::Description), field(ItemField::Category),
        field(ItemField::Author), field(ItemField::Comments), field(ItemField::PubDate),     source(item),
        enclosure(item)};
}
