// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/feed/FeedDigest.h"

#include "engine/feed/FeedBounds.h"
#include "engine/feed/ItemMarks.h"
#include "platform/xml/TreeWalk.h"
#include "platform/xml/XmlStream.h"

namespace {

/// Any element of this name in an item may be its title, whatever the format says; the digest tells all of them.
constexpr std::string_view titleName = "title";

/// Adds up what is told, in its order.
class Sum final
{
public:
    enum Kind : unsigned char { Begin = 1, End, Attribute, Item, Channel };

    void add(Kind kind) { addByte(kind); }
    void add(std::string_view text)
    {
        for (const char c : text)
            addByte(static_cast<unsigned char>(c));
    }
    void addName(std::string_view name, std::string_view space)
    {
        add(name);
        addByte(0);
        add(space);
        addByte(0);
    }
    quint64 value() const { return m_value; }

private:
    void addByte(unsigned char byte) { m_value = (m_value ^ byte) * 0x100000001B3; } // FNV-1a

    quint64 m_value = 0xCBF29CE484222325;
};

/// One attribute, as a tree or a stream has it.
struct AttributeView
{
    std::string_view name;
    std::string_view space;
    std::string_view text;
};

void add(Sum &sum, const AttributeView &attribute)
{
    sum.add(Sum::Attribute);
    sum.addName(attribute.name, attribute.space);
    sum.add(attribute.text);
}

template <class Use>
void eachAttribute(const xmlNode *element, Use use)
{
    for (const xmlAttr *attribute = element->properties; attribute != nullptr; attribute = attribute->next) {
        const xmlNode *text = attribute->children;
        if (text == nullptr || text->next == nullptr) {
            use({viewOf(attribute->name), nameOf(attribute->ns), text == nullptr ? "" : viewOf(text->content)});
        } else {
            xmlChar *whole = xmlNodeGetContent(reinterpret_cast<const xmlNode *>(attribute));
            use({viewOf(attribute->name), nameOf(attribute->ns), viewOf(whole)});
            xmlFree(whole);
        }
    }
}

template <class Use>
void eachAttribute(const XmlTag &tag, Use use)
{
    for (int i = 0; i < tag.attributes; ++i) {
        const xmlChar **values = tag.values + qsizetype(5) * i;
        use({viewOf(values[0]), viewOf(values[2]),
             std::string_view(reinterpret_cast<const char *>(values[3]),
                              static_cast<std::size_t>(values[4] - values[3]))});
    }
}

/// An element with all that it bears; for the root and what stands in titles.
template <class Element>
void addWhole(Sum &sum, const Element &element, std::string_view name, std::string_view space)
{
    sum.add(Sum::Begin);
    sum.addName(name, space);
    eachAttribute(element, [&](const AttributeView &attribute) { add(sum, attribute); });
}

template <class Element>
void addItem(Sum &sum, const Element &element)
{
    sum.add(Sum::Item);
    eachAttribute(element, [&](const AttributeView &attribute) {
        if (attribute.space == ItemMarks::space)
            add(sum, attribute);
    });
}

void addTitle(Sum &sum, const xmlNode *title)
{
    const xmlNode *node = title;
    while (node != nullptr) {
        if (node->type == XML_ELEMENT_NODE)
            addWhole(sum, node, viewOf(node->name), nameOf(node->ns));
        else if (node->type == XML_TEXT_NODE || node->type == XML_CDATA_SECTION_NODE)
            sum.add(viewOf(node->content));
        if (node->type == XML_ELEMENT_NODE && node->children != nullptr) {
            node = node->children;
            continue;
        }
        if (node->type == XML_ELEMENT_NODE)
            sum.add(Sum::End);
        while (node != title && node->next == nullptr) {
            node = node->parent;
            sum.add(Sum::End);
        }
        node = node == title ? nullptr : node->next;
    }
}

/// Finds in a stream what a tree is asked for.
class StreamDigest final : public XmlListener
{
public:
    explicit StreamDigest(const FormatReader &reader)
        : m_reader(reader), m_holderName(holderName(reader.format())), m_itemDepth(m_holderName != nullptr ? 3 : 2)
    {}

    quint64 value() const { return m_sum.value(); }

    void begin(const XmlTag &tag) override
    {
        ++m_depth;
        if (m_titleDepth > 0 || (m_inItem && m_depth == m_itemDepth + 1 && viewOf(tag.name) == titleName)) {
            m_titleDepth = m_titleDepth > 0 ? m_titleDepth : m_depth;
            addWhole(m_sum, tag, viewOf(tag.name), viewOf(tag.address));
            return;
        }
        if (m_depth == 1)
            addWhole(m_sum, tag, viewOf(tag.name), viewOf(tag.address));
        if (m_depth == 2 && !m_holderSeen && isOwn(tag, m_holderName))
            m_holderSeen = m_inHolder = true;
        if (m_depth == 2 && isOwn(tag, m_reader.format().channelName))
            m_channelSeen = true;
        if (m_depth == m_itemDepth && (m_itemDepth == 2 || m_inHolder) && isOwn(tag, m_reader.format().itemName)) {
            m_inItem = true;
            addItem(m_sum, tag);
        }
    }

    void end() override
    {
        if (m_titleDepth > 0)
            m_sum.add(Sum::End);
        if (m_depth == m_titleDepth)
            m_titleDepth = 0;
        if (m_depth == m_itemDepth)
            m_inItem = false;
        if (m_depth == 2)
            m_inHolder = false;
        if (m_depth == 1 && m_channelSeen)
            m_sum.add(Sum::Channel);
        --m_depth;
    }

    void text(std::string_view piece) override
    {
        if (m_titleDepth > 0)
            m_sum.add(piece);
    }

private:
    /// The element at depth 2 that the items stand in; null when they stand below the root.
    static const char *holderName(const FeedFormat &format)
    {
        return format.itemsName != nullptr || !format.itemsAreInChannel ? format.itemsName : format.channelName;
    }

    bool isOwn(const XmlTag &tag, const char *name) const
    {
        return name != nullptr && m_reader.vocabulary().isOwn(tag.name, viewOf(tag.address), name);
    }

    const FormatReader &m_reader;
    const char *const m_holderName;
    const int m_itemDepth;
    Sum m_sum;
    int m_depth = 0;
    int m_titleDepth = 0; ///< 0 outside a title
    bool m_channelSeen = false;
    bool m_holderSeen = false;
    bool m_inHolder = false;
    bool m_inItem = false;
};

} // namespace

quint64 FeedDigest::ofTree(const xmlNode *root, const FormatReader &reader, std::span<const xmlNode *const> items)
{
    Sum sum;
    addWhole(sum, root, viewOf(root->name), nameOf(root->ns));
    for (const xmlNode *item : items) {
        addItem(sum, item);
        for (const xmlNode *child = elementFrom<const xmlNode>(item->children); child != nullptr;
             child = elementFrom<const xmlNode>(child->next))
            if (viewOf(child->name) == titleName)
                addTitle(sum, child);
    }
    if (reader.format().channelName != nullptr && reader.channel(const_cast<xmlNode *>(root)) != nullptr)
        sum.add(Sum::Channel);
    return sum.value();
}

bool FeedDigest::isOfBytes(quint64 digest, const QByteArray &bytes, const FormatReader &reader)
{
    StreamDigest stream(reader);
    return XmlGate::readThrough(bytes, feedBounds, stream) && stream.value() == digest;
}
