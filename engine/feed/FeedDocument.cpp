// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/feed/FeedDocument.h"

#include "engine/feed/FeedBounds.h"
#include "engine/feed/FeedDigest.h"
#include "engine/feed/ItemMarks.h"
#include "engine/feed/ItemTransfer.h"
#include "platform/DateText.h"
#include "platform/xml/TreeWalk.h"

#include <limits>

FeedDocument::FeedDocument(XmlDocPtr tree, const FormatReader &reader, QDateTime written)
    : m_tree(std::move(tree)), m_reader(reader), m_written(std::move(written)),
      m_root(xmlDocGetRootElement(m_tree.get())), m_channel(reader.vocabulary(), reader.channel(m_root))
{
    readChildren();
}

FeedDocument::~FeedDocument()
{
    for (xmlNode *node : m_dropped)
        xmlFreeNode(node);
}

/// Finds the items and the elements of the channel, in one pass where the items are among them.
void FeedDocument::readChildren()
{
    const xmlNode *channel = m_channel.parent();
    xmlNode *parent = m_reader.itemParent(m_root);
    if (channel != nullptr && channel != parent)
        m_channel.addAll();
    if (parent == nullptr)
        return;
    for (xmlNode *node = elementFrom(parent->children); node != nullptr; node = elementFrom(node->next)) {
        if (m_reader.isItem(node))
            m_items.push_back({node, nullptr});
        else if (channel == parent)
            m_channel.add(node);
    }
}

bool FeedDocument::uses(NamespaceTest isWanted) const
{
    for (const xmlNode *node = m_root; node != nullptr; node = nextInTree(node, m_root))
        if (node->type == XML_ELEMENT_NODE && isWanted(nameOf(node->ns)))
            return true;
    return false;
}

const FeedDocument::Entry &FeedDocument::entry(qsizetype index) const
{
    const auto added = static_cast<qsizetype>(m_added.size());
    return index < added ? m_added[static_cast<std::size_t>(index)] : m_items[static_cast<std::size_t>(index - added)];
}

ItemElements FeedDocument::itemElements(qsizetype index) const
{
    const Entry &item = entry(index);
    if (!item.elements) {
        item.elements = std::make_unique<ChildElements>(m_reader.vocabulary(), item.node);
        item.elements->addAll();
    }
    return {*item.elements, m_channel};
}

/// The items of one update share their date, so that the mark read last is mostly the one to be read: a merge asks for
/// that of each item.
const FeedDocument::NotedDate &FeedDocument::notedDate(const xmlNode *item) const
{
    const std::string_view mark = ItemMarks::downloadMark(item);
    if (!m_notedDate || mark != m_notedDate->mark) {
        const QDateTime date = ItemMarks::downloadDate(mark);
        m_notedDate = {std::string(mark), date.isValid(), DateText::toText(date.isValid() ? date : m_written)};
    }
    return *m_notedDate;
}

QString FeedDocument::downloadDate(qsizetype index) const
{
    return notedDate(item(index)).text;
}

void FeedDocument::setRead(qsizetype index, bool read)
{
    Entry &item = entry(index);
    if (ItemMarks::isRead(item.node) != read)
        m_marksChanged = item.changes.read = true;
    ItemMarks::setRead(item.node, read);
}

void FeedDocument::setDeleted(qsizetype index)
{
    Entry &item = entry(index);
    if (!ItemMarks::isDeleted(item.node))
        m_marksChanged = item.changes.deleted = true;
    ItemMarks::setDeleted(item.node);
}

void FeedDocument::forgetMarkChanges()
{
    for (std::vector<Entry> *items : {&m_items, &m_added})
        for (Entry &item : *items)
            item.changes = {};
    m_marksChanged = false;
}

/// The element that items go into, made when the document has none.
xmlNode *FeedDocument::itemParent()
{
    Q_ASSERT(m_root != nullptr); // what has none was never recognised as a feed
    xmlNode *parent = m_reader.itemParent(m_root);
    const FeedFormat &format = m_reader.format();
    const char *missing = format.itemsName != nullptr ? format.itemsName : format.channelName;
    return parent != nullptr ? parent : xmlNewChild(m_root, m_root->ns, xmlText(missing), nullptr);
}

bool FeedDocument::add(const FeedDocument &from, const xmlNode *node, const QDateTime &now)
{
    ChildElements elements(from.reader().vocabulary(), node);
    elements.addAll();
    const ItemElements original{elements, from.channel()};
    const auto enter = [this](xmlNode *item) { insert(item); };
    xmlNode *parent = itemParent();
    xmlNode *item = &from.reader().format() == &m_reader.format()
                        ? ItemTransfer::copy(original, m_reader, parent, enter)
                        : ItemTransfer::convert(from.reader().content(original), m_reader.format(), parent, enter);
    if (item == nullptr)
        return false;
    // To the second, and by the fields: going through the time zone for each item costs as much as copying it.
    if (now.date() != m_addedAt.date() ||
        now.time().msecsSinceStartOfDay() / 1000 != m_addedAt.time().msecsSinceStartOfDay() / 1000) {
        m_addedAt = now;
        m_addedMark = ItemMarks::markOf(now);
    }
    ItemMarks::setDownloadMark(item, m_addedMark);
    m_added.push_back({item, nullptr});
    return true;
}

/// Puts the item behind those added before, on a line of its own.
void FeedDocument::insert(xmlNode *item)
{
    if (!m_items.empty()) {
        xmlAddPrevSibling(m_items.front().node, item);
    } else if (!m_added.empty()) {
        xmlAddNextSibling(m_added.back().node, item);
    } else {
        xmlAddChild(m_reader.itemParent(m_root), item);
    }
    if (item->next == nullptr || item->next->type != XML_TEXT_NODE)
        xmlAddNextSibling(item, xmlNewDocText(m_tree.get(), xmlText("\n")));
}

/// Takes the items marked for removal out of the tree, and those behind them that no index names.
std::vector<xmlNode *> FeedDocument::takeOutRemovedItems()
{
    constexpr qsizetype most = std::numeric_limits<qint16>::max();
    std::vector<xmlNode *> dropped;
    qsizetype kept = 0;
    for (Entry &item : m_items) {
        item.removed = item.removed || kept == most;
        if (!item.removed) {
            ++kept;
            continue;
        }
        xmlNode *blank = item.node->next;
        if (blank != nullptr && xmlIsBlankNode(blank) != 0) {
            xmlUnlinkNode(blank);
            xmlFreeNode(blank);
        }
        xmlUnlinkNode(item.node);
        dropped.push_back(item.node);
    }
    std::erase_if(m_items, [](const Entry &item) { return item.removed; });
    m_dropped.insert(m_dropped.end(), dropped.begin(), dropped.end());
    return dropped;
}

/// Makes one run of the added items and those that were there, without the removed ones.
void FeedDocument::settleItems()
{
    std::vector<xmlNode *> added;
    for (const Entry &item : m_added)
        added.push_back(item.node);
    m_items.insert(m_items.begin(), std::make_move_iterator(m_added.begin()), std::make_move_iterator(m_added.end()));
    m_added.clear();
    const std::vector<xmlNode *> dropped = takeOutRemovedItems();
    if (m_reader.format().itemsChanged != nullptr)
        m_reader.format().itemsChanged(m_root, added, dropped);
}

QByteArray FeedDocument::prepareForSaving()
{
    settleItems();
    const QString writtenMark = ItemMarks::markOf(m_written);
    for (const Entry &item : m_items)
        if (!notedDate(item.node).readable)
            ItemMarks::setDownloadMark(item.node, writtenMark);
    std::vector<const xmlNode *> items;
    items.reserve(m_items.size());
    for (const Entry &item : m_items)
        items.push_back(item.node);
    const quint64 digest = FeedDigest::ofTree(m_root, m_reader, items);
    return XmlGate::toBytes(m_tree.get(), feedBounds, [&](const QByteArray &written) {
        return FeedDigest::isOfBytes(digest, written, m_reader);
    });
}
