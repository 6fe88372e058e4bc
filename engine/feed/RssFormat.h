#pragma once

#include "engine/feed/FeedFormat.h"

/// What RSS 0.91, 0.92 and 2.0 have in common: their frame, and the elements that 0.92 and 2.0 share.
class RssFormat : public FeedFormat
{
public:
    Family family() const override { return Family::Rss; }
    xmlNode *channel(xmlNode *root) const override;
    xmlNode *itemParent(xmlNode *root) const override { return channel(root); }
    const char *itemName() const override { return "item"; }
    const xmlNode *image(xmlNode *root, const ChildElements &channel) const override;

protected:
    static std::optional<ItemSource> sourceElement(const ChildElements &item);
    static std::optional<ItemEnclosure> enclosureElement(const ChildElements &item);
    QString categories(const ChildElements &item) const;

    /// Writes source and enclosure.
    static void writeSharedElements(ItemWriter &item, const ItemContent &content);
};
