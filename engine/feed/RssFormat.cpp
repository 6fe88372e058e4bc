#include "engine/feed/RssFormat.h"

#include "engine/feed/ElementText.h"
#include "engine/feed/ItemWriter.h"

#include <cstring>

xmlNode *RssFormat::channel(xmlNode *root) const
{
    for (xmlNode *node = elementFrom(root->children); node != nullptr; node = elementFrom(node->next))
        if (std::strcmp(reinterpret_cast<const char *>(node->name), "channel") == 0 && belongsTo(family(), node))
            return node;
    return nullptr;
}

const xmlNode *RssFormat::image(xmlNode *, const ChildElements &channel) const
{
    return channel.first(Element::Image);
}

std::optional<ItemSource> RssFormat::sourceElement(const ChildElements &item)
{
    const xmlNode *element = item.first(Element::Source);
    ItemSource source{textOf(element), attributeOf(element, "url")};
    if (source.Name.isEmpty() && source.Url.isEmpty())
        return std::nullopt;
    return source;
}

std::optional<ItemEnclosure> RssFormat::enclosureElement(const ChildElements &item)
{
    const xmlNode *element = item.first(Element::Enclosure);
    ItemEnclosure enclosure{attributeOf(element, "url"), attributeOf(element, "type"),
                            lengthOf(attributeOf(element, "length"))};
    if (enclosure.Url.isEmpty())
        return std::nullopt;
    return enclosure;
}

QString RssFormat::categories(const ChildElements &item) const
{
    const QString own = joinedTexts(item, Element::Category);
    return own.isEmpty() ? joinedTexts(item, Element::DcSubject) : own;
}

void RssFormat::writeSharedElements(ItemWriter &item, const ItemContent &content)
{
    if (content.source) {
        xmlNode *source = item.addElement("source", content.source->Name);
        ItemWriter::setAttribute(source, "url", content.source->Url);
    }
    if (content.enclosure) {
        xmlNode *enclosure = item.addElement("enclosure");
        ItemWriter::setAttribute(enclosure, "url", content.enclosure->Url);
        ItemWriter::setAttribute(enclosure, "length", QString::number(content.enclosure->Length));
        ItemWriter::setAttribute(enclosure, "type", content.enclosure->Extra);
    }
}
